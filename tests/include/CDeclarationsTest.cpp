// The C declarations of VixaVideoFX.h against the C++ headers: slots, arguments, identifiers and data blocks.
#include <vixavideofx/VixaVideoFX.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

// What C sees, beside what C++ sees.
namespace c {
#define CINTERFACE
#undef VIXAVIDEOFX_VIXAVIDEOFX_H
#undef VIXAVIDEOFX_CLASSIDS_H
#undef VIXA_EFFECTS
#include <vixavideofx/VixaVideoFX.h>
} // namespace c

namespace {

using namespace vixavideofx;

// A pointer to a virtual member function holds the function's place in the table, in bytes, plus 1.
template <typename Member>
std::size_t PlaceOf(Member member)
{
    std::uintptr_t words[2];
    static_assert(sizeof member == sizeof words);
    std::memcpy(words, &member, sizeof words);
    return words[0] - 1;
}

template <typename>
struct Arguments;
template <typename Interface, typename... A>
struct Arguments<HRESULT (STDMETHODCALLTYPE Interface::*)(A...)>
{
    using Type = void(A...);
};
template <typename Interface, typename... A>
struct Arguments<HRESULT(STDMETHODCALLTYPE*)(Interface*, A...)>
{
    using Type = void(A...);
};

#define EXPECT_SAME_OPERATION(interface, operation)                                                                    \
    EXPECT_EQ(offsetof(c::interface##Vtbl, operation), PlaceOf(&interface::operation)) << #interface "::" #operation;  \
    static_assert(std::is_same_v<Arguments<decltype(c::interface##Vtbl::operation)>::Type,                             \
                                 Arguments<decltype(&interface::operation)>::Type>)

TEST(CDeclarations, HaveTheSlotsAndArgumentsOfCpp)
{
    EXPECT_SAME_OPERATION(IDataPropertySet, GetData);
    EXPECT_SAME_OPERATION(IDataPropertySet, SetData);
    EXPECT_SAME_OPERATION(ISingleValuePropertySet, GetValue);
    EXPECT_SAME_OPERATION(ISingleValuePropertySet, SetValue);
    EXPECT_SAME_OPERATION(ISingleEnumPropertySet, GetValue);
    EXPECT_SAME_OPERATION(ISingleEnumPropertySet, SetValue);
    EXPECT_SAME_OPERATION(IEffectInfo, GetTypeCode);
    EXPECT_SAME_OPERATION(IEffectInfo, GetGroupId);
    EXPECT_SAME_OPERATION(IEffectInfo, GetGroupName);
    EXPECT_SAME_OPERATION(IEffectInfo, GetSubtypeCode);
    EXPECT_SAME_OPERATION(IEffectInfo, GetEffectName);
    EXPECT_SAME_OPERATION(IEffectInfo, GetIcon);
    EXPECT_SAME_OPERATION(IEffectInfo, GetSecondBitmap);
    EXPECT_SAME_OPERATION(IEffectInfo, GetPropertySetKind);
    EXPECT_SAME_OPERATION(IEffectInfo, GetPropertySetInfo);
    EXPECT_SAME_OPERATION(IEffectInfo, SetDefaults);
    EXPECT_SAME_OPERATION(IEffectInfo, ShowSettingsDialog);
    EXPECT_SAME_OPERATION(IEffectInfo, GetSortKey);
    EXPECT_SAME_OPERATION(IEffectInfo, GetVersion);
    EXPECT_SAME_OPERATION(IEffectFilter, SetPropertySet);
    EXPECT_SAME_OPERATION(IEffectFilter, SetDuration);
    EXPECT_SAME_OPERATION(IInstructionCeiling, SetCeiling);
    EXPECT_SAME_OPERATION(IInstructionCeiling, GetLevel);
    EXPECT_SAME_OPERATION(IEffectChaining, SetChaining);
    EXPECT_SAME_OPERATION(IEffectChaining, GetChaining);
    EXPECT_SAME_OPERATION(ISingleValuePropertySetInfo, GetRange);
    EXPECT_SAME_OPERATION(ISingleValuePropertySetInfo, FormatValue);
    EXPECT_SAME_OPERATION(ISingleValuePropertySetInfo, GetImage);
    EXPECT_SAME_OPERATION(ISingleValuePropertySetInfo, GetName);
    EXPECT_SAME_OPERATION(ISingleEnumPropertySetInfo, GetCount);
    EXPECT_SAME_OPERATION(ISingleEnumPropertySetInfo, GetItemName);
    EXPECT_SAME_OPERATION(ISingleEnumPropertySetInfo, GetImage);
    EXPECT_SAME_OPERATION(ISingleEnumPropertySetInfo, GetName);
}

// How many slots each interface has, in either width.
template <typename Table>
constexpr std::size_t slots = sizeof(Table) / sizeof(void*);
static_assert(slots<c::IDataPropertySetVtbl> == 5 && slots<c::ISingleValuePropertySetVtbl> == 5 &&
              slots<c::ISingleEnumPropertySetVtbl> == 5 && slots<c::IEffectInfoVtbl> == 16 &&
              slots<c::IEffectFilterVtbl> == 5 && slots<c::IInstructionCeilingVtbl> == 5 &&
              slots<c::ISingleValuePropertySetInfoVtbl> == 7 && slots<c::ISingleEnumPropertySetInfoVtbl> == 7);

TEST(CDeclarations, HaveTheIdentifiersOfCpp)
{
    EXPECT_TRUE(c::IID_IEffectInfo == IID_IEffectInfo);
    EXPECT_TRUE(c::IID_IEffectFilter == IID_IEffectFilter);
    EXPECT_TRUE(c::IID_IInstructionCeiling == IID_IInstructionCeiling);
    EXPECT_TRUE(c::IID_IEffectChaining == IID_IEffectChaining);
    EXPECT_TRUE(c::IID_ISingleValuePropertySetInfo == IID_ISingleValuePropertySetInfo);
    EXPECT_TRUE(c::IID_ISingleEnumPropertySetInfo == IID_ISingleEnumPropertySetInfo);
    EXPECT_TRUE(c::CLSID_VixaAddPixel == CLSID_AddPixel);
}

#define SAME_SIZE(block) static_assert(sizeof(c::Vixa##block) == sizeof(block))
#define SAME_FIELD(block, field)                                                                                       \
    static_assert(offsetof(c::Vixa##block, field) == offsetof(block, field) &&                                         \
                  std::is_same_v<decltype(c::Vixa##block::field), decltype(block::field)>)
SAME_SIZE(GammaBlock);
SAME_FIELD(GammaBlock, gamma);
SAME_SIZE(MultiplyBlock);
SAME_FIELD(MultiplyBlock, factor);
SAME_SIZE(InvertBlock);
SAME_FIELD(InvertBlock, mask);
SAME_SIZE(FilterColorBlock);
SAME_FIELD(FilterColorBlock, intensity);
SAME_FIELD(FilterColorBlock, colour);
SAME_SIZE(AddBlock);
SAME_FIELD(AddBlock, redDelta);
SAME_FIELD(AddBlock, greenDelta);
SAME_FIELD(AddBlock, blueDelta);
SAME_FIELD(AddBlock, moveAll);
SAME_SIZE(ConvolutionBlock);
SAME_FIELD(ConvolutionBlock, kind);

constexpr bool operator==(int number, ConvolutionKind kind)
{
    return number == static_cast<int>(kind);
}
constexpr bool operator==(int number, PropertySetKind kind)
{
    return number == static_cast<int>(kind);
}
static_assert(c::VixaDetectEdges == ConvolutionKind::DetectEdges && c::VixaEmboss == ConvolutionKind::Emboss &&
              c::VixaEnhanceDetails == ConvolutionKind::EnhanceDetails &&
              c::VixaEnhanceEdges == ConvolutionKind::EnhanceEdges &&
              c::VixaEnhanceFocus == ConvolutionKind::EnhanceFocus &&
              c::VixaLightEdges == ConvolutionKind::LightEdges && c::VixaShiftEdges == ConvolutionKind::ShiftEdges &&
              c::VixaSoften == ConvolutionKind::Soften &&
              c::VixaShiftEdgesVertical == ConvolutionKind::ShiftEdgesVertical &&
              c::VixaShiftEdgesHorizontal == ConvolutionKind::ShiftEdgesHorizontal);
static_assert(c::VixaPropertySetNone == PropertySetKind::None &&
              c::VixaPropertySetDataBlock == PropertySetKind::DataBlock &&
              c::VixaPropertySetSingleValue == PropertySetKind::SingleValue &&
              c::VixaPropertySetSingleEnum == PropertySetKind::SingleEnum);

} // namespace
