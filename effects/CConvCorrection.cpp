#include "effects/CConvCorrection.h"

#include "filter/SampleBytes.h"

#include <vixavideofx/ClassIds.h>
#include <vixavideofx/DataBlocks.h>

#include <cstdint>
#include <exception>
#include <new>

using namespace vixa;

namespace {

// Whether a buffer holds a frame of that size that has pixels (no row may be saved for one that has none: it could have
// any width); judged in 64 bits, where no width times height overflows.
bool Holds(std::span<const std::uint8_t> buffer, LONG width, LONG height) noexcept
{
    if (width < 1 || height == 0)
        return false;
    const std::int64_t rows = height;
    const auto pixels = static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(rows < 0 ? -rows : rows);
    return pixels * 4 <= buffer.size();
}

} // namespace

CConvCorrection::CConvCorrection(IUnknown* outer, HRESULT* result)
    : KernelEffect(outer, vixavideofx::CLSID_AddPixel, result)
{
}

CUnknown* CALLBACK CConvCorrection::CreateInstance(IUnknown* outer, HRESULT* result) noexcept
{
    return new (std::nothrow) CConvCorrection(outer, result);
}

HRESULT CConvCorrection::SetMediaType(PIN_DIRECTION direction, const CMediaType* type)
{
    if (direction == PINDIR_INPUT && type) {
        if (const auto* header = BitmapHeaderOf(*type)) {
            fields.Change([&](Fields& current) {
                current.frameWidth = header->biWidth;
                current.frameHeight = header->biHeight;
            });
        }
    }
    return KernelEffect::SetMediaType(direction, type);
}

HRESULT CConvCorrection::StepFor(IMediaSample* sample, Step& step)
{
    // The whole buffer, not the sample's actual data length, holds the frame.
    const auto buffer = BufferOf(sample);
    const Fields now = fields.Get();
    if (!now.convolution.hasKernel || !Holds(buffer, now.frameWidth, now.frameHeight))
        return S_OK;
    try {
        scratch.resize(kernels::ConvolutionScratchBytes(now.frameWidth));
    } catch (const std::exception&) {
        return S_OK; // short of memory, or more rows than any memory holds
    }
    step.frame = buffer;
    step.parameters = kernels::PictureConvolution{now.frameWidth, now.frameHeight, now.convolution, scratch};
    return S_OK;
}

STDMETHODIMP CConvCorrection::SetPropertySet(IUnknown* propertySet) noexcept
{
    return TakeRead(propertySet, vixavideofx::ConvolutionBlock{0}, [this](const auto& read) {
        fields.Change([&](Fields& current) { current.convolution.SetKind(read.block.kind); });
    });
}
