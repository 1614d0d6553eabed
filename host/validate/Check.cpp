#include "host/validate/Check.h"

#include "host/base/ResultCode.h"
#include "host/base/Text.h"

#include <vector>

namespace vixahost::validate {

const char* NameOf(Status status) noexcept
{
    switch (status) {
    case Status::Success:
        return "success";
    case Status::Skipped:
        return "skipped";
    case Status::Warning:
        return "warning";
    case Status::Failed:
        return "failed";
    case Status::Crashed:
        return "crashed";
    }
    return "";
}

std::span<const Check> AllChecks()
{
    static const std::vector<Check> all = [] {
        std::vector<Check> checks;
        for (const auto group : {LoadingChecks, ExportChecks, FactoryChecks, IdentityChecks, CatalogueChecks,
                                 TextChecks, IconChecks, DefaultsChecks, PanelChecks, EmbeddingChecks, FilterChecks,
                                 ConnectionChecks, StreamingChecks, InputChecks, UnloadingChecks}) {
            const auto part = group();
            checks.insert(checks.end(), part.begin(), part.end());
        }
        return checks;
    }();
    return all;
}

void Require(bool holds, std::string_view reason)
{
    if (!holds)
        throw Finding{Status::Failed, std::string(reason)};
}

void RequireResult(HRESULT got, HRESULT wanted, std::string_view call)
{
    if (got != wanted)
        throw Finding{Status::Failed, std::string(call) + " answers " + Show(got) + " instead of " + Show(wanted)};
}

void RequireNumber(long long got, long long wanted, std::string_view what)
{
    if (got != wanted)
        throw Finding{Status::Failed,
                      std::string(what) + " is " + std::to_string(got) + " instead of " + std::to_string(wanted)};
}

void Skip(std::string_view reason)
{
    throw Finding{Status::Skipped, std::string(reason)};
}

void Warn(std::string_view reason)
{
    throw Finding{Status::Warning, std::string(reason)};
}

} // namespace vixahost::validate
