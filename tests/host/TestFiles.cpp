#include "tests/host/TestFiles.h"

#include "host/media/PictureFile.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>

namespace vixahost::test {

ScratchFolder::ScratchFolder() : path(std::filesystem::temp_directory_path())
{
    static int count = 0;
    path /= L"vixahost test \x00e4\x4e2d " + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++count);
    // A program that was ended had the same number, and a folder that something still held.
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
    std::filesystem::create_directories(path);
}

ScratchFolder::~ScratchFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

std::vector<std::wstring> ScratchFolder::Names() const
{
    std::vector<std::wstring> names;
    for (const auto& entry : std::filesystem::directory_iterator(path))
        names.push_back(entry.path().filename().native());
    std::sort(names.begin(), names.end());
    return names;
}

Bytes ReadBytes(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void WriteBytes(const std::filesystem::path& file, const Bytes& bytes)
{
    std::ofstream stream(file, std::ios::binary);
    stream.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

media::Picture TestPicture(int width, int height, unsigned seed, bool alpha)
{
    std::mt19937 random(seed);
    media::Picture picture(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int channel = 0; channel < 4; ++channel)
                picture.Row(y)[x * 4 + channel] =
                    channel == 3 && !alpha ? std::uint8_t{255}
                                           : static_cast<std::uint8_t>(x * 5 + channel * 40 + int(random() % 64));
    return picture;
}

namespace {

void Put16(Bytes& to, unsigned value)
{
    to.push_back(static_cast<std::uint8_t>(value));
    to.push_back(static_cast<std::uint8_t>(value >> 8));
}

void Put32(Bytes& to, std::uint32_t value)
{
    Put16(to, value & 0xFFFF);
    Put16(to, value >> 16);
}

void PutTag(Bytes& to, const char* tag)
{
    to.insert(to.end(), tag, tag + 4);
}

Bytes Chunk(const char* tag, const Bytes& content)
{
    Bytes chunk;
    PutTag(chunk, tag);
    Put32(chunk, static_cast<std::uint32_t>(content.size()));
    chunk.insert(chunk.end(), content.begin(), content.end());
    if (content.size() % 2 != 0)
        chunk.push_back(0);
    return chunk;
}

Bytes List(const char* tag, const char* type, const std::vector<Bytes>& parts)
{
    Bytes content;
    PutTag(content, type);
    for (const Bytes& part : parts)
        content.insert(content.end(), part.begin(), part.end());
    return Chunk(tag, content);
}

struct Stream
{
    const char* type;
    const char* handler;
    std::uint32_t scale, rate, length, buffer, sampleSize;
    int width, height;
};

Bytes StreamHeader(const Stream& stream)
{
    Bytes header;
    PutTag(header, stream.type);
    PutTag(header, stream.handler);
    for (const std::uint32_t value :
         {0u, 0u, 0u, stream.scale, stream.rate, 0u, stream.length, stream.buffer, 0xFFFFFFFFu, stream.sampleSize, 0u})
        Put32(header, value);
    Put16(header, static_cast<unsigned>(stream.width));
    Put16(header, static_cast<unsigned>(stream.height));
    return Chunk("strh", header);
}

bool RunLengths(const ClipRecipe& recipe)
{
    return std::string(recipe.compression) == "MRLE";
}

// A frame as it lies in the file.
Bytes StoredFrame(const ClipRecipe& recipe, int frame)
{
    if (!recipe.stored.empty())
        return recipe.stored.at(static_cast<std::size_t>(frame));
    Bytes stored;
    for (int row = 0; row < recipe.height; ++row) {
        const int y = recipe.topDown ? recipe.height - 1 - row : row;
        for (int x = 0; x < recipe.width; ++x)
            for (int channel = 0; channel < recipe.bits / 8; ++channel) {
                if (RunLengths(recipe))
                    stored.push_back(1); // a run of one pixel
                stored.push_back(ClipByte(frame, x, y, channel));
            }
        if (RunLengths(recipe)) {
            const bool last = row + 1 == recipe.height;
            stored.insert(stored.end(), {0, static_cast<std::uint8_t>(last ? 1 : 0)}); // end of row or of picture
        }
        while (!RunLengths(recipe) && stored.size() % 4 != 0)
            stored.push_back(0);
    }
    return stored;
}

std::size_t SamplesUpTo(const ClipRecipe& recipe, int frame)
{
    return static_cast<std::size_t>(std::uint64_t(frame) * recipe.scale * 44100 / recipe.rate);
}

constexpr std::size_t blockAlign = 4;

std::uint32_t Get32(const Bytes& from, std::size_t at)
{
    std::uint32_t value = 0;
    if (at + 4 > from.size())
        throw std::runtime_error("the clip ends too early");
    std::memcpy(&value, from.data() + at, 4);
    return value;
}

std::string TagAt(const Bytes& from, std::size_t at)
{
    return {from.begin() + static_cast<std::ptrdiff_t>(at), from.begin() + static_cast<std::ptrdiff_t>(at) + 4};
}

void Take(const std::string& tag, const Bytes& chunk, ParsedClip& clip, bool& inSound)
{
    if (tag == "strh") {
        inSound = TagAt(chunk, 0) == "auds";
        (inSound ? clip.soundScale : clip.scale) = Get32(chunk, 20);
        (inSound ? clip.soundRate : clip.rate) = Get32(chunk, 24);
        (inSound ? clip.soundLength : clip.length) = Get32(chunk, 32);
        if (inSound)
            clip.soundSampleSize = Get32(chunk, 44);
    } else if (tag == "strf" && inSound) {
        clip.soundFormat = chunk;
    } else if (tag == "strf") {
        clip.width = static_cast<int>(Get32(chunk, 4));
        clip.height = static_cast<int>(Get32(chunk, 8));
        clip.bits = static_cast<int>(Get32(chunk, 12) >> 16);
    } else if (tag == "00db" || tag == "00dc") {
        clip.frames.push_back(chunk);
    } else if (tag == "01wb") {
        clip.sound.insert(clip.sound.end(), chunk.begin(), chunk.end());
    }
}

void Parse(const Bytes& file, std::size_t at, std::size_t end, ParsedClip& clip, bool& inSound)
{
    while (at + 8 <= end) {
        const std::string tag = TagAt(file, at);
        const std::size_t size = Get32(file, at + 4), content = at + 8;
        if (content + size > end)
            throw std::runtime_error("chunk " + tag + " is longer than what holds it");
        if (tag == "RIFF" || tag == "LIST")
            Parse(file, content + 4, content + size, clip, inSound);
        else
            Take(tag,
                 {file.begin() + static_cast<std::ptrdiff_t>(content),
                  file.begin() + static_cast<std::ptrdiff_t>(content + size)},
                 clip, inSound);
        at = content + size + size % 2;
    }
}

} // namespace

std::uint8_t ClipByte(int frame, int x, int y, int channel)
{
    return static_cast<std::uint8_t>(x * 7 + y * 3 + frame * 11 + channel * 50 + (x * y) % 5);
}

Bytes ClipFrame(const ClipRecipe& recipe, int frame)
{
    if (frame == recipe.emptyFrame)
        --frame;
    Bytes pixels;
    for (int y = 0; y < recipe.height; ++y)
        for (int x = 0; x < recipe.width; ++x)
            for (int channel = 0; channel < 4; ++channel) {
                const bool colourless = channel == 3 && recipe.bits < 32;
                pixels.push_back(colourless ? std::uint8_t{0} : ClipByte(frame, x, y, recipe.bits == 8 ? 0 : channel));
            }
    return pixels;
}

Bytes ClipSound(const ClipRecipe& recipe)
{
    Bytes sound(SamplesUpTo(recipe, recipe.frames) * blockAlign);
    for (std::size_t i = 0; i < sound.size(); ++i)
        sound[i] = static_cast<std::uint8_t>(i * 13 + i / 251);
    return sound;
}

namespace {

Bytes PictureFormat(const ClipRecipe& recipe, std::uint32_t frameBytes)
{
    Bytes format;
    for (const std::uint32_t value : {40u, static_cast<std::uint32_t>(recipe.width),
                                      static_cast<std::uint32_t>(recipe.topDown ? -recipe.height : recipe.height),
                                      1u | static_cast<std::uint32_t>(recipe.bits) << 16})
        Put32(format, value);
    if (RunLengths(recipe))
        Put32(format, 1); // the number that stands for run lengths of 8 bits
    else
        PutTag(format, recipe.compression);
    for (const std::uint32_t value : {frameBytes, 0u, 0u, 0u, 0u})
        Put32(format, value);
    if (recipe.bits == 8)
        for (std::uint32_t grey = 0; grey < 256; ++grey)
            Put32(format, grey * 0x010101);
    return format;
}

} // namespace

Bytes MakeClip(const ClipRecipe& recipe)
{
    const Bytes sound = recipe.sound ? ClipSound(recipe) : Bytes();
    const auto frameBytes = static_cast<std::uint32_t>(StoredFrame(recipe, 0).size());

    Bytes soundFormat;
    Put16(soundFormat, 1);
    Put16(soundFormat, 2);
    Put32(soundFormat, 44100);
    Put32(soundFormat, 44100 * blockAlign);
    Put16(soundFormat, blockAlign);
    Put16(soundFormat, 16);
    Put16(soundFormat, 0);

    const auto frames = static_cast<std::uint32_t>(recipe.frames);
    std::vector<Bytes> headers;
    Bytes main;
    for (const std::uint32_t value :
         {33366u, 0u, 0u, 0x10u, frames, 0u, recipe.sound ? 2u : 1u, frameBytes,
          static_cast<std::uint32_t>(recipe.width), static_cast<std::uint32_t>(recipe.height), 0u, 0u, 0u, 0u})
        Put32(main, value);
    headers.push_back(Chunk("avih", main));
    headers.push_back(
        List("LIST", "strl",
             {StreamHeader({"vids", recipe.compression[0] ? recipe.compression : "DIB ", recipe.scale, recipe.rate,
                            frames, recipe.buffer ? recipe.buffer : frameBytes, 0, recipe.width, recipe.height}),
              Chunk("strf", PictureFormat(recipe, frameBytes))}));
    if (recipe.sound)
        headers.push_back(
            List("LIST", "strl",
                 {StreamHeader({"auds", "\0\0\0\0", 1, 44100, static_cast<std::uint32_t>(sound.size() / blockAlign),
                                22050, blockAlign, 0, 0}),
                  Chunk("strf", soundFormat)}));

    std::vector<Bytes> data;
    Bytes index;
    std::uint32_t offset = 4;
    const auto enter = [&](const char* tag, std::uint32_t flags, std::size_t bytes) {
        PutTag(index, tag);
        for (const std::uint32_t value : {flags, offset, static_cast<std::uint32_t>(bytes)})
            Put32(index, value);
    };
    for (int frame = 0; frame < recipe.frames; ++frame) {
        std::vector<std::pair<const char*, Bytes>> parts;
        parts.emplace_back("00db", frame == recipe.emptyFrame ? Bytes() : StoredFrame(recipe, frame));
        if (recipe.sound)
            parts.emplace_back(
                "01wb",
                Bytes(sound.begin() + static_cast<std::ptrdiff_t>(SamplesUpTo(recipe, frame) * blockAlign),
                      sound.begin() + static_cast<std::ptrdiff_t>(SamplesUpTo(recipe, frame + 1) * blockAlign)));
        std::vector<Bytes> chunks;
        std::size_t bytes = 4;
        for (const auto& [tag, content] : parts) {
            chunks.push_back(Chunk(tag, content));
            bytes += chunks.back().size();
        }
        if (recipe.records) {
            enter("rec ", 1, bytes);
            offset += 12;
            data.push_back(List("LIST", "rec ", chunks));
        }
        for (std::size_t i = 0; i < parts.size(); ++i) {
            enter(parts[i].first, 0x10, parts[i].second.size());
            offset += static_cast<std::uint32_t>(chunks[i].size());
            if (!recipe.records)
                data.push_back(chunks[i]);
        }
    }
    return List("RIFF", "AVI ", {List("LIST", "hdrl", headers), List("LIST", "movi", data), Chunk("idx1", index)});
}

std::uint8_t JpegGrey(const ClipRecipe& recipe, int frame, int row)
{
    return static_cast<std::uint8_t>(20 + 8 * frame + (row < recipe.height / 2 ? 60 : 0));
}

ClipRecipe JpegRecipe(int frames)
{
    ClipRecipe recipe = {.width = 48, .height = 32, .bits = 24, .frames = frames, .rate = 25, .scale = 1};
    std::memcpy(recipe.compression, "MJPG", 5);
    const ScratchFolder folder;
    for (int frame = 0; frame < frames; ++frame) {
        media::Picture picture(recipe.width, recipe.height);
        for (int y = 0; y < recipe.height; ++y)
            std::fill_n(picture.Row(y), picture.RowBytes(), JpegGrey(recipe, frame, y));
        media::WritePicture(folder / L"frame", media::PictureFormat::Jpeg, picture);
        recipe.stored.push_back(ReadBytes(folder / L"frame"));
    }
    return recipe;
}

namespace {

// Its identifier as it is written, and a length of 8 bytes.
Bytes Element(std::uint32_t identifier, const Bytes& content)
{
    Bytes element;
    for (int shift = 24; shift >= 0; shift -= 8)
        if (identifier >> shift)
            element.push_back(static_cast<std::uint8_t>(identifier >> shift));
    element.insert(element.end(), {1, 0, 0, 0});
    for (int shift = 24; shift >= 0; shift -= 8)
        element.push_back(static_cast<std::uint8_t>(content.size() >> shift));
    element.insert(element.end(), content.begin(), content.end());
    return element;
}

Bytes Element(std::uint32_t identifier, std::uint32_t number)
{
    return Element(identifier, Bytes{static_cast<std::uint8_t>(number >> 24), static_cast<std::uint8_t>(number >> 16),
                                     static_cast<std::uint8_t>(number >> 8), static_cast<std::uint8_t>(number)});
}

Bytes Element(std::uint32_t identifier, const std::string& text)
{
    return Element(identifier, Bytes(text.begin(), text.end()));
}

std::uint32_t BitsOf(float number)
{
    std::uint32_t bits = 0;
    std::memcpy(&bits, &number, sizeof bits);
    return bits;
}

Bytes Joined(const std::vector<Bytes>& parts)
{
    Bytes whole;
    for (const Bytes& part : parts)
        whole.insert(whole.end(), part.begin(), part.end());
    return whole;
}

} // namespace

Bytes MakeMatroska(const ClipRecipe& recipe, int late)
{
    const std::uint32_t milliseconds = 1000 * recipe.scale / recipe.rate;
    const auto pictureDelay = static_cast<std::uint32_t>(std::max(late, 0)) * milliseconds;
    const auto soundDelay = static_cast<std::uint32_t>(std::max(-late, 0)) * milliseconds;
    const auto duration = static_cast<float>(milliseconds * std::uint32_t(recipe.frames) + pictureDelay + soundDelay);
    const auto width = static_cast<std::uint32_t>(recipe.width), height = static_cast<std::uint32_t>(recipe.height);
    const Bytes video = Joined({Element(0xB0, width), Element(0xBA, height)});
    const Bytes track =
        Joined({Element(0xD7, 1u), Element(0x73C5, 1u), Element(0x83, 1u), Element(0x86, std::string("V_MJPEG")),
                Element(0x23E383, milliseconds * 1'000'000), Element(0xE0, video)});
    const Bytes audio = Joined({Element(0xB5, BitsOf(44100.0f)), Element(0x9F, 2u), Element(0x6264, 16u)});
    const Bytes soundTrack = Joined({Element(0xD7, 2u), Element(0x73C5, 2u), Element(0x83, 2u),
                                     Element(0x86, std::string("A_PCM/INT/LIT")), Element(0xE1, audio)});
    std::vector<Bytes> segment = {
        Element(0x1549A966, Joined({Element(0x2AD7B1, 1'000'000u), Element(0x4489, BitsOf(duration))})),
        Element(0x1654AE6B, Joined({Element(0xAE, track), Element(0xAE, soundTrack)}))};
    const Bytes sound = ClipSound(recipe);
    const auto put = [&segment](std::uint8_t trackNumber, std::uint32_t time, const auto& begin, const auto& end) {
        Bytes block = {std::uint8_t(0x80 | trackNumber), 0, 0, 0x80}; // no time after the cluster's, a key frame
        block.insert(block.end(), begin, end);
        segment.push_back(Element(0x1F43B675, Joined({Element(0xE7, time), Element(0xA3, block)})));
    };
    for (int frame = 0; frame < recipe.frames; ++frame) {
        const std::uint32_t time = milliseconds * std::uint32_t(frame);
        const Bytes& picture = recipe.stored[std::size_t(frame)];
        put(1, time + pictureDelay, picture.begin(), picture.end());
        put(2, time + soundDelay, sound.begin() + std::ptrdiff_t(SamplesUpTo(recipe, frame) * blockAlign),
            sound.begin() + std::ptrdiff_t(SamplesUpTo(recipe, frame + 1) * blockAlign));
    }
    return Joined({Element(0x1A45DFA3, Joined({Element(0x4282, std::string("matroska")), Element(0x4287, 2u),
                                               Element(0x4285, 2u)})),
                   Element(0x18538067, Joined(segment))});
}

ParsedClip ParseClip(const Bytes& file)
{
    ParsedClip clip;
    bool inSound = false;
    // What follows the RIFF chunk (padding) is no part of the clip.
    Parse(file, 0, std::min<std::size_t>(file.size(), 8 + std::size_t{Get32(file, 4)}), clip, inSound);
    return clip;
}

} // namespace vixahost::test
