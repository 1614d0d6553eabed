// The validator on the product, which it must pass, and on broken builds of it, each of which it must catch by name.
#include "host/validate/Report.h"
#include "host/validate/Validation.h"

#include "host/base/ModuleFile.h"
#include "host/effects/EffectLibrary.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <stdexcept>

using namespace vixahost;
using namespace vixahost::validate;

namespace {

std::vector<Result> Examine(const std::filesystem::path& library, std::vector<std::string> groups, int seconds = 20)
{
    ValidationRequest request;
    request.dll = library;
    request.program = vixahost::ThisProgram().parent_path() / L"vixahost.exe";
    request.groups = std::move(groups);
    request.secondsPerCheck = seconds;
    return Validate(request, {});
}

// Of the check with this name, which must be there.
Result ResultOf(const std::vector<Result>& results, std::string_view id)
{
    for (const Result& result : results)
        if (result.check->Id() == id)
            return result;
    throw std::out_of_range(std::string(id));
}

TEST(Validator, PassesTheProduct)
{
    const auto results = Examine(effects::LibraryBesideTheProgram(), {});
    EXPECT_EQ(results.size(), AllChecks().size());
    for (const Result& result : results) {
        const bool foreign = sizeof(void*) == 8 && result.check->Id() == "bad-input/unsavable-rows";
        EXPECT_EQ(result.status, foreign ? Status::Skipped : Status::Success)
            << result.check->Id() << ": " << result.reason;
    }
}

// A line of faults.txt: the check that a fault is meant for (or a name of the fault's own and the check), the status
// that it must get, and words that its reason begins with.
struct Expectation
{
    std::string fault, check, status, words;
};

std::vector<Expectation> Expectations()
{
    std::vector<Expectation> rows;
    std::ifstream file(VIXA_FAULTS);
    for (std::string line; std::getline(file, line);) {
        Expectation row;
        std::istringstream text(line);
        text >> row.fault >> row.status >> std::ws;
        std::getline(text, row.words);
        row.check = row.fault.substr(row.fault.find('=') + 1);
        row.fault.resize(std::min(row.fault.size(), row.fault.find('=')));
        if (!line.empty() && line[0] != '#')
            rows.push_back(row);
    }
    return rows;
}

std::filesystem::path BrokenLibrary()
{
    return effects::LibraryBesideTheProgram().parent_path().parent_path() / L"broken" / L"VixaVideoFX.dll";
}

// Faults that lie in the file itself: a copy of the library with some bytes changed, two language files beside it.
struct FileFault
{
    const char* check;
    void (*change)(std::string& bytes);
};

IMAGE_NT_HEADERS& HeadersIn(std::string& bytes)
{
    return *reinterpret_cast<IMAGE_NT_HEADERS*>(&bytes[bytes.find(std::string_view("PE\0\0", 4))]);
}

void Rename(std::string& bytes, std::string_view from, std::string_view to)
{
    bytes.replace(bytes.find(from), to.size(), to);
}

constexpr FileFault fileFaults[] = {
    {"loading/machine", [](std::string& bytes) { HeadersIn(bytes).FileHeader.Machine = IMAGE_FILE_MACHINE_ARMNT; }},
    {"loading/protections", [](std::string& bytes) { HeadersIn(bytes).OptionalHeader.DllCharacteristics = 0; }},
    {"loading/imports", [](std::string& bytes) { Rename(bytes, "MSIMG32", "MSIMG99"); }},
    {"loading/loads", [](std::string& bytes) { Rename(bytes, "MSIMG32", "MSIMG99"); }},
    {"loading/version",
     [](std::string& bytes) {
         HeadersIn(bytes).OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_RESOURCE].VirtualAddress = 0;
     }},
    {"exports/nothing-else", [](std::string& bytes) { Rename(bytes, "DllInstall", "DllInstead"); }},
    {"texts/files", [](std::string&) {}},
};

std::filesystem::path ChangedFile(const FileFault& fault)
{
    const auto whole = BrokenLibrary(), folder = whole.parent_path() / L"changed";
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    std::ifstream file(whole, std::ios::binary);
    std::string bytes(std::istreambuf_iterator<char>(file), {});
    fault.change(bytes);
    std::ofstream(folder / whole.filename(), std::ios::binary) << bytes;
    for (const wchar_t* language : {L"VixaVideoFX_de-DE.nls", L"VixaVideoFX_fr-FR.nls"})
        std::filesystem::copy_file(whole.parent_path() / language, folder / language);
    return folder / whole.filename();
}

TEST(Validator, EachCheckNoticesTheFaultThatIsMeantForIt)
{
    std::set<std::string> planted;
    for (const Expectation& row : Expectations()) {
        SCOPED_TRACE(row.fault);
        planted.insert(row.check);
        auto library = BrokenLibrary();
        for (const FileFault& fault : fileFaults)
            if (row.fault == fault.check)
                library = ChangedFile(fault);
        SetEnvironmentVariableA("VIXA_FAULT", row.fault.c_str());
        const Result caught = Examine(library, {row.check}, row.words.starts_with("no end") ? 1 : 20).at(0);
        if (row.check == "bad-input/unsavable-rows" && sizeof(void*) == 8)
            continue; // nothing to notice there
        EXPECT_EQ(NameOf(caught.status), row.status) << caught.reason;
        EXPECT_EQ(caught.reason.substr(0, row.words.size()), row.words);
    }
    SetEnvironmentVariableA("VIXA_FAULT", nullptr);
    for (const Check& check : AllChecks())
        EXPECT_TRUE(planted.contains(check.Id())) << "no fault is planted for " << check.Id();
}

// What is broken by the switch is whole without it, and a crash does not end a group's other checks.
TEST(Validator, OneFaultIsNotEverybodys)
{
    for (const char* fault : {"", "report/window-procedure"}) {
        SetEnvironmentVariableA("VIXA_FAULT", *fault ? fault : nullptr);
        const auto results = Examine(BrokenLibrary(), {"panels"});
        EXPECT_EQ(results.size(), ChecksOf("panels").size());
        const auto good = std::count_if(results.begin(), results.end(),
                                        [](const Result& result) { return result.status == Status::Success; });
        EXPECT_EQ(good == std::ssize(results), *fault == '\0') << fault;
        EXPECT_GE(good, 1) << fault;
    }
    SetEnvironmentVariableA("VIXA_FAULT", nullptr);
}

TEST(Report, OnlyTheNextLineOfTheKeysOwnerCounts)
{
    const ReportKey key = {0x0706050403020100, 0x0F0E0D0C0B0A0908};
    EXPECT_EQ(Signature(key, std::string_view("\0\1\2\3\4\5\6\7\x8\x9\xA\xB\xC\xD\xE", 15)), 0xA129CA6149BE45E5);
    char line[maxLine];
    using Kind = Statement::Kind;
    const auto found = [&](std::initializer_list<std::string_view> lines) {
        ReportReader reader(key);
        Statement said;
        auto result = ReportReader::Found::Nothing;
        for (const std::string_view text : lines) {
            reader.Take(text);
            result = reader.Next(said);
        }
        return result == ReportReader::Found::Foreign ? "foreign: " + said.reason : said.reason;
    };
    const std::string begin(WriteLine(line, key, 0, Kind::Begins, 7));
    const std::string end(WriteLine(line, key, 1, Kind::Ends, 7, Status::Failed, "a\nreason"));
    EXPECT_EQ(found({begin, end.substr(0, 9), end.substr(9)}), "a reason");
    EXPECT_TRUE(found({begin, begin}).starts_with("foreign")) << "repeated";
    EXPECT_TRUE(found({end}).starts_with("foreign")) << "one is missing";
    EXPECT_TRUE(found({std::string(maxLine, '\n')}).starts_with("foreign"));
    EXPECT_TRUE(found({std::string(maxLine, 'x')}).starts_with("foreign"));
    for (const auto status : {Status::Crashed, static_cast<Status>(9)})
        EXPECT_TRUE(found({WriteLine(line, key, 0, Kind::Ends, 7, status, "x")}).starts_with("foreign"));
    EXPECT_TRUE(found({WriteLine(line, key, 0, static_cast<Kind>(4), 7)}).starts_with("foreign"));
    EXPECT_TRUE(found({WriteLine(line, {1, 2}, 0, Kind::Begins, 7)}).starts_with("foreign"));
    const std::string reason(2 * maxLine, 'y');
    EXPECT_EQ(found({WriteLine(line, key, 0, Kind::Ends, 7, Status::Failed, reason.c_str())}),
              reason.substr(0, maxReason) + "...");
}

TEST(Validator, FilesThatAreNoLibrary)
{
    const auto results = Examine(VIXA_PAGE, {"loading", "factories"});
    ASSERT_EQ(results.size(), ChecksOf("loading").size() + ChecksOf("factories").size());
    EXPECT_EQ(ResultOf(results, "loading/machine").status, Status::Failed);
    EXPECT_EQ(ResultOf(results, "loading/loads").status, Status::Failed);
    for (const Result& result : results)
        if (std::string_view(result.check->group) == "factories") {
            EXPECT_EQ(result.status, Status::Skipped) << result.check->Id() << ": " << result.reason;
        }

    // One that was cut short between its imports and their names.
    const auto library = effects::LibraryBesideTheProgram(), cut = library.parent_path() / L"cut.dll";
    std::ifstream whole(library, std::ios::binary);
    std::string bytes(std::istreambuf_iterator<char>(whole), {});
    bytes.resize(std::min(bytes.size(), bytes.find("KERNEL32.dll")));
    std::ofstream(cut, std::ios::binary) << bytes;
    const Result imports = ResultOf(Examine(cut, {"loading"}), "loading/imports");
    EXPECT_EQ(imports.status, Status::Failed) << imports.reason;
    EXPECT_NE(imports.reason.find("names of its imports"), std::string::npos) << imports.reason;
    std::filesystem::remove(cut);
}

// The page names every check with its sentence, and no other.
TEST(Validator, ThePageAndTheProgramAgree)
{
    std::ifstream file(VIXA_PAGE);
    ASSERT_TRUE(file) << VIXA_PAGE;
    std::set<std::string> rows, wanted;
    for (std::string line; std::getline(file, line);) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (line.starts_with("| `"))
            rows.insert(line);
    }
    for (const Check& check : AllChecks())
        wanted.insert("| `" + check.Id() + "` | " + check.sentence + " |");
    for (const std::string& row : wanted)
        EXPECT_TRUE(rows.contains(row)) << "missing on the page: " << row;
    for (const std::string& row : rows)
        EXPECT_TRUE(wanted.contains(row)) << "only on the page: " << row;
    EXPECT_EQ(wanted.size(), AllChecks().size()) << "two checks have one name";
}

} // namespace
