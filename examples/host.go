// What host.cpp does, in Go: loads the library, asks an effect what it is, lets it fill a property set with its defaults
// and show its settings panel, sends one frame through it, and takes everything down again.
//
//	GOOS=windows GOARCH=386 CGO_ENABLED=0 go build host.go     (amd64 for the 64-bit library)
//	host [PATH OF VixaVideoFX.dll]
//
// It needs Go's standard library and nothing else. A method of a COM object is called by its number in the object's table;
// the numbers are the places of the methods in the C declarations (vixavideofx/VixaVideoFX.h, strmif.h). The objects that
// the host gives away are package variables: those neither move nor go while somebody has their address.
package main

import (
	"fmt"
	"os"
	"runtime"
	"sync/atomic"
	"syscall"
	"unsafe"
)

const (
	ok               = 0
	no               = 1
	notImplemented   = 0x80004001
	noInterface      = 0x80004002
	failed           = 0x80004005
	unexpected       = 0x8000FFFF
	notConnected     = 0x80040209
	pinNotFound      = 0x80040216
	cannotCue        = 0x00040268
	statePaused      = 1
	directionOutput  = 1
	inProcess        = 1
	overlappedWindow = 0x00CF0000
	show             = 5
	panelChanged     = 0x8000 + 1 // WM_APP + 1
	german           = 1031
)

func fail(text string) {
	fmt.Fprintln(os.Stderr, "host:", text)
	os.Exit(1)
}

func check(result uintptr, what string) {
	if int32(result) < 0 {
		fail(fmt.Sprintf("%s: 0x%08X", what, uint32(result)))
	}
}

type guid [16]byte

var (
	ole32  = syscall.NewLazyDLL("ole32.dll")
	user32 = syscall.NewLazyDLL("user32.dll")

	iidUnknown      = id("{00000000-0000-0000-C000-000000000046}")
	iidClassFactory = id("{00000001-0000-0000-C000-000000000046}")
	iidPersist      = id("{0000010C-0000-0000-C000-000000000046}")
	iidMediaFilter  = id("{56A86899-0AD4-11CE-B03A-0020AF0BA770}")
	iidBaseFilter   = id("{56A86895-0AD4-11CE-B03A-0020AF0BA770}")
	iidPin          = id("{56A86891-0AD4-11CE-B03A-0020AF0BA770}")
	iidEnumPins     = id("{56A86892-0AD4-11CE-B03A-0020AF0BA770}")
	iidMemInputPin  = id("{56A8689D-0AD4-11CE-B03A-0020AF0BA770}")
	iidGraphBuilder = id("{56A868A9-0AD4-11CE-B03A-0020AF0BA770}")
	iidMediaControl = id("{56A868B1-0AD4-11CE-B03A-0020AF0BA770}")
	iidEffectInfo   = id("{194ADE67-AFBF-4A1F-9978-48B05CEFB083}")
	iidEffectFilter = id("{A67B871C-0AD5-4088-8975-DC797B6B42D8}")
	filterGraph     = id("{E436EBB3-524F-11CE-9F53-0020AF0BA770}")
	nullRenderer    = id("{C1F400A4-3F08-11D3-9F0B-006008039E37}")
	gammaCorrection = id("{C79C3183-D7F7-439A-98CC-33906A691708}")
	video           = id("{73646976-0000-0010-8000-00AA00389B71}")
	rgb32           = id("{E436EB7E-524F-11CE-9F53-0020AF0BA770}")
	videoInfo       = id("{05589F80-C356-11CE-BF01-00AA0055595A}")
)

func wide(text string) uintptr {
	pointer, err := syscall.UTF16PtrFromString(text)
	if err != nil {
		fail(err.Error())
	}
	texts = append(texts, pointer)
	return uintptr(unsafe.Pointer(pointer))
}

var texts []*uint16 // whose addresses were given away

func id(text string) *guid {
	var value guid
	result, _, _ := ole32.NewProc("CLSIDFromString").Call(wide(text), uintptr(unsafe.Pointer(&value)))
	check(result, text)
	return &value
}

// A COM object by its address.
type object uintptr

// call calls the method at a place of the object's table.
//
//go:uintptrescapes
func (o object) call(place int, arguments ...uintptr) uintptr {
	table := **(***[32]uintptr)(unsafe.Pointer(&o))
	result, _, _ := syscall.SyscallN(table[place], append([]uintptr{uintptr(o)}, arguments...)...)
	return result
}

func (o object) query(iid *guid, what string) (face object) {
	check(o.call(0, uintptr(unsafe.Pointer(iid)), uintptr(unsafe.Pointer(&face))), what)
	return face
}

func (o object) release() uint32 { return uint32(o.call(2)) }

func create(class, iid *guid, what string) (made object) {
	result, _, _ := ole32.NewProc("CoCreateInstance").Call(uintptr(unsafe.Pointer(class)), 0, inProcess,
		uintptr(unsafe.Pointer(iid)), uintptr(unsafe.Pointer(&made)))
	check(result, what)
	return made
}

// An object of the host's own: its address is that of a pointer to its table.
type face struct{ table *[18]uintptr }

func (f *face) address() uintptr { return uintptr(unsafe.Pointer(f)) }

func tableOf(methods ...interface{}) *[18]uintptr {
	var table [18]uintptr
	for i, method := range methods {
		if words, refused := method.(int); refused {
			method = refusal(words)
		}
		table[i] = syscall.NewCallback(method)
	}
	return &table
}

// refusal makes a method that nobody needs. A 32-bit method takes its arguments off the stack, so it must know how many
// words they are, the object's own among them.
func refusal(words int) interface{} {
	switch words {
	case 1:
		return func(_ uintptr) uintptr { return notImplemented }
	case 2:
		return func(_, _ uintptr) uintptr { return notImplemented }
	case 3:
		return func(_, _, _ uintptr) uintptr { return notImplemented }
	case 4:
		return func(_, _, _, _ uintptr) uintptr { return notImplemented }
	default:
		return func(_, _, _, _, _, _, _ uintptr) uintptr { return notImplemented }
	}
}

// is32 tells that a number of 64 bits takes two words.
const is32 = unsafe.Sizeof(uintptr(0)) == 4

func answer(self uintptr, asked *guid, out *uintptr, count *int32, known ...*guid) uintptr {
	for _, iid := range known {
		if *asked == *iid {
			*out = self
			atomic.AddInt32(count, 1)
			return ok
		}
	}
	*out = 0
	return noInterface
}

// The host owns the parameters: a block of bytes that it stores with its project and never looks into. The library keeps
// no reference, so nothing is counted.
var (
	parameters    face
	parameterData []byte
)

func makeParameters() {
	counted := func(this uintptr) uintptr { return 1 }
	parameters.table = tableOf(
		func(this uintptr, iid *guid, out *uintptr) uintptr {
			var uncounted int32
			return answer(this, iid, out, &uncounted, iidUnknown)
		},
		counted, counted,
		func(this uintptr, buffer *byte, size *int32) uintptr { // GetData
			if len(parameterData) == 0 {
				return failed
			}
			copy(unsafe.Slice(buffer, len(parameterData)), parameterData)
			*size = int32(len(parameterData))
			return ok
		},
		func(this uintptr, data *byte, size uintptr) uintptr { // SetData
			parameterData = append([]byte(nil), unsafe.Slice(data, int(size))...)
			return ok
		})
}

type mediaType struct {
	major, sub guid
	fixedSize  int32
	temporal   int32
	sampleSize uint32
	format     guid
	unknown    uintptr
	blockSize  uint32
	block      uintptr
}

type videoInfoHeader struct {
	source, target      [4]int32
	bitRate, errorRate  uint32
	averageTime         int64
	headerSize          uint32
	width, height       int32 // a positive height: bottom-up
	planes, bits        uint16
	compression, bytes  uint32
	perMeterX, perMeter int32
	used, important     uint32
}

// Where the frames come from: the smallest DirectShow filter that a graph takes, with one output pin of one type.
var source struct {
	filter, pin face
	references  int32 // of the filter and its pin
	header      videoInfoHeader
	media       mediaType
	peer        object // the input pin that it is connected to
	receiver    object
	allocator   object
	graph       uintptr // not counted: the graph owns the filter
	name        [128]uint16
	state       uint32
}

// The lists of the one pin that are being read, by their address.
var lists = map[uintptr]*list{}

type list struct {
	face
	references int32
	done       bool
}

var listTable *[18]uintptr

func countUp(this uintptr) uintptr   { return uintptr(atomic.AddInt32(&source.references, 1)) }
func countDown(this uintptr) uintptr { return uintptr(atomic.AddInt32(&source.references, -1)) }

func makeSource(width, height int32) {
	size := uint32(width * height * 4)
	source.header = videoInfoHeader{headerSize: 40, width: width, height: height, planes: 1, bits: 32, bytes: size}
	source.media = mediaType{major: *video, sub: *rgb32, fixedSize: 1, sampleSize: size, format: *videoInfo,
		blockSize: uint32(unsafe.Sizeof(source.header)), block: uintptr(unsafe.Pointer(&source.header))}

	var run interface{} = func(this, start uintptr) uintptr { return ok }
	segment := 4
	if is32 {
		run = func(this, low, high uintptr) uintptr { return ok }
		segment = 7
	}
	source.filter.table = tableOf(
		func(this uintptr, iid *guid, out *uintptr) uintptr {
			return answer(this, iid, out, &source.references, iidUnknown, iidPersist, iidMediaFilter, iidBaseFilter)
		},
		countUp, countDown,
		2, // GetClassID
		func(this uintptr) uintptr { // Stop
			source.state = 0
			if source.allocator == 0 {
				return ok
			}
			return source.allocator.call(6) // Decommit
		},
		func(this uintptr) uintptr { // Pause
			source.state = statePaused
			if source.allocator == 0 {
				return ok
			}
			return source.allocator.call(5) // Commit
		},
		run,
		func(this, wait uintptr, out *uint32) uintptr { // GetState
			*out = source.state
			if source.state == statePaused {
				return cannotCue // it sends nothing by itself
			}
			return ok
		},
		func(this, clock uintptr) uintptr { return ok }, // SetSyncSource: its frames have no times
		func(this uintptr, out *uintptr) uintptr { // GetSyncSource
			*out = 0
			return ok
		},
		func(this uintptr, out *uintptr) uintptr { // EnumPins
			made := &list{face: face{listTable}, references: 1}
			lists[made.address()] = made
			countUp(this)
			*out = made.address()
			return ok
		},
		func(this, name uintptr, out *uintptr) uintptr { // FindPin
			*out = 0
			return pinNotFound
		},
		func(this uintptr, out *struct { // QueryFilterInfo
			name  [128]uint16
			graph uintptr
		}) uintptr {
			out.name, out.graph = source.name, source.graph
			if source.graph != 0 {
				object(source.graph).call(1)
			}
			return ok
		},
		func(this, graph uintptr, name *[128]uint16) uintptr { // JoinFilterGraph
			source.graph = graph
			source.name = [128]uint16{}
			for i := 0; name != nil && i < 127 && name[i] != 0; i++ {
				source.name[i] = name[i]
			}
			return ok
		},
		2) // QueryVendorInfo

	source.pin.table = tableOf(
		func(this uintptr, iid *guid, out *uintptr) uintptr {
			return answer(this, iid, out, &source.references, iidUnknown, iidPin)
		},
		countUp, countDown,
		func(this, input, offered uintptr) uintptr { return connect(object(input)) }, // Connect
		3, // ReceiveConnection
		func(this uintptr) uintptr { // Disconnect
			if source.peer == 0 {
				return no
			}
			letGo()
			return ok
		},
		func(this uintptr, out *uintptr) uintptr { // ConnectedTo
			*out = uintptr(source.peer)
			if source.peer == 0 {
				return notConnected
			}
			source.peer.call(1)
			return ok
		},
		func(this uintptr, out *mediaType) uintptr { // ConnectionMediaType
			*out = mediaType{}
			if source.peer == 0 {
				return notConnected
			}
			block, _, _ := ole32.NewProc("CoTaskMemAlloc").Call(unsafe.Sizeof(source.header)) // the caller's from here on
			*out = source.media
			out.block = block
			**(**videoInfoHeader)(unsafe.Pointer(&block)) = source.header
			return ok
		},
		func(this uintptr, out *struct { // QueryPinInfo
			filter    uintptr
			direction int32
			name      [128]uint16
		}) uintptr {
			out.filter, out.direction = source.filter.address(), directionOutput
			copy(out.name[:], []uint16{'O', 'u', 't', 0})
			countUp(this)
			return ok
		},
		func(this uintptr, out *int32) uintptr { // QueryDirection
			*out = directionOutput
			return ok
		},
		2, // QueryId
		func(this uintptr, offered *mediaType) uintptr { // QueryAccept
			if offered.sub == *rgb32 {
				return ok
			}
			return no
		},
		2, 3, // EnumMediaTypes, QueryInternalConnections: connected with its type, nobody needs to look for one
		1, 1, 1, segment) // EndOfStream, BeginFlush, EndFlush, NewSegment

	listTable = tableOf(
		func(this uintptr, iid *guid, out *uintptr) uintptr {
			return answer(this, iid, out, &lists[this].references, iidUnknown, iidEnumPins)
		},
		func(this uintptr) uintptr {
			lists[this].references++
			return uintptr(lists[this].references)
		},
		func(this uintptr) uintptr {
			lists[this].references--
			left := lists[this].references
			if left == 0 {
				delete(lists, this)
				countDown(this)
			}
			return uintptr(left)
		},
		func(this, count uintptr, out *uintptr, fetched *uint32) uintptr { // Next
			var given uint32
			if count > 0 && !lists[this].done {
				lists[this].done = true
				given = 1
				*out = source.pin.address()
				countUp(this)
			}
			if fetched != nil {
				*fetched = given
			}
			if uintptr(given) == count {
				return ok
			}
			return no
		},
		2, // Skip
		func(this uintptr) uintptr { // Reset
			lists[this].done = false
			return ok
		},
		2) // Clone
}

// connect does the output pin's part: both sides agree on who makes the buffers, here whoever the input pin names.
func connect(input object) uintptr {
	media := uintptr(unsafe.Pointer(&source.media))
	result := input.call(4, source.pin.address(), media) // ReceiveConnection
	if int32(result) < 0 {
		return result
	}
	wanted, granted := [4]int32{1, int32(source.media.sampleSize), 1, 0}, [4]int32{}
	result = input.call(0, uintptr(unsafe.Pointer(iidMemInputPin)), uintptr(unsafe.Pointer(&source.receiver)))
	if int32(result) >= 0 {
		result = source.receiver.call(3, uintptr(unsafe.Pointer(&source.allocator))) // GetAllocator
	}
	if int32(result) >= 0 {
		result = source.allocator.call(3, uintptr(unsafe.Pointer(&wanted)), uintptr(unsafe.Pointer(&granted)))
	}
	if int32(result) >= 0 {
		result = source.receiver.call(4, uintptr(source.allocator), 0) // NotifyAllocator: may be written to
	}
	if int32(result) < 0 {
		input.call(5) // Disconnect
		letGo()
		return result
	}
	source.peer = input
	input.call(1)
	return ok
}

func letGo() {
	for _, held := range []*object{&source.allocator, &source.receiver, &source.peer} {
		if *held != 0 {
			held.release()
		}
		*held = 0
	}
}

// send sends a frame downstream, in a graph that runs, and takes back what it has become: an effect changes the frame in
// the buffer that brings it.
func send(frame []uint32) {
	var sample object
	var bytes *uint32
	check(source.allocator.call(7, uintptr(unsafe.Pointer(&sample)), 0, 0, 0), "GetBuffer")
	check(sample.call(3, uintptr(unsafe.Pointer(&bytes))), "GetPointer")
	copy(unsafe.Slice(bytes, len(frame)), frame)
	check(sample.call(12, uintptr(len(frame)*4)), "SetActualDataLength")
	check(source.receiver.call(6, uintptr(sample)), "Receive")
	copy(frame, unsafe.Slice(bytes, len(frame)))
	sample.release()
}

func yesOrNo(yes bool) string {
	if yes {
		return "yes"
	}
	return "no"
}

type windowClass struct {
	style              uint32
	procedure          uintptr
	extra, windowExtra int32
	instance           uintptr
	icon, cursor       uintptr
	background         uintptr
	menu, name         uintptr
}

// openPanel opens the effect's panel in a window of the host's. A host with a user shows the panel and runs its message
// loop, on this thread.
func openPanel(info, effect object) {
	procedure := syscall.NewCallback(func(window uintptr, message uint32, wParam, lParam uintptr) uintptr {
		if message == panelChanged {
			// The panel has written the change into the property set; the filter learns of it only now.
			effect.call(3, parameters.address())
			return 0
		}
		result, _, _ := user32.NewProc("DefWindowProcW").Call(window, uintptr(message), wParam, lParam)
		return result
	})
	class := windowClass{procedure: procedure, name: wide("Host")}
	user32.NewProc("RegisterClassW").Call(uintptr(unsafe.Pointer(&class)))
	window, _, _ := user32.NewProc("CreateWindowExW").Call(0, wide("Host"), wide("Host"), overlappedWindow, 0, 0, 400, 300,
		0, 0, 0, 0)

	var panel uintptr
	check(info.call(13, 0, window, panelChanged, parameters.address(), uintptr(unsafe.Pointer(&panel))),
		"ShowSettingsDialog")
	user32.NewProc("ShowWindow").Call(panel, show) // it comes hidden, at the upper left of the window
	parent, _, _ := user32.NewProc("GetParent").Call(panel)
	fmt.Println("Its panel is a child of the host's window:", yesOrNo(parent == window))

	user32.NewProc("DestroyWindow").Call(window) // and the panel with it
}

func useEffect(factory object) {
	// What the effect is called in the user's language. From here on the whole library speaks German.
	info := factory.query(iidEffectInfo, "IEffectInfo")
	var length uint32 // with the terminator
	check(info.call(7, german, 0, uintptr(unsafe.Pointer(&length))), "GetEffectName")
	name := make([]uint16, length)
	check(info.call(7, german, uintptr(unsafe.Pointer(&name[0])), uintptr(unsafe.Pointer(&length))), "GetEffectName")
	fmt.Println("The effect is called", syscall.UTF16ToString(name))

	// What it starts with.
	makeParameters()
	check(info.call(12, parameters.address()), "SetDefaults")
	gamma := *(*int32)(unsafe.Pointer(&parameterData[0]))
	fmt.Printf("It starts with %d bytes: %d\n", len(parameterData), gamma)

	// The filter, in a graph. It takes MEDIASUBTYPE_RGB32 and changes the frames where they lie.
	makeSource(4, 2)
	media := uintptr(unsafe.Pointer(&source.media))
	var filter, in, out, end object
	check(factory.call(3, 0, uintptr(unsafe.Pointer(iidBaseFilter)), uintptr(unsafe.Pointer(&filter))), "CreateInstance")
	graph := create(filterGraph, iidGraphBuilder, "filter graph")
	renderer := create(nullRenderer, iidBaseFilter, "null renderer")
	check(graph.call(3, source.filter.address(), wide("Frames")), "AddFilter")
	check(graph.call(3, uintptr(filter), uintptr(unsafe.Pointer(&name[0]))), "AddFilter")
	check(graph.call(3, uintptr(renderer), wide("Nowhere")), "AddFilter")
	check(filter.call(11, wide("In"), uintptr(unsafe.Pointer(&in))), "FindPin")
	check(filter.call(11, wide("Out"), uintptr(unsafe.Pointer(&out))), "FindPin")
	check(renderer.call(11, wide("In"), uintptr(unsafe.Pointer(&end))), "FindPin")
	check(graph.call(7, source.pin.address(), uintptr(in), media), "ConnectDirect")
	check(graph.call(7, uintptr(out), uintptr(end), media), "ConnectDirect")

	// Parameters reach the filter when the host hands them over, from any thread, also while the graph runs.
	effect := filter.query(iidEffectFilter, "IEffectFilter")
	*(*int32)(unsafe.Pointer(&parameterData[0])) = 160
	check(effect.call(3, parameters.address()), "SetPropertySet")

	control := graph.query(iidMediaControl, "IMediaControl")
	check(control.call(7), "Run")
	frame := make([]uint32, 4*2)
	for i := range frame {
		frame[i] = 0x404040
	}
	send(frame)
	fmt.Printf("404040 becomes %06X\n", frame[0])
	if frame[0] != 0x6B6B6B {
		fail("that should have been 6B6B6B")
	}
	check(control.call(9), "Stop")

	openPanel(info, effect)

	// The graph lets go of its filters when it goes, so the host's reference is then the last.
	for _, held := range []object{control, effect, end, out, in, graph, renderer} {
		held.release()
	}
	if filter.release() != 0 || info.release() != 0 || source.references != 0 {
		fail("somebody still holds a filter or the catalogue object")
	}
}

func main() {
	runtime.LockOSThread() // apartments, and windows, belong to threads
	result, _, _ := ole32.NewProc("CoInitialize").Call(0)
	check(result, "CoInitialize")
	path := "VixaVideoFX.dll"
	if len(os.Args) > 1 {
		path = os.Args[1]
	}
	library, err := syscall.LoadLibrary(path)
	if err != nil {
		fail("the library cannot be loaded: is it there, and as wide as this program?")
	}
	getClassObject, missing := syscall.GetProcAddress(library, "DllGetClassObject")
	canUnloadNow, alsoMissing := syscall.GetProcAddress(library, "DllCanUnloadNow")
	if missing != nil || alsoMissing != nil {
		fail("that is no library of effects")
	}

	var factory object
	result, _, _ = syscall.SyscallN(getClassObject, uintptr(unsafe.Pointer(gammaCorrection)),
		uintptr(unsafe.Pointer(iidClassFactory)), uintptr(unsafe.Pointer(&factory)))
	check(result, "DllGetClassObject")
	useEffect(factory)
	factory.release()

	// Every reference is released, so the library may go.
	result, _, _ = syscall.SyscallN(canUnloadNow)
	fmt.Println("The library can be unloaded:", yesOrNo(result == ok))
	if result != ok {
		os.Exit(1)
	}
	syscall.FreeLibrary(library)
	ole32.NewProc("CoUninitialize").Call()
}
