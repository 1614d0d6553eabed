#include "host/media/PictureSequence.h"

#include "host/base/HostError.h"
#include "host/base/ResultCode.h"
#include "host/base/Text.h"
#include "host/media/PictureFrames.h"

#include <algorithm>
#include <cwchar>
#include <utility>

namespace vixahost::media {

namespace {

constexpr std::size_t mostDigits = 18; // of a number in 64 bits
constexpr const wchar_t* decimals = L"0123456789";
constexpr const wchar_t* stagingEnding = L".frames";

bool SameLetters(const std::wstring& one, const std::wstring& other)
{
    return _wcsicmp(one.c_str(), other.c_str()) == 0;
}

// "frame0003.png, frame0007.png to frame0009.png".
std::string MissingBetween(const SequenceName& name, const std::vector<std::int64_t>& numbers)
{
    std::string missing;
    for (std::size_t i = 1; i < numbers.size(); ++i) {
        const std::int64_t from = numbers[i - 1] + 1, to = numbers[i] - 1;
        if (from > to)
            continue;
        if (missing.size() > 200)
            return missing + ", ...";
        missing += (missing.empty() ? "" : ", ") + Show(name.At(from).filename());
        if (to > from)
            missing += " to " + Show(name.At(to).filename());
    }
    return missing;
}

// What killed runs left: their file is gone, and with it their lock.
void RemoveStaging(const std::filesystem::path& pattern)
{
    const std::wstring beginning = pattern.filename().native() + L".partial-", ending = stagingEnding;
    const std::filesystem::path parent = pattern.parent_path();
    std::error_code fault;
    std::vector<std::filesystem::path> left;
    for (const auto& entry : std::filesystem::directory_iterator(parent.empty() ? L"." : parent, fault)) {
        const std::wstring file = entry.path().filename().native();
        if (file.starts_with(beginning) && file.ends_with(ending) &&
            !std::filesystem::exists(parent / file.substr(0, file.size() - ending.size()), fault))
            left.push_back(entry.path());
    }
    for (const auto& folder : left)
        std::filesystem::remove_all(folder, fault);
}

} // namespace

std::optional<SequenceName> SequenceName::Of(const std::filesystem::path& name)
{
    const std::wstring text = name.filename().native();
    const auto format = PictureFormatOf(name);
    if (!format)
        return std::nullopt;
    SequenceName sequence;
    sequence.pattern = name;
    sequence.format = *format;
    bool placed = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        std::wstring& part = placed ? sequence.after : sequence.before;
        if (text[at] != L'%') {
            part += text[at];
            continue;
        }
        if (text.compare(at, 2, L"%%") == 0) {
            part += text[++at];
            continue;
        }
        const std::size_t end = std::min(text.find_first_not_of(decimals, at + 1), text.size());
        const std::wstring width = text.substr(at + 1, end - at - 1);
        if (placed || end == text.size() || text[end] != L'd' || (!width.empty() && width[0] != L'0') ||
            width.size() > 3)
            return std::nullopt;
        sequence.digits = std::max<std::size_t>(std::wcstoul(width.c_str(), nullptr, 10), 1);
        if (sequence.digits > mostDigits)
            return std::nullopt;
        placed = true;
        at = end;
    }
    return placed ? std::optional(std::move(sequence)) : std::nullopt;
}

std::optional<std::filesystem::path> SequenceName::Around(const std::filesystem::path& picture)
{
    const std::wstring stem = picture.stem().native();
    const std::size_t last = stem.find_last_of(decimals);
    if (last == std::wstring::npos || !PictureFormatOf(picture))
        return std::nullopt;
    const std::size_t before = stem.find_last_not_of(decimals, last),
                      first = before == std::wstring::npos ? 0 : before + 1;
    const auto literal = [](const std::wstring& text) {
        std::wstring doubled;
        for (const wchar_t letter : text)
            doubled.append(letter == L'%' ? 2 : 1, letter);
        return doubled;
    };
    // Without leading zeros numbers may have any length.
    const std::wstring place =
        last > first && stem[first] == L'0' ? L"%0" + std::to_wstring(last + 1 - first) + L"d" : L"%d";
    return picture.parent_path() / (literal(stem.substr(0, first)) + place + literal(stem.substr(last + 1)) +
                                    literal(picture.extension().native()));
}

std::filesystem::path SequenceName::At(std::int64_t number) const
{
    std::wstring text = std::to_wstring(number);
    if (text.size() < digits)
        text.insert(0, digits - text.size(), L'0');
    return pattern.parent_path() / (before + text + after);
}

std::vector<std::int64_t> SequenceName::Numbers() const
{
    std::vector<std::int64_t> numbers;
    const std::filesystem::path parent = pattern.parent_path();
    std::error_code fault;
    for (const auto& entry : std::filesystem::directory_iterator(parent.empty() ? L"." : parent, fault)) {
        const std::wstring file = entry.path().filename().native();
        if (file.size() <= before.size() + after.size())
            continue;
        const std::wstring middle = file.substr(before.size(), file.size() - before.size() - after.size());
        if (middle.size() > mostDigits || middle.find_first_not_of(decimals) != std::wstring::npos)
            continue;
        const std::int64_t number = std::stoll(middle);
        if (SameLetters(At(number).filename().native(), file))
            numbers.push_back(number);
    }
    std::ranges::sort(numbers);
    return numbers;
}

SequenceReader::SequenceReader(SequenceName sequence, std::uint32_t rate, std::uint32_t scale)
    : name(std::move(sequence))
{
    const std::vector<std::int64_t> numbers = name.Numbers();
    if (numbers.empty())
        throw FailedJob("There is no picture of the sequence " + Show(name.Pattern()) + ", such as " +
                        Show(name.At(1).filename()) + "; check its name and folder.");
    if (const std::string missing = MissingBetween(name, numbers); !missing.empty())
        throw FailedJob("The sequence " + Show(name.Pattern()) + " has gaps: there is no " + missing + ".");
    first = numbers.front();
    count = static_cast<std::int64_t>(numbers.size());
    begin = ReadPicture(name.At(first));
    alpha = HasAlpha(begin);
    format = {begin.width, begin.height, rate, scale};
}

bool SequenceReader::Read(std::span<std::uint8_t> frame)
{
    if (position == count)
        return false;
    const std::filesystem::path file = name.At(first + position);
    const Picture picture = position == 0 && begin.width > 0 ? std::exchange(begin, {}) : ReadPicture(file);
    if (picture.width != format.width || picture.height != format.height)
        throw FailedJob(Show(file) + " measures " + std::to_string(picture.width) + " x " +
                        std::to_string(picture.height) + " pixels, the first of its sequence " +
                        std::to_string(format.width) + " x " + std::to_string(format.height) +
                        "; make them alike first.");
    alpha |= HasAlpha(picture);
    PictureReader(picture).Read(frame);
    ++position;
    return true;
}

void SequenceReader::Seek(std::int64_t index) noexcept
{
    position = std::clamp<std::int64_t>(index, 0, count);
}

SequenceWriter::SequenceWriter(SequenceName sequence, const FrameFormat& frames, std::int64_t firstNumber)
    : name(std::move(sequence)), hold(name.Pattern()), folder(hold.Temporary()), picture(frames.width, frames.height),
      first(firstNumber), next(firstNumber)
{
    RemoveStaging(name.Pattern());
    folder += stagingEnding;
    if (!CreateDirectoryW(folder.c_str(), nullptr))
        throw hold.WriteFault(GetLastError());
    for (std::size_t i = 3; i < picture.pixels.size(); i += 4)
        picture.pixels[i] = 255;
}

SequenceWriter::~SequenceWriter()
{
    std::error_code fault;
    std::filesystem::remove_all(folder, fault);
}

void SequenceWriter::Write(std::span<const std::uint8_t> frame)
{
    PictureWriter(picture).Write(frame);
    WritePicture(folder / name.At(next).filename(), name.Format(), picture, name.At(next));
    ++next;
}

void SequenceWriter::Commit()
{
    for (std::int64_t number = first; number < next; ++number) {
        const std::filesystem::path file = name.At(number);
        if (!MoveFileExW((folder / file.filename()).c_str(), file.c_str(), MOVEFILE_REPLACE_EXISTING))
            throw FailedJob("Can't put a picture in the place of " + Show(file) + " (" + ExplainError(GetLastError()) +
                            "); is it open elsewhere or protected?");
    }
}

} // namespace vixahost::media
