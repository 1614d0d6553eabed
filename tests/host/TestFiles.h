// Files for the host's tests: a folder that goes away, pictures with known pixels, and clips written byte by byte, so
// that what the host reads was not written by what is under test.
#pragma once

#include "host/media/Picture.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace vixahost::test {

using Bytes = std::vector<std::uint8_t>;

// An empty folder of its own, removed with all its content.
class ScratchFolder
{
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    std::filesystem::path operator/(const std::wstring& name) const { return path / name; }
    const std::filesystem::path& Path() const noexcept { return path; }
    // The names of what is in it, sorted.
    std::vector<std::wstring> Names() const;

private:
    std::filesystem::path path;
};

Bytes ReadBytes(const std::filesystem::path& file);
void WriteBytes(const std::filesystem::path& file, const Bytes& bytes);

// Smooth in one direction and noisy in the other, the same for the same seed; opaque unless `alpha`.
media::Picture TestPicture(int width, int height, unsigned seed, bool alpha = false);

// What a test clip is made of.
struct ClipRecipe
{
    int width = 16;
    int height = 12;
    int bits = 32;        // 8 (grey palette), 24 or 32
    bool topDown = false; // rows as they lie in the file
    int frames = 5;
    std::uint32_t rate = 30000, scale = 1001;
    bool sound = true;                     // 16-bit stereo at 44100 Hz, as long as the pictures
    char compression[5] = {0, 0, 0, 0, 0}; // "MRLE": run lengths, for 8 bits; zeros: uncompressed
    int emptyFrame = -1;                   // a frame without data: the one before it stays
    bool records = false;                  // what belongs together stands in a list of its own
    std::uint32_t buffer = 0;              // that the pictures' header suggests; 0: a frame's bytes
    std::vector<Bytes> stored = {};        // the frames as they lie in the file; empty: made by the rest
};

// A clip of JPEG pictures ("MJPG"), each of one grey in its upper half and a darker one below, lighter from frame to
// frame.
ClipRecipe JpegRecipe(int frames = 20);
// The grey of a pixel of frame `frame` of such a clip; rows count from the top.
std::uint8_t JpegGrey(const ClipRecipe& recipe, int frame, int row);
// The same pictures in Matroska, with the recipe's sound. The pictures begin so many frames after the sound; below 0:
// the sound after them.
Bytes MakeMatroska(const ClipRecipe& recipe, int late = 0);

// Blue, green, red and the fourth byte of one pixel, counted from the picture's bottom row.
std::uint8_t ClipByte(int frame, int x, int y, int channel);
// Frame `frame` of a clip as the graph sees it: 32-bit RGB, bottom-up. 8-bit clips are grey, 24-bit ones have a fourth
// byte of 0.
Bytes ClipFrame(const ClipRecipe& recipe, int frame);
// All samples of the clip's sound.
Bytes ClipSound(const ClipRecipe& recipe);
Bytes MakeClip(const ClipRecipe& recipe);

// A clip taken apart, without the AVI file interface.
struct ParsedClip
{
    std::uint32_t rate = 0, scale = 0, length = 0; // of the pictures' stream header
    std::uint32_t soundRate = 0, soundScale = 0, soundLength = 0, soundSampleSize = 0;
    int width = 0, height = 0, bits = 0;
    std::vector<Bytes> frames;
    Bytes soundFormat;
    Bytes sound;
};
ParsedClip ParseClip(const Bytes& file);

} // namespace vixahost::test
