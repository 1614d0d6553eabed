// mutants SEED COUNT FILE...: lists faults that can be planted in C++ sources by rule, up to COUNT of them drawn with
// the seed, or all of them for 0. A line each, in the order of the files: file, line, how many bytes stand before, how
// many go, what comes instead, and the rule, with tabs between. tools/mutate.sh plants them.
//
// Sources are taken apart into tokens, not parsed: the layout, which clang-format holds, tells an operator with its two
// operands (blanks on both sides) from anything else. What doesn't compile is found out by the compiler.
#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

struct Token
{
    std::size_t at, length;
    int line;
    std::string_view text;
};

struct Mutant
{
    std::string file;
    int line;
    std::size_t at, length;
    std::string instead;
    const char* rule;
};

bool IsName(char character)
{
    return std::isalnum(static_cast<unsigned char>(character)) || character == '_';
}

// Where what begins at `at` and is no code ends: a comment, a text, a line of the preprocessor. `at` when it is code.
std::size_t EndOfOther(const std::string& text, std::size_t at, bool lineStart)
{
    const auto behind = [&](std::string_view end, std::size_t from) {
        const std::size_t found = text.find(end, from);
        return found == std::string::npos ? text.size() : found + end.size();
    };
    if (text.compare(at, 2, "//") == 0)
        return behind("\n", at);
    if (text.compare(at, 2, "/*") == 0)
        return behind("*/", at + 2);
    if (text.compare(at, 3, "R\"(") == 0)
        return behind(")\"", at);
    if (text[at] == '#' && lineStart) {
        std::size_t end = at;
        do
            end = behind("\n", end);
        while (end >= 2 && end < text.size() && text[end - 2] == '\\');
        return end;
    }
    const bool digitsApart = at > 0 && text[at] == '\'' && std::isdigit(static_cast<unsigned char>(text[at - 1]));
    if ((text[at] == '"' || text[at] == '\'') && !digitsApart) {
        std::size_t end = at + 1;
        while (end < text.size() && text[end] != text[at])
            end += text[end] == '\\' ? 2 : 1;
        return end + 1;
    }
    return at;
}

std::vector<Token> TokensOf(const std::string& text)
{
    constexpr std::string_view operators[] = {"<<=", ">>=", "->", "++", "--", "<<", ">>", "<=", ">=", "==", "!=",
                                              "&&",  "||",  "+=", "-=", "*=", "/=", "%=", "&=", "|=", "^=", "::"};
    std::vector<Token> tokens;
    int line = 1;
    bool lineStart = true;
    for (std::size_t at = 0; at < text.size();) {
        std::size_t end = EndOfOther(text, at, lineStart);
        if (end == at) {
            end = at + 1;
            if (IsName(text[at]))
                while (end < text.size() && (IsName(text[end]) || text[end] == '\''))
                    ++end;
            else
                for (const std::string_view each : operators)
                    if (end == at + 1 && text.compare(at, each.size(), each) == 0)
                        end = at + each.size();
            if (!std::isspace(static_cast<unsigned char>(text[at])))
                tokens.push_back({at, end - at, line, std::string_view(text).substr(at, end - at)});
        }
        end = std::min(end, text.size());
        for (; at < end; ++at) {
            if (text[at] == '\n') {
                ++line;
                lineStart = true;
            } else if (!std::isspace(static_cast<unsigned char>(text[at]))) {
                lineStart = false;
            }
        }
    }
    return tokens;
}

class Source
{
public:
    Source(std::string path, std::vector<Mutant>& found) : file(std::move(path)), mutants(found)
    {
        std::ifstream stream(file, std::ios::binary);
        text.assign(std::istreambuf_iterator<char>(stream), {});
        tokens = TokensOf(text);
    }

    void Look()
    {
        for (std::size_t i = 0; i < tokens.size(); ++i) {
            if (IsFixed(i)) {
                i = EndOfStatement(i);
                continue;
            }
            Operator(i);
            Constant(i);
            Call(i);
            Guard(i);
        }
    }

private:
    std::string_view At(std::size_t i) const { return i < tokens.size() ? tokens[i].text : std::string_view(); }

    // What is checked when it is compiled, or only named then, shows no fault when it runs.
    bool IsFixed(std::size_t i) const
    {
        return At(i) == "static_assert" || At(i) == "using" || At(i) == "template" || At(i) == "namespace";
    }

    std::size_t EndOfStatement(std::size_t i) const
    {
        if (At(i) == "template" || At(i) == "namespace") { // to the end of its own line
            const int line = tokens[i].line;
            while (i + 1 < tokens.size() && tokens[i + 1].line == line)
                ++i;
            return i;
        }
        while (i + 1 < tokens.size() && At(i) != ";")
            ++i;
        return i;
    }

    void Add(std::size_t first, std::size_t last, std::string instead, const char* rule)
    {
        const std::size_t at = tokens[first].at;
        mutants.push_back(
            {file, tokens[first].line, at, tokens[last].at + tokens[last].length - at, std::move(instead), rule});
    }

    bool HasBlanks(std::size_t i) const
    {
        const std::size_t end = tokens[i].at + tokens[i].length;
        return tokens[i].at > 0 && end < text.size() && std::isspace(static_cast<unsigned char>(text[end])) &&
               std::isspace(static_cast<unsigned char>(text[tokens[i].at - 1]));
    }

    void Operator(std::size_t i)
    {
        static const std::map<std::string_view, std::vector<const char*>> binary = {
            {"<", {"<=", ">="}}, {"<=", {"<", ">"}}, {">", {">=", "<="}}, {">=", {">", "<"}}, {"==", {"!="}},
            {"!=", {"=="}},      {"&&", {"||"}},     {"||", {"&&"}},      {"+", {"-"}},       {"-", {"+"}},
            {"*", {"+"}},        {"/", {"*"}},       {"%", {"/"}},        {"<<", {">>"}},     {">>", {"<<"}},
            {"&", {"|"}},        {"|", {"&"}},       {"^", {"&"}},        {"+=", {"-="}},     {"-=", {"+="}},
            {"*=", {"+="}},      {"|=", {"&="}},     {"&=", {"|="}}};
        static const std::map<std::string_view, const char*> names = {
            {"true", "false"}, {"false", "true"}, {"min", "max"}, {"max", "min"}, {"break", "continue"}};
        if (const auto found = binary.find(At(i)); found != binary.end() && HasBlanks(i))
            for (const char* const each : found->second)
                Add(i, i, each, "operator");
        if (At(i) == "++" || At(i) == "--")
            Add(i, i, At(i) == "++" ? "--" : "++", "operator");
        if (At(i) == "!" && !HasBlanks(i))
            Add(i, i, "", "negation");
        if (const auto found = names.find(At(i)); found != names.end() && At(i - 1) != ".")
            Add(i, i, found->second, "name");
    }

    void Constant(std::size_t i)
    {
        const std::string_view number = At(i);
        if (number.empty() || !std::isdigit(static_cast<unsigned char>(number[0])) || At(i + 1) == "." ||
            At(i - 1) == ".")
            return;
        std::string digits(number);
        digits.erase(std::remove(digits.begin(), digits.end(), '\''), digits.end());
        char* end = nullptr;
        const unsigned long long value = std::strtoull(digits.c_str(), &end, 0);
        Add(i, i, std::to_string(value + 1) + end, "constant");
        if (value > 0)
            Add(i, i, std::to_string(value - 1) + end, "constant");
    }

    // The token behind the bracket that closes the one at `i`.
    std::size_t Behind(std::size_t i) const
    {
        int depth = 0;
        for (; i < tokens.size(); ++i) {
            depth += At(i) == "(";
            depth -= At(i) == ")";
            if (depth == 0)
                return i + 1;
        }
        return i;
    }

    // A statement that is a call.
    void Call(std::size_t i)
    {
        const std::string_view before = i > 0 ? At(i - 1) : ";";
        if (before != ";" && before != "{" && before != "}" && before != ")" && before != "else")
            return;
        std::size_t end = i;
        while (end < tokens.size() && IsName(At(end)[0]) &&
               (At(end + 1) == "." || At(end + 1) == "->" || At(end + 1) == "::"))
            end += 2;
        static constexpr std::string_view no[] = {"return", "if",    "for",    "while",
                                                  "switch", "catch", "sizeof", "defined"};
        if (end >= tokens.size() || !IsName(At(end)[0]) || At(end + 1) != "(" ||
            std::find(std::begin(no), std::end(no), At(i)) != std::end(no))
            return;
        end = Behind(end + 1);
        if (At(end) == ";")
            Add(i, end, ";", "dropped call");
    }

    // What an `if` guards is never done, or always.
    void Guard(std::size_t i)
    {
        if (At(i) != "if" || At(i + 1) != "(")
            return;
        const std::size_t end = Behind(i + 1);
        for (std::size_t each = i; each < end; ++each)
            if (At(each) == ";")
                return; // it declares something
        const std::size_t from = tokens[i + 1].at + 1, to = tokens[end - 1].at;
        const std::string condition = text.substr(from, to - from);
        Add(i, end - 1, "if (false && (" + condition + "))", "guard");
        Add(i, end - 1, "if (true || (" + condition + "))", "guard");
    }

    std::string file, text;
    std::vector<Token> tokens;
    std::vector<Mutant>& mutants;
};

} // namespace

int main(int count, char** words)
{
    if (count < 4)
        return 2;
    std::vector<Mutant> all, drawn;
    for (int i = 3; i < count; ++i)
        Source(words[i], all).Look();
    const auto wanted = static_cast<std::size_t>(std::atoi(words[2]));
    std::mt19937 random(static_cast<unsigned>(std::atoi(words[1])));
    // std::sample would do, but differs from library to library.
    for (std::size_t i = 0, left = wanted; i < all.size(); ++i)
        if (wanted == 0 || random() % (all.size() - i) < left) {
            drawn.push_back(all[i]);
            left -= wanted != 0;
        }
    for (const Mutant& each : drawn) {
        std::string instead = each.instead;
        std::replace(instead.begin(), instead.end(), '\n', ' ');
        std::printf("%s\t%d\t%zu\t%zu\t%s\t%s\n", each.file.c_str(), each.line, each.at, each.length,
                    instead.empty() ? " " : instead.c_str(), each.rule);
    }
}
