#include "host/graph/FrameTaker.h"

namespace vixahost::graph {

bool FrameTaker::Accepts(const CMediaType& type) const
{
    if (*type.Type() != MEDIATYPE_Video || *type.Subtype() != MEDIASUBTYPE_RGB32 ||
        *type.FormatType() != FORMAT_VideoInfo || type.FormatLength() < sizeof(VIDEOINFOHEADER))
        return false;
    const auto& header = reinterpret_cast<const VIDEOINFOHEADER*>(type.Format())->bmiHeader;
    return header.biWidth == format.width && header.biHeight == format.height;
}

FrameTaker::~FrameTaker()
{
    Failure();
}

std::exception_ptr FrameTaker::Failure() noexcept
{
    waiting.Close();
    End();
    return failure;
}

HRESULT FrameTaker::Take(IMediaSample& sample) noexcept
{
    timer.End();
    if (!behind)
        return Write(sample);
    try {
        if (!thread.joinable())
            thread = std::thread([this] { WriteAll(); });
        return waiting.Put(&sample) ? S_OK : E_FAIL;
    } catch (const std::exception&) {
        return E_OUTOFMEMORY;
    }
}

void FrameTaker::OnEndOfStream() noexcept
{
    waiting.End(S_FALSE);
    End();
}

void FrameTaker::End() noexcept
{
    if (thread.joinable())
        thread.join();
}

void FrameTaker::WriteAll() noexcept
{
    const HRESULT com = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    for (HRESULT result = S_OK; result == S_OK;) {
        ComPtr<IMediaSample> sample;
        result = waiting.Take(sample);
        if (result == S_OK && FAILED(result = Write(*sample.Get())))
            waiting.Close(); // the next sample hears of it
    }
    if (SUCCEEDED(com))
        CoUninitialize();
}

HRESULT FrameTaker::Write(IMediaSample& sample) noexcept
{
    BYTE* data = nullptr;
    const std::size_t bytes = format.FrameBytes();
    if (FAILED(sample.GetPointer(&data)) || sample.GetActualDataLength() != static_cast<long>(bytes))
        return E_FAIL;
    try {
        writer.Write({data, bytes});
    } catch (...) {
        failure = std::current_exception();
        return E_FAIL;
    }
    ++written;
    return S_OK;
}

} // namespace vixahost::graph
