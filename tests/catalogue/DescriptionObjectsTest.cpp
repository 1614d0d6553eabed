#include "catalogue/EffectCatalogue.h"
#include "framework/DllEntry.h"
#include "tests/localisation/ModuleFixture.h"

#include <vixavideofx/PropertySets.h>

#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <wrl/client.h>

// No effect is served here.
constinit const std::span<CFactoryTemplate> g_Templates;

namespace {

using Microsoft::WRL::ComPtr;
using vixa::test::TestModule;

constexpr LANGID english = 1033, german = 1031;
constexpr UINT picture = 50, noPicture = 51, name = 104;

struct Descriptions : testing::Test
{
    void SetUp() override
    {
        library.reset(LoadLibraryW((vixa::test::ProgramFolder() / L"catalogue_library.dll").c_str()));
        ASSERT_TRUE(library);
        module.Attach(library.get());
    }
    void TearDown() override
    {
        module.Detach();
        EXPECT_EQ(CBaseObject::ObjectsActive(), 0);
    }

    static ComPtr<ISingleValuePropertySetInfo> ValueInfo(UINT formatId, UINT imageId = picture)
    {
        return SingleValuePropertySetInfo::New({-10.0, 90.5, 0.25, formatId, imageId, name});
    }
    static ComPtr<ISingleEnumPropertySetInfo> EnumInfo(ULONG count = 3)
    {
        return SingleEnumPropertySetInfo::New({count, 200, picture, name});
    }

    // Both calls of the protocol; the second gets a buffer of just the answered size between marks.
    template <typename Request>
    static std::wstring TextOf(const Request& request)
    {
        ULONG length = 0xDEAD;
        EXPECT_EQ(request(nullptr, &length), S_OK);
        if (length == 0)
            return L"(none)";
        std::wstring buffer(length + 1, L'#');
        ULONG again = 0;
        EXPECT_EQ(request(buffer.data(), &again), S_OK);
        EXPECT_EQ(again, length);
        EXPECT_EQ(buffer[length], L'#') << "written past the answered length";
        EXPECT_EQ(buffer[length - 1], L'\0');
        return buffer.substr(0, length - 1);
    }

    vixa::UniqueModule library;
    TestModule module;
};

TEST_F(Descriptions, RangesGoToThePointersGiven)
{
    const auto info = ValueInfo(0);
    double minimum = 7, maximum = 7, step = 7;
    EXPECT_EQ(info->GetRange(nullptr, nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(info->GetRange(nullptr, &maximum, nullptr), S_OK);
    EXPECT_EQ(maximum, 90.5);
    EXPECT_EQ(info->GetRange(&minimum, nullptr, &step), S_OK);
    EXPECT_EQ(minimum, -10.0);
    EXPECT_EQ(step, 0.25);
}

TEST_F(Descriptions, ValuesAreFormattedInTheCurrentLanguage)
{
    const auto info = ValueInfo(100);
    const auto text = [&](LANGID language, double value) {
        return TextOf([&](WCHAR* buffer, ULONG* length) { return info->FormatValue(language, value, buffer, length); });
    };
    EXPECT_EQ(text(english, 79.6), L"80");
    ULONG length = 99;
    EXPECT_EQ(info->FormatValue(german, 1.0, nullptr, &length), E_FAIL);
    EXPECT_EQ(length, 99u);
    EXPECT_EQ(info->FormatValue(german, 1.0, nullptr, nullptr), E_FAIL) << "the language is judged first";
    EXPECT_EQ(info->FormatValue(english, 1.0, nullptr, nullptr), E_INVALIDARG);
    WCHAR buffer[3];
    EXPECT_EQ(info->FormatValue(english, 12.0, buffer, nullptr), S_OK);
    EXPECT_STREQ(buffer, L"12");
    ModuleBase::SetLanguage(german);
    EXPECT_EQ(text(german, -0.25), L"-0.2 Prozent");
    EXPECT_EQ(info->FormatValue(english, 1.0, nullptr, &length), E_FAIL);
}

TEST_F(Descriptions, FormatsThatAskForMoreThanOneNumberGiveNoText)
{
    ModuleBase::SetLanguage(german);
    for (const UINT format : {0u, 101u, 102u, 103u, 999u}) {
        const auto info = ValueInfo(format);
        WCHAR untouched[2] = {L'#', L'#'};
        ULONG length = 99;
        EXPECT_EQ(info->FormatValue(german, 1.0, untouched, &length), S_OK) << format;
        EXPECT_EQ(length, 0u) << format;
        EXPECT_EQ(untouched[0], L'#') << format;
        EXPECT_EQ(info->FormatValue(german, 1.0, untouched, nullptr), S_OK) << format;
    }
}

TEST_F(Descriptions, ChoicesAreNamedWithinTheirCount)
{
    const auto info = EnumInfo();
    ULONG count = 0;
    EXPECT_EQ(info->GetCount(nullptr), E_INVALIDARG);
    EXPECT_EQ(info->GetCount(&count), S_OK);
    EXPECT_EQ(count, 3u);
    const std::array<std::wstring, 3> names = {L"Low", L"Middle", L"High"};
    for (long i = 0; i < 3; ++i) {
        EXPECT_EQ(TextOf([&](WCHAR* buffer, ULONG* length) { return info->GetItemName(english, i, buffer, length); }),
                  names[static_cast<std::size_t>(i)]);
    }
    ULONG length = 99;
    for (const long index : {3L, 1000L, LONG_MAX, -1L, LONG_MIN})
        EXPECT_EQ(info->GetItemName(english, index, nullptr, &length), E_INVALIDARG) << index;
    EXPECT_EQ(info->GetItemName(english, 0, nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(info->GetItemName(german, 0, nullptr, &length), E_FAIL);
    EXPECT_EQ(info->GetItemName(german, -1, nullptr, &length), E_FAIL);
    EXPECT_EQ(length, 99u);
    EXPECT_EQ(EnumInfo(0)->GetItemName(english, 0, nullptr, &length), E_INVALIDARG);
    EXPECT_EQ(EnumInfo(0xFFFFFFFF)->GetItemName(english, -1, nullptr, &length), E_INVALIDARG);
    EXPECT_EQ(EnumInfo(9)->GetItemName(english, 8, nullptr, &length), S_OK) << "a choice without a text";
    EXPECT_EQ(length, 1u);
}

TEST_F(Descriptions, NamesAndPicturesAreTheSameForBoth)
{
    const auto check = [&](auto info) {
        EXPECT_EQ(TextOf([&](WCHAR* buffer, ULONG* length) { return info->GetName(english, buffer, length); }),
                  L"Strength");
        EXPECT_EQ(info->GetName(english, nullptr, nullptr), E_INVALIDARG);
        ULONG length = 99;
        EXPECT_EQ(info->GetName(german, nullptr, &length), E_FAIL);
        EXPECT_EQ(length, 99u);

        ULONG size = 0;
        std::array<BYTE, 57> buffer;
        buffer.fill(0x5A);
        EXPECT_EQ(info->GetImage(nullptr, nullptr), E_INVALIDARG);
        EXPECT_EQ(info->GetImage(buffer.data(), nullptr), E_INVALIDARG);
        EXPECT_EQ(info->GetImage(nullptr, &size), S_OK);
        EXPECT_EQ(size, 56u);
        for (const ULONG room : {0ul, 55ul}) {
            size = room;
            EXPECT_EQ(info->GetImage(buffer.data(), &size), S_OK);
            EXPECT_EQ(size, room);
            EXPECT_EQ(buffer[0], 0x5A) << "too small a buffer receives nothing";
        }
        size = 56;
        EXPECT_EQ(info->GetImage(buffer.data(), &size), S_OK);
        EXPECT_EQ(buffer[0], 40);
        EXPECT_EQ(buffer[40], 0x11);
        EXPECT_EQ(buffer[53], 0xCC);
        EXPECT_EQ(buffer[56], 0x5A);
    };
    check(ValueInfo(100));
    check(EnumInfo());
    ModuleBase::SetLanguage(german);
    ULONG size = 0;
    EXPECT_EQ(ValueInfo(100)->GetImage(nullptr, &size), S_OK) << "pictures come from the library";
    EXPECT_EQ(ValueInfo(100, noPicture)->GetImage(nullptr, &size), E_FAIL);
    EXPECT_EQ(ValueInfo(100, 0)->GetImage(nullptr, &size), E_FAIL);
    EXPECT_EQ(TextOf([&](WCHAR* buffer, ULONG* length) { return EnumInfo()->GetName(german, buffer, length); }),
              L"Staerke");
    EXPECT_EQ(TextOf([&](WCHAR* buffer, ULONG* length) { return EnumInfo()->GetItemName(german, 0, buffer, length); }),
              L"")
        << "a text that the language file lacks";
}

TEST_F(Descriptions, InterfacesAndCounts)
{
    const auto check = [](auto* object, REFIID own, REFIID other) {
        EXPECT_EQ(object->AddRef(), 1u) << "created without a reference";
        for (const IID& iid : {IID_IUnknown, own}) {
            void* found = nullptr;
            EXPECT_EQ(object->QueryInterface(iid, &found), S_OK);
            EXPECT_EQ(found, object);
            EXPECT_EQ(object->Release(), 1u);
        }
        void* none = object;
        EXPECT_EQ(object->QueryInterface(other, &none), E_NOINTERFACE);
        EXPECT_EQ(none, nullptr);
        EXPECT_EQ(object->QueryInterface(own, nullptr), E_POINTER);
        EXPECT_EQ(CBaseObject::ObjectsActive(), 1);
        EXPECT_EQ(object->Release(), 0u);
        EXPECT_EQ(CBaseObject::ObjectsActive(), 0) << "destroyed";
    };
    check(static_cast<ISingleValuePropertySetInfo*>(SingleValuePropertySetInfo::New({})),
          IID_ISingleValuePropertySetInfo, IID_ISingleEnumPropertySetInfo);
    check(static_cast<ISingleEnumPropertySetInfo*>(SingleEnumPropertySetInfo::New({})), IID_ISingleEnumPropertySetInfo,
          IID_ISingleValuePropertySetInfo);
}

// An effect whose record the test makes up.
class OwnRecord final : public EffectCatalogue
{
public:
    explicit OwnRecord(const vixa::EffectRecord& effect) : EffectCatalogue(&effect) {}
    STDMETHODIMP QueryInterface(REFIID, void**) noexcept override { return E_NOINTERFACE; }
    STDMETHODIMP_(ULONG) AddRef() noexcept override { return 2; }
    STDMETHODIMP_(ULONG) Release() noexcept override { return 1; }
};

// The host's object for one value; what it answers is nobody's business.
template <typename Interface, typename Value>
class OneValue final : public Interface
{
public:
    STDMETHODIMP QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP GetValue(Value*) override { return E_FAIL; }
    STDMETHODIMP SetValue(Value value) override
    {
        written = value;
        return E_FAIL;
    }
    std::optional<Value> written;
};

vixa::EffectRecord RecordOfKind(ULONG kind)
{
    return {.group = {3, 0},
            .sortKey = 0,
            .nameId = name,
            .iconId = picture,
            .parameterKind = static_cast<vixavideofx::PropertySetKind>(kind)};
}

// What an effect with this record describes, after it has written its default.
template <typename Info, typename Set, typename Value>
ComPtr<Info> Described(const vixa::EffectRecord& record, Value wanted)
{
    OwnRecord effect(record);
    OneValue<Set, Value> set;
    EXPECT_EQ(effect.SetDefaults(&set), S_OK);
    EXPECT_EQ(set.written, wanted);
    ComPtr<IUnknown> object;
    EXPECT_EQ(effect.GetPropertySetInfo(&object), S_OK);
    EXPECT_EQ((object->AddRef(), object->Release()), 1u);
    ComPtr<Info> info;
    EXPECT_EQ(object.As(&info), S_OK);
    return info;
}

TEST_F(Descriptions, EffectsOfOneNumberAndOfOneChoice)
{
    const vixa::ValueDescription number = {-10.0, 90.5, 0.25, 100, picture, name, 12.5};
    auto record = RecordOfKind(2);
    record.value = &number;
    double maximum = 0;
    EXPECT_EQ((Described<ISingleValuePropertySetInfo, ISingleValuePropertySet>(record, 12.5))
                  ->GetRange(nullptr, &maximum, nullptr),
              S_OK);
    EXPECT_EQ(maximum, 90.5);

    const vixa::EnumDescription choices = {3, 200, picture, name, 2};
    record = RecordOfKind(3);
    record.choice = &choices;
    ULONG count = 0;
    EXPECT_EQ((Described<ISingleEnumPropertySetInfo, ISingleEnumPropertySet>(record, 2L))->GetCount(&count), S_OK);
    EXPECT_EQ(count, 3u);
}

TEST_F(Descriptions, KindsWithoutADescription)
{
    const struct
    {
        ULONG kind;
        HRESULT description, defaults;
    } cases[] = {{0, S_OK, S_OK},   {1, S_OK, E_FAIL}, {2, E_FAIL, E_FAIL}, {3, E_FAIL, E_FAIL},
                 {4, S_OK, E_FAIL}, {6, S_OK, E_FAIL}, {7, E_FAIL, E_FAIL}};
    for (const auto& [kind, description, defaults] : cases) {
        SCOPED_TRACE(kind);
        const auto record = RecordOfKind(kind);
        OwnRecord effect(record);
        IUnknown* const untouched = &effect;
        IUnknown* object = untouched;
        EXPECT_EQ(effect.GetPropertySetInfo(&object), description);
        EXPECT_EQ(object, description == S_OK ? nullptr : untouched);
        OneValue<ISingleValuePropertySet, double> set;
        EXPECT_EQ(effect.SetDefaults(&set), defaults);
        EXPECT_FALSE(set.written);
    }
}

} // namespace
