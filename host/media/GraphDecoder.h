// A clip decoded by the platform's filter graph: file source, splitter, decoder, and a grabber at the end.
#pragma once

#include "host/base/Handles.h"
#include "host/media/Decoder.h"

#include <windows.h>

#include <control.h>
#include <qedit.h>
#include <wrl/client.h>

#include <atomic>
#include <filesystem>
#include <optional>
#include <vector>

namespace vixahost::media {

// Rate and scale of frames that follow each other after so many units of 100 ns, their size left 0; 30 a second when
// the interval makes no sense.
FrameFormat RateOfInterval(REFERENCE_TIME interval) noexcept;

class GraphDecoder final : public Decoder
{
public:
    // `known`: the frames of a clip whose header was read; of another clip the graph tells. COM must be running without
    // an apartment. Throws NoDecoder when the platform makes no frames of the file, FailedJob when they aren't those
    // that are known.
    GraphDecoder(std::filesystem::path clip, const std::optional<FrameFormat>& known);
    ~GraphDecoder() override;
    GraphDecoder(const GraphDecoder&) = delete;
    GraphDecoder& operator=(const GraphDecoder&) = delete;

    const DecodedClip& Clip() const noexcept override { return facts; }
    // A frame is what the clip shows at its time: the one before it stays where the clip has none of its own.
    bool Decode(std::int64_t index, std::span<std::uint8_t> frame) override;

private:
    template <typename Interface>
    using ComPtr = Microsoft::WRL::ComPtr<Interface>;

    // Takes each frame on the graph's thread, which then waits until the next one is wanted. Lives as long as the
    // decoder, whoever holds a reference.
    class Grabbed final : public ISampleGrabberCB
    {
    public:
        explicit Grabbed(GraphDecoder& to) : decoder(to) {}
        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override;
        ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
        ULONG STDMETHODCALLTYPE Release() override { return 1; }
        HRESULT STDMETHODCALLTYPE SampleCB(double time, IMediaSample* sample) override;
        HRESULT STDMETHODCALLTYPE BufferCB(double, BYTE*, long) override { return E_NOTIMPL; }

    private:
        GraphDecoder& decoder;
    };

    struct Frame
    {
        std::vector<std::uint8_t> pixels;
        REFERENCE_TIME time = 0; // since the clip's beginning
    };

    void Build();
    void TakeFormat(const std::optional<FrameFormat>& known);
    void TakeSound();
    void RunFrom(std::int64_t index);
    void Stop() noexcept;
    HRESULT Take(IMediaSample& sample) noexcept;
    bool WaitForFrame(std::int64_t index);
    bool HasEnded(std::int64_t index);

    std::filesystem::path path;
    DecodedClip facts;
    bool topDown = false;
    Grabbed grabbed{*this};
    ComPtr<IGraphBuilder> graph;
    ComPtr<IMediaControl> control;
    ComPtr<IMediaEvent> events;
    ComPtr<ISampleGrabber> grabber;
    ComPtr<IMediaSeeking> seeking;
    UniqueEvent given, taken;

    // The graph's thread writes the next frame, between `taken` and `given`.
    Frame next, shown;
    bool hasNext = false, hasShown = false, ended = false, running = false;
    bool wrongFrame = false; // the next one is none of this clip's size
    std::atomic<bool> stopping = false;
    std::int64_t shownIndex = 0;
    REFERENCE_TIME origin = 0; // that the graph counts times from
};

} // namespace vixahost::media
