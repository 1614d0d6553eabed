// Storage: sharing, loading and exporting, and the order of the operations.
#include "bitmap/GDIBitmap.h"
#include "bitmap/ExportPicture.h"
#include "bitmap/OsFamily.h"
#include "host/fixtures/GuardedMemory.h"
#include "tests/bitmap/MemoryBitmap.h"
#include "tests/bitmap/PackedDibs.h"

#include <gtest/gtest.h>

#include <bit>
#include <map>

using namespace vixa::bitmap::test;
using Microsoft::WRL::ComPtr;

namespace {

// The numbers of virtual operations in their table: a member pointer holds one more than the table's offset.
template <typename... Operation>
std::vector<std::intptr_t> SlotsOf(Operation... operations)
{
    const auto slot = [](auto operation) {
        static_assert(sizeof operation == 2 * sizeof(std::intptr_t));
        return std::bit_cast<std::array<std::intptr_t, 2>>(operation)[0] / static_cast<std::intptr_t>(sizeof(void*));
    };
    return {slot(operations)...};
}

TEST(GDIBitmap, OperationsKeepTheirOrder)
{
    constexpr std::intptr_t unknown = 3, data = unknown + 6;
    using I = IBitmap;
    EXPECT_EQ(SlotsOf(&IBitmapData::GetWidth, &IBitmapData::GetStride, &IBitmapData::GetBits),
              (std::vector{unknown, unknown + 3, unknown + 5}));
    const auto slots = SlotsOf(
        &I::Clone, &I::Draw, &I::Blt, &I::Reset, &I::IsEmpty, &I::ExportDib, &I::ExportGlobal, &I::LoadDib,
        &I::LoadGlobal, &I::Create, &I::SharesStorageWith, &I::CopyFrom, &I::ReplaceKeyColor, &I::Tint, &I::Fill,
        &I::GetSize, &I::GetPixel, &I::ContainsColor, &I::HasMinColorVariation, &I::Resize, &I::PrepareForDrawing,
        &I::GetBitsForRead, &I::GetBitsForWrite, &I::ReleaseBits, &I::HasPalette, &I::GetPaletteSize,
        &I::GetPaletteForRead, &I::GetPaletteForWrite, &I::ReleasePalette, &BitmapBase::MakeUnique,
        &GDIBitmap::DrawTransparent, &GDIBitmap::BltTransparent, &GDIBitmap::DrawAlpha, &GDIBitmap::BltAlpha);
    for (std::size_t i = 0; i < slots.size(); ++i)
        EXPECT_EQ(slots[i], data + static_cast<std::intptr_t>(i));
}

TEST(GDIBitmap, StartsEmpty)
{
    GDIBitmap bitmap;
    SIZE size = {7, 7};
    int bytes = 77;
    EXPECT_TRUE(bitmap.IsEmpty());
    EXPECT_EQ(bitmap.GetSize(&size), &size);
    EXPECT_EQ(size.cx + size.cy + bitmap.GetWidth() + bitmap.GetBitCount() + bitmap.GetStride(), 0);
    EXPECT_EQ(bitmap.GetInfo(), nullptr);
    EXPECT_EQ(bitmap.GetBits(), nullptr);
    EXPECT_EQ(bitmap.GetPaletteForWrite(), nullptr);
    EXPECT_FALSE(bitmap.HasPalette());
    EXPECT_FALSE(bitmap.ExportDib(nullptr, &bytes));
    EXPECT_EQ(bytes, 77);
    EXPECT_EQ(bitmap.ExportGlobal(), nullptr);
    EXPECT_FALSE(bitmap.Fill(1));
    EXPECT_FALSE(bitmap.Resize({4, 4}));
    EXPECT_EQ(bitmap.GetPixel(0, 0), CLR_INVALID);
    EXPECT_FALSE(bitmap.HasMinColorVariation(0.0, 0.0));
}

TEST(GDIBitmap, ExportsWhatWasLoaded)
{
    for (const auto& [width, height, bitCount] :
         {std::tuple{24, 24, 24}, {48, 48, 24}, {36, 34, 24}, {5, 3, 32}, {9, 4, 16}, {9, 4, 8}, {33, 4, 1}}) {
        const Bytes bytes = PackedDib(width, height, bitCount);
        GDIBitmap bitmap;
        ASSERT_TRUE(Load(bitmap, bytes)) << bitCount;
        EXPECT_EQ(Exported(bitmap), bytes) << bitCount;
        HGLOBAL block = bitmap.ExportGlobal();
        GDIBitmap again;
        EXPECT_TRUE(again.LoadGlobal(block));
        EXPECT_EQ(Exported(again), bytes) << bitCount;
        EXPECT_EQ(GlobalFree(block), nullptr);
    }
}

TEST(GDIBitmap, ABufferThatIsTooSmallStaysAsItIs)
{
    GDIBitmap bitmap;
    ASSERT_TRUE(Load(bitmap, PackedDib(48, 48, 24)));
    int size = 0;
    EXPECT_TRUE(bitmap.ExportDib(nullptr, &size));
    EXPECT_EQ(size, 6952);
    Bytes buffer(6952, std::byte{0xCD});
    for (const int bad : {6951, 0, -1, INT_MIN}) {
        size = bad;
        EXPECT_FALSE(bitmap.ExportDib(buffer.data(), &size));
        EXPECT_EQ(size, bad);
    }
    EXPECT_EQ(buffer, Bytes(6952, std::byte{0xCD}));
    EXPECT_FALSE(bitmap.ExportDib(buffer.data(), nullptr));
    const ::vixahost::fixtures::GuardedMemory exact(6952);
    size = 6952;
    EXPECT_TRUE(bitmap.ExportDib(exact.data(), &size));
}

TEST(GDIBitmap, ColourTablesGrowToTheirDepth)
{
    const Bytes bytes = PackedDib(5, 4, 8, 16);
    GDIBitmap bitmap;
    ASSERT_TRUE(Load(bitmap, bytes));
    EXPECT_EQ(bitmap.GetPaletteSize(), 256);
    const RGBQUAD* const palette = bitmap.GetPaletteForRead();
    EXPECT_EQ(std::memcmp(palette, bytes.data() + 40, 64), 0);
    EXPECT_EQ(std::memcmp(&palette[16], "\0\0\0\0", 4), 0);
    EXPECT_EQ(std::memcmp(bitmap.GetBits(), bytes.data() + 104, 32), 0);
    // A table beside colour pixels is skipped.
    const Bytes counted = PackedDib(5, 4, 24, 9);
    ASSERT_TRUE(Load(bitmap, counted));
    EXPECT_EQ(std::memcmp(bitmap.GetBits(), counted.data() + 76, 64), 0);
    EXPECT_FALSE(bitmap.HasPalette());
}

TEST(GDIBitmap, HostileDataLeavesItEmpty)
{
    GDIBitmap bitmap;
    for (const HostileDib& hostile : HostileDibs()) {
        ASSERT_TRUE(bitmap.Create({2, 2}, 24));
        EXPECT_FALSE(Load(bitmap, hostile.bytes)) << hostile.what;
        EXPECT_EQ(bitmap.IsEmpty(), !hostile.bytes.empty()) << hostile.what;
    }
    EXPECT_FALSE(bitmap.LoadDib(nullptr, 4000));
    EXPECT_FALSE(bitmap.LoadDib(PackedDib(5, 4, 24).data(), -1));
    EXPECT_FALSE(bitmap.LoadGlobal(nullptr));
}

TEST(GDIBitmap, CreateRefusesImpossiblePictures)
{
    GDIBitmap bitmap;
    for (const auto& [width, height, bitCount] :
         {std::tuple{0, 5, 24}, {5, -5, 24}, {5, 5, 65568}, {INT_MAX, INT_MAX, 32}, {0, 0, 0}, {INT_MAX, INT_MAX, 0}}) {
        ASSERT_TRUE(bitmap.Create({3, 3}, 24));
        EXPECT_FALSE(bitmap.Create({width, height}, bitCount)) << width << " x " << height << " at " << bitCount;
        EXPECT_TRUE(bitmap.IsEmpty());
    }
}

TEST(GDIBitmap, CopiesShareUntilOneChanges)
{
    for (const int bitCount : {8, 24}) {
        const Bytes bytes = PackedDib(6, 5, bitCount);
        GDIBitmap first;
        ASSERT_TRUE(Load(first, bytes));
        GDIBitmap second(first);
        ComPtr<IBitmap> third;
        *third.GetAddressOf() = first.Clone();
        EXPECT_TRUE(first.SharesStorageWith(&second));
        EXPECT_TRUE(first.SharesStorageWith(third.Get()));
        EXPECT_EQ(first.GetBits(), second.GetBits());

        EXPECT_TRUE(second.Fill(0x5A));
        EXPECT_FALSE(first.SharesStorageWith(&second));
        EXPECT_TRUE(first.SharesStorageWith(third.Get()));
        EXPECT_EQ(Exported(first), bytes);
        Bytes filled = bytes;
        std::fill(filled.end() - first.GetStride() * 5, filled.end(), std::byte{0x5A});
        EXPECT_EQ(Exported(second), filled) << "the colour table comes along";

        first.Reset();
        EXPECT_EQ(Exported(*third.Get()), bytes);
        const GDIBitmap& itself = second;
        second = itself;
        EXPECT_EQ(Exported(second), filled);
        second = static_cast<GDIBitmap&>(*third.Get());
        EXPECT_EQ(Exported(second), bytes);
        EXPECT_EQ(third.Reset(), 0u);
        const void* const before = second.GetBits();
        EXPECT_EQ(second.GetBitsForWrite(), before) << "alone, nothing is copied";
    }
    GDIBitmap empty, copy(empty);
    EXPECT_TRUE(copy.MakeUnique());
    EXPECT_FALSE(empty.SharesStorageWith(&copy));
    EXPECT_FALSE(empty.SharesStorageWith(nullptr));
}

TEST(GDIBitmap, ReferencesAreCounted)
{
    GDIBitmap* const bitmap = GDIBitmap::New();
    EXPECT_EQ(bitmap->AddRef(), 2u);
    IBitmap* const asInterface = bitmap;
    IBitmapData* const asData = asInterface;
    EXPECT_EQ(asData->Release(), 1u);
    void* object = bitmap;
    EXPECT_EQ(asInterface->QueryInterface(IID_IUnknown, &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
    ComPtr<IBitmap> clone;
    *clone.GetAddressOf() = asInterface->Clone();
    EXPECT_EQ(asInterface->Release(), 0u);
    EXPECT_EQ(clone.Reset(), 0u);
}

TEST(GDIBitmap, CopiesFromOtherKindsOfBitmap)
{
    MemoryBitmap other(PackedDib(6, 5, 8));
    GDIBitmap bitmap;
    EXPECT_TRUE(bitmap.CopyFrom(&other));
    EXPECT_EQ(Exported(bitmap), other.bytes);
    EXPECT_FALSE(bitmap.SharesStorageWith(&other));
    EXPECT_EQ(other.released, 2);
    // A stride that is not its own must not count: the rows below end at a page that faults.
    const ::vixahost::fixtures::GuardedMemory rows(40);
    std::ranges::fill(rows.Bytes(), std::uint8_t{7});
    other.borrowedBits = rows.data();
    other.stride = 4000;
    EXPECT_TRUE(bitmap.CopyFrom(&other));
    EXPECT_EQ(std::memcmp(bitmap.GetBits(), rows.data(), 40), 0);
    other.hidesBits = true;
    EXPECT_FALSE(bitmap.CopyFrom(&other));
    EXPECT_EQ(bitmap.GetWidth(), 6) << "the new storage stands, in black";
    EXPECT_FALSE(bitmap.CopyFrom(nullptr));
    GDIBitmap shared;
    ASSERT_TRUE(shared.Create({3, 3}, 24));
    EXPECT_TRUE(bitmap.CopyFrom(&shared));
    EXPECT_TRUE(bitmap.SharesStorageWith(&shared));
}

// A source of resources whose every answer is known.
struct Resources final : IBitmapResources
{
    std::map<UINT, Bytes> pictures;
    std::span<const std::byte> FindBitmapResource(UINT id) noexcept override
    {
        const auto found = pictures.find(id);
        return found == pictures.end() ? std::span<const std::byte>() : std::span<const std::byte>(found->second);
    }
};

TEST(ExportPicture, AsksForTheSizeFirst)
{
    Resources resources;
    resources.pictures[332] = PackedDib(36, 34, 24);
    resources.pictures[333] = Bytes(100);
    ULONG size = 0xFFFFFFFF;
    EXPECT_EQ(ExportPicture(resources, 332, nullptr, &size), S_OK);
    EXPECT_EQ(size, 3712u);
    Bytes buffer(3712, std::byte{0xCD});
    auto* const out = reinterpret_cast<BYTE*>(buffer.data());
    for (const ULONG bad : {3711u, 0u}) {
        size = bad;
        EXPECT_EQ(ExportPicture(resources, 332, out, &size), S_OK);
        EXPECT_EQ(size, bad);
        EXPECT_EQ(buffer, Bytes(3712, std::byte{0xCD}));
    }
    size = 0xFFFFFFFF;
    EXPECT_EQ(ExportPicture(resources, 332, out, &size), S_OK);
    EXPECT_EQ(size, 0xFFFFFFFF);
    EXPECT_EQ(buffer, resources.pictures[332]);
    for (const UINT missing : {0u, 333u, 344u}) {
        size = 5;
        EXPECT_EQ(ExportPicture(resources, missing, nullptr, &size), E_FAIL);
        EXPECT_EQ(ExportPicture(resources, missing, out, &size), E_FAIL);
        EXPECT_EQ(size, 5u);
    }
    EXPECT_EQ(ExportPicture(resources, 332, out, nullptr), E_INVALIDARG);
}

TEST(ExportPicture, LeavesNoGdiObjectBehind)
{
    Resources resources;
    resources.pictures[332] = PackedDib(36, 34, 24);
    Bytes buffer(3712);
    const auto round = [&] {
        ULONG size = 3712;
        ExportPicture(resources, 332, reinterpret_cast<BYTE*>(buffer.data()), &size);
        GDIBitmap bitmap;
        bitmap.LoadFromResource(resources, 332);
        GDIBitmap copy(bitmap);
        copy.Fill(3);
        copy.Resize({9, 9});
        copy.Create({5, 5}, 0);
        GDIBitmap compatible(copy);
        compatible.MakeUnique();
    };
    // Where the system doesn't count, the place that a new object gets in the table of objects tells: places are used
    // again.
    const auto liveObjects = [] {
        if (const DWORD counted = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS))
            return counted;
        const vixa::UniqueBitmap probe(CreateBitmap(1, 1, 1, 1, nullptr));
        return static_cast<DWORD>(LOWORD(reinterpret_cast<DWORD_PTR>(probe.get())));
    };
    round();
    const DWORD before = liveObjects();
    for (int i = 0; i < 1000; ++i)
        round();
    EXPECT_LT(liveObjects(), before + 100);
}

TEST(OsFamily, ThisSystemIsNt)
{
    EXPECT_NE(vixa::bitmap::SystemFamily(), vixa::bitmap::OsUnknown);
    EXPECT_EQ(vixa::bitmap::SystemFamily() & vixa::bitmap::os9xFamily, 0u);
}

} // namespace
