// JSON as the host writes it: fields in the order in which they were entered.
#pragma once

#include <nlohmann/json.hpp>

namespace vixahost {

using Json = nlohmann::ordered_json;

} // namespace vixahost
