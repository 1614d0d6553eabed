// Random calls and random texts for the library and the host on the platform itself, where there is neither libFuzzer
// nor a sanitizer: each answer is known beforehand, and buffers end where memory does. fuzz_library texts|stacks [COUNT
// [FIRST]]: makes the inputs from number FIRST on, and ends at the first that is answered wrongly. A number always
// makes the same input.
#include "host/base/HostError.h"
#include "host/base/Text.h"
#include "host/effects/StackFile.h"
#include "host/fixtures/GuardedMemory.h"
#include "host/validate/Contract.h"

#include <vixavideofx/EffectParameters.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

using namespace vixahost;
using namespace vixavideofx;
using fixtures::GuardedMemory;

namespace {

class Random
{
public:
    explicit Random(std::uint64_t number) : state(number * 0x9E3779B97F4A7C15) {}

    std::uint32_t Number()
    {
        state += 0x9E3779B97F4A7C15;
        std::uint64_t mixed = (state ^ state >> 30) * 0xBF58476D1CE4E5B9;
        mixed = (mixed ^ mixed >> 27) * 0x94D049BB133111EB;
        return static_cast<std::uint32_t>(mixed >> 32);
    }
    std::size_t Below(std::size_t limit) { return Number() % limit; }
    bool OneIn(std::size_t count) { return Below(count) == 0; }
    template <typename Range>
    auto& Of(Range& range)
    {
        return *(std::begin(range) + static_cast<std::ptrdiff_t>(Below(std::size(range))));
    }

private:
    std::uint64_t state;
};

void Require(bool holds, const std::string& what)
{
    if (!holds)
        throw FailedJob(what);
}

constexpr std::uint8_t untouched = 0xA5;

bool IsUntouched(std::uint8_t value)
{
    return value == untouched;
}

// The catalogue's two-call texts and pictures.
class TextCalls
{
public:
    TextCalls()
    {
        for (const effects::LanguageCode& one : effects::LanguageCodes()) {
            const auto path = library.File();
            const UniqueModule file(
                LoadLibraryExW((path.parent_path() / (path.stem().native() + L"_" + Wide(one.code) + L".nls")).c_str(),
                               nullptr, LOAD_LIBRARY_AS_DATAFILE));
            Require(file != nullptr, std::string("There is no language file for ") + one.code);
            Speech speech = {one.id, {}, {}};
            for (const validate::Promise& effect : validate::Promises()) {
                speech.names.push_back(TextIn(file.get(), effect.nameId));
                speech.groups.push_back(TextIn(file.get(), effect.groupNameId));
            }
            speeches.push_back(speech);
        }
        for (const validate::Promise& effect : validate::Promises()) {
            infos.push_back(library.CatalogueOf(*effect.classId));
            ULONG size = 0;
            infos.back()->GetIcon(nullptr, &size);
            icons.emplace_back(size);
            infos.back()->GetIcon(icons.back().data(), &size);
        }
    }

    // Ten calls in one language, or in several.
    void Input(Random random)
    {
        spoken = nullptr;
        for (int i = 0; i < 10; ++i) {
            const std::size_t effect = random.Below(infos.size());
            if (random.OneIn(32))
                infos[effect] = library.CatalogueOf(*validate::Promises()[effect].classId);
            IEffectInfo& info = *infos[effect].Get();
            const std::size_t kind = spoken ? random.Below(8) : 0;
            if (kind < 3) {
                if (!spoken || random.OneIn(16))
                    language = AnyLanguage(random);
                const Speech& speech = SpeechOf(static_cast<LANGID>(language));
                const auto ask = [&](WCHAR* text, ULONG* length) { return info.GetEffectName(language, text, length); };
                if (Text(random, ask, speech.names[effect]))
                    spoken = &speech;
            } else if (kind < 6)
                Text(
                    random,
                    [&](WCHAR* text, ULONG* length) { return info.GetGroupName(random.Number(), text, length); },
                    spoken->groups[effect]);
            else
                Picture(random, info, icons[effect], kind == 7);
        }
    }

    bool End()
    {
        infos.clear();
        return library.CanUnload();
    }

private:
    struct Speech
    {
        LANGID id;
        std::vector<std::wstring> names, groups;
    };

    static std::wstring TextIn(HMODULE file, UINT id)
    {
        WCHAR text[256] = {};
        return {text, static_cast<std::size_t>(LoadStringW(file, id, text, 256))};
    }

    std::ptrdiff_t FilesOf(int primary) const
    {
        return std::ranges::count_if(speeches, [=](const Speech& one) { return PRIMARYLANGID(one.id) == primary; });
    }

    // One with a file, one of another territory, one without a file; what stands above the identifier doesn't count.
    ULONG AnyLanguage(Random& random) const
    {
        LANGID id = random.Of(speeches).id;
        if (random.OneIn(3)) {
            const auto other = static_cast<LANGID>(random.OneIn(2) ? random.Number() : PRIMARYLANGID(id));
            if (FilesOf(PRIMARYLANGID(other)) < 2) // which of two files another territory means is no matter here
                id = static_cast<LANGID>(other + (random.Below(64) << 10));
        }
        return random.OneIn(4) ? id | random.Number() << 16 : id;
    }

    const Speech& SpeechOf(LANGID id) const
    {
        const Speech* english = nullptr;
        for (const Speech& one : speeches) {
            if (one.id == id || (PRIMARYLANGID(one.id) == PRIMARYLANGID(id) && FilesOf(PRIMARYLANGID(id)) == 1))
                return one;
            if (one.id == effects::englishLanguage)
                english = &one;
        }
        return *english;
    }

    // False for a request that was refused, as it must be.
    template <typename Request>
    bool Text(Random& random, Request request, const std::wstring& wanted)
    {
        const bool hasText = !random.OneIn(3), hasLength = !random.OneIn(3);
        const std::size_t characters = wanted.size() + 1, before = random.Below(8);
        const auto bytes = room.Place((before + characters) * sizeof(WCHAR), GuardedMemory::Guard::Behind);
        std::ranges::fill(bytes, untouched);
        auto* const text = reinterpret_cast<WCHAR*>(bytes.data()) + before;
        const ULONG said = random.OneIn(2) ? random.Number() : static_cast<ULONG>(random.Below(40));
        ULONG length = said;
        const HRESULT result = request(hasText ? text : nullptr, hasLength ? &length : nullptr);
        const bool taken = hasText || hasLength;
        Require(result == (taken ? S_OK : E_INVALIDARG), "A text's result is " + std::to_string(result));
        Require(length == (hasLength ? characters : said), "A text's length is " + std::to_string(length));
        Require(!hasText || text == wanted,
                "A text is \"" + Utf8(std::wstring_view(text, characters)) + "\" instead of \"" + Utf8(wanted) + "\"");
        Require(std::ranges::all_of(bytes.first((before + (hasText ? 0 : characters)) * sizeof(WCHAR)), IsUntouched),
                "A text was written where it doesn't belong");
        return taken;
    }

    void Picture(Random& random, IEffectInfo& info, const std::vector<std::uint8_t>& icon, bool second)
    {
        const bool hasBuffer = !random.OneIn(3), hasSize = !random.OneIn(3), hasValue = !random.OneIn(3);
        const std::size_t capacity = random.OneIn(2) ? icon.size() : random.Below(2 * icon.size());
        const auto bytes = room.Place(capacity, GuardedMemory::Guard::Behind);
        std::ranges::fill(bytes, untouched);
        ULONG size = static_cast<ULONG>(capacity), value = 7;
        std::uint8_t* const buffer = hasBuffer ? bytes.data() : nullptr;
        const HRESULT result =
            second ? info.GetSecondBitmap(buffer, hasSize ? &size : nullptr, hasValue ? &value : nullptr)
                   : info.GetIcon(buffer, hasSize ? &size : nullptr);
        const bool refused = !hasSize || (second && hasBuffer && !hasValue);
        Require(result == (refused  ? E_INVALIDARG
                           : second ? E_FAIL
                                    : S_OK),
                "A picture's result is " + std::to_string(result));
        const bool asked = !refused && !second;
        Require(size == (asked && !hasBuffer ? icon.size() : capacity) && value == 7, "A picture's size is wrong");
        const std::size_t copied = asked && hasBuffer && capacity >= icon.size() ? icon.size() : 0;
        Require(std::equal(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(copied), icon.begin()) &&
                    std::ranges::all_of(bytes.subspan(copied), IsUntouched),
                "A picture's bytes are wrong");
    }

    effects::EffectLibrary library;
    std::vector<Speech> speeches;
    std::vector<Microsoft::WRL::ComPtr<IEffectInfo>> infos;
    std::vector<std::vector<std::uint8_t>> icons;
    GuardedMemory room{8192};
    ULONG language = 0;
    const Speech* spoken = nullptr; // null: not known
};

// Stack files: what a person may have written must be taken as it is meant, and what can't be meant refused in words.
class StackTexts
{
public:
    void Input(Random random)
    {
        const effects::EffectStack stack = AnyStack(random);
        std::string text = random.OneIn(2) ? effects::WriteStack(stack) : Handwritten(random, stack);
        Require(effects::ParseStack(text, catalogue) == stack, "A stack was read otherwise than it is meant:\n" + text);
        Damage(random, text);
        effects::EffectStack read;
        try {
            read = effects::ParseStack(text, catalogue);
        } catch (const FailedJob& fault) {
            RequireMessage(fault.what(), text);
            return;
        }
        for (const effects::EffectStep& step : read)
            RequireValues(step, text);
        Require(effects::ParseStack(effects::WriteStack(read), catalogue) == read,
                "A stack does not come back from its file:\n" + text);
    }

    bool End()
    {
        catalogue.clear();
        return library.CanUnload();
    }

private:
    effects::EffectStack AnyStack(Random& random) const
    {
        effects::EffectStack stack(random.Below(5));
        for (effects::EffectStep& step : stack) {
            step = effects::StepOf(random.Of(catalogue));
            step.on = !random.OneIn(3);
            for (const ParameterDescription& parameter : ParametersOf(step.classId)) {
                const auto range = static_cast<std::size_t>(parameter.maximum - parameter.minimum + 1);
                step.block.at(parameter.offset / sizeof(std::int32_t)) =
                    parameter.closed ? random.Of(parameter.choices).value
                                     : parameter.minimum + static_cast<std::int32_t>(random.Below(range));
            }
        }
        return stack;
    }

    static std::string AnyCase(Random& random, std::string text)
    {
        for (char& letter : text)
            if (letter >= 'a' && letter <= 'z' && random.OneIn(3))
                letter = static_cast<char>(letter - 'a' + 'A');
        return text;
    }
    static std::string Line(Random& random, const std::string& name, const std::string& value)
    {
        static constexpr const char *blanks[] = {"", " ", "\t", "  \t "},
                                    *ends[] = {"\n", "\r\n", " \n", "\n\n# x = 1\n"};
        return random.Of(blanks) + AnyCase(random, name) + random.Of(blanks) + "=" + random.Of(blanks) +
               AnyCase(random, value) + random.Of(ends);
    }
    static std::string Handwritten(Random& random, const effects::EffectStack& stack)
    {
        std::string text = random.OneIn(3) ? "\xEF\xBB\xBF" : "";
        for (const effects::EffectStep& step : stack) {
            WCHAR identifier[40] = {};
            StringFromGUID2(step.classId, identifier, 40);
            text += Line(random, "effect", random.OneIn(3) ? Utf8(identifier) : step.name);
            for (const ParameterDescription& parameter : ParametersOf(step.classId)) {
                const std::int32_t value = step.block.at(parameter.offset / sizeof(std::int32_t));
                const std::string number = (value >= 0 && random.OneIn(3) ? "+" : "") + std::to_string(value);
                text += Line(random, parameter.name, random.OneIn(2) ? number : effects::ShowValue(parameter, value));
            }
            if (!step.on || random.OneIn(3))
                text += Line(random, "on", step.on ? "yes" : "no");
        }
        return text;
    }

    static void Damage(Random& random, std::string& text)
    {
        static const std::string pieces[] = {"=",
                                             "\n",
                                             "\r",
                                             "effect =",
                                             "on = ",
                                             "gamma=",
                                             "#",
                                             "{",
                                             "}",
                                             "-",
                                             "+",
                                             "0x7F",
                                             "2147483648",
                                             "-2147483649",
                                             "99999999999999999999",
                                             "1.5",
                                             "\xEF\xBB\xBF",
                                             "\xFF",
                                             std::string("\xE2\x80") + '\xAE', // from right to left
                                             "\xF0\x9F\x8E\x9E",
                                             "\x1B[31m",
                                             std::string(1, '\0'),
                                             "effect = Gamma correction\ngamma = ",
                                             std::string(300, 'e'),
                                             " "};
        for (std::size_t changes = 1 + random.Below(3); changes > 0; --changes) {
            const std::size_t at = random.Below(text.size() + 1), bytes = random.Below(16);
            switch (random.Below(5)) {
            case 0:
                text.erase(at, bytes);
                break;
            case 1:
                text.insert(at, text.substr(random.Below(text.size() + 1), 4 * bytes));
                break;
            case 2:
                text.insert(at, 1, static_cast<char>(random.Number()));
                break;
            default:
                text.insert(at, random.Of(pieces));
            }
        }
    }

    static void RequireMessage(const std::string& message, const std::string& text)
    {
        const auto lines = std::count(text.begin(), text.end(), '\n') + 1;
        const long line = message.starts_with("Line ") ? std::strtol(message.c_str() + 5, nullptr, 10) : 0;
        Require(
            line >= 1 && line <= lines && message.size() < 500 &&
                std::ranges::none_of(message, [](char letter) { return static_cast<unsigned char>(letter) < ' '; }) &&
                MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, message.data(), static_cast<int>(message.size()),
                                    nullptr, 0) > 0,
            "A refusal reads \"" + message + "\":\n" + text);
    }
    static void RequireValues(const effects::EffectStep& step, const std::string& text)
    {
        for (const ParameterDescription& parameter : ParametersOf(step.classId)) {
            const std::int32_t value = step.block.at(parameter.offset / sizeof(std::int32_t));
            const auto means = [=](const ParameterChoice& choice) { return choice.value == value; };
            Require(value >= parameter.minimum && value <= parameter.maximum &&
                        (!parameter.closed || std::ranges::any_of(parameter.choices, means)),
                    step.name + " has a value out of range:\n" + text);
        }
    }

    effects::EffectLibrary library;
    std::vector<effects::CatalogueEntry> catalogue = effects::ReadCatalogue(library);
};

template <typename Target>
int Run(std::uint64_t count, std::uint64_t first)
{
    Target target;
    std::uint64_t number = first;
    try {
        for (; number < first + count; ++number)
            target.Input(Random(number));
        Require(target.End(), "Objects of the library are left.");
    } catch (const std::exception& fault) {
        std::printf("input %llu: %s\n", static_cast<unsigned long long>(number), fault.what());
        return 1;
    }
    std::printf("%llu inputs, nothing found\n", static_cast<unsigned long long>(count));
    return 0;
}

} // namespace

int main(int words, char** word)
try {
    const auto number = [&](int at, std::uint64_t otherwise) {
        return words > at ? std::strtoull(word[at], nullptr, 10) : otherwise;
    };
    const std::string target = words > 1 ? word[1] : "";
    if (target == "texts")
        return Run<TextCalls>(number(2, 100'000), number(3, 1));
    if (target == "stacks")
        return Run<StackTexts>(number(2, 100'000), number(3, 1));
    std::puts("fuzz_library texts|stacks [COUNT [FIRST]]");
    return 2;
} catch (const std::exception& fault) {
    std::puts(fault.what());
    return 1;
}
