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

struct Fault
{
    const char* name;
    const char* check; // the one that is meant for it
    Status status;
    const char* words; // that its reason has
};

constexpr Fault faults[] = {
    {"EXPORT", "exports/names", Status::Failed, "DllUnregisterServer"},
    {"LEAK", "identity/catalogue-counts", Status::Failed, "is 2 instead of 1"},
    {"SLOTS", "catalogue/groups", Status::Failed, "GetGroupId is 0"},
    {"LANGUAGE", "texts/from-the-file", Status::Failed, "de-DE"},
    {"TEXT_END", "texts/missing-language", Status::Crashed, "access violation"},
    {"ICON", "icons/size", Status::Failed, "3714 instead of 3712"},
    {"DEFAULT", "defaults/blocks", Status::Failed, "Emboss"},
    {"SILENT", "panels/notifies", Status::Failed, "notifications is 0"},
    {"DESTROY", "panels/reopened", Status::Crashed, "access violation at VixaVideoFX.dll"},
    {"BORDER", "streaming/borders", Status::Failed, "border pixel (1, 0)"},
    {"TIMES", "streaming/sample-untouched", Status::Failed, "Add pixel"},
    {"NULL", "bad-input/null-set", Status::Crashed, "access violation"},
    {"OVERRUN", "bad-input/guard-behind", Status::Crashed, "access violation"},
    {"HANG", "bad-input/failing-set", Status::Crashed, "no end after 2 s"},
    {"UNLOAD", "unloading/objects", Status::Failed, "DllCanUnloadNow"},
    {"FLOOD", "catalogue/versions", Status::Failed, "\"!!!!!!!!"},
    {"STATUS", "catalogue/versions", Status::Failed, "all is well\""},
    {"FORGE", "catalogue/versions", Status::Failed, "somebody else wrote"},
    {"REPEAT", "catalogue/no-description", Status::Failed, "somebody else wrote"},
};

class BrokenLibrary : public testing::TestWithParam<Fault>
{
};

TEST_P(BrokenLibrary, IsCaughtByTheCheckMeantForIt)
{
    const Fault& fault = GetParam();
    const std::string check = fault.check, group = check.substr(0, check.find('/'));
    const auto library =
        effects::LibraryBesideTheProgram().parent_path().parent_path() / L"broken" / fault.name / L"VixaVideoFX.dll";
    const auto results = Examine(library, {group}, 2);
    // A crash doesn't end the others' run: every check of the group has a result.
    EXPECT_EQ(results.size(), ChecksOf(group).size());
    const Result caught = ResultOf(results, check);
    EXPECT_EQ(caught.status, fault.status) << caught.reason;
    EXPECT_NE(caught.reason.find(fault.words), std::string::npos) << caught.reason;
    // One fault is not everybody's.
    EXPECT_TRUE(std::any_of(results.begin(), results.end(),
                            [](const Result& result) { return result.status == Status::Success; }));
}

INSTANTIATE_TEST_SUITE_P(All, BrokenLibrary, testing::ValuesIn(faults),
                         [](const auto& fault) { return std::string(fault.param.name); });

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
