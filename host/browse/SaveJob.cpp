#include "host/browse/SaveJob.h"

#include "host/base/HostError.h"
#include "host/base/TargetFile.h"
#include "host/base/Text.h"
#include "host/graph/FileJob.h"

#include <cwchar>
#include <new>

namespace vixahost::browse {

SaveJob::SaveJob(SaveOrder what, std::function<void()> notify) : order(std::move(what)), onEnd(std::move(notify))
{
    const bool clip = !order.source.empty();
    if (clip && !media::NamesClip(order.target))
        throw WrongWords(
            "A clip is saved as AVI, y4m or a sequence of pictures: give it a name that ends in .avi or .y4m, "
            "or one like frame%04d.png.");
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
        const effects::EffectLibrary library;
        const graph::FileJob job = {library,
                                    order.stack,
                                    order.target,
                                    [this] { return cancelled.load(); },
                                    {},
                                    [this](std::int64_t frames, std::int64_t ofThem) {
                                        total = ofThem;
                                        done = frames;
                                    }};
        if (order.source.empty())
            SaveThroughEffects(job, order.still, *media::PictureFormatOf(order.target));
        else
            lostSound = SaveThroughEffects(job, order.source, order.choice).losesSound;
    } catch (const std::bad_alloc&) {
        failure = "There is not enough memory for a picture of this size.";
    } catch (const std::exception& fault) {
        failure = fault.what();
    }
    if (SUCCEEDED(com))
        CoUninitialize();
    onEnd();
}

} // namespace vixahost::browse
