// Groups "catalogue", "icons" and "defaults": what a host can learn of an effect.
#include "host/fixtures/GuardedMemory.h"
#include "host/fixtures/RecordedSet.h"
#include "host/validate/Contract.h"
#include "host/validate/Subject.h"

#include <vixavideofx/EffectParameters.h>

#include <algorithm>
#include <cstring>
#include <set>
#include <vector>

namespace vixahost::validate {

namespace {

using namespace vixavideofx;
using Getter = HRESULT (STDMETHODCALLTYPE IEffectInfo::*)(ULONG*);

ULONG Answer(IEffectInfo* info, Getter getter, const std::string& what)
{
    ULONG value = 0xDEADBEEF;
    RequireResult((info->*getter)(&value), S_OK, what);
    return value;
}

// One getter for all effects.
template <typename Wanted>
void Compare(Subject& library, Getter getter, const char* call, Wanted wanted)
{
    for (const Promise& effect : Promises()) {
        const auto info = library.Info(*effect.classId);
        const std::string what = std::string(effect.name) + ": " + call;
        RequireNumber(Answer(info.Get(), getter, what), wanted(effect), what);
    }
}

constexpr auto none = [](const Promise&) { return 0; };
constexpr auto one = [](const Promise&) { return 1; };

void TypeCodes(Subject& library)
{
    Compare(library, &IEffectInfo::GetTypeCode, "GetTypeCode", none);
    Compare(library, &IEffectInfo::GetSubtypeCode, "GetSubtypeCode", none);
}

void Groups(Subject& library)
{
    Compare(library, &IEffectInfo::GetGroupId, "GetGroupId", [](const Promise& effect) { return effect.group; });
}

void SortKeys(Subject& library)
{
    Compare(library, &IEffectInfo::GetSortKey, "GetSortKey", [](const Promise& effect) { return effect.sortKey; });
}

void Kinds(Subject& library)
{
    Compare(library, &IEffectInfo::GetPropertySetKind, "GetPropertySetKind", one);
}

void Versions(Subject& library)
{
    Compare(library, &IEffectInfo::GetVersion, "GetVersion", one);
}

void NoDescription(Subject& library)
{
    for (const Promise& effect : Promises()) {
        auto* object = reinterpret_cast<IUnknown*>(&library);
        RequireResult(library.Info(*effect.classId)->GetPropertySetInfo(&object), S_OK,
                      std::string(effect.name) + ": GetPropertySetInfo");
        Require(object == nullptr, std::string(effect.name) + ": a data block has a description object");
    }
}

void NoSecondBitmap(Subject& library)
{
    for (const Promise& effect : Promises()) {
        BYTE room = 0;
        ULONG size = 1, value = 7;
        RequireResult(library.Info(*effect.classId)->GetSecondBitmap(&room, &size, &value), E_FAIL,
                      std::string(effect.name) + ": GetSecondBitmap");
        RequireNumber(value, 7, std::string(effect.name) + ": the value that GetSecondBitmap refused");
    }
}

void NullArguments(Subject& library)
{
    for (const Promise& effect : Promises()) {
        const auto info = library.Info(*effect.classId);
        for (const Getter getter :
             {&IEffectInfo::GetTypeCode, &IEffectInfo::GetGroupId, &IEffectInfo::GetSubtypeCode,
              &IEffectInfo::GetPropertySetKind, &IEffectInfo::GetSortKey, &IEffectInfo::GetVersion})
            RequireResult((info.Get()->*getter)(nullptr), E_INVALIDARG, "a getter without a place for the answer");
        RequireResult(info->GetPropertySetInfo(nullptr), E_INVALIDARG, "GetPropertySetInfo(null)");
        BYTE byte = 0;
        ULONG size = 1;
        RequireResult(info->GetSecondBitmap(&byte, &size, nullptr), E_INVALIDARG, "GetSecondBitmap without a value");
        RequireResult(info->GetSecondBitmap(nullptr, nullptr, &size), E_INVALIDARG, "GetSecondBitmap without a size");
    }
}

// Icons.

constexpr ULONG iconBytes = 40 + 34 * 108; // 36 x 34 pixels of 3 bytes
using Icon = std::vector<BYTE>;

Icon IconOf(Subject& library, const Promise& effect)
{
    const auto info = library.Info(*effect.classId);
    ULONG size = 0;
    RequireResult(info->GetIcon(nullptr, &size), S_OK, std::string(effect.name) + ": GetIcon's size query");
    Require(size >= sizeof(BITMAPINFOHEADER) && size < 1 << 20, std::string(effect.name) + ": an absurd icon size");
    Icon icon(size);
    RequireResult(info->GetIcon(icon.data(), &size), S_OK, std::string(effect.name) + ": GetIcon");
    return icon;
}

void IconSize(Subject& library)
{
    for (const Promise& effect : Promises()) {
        ULONG size = 0;
        RequireResult(library.Info(*effect.classId)->GetIcon(nullptr, &size), S_OK, "GetIcon's size query");
        RequireNumber(size, iconBytes, std::string(effect.name) + ": the icon's size in bytes");
    }
}

void IconHeader(Subject& library)
{
    for (const Promise& effect : Promises()) {
        const Icon icon = IconOf(library, effect);
        const std::string name = effect.name;
        BITMAPINFOHEADER header;
        std::memcpy(&header, icon.data(), sizeof header);
        RequireNumber(header.biSize, sizeof header, name + ": biSize");
        RequireNumber(header.biWidth, 36, name + ": biWidth");
        RequireNumber(header.biHeight, 34, name + ": biHeight");
        RequireNumber(header.biPlanes, 1, name + ": biPlanes");
        RequireNumber(header.biBitCount, 24, name + ": biBitCount");
        RequireNumber(header.biCompression, BI_RGB, name + ": biCompression");
    }
}

void IconPixels(Subject& library)
{
    std::set<Icon> all;
    for (const Promise& effect : Promises()) {
        const Icon icon = IconOf(library, effect);
        std::set<std::vector<BYTE>> colours;
        for (std::size_t i = sizeof(BITMAPINFOHEADER); i + 3 <= icon.size(); i += 3)
            colours.insert({&icon[i], &icon[i] + 3});
        Require(colours.size() > 2, std::string(effect.name) + ": the icon is blank");
        Require(all.insert(icon).second, std::string(effect.name) + ": another effect has the same icon");
    }
}

void IconShortBuffer(Subject& library)
{
    const auto info = library.Info(CLSID_Emboss);
    Icon buffer(iconBytes, 0xA5);
    ULONG size = iconBytes - 1;
    RequireResult(info->GetIcon(buffer.data(), &size), S_OK, "GetIcon with a buffer one byte short");
    RequireNumber(size, iconBytes - 1, "the size after a call with a short buffer");
    Require(std::all_of(buffer.begin(), buffer.end(), [](BYTE byte) { return byte == 0xA5; }),
            "a buffer that is too short was written to");
}

void IconExactBuffer(Subject& library)
{
    for (const Promise& effect : Promises()) {
        const fixtures::GuardedMemory buffer(iconBytes, fixtures::GuardedMemory::Guard::Behind);
        ULONG size = iconBytes;
        RequireResult(library.Info(*effect.classId)->GetIcon(buffer.Bytes().data(), &size), S_OK, "GetIcon");
        RequireNumber(size, iconBytes, std::string(effect.name) + ": the size after the copy");
    }
}

void IconArguments(Subject& library)
{
    const auto info = library.Info(CLSID_Emboss);
    BYTE byte = 0;
    RequireResult(info->GetIcon(nullptr, nullptr), E_INVALIDARG, "GetIcon(null, null)");
    RequireResult(info->GetIcon(&byte, nullptr), E_INVALIDARG, "GetIcon with a buffer and no size");
}

// Defaults.

void DefaultBlocks(Subject& library)
{
    for (const Promise& effect : Promises()) {
        fixtures::RecordedSet set;
        RequireResult(library.Info(*effect.classId)->SetDefaults(&set), S_OK,
                      std::string(effect.name) + ": SetDefaults");
        RequireNumber(set.writes, 1, std::string(effect.name) + ": the number of SetData calls");
        RequireNumber(set.lastSize, static_cast<int>(effect.defaults.size() * 4),
                      std::string(effect.name) + ": the block's size in bytes");
        for (std::size_t i = 0; i < effect.defaults.size(); ++i)
            RequireNumber(set.Block()[i], effect.defaults[i],
                          std::string(effect.name) + ": default value " + std::to_string(i));
    }
}

void DefaultRanges(Subject& library)
{
    for (const Promise& effect : Promises()) {
        fixtures::RecordedSet set;
        library.Info(*effect.classId)->SetDefaults(&set);
        for (const ParameterDescription& parameter : ParametersOf(*effect.classId)) {
            const std::size_t index = parameter.offset / sizeof(std::int32_t);
            Require(index < set.Block().size(), std::string(effect.name) + ": the block is too short");
            Require(set.Block()[index] >= parameter.minimum && set.Block()[index] <= parameter.maximum,
                    std::string(effect.name) + ": the default of " + parameter.name + " is out of its range");
        }
    }
}

void DefaultsNull(Subject& library)
{
    for (const Promise& effect : Promises())
        RequireResult(library.Info(*effect.classId)->SetDefaults(nullptr), E_INVALIDARG,
                      std::string(effect.name) + ": SetDefaults(null)");
}

constexpr Check catalogue[] = {
    {"catalogue", "type-codes", "Type and subtype codes are 0.", TypeCodes},
    {"catalogue", "groups", "Each effect is in its group: 3 colour, 4 edges, 5 sharpness.", Groups},
    {"catalogue", "sort-keys", "Each effect has its sort key.", SortKeys},
    {"catalogue", "kinds", "Every effect takes a data block (kind 1).", Kinds},
    {"catalogue", "versions", "GetVersion answers 1.", Versions},
    {"catalogue", "no-description", "A data block has no description object: S_OK and null.", NoDescription},
    {"catalogue", "no-second-bitmap", "No effect has a second picture: E_FAIL.", NoSecondBitmap},
    {"catalogue", "null-arguments", "Getters without a place for the answer give E_INVALIDARG.", NullArguments},
};

constexpr Check icons[] = {
    {"icons", "size", "Every icon takes 3712 bytes.", IconSize},
    {"icons", "header", "Every icon is a packed DIB of 36 x 34 pixels with 24 bits.", IconHeader},
    {"icons", "pixels", "The thirteen icons differ and none is blank.", IconPixels},
    {"icons", "short-buffer", "A buffer that is too short gets nothing, and the call succeeds.", IconShortBuffer},
    {"icons", "exact-buffer", "A buffer of the answered size is not overrun.", IconExactBuffer},
    {"icons", "arguments", "A request without a size is refused with E_INVALIDARG.", IconArguments},
};

constexpr Check defaults[] = {
    {"defaults", "blocks", "SetDefaults writes each effect's own block with one SetData call.", DefaultBlocks},
    {"defaults", "ranges", "The defaults lie in the ranges of the public parameter description.", DefaultRanges},
    {"defaults", "null", "SetDefaults without a property set answers E_INVALIDARG.", DefaultsNull},
};

} // namespace

std::span<const Check> CatalogueChecks()
{
    return catalogue;
}

std::span<const Check> IconChecks()
{
    return icons;
}

std::span<const Check> DefaultsChecks()
{
    return defaults;
}

} // namespace vixahost::validate
