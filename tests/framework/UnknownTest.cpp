#include "tests/framework/TestFilters.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstddef>

using namespace test;

namespace {

// An object that others are aggregated into.
struct Outer : IUnknown
{
    ULONG count = 0;
    IUnknown* inner = nullptr;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) noexcept override
    {
        if (!IsEqualIID(riid, IID_IUnknown))
            return inner->QueryInterface(riid, ppv);
        *ppv = this;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return ++count; }
    ULONG STDMETHODCALLTYPE Release() noexcept override { return --count; }
};

template <typename Interface>
Interface* Query(IUnknown* object, REFIID riid)
{
    void* face = nullptr;
    EXPECT_EQ(S_OK, object->QueryInterface(riid, &face));
    return static_cast<Interface*>(face);
}

TEST(Unknown, FacesShareOneIdentityAndOneCount)
{
    Held<Probe> probe;
    auto* const identity = Query<IUnknown>(probe->GetOwner(), IID_IUnknown);
    for (const IID* riid : {&IID_IBaseFilter, &IID_IMediaFilter, &IID_IPersist, &IID_IAMovieSetup}) {
        auto* const face = Query<IUnknown>(identity, *riid);
        auto* const back = Query<IUnknown>(face, IID_IUnknown);
        EXPECT_EQ(identity, back);
        EXPECT_EQ(3u, back->Release());
        EXPECT_EQ(2u, face->Release());
    }
    void* nothing = &probe;
    EXPECT_EQ(E_NOINTERFACE, identity->QueryInterface(IID_IMemAllocator, &nothing));
    EXPECT_EQ(nullptr, nothing);
    EXPECT_EQ(E_POINTER, identity->QueryInterface(IID_IUnknown, nullptr));
    EXPECT_EQ(E_POINTER, identity->QueryInterface(IID_IBaseFilter, nullptr));
    EXPECT_EQ(E_POINTER, identity->QueryInterface(IID_IMemAllocator, nullptr));
    EXPECT_EQ(E_POINTER, probe->Out().QueryInterface(IID_IMediaSeeking, nullptr));

    CLSID classId = {};
    EXPECT_EQ(S_OK, probe->GetClassID(&classId));
    EXPECT_EQ(probeClass, classId);
    EXPECT_EQ(E_POINTER, probe->GetClassID(nullptr));
    EXPECT_EQ(1u, identity->Release());
    EXPECT_EQ(0u, probe.Release());
    EXPECT_EQ(0, CBaseObject::ObjectsActive());
}

TEST(Unknown, AggregatedFilterDelegatesToTheOuterObject)
{
    Outer outer;
    {
        Held<Probe> probe(&outer); // the creator's reference is the inner object's own
        ASSERT_EQ(S_OK, probe->NonDelegatingQueryInterface(IID_IUnknown, reinterpret_cast<void**>(&outer.inner)));
        EXPECT_EQ(0u, outer.count);

        auto* const face = Query<IBaseFilter>(&outer, IID_IBaseFilter);
        EXPECT_EQ(1u, outer.count) << "a face counts on the outer object";
        auto* const identity = Query<IUnknown>(face, IID_IUnknown);
        EXPECT_EQ(static_cast<IUnknown*>(&outer), identity);
        EXPECT_EQ(1u, identity->Release());

        ComPtr<IPin> pin;
        EXPECT_EQ(S_OK, face->FindPin(L"In", &pin));
        EXPECT_EQ(2u, outer.count) << "a pin's references are those of the whole aggregate";
        pin.Reset();
        EXPECT_EQ(0u, face->Release());
        EXPECT_EQ(1u, outer.inner->Release()) << "the creator's is left";
        EXPECT_EQ(0u, probe.Release());
    }
    EXPECT_EQ(0u, outer.count);
    EXPECT_EQ(0, CBaseObject::ObjectsActive());
}

TEST(Unknown, PinsHaveTheirOwnIdentityAndTheFiltersCount)
{
    Held<Probe> probe;
    {
        ComPtr<IPin> in, out;
        EXPECT_EQ(S_OK, probe->FindPin(L"In", &in));
        EXPECT_EQ(S_OK, probe->FindPin(L"Out", &out));
        ComPtr<IUnknown> identity, back, other;
        ComPtr<IMemInputPin> input;
        in.As(&identity);
        ASSERT_EQ(S_OK, in.As(&input));
        input.As(&back);
        out.As(&other);
        EXPECT_EQ(identity.Get(), back.Get());
        EXPECT_NE(identity.Get(), other.Get());
        ComPtr<IQualityControl> quality;
        EXPECT_EQ(S_OK, in.As(&quality));
        EXPECT_EQ(S_OK, out.As(&quality));
        EXPECT_EQ(E_NOINTERFACE, out.As(&input));

        EXPECT_EQ(6u, probe.Release()) << "while a pin is held its filter stays";
        PIN_INFO info = {};
        EXPECT_EQ(S_OK, in->QueryPinInfo(&info));
        EXPECT_STREQ(L"Input", info.achName);
        EXPECT_EQ(PINDIR_INPUT, info.dir);
        EXPECT_EQ(6u, info.pFilter->Release());
        EXPECT_EQ(3, CBaseObject::ObjectsActive());
    }
    EXPECT_EQ(0, CBaseObject::ObjectsActive());
}

// The platform's seeking object is aggregated into the output; it must neither keep the filter alive nor outlive it.
TEST(Unknown, OutputPassesSeekingUpstream)
{
    Held<Probe> probe;
    {
        ComPtr<IMediaSeeking> seeking;
        ComPtr<IMediaPosition> position;
        ASSERT_EQ(S_OK,
                  probe->Out().QueryInterface(IID_IMediaSeeking, reinterpret_cast<void**>(seeking.GetAddressOf())));
        ASSERT_EQ(S_OK,
                  probe->Out().QueryInterface(IID_IMediaPosition, reinterpret_cast<void**>(position.GetAddressOf())));
        LONGLONG now = 0;
        EXPECT_HRESULT_FAILED(seeking->GetCurrentPosition(&now)) << "nothing is connected upstream";
        ComPtr<IUnknown> identity, back;
        probe->Out().QueryInterface(IID_IUnknown, reinterpret_cast<void**>(identity.GetAddressOf()));
        seeking.As(&back);
        EXPECT_EQ(identity.Get(), back.Get());
    }
    EXPECT_EQ(0u, probe.Release());
    EXPECT_EQ(0, CBaseObject::ObjectsActive());
}

// Where a virtual operation stands in its class's table: this tool chain keeps the distance in the member's pointer.
template <typename Member>
std::ptrdiff_t Slot(Member member)
{
    struct Parts
    {
        std::ptrdiff_t distance, adjustment;
    };
    return (std::bit_cast<Parts>(member).distance - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

// The order that derived filters are compiled against.
TEST(Unknown, OperationsStandInTheirOrder)
{
    using Filter = CTransInPlaceFilter;
    using Two = HRESULT (Filter::*)(IMediaSample*, IMediaSample*);
    using One = HRESULT (Filter::*)(IMediaSample*);
    EXPECT_EQ(0, Slot(&Filter::NonDelegatingQueryInterface));
    EXPECT_EQ(1, Slot(&Filter::NonDelegatingAddRef));
    EXPECT_EQ(2, Slot(&Filter::NonDelegatingRelease));
    // The destructor has two places here.
    EXPECT_EQ(5, Slot(&Filter::StreamTime));
    EXPECT_EQ(6, Slot(&Filter::GetPinVersion));
    EXPECT_EQ(7, Slot(&Filter::GetPinCount));
    EXPECT_EQ(8, Slot(&Filter::GetPin));
    EXPECT_EQ(9, Slot(&Filter::GetSetupData));
    const std::ptrdiff_t own[] = {Slot(static_cast<Two>(&Filter::Transform)),
                                  Slot(&Filter::CheckInputType),
                                  Slot(&Filter::CheckTransform),
                                  Slot(&Filter::DecideBufferSize),
                                  Slot(&Filter::GetMediaType),
                                  Slot(&Filter::StartStreaming),
                                  Slot(&Filter::StopStreaming),
                                  Slot(&Filter::AlterQuality),
                                  Slot(&Filter::SetMediaType),
                                  Slot(&Filter::CheckConnect),
                                  Slot(&Filter::BreakConnect),
                                  Slot(&Filter::CompleteConnect),
                                  Slot(&Filter::Receive),
                                  Slot(&Filter::EndOfStream),
                                  Slot(&Filter::BeginFlush),
                                  Slot(&Filter::EndFlush),
                                  Slot(&Filter::NewSegment)};
    for (std::size_t i = 1; i < std::size(own); ++i)
        EXPECT_EQ(own[i - 1] + 1, own[i]) << i;
    EXPECT_EQ(own[16] + 1, Slot(static_cast<One>(&Filter::Transform)));
}

} // namespace
