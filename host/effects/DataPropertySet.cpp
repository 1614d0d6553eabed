#include "host/effects/DataPropertySet.h"

#include <cstring>
#include <new>

namespace vixahost::effects {

Microsoft::WRL::ComPtr<DataPropertySet> DataPropertySet::Create(std::span<const std::int32_t> block)
{
    Microsoft::WRL::ComPtr<DataPropertySet> set;
    *set.GetAddressOf() = new DataPropertySet(block); // not Attach: this platform's counts one more there
    return set;
}

HRESULT DataPropertySet::QueryInterface(REFIID riid, void** object) noexcept
{
    if (!object)
        return E_POINTER;
    *object = nullptr;
    if (!IsEqualIID(riid, IID_IUnknown))
        return E_NOINTERFACE;
    *object = static_cast<IUnknown*>(this);
    AddRef();
    return S_OK;
}

HRESULT DataPropertySet::GetData(void* buffer, int* size)
{
    if (!buffer || !size)
        return E_POINTER;
    const std::lock_guard hold(lock);
    if (stored.empty())
        return E_FAIL;
    std::memcpy(buffer, stored.data(), stored.size());
    *size = static_cast<int>(stored.size());
    return S_OK;
}

HRESULT DataPropertySet::SetData(const void* data, int size) noexcept
{
    if (size < 0 || (size > 0 && !data))
        return E_INVALIDARG;
    try {
        const auto* bytes = static_cast<const std::byte*>(data);
        std::vector<std::byte> block(bytes, bytes + size);
        const std::lock_guard hold(lock);
        stored.swap(block);
        return S_OK;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

std::vector<std::int32_t> DataPropertySet::Block() const
{
    const std::lock_guard hold(lock);
    std::vector<std::int32_t> block(stored.size() / sizeof(std::int32_t));
    if (!block.empty())
        std::memcpy(block.data(), stored.data(), block.size() * sizeof(std::int32_t));
    return block;
}

void DataPropertySet::Store(std::span<const std::int32_t> block)
{
    const auto bytes = std::as_bytes(block);
    const std::lock_guard hold(lock);
    stored.assign(bytes.begin(), bytes.end());
}

} // namespace vixahost::effects
