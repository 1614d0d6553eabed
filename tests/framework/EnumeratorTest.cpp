#include "tests/framework/TestFilters.h"

#include <gtest/gtest.h>

using namespace test;

namespace {

TEST(Enumerators, PinsInOrderWithTheirIdentifiers)
{
    Held<Probe> probe;
    {
        ComPtr<IEnumPins> pins;
        ASSERT_EQ(S_OK, probe->EnumPins(&pins));
        IPin* found[3] = {};
        ULONG count = 9;
        EXPECT_EQ(E_INVALIDARG, pins->Next(2, found, nullptr));
        EXPECT_EQ(E_POINTER, pins->Next(1, nullptr, &count));
        EXPECT_EQ(S_FALSE, pins->Next(3, found, &count));
        ASSERT_EQ(2u, count);
        EXPECT_EQ(static_cast<IPin*>(&probe->In()), found[0]);
        EXPECT_EQ(static_cast<IPin*>(&probe->Out()), found[1]);

        const LPCWSTR ids[] = {L"In", L"Out"};
        for (int i = 0; i < 2; ++i) {
            LPWSTR id = nullptr;
            EXPECT_EQ(S_OK, found[i]->QueryId(&id));
            EXPECT_STREQ(ids[i], id);
            ComPtr<IPin> again;
            EXPECT_EQ(S_OK, probe->FindPin(id, &again)) << "what QueryId says FindPin finds";
            EXPECT_EQ(found[i], again.Get());
            CoTaskMemFree(id);
            found[i]->Release();
        }
        ComPtr<IPin> none;
        EXPECT_EQ(VFW_E_NOT_FOUND, probe->FindPin(L"Input", &none));
        EXPECT_EQ(E_POINTER, probe->FindPin(nullptr, &none));
        EXPECT_EQ(E_POINTER, probe->FindPin(L"In", nullptr));
        EXPECT_EQ(E_POINTER, probe->EnumPins(nullptr));

        EXPECT_EQ(S_FALSE, pins->Next(1, found, nullptr));
        EXPECT_EQ(S_OK, pins->Reset());
        EXPECT_EQ(S_OK, pins->Skip(1));
        ComPtr<IEnumPins> copy;
        ASSERT_EQ(S_OK, pins->Clone(&copy));
        EXPECT_EQ(S_OK, copy->Next(1, found, nullptr));
        EXPECT_EQ(static_cast<IPin*>(&probe->Out()), found[0]) << "a copy stands where the original does";
        found[0]->Release();
        EXPECT_EQ(S_FALSE, pins->Skip(0xFFFFFFFF));
        pins->Reset();
        probe->IncrementPinVersion();
        EXPECT_EQ(VFW_E_ENUM_OUT_OF_SYNC, pins->Next(1, found, nullptr));
    }
    EXPECT_EQ(0u, probe.Release());
    EXPECT_EQ(0, CBaseObject::ObjectsActive());
}

TEST(Enumerators, MediaTypesAreCopiesAndNoticeChanges)
{
    Held<Source> source;
    source->pin.types = {VideoType(8, 4), VideoType(16, 4), VideoType(24, 4)};
    {
        ComPtr<IEnumMediaTypes> types, copy;
        ASSERT_EQ(S_OK, source->pin.EnumMediaTypes(&types));
        AM_MEDIA_TYPE* found[4] = {};
        ULONG count = 9;
        EXPECT_EQ(E_INVALIDARG, types->Next(2, found, nullptr));
        EXPECT_EQ(S_OK, types->Next(2, found, &count));
        EXPECT_EQ(2u, count);
        EXPECT_TRUE(CMediaType(*found[1]) == source->pin.types[1]);
        EXPECT_NE(found[1]->pbFormat, source->pin.types[1].pbFormat);
        DeleteMediaType(found[0]);
        DeleteMediaType(found[1]);
        ASSERT_EQ(S_OK, types->Clone(&copy));
        EXPECT_EQ(S_FALSE, copy->Next(4, found, &count));
        EXPECT_EQ(1u, count);
        DeleteMediaType(found[0]);
        EXPECT_EQ(S_OK, types->Skip(1));
        EXPECT_EQ(S_FALSE, types->Skip(1));

        source->pin.IncrementTypeVersion();
        EXPECT_EQ(VFW_E_ENUM_OUT_OF_SYNC, types->Next(1, found, &count));
        EXPECT_EQ(VFW_E_ENUM_OUT_OF_SYNC, types->Skip(1));
        copy.Reset();
        EXPECT_EQ(VFW_E_ENUM_OUT_OF_SYNC, types->Clone(&copy));
        EXPECT_EQ(S_OK, types->Reset());
        EXPECT_EQ(S_OK, types->Next(1, found, nullptr));
        DeleteMediaType(found[0]);
    }
    EXPECT_EQ(0u, source.Release());
    EXPECT_EQ(0, CBaseObject::ObjectsActive());
}

// An in-place filter has no types of its own: each side offers what the other side of the filter does.
TEST(Enumerators, InPlacePinsOfferTheOtherSidesTypes)
{
    Chain chain;
    chain.source->pin.types = {VideoType(8, 4), VideoType(16, 4)};
    chain.sink->pin.types = {VideoType(8, 4)};
    ComPtr<IEnumMediaTypes> types;
    EXPECT_EQ(VFW_E_NOT_CONNECTED, chain.probe->In().EnumMediaTypes(&types));
    EXPECT_EQ(VFW_E_NOT_CONNECTED, chain.probe->Out().EnumMediaTypes(&types));
    EXPECT_EQ(E_POINTER, chain.probe->In().EnumMediaTypes(nullptr));
    ASSERT_EQ(S_OK, chain.Connect());
    const auto countTypes = [](IPin& pin) {
        ComPtr<IEnumMediaTypes> offered;
        EXPECT_EQ(S_OK, pin.EnumMediaTypes(&offered));
        int count = 0;
        while (offered->Skip(1) == S_OK)
            ++count;
        return count;
    };
    EXPECT_EQ(2, countTypes(chain.probe->Out()));
    EXPECT_EQ(1, countTypes(chain.probe->In()));
}

} // namespace
