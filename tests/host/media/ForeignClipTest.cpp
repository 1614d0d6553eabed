#include "host/media/ForeignClip.h"
#include "tests/host/media/MemoryFile.h"

#include <gtest/gtest.h>

#include <string>

using namespace std::string_literals;

namespace vixahost::test {

namespace {

std::string Number(std::uint64_t value, int bytes)
{
    std::string text;
    for (int i = bytes - 1; i >= 0; --i)
        text += static_cast<char>(value >> (8 * i) & 0xFF);
    return text;
}

std::string Box(const std::string& name, const std::string& content)
{
    return Number(8 + content.size(), 4) + name + content;
}

std::string Track(const std::string& kind)
{
    return Box("trak", Box("tkhd", "x") + Box("mdia", Box("mdhd", "y") + Box("hdlr", "\0\0\0\0\0\0\0\0"s + kind)));
}

std::string Element(const std::string& id, const std::string& content)
{
    return id + Number(0x4000 | content.size(), 2) + content;
}

const std::string matroskaHead = Element("\x1A\x45\xDF\xA3", "\x42\x82\x88matroska");

std::string Tracks(const std::string& kind)
{
    return Element("\x1F\x43\xB6\x74", "xx") +
           Element("\x16\x54\xAE\x6B",
                   Element("\xAE", "\xD7\x81\1\x83\x81\1") + Element("\xAE", "\xD7\x81\2\x83\x81" + kind));
}

bool TellsOfSound(const std::string& text)
{
    MemoryFile file({text.begin(), text.end()});
    return media::TellsOfSound(file);
}

} // namespace

TEST(ForeignClip, TellsOfSoundByItsOwnDescription)
{
    const std::string start = Box("ftyp", "isom");
    // The data in front with a length behind its name.
    const std::string data = Number(1, 4) + "mdat" + Number(20, 8) + "soun";
    EXPECT_TRUE(TellsOfSound(start + data + Box("moov", Track("vide") + Track("soun"))));
    EXPECT_FALSE(TellsOfSound(start + data + Box("moov", Track("vide") + Track("text"))));
    EXPECT_FALSE(TellsOfSound(start + Box("mdat", Box("moov", Track("soun")))));
    // The last box may go on to the end, and a cut one does.
    EXPECT_TRUE(TellsOfSound(start + Number(0, 4) + "moov" + Track("soun")));
    EXPECT_TRUE(TellsOfSound(start + Number(9999, 4) + "moov" + Track("vide") + Track("soun")));

    const std::string live = "\x18\x53\x80\x67\x01\xFF\xFF\xFF\xFF\xFF\xFF\xFF"; // a segment of no known length
    EXPECT_TRUE(TellsOfSound(matroskaHead + live + Tracks("\2")));
    EXPECT_FALSE(TellsOfSound(matroskaHead + live + Tracks("\x11"))); // subtitles
    EXPECT_TRUE(TellsOfSound(matroskaHead + Element("\x18\x53\x80\x67", Tracks("\2"))));
    EXPECT_TRUE(TellsOfSound(matroskaHead + live + Element("\x16\x54\xAE\x6B", Element("\xAE", "\x83\x84\0\0\0\2"s))));
    EXPECT_FALSE(TellsOfSound(matroskaHead + Element("\xEC", Tracks("\2")))); // in what nobody reads

    EXPECT_TRUE(TellsOfSound("FLV\1\5----"));
    EXPECT_FALSE(TellsOfSound("FLV\1\1----"));
    EXPECT_TRUE(TellsOfSound("OggS----\1vorbis"));
    EXPECT_FALSE(TellsOfSound("OggS----\x80theora"));
    EXPECT_TRUE(TellsOfSound("\0\0\1\xBA----\0\0\1\xC0"s));
    EXPECT_FALSE(TellsOfSound("\0\0\1\xBA----\0\0\1\xE0"s));
    EXPECT_FALSE(TellsOfSound("RIFF----AVI soun"));
    EXPECT_FALSE(TellsOfSound(""));
}

TEST(ForeignClip, IsReadToTheEndWhateverItSays)
{
    // Every cut of a whole clip, and every byte of it set to what a length should not be.
    for (const std::string& whole : {Box("ftyp", "isom") + Box("moov", Track("vide") + Track("soun")),
                                     matroskaHead + Element("\x18\x53\x80\x67", Tracks("\2"))}) {
        for (std::size_t at = 0; at < whole.size(); ++at) {
            TellsOfSound(whole.substr(0, at));
            for (const char value : {'\0', '\1', '\x7F', '\xFF'}) {
                std::string changed = whole;
                changed[at] = value;
                TellsOfSound(changed);
            }
        }
    }
    std::string boxes = Box("ftyp", "isom");
    while (boxes.size() < 2'000'000)
        boxes += Box("free", "");
    EXPECT_FALSE(TellsOfSound(boxes + Box("moov", Track("soun")))) << "it goes through boxes without end";
}

} // namespace vixahost::test
