// The host's own property set: holds one effect's data block and hands it to the filter, panel or catalogue.
#pragma once

#include "framework/RefCount.h"

#include <vixavideofx/PropertySets.h>

#include <wrl/client.h>

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <span>
#include <vector>

namespace vixahost::effects {

// May be called from any thread. Answers IUnknown only, as a library asks for nothing else.
class DataPropertySet : public IDataPropertySet
{
public:
    static Microsoft::WRL::ComPtr<DataPropertySet> Create(std::span<const std::int32_t> block);

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) noexcept override;
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return references.Add(); }
    ULONG STDMETHODCALLTYPE Release() noexcept override
    {
        return references.Drop([this] { delete this; });
    }

    // E_POINTER when an argument is null, E_FAIL while the set is empty. Throws nothing; a derived set may.
    HRESULT STDMETHODCALLTYPE GetData(void* buffer, int* size) override;
    // E_INVALIDARG for a negative size or missing data, E_OUTOFMEMORY; the old block then stays.
    HRESULT STDMETHODCALLTYPE SetData(const void* data, int size) noexcept override;

    // A copy of the stored block, as far as it is made of whole numbers.
    std::vector<std::int32_t> Block() const;
    void Store(std::span<const std::int32_t> block);

protected:
    explicit DataPropertySet(std::span<const std::int32_t> block) { Store(block); }
    virtual ~DataPropertySet() = default;

private:
    vixa::RefCount references{1};
    mutable std::mutex lock;
    std::vector<std::byte> stored;
};

} // namespace vixahost::effects
