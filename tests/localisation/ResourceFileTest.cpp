#include "localisation/ResourceFile.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

namespace {

using vixa::IsWholeResourceModule;
using Bytes = std::vector<std::byte>;

void Put(Bytes& bytes, std::size_t offset, std::uint32_t value, std::size_t size = 4)
{
    for (std::size_t i = 0; i < size; ++i)
        bytes.at(offset + i) = static_cast<std::byte>(value >> (8 * i));
}

// The smallest honest language file: headers up to `raw`, one section with a string block under type 6, name 34,
// language 0, and a named type whose name stands behind the tables.
constexpr std::size_t header = 0x40, optional = header + 24, sections = optional + 240, raw = sections + 40;
constexpr std::uint32_t address = 0x1000;
constexpr std::size_t root = raw, names = root + 32, languages = names + 24, data = languages + 24, block = data + 16,
                      typeName = block + 8, end = typeName + 12;

// Both widths of file; only the offset of the directories differs.
class ResourceFile : public testing::TestWithParam<std::uint32_t>
{
protected:
    const std::uint32_t magic = GetParam();
    const std::size_t directories = optional + (magic == 0x20B ? 112 : 96);

    Bytes HonestFile() const;
    bool IsWholeWith(std::size_t offset, std::uint32_t value, std::size_t size = 4) const
    {
        Bytes file = HonestFile();
        Put(file, offset, value, size);
        return IsWholeResourceModule(file);
    }
};
INSTANTIATE_TEST_SUITE_P(Width, ResourceFile, testing::Values(0x10B, 0x20B),
                         [](const auto& width) { return width.param == 0x20B ? "PE32Plus" : "PE32"; });

void PutTable(Bytes& file, std::size_t at, std::uint32_t named, std::uint32_t numbered)
{
    Put(file, at + 12, named, 2);
    Put(file, at + 14, numbered, 2);
}

void PutEntry(Bytes& file, std::size_t at, std::uint32_t name, std::size_t target, bool isTable)
{
    Put(file, at, name);
    Put(file, at + 4, static_cast<std::uint32_t>(target - raw) | (isTable ? 0x80000000u : 0));
}

Bytes ResourceFile::HonestFile() const
{
    Bytes file(end);
    Put(file, 0, 0x5A4D, 2);
    Put(file, 0x3C, header);
    Put(file, header, 0x4550);
    Put(file, header + 4, 0x14C, 2);
    Put(file, header + 4 + 2, 1, 2);
    Put(file, header + 4 + 16, 240, 2);
    Put(file, optional, magic, 2);
    Put(file, directories - 4, 16);
    Put(file, directories + 16, address);
    Put(file, directories + 20, end - raw);
    Put(file, sections + 8, end - raw);
    Put(file, sections + 12, address);
    Put(file, sections + 16, end - raw);
    Put(file, sections + 20, raw);
    PutTable(file, root, 1, 1);
    PutEntry(file, root + 16, 0x80000000u | (typeName - raw), names, true);
    PutEntry(file, root + 24, 6, names, true);
    PutTable(file, names, 0, 1);
    PutEntry(file, names + 16, 34, languages, true);
    PutTable(file, languages, 0, 1);
    PutEntry(file, languages + 16, 0, data, false);
    Put(file, data, address + (block - raw));
    Put(file, data + 4, 8);
    Put(file, block, 3, 2);
    Put(file, typeName, 5, 2);
    file.shrink_to_fit();
    return file;
}

TEST_P(ResourceFile, AnHonestFileIsWhole)
{
    EXPECT_TRUE(IsWholeResourceModule(HonestFile()));
    EXPECT_TRUE(IsWholeWith(directories + 16, 0)) << "a module without resources is a module";
    EXPECT_TRUE(IsWholeWith(directories - 4, 2)) << "its directories end before the resources";
    EXPECT_TRUE(IsWholeWith(data + 4, 0)) << "an empty resource";
    Bytes file = HonestFile();
    Put(file, directories - 4, 2);
    Put(file, directories + 16, 0x2000);
    EXPECT_TRUE(IsWholeResourceModule(file)) << "what follows the last directory is none";
}

TEST_P(ResourceFile, TruncatedAnywhereItIsNot)
{
    const Bytes file = HonestFile();
    for (std::size_t size = 0; size < file.size(); ++size)
        EXPECT_FALSE(IsWholeResourceModule(Bytes(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size))))
            << size;
}

TEST_P(ResourceFile, OtherFormatsAndLyingFieldsAreRefused)
{
    EXPECT_FALSE(IsWholeWith(0, 0x4D5A, 2)) << "no module at all";
    EXPECT_FALSE(IsWholeWith(0x3C, 0xFFFFFFF0)) << "header outside";
    EXPECT_FALSE(IsWholeWith(header, 0x454E)) << "another kind of module";
    EXPECT_FALSE(IsWholeWith(optional, 0x107, 2)) << "an image for read-only memory";
    EXPECT_FALSE(IsWholeWith(header + 4 + 2, 0xFFFF, 2)) << "section headers outside";
    EXPECT_FALSE(IsWholeWith(header + 4 + 16, static_cast<std::uint32_t>(directories - optional - 1), 2))
        << "optional header too short";
    EXPECT_FALSE(IsWholeWith(sections + 20, 0xFFFFFFFF)) << "section outside";
    EXPECT_FALSE(IsWholeWith(directories + 16, 0x2000)) << "resources in no section";
    EXPECT_FALSE(IsWholeWith(root + 14, 0xFFFF, 2)) << "entries outside";
    EXPECT_FALSE(IsWholeWith(root + 16, 0x80000000u | (end - raw - 1))) << "name outside";
    EXPECT_FALSE(IsWholeWith(typeName, 6, 2)) << "name longer than the section";
    EXPECT_FALSE(IsWholeWith(root + 28, 0xFFFFFFF0)) << "table outside";
    EXPECT_FALSE(IsWholeWith(names + 20, 0x80000000u)) << "a table that leads back to the root";
    EXPECT_FALSE(IsWholeWith(names + 20, data - raw)) << "data where a table belongs";
    EXPECT_FALSE(IsWholeWith(languages + 20, 0x80000000u)) << "a table where data belongs";
    EXPECT_FALSE(IsWholeWith(languages + 20, end - raw - 15)) << "data entry outside";
    EXPECT_FALSE(IsWholeWith(data, 0x500)) << "data in no section";
    EXPECT_FALSE(IsWholeWith(data + 4, end - block + 1)) << "data longer than the section";
    EXPECT_FALSE(IsWholeWith(data + 4, 0xFFFFFFFF)) << "data longer than memory";
    Bytes file = HonestFile();
    Put(file, root + 16, 0x80000000u | (typeName + 1 - raw));
    Put(file, typeName + 1, 5, 2);
    EXPECT_FALSE(IsWholeResourceModule(file)) << "a name that ends one byte behind the section";
}

// What is asked is only that nothing outside the file is read (the address sanitizer watches) and that it ends.
TEST_P(ResourceFile, DamagedFilesAreLookedAtWithinTheirBounds)
{
    std::mt19937 random(20260401);
    const Bytes honest = HonestFile();
    std::size_t refused = 0;
    for (int round = 0; round < 20000; ++round) {
        Bytes file = honest;
        for (unsigned changes = 1 + random() % 4; changes > 0; --changes) {
            const std::size_t from = random() % 2 ? root : 0;
            file[from + random() % (file.size() - from)] = static_cast<std::byte>(random() % 3 ? random() : 0xFF);
        }
        refused += IsWholeResourceModule(file) ? 0 : 1;
    }
    EXPECT_GT(refused, 2000u) << "the damage seems to miss everything that matters";
}

} // namespace
