// Damages a few good clips in many ways and lets the real host work on each: none may crash or hang it, or leave a file
// behind. mutated_clips [COUNT [SEED]]; what fails stays as found-N.avi in the present folder.
#include "tests/host/TestFiles.h"
#include "tests/host/commands/Process.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <random>

using namespace vixahost::test;

namespace {

// Uncompressed in three depths, without an index, and three formats for which the platform has decoders; those of the
// last two get data that isn't theirs.
std::vector<Bytes> Seeds()
{
    std::vector<Bytes> seeds;
    for (const int bits : {32, 24, 8}) {
        ClipRecipe recipe;
        recipe.bits = bits;
        seeds.push_back(MakeClip(recipe));
    }
    seeds.push_back(seeds.front());
    seeds.back()[12 + 8 + 4 + 8 + 12] = 0; // the main header's flags
    ClipRecipe packed;
    packed.bits = 8;
    std::memcpy(packed.compression, "MRLE", 5);
    seeds.push_back(MakeClip(packed));
    for (const char* const format : {"CRAM", "cvid"}) {
        Bytes clip = MakeClip(packed);
        const auto change = [&](const char* before, std::size_t beforeBytes, std::size_t offset) {
            const auto at = std::search(clip.begin(), clip.end(), before, before + beforeBytes);
            std::copy_n(format, 4, at + static_cast<std::ptrdiff_t>(offset));
        };
        change("MRLE", 4, 0);
        change("strf", 4, 8 + 16);
        seeds.push_back(clip);
    }
    return seeds;
}

class Mutator
{
public:
    explicit Mutator(unsigned seed) : random(seed) {}

    Bytes Damage(Bytes clip)
    {
        static constexpr std::uint32_t numbers[] = {
            0,          1,          2,          0x7F,       0xFF,       0x8000,     0xFFFF,     0x10000,
            0x01000000, 0x10000000, 0x3FFFFFFF, 0x40000000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFF0, 0xFFFFFFFF};
        for (std::size_t changes = 1 + Below(3); changes > 0; --changes) {
            const std::size_t at = Place(clip.size());
            switch (Below(12)) {
            case 0:
                clip.resize(std::max<std::size_t>(at, 16));
                break;
            case 1: { // the same bytes once more
                const auto from = clip.begin() + static_cast<std::ptrdiff_t>(at);
                const auto bytes = Below(std::min<std::size_t>(clip.size() - at, 64));
                const Bytes again(from, from + static_cast<std::ptrdiff_t>(bytes));
                clip.insert(from, again.begin(), again.end());
                break;
            }
            case 2:
            case 3:
            case 4: {
                const std::uint32_t number = numbers[Below(std::size(numbers))];
                std::memcpy(clip.data() + at / 4 * 4, &number, std::min<std::size_t>(4, clip.size() - at / 4 * 4));
                break;
            }
            default:
                clip[at] = static_cast<std::uint8_t>(Below(4) == 0 ? clip[at] ^ 1u << Below(8) : Below(256));
            }
        }
        return clip;
    }
    std::size_t Below(std::size_t limit) { return limit == 0 ? 0 : random() % limit; }

private:
    // Mostly in the headers, often in the index, else anywhere.
    std::size_t Place(std::size_t size)
    {
        const std::size_t where = Below(10);
        if (where < 6)
            return Below(std::min<std::size_t>(size, 480));
        return where < 8 ? size - 1 - Below(std::min<std::size_t>(size, 160)) : Below(size);
    }

    std::mt19937 random;
};

} // namespace

int main(int count, char** words)
try {
    const int runs = count > 1 ? std::atoi(words[1]) : 3000;
    Mutator mutator(count > 2 ? static_cast<unsigned>(std::atoi(words[2])) : 1);
    const std::vector<Bytes> seeds = Seeds();
    int done = 0, refused = 0, decoderFaults = 0, crashes = 0, hangs = 0, leftovers = 0;
    for (int run = 0; run < runs; ++run) {
        const ScratchFolder folder;
        WriteBytes(folder / L"in.avi", mutator.Damage(seeds[mutator.Below(seeds.size())]));
        const Outcome outcome = RunHost(folder.Path(), {L"apply", L"Emboss", L"in.avi", L"out.avi"});
        const bool hang = outcome.status == 99, crash = outcome.status > 2 && !hang;
        const std::size_t files = outcome.status == 0 ? 2 : 1;
        const bool leftover = folder.Names().size() != files;
        done += outcome.status == 0;
        refused += outcome.status == 1 || outcome.status == 2;
        decoderFaults += outcome.err.find("the system's decoder") != std::string::npos;
        crashes += crash;
        hangs += hang;
        leftovers += leftover;
        if (crash || hang || leftover) {
            std::printf("file %d: status 0x%lX %s\n", run, outcome.status, outcome.err.c_str());
            CopyFileW((folder / L"in.avi").c_str(), (L"found-" + std::to_wstring(run) + L".avi").c_str(), FALSE);
        }
        if ((run + 1) % 100 == 0 || run + 1 == runs)
            std::printf(
                "%d files: %d done, %d refused (%d by a decoder that crashed or hung); the host: %d crashes, %d "
                "hangs, %d left files behind\n",
                run + 1, done, refused, decoderFaults, crashes, hangs, leftovers);
        std::fflush(stdout);
    }
    return crashes + hangs + leftovers == 0 ? 0 : 1;
} catch (const std::exception& fault) {
    std::puts(fault.what());
    return 1;
}
