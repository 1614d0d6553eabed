// Group "factories": how a host gets from a class identifier to an effect.
#include "host/validate/Contract.h"
#include "host/validate/Subject.h"

#include <vixavideofx/ClassIds.h>

namespace vixahost::validate {

namespace {

using namespace vixavideofx;

void AllClasses(Subject& library)
{
    for (const Promise& effect : Promises())
        library.Factory(*effect.classId);
}

void UnknownClass(Subject& library)
{
    void* const untouched = &library;
    void* object = untouched;
    RequireResult(library.ClassObject(IID_IEffectInfo, IID_IClassFactory, &object), CLASS_E_CLASSNOTAVAILABLE,
                  "DllGetClassObject for an unknown class");
    Require(object == untouched, "the refusal changed the caller's pointer");
}

void WrongInterface(Subject& library)
{
    void* const untouched = &library;
    void* object = untouched;
    RequireResult(library.ClassObject(CLSID_Emboss, IID_IEffectInfo, &object), E_NOINTERFACE,
                  "DllGetClassObject(IEffectInfo)");
    RequireResult(library.ClassObject(IID_IEffectInfo, IID_IEffectInfo, &object), E_NOINTERFACE,
                  "DllGetClassObject(IEffectInfo) for an unknown class");
    Require(object == untouched, "the refusal changed the caller's pointer");
}

void UnknownIsFactory(Subject& library)
{
    for (const Promise& effect : Promises()) {
        ComPtr<IUnknown> object;
        RequireResult(library.ClassObject(*effect.classId, IID_IUnknown, &object), S_OK, "DllGetClassObject(IUnknown)");
        ComPtr<IClassFactory> factory;
        RequireResult(object.As(&factory), S_OK, "QueryInterface(IClassFactory)");
        Require(static_cast<void*>(object.Get()) == static_cast<void*>(factory.Get()),
                std::string(effect.name) + ": the class object is not the factory itself");
    }
}

void CreatesFilters(Subject& library)
{
    for (const Promise& effect : Promises()) {
        const auto filter = library.Filter(*effect.classId);
        RequireNumber(ReferencesOf(filter.Get()), 1, std::string(effect.name) + ": a new filter's count");
    }
}

void FailedQuery(Subject& library)
{
    const auto factory = library.Factory(CLSID_Emboss);
    ComPtr<IUnknown> kept;
    void* object = &library;
    RequireResult(factory->CreateInstance(nullptr, IID_IClassFactory, &object), E_NOINTERFACE,
                  "CreateInstance(IClassFactory)");
    Require(object == nullptr, "the caller's pointer is not null after the refusal");
}

void NullResult(Subject& library)
{
    RequireResult(library.Factory(CLSID_Emboss)->CreateInstance(nullptr, IID_IUnknown, nullptr), E_POINTER,
                  "CreateInstance without a place for the result");
}

// The outer object of an aggregate.
class Outer final : public IUnknown
{
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) noexcept override
    {
        ++queries;
        if (riid == IID_IUnknown) {
            AddRef();
            *object = this;
            return S_OK;
        }
        return inner ? inner->QueryInterface(riid, object) : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() noexcept override { return --references; }

    IUnknown* inner = nullptr;
    int queries = 0;
    ULONG references = 1;
};

void AggregationRefused(Subject& library)
{
    Outer outer;
    void* object = nullptr;
    RequireResult(library.Factory(CLSID_AddPixel)->CreateInstance(&outer, IID_IBaseFilter, &object), E_NOINTERFACE,
                  "CreateInstance(IBaseFilter) with an outer object");
}

void Aggregation(Subject& library)
{
    Outer outer;
    ComPtr<IUnknown> inner;
    RequireResult(library.Factory(CLSID_AddPixel)->CreateInstance(&outer, IID_IUnknown, &inner), S_OK,
                  "CreateInstance(IUnknown) with an outer object");
    outer.inner = inner.Get();
    {
        ComPtr<IEffectFilter> effect;
        RequireResult(inner.As(&effect), S_OK, "the inner object's QueryInterface(IEffectFilter)");
        RequireNumber(outer.references, 2, "the outer object's count after an inner interface was handed out");
        ComPtr<IUnknown> identity;
        effect.As(&identity);
        Require(identity.Get() == static_cast<IUnknown*>(&outer), "an inner interface has another identity");
    }
    RequireNumber(outer.references, 1, "the outer object's count at the end");
}

void LockServer(Subject& library)
{
    auto factory = library.Factory(CLSID_Emboss);
    RequireResult(factory->LockServer(TRUE), S_OK, "LockServer(TRUE)");
    RequireResult(factory->LockServer(FALSE), S_OK, "LockServer(FALSE)");
}

constexpr Check factoryChecks[] = {
    {"factories", "all-classes", "Each of the thirteen class identifiers has a class factory.", AllClasses},
    {"factories", "unknown-class", "An unknown class gets CLASS_E_CLASSNOTAVAILABLE and nothing is written.",
     UnknownClass},
    {"factories", "wrong-interface", "Only IUnknown and IClassFactory are served, judged before the class.",
     WrongInterface},
    {"factories", "unknown-is-factory", "A request for IUnknown gets the factory itself.", UnknownIsFactory},
    {"factories", "creates-filters", "CreateInstance makes every effect, with one reference.", CreatesFilters},
    {"factories", "failed-query", "CreateInstance for an interface that an effect lacks answers E_NOINTERFACE.",
     FailedQuery},
    {"factories", "null-result", "CreateInstance without a place for the result answers E_POINTER.", NullResult},
    {"factories", "aggregation-refused", "An outer object may ask for IUnknown only.", AggregationRefused},
    {"factories", "aggregation", "An aggregated effect has its outer object's identity and count.", Aggregation},
    {"factories", "lock-server", "LockServer answers S_OK both ways.", LockServer},
};

} // namespace

std::span<const Check> FactoryChecks()
{
    return factoryChecks;
}

} // namespace vixahost::validate
