// Group "identity": QueryInterface, AddRef and Release.
#include "host/fixtures/RecordedSet.h"
#include "host/validate/Contract.h"
#include "host/validate/Subject.h"

#include <vixavideofx/ClassIds.h>

#include <atomic>
#include <thread>

namespace vixahost::validate {

namespace {

using namespace vixavideofx;

// An interface that nobody has.
constexpr IID unknownInterface = {0x5E1F0B21, 0x77A4, 0x4C0E, {0x9D, 0x10, 0x3A, 0x5B, 0x6C, 0x7D, 0x8E, 0x9F}};

void RefusesUnknown(IUnknown* object, const std::string& what)
{
    void* answer = object;
    RequireResult(object->QueryInterface(unknownInterface, &answer), E_NOINTERFACE,
                  what + ": QueryInterface for an interface that it lacks");
    Require(answer == nullptr, what + ": the caller's pointer is not null after the refusal");
}

// Every interface leads to every other one, and all of them to one IUnknown.
void OneObject(IUnknown* object, std::span<const IID* const> interfaces, const std::string& what)
{
    ComPtr<IUnknown> identity;
    RequireResult(object->QueryInterface(IID_IUnknown, &identity), S_OK, what + ": QueryInterface(IUnknown)");
    for (const IID* from : interfaces) {
        ComPtr<IUnknown> face;
        RequireResult(object->QueryInterface(*from, &face), S_OK, what + ": QueryInterface for one of its interfaces");
        ComPtr<IUnknown> same;
        RequireResult(face->QueryInterface(IID_IUnknown, &same), S_OK, what + ": QueryInterface(IUnknown)");
        Require(same.Get() == identity.Get(), what + ": two interfaces name different objects");
        for (const IID* to : interfaces) {
            ComPtr<IUnknown> other;
            RequireResult(face->QueryInterface(*to, &other), S_OK, what + ": QueryInterface between its interfaces");
        }
        RefusesUnknown(face.Get(), what);
    }
}

void Factories(Subject& library)
{
    for (const Promise& effect : Promises()) {
        const auto factory = library.Factory(*effect.classId);
        const IID* const interfaces[] = {&IID_IUnknown, &IID_IClassFactory};
        OneObject(factory.Get(), interfaces, std::string(effect.name) + "'s factory");
    }
}

void CatalogueObjects(Subject& library)
{
    for (const Promise& effect : Promises()) {
        const auto info = library.Info(*effect.classId);
        const IID* const interfaces[] = {&IID_IUnknown, &IID_IEffectInfo};
        OneObject(info.Get(), interfaces, std::string(effect.name) + "'s catalogue object");
    }
}

void Filters(Subject& library)
{
    for (const Promise& effect : Promises()) {
        const auto filter = library.Filter(*effect.classId);
        const IID* const interfaces[] = {&IID_IUnknown, &IID_IPersist, &IID_IMediaFilter, &IID_IBaseFilter,
                                         &IID_IEffectFilter};
        OneObject(filter.Get(), interfaces, std::string(effect.name) + "'s filter");
    }
}

void FactoryCounts(Subject& library)
{
    for (const Promise& effect : Promises()) {
        const std::string name = effect.name;
        auto factory = library.Factory(*effect.classId);
        RequireNumber(factory->AddRef(), 2, name + ": the second reference's count");
        RequireNumber(factory->Release(), 1, name + ": the count after its release");
        ComPtr<IBaseFilter> filter;
        RequireResult(factory->CreateInstance(nullptr, IID_IBaseFilter, &filter), S_OK, name + ": CreateInstance");
        RequireNumber(ReferencesOf(factory.Get()), 1, name + ": the factory's count after it made a filter");
        RequireNumber(factory.Detach()->Release(), 0, name + ": the factory's last Release");
    }
}

void CatalogueCounts(Subject& library)
{
    for (const Promise& effect : Promises()) {
        const std::string name = effect.name;
        auto factory = library.Factory(*effect.classId);
        ComPtr<IEffectInfo> info, again;
        RequireResult(factory.As(&info), S_OK, name + ": QueryInterface(IEffectInfo)");
        RequireNumber(ReferencesOf(info.Get()), 1, name + ": a new catalogue object's count");
        factory.As(&again);
        RequireNumber(ReferencesOf(info.Get()), 2, name + ": its count after a second request");
        again.Reset();
        RequireNumber(ReferencesOf(factory.Get()), 1, name + ": the factory's count beside its catalogue object");
        RequireNumber(info.Detach()->Release(), 0, name + ": the catalogue object's last Release");
        RequireNumber(factory.Detach()->Release(), 0, name + ": the factory's last Release");
    }
}

void FilterCounts(Subject& library)
{
    for (const Promise& effect : Promises()) {
        const std::string name = effect.name;
        auto filter = library.Filter(*effect.classId);
        {
            const auto parameters = Parameters(filter.Get());
            RequireNumber(ReferencesOf(filter.Get()), 2, name + ": the count of a filter with two interfaces out");
            ComPtr<IPin> pin;
            filter->FindPin(L"In", &pin);
        }
        RequireNumber(filter.Detach()->Release(), 0, name + ": the filter's last Release");
    }
}

void SameCatalogueObject(Subject& library)
{
    const auto factory = library.Factory(CLSID_Emboss);
    ComPtr<IEffectInfo> info, again;
    factory.As(&info);
    factory.As(&again);
    Require(info && info.Get() == again.Get(), "two requests on one factory get different catalogue objects");
    ComPtr<IClassFactory> back;
    RequireResult(info.As(&back), S_OK, "the catalogue object's QueryInterface(IClassFactory)");
    Require(back.Get() == factory.Get(), "the catalogue object names another factory");
}

ULONG GroupOf(IEffectInfo* info)
{
    ULONG group = 0;
    RequireResult(info->GetGroupId(&group), S_OK, "GetGroupId");
    return group;
}

void FactoryFirst(Subject& library)
{
    auto factory = library.Factory(CLSID_SoftenFilter);
    ComPtr<IEffectInfo> info;
    factory.As(&info);
    factory.Reset();
    RequireNumber(GroupOf(info.Get()), 5, "the group after the factory's death");
    RequireResult(info.As(&factory), S_OK, "QueryInterface(IClassFactory) after the factory's death");
    ComPtr<IBaseFilter> filter;
    RequireResult(factory->CreateInstance(nullptr, IID_IBaseFilter, &filter), S_OK, "the new factory's CreateInstance");
    ComPtr<IEffectInfo> again;
    RequireResult(factory.As(&again), S_OK, "the new factory's QueryInterface(IEffectInfo)");
    Require(again.Get() == info.Get(), "the new factory names another catalogue object");
}

void CatalogueFirst(Subject& library)
{
    const auto factory = library.Factory(CLSID_SoftenFilter);
    for (int i = 0; i < 3; ++i) {
        ComPtr<IEffectInfo> info;
        RequireResult(factory.As(&info), S_OK, "QueryInterface(IEffectInfo)");
        RequireNumber(GroupOf(info.Get()), 5, "the group");
    }
}

void PropertySetsReleased(Subject& library)
{
    for (const Promise& effect : Promises()) {
        fixtures::RecordedSet set(effect.working);
        const auto filter = library.Filter(*effect.classId);
        Parameters(filter.Get())->SetPropertySet(&set);
        RequireNumber(set.references, 1, std::string(effect.name) + ": the property set's count after SetPropertySet");
        library.Info(*effect.classId)->SetDefaults(&set);
        RequireNumber(set.references, 1, std::string(effect.name) + ": the property set's count after SetDefaults");
        RequireNumber(set.queries, 0, std::string(effect.name) + ": queries to the property set");
    }
}

void ManyThreads(Subject& library)
{
    const auto factory = library.Factory(CLSID_Emboss);
    std::atomic<int> strange = 0;
    const auto work = [&] {
        for (int i = 0; i < 1000; ++i) {
            ComPtr<IEffectInfo> info;
            ComPtr<IClassFactory> back;
            if (FAILED(factory.As(&info)) || FAILED(info.As(&back)) || back.Get() != factory.Get())
                ++strange;
        }
    };
    std::thread first(work), second(work);
    work();
    first.join();
    second.join();
    RequireNumber(strange, 0, "the count of wrong answers under three threads");
    RequireNumber(ReferencesOf(factory.Get()), 1, "the factory's count afterwards");
}

constexpr Check identityChecks[] = {
    {"identity", "factories", "A factory's interfaces are one object and refuse what they lack.", Factories},
    {"identity", "catalogue", "A catalogue object's interfaces are one object and refuse what they lack.",
     CatalogueObjects},
    {"identity", "filters", "A filter's five interfaces are one object and refuse what they lack.", Filters},
    {"identity", "factory-counts", "A factory's references move by one and end at 0.", FactoryCounts},
    {"identity", "catalogue-counts", "A catalogue object's references move by one and end at 0.", CatalogueCounts},
    {"identity", "filter-counts", "A filter's references move by one and end at 0.", FilterCounts},
    {"identity", "same-catalogue-object", "A factory and its catalogue object lead to each other.",
     SameCatalogueObject},
    {"identity", "factory-dies-first", "A catalogue object outlives its factory and can make a new one.", FactoryFirst},
    {"identity", "catalogue-dies-first", "A factory makes a new catalogue object when the old one is gone.",
     CatalogueFirst},
    {"identity", "property-sets", "Property sets are neither kept nor asked for interfaces.", PropertySetsReleased},
    {"identity", "threads", "Three threads that ask for the catalogue object at once get the same one.", ManyThreads},
};

} // namespace

std::span<const Check> IdentityChecks()
{
    return identityChecks;
}

} // namespace vixahost::validate
