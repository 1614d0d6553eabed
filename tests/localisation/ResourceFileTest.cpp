#include "localisation/ResourceFile.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

namespace {

using vixa::isWholeResourceModule;
using Bytes = std::vector<std::byte>;

void put(Bytes& bytes, std::size_t offset, std::uint32_t value, std::size_t size = 4)
{
    for (std::size_t i = 0; i < size; ++i)
        bytes.at(offset + i) = static_cast<std::byte>(value >> (8 * i));
}

// The smallest honest language file: headers up to `raw`, one section with a string block under type 6, name 34,
// language 0, and a named type whose name stands behind the tables.
constexpr std::size_t header = 0x40, optional = header + 24, sections = optional + 224, raw = sections + 40;
constexpr std::uint32_t address = 0x1000;
constexpr std::size_t root = raw, names = root + 32, languages = names + 24, data = languages + 24, block = data + 16,
                      typeName = block + 8, end = typeName + 12;

void putTable(Bytes& file, std::size_t at, std::uint32_t named, std::uint32_t numbered)
{
    put(file, at + 12, named, 2);
    put(file, at + 14, numbered, 2);
}

void putEntry(Bytes& file, std::size_t at, std::uint32_t name, std::size_t target, bool isTable)
{
    put(file, at, name);
    put(file, at + 4, static_cast<std::uint32_t>(target - raw) | (isTable ? 0x80000000u : 0));
}

Bytes honestFile()
{
    Bytes file(end);
    put(file, 0, 0x5A4D, 2);
    put(file, 0x3C, header);
    put(file, header, 0x4550);
    put(file, header + 4, 0x14C, 2);
    put(file, header + 4 + 2, 1, 2);
    put(file, header + 4 + 16, 224, 2);
    put(file, optional, 0x10B, 2);
    put(file, optional + 92, 16);
    put(file, optional + 96 + 16, address);
    put(file, optional + 96 + 20, end - raw);
    put(file, sections + 8, end - raw);
    put(file, sections + 12, address);
    put(file, sections + 16, end - raw);
    put(file, sections + 20, raw);
    putTable(file, root, 1, 1);
    putEntry(file, root + 16, 0x80000000u | (typeName - raw), names, true);
    putEntry(file, root + 24, 6, names, true);
    putTable(file, names, 0, 1);
    putEntry(file, names + 16, 34, languages, true);
    putTable(file, languages, 0, 1);
    putEntry(file, languages + 16, 0, data, false);
    put(file, data, address + (block - raw));
    put(file, data + 4, 8);
    put(file, block, 3, 2);
    put(file, typeName, 5, 2);
    file.shrink_to_fit();
    return file;
}

bool isWholeWith(std::size_t offset, std::uint32_t value, std::size_t size = 4)
{
    Bytes file = honestFile();
    put(file, offset, value, size);
    return isWholeResourceModule(file);
}

TEST(ResourceFile, AnHonestFileIsWhole)
{
    EXPECT_TRUE(isWholeResourceModule(honestFile()));
    EXPECT_TRUE(isWholeWith(optional + 96 + 16, 0)) << "a module without resources is a module";
    EXPECT_TRUE(isWholeWith(optional + 92, 2)) << "its directories end before the resources";
    EXPECT_TRUE(isWholeWith(data + 4, 0)) << "an empty resource";
}

TEST(ResourceFile, TruncatedAnywhereItIsNot)
{
    const Bytes file = honestFile();
    for (std::size_t size = 0; size < file.size(); ++size)
        EXPECT_FALSE(isWholeResourceModule(Bytes(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size))))
            << size;
}

TEST(ResourceFile, OtherFormatsAndLyingFieldsAreRefused)
{
    EXPECT_FALSE(isWholeWith(0, 0x4D5A, 2)) << "no module at all";
    EXPECT_FALSE(isWholeWith(0x3C, 0xFFFFFFF0)) << "header outside";
    EXPECT_FALSE(isWholeWith(header, 0x454E)) << "another kind of module";
    EXPECT_FALSE(isWholeWith(optional, 0x20B, 2)) << "a 64-bit module";
    EXPECT_FALSE(isWholeWith(header + 4 + 2, 0xFFFF, 2)) << "section headers outside";
    EXPECT_FALSE(isWholeWith(header + 4 + 16, 40, 2)) << "optional header too short";
    EXPECT_FALSE(isWholeWith(sections + 20, 0xFFFFFFFF)) << "section outside";
    EXPECT_FALSE(isWholeWith(optional + 96 + 16, 0x2000)) << "resources in no section";
    EXPECT_FALSE(isWholeWith(root + 14, 0xFFFF, 2)) << "entries outside";
    EXPECT_FALSE(isWholeWith(root + 16, 0x80000000u | (end - raw - 1))) << "name outside";
    EXPECT_FALSE(isWholeWith(typeName, 6, 2)) << "name longer than the section";
    EXPECT_FALSE(isWholeWith(root + 28, 0xFFFFFFF0)) << "table outside";
    EXPECT_FALSE(isWholeWith(names + 20, 0x80000000u)) << "a table that leads back to the root";
    EXPECT_FALSE(isWholeWith(names + 20, data - raw)) << "data where a table belongs";
    EXPECT_FALSE(isWholeWith(languages + 20, 0x80000000u)) << "a table where data belongs";
    EXPECT_FALSE(isWholeWith(languages + 20, end - raw - 15)) << "data entry outside";
    EXPECT_FALSE(isWholeWith(data, 0x500)) << "data in no section";
    EXPECT_FALSE(isWholeWith(data + 4, end - block + 1)) << "data longer than the section";
    EXPECT_FALSE(isWholeWith(data + 4, 0xFFFFFFFF)) << "data longer than memory";
}

// What is asked is only that nothing outside the file is read (the address sanitizer watches) and that it ends.
TEST(ResourceFile, DamagedFilesAreLookedAtWithinTheirBounds)
{
    std::mt19937 random(20260401);
    const Bytes honest = honestFile();
    std::size_t refused = 0;
    for (int round = 0; round < 20000; ++round) {
        Bytes file = honest;
        for (unsigned changes = 1 + random() % 4; changes > 0; --changes) {
            const std::size_t from = random() % 2 ? root : 0;
            file[from + random() % (file.size() - from)] = static_cast<std::byte>(random() % 3 ? random() : 0xFF);
        }
        refused += isWholeResourceModule(file) ? 0 : 1;
    }
    EXPECT_GT(refused, 2000u) << "the damage seems to miss everything that matters";
}

} // namespace
