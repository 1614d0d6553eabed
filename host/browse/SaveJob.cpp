#include "host/browse/SaveJob.h"

#include "host/base/HostError.h"
#include "host/base/TargetFile.h"
#include "host/base/Text.h"
#include "host/graph/EffectGraph.h"
#include "host/media/ClipReader.h"
#include "host/media/ClipWriter.h"
#include "host/media/PictureFile.h"
#include "host/media/PictureFrames.h"

#include <cwchar>
#include <new>

namespace vixahost::browse {

namespace {

// Ends the graph at the next frame once the user wants it.
class CancellableReader : public media::FrameReader
{
public:
    CancellableReader(media::FrameReader& frames, const std::atomic<bool>& flag) : reader(frames), cancelled(flag) {}
    media::FrameFormat Format() const override { return reader.Format(); }
    int FramesAPicture() const override { return reader.FramesAPicture(); }
    bool Read(std::span<std::uint8_t> frame) override
    {
        if (cancelled)
            throw FailedJob("Stopped before the end; nothing was written.");
        return reader.Read(frame);
    }

private:
    media::FrameReader& reader;
    const std::atomic<bool>& cancelled;
};

} // namespace

SaveJob::SaveJob(SaveOrder what, std::function<void()> notify) : order(std::move(what)), onEnd(std::move(notify))
{
    const bool clip = !order.source.empty();
    if (clip && _wcsicmp(order.target.extension().c_str(), L".avi") != 0)
        throw WrongWords("A clip is saved as an AVI file: give it a name that ends in .avi.");
    if (!clip && !media::PictureFormatOf(order.target))
        throw WrongWords(
            "A picture is saved as PNG, BMP, JPEG or TIFF: give it a name that ends in .png, .bmp, .jpg or "
            ".tif.");
    if (clip && IsSameFile(order.source, order.target))
        throw WrongWords("This is the clip that is open; choose another name, the original is never changed.");
    thread = std::thread([this] { Run(); });
}

SaveJob::~SaveJob()
{
    Cancel();
    Wait();
}

std::string SaveJob::Wait()
{
    if (thread.joinable())
        thread.join();
    return failure;
}

void SaveJob::Run()
{
    const HRESULT com = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    try {
        order.source.empty() ? SavePicture() : SaveClip();
    } catch (const std::bad_alloc&) {
        failure = "There is not enough memory for a picture of this size.";
    } catch (const std::exception& fault) {
        failure = fault.what();
    }
    if (SUCCEEDED(com))
        CoUninitialize();
    onEnd();
}

void SaveJob::SavePicture()
{
    total = 1;
    TargetFile target(order.target);
    const effects::EffectLibrary library;
    media::BandedPicture bands(order.still, effects::ReachOf(order.stack));
    CancellableReader reader(bands, cancelled);
    graph::EffectGraph(library, order.stack, reader, bands, reader.Format().TimeOf(1)).Run();
    media::WritePicture(target.Temporary(), *media::PictureFormatOf(order.target), order.still);
    if (cancelled)
        throw FailedJob("Stopped before the end; nothing was written.");
    target.Commit();
    done = 1;
}

void SaveJob::SaveClip()
{
    media::ClipReader clip(order.source);
    total = clip.FrameCount();
    TargetFile target(order.target);
    media::ClipWriter writer(target.Temporary(), clip);
    const effects::EffectLibrary library;
    CancellableReader reader(clip, cancelled);
    graph::EffectGraph(library, order.stack, reader, writer, reader.Format().TimeOf(clip.FrameCount()))
        .Run([this](std::int64_t frames) { done = frames; });
    writer.Finish();
    if (cancelled)
        throw FailedJob("Stopped before the end; nothing was written.");
    target.Commit();
}

} // namespace vixahost::browse
