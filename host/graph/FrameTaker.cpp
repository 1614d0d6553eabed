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

HRESULT FrameTaker::Take(IMediaSample& sample) noexcept
{
    timer.End();
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
