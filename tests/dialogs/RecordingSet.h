// A host's property set: keeps its block and every write to it, and does on the way what a test asks.
#pragma once

#include <vixavideofx/PropertySets.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <utility>
#include <vector>

class RecordingSet final : public IDataPropertySet
{
public:
    using Block = std::vector<std::int32_t>;

    RecordingSet(Block initial = {}) : block(std::move(initial)) {}
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE GetData(void* buffer, int* size) override
    {
        ++reads;
        if (onRead)
            onRead();
        if (FAILED(readResult))
            return readResult;
        std::memcpy(buffer, block.data(), block.size() * 4);
        *size = reportedSize >= 0 ? reportedSize : static_cast<int>(block.size() * 4);
        return readResult;
    }
    HRESULT STDMETHODCALLTYPE SetData(const void* data, int size) override
    {
        block.assign(static_cast<std::size_t>(size) / 4, 0);
        std::memcpy(block.data(), data, block.size() * 4);
        writes.push_back(block);
        if (onWrite)
            onWrite();
        return S_OK;
    }

    Block block;
    std::vector<Block> writes;
    int reads = 0;
    HRESULT readResult = S_OK;
    int reportedSize = -1; // -1: the block's
    std::function<void()> onRead, onWrite;
};
