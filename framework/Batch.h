// Filters in a row that work on a sample together: each puts its work off as the sample goes down the row, and the
// last one has all of it done at once.
#pragma once

#include "framework/Platform.h"

namespace vixa {

// The work on one sample that has been put off. Belongs to the filter with which the row begins.
class Batch
{
public:
    // Does what is pending, in the order in which it was put off; nothing is pending then.
    virtual void Finish() noexcept = 0;

protected:
    ~Batch() = default;
};

// What a filter that takes part does; every filter of this module that takes part has batches of the same class.
class BatchWorker
{
public:
    // Whether work of filters upstream is taken over. Any thread may ask.
    virtual bool TakesBatches() const noexcept = 0;
    // The batch of this filter, for a row that begins with it; null when it works alone now.
    virtual Batch* OwnBatch() noexcept = 0;
    // Puts Transform of that sample off. False when that can't be: it is then called as usual, after what is pending.
    virtual bool PutOff(IMediaSample* sample, Batch& batch) noexcept = 0;

protected:
    ~BatchWorker() = default;
};

// How an output pin hands a sample over to the input pin of another filter of this module, with the work on it that is
// pending. An input pin answers QueryInterface for it; the interface is nobody else's.
struct IBatchInput : IUnknown
{
    // Tells this module's pins from those of another copy of it, which may be another version: the address of something
    // that only this module has.
    virtual const void* STDMETHODCALLTYPE Module() noexcept = 0;

    // Whether that is this pin's own face, and not one that somebody put before it.
    virtual bool STDMETHODCALLTYPE IsFace(const IMemInputPin* face) noexcept = 0;

    // Whether the filter takes work over now. Any thread.
    virtual bool STDMETHODCALLTYPE TakesBatches() noexcept = 0;

    // As IMemInputPin::Receive. Nothing is pending any more when it returns.
    virtual HRESULT STDMETHODCALLTYPE ReceiveBatch(IMediaSample* sample, Batch& batch) noexcept = 0;
};

inline constexpr IID IID_IBatchInput = {0x2B0A3D57, 0x61C4, 0x4E0B, {0x9A, 0x6F, 0x3C, 0x51, 0x8E, 0x27, 0xD4, 0xB8}};

} // namespace vixa
