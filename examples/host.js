// What host.cpp does, in JavaScript: loads the library, asks an effect what it is, lets it fill a property set with its
// defaults and show its settings panel, sends one frame through it, and takes everything down again.
//
//     node host.js [PATH OF VixaVideoFX.dll]
//
// It needs the package koffi, which calls foreign functions, and a node.exe as wide as the library. A method of a COM object is
// called by its number in the object's table; the numbers are the places of the methods in the C declarations
// (vixavideofx/VixaVideoFX.h, strmif.h). Addresses are plain numbers here; memory that is given away is never freed or moved.
'use strict';

const fs = require('fs');
const koffi = require('koffi');

const pointerSize = koffi.sizeof('void *');
const wordsOf64Bits = 8 / pointerSize; // in the arguments of a function
const E = {
    ok: 0, no: 1, cannotCue: 0x00040268, notImplemented: 0x80004001, noInterface: 0x80004002, failed: 0x80004005,
    unexpected: 0x8000FFFF, notConnected: 0x80040209, pinNotFound: 0x80040216,
};
const german = 1031;
const panelChanged = 0x8000 + 1; // WM_APP + 1

function fail(text) {
    throw new Error(text);
}

function check(result, what) {
    if (result >= 0x80000000)
        fail(`${what}: 0x${result.toString(16).toUpperCase()}`);
}

// Written at once and as they are, whatever standard output is.
const say = (text) => fs.writeSync(1, text + '\n');

// Memory of the host's that others read and write.
const allocate = (size) => {
    const address = Number(koffi.alloc('uint8_t', size));
    at(address, size).forEach((byte, i, bytes) => { bytes[i] = 0; });
    return address;
};
const at = (address, size) => new Uint8Array(koffi.view(BigInt(address), size));
const fields = (address, size) => new DataView(koffi.view(BigInt(address), size));
const number = (address, offset = 0) => fields(address + offset, 4).getUint32(0, true);
const setNumber = (address, value, offset = 0) => fields(address + offset, 4).setUint32(0, value, true);
const pointer = (address) =>
    pointerSize === 4 ? number(address) : Number(fields(address, 8).getBigUint64(0, true));
const setPointer = (address, value) => {
    setNumber(address, value % 0x100000000);
    if (pointerSize === 8)
        setNumber(address, Math.floor(value / 0x100000000), 4);
};
function wide(text) {
    const address = allocate((text.length + 1) * 2);
    at(address, text.length * 2).set(Buffer.from(text, 'utf16le'));
    return address;
}

// Functions take words as wide as a pointer and answer 32 or 64 bits; every one of them is __stdcall.
const signatures = new Map();
function signature(words) {
    if (!signatures.has(words))
        signatures.set(words, koffi.proto('__stdcall', `Method${words}`, 'uintptr_t', Array(words).fill('uintptr_t')));
    return signatures.get(words);
}
const functionOf = (library, name, words) => {
    const found = library.func('__stdcall', name, 'uintptr_t', Array(words).fill('uintptr_t'));
    return (...given) => Number(found(...given));
};
const code = (result) => Number(BigInt(result) & 0xFFFFFFFFn);

const ole32 = koffi.load('ole32.dll');
const user32 = koffi.load('user32.dll');
const parseId = functionOf(ole32, 'CLSIDFromString', 2);
const createInstance = functionOf(ole32, 'CoCreateInstance', 5);
const taskMemory = functionOf(ole32, 'CoTaskMemAlloc', 1);

function id(text) {
    const address = allocate(16);
    check(code(parseId(wide(`{${text}}`), address)), text);
    return address;
}
const streaming = '-0AD4-11CE-B03A-0020AF0BA770';
const iid = {
    unknown: id('00000000-0000-0000-C000-000000000046'), classFactory: id('00000001-0000-0000-C000-000000000046'),
    persist: id('0000010C-0000-0000-C000-000000000046'), mediaFilter: id('56A86899' + streaming),
    baseFilter: id('56A86895' + streaming), pin: id('56A86891' + streaming), enumPins: id('56A86892' + streaming),
    memInputPin: id('56A8689D' + streaming), graphBuilder: id('56A868A9' + streaming),
    mediaControl: id('56A868B1' + streaming), effectInfo: id('194ADE67-AFBF-4A1F-9978-48B05CEFB083'),
    effectFilter: id('A67B871C-0AD5-4088-8975-DC797B6B42D8'),
};
const filterGraph = id('E436EBB3-524F-11CE-9F53-0020AF0BA770');
const nullRenderer = id('C1F400A4-3F08-11D3-9F0B-006008039E37');
const gammaCorrection = id('C79C3183-D7F7-439A-98CC-33906A691708');
const video = id('73646976-0000-0010-8000-00AA00389B71');
const rgb32 = id('E436EB7E-524F-11CE-9F53-0020AF0BA770');
const videoInfo = id('05589F80-C356-11CE-BF01-00AA0055595A');
const same = (first, second) => Buffer.compare(at(first, 16), at(second, 16)) === 0;

// Calls the method at a place of a COM object's table.
function call(object, place, ...given) {
    const method = pointer(pointer(object) + place * pointerSize);
    return code(koffi.call(BigInt(method), signature(given.length + 1), object, ...given));
}
const release = (object) => call(object, 2);
// Has something written to a place of its own, and answers what.
function made(what, write) {
    const out = allocate(pointerSize);
    check(write(out), what);
    return pointer(out);
}
const query = (object, face, what) => made(what, (out) => call(object, 0, face, out));

// An object of the host's own: a pointer to its table. A method is a function, or the number of words that one which nobody
// needs takes off the stack, the object's own among them.
function objectOf(methods) {
    const table = allocate(methods.length * pointerSize);
    methods.forEach((method, place) => {
        const [words, body] = typeof method === 'number' ? [method, () => E.notImplemented] : method;
        const callback = koffi.register((...given) => body(...given.map(Number)), koffi.pointer(signature(words)));
        setPointer(table + place * pointerSize, Number(callback));
    });
    const object = allocate(pointerSize);
    setPointer(object, table);
    return object;
}
function answer(self, asked, out, known, count) {
    const has = known.some((face) => same(face, asked));
    setPointer(out, has ? self : 0);
    if (has)
        count();
    return has ? E.ok : E.noInterface;
}

// The host owns the parameters: a block of bytes that it stores with its project and never looks into. The library keeps no
// reference, so nothing is counted.
let block = Buffer.alloc(0);
const parameters = objectOf([
    [3, (self, asked, out) => answer(self, asked, out, [iid.unknown], () => {})],
    [1, () => 1],
    [1, () => 1],
    [3, (self, buffer, size) => { // GetData
        if (block.length === 0)
            return E.failed;
        at(buffer, block.length).set(block);
        setNumber(size, block.length);
        return E.ok;
    }],
    [3, (self, data, size) => { // SetData
        block = Buffer.from(at(data, size));
        return E.ok;
    }],
]);

// Where the frames come from: the smallest DirectShow filter that a graph takes, with one output pin of one type.
const source = {references: 0, peer: 0, receiver: 0, allocator: 0, graph: 0, name: Buffer.alloc(256), state: 0};
const paused = 1;
const output = 1;
const headerSize = 88; // VIDEOINFOHEADER
const typeSize = pointerSize === 4 ? 72 : 88; // AM_MEDIA_TYPE
const typeBlock = pointerSize === 4 ? 68 : 80; // where its pointer to the format block stands
const header = allocate(headerSize);
const media = allocate(typeSize);
let sampleSize = 0;

function describeFrames(width, height) {
    sampleSize = width * height * 4;
    const info = fields(header, headerSize);
    info.setUint32(48, 40, true); // BITMAPINFOHEADER begins here
    info.setInt32(52, width, true);
    info.setInt32(56, height, true); // bottom-up
    info.setUint16(60, 1, true);
    info.setUint16(62, 32, true);
    info.setUint32(68, sampleSize, true);
    at(media, 16).set(at(video, 16));
    at(media + 16, 16).set(at(rgb32, 16));
    setNumber(media, 1, 32); // samples of a fixed size
    setNumber(media, sampleSize, 40);
    at(media + 44, 16).set(at(videoInfo, 16));
    setNumber(media, headerSize, typeBlock - pointerSize);
    setPointer(media + typeBlock, header);
}

const countUp = () => ++source.references;
const countDown = () => --source.references;
function letGo() {
    for (const held of ['allocator', 'receiver', 'peer']) {
        if (source[held])
            release(source[held]);
        source[held] = 0;
    }
}
// Both sides agree on who makes the buffers: here whoever the input pin names.
function connect(input) {
    let result = call(input, 4, source.pin, media); // ReceiveConnection
    if (result >= 0x80000000)
        return result;
    try {
        source.receiver = query(input, iid.memInputPin, 'IMemInputPin');
        source.allocator = made('GetAllocator', (out) => call(source.receiver, 3, out));
        const [wanted, granted] = [allocate(16), allocate(16)];
        [1, sampleSize, 1, 0].forEach((value, i) => setNumber(wanted, value, i * 4));
        check(call(source.allocator, 3, wanted, granted), 'SetProperties');
        check(call(source.receiver, 4, source.allocator, 0), 'NotifyAllocator'); // may be written to
    } catch (error) { // it must not leave a function that others call
        call(input, 5); // Disconnect
        letGo();
        return E.unexpected;
    }
    source.peer = input;
    call(input, 1);
    return E.ok;
}

source.filter = objectOf([
    [3, (self, asked, out) =>
        answer(self, asked, out, [iid.unknown, iid.persist, iid.mediaFilter, iid.baseFilter], countUp)],
    [1, countUp],
    [1, countDown],
    2, // GetClassID
    [1, () => { // Stop
        source.state = 0;
        return source.allocator ? call(source.allocator, 6) : E.ok; // Decommit
    }],
    [1, () => { // Pause
        source.state = paused;
        return source.allocator ? call(source.allocator, 5) : E.ok; // Commit
    }],
    [1 + wordsOf64Bits, () => { // Run
        source.state = 2;
        return E.ok;
    }],
    [3, (self, wait, out) => { // GetState
        setNumber(out, source.state);
        return source.state === paused ? E.cannotCue : E.ok; // it sends nothing by itself
    }],
    [2, () => E.ok], // SetSyncSource: its frames have no times
    [2, (self, out) => { // GetSyncSource
        setPointer(out, 0);
        return E.ok;
    }],
    [2, (self, out) => { // EnumPins
        setPointer(out, pinList());
        return E.ok;
    }],
    [3, (self, name, out) => { // FindPin
        setPointer(out, 0);
        return E.pinNotFound;
    }],
    [2, (self, out) => { // QueryFilterInfo
        at(out, 256).set(source.name);
        setPointer(out + 256, source.graph);
        if (source.graph)
            call(source.graph, 1);
        return E.ok;
    }],
    [3, (self, graph, name) => { // JoinFilterGraph
        source.graph = graph; // not counted: the graph owns the filter
        source.name.fill(0);
        for (let i = 0; name && i < 254 && (number(name, i) & 0xFFFF); i += 2)
            source.name.writeUInt16LE(number(name, i) & 0xFFFF, i);
        return E.ok;
    }],
    2, // QueryVendorInfo
]);

source.pin = objectOf([
    [3, (self, asked, out) => answer(self, asked, out, [iid.unknown, iid.pin], countUp)],
    [1, countUp],
    [1, countDown],
    [3, (self, input) => connect(input)], // Connect
    3, // ReceiveConnection
    [1, () => { // Disconnect
        const connected = source.peer !== 0;
        letGo();
        return connected ? E.ok : E.no;
    }],
    [2, (self, out) => { // ConnectedTo
        setPointer(out, source.peer);
        if (source.peer)
            call(source.peer, 1);
        return source.peer ? E.ok : E.notConnected;
    }],
    [2, (self, out) => { // ConnectionMediaType
        at(out, typeSize).fill(0);
        if (!source.peer)
            return E.notConnected;
        at(out, typeSize).set(at(media, typeSize));
        const copy = taskMemory(headerSize); // the caller's from here on
        at(copy, headerSize).set(at(header, headerSize));
        setPointer(out + typeBlock, copy);
        return E.ok;
    }],
    [2, (self, out) => { // QueryPinInfo
        setPointer(out, source.filter);
        setNumber(out, output, pointerSize);
        at(out + pointerSize + 4, 8).set(Buffer.from('Out\0', 'utf16le'));
        countUp();
        return E.ok;
    }],
    [2, (self, out) => { // QueryDirection
        setNumber(out, output);
        return E.ok;
    }],
    2, // QueryId
    [2, (self, offered) => (same(offered + 16, rgb32) ? E.ok : E.no)], // QueryAccept
    2, 3, // EnumMediaTypes, QueryInternalConnections: connected with its type, nobody needs to look for one
    1, 1, 1, 1 + 3 * wordsOf64Bits, // EndOfStream, BeginFlush, EndFlush, NewSegment
]);

// The lists of the one pin that are being read share a table.
const lists = new Map();
const listTable = pointer(objectOf([
    [3, (self, asked, out) => answer(self, asked, out, [iid.unknown, iid.enumPins], () => ++lists.get(self).references)],
    [1, (self) => ++lists.get(self).references],
    [1, (self) => {
        const left = --lists.get(self).references;
        if (left === 0) {
            lists.delete(self);
            countDown();
        }
        return left;
    }],
    [4, (self, count, out, fetched) => { // Next
        const given = count > 0 && !lists.get(self).done ? 1 : 0;
        if (given) {
            lists.get(self).done = true;
            setPointer(out, source.pin);
            countUp();
        }
        if (fetched)
            setNumber(fetched, given);
        return given === count ? E.ok : E.no;
    }],
    2, // Skip
    [1, (self) => { // Reset
        lists.get(self).done = false;
        return E.ok;
    }],
    2, // Clone
]));
function pinList() {
    const list = allocate(pointerSize);
    setPointer(list, listTable);
    lists.set(list, {references: 1, done: false});
    countUp();
    return list;
}

// Sends a frame downstream, in a graph that runs, and answers what it has become: an effect changes the frame in the buffer
// that brings it.
function send(frame) {
    const sample = made('GetBuffer', (out) => call(source.allocator, 7, out, 0, 0, 0));
    const bytes = made('GetPointer', (out) => call(sample, 3, out));
    at(bytes, frame.byteLength).set(new Uint8Array(frame.buffer));
    check(call(sample, 12, frame.byteLength), 'SetActualDataLength');
    check(call(source.receiver, 6, sample), 'Receive');
    const result = new Uint32Array(at(bytes, frame.byteLength).slice().buffer);
    release(sample);
    return result;
}

// Opens the effect's panel in a window of the host's. A host with a user shows the panel and runs its message loop.
function openPanel(info, effect) {
    const defaultProcedure = functionOf(user32, 'DefWindowProcW', 4);
    const procedure = koffi.register((...given) => {
        const [window, message, wParam, lParam] = given.map(Number);
        if (message !== panelChanged)
            return defaultProcedure(window, message, wParam, lParam);
        // The panel has written the change into the property set; the filter learns of it only now.
        call(effect, 3, parameters);
        return 0;
    }, koffi.pointer(signature(4)));
    const windowClass = allocate(pointerSize === 4 ? 40 : 72);
    setPointer(windowClass + (pointerSize === 4 ? 4 : 8), Number(procedure));
    setPointer(windowClass + (pointerSize === 4 ? 36 : 64), wide('Host'));
    functionOf(user32, 'RegisterClassW', 1)(windowClass);
    const overlapped = 0x00CF0000;
    const window = functionOf(user32, 'CreateWindowExW', 12)(0, wide('Host'), wide('Host'), overlapped, 0, 0, 400, 300,
        0, 0, 0, 0);

    const panel = made('ShowSettingsDialog', (out) => call(info, 13, 0, window, panelChanged, parameters, out));
    functionOf(user32, 'ShowWindow', 2)(panel, 5); // it comes hidden, at the upper left of the window
    const inside = functionOf(user32, 'GetParent', 1)(panel) === window;
    say(`Its panel is a child of the host's window: ${inside ? 'yes' : 'no'}`);

    functionOf(user32, 'DestroyWindow', 1)(window); // and the panel with it
}

function useEffect(factory) {
    // What the effect is called in the user's language. From here on the whole library speaks German.
    const info = query(factory, iid.effectInfo, 'IEffectInfo');
    const length = allocate(4); // with the terminator
    check(call(info, 7, german, 0, length), 'GetEffectName');
    const name = allocate(number(length) * 2);
    check(call(info, 7, german, name, length), 'GetEffectName');
    say(`The effect is called ${Buffer.from(at(name, (number(length) - 1) * 2)).toString('utf16le')}`);

    // What it starts with.
    check(call(info, 12, parameters), 'SetDefaults');
    say(`It starts with ${block.length} bytes: ${block.readInt32LE(0)}`);

    // The filter, in a graph. It takes MEDIASUBTYPE_RGB32 and changes the frames where they lie.
    describeFrames(4, 2);
    const filter = made('CreateInstance', (out) => call(factory, 3, 0, iid.baseFilter, out));
    const graph = made('filter graph', (out) => code(createInstance(filterGraph, 0, 1, iid.graphBuilder, out)));
    const renderer = made('null renderer', (out) => code(createInstance(nullRenderer, 0, 1, iid.baseFilter, out)));
    check(call(graph, 3, source.filter, wide('Frames')), 'AddFilter');
    check(call(graph, 3, filter, name), 'AddFilter');
    check(call(graph, 3, renderer, wide('Nowhere')), 'AddFilter');
    const input = made('FindPin', (out) => call(filter, 11, wide('In'), out));
    const out = made('FindPin', (place) => call(filter, 11, wide('Out'), place));
    const end = made('FindPin', (place) => call(renderer, 11, wide('In'), place));
    check(call(graph, 7, source.pin, input, media), 'ConnectDirect');
    check(call(graph, 7, out, end, media), 'ConnectDirect');

    // Parameters reach the filter when the host hands them over, from any thread, also while the graph runs.
    const effect = query(filter, iid.effectFilter, 'IEffectFilter');
    block.writeInt32LE(160, 0);
    check(call(effect, 3, parameters), 'SetPropertySet');

    const control = query(graph, iid.mediaControl, 'IMediaControl');
    check(call(control, 7), 'Run');
    const result = send(new Uint32Array(4 * 2).fill(0x404040))[0];
    say(`404040 becomes ${result.toString(16).toUpperCase()}`);
    if (result !== 0x6B6B6B)
        fail('that should have been 6B6B6B');
    check(call(control, 9), 'Stop');

    openPanel(info, effect);

    // The graph lets go of its filters when it goes, so the host's reference is then the last.
    [control, effect, end, out, input, graph, renderer].forEach(release);
    if (release(filter) !== 0 || release(info) !== 0 || source.references !== 0)
        fail('somebody still holds a filter or the catalogue object');
}

function load(path) {
    try {
        return koffi.load(path);
    } catch (error) {
        return fail('the library cannot be loaded: is it there, and as wide as this program?');
    }
}

try {
    check(code(functionOf(ole32, 'CoInitialize', 1)(0)), 'CoInitialize');
    const library = load(process.argv[2] || 'VixaVideoFX.dll');
    const getClassObject = functionOf(library, 'DllGetClassObject', 3);
    const canUnloadNow = functionOf(library, 'DllCanUnloadNow', 0);

    const factory = made('DllGetClassObject', (out) => code(getClassObject(gammaCorrection, iid.classFactory, out)));
    useEffect(factory);
    release(factory);

    // Every reference is released, so the library may go.
    const unused = code(canUnloadNow()) === E.ok;
    say(`The library can be unloaded: ${unused ? 'yes' : 'no'}`);
    if (unused)
        library.unload();
    functionOf(ole32, 'CoUninitialize', 0)();
    process.exitCode = unused ? 0 : 1;
} catch (error) {
    fs.writeSync(2, `host: ${error.message}\n`);
    process.exitCode = 1;
}
