// What host.cpp does, in C#: loads the library, asks an effect what it is, lets it fill a property set with its defaults and
// show its settings panel, sends one frame through it, and takes everything down again.
//
//     csc /platform:x86 host.cs      (x64 for the 64-bit library; a project needs <PlatformTarget> the same)
//     host [PATH OF VixaVideoFX.dll]
//
// It needs C# 6, .NET Framework 4.5 or .NET 6 for Windows, and no package. Every interface is declared with its methods in their
// order, because that is how they are called; an interface that derives from another repeats the other's methods. [PreserveSig]
// leaves result codes to Check. The runtime counts references when its garbage collector finds time, so whatever is to be gone
// at once is released by hand.
using System;
using System.Runtime.InteropServices;

[StructLayout(LayoutKind.Sequential)]
struct MediaType
{
    public Guid Major, Sub;
    public int FixedSizeSamples, TemporalCompression;
    public int SampleSize;
    public Guid Format;
    public IntPtr Unknown;
    public int BlockSize;
    public IntPtr Block;
}

[StructLayout(LayoutKind.Sequential)]
struct VideoInfoHeader
{
    public int SourceLeft, SourceTop, SourceRight, SourceBottom, TargetLeft, TargetTop, TargetRight, TargetBottom;
    public int BitRate, BitErrorRate;
    public long AverageTimePerFrame;
    public int HeaderSize, Width, Height; // a positive height: bottom-up
    public short Planes, BitCount;
    public int Compression, ImageSize, PerMeterX, PerMeterY, ColoursUsed, ColoursImportant;
}

[StructLayout(LayoutKind.Sequential)]
struct AllocatorProperties
{
    public int Count, Size, Alignment, Prefix;
}

[StructLayout(LayoutKind.Sequential, CharSet = CharSet.Unicode)]
struct FilterInfo
{
    [MarshalAs(UnmanagedType.ByValTStr, SizeConst = 128)] public string Name;
    public IntPtr Graph;
}

[StructLayout(LayoutKind.Sequential, CharSet = CharSet.Unicode)]
struct PinInfo
{
    public IntPtr Filter;
    public int Direction;
    [MarshalAs(UnmanagedType.ByValTStr, SizeConst = 128)] public string Name;
}

// The library's interfaces.
[ComImport, Guid("194ADE67-AFBF-4A1F-9978-48B05CEFB083"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
interface IEffectInfo
{
    [PreserveSig] int GetTypeCode(out uint code);
    [PreserveSig] int GetGroupId(out uint group);
    [PreserveSig] int GetGroupName(uint ignored, char[] buffer, ref uint length);
    [PreserveSig] int GetSubtypeCode(out uint code);
    // An array may be null, which a "ref char" may not.
    [PreserveSig] int GetEffectName(uint language, [Out] char[] buffer, ref uint length);
    [PreserveSig] int GetIcon([Out] byte[] buffer, ref uint size);
    [PreserveSig] int GetSecondBitmap([Out] byte[] buffer, ref uint size, out uint value);
    [PreserveSig] int GetPropertySetKind(out uint kind);
    [PreserveSig] int GetPropertySetInfo([MarshalAs(UnmanagedType.IUnknown)] out object info);
    [PreserveSig] int SetDefaults(IntPtr propertySet);
    [PreserveSig] int ShowSettingsDialog(uint ignored, IntPtr parent, uint notifyMessage, IntPtr propertySet, out IntPtr window);
    [PreserveSig] int GetSortKey(out uint key);
    [PreserveSig] int GetVersion(out uint version);
}

[ComImport, Guid("A67B871C-0AD5-4088-8975-DC797B6B42D8"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
interface IEffectFilter
{
    [PreserveSig] int SetPropertySet(IntPtr propertySet);
    [PreserveSig] int SetDuration(long duration);
}

// The library never asks a property set for an interface, it takes the pointer for this one. So the identifier is the host's own,
// and the pointer that is given away must be that of this interface: see Parameters.Address.
[ComVisible(true), Guid("5F1B6C0E-9D2A-4C57-8E43-2B7A90D1C6F5"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
public interface IDataPropertySet
{
    [PreserveSig] int GetData(IntPtr buffer, out int size);
    [PreserveSig] int SetData(IntPtr data, int size);
}

// The platform's.
[ComImport, Guid("00000001-0000-0000-C000-000000000046"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
interface IClassFactory
{
    [PreserveSig] int CreateInstance(IntPtr outer, ref Guid iid, [MarshalAs(UnmanagedType.IUnknown)] out object made);
    [PreserveSig] int LockServer(bool locked);
}

[ComImport, Guid("56A86895-0AD4-11CE-B03A-0020AF0BA770"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
interface IBaseFilter
{
    [PreserveSig] int GetClassID(out Guid id);
    [PreserveSig] int Stop();
    [PreserveSig] int Pause();
    [PreserveSig] int Run(long start);
    [PreserveSig] int GetState(int milliseconds, out int state);
    [PreserveSig] int SetSyncSource(IntPtr clock);
    [PreserveSig] int GetSyncSource(out IntPtr clock);
    [PreserveSig] int EnumPins(out IEnumPins pins);
    [PreserveSig] int FindPin([MarshalAs(UnmanagedType.LPWStr)] string id, out IPin pin);
    [PreserveSig] int QueryFilterInfo(out FilterInfo info);
    [PreserveSig] int JoinFilterGraph(IntPtr graph, [MarshalAs(UnmanagedType.LPWStr)] string name);
    [PreserveSig] int QueryVendorInfo(out IntPtr info);
}

[ComImport, Guid("56A86891-0AD4-11CE-B03A-0020AF0BA770"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
interface IPin
{
    [PreserveSig] int Connect(IPin receiver, IntPtr type);
    [PreserveSig] int ReceiveConnection(IPin connector, ref MediaType type);
    [PreserveSig] int Disconnect();
    [PreserveSig] int ConnectedTo(out IPin pin);
    [PreserveSig] int ConnectionMediaType(out MediaType type);
    [PreserveSig] int QueryPinInfo(out PinInfo info);
    [PreserveSig] int QueryDirection(out int direction);
    [PreserveSig] int QueryId(out IntPtr id);
    [PreserveSig] int QueryAccept(ref MediaType type);
    [PreserveSig] int EnumMediaTypes(out IntPtr types);
    [PreserveSig] int QueryInternalConnections(IntPtr pins, ref uint count);
    [PreserveSig] int EndOfStream();
    [PreserveSig] int BeginFlush();
    [PreserveSig] int EndFlush();
    [PreserveSig] int NewSegment(long start, long stop, double rate);
}

[ComImport, Guid("56A86892-0AD4-11CE-B03A-0020AF0BA770"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
interface IEnumPins
{
    [PreserveSig] int Next(int count, IntPtr pins, IntPtr fetched);
    [PreserveSig] int Skip(int count);
    [PreserveSig] int Reset();
    [PreserveSig] int Clone(out IEnumPins copy);
}

[ComImport, Guid("56A8689D-0AD4-11CE-B03A-0020AF0BA770"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
interface IMemInputPin
{
    [PreserveSig] int GetAllocator(out IMemAllocator allocator);
    [PreserveSig] int NotifyAllocator(IMemAllocator allocator, bool readOnly);
    [PreserveSig] int GetAllocatorRequirements(out AllocatorProperties properties);
    [PreserveSig] int Receive(IMediaSample sample);
}

[ComImport, Guid("56A8689C-0AD4-11CE-B03A-0020AF0BA770"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
interface IMemAllocator
{
    [PreserveSig] int SetProperties(ref AllocatorProperties request, out AllocatorProperties actual);
    [PreserveSig] int GetProperties(out AllocatorProperties properties);
    [PreserveSig] int Commit();
    [PreserveSig] int Decommit();
    [PreserveSig] int GetBuffer(out IMediaSample sample, IntPtr start, IntPtr end, int flags);
}

[ComImport, Guid("56A8689A-0AD4-11CE-B03A-0020AF0BA770"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
interface IMediaSample
{
    [PreserveSig] int GetPointer(out IntPtr bytes);
    [PreserveSig] int GetSize();
    [PreserveSig] int GetTime(out long start, out long end);
    [PreserveSig] int SetTime(IntPtr start, IntPtr end);
    [PreserveSig] int IsSyncPoint();
    [PreserveSig] int SetSyncPoint(bool isSyncPoint);
    [PreserveSig] int IsPreroll();
    [PreserveSig] int SetPreroll(bool isPreroll);
    [PreserveSig] int GetActualDataLength();
    [PreserveSig] int SetActualDataLength(int length);
}

[ComImport, Guid("56A868A9-0AD4-11CE-B03A-0020AF0BA770"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
interface IGraphBuilder
{
    [PreserveSig] int AddFilter(IBaseFilter filter, [MarshalAs(UnmanagedType.LPWStr)] string name);
    [PreserveSig] int RemoveFilter(IBaseFilter filter);
    [PreserveSig] int EnumFilters(out IntPtr filters);
    [PreserveSig] int FindFilterByName([MarshalAs(UnmanagedType.LPWStr)] string name, out IBaseFilter filter);
    [PreserveSig] int ConnectDirect(IPin output, IPin input, ref MediaType type);
}

[ComImport, Guid("56A868B1-0AD4-11CE-B03A-0020AF0BA770"), InterfaceType(ComInterfaceType.InterfaceIsDual)]
interface IMediaControl
{
    [PreserveSig] int Run();
    [PreserveSig] int Pause();
    [PreserveSig] int Stop();
}

// The host owns the parameters: a block of bytes that it stores with its project and never looks into.
[ComVisible(true), ClassInterface(ClassInterfaceType.None)]
public class Parameters : IDataPropertySet
{
    public byte[] Data = new byte[0];

    // Counts a reference, which Marshal.Release gives back.
    public IntPtr Address() { return Marshal.GetComInterfaceForObject(this, typeof(IDataPropertySet)); }

    public int GetData(IntPtr buffer, out int size)
    {
        size = Data.Length;
        if (size == 0)
            return Host.Failed;
        Marshal.Copy(Data, 0, buffer, size);
        return Host.Ok;
    }

    public int SetData(IntPtr data, int size)
    {
        if (size < 0)
            return Host.InvalidArgument;
        Data = new byte[size];
        Marshal.Copy(data, Data, 0, size);
        return Host.Ok;
    }
}

// Where the frames come from: the smallest DirectShow filter that a graph takes, with one output pin of one type.
[ComVisible(true), ClassInterface(ClassInterfaceType.None)]
class FrameSource : IBaseFilter
{
    public readonly OutputPin Output;
    internal MediaType Type;
    internal VideoInfoHeader Header;
    internal IMemInputPin Receiver;
    internal IMemAllocator Allocator;
    private IntPtr graph; // not counted: the graph owns the filter
    private string name = "";
    private int state;
    private const int Paused = 1, Running = 2;

    public FrameSource(int width, int height)
    {
        Header.HeaderSize = 40;
        Header.Width = width;
        Header.Height = height;
        Header.Planes = 1;
        Header.BitCount = 32;
        Header.ImageSize = width * height * 4;
        Type.Major = new Guid("73646976-0000-0010-8000-00AA00389B71"); // video
        Type.Sub = Host.Rgb32;
        Type.FixedSizeSamples = 1;
        Type.SampleSize = Header.ImageSize;
        Type.Format = new Guid("05589F80-C356-11CE-BF01-00AA0055595A"); // VIDEOINFOHEADER
        Type.BlockSize = Marshal.SizeOf(typeof(VideoInfoHeader));
        Type.Block = CopyOfHeader();
        Output = new OutputPin(this);
    }

    // In memory of the platform's, which whoever gets it frees.
    internal IntPtr CopyOfHeader()
    {
        var copy = Marshal.AllocCoTaskMem(Marshal.SizeOf(typeof(VideoInfoHeader)));
        Marshal.StructureToPtr(Header, copy, false);
        return copy;
    }

    // Sends a frame downstream, in a graph that runs, and answers what it has become: an effect changes the frame in the buffer
    // that brings it.
    public int[] Send(int[] frame)
    {
        IMediaSample sample;
        IntPtr bytes;
        Host.Check(Allocator.GetBuffer(out sample, IntPtr.Zero, IntPtr.Zero, 0), "GetBuffer");
        Host.Check(sample.GetPointer(out bytes), "GetPointer");
        Marshal.Copy(frame, 0, bytes, frame.Length);
        Host.Check(sample.SetActualDataLength(frame.Length * 4), "SetActualDataLength");
        Host.Check(Receiver.Receive(sample), "Receive");
        var result = new int[frame.Length];
        Marshal.Copy(bytes, result, 0, result.Length);
        Marshal.ReleaseComObject(sample);
        return result;
    }

    public int GetClassID(out Guid id)
    {
        id = Guid.Empty;
        return Host.NotImplemented;
    }
    public int Stop()
    {
        state = 0;
        return Allocator == null ? Host.Ok : Allocator.Decommit();
    }
    public int Pause()
    {
        state = Paused;
        return Allocator == null ? Host.Ok : Allocator.Commit();
    }
    public int Run(long start)
    {
        state = Running;
        return Host.Ok;
    }
    public int GetState(int milliseconds, out int current)
    {
        current = state;
        return state == Paused ? Host.CannotCue : Host.Ok; // it sends nothing by itself
    }
    public int SetSyncSource(IntPtr clock) { return Host.Ok; } // its frames have no times
    public int GetSyncSource(out IntPtr clock)
    {
        clock = IntPtr.Zero;
        return Host.Ok;
    }
    public int EnumPins(out IEnumPins pins)
    {
        pins = new PinList(Output);
        return Host.Ok;
    }
    public int FindPin(string id, out IPin pin)
    {
        pin = null;
        return Host.PinNotFound;
    }
    public int QueryFilterInfo(out FilterInfo info)
    {
        info = new FilterInfo { Name = name, Graph = graph };
        if (graph != IntPtr.Zero)
            Marshal.AddRef(graph);
        return Host.Ok;
    }
    public int JoinFilterGraph(IntPtr newGraph, string newName)
    {
        graph = newGraph;
        name = newName ?? "";
        return Host.Ok;
    }
    public int QueryVendorInfo(out IntPtr info)
    {
        info = IntPtr.Zero;
        return Host.NotImplemented;
    }
}

[ComVisible(true), ClassInterface(ClassInterfaceType.None)]
class OutputPin : IPin
{
    private readonly FrameSource source;
    private IPin peer;

    public OutputPin(FrameSource owner) { source = owner; }

    public int Connect(IPin receiver, IntPtr type)
    {
        var result = receiver.ReceiveConnection(this, ref source.Type);
        if (result < 0)
            return result;
        // Both sides agree on who makes the buffers: here whoever the input pin names.
        source.Receiver = (IMemInputPin)receiver;
        result = source.Receiver.GetAllocator(out source.Allocator);
        var wanted = new AllocatorProperties { Count = 1, Size = source.Type.SampleSize, Alignment = 1 };
        AllocatorProperties granted;
        if (result >= 0)
            result = source.Allocator.SetProperties(ref wanted, out granted);
        if (result >= 0)
            result = source.Receiver.NotifyAllocator(source.Allocator, false); // may be written to
        if (result < 0) {
            receiver.Disconnect();
            Disconnect();
            return result;
        }
        peer = receiver;
        return Host.Ok;
    }
    public int ReceiveConnection(IPin connector, ref MediaType type) { return Host.Unexpected; }
    public int Disconnect()
    {
        var result = peer == null ? Host.False : Host.Ok;
        if (source.Allocator != null)
            Marshal.ReleaseComObject(source.Allocator);
        // The input pin and its two faces are one object to the runtime, which the host still holds.
        source.Allocator = null;
        source.Receiver = null;
        peer = null;
        return result;
    }
    public int ConnectedTo(out IPin pin)
    {
        pin = peer;
        return peer == null ? Host.NotConnected : Host.Ok;
    }
    public int ConnectionMediaType(out MediaType type)
    {
        type = new MediaType();
        if (peer == null)
            return Host.NotConnected;
        type = source.Type;
        type.Block = source.CopyOfHeader(); // the caller's from here on
        return Host.Ok;
    }
    public int QueryPinInfo(out PinInfo info)
    {
        info = new PinInfo { Direction = Host.Output, Name = "Out" };
        info.Filter = Marshal.GetComInterfaceForObject(source, typeof(IBaseFilter));
        return Host.Ok;
    }
    public int QueryDirection(out int direction)
    {
        direction = Host.Output;
        return Host.Ok;
    }
    public int QueryId(out IntPtr id)
    {
        id = IntPtr.Zero;
        return Host.NotImplemented;
    }
    public int QueryAccept(ref MediaType type) { return type.Sub == Host.Rgb32 ? Host.Ok : Host.False; }
    // The pins are connected with their type; nobody needs to look for one.
    public int EnumMediaTypes(out IntPtr types)
    {
        types = IntPtr.Zero;
        return Host.NotImplemented;
    }
    public int QueryInternalConnections(IntPtr pins, ref uint count) { return Host.NotImplemented; }
    public int EndOfStream() { return Host.Unexpected; }
    public int BeginFlush() { return Host.Unexpected; }
    public int EndFlush() { return Host.Unexpected; }
    public int NewSegment(long start, long stop, double rate) { return Host.Unexpected; }
}

[ComVisible(true), ClassInterface(ClassInterfaceType.None)]
class PinList : IEnumPins
{
    private readonly OutputPin pin;
    private bool done;

    public PinList(OutputPin only) { pin = only; }

    public int Next(int count, IntPtr pins, IntPtr fetched)
    {
        var given = count > 0 && !done ? 1 : 0;
        if (given == 1) {
            done = true;
            Marshal.WriteIntPtr(pins, Marshal.GetComInterfaceForObject(pin, typeof(IPin)));
        }
        if (fetched != IntPtr.Zero)
            Marshal.WriteInt32(fetched, given);
        return given == count ? Host.Ok : Host.False;
    }
    public int Skip(int count)
    {
        var enough = count <= (done ? 0 : 1);
        done = done || count > 0;
        return enough ? Host.Ok : Host.False;
    }
    public int Reset()
    {
        done = false;
        return Host.Ok;
    }
    public int Clone(out IEnumPins copy)
    {
        copy = null;
        return Host.NotImplemented;
    }
}

static class Host
{
    public const int Ok = 0, False = 1, CannotCue = 0x00040268, Output = 1;
    public const int NotImplemented = unchecked((int)0x80004001), Failed = unchecked((int)0x80004005);
    public const int Unexpected = unchecked((int)0x8000FFFF), InvalidArgument = unchecked((int)0x80070057);
    public const int NotConnected = unchecked((int)0x80040209), PinNotFound = unchecked((int)0x80040216);
    public static readonly Guid Rgb32 = new Guid("E436EB7E-524F-11CE-9F53-0020AF0BA770");
    private const uint German = 1031, PanelChanged = 0x8000 + 1; // WM_APP + 1

    [DllImport("kernel32", CharSet = CharSet.Unicode, SetLastError = true)]
    private static extern IntPtr LoadLibrary(string path);
    [DllImport("kernel32", CharSet = CharSet.Ansi, ExactSpelling = true)]
    private static extern IntPtr GetProcAddress(IntPtr library, string name);
    [DllImport("kernel32")]
    private static extern bool FreeLibrary(IntPtr library);

    private delegate int GetClassObject(ref Guid classId, ref Guid iid, out IntPtr made);
    private delegate int CanUnloadNow();

    private delegate IntPtr WindowProcedure(IntPtr window, uint message, IntPtr wParam, IntPtr lParam);

    [StructLayout(LayoutKind.Sequential, CharSet = CharSet.Unicode)]
    private struct WindowClass
    {
        public uint Style;
        public WindowProcedure Procedure;
        public int ClassExtra, WindowExtra;
        public IntPtr Instance, Icon, Cursor, Background;
        public string Menu, Name;
    }

    [DllImport("user32", CharSet = CharSet.Unicode)]
    private static extern ushort RegisterClassW(ref WindowClass windowClass);
    [DllImport("user32", CharSet = CharSet.Unicode)]
    private static extern IntPtr CreateWindowExW(uint extended, string windowClass, string title, uint style, int x, int y,
                                                 int width, int height, IntPtr parent, IntPtr menu, IntPtr instance,
                                                 IntPtr parameter);
    [DllImport("user32")]
    private static extern IntPtr DefWindowProcW(IntPtr window, uint message, IntPtr wParam, IntPtr lParam);
    [DllImport("user32")]
    private static extern bool ShowWindow(IntPtr window, int command);
    [DllImport("user32")]
    private static extern IntPtr GetParent(IntPtr window);
    [DllImport("user32")]
    private static extern bool DestroyWindow(IntPtr window);

    public static void Check(int result, string what)
    {
        if (result < 0)
            throw new InvalidOperationException(what + ": 0x" + result.ToString("X8"));
    }

    private static T Create<T>(string classId)
    {
        return (T)Activator.CreateInstance(System.Type.GetTypeFromCLSID(new Guid(classId)));
    }

    // Opens the effect's panel in a window of the host's. A host with a user shows the panel and runs its message loop.
    private static void OpenPanel(IEffectInfo info, IEffectFilter effect, IntPtr set)
    {
        WindowProcedure procedure = (handle, message, wParam, lParam) => {
            if (message != PanelChanged)
                return DefWindowProcW(handle, message, wParam, lParam);
            // The panel has written the change into the property set; the filter learns of it only now.
            effect.SetPropertySet(set);
            return IntPtr.Zero;
        };
        var windowClass = new WindowClass { Procedure = procedure, Name = "Host" };
        RegisterClassW(ref windowClass);
        const uint overlapped = 0x00CF0000;
        var window = CreateWindowExW(0, "Host", "Host", overlapped, 0, 0, 400, 300, IntPtr.Zero, IntPtr.Zero, IntPtr.Zero,
                                     IntPtr.Zero);

        IntPtr panel;
        Check(info.ShowSettingsDialog(0, window, PanelChanged, set, out panel), "ShowSettingsDialog");
        ShowWindow(panel, 5); // it comes hidden, at the upper left of the window
        Console.WriteLine("Its panel is a child of the host's window: " + (GetParent(panel) == window ? "yes" : "no"));

        DestroyWindow(window); // and the panel with it
        GC.KeepAlive(procedure);
    }

    private static void UseEffect(IClassFactory factory)
    {
        // What the effect is called in the user's language. From here on the whole library speaks German.
        var info = (IEffectInfo)factory;
        uint length = 0; // with the terminator
        Check(info.GetEffectName(German, null, ref length), "GetEffectName");
        var text = new char[length];
        Check(info.GetEffectName(German, text, ref length), "GetEffectName");
        var name = new string(text, 0, text.Length - 1);
        Console.WriteLine("The effect is called " + name);

        // What it starts with.
        var parameters = new Parameters();
        var set = parameters.Address();
        Check(info.SetDefaults(set), "SetDefaults");
        Console.WriteLine("It starts with {0} bytes: {1}", parameters.Data.Length, BitConverter.ToInt32(parameters.Data, 0));

        // The filter, in a graph. It takes MEDIASUBTYPE_RGB32 and changes the frames where they lie.
        var source = new FrameSource(4, 2);
        object made;
        var baseFilter = typeof(IBaseFilter).GUID;
        Check(factory.CreateInstance(IntPtr.Zero, ref baseFilter, out made), "CreateInstance");
        var filter = (IBaseFilter)made;
        var graph = Create<IGraphBuilder>("E436EBB3-524F-11CE-9F53-0020AF0BA770");
        var renderer = Create<IBaseFilter>("C1F400A4-3F08-11D3-9F0B-006008039E37");
        Check(graph.AddFilter(source, "Frames"), "AddFilter");
        Check(graph.AddFilter(filter, name), "AddFilter");
        Check(graph.AddFilter(renderer, "Nowhere"), "AddFilter");
        IPin first, last, end;
        Check(filter.FindPin("In", out first), "FindPin");
        Check(filter.FindPin("Out", out last), "FindPin");
        Check(renderer.FindPin("In", out end), "FindPin");
        Check(graph.ConnectDirect(source.Output, first, ref source.Type), "ConnectDirect");
        Check(graph.ConnectDirect(last, end, ref source.Type), "ConnectDirect");

        // Parameters reach the filter when the host hands them over, from any thread, also while the graph runs.
        var effect = (IEffectFilter)filter;
        parameters.Data = BitConverter.GetBytes(160);
        Check(effect.SetPropertySet(set), "SetPropertySet");

        var control = (IMediaControl)graph;
        Check(control.Run(), "Run");
        var frame = new int[4 * 2];
        for (var i = 0; i < frame.Length; ++i)
            frame[i] = 0x404040;
        var result = source.Send(frame)[0];
        Console.WriteLine("404040 becomes " + result.ToString("X6"));
        if (result != 0x6B6B6B)
            throw new InvalidOperationException("that should have been 6B6B6B");
        Check(control.Stop(), "Stop");

        OpenPanel(info, effect, set);

        // The graph lets go of its filters when it goes. A reference of the host's own tells whether it was the last.
        var watched = Marshal.GetIUnknownForObject(filter);
        graph.RemoveFilter(source);
        Marshal.FinalReleaseComObject(graph);
        foreach (var held in new object[] { end, last, first, renderer, filter })
            Marshal.FinalReleaseComObject(held);
        if (Marshal.Release(watched) != 0)
            throw new InvalidOperationException("somebody still holds the filter");
        Marshal.Release(set);
        Marshal.FreeCoTaskMem(source.Type.Block);
    }

    private static int UseLibrary(string path)
    {
        var library = LoadLibrary(path);
        if (library == IntPtr.Zero)
            throw new InvalidOperationException("the library cannot be loaded: is it there, and as wide as this program?");
        var getClassObject = (GetClassObject)Marshal.GetDelegateForFunctionPointer(
            GetProcAddress(library, "DllGetClassObject"), typeof(GetClassObject));
        var canUnloadNow = (CanUnloadNow)Marshal.GetDelegateForFunctionPointer(
            GetProcAddress(library, "DllCanUnloadNow"), typeof(CanUnloadNow));

        var gammaCorrection = new Guid("C79C3183-D7F7-439A-98CC-33906A691708");
        var classFactory = typeof(IClassFactory).GUID;
        IntPtr pointer;
        Check(getClassObject(ref gammaCorrection, ref classFactory, out pointer), "DllGetClassObject");
        var factory = (IClassFactory)Marshal.GetObjectForIUnknown(pointer);
        Marshal.Release(pointer); // the runtime's object holds one of its own
        UseEffect(factory);
        Marshal.FinalReleaseComObject(factory);

        // What the runtime made on the way, for others that asked, goes with its next collection.
        GC.Collect();
        GC.WaitForPendingFinalizers();

        // Every reference is released, so the library may go.
        var unused = canUnloadNow() == Ok;
        Console.WriteLine("The library can be unloaded: " + (unused ? "yes" : "no"));
        if (unused)
            FreeLibrary(library);
        return unused ? 0 : 1;
    }

    [STAThread] // windows, and the graph, belong to an apartment
    public static int Main(string[] arguments)
    {
        try {
            return UseLibrary(arguments.Length > 0 ? arguments[0] : "VixaVideoFX.dll");
        } catch (Exception error) {
            Console.Error.WriteLine("host: " + error.Message);
            return 1;
        }
    }
}
