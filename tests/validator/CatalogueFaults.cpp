// What may be wrong with factories, identities, the catalogue, texts, icons and defaults.
#include "tests/validator/Hooks.h"

#include <vixavideofx/ClassIds.h>

#include <algorithm>
#include <cstdint>

namespace broken {

namespace {

using namespace vixavideofx;

constexpr auto create = &IClassFactory::CreateInstance;
constexpr auto name = &IEffectInfo::GetEffectName;

const DWORD mainThread = GetCurrentThreadId();
ULONG current = 0; // the language

constexpr auto keepsThePointer = [](auto real, REFIID riid, void** object) -> HRESULT {
    const HRESULT result = real(riid, object);
    if (result == E_NOINTERFACE)
        *object = real.self;
    return result;
};

constexpr Fault catalogueFaults[] = {
    {"factories/creates-filters",
     On<IClassFactory, create>([](auto real, IUnknown* outer, REFIID riid, void** object) -> HRESULT {
         const HRESULT result = real(outer, riid, object);
         if (SUCCEEDED(result))
             static_cast<IUnknown*>(*object)->AddRef();
         return result;
     })},
    {"factories/failed-query",
     On<IClassFactory, create>([](auto real, IUnknown* outer, REFIID riid, void** object) -> HRESULT {
         const HRESULT result = real(outer, riid, object);
         if (FAILED(result))
             *object = real.self;
         return result;
     })},
    {"factories/null-result", On<IClassFactory, create>(answers<E_POINTER, E_INVALIDARG>)},
    {"factories/aggregation-refused",
     On<IClassFactory, create>(
         [](auto real, IUnknown*, REFIID riid, void** object) -> HRESULT { return real(nullptr, riid, object); })},
    {"factories/aggregation",
     On<IClassFactory, create>([](auto real, IUnknown* outer, REFIID riid, void** object) -> HRESULT {
         return real(riid == IID_IUnknown ? nullptr : outer, riid, object);
     })},
    {"factories/lock-server", On<IClassFactory, &IClassFactory::LockServer>(answers<S_OK, S_FALSE>)},

    {"identity/factories", On<IClassFactory, query>(keepsThePointer)},
    {"identity/catalogue", On<IEffectInfo, query>(keepsThePointer)},
    {"identity/filters", On<IBaseFilter, query>([](auto real, REFIID riid, void** object) -> HRESULT {
         return real(riid == IID_IPersist ? IID_IClassFactory : riid, object);
     })},
    {"identity/factory-counts",
     On<IClassFactory, create>([](auto real, IUnknown* outer, REFIID riid, void** object) -> HRESULT {
         real.Object()->AddRef(); // the filter holds its factory
         return real(outer, riid, object);
     })},
    {"identity/catalogue-counts", On<IClassFactory, query>([](auto real, REFIID riid, void** object) -> HRESULT {
         const HRESULT result = real(riid, object);
         if (SUCCEEDED(result) && riid == IID_IEffectInfo)
             static_cast<IUnknown*>(*object)->AddRef();
         return result;
     })},
    {"identity/filter-counts",
     On<IBaseFilter, &IBaseFilter::FindPin>([](auto real, const WCHAR* id, IPin** pin) -> HRESULT {
         const HRESULT result = real(id, pin);
         if (SUCCEEDED(result))
             (*pin)->AddRef();
         return result;
     })},
    {"identity/same-catalogue-object", On<IClassFactory, query>([](auto real, REFIID riid, void** object) -> HRESULT {
         if (riid != IID_IEffectInfo)
             return real(riid, object);
         ComPtr<IClassFactory> another;
         DllGetClassObject(CLSID_Emboss, IID_PPV_ARGS(&another));
         return real.function == nullptr ? E_FAIL
                                         : Real<HRESULT, REFIID, void**>{another.Get(), real.function}(riid, object);
     })},
    {"identity/factory-dies-first", On<IEffectInfo, query>([](auto real, REFIID riid, void** object) -> HRESULT {
         return real(riid == IID_IClassFactory ? IID_IEffectInfo : riid, object);
     })},
    {"identity/catalogue-dies-first", On<IClassFactory, query>([](auto real, REFIID riid, void** object) -> HRESULT {
         static int requests = 0;
         return riid == IID_IEffectInfo && ++requests > 2 ? E_NOINTERFACE : real(riid, object);
     })},
    {"identity/property-sets",
     On<IEffectFilter, &IEffectFilter::SetPropertySet>([](auto real, IUnknown* set) -> HRESULT {
         set->AddRef();
         return real(set);
     })},
    {"identity/threads", On<IClassFactory, query>([](auto real, REFIID riid, void** object) -> HRESULT {
         return GetCurrentThreadId() == mainThread ? real(riid, object) : E_NOINTERFACE;
     })},

    {"catalogue/type-codes", On<IEffectInfo, &IEffectInfo::GetTypeCode>(oneMore)},
    {"catalogue/groups", On<IEffectInfo, &IEffectInfo::GetGroupId>(oneMore)},
    {"catalogue/sort-keys", On<IEffectInfo, &IEffectInfo::GetSortKey>(oneMore)},
    {"catalogue/kinds", On<IEffectInfo, &IEffectInfo::GetPropertySetKind>(oneMore)},
    {"catalogue/versions", On<IEffectInfo, &IEffectInfo::GetVersion>(oneMore)},
    {"catalogue/no-description", On<IEffectInfo, &IEffectInfo::GetPropertySetInfo>([](auto real, IUnknown** info) {
         *info = real.Object();
         return S_OK;
     })},
    {"catalogue/no-second-bitmap",
     On<IEffectInfo, &IEffectInfo::GetSecondBitmap>([](auto real, BYTE* bytes, ULONG* size, ULONG* value) -> HRESULT {
         *value = 0;
         return real(bytes, size, value);
     })},
    {"catalogue/null-arguments", On<IEffectInfo, &IEffectInfo::GetSortKey>(answers<E_INVALIDARG, E_POINTER>)},

    {"texts/english", On<IEffectInfo, name>([](auto real, ULONG language, WCHAR* text, ULONG* length) -> HRESULT {
         const HRESULT result = real(language, text, length);
         if (text)
             CharLowerW(text);
         return result;
     })},
    {"texts/from-the-file", On<IEffectInfo, name>([](auto real, ULONG language, WCHAR* text, ULONG* length) {
         return real(language == 0x0407 ? 0x040C : language, text, length); // French for German
     })},
    {"texts/complete", On<IEffectInfo, name>([](auto real, ULONG language, WCHAR* text, ULONG* length) -> HRESULT {
         ULONG ignored = 0;
         real(language, nullptr, &ignored);
         return static_cast<IEffectInfo*>(real.Object())->GetGroupName(0, text, length);
     })},
    {"texts/one-switch", // the groups stay as they were
     On<IEffectInfo, &IEffectInfo::GetGroupName>([](auto real, ULONG given, WCHAR* text, ULONG* length) -> HRESULT {
         ULONG ignored = 0;
         static_cast<IEffectInfo*>(real.Object())->GetEffectName(1033, nullptr, &ignored);
         return real(given, text, length);
     })},
    {"texts/missing-language", On<IEffectInfo, name>([](auto real, ULONG language, WCHAR* text, ULONG* length) {
         return real(language == 0x040D ? 0x040C : language, text, length);
     })},
    {"texts/one-call", On<IEffectInfo, name>([](auto real, ULONG language, WCHAR* text, ULONG* length) -> HRESULT {
         return length ? real(language, text, length) : E_INVALIDARG;
     })},
    {"texts/arguments", On<IEffectInfo, name>([](auto real, ULONG language, WCHAR* text, ULONG* length) -> HRESULT {
         ULONG ignored = 0;
         real(language, nullptr, &ignored); // switches before it looks
         return real(language, text, length);
     })},
    {"texts/back-and-forth",
     On<IEffectInfo, name>([](auto real, ULONG language, WCHAR* text, ULONG* length) -> HRESULT {
         static int switches = 0;
         return ++switches > 100 ? E_FAIL : real(language, text, length);
     })},
    {"texts/two-threads", On<IEffectInfo, name>([](auto real, ULONG language, WCHAR* text, ULONG* length) -> HRESULT {
         current = language; // switches and reads in two steps
         Sleep(1);
         return real(current, text, length);
     })},

    {"icons/size", On<IEffectInfo, &IEffectInfo::GetIcon>([](auto real, BYTE* bytes, ULONG* size) -> HRESULT {
         const HRESULT result = real(bytes, size);
         if (!bytes && size)
             *size += 14; // with a file's header
         return result;
     })},
    {"icons/header", On<IEffectInfo, &IEffectInfo::GetIcon>([](auto real, BYTE* bytes, ULONG* size) -> HRESULT {
         const HRESULT result = real(bytes, size);
         if (bytes)
             bytes[14] = 32; // bits a pixel
         return result;
     })},
    {"icons/pixels", On<IEffectInfo, &IEffectInfo::GetIcon>([](auto real, BYTE* bytes, ULONG* size) -> HRESULT {
         const HRESULT result = real(bytes, size);
         if (bytes)
             std::fill(bytes + 40, bytes + *size, BYTE{0});
         return result;
     })},
    {"icons/short-buffer", On<IEffectInfo, &IEffectInfo::GetIcon>([](auto real, BYTE* bytes, ULONG* size) -> HRESULT {
         if (bytes)
             bytes[0] = 40; // before it looks at the size
         return real(bytes, size);
     })},
    {"icons/exact-buffer", On<IEffectInfo, &IEffectInfo::GetIcon>([](auto real, BYTE* bytes, ULONG* size) -> HRESULT {
         const HRESULT result = real(bytes, size);
         if (bytes)
             bytes[*size] = 0;
         return result;
     })},
    {"icons/arguments", On<IEffectInfo, &IEffectInfo::GetIcon>(answers<E_INVALIDARG, E_POINTER>)},

    {"defaults/blocks", On<IEffectInfo, &IEffectInfo::SetDefaults>([](auto real, IUnknown* set) -> HRESULT {
         const HRESULT result = real(set);
         std::int32_t block[4] = {};
         int size = 0;
         auto* const data = static_cast<IDataPropertySet*>(set);
         if (SUCCEEDED(result) && SUCCEEDED(data->GetData(block, &size)))
             data->SetData(block, size); // a second time
         return result;
     })},
    {"defaults/ranges", On<IEffectInfo, &IEffectInfo::SetDefaults>([](auto real, IUnknown* set) -> HRESULT {
         const HRESULT result = real(set);
         const std::int32_t block[4] = {100'000, 100'000, 100'000, 100'000};
         static_cast<IDataPropertySet*>(set)->SetData(block, sizeof block);
         return result;
     })},
    {"defaults/null", On<IEffectInfo, &IEffectInfo::SetDefaults>(answers<E_INVALIDARG, S_OK>)},

    {"unloading/locks", On<IClassFactory, &IClassFactory::LockServer>(
                            [](auto real, BOOL lock) -> HRESULT { return lock ? real(lock) : S_OK; })},
    {"unloading/pins", On<IBaseFilter, &IBaseFilter::EnumPins>([](auto real, IEnumPins** pins) -> HRESULT {
         real.Object()->AddRef();
         return real(pins);
     })},
    {"unloading/refusals",
     On<IClassFactory, create>([](auto real, IUnknown* outer, REFIID riid, void** object) -> HRESULT {
         const HRESULT result = real(outer, riid, object);
         if (FAILED(result))
             real.Object()->AddRef();
         return result;
     })},
    {"unloading/cycles", On<IEffectInfo, name>([](auto real, ULONG language, WCHAR* text, ULONG* length) -> HRESULT {
         HMODULE stays = nullptr;
         GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                            reinterpret_cast<LPCWSTR>(&current), &stays);
         return real(language, text, length);
     })},
};

} // namespace

std::span<const Fault> CatalogueFaults()
{
    return catalogueFaults;
}

} // namespace broken
