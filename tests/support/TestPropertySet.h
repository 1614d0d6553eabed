// A host's property set that does what a test asks, honest or hostile, and counts what is done to it.
#pragma once

#include <vixavideofx/PropertySets.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <vector>

namespace test {

class TestPropertySet final : public IDataPropertySet
{
public:
    TestPropertySet() = default;
    TestPropertySet(std::initializer_list<std::int32_t> values) { Store(values); }

    void Store(std::initializer_list<std::int32_t> values)
    {
        block.resize(values.size() * 4);
        std::memcpy(block.data(), values.begin(), block.size());
    }

    STDMETHODIMP QueryInterface(REFIID, void** object) noexcept override
    {
        ++queries;
        *object = nullptr;
        return E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() noexcept override { return ++references; }
    STDMETHODIMP_(ULONG) Release() noexcept override { return --references; }

    STDMETHODIMP GetData(void* buffer, int* size) override
    {
        ++reads;
        if (answer)
            return answer(buffer, size);
        std::memcpy(buffer, block.data(), block.size());
        *size = static_cast<int>(block.size());
        return S_OK;
    }
    STDMETHODIMP SetData(const void* data, int size) noexcept override
    {
        ++writes;
        block.assign(static_cast<const std::uint8_t*>(data), static_cast<const std::uint8_t*>(data) + size);
        return S_OK;
    }

    std::function<HRESULT(void*, int*)> answer; // replaces GetData when set
    std::vector<std::uint8_t> block;
    int queries = 0, reads = 0, writes = 0;
    ULONG references = 1;
};

} // namespace test
