// One stream of a file, decoded by the platform's filter graph: file source, splitter, decoder, and a grabber at the
// end.
#pragma once

#include "host/base/Handles.h"

#include <windows.h>

#include <control.h>
#include <qedit.h>
#include <wrl/client.h>

#include <atomic>
#include <filesystem>
#include <functional>
#include <string>

namespace vixahost::media {

// Owns what a media type points at.
struct HeldType : AM_MEDIA_TYPE
{
    HeldType() : AM_MEDIA_TYPE() {}
    HeldType(const HeldType&) = delete;
    HeldType& operator=(const HeldType&) = delete;
    ~HeldType();
};

// One thread beside the graph's own.
class GrabbingGraph
{
public:
    // `take` gets each sample on the graph's thread, which then waits until GoOn; it throws nothing. COM must be
    // running without an apartment. Throws NoDecoder when the platform makes nothing of the file that is of the type
    // (major type, subtype and format's kind), and FailedJob.
    GrabbingGraph(std::filesystem::path clip, const AM_MEDIA_TYPE& wanted, std::function<void(IMediaSample&)> take);
    ~GrabbingGraph();
    GrabbingGraph(const GrabbingGraph&) = delete;
    GrabbingGraph& operator=(const GrabbingGraph&) = delete;

    // What is grabbed, with its format. Throws FailedJob.
    void Type(AM_MEDIA_TYPE& type) const;
    // In units of 100 ns; 0 when it isn't known.
    REFERENCE_TIME Duration() const;
    // Whether the file has sound that leads nowhere here.
    bool LeavesSound() const;

    // Begins anew there; false when the graph can't go there. Throws FailedJob when it doesn't start.
    bool RunFrom(REFERENCE_TIME time);
    // Until `take` has had the next sample; false at the end. Throws FailedJob for a stream that can't be decoded:
    // "Frame 3 of ... can't be decoded".
    bool Wait(const std::string& what);
    void GoOn() noexcept;
    void Stop() noexcept;

private:
    template <typename Interface>
    using ComPtr = Microsoft::WRL::ComPtr<Interface>;

    // Lives as long as the graph, whoever holds a reference.
    class Grabbed final : public ISampleGrabberCB
    {
    public:
        explicit Grabbed(GrabbingGraph& to) : graph(to) {}
        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override;
        ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
        ULONG STDMETHODCALLTYPE Release() override { return 1; }
        HRESULT STDMETHODCALLTYPE SampleCB(double time, IMediaSample* sample) override;
        HRESULT STDMETHODCALLTYPE BufferCB(double, BYTE*, long) override { return E_NOTIMPL; }

    private:
        GrabbingGraph& graph;
    };

    void Build(const AM_MEDIA_TYPE& wanted);
    bool HasEnded(const std::string& what);

    std::filesystem::path path;
    std::function<void(IMediaSample&)> taker;
    Grabbed grabbed{*this};
    ComPtr<IGraphBuilder> graph;
    ComPtr<IMediaControl> control;
    ComPtr<IMediaEvent> events;
    ComPtr<ISampleGrabber> grabber;
    ComPtr<IMediaSeeking> seeking; // none where samples come in their order only
    UniqueEvent given, taken;
    std::atomic<bool> stopping = false;
    bool ended = false;
};

} // namespace vixahost::media
