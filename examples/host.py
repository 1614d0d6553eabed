"""What host.cpp does, in Python: loads the library, asks an effect what it is, lets it fill a property set with its defaults
and show its settings panel, sends one frame through it, and takes everything down again.

    python host.py [PATH OF VixaVideoFX.dll]

It needs Python 3.8 or later for Windows, as wide as the library, and nothing but the standard library. A method of a COM
object is called by its number in the object's table; the numbers are the places of the methods in the C declarations
(vixavideofx/VixaVideoFX.h, strmif.h). Addresses are plain numbers here. An object that is given away must stay referenced
by this program until everybody has let go of it.
"""

import ctypes
import struct
import sys
from ctypes import byref, c_char, c_int32, c_size_t, c_uint32, c_uint64, c_wchar_p, memmove, sizeof, string_at

OK, NO = 0, 1
CANNOT_CUE = 0x00040268
NOT_IMPLEMENTED = 0x80004001
NO_INTERFACE = 0x80004002
FAILED = 0x80004005
INVALID_ARGUMENT = 0x80070057
NOT_CONNECTED = 0x80040209
PIN_NOT_FOUND = 0x80040216
PAUSED = 1
OUTPUT = 1
IN_PROCESS = 1
GERMAN = 1031
PANEL_CHANGED = 0x8000 + 1  # WM_APP + 1


class HostError(Exception):
    """The message says which call was refused, and with what code."""


def check(result, what):
    if result & 0x80000000:
        raise HostError(f"{what}: 0x{result:08X}")


# Arguments are words as wide as a pointer; a 64-bit number takes two of them in a 32-bit program.
POINTER_SIZE = sizeof(c_size_t)
WORDS_OF_64_BITS = 8 // POINTER_SIZE


def signature(words, result=c_uint32):
    return ctypes.WINFUNCTYPE(result, *[c_size_t] * words)


def call(this, place, *arguments):
    """Calls the method at a place of a COM object's table."""
    table = c_size_t.from_address(this).value
    method = c_size_t.from_address(table + place * POINTER_SIZE).value
    return signature(1 + len(arguments))(method)(this, *arguments)


def release(this):
    return call(this, 2)


def made(what, write):
    """Has something written to a place of its own, and answers what."""
    out = c_size_t()
    check(write(ctypes.addressof(out)), what)
    return out.value


def query(this, face, what):
    return made(what, lambda out: call(this, 0, address_of(face), out))


def address_of(data):
    return ctypes.addressof(data)


def wide(text):
    """The address of a text that stays as long as the program."""
    buffer = ctypes.create_unicode_buffer(text)
    kept.append(buffer)
    return address_of(buffer)


kept = []
ole32 = ctypes.WinDLL("ole32")
user32 = ctypes.WinDLL("user32")


def guid(text):
    value = (c_char * 16)()
    check(ole32.CLSIDFromString(c_wchar_p("{" + text + "}"), value) & 0xFFFFFFFF, text)
    return value


STREAMING = "-0AD4-11CE-B03A-0020AF0BA770"
IID_UNKNOWN = guid("00000000-0000-0000-C000-000000000046")
IID_CLASS_FACTORY = guid("00000001-0000-0000-C000-000000000046")
IID_PERSIST = guid("0000010C-0000-0000-C000-000000000046")
IID_MEDIA_FILTER = guid("56A86899" + STREAMING)
IID_BASE_FILTER = guid("56A86895" + STREAMING)
IID_PIN = guid("56A86891" + STREAMING)
IID_ENUM_PINS = guid("56A86892" + STREAMING)
IID_MEM_INPUT_PIN = guid("56A8689D" + STREAMING)
IID_GRAPH_BUILDER = guid("56A868A9" + STREAMING)
IID_MEDIA_CONTROL = guid("56A868B1" + STREAMING)
IID_EFFECT_INFO = guid("194ADE67-AFBF-4A1F-9978-48B05CEFB083")
IID_EFFECT_FILTER = guid("A67B871C-0AD5-4088-8975-DC797B6B42D8")
FILTER_GRAPH = guid("E436EBB3-524F-11CE-9F53-0020AF0BA770")
NULL_RENDERER = guid("C1F400A4-3F08-11D3-9F0B-006008039E37")
GAMMA_CORRECTION = guid("C79C3183-D7F7-439A-98CC-33906A691708")
VIDEO = guid("73646976-0000-0010-8000-00AA00389B71")
RGB32 = guid("E436EB7E-524F-11CE-9F53-0020AF0BA770")
VIDEO_INFO = guid("05589F80-C356-11CE-BF01-00AA0055595A")


def create(class_id, face, what):
    return made(what, lambda out: ole32.CoCreateInstance(class_id, None, IN_PROCESS, face, c_size_t(out)) & 0xFFFFFFFF)


class Table:
    """The methods of one of the host's own classes of objects.

    A method is (words, function), or the number of words that one which nobody needs takes off the stack, the object's own
    among them."""

    def __init__(self, methods):
        self.callbacks = []
        for method in methods:
            words, body = (method, lambda *ignored: NOT_IMPLEMENTED) if isinstance(method, int) else method
            self.callbacks.append(signature(words)(body))
        self.entries = (c_size_t * len(methods))(*[ctypes.cast(one, ctypes.c_void_p).value for one in self.callbacks])


class Face:
    """What others know an object by: the address of a pointer to its table."""

    def __init__(self, table):
        self.table = table
        self.pointer = c_size_t(address_of(table.entries))
        self.address = address_of(self.pointer)


def set_pointer(address, value):
    c_size_t.from_address(address).value = value


def set_number(address, value):
    c_uint32.from_address(address).value = value


def answer(this, asked, out, known, count):
    """QueryInterface of an object with these faces."""
    has = string_at(asked, 16) in [bytes(face) for face in known]
    set_pointer(out, this if has else 0)
    if has:
        count()
    return OK if has else NO_INTERFACE


class Parameters:
    """The host owns the parameters: a block of bytes that it stores with its project and never looks into. The library keeps
    no reference, so nothing is counted."""

    def __init__(self):
        self.data = b""
        self.face = Face(Table([
            (3, lambda this, asked, out: answer(this, asked, out, [IID_UNKNOWN], lambda: None)),
            (1, lambda this: 1),
            (1, lambda this: 1),
            (3, self.get_data),
            (3, self.set_data),
        ]))
        self.address = self.face.address

    def get_data(self, this, buffer, size):
        if not self.data:
            return FAILED
        memmove(buffer, self.data, len(self.data))
        set_number(size, len(self.data))
        return OK

    def set_data(self, this, data, size):
        if size & 0x80000000:
            return INVALID_ARGUMENT
        self.data = string_at(data, size & 0xFFFFFFFF)
        return OK


class MediaType(ctypes.Structure):
    _fields_ = [("major", c_char * 16), ("sub", c_char * 16), ("fixed_size", c_int32), ("temporal", c_int32),
                ("sample_size", c_uint32), ("format", c_char * 16), ("unknown", c_size_t), ("block_size", c_uint32),
                ("block", c_size_t)]


class Source:
    """Where the frames come from: the smallest DirectShow filter that a graph takes, with one output pin of one type."""

    def __init__(self, width, height):
        self.references = self.peer = self.receiver = self.allocator = self.graph = self.state = 0
        self.name = bytes(256)
        self.size = width * height * 4
        # VIDEOINFOHEADER; a positive height: bottom-up
        header = struct.pack("<32x2Iq", 0, 0, 0) + struct.pack("<IiiHHII16x", 40, width, height, 1, 32, 0, self.size)
        self.header = ctypes.create_string_buffer(header, len(header))
        self.media = MediaType(fixed_size=1, sample_size=self.size, block_size=len(header), block=address_of(self.header))
        for name, value in (("major", VIDEO), ("sub", RGB32), ("format", VIDEO_INFO)):
            memmove(address_of(self.media) + getattr(MediaType, name).offset, value, 16)
        self.media_address = address_of(self.media)

        wide_word = WORDS_OF_64_BITS
        filter_faces = [IID_UNKNOWN, IID_PERSIST, IID_MEDIA_FILTER, IID_BASE_FILTER]
        self.filter = Face(Table([
            (3, lambda this, asked, out: answer(this, asked, out, filter_faces, self.count_up)),
            (1, self.count_up),
            (1, self.count_down),
            2,  # GetClassID
            (1, self.stop),
            (1, self.pause),
            (1 + wide_word, self.run),
            (3, self.get_state),
            (2, lambda this, clock: OK),  # SetSyncSource: its frames have no times
            (2, self.nothing),  # GetSyncSource
            (2, self.enum_pins),
            (3, self.find_pin),
            (2, self.filter_info),
            (3, self.join_graph),
            2,  # QueryVendorInfo
        ]))
        self.pin = Face(Table([
            (3, lambda this, asked, out: answer(this, asked, out, [IID_UNKNOWN, IID_PIN], self.count_up)),
            (1, self.count_up),
            (1, self.count_down),
            (3, self.connect),
            3,  # ReceiveConnection
            (1, self.disconnect),
            (2, self.connected_to),
            (2, self.connection_type),
            (2, self.pin_info),
            (2, self.direction),
            2,  # QueryId
            (2, lambda this, offered: OK if string_at(offered + 16, 16) == bytes(RGB32) else NO),  # QueryAccept
            2, 3,  # EnumMediaTypes, QueryInternalConnections: connected with its type, nobody needs to look for one
            1, 1, 1, 1 + 3 * wide_word,  # EndOfStream, BeginFlush, EndFlush, NewSegment
        ]))
        # The lists of the one pin that are being read, by their address.
        self.lists = {}
        self.list_table = Table([
            (3, lambda this, asked, out: answer(this, asked, out, [IID_UNKNOWN, IID_ENUM_PINS],
                                                lambda: self.lists[this].count(1))),
            (1, lambda this: self.lists[this].count(1)),
            (1, self.release_list),
            (4, self.next),
            2,  # Skip
            (1, self.reset),
            2,  # Clone
        ])

    class List(Face):
        def __init__(self, table):
            super().__init__(table)
            self.references, self.done = 1, False

        def count(self, step):
            self.references += step
            return self.references

    def count_up(self, this=0):
        self.references += 1
        return self.references

    def count_down(self, this=0):
        self.references -= 1
        return self.references

    def stop(self, this):
        self.state = 0
        return call(self.allocator, 6) if self.allocator else OK  # Decommit

    def pause(self, this):
        self.state = PAUSED
        return call(self.allocator, 5) if self.allocator else OK  # Commit

    def run(self, this, *start):
        self.state = 2
        return OK

    def get_state(self, this, wait, out):
        set_number(out, self.state)
        return CANNOT_CUE if self.state == PAUSED else OK  # it sends nothing by itself

    def nothing(self, this, out):
        set_pointer(out, 0)
        return OK

    def enum_pins(self, this, out):
        made_list = self.List(self.list_table)
        self.lists[made_list.address] = made_list
        self.count_up()
        set_pointer(out, made_list.address)
        return OK

    def release_list(self, this):
        left = self.lists[this].count(-1)
        if left == 0:
            del self.lists[this]
            self.count_down()
        return left

    def next(self, this, count, out, fetched):
        given = 1 if count > 0 and not self.lists[this].done else 0
        if given:
            self.lists[this].done = True
            set_pointer(out, self.pin.address)
            self.count_up()
        if fetched:
            set_number(fetched, given)
        return OK if given == count else NO

    def reset(self, this):
        self.lists[this].done = False
        return OK

    def find_pin(self, this, name, out):
        set_pointer(out, 0)
        return PIN_NOT_FOUND

    def filter_info(self, this, out):
        memmove(out, self.name, 256)
        set_pointer(out + 256, self.graph)
        if self.graph:
            call(self.graph, 1)
        return OK

    def join_graph(self, this, graph, name):
        self.graph = graph  # not counted: the graph owns the filter
        text = ctypes.wstring_at(name)[:127] if name else ""
        self.name = text.encode("utf-16-le")[:254].ljust(256, b"\0")
        return OK

    def connect(self, this, peer, offered):
        result = call(peer, 4, self.pin.address, self.media_address)  # ReceiveConnection
        if result & 0x80000000:
            return result
        # Both sides agree on who makes the buffers: here whoever the input pin names.
        try:
            self.receiver = query(peer, IID_MEM_INPUT_PIN, "IMemInputPin")
            self.allocator = made("GetAllocator", lambda out: call(self.receiver, 3, out))
            wanted, granted = (c_int32 * 4)(1, self.size, 1, 0), (c_int32 * 4)()
            check(call(self.allocator, 3, address_of(wanted), address_of(granted)), "SetProperties")
            check(call(self.receiver, 4, self.allocator, 0), "NotifyAllocator")  # may be written to
        except HostError:  # it must not leave a function that others call
            call(peer, 5)  # Disconnect
            self.let_go()
            return FAILED
        self.peer = peer
        call(peer, 1)
        return OK

    def let_go(self):
        held = [one for one in (self.allocator, self.receiver, self.peer) if one]
        self.allocator = self.receiver = self.peer = 0
        for one in held:
            release(one)

    def disconnect(self, this):
        connected = self.peer != 0
        self.let_go()
        return OK if connected else NO

    def connected_to(self, this, out):
        set_pointer(out, self.peer)
        if not self.peer:
            return NOT_CONNECTED
        call(self.peer, 1)
        return OK

    def connection_type(self, this, out):
        memmove(out, bytes(sizeof(MediaType)), sizeof(MediaType))
        if not self.peer:
            return NOT_CONNECTED
        memmove(out, byref(self.media), sizeof(MediaType))
        ole32.CoTaskMemAlloc.restype = c_size_t
        copy = ole32.CoTaskMemAlloc(c_size_t(len(self.header)))  # the caller's from here on
        memmove(copy, self.header, len(self.header))
        set_pointer(out + MediaType.block.offset, copy)
        return OK

    def pin_info(self, this, out):
        set_pointer(out, self.filter.address)
        set_number(out + POINTER_SIZE, OUTPUT)
        memmove(out + POINTER_SIZE + 4, "Out\0".encode("utf-16-le"), 8)
        self.count_up()
        return OK

    def direction(self, this, out):
        set_number(out, OUTPUT)
        return OK

    def send(self, frame):
        """Sends a frame downstream, in a graph that runs, and answers what it has become: an effect changes the frame in the
        buffer that brings it."""
        sample = made("GetBuffer", lambda out: call(self.allocator, 7, out, 0, 0, 0))
        data = made("GetPointer", lambda out: call(sample, 3, out))
        memmove(data, frame, len(frame))
        check(call(sample, 12, len(frame)), "SetActualDataLength")
        check(call(self.receiver, 6, sample), "Receive")
        result = string_at(data, len(frame))
        release(sample)
        return result


class WindowClass(ctypes.Structure):
    _fields_ = [("style", c_uint32), ("procedure", c_size_t), ("extra", c_int32), ("window_extra", c_int32),
                ("instance", c_size_t), ("icon", c_size_t), ("cursor", c_size_t), ("background", c_size_t),
                ("menu", c_size_t), ("name", c_size_t)]


def open_panel(info, effect, parameters):
    """Opens the effect's panel in a window of the host's. A host with a user shows the panel and runs its message loop."""
    for name in ("DefWindowProcW", "CreateWindowExW", "GetParent"):
        getattr(user32, name).restype = c_size_t
    user32.DefWindowProcW.argtypes = [c_size_t] * 4
    user32.CreateWindowExW.argtypes = [c_size_t] * 12
    for name in ("GetParent", "DestroyWindow"):
        getattr(user32, name).argtypes = [c_size_t]

    def procedure(window, message, first, second):
        if message == PANEL_CHANGED:
            # The panel has written the change into the property set; the filter learns of it only now.
            call(effect, 3, parameters.address)
            return 0
        return user32.DefWindowProcW(window, message, first, second)

    callback = signature(4, c_size_t)(procedure)
    kept.append(callback)
    window_class = WindowClass(procedure=ctypes.cast(callback, ctypes.c_void_p).value, name=wide("Host"))
    user32.RegisterClassW(byref(window_class))
    overlapped = 0x00CF0000
    window = user32.CreateWindowExW(0, wide("Host"), wide("Host"), overlapped, 0, 0, 400, 300, 0, 0, 0, 0)

    panel = made("ShowSettingsDialog", lambda out: call(info, 13, 0, window, PANEL_CHANGED, parameters.address, out))
    user32.ShowWindow(c_size_t(panel), 5)  # it comes hidden, at the upper left of the window
    print("Its panel is a child of the host's window:", "yes" if user32.GetParent(panel) == window else "no")

    user32.DestroyWindow(window)  # and the panel with it


def use_effect(factory):
    # What the effect is called in the user's language. From here on the whole library speaks German.
    info = query(factory, IID_EFFECT_INFO, "IEffectInfo")
    length = c_uint32()  # with the terminator
    check(call(info, 7, GERMAN, 0, address_of(length)), "GetEffectName")
    name = ctypes.create_unicode_buffer(length.value)
    check(call(info, 7, GERMAN, address_of(name), address_of(length)), "GetEffectName")
    print("The effect is called", name.value)

    # What it starts with.
    parameters = Parameters()
    check(call(info, 12, parameters.address), "SetDefaults")
    print(f"It starts with {len(parameters.data)} bytes: {struct.unpack('<i', parameters.data)[0]}")

    # The filter, in a graph. It takes MEDIASUBTYPE_RGB32 and changes the frames where they lie.
    source = Source(4, 2)
    filter_ = made("CreateInstance", lambda out: call(factory, 3, 0, address_of(IID_BASE_FILTER), out))
    graph = create(FILTER_GRAPH, IID_GRAPH_BUILDER, "filter graph")
    renderer = create(NULL_RENDERER, IID_BASE_FILTER, "null renderer")
    check(call(graph, 3, source.filter.address, wide("Frames")), "AddFilter")
    check(call(graph, 3, filter_, address_of(name)), "AddFilter")
    check(call(graph, 3, renderer, wide("Nowhere")), "AddFilter")
    first, last = [made("FindPin", lambda out, pin=pin: call(filter_, 11, wide(pin), out)) for pin in ("In", "Out")]
    end = made("FindPin", lambda out: call(renderer, 11, wide("In"), out))
    check(call(graph, 7, source.pin.address, first, source.media_address), "ConnectDirect")
    check(call(graph, 7, last, end, source.media_address), "ConnectDirect")

    # Parameters reach the filter when the host hands them over, from any thread, also while the graph runs.
    effect = query(filter_, IID_EFFECT_FILTER, "IEffectFilter")
    parameters.data = struct.pack("<i", 160)
    check(call(effect, 3, parameters.address), "SetPropertySet")

    control = query(graph, IID_MEDIA_CONTROL, "IMediaControl")
    check(call(control, 7), "Run")
    result = struct.unpack("<8I", source.send(struct.pack("<8I", *[0x404040] * 8)))[0]
    print(f"404040 becomes {result:06X}")
    if result != 0x6B6B6B:
        raise HostError("that should have been 6B6B6B")
    check(call(control, 9), "Stop")

    open_panel(info, effect, parameters)

    # The graph lets go of its filters when it goes, so the host's reference is then the last.
    for held in (control, effect, end, last, first, graph, renderer):
        release(held)
    if release(filter_) or release(info) or source.references:
        raise HostError("somebody still holds a filter or the catalogue object")


def main():
    check(ole32.CoInitialize(None) & 0xFFFFFFFF, "CoInitialize")
    try:
        library = ctypes.WinDLL(sys.argv[1] if len(sys.argv) > 1 else "./VixaVideoFX.dll")
    except OSError as error:
        raise HostError("the library cannot be loaded: is it there, and as wide as this program?") from error
    factory = made("DllGetClassObject", lambda out: library.DllGetClassObject(
        GAMMA_CORRECTION, IID_CLASS_FACTORY, c_size_t(out)) & 0xFFFFFFFF)
    use_effect(factory)
    release(factory)

    # Every reference is released, so the library may go.
    unused = library.DllCanUnloadNow() == OK
    print("The library can be unloaded:", "yes" if unused else "no")
    if not unused:
        return 1
    free = ctypes.WinDLL("kernel32").FreeLibrary
    free(c_size_t(library._handle))
    ole32.CoUninitialize()
    return 0


if __name__ == "__main__":
    try:
        sys.exit(main())
    except HostError as error:
        sys.exit(f"host: {error}")
