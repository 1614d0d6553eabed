// What a host of the plug-ins may send: any numbers for any parameters, frames of any size. A plug-in gives back the
// numbers that it was sent, and makes of them what it makes of the nearest ones that are allowed.
#include "tests/bridges/Plugin.h"
#include "tests/kernels/ChainRecipe.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>

using namespace vixa::frei0r::test;

namespace {

void Require(bool holds)
{
    if (!holds)
        std::abort();
}

const Plugin& PluginAt(int index)
{
    static const auto plugins = [] {
        std::vector<std::unique_ptr<Plugin>> all;
        std::string last;
        for (const Setting& setting : AllSettings())
            if (setting.plugin != last)
                all.push_back(std::make_unique<Plugin>(last = setting.plugin));
        return all;
    }();
    return *plugins[static_cast<std::size_t>(index) % plugins.size()];
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t bytes)
{
    vixa::kernels::test::Recipe recipe({data, bytes});
    const Plugin& plugin = PluginAt(recipe.Next(256));
    const int width = recipe.Next(256), height = recipe.Next(20);
    // (now and then so wide that a frame takes several bands)
    const Size size = width < 255 ? Size{static_cast<unsigned>(width % 20), static_cast<unsigned>(height)}
                                  : Size{16400, static_cast<unsigned>(height % 6)};
    const auto instance = plugin.Make(size), tame = plugin.Make(size);
    const bool possible = size.width > 0 && size.height > 0;
    Require(possible == (instance != nullptr) && possible == (tame != nullptr));
    for (int changes = recipe.Next(8); changes > 0; --changes) {
        const int index = recipe.Next(8) - 2;
        std::array<std::uint8_t, sizeof(double)> stored{};
        for (std::uint8_t& byte : stored)
            byte = static_cast<std::uint8_t>(recipe.Next(256));
        double sent = 0, back = 0;
        std::memcpy(&sent, stored.data(), sizeof sent);
        plugin.set(instance.get(), &sent, index);
        plugin.get(instance.get(), &back, index);
        if (!possible || index < 0 || index >= plugin.info.num_params) {
            Require(back == 0);
            continue;
        }
        Require(std::bit_cast<std::uint64_t>(back) == std::bit_cast<std::uint64_t>(sent));
        double allowed = sent >= 1 ? 1 : sent > 0 ? sent : 0;
        if (plugin.Parameter(index).type == F0R_PARAM_BOOL)
            allowed = sent >= 0.5 ? 1 : 0;
        plugin.set(tame.get(), &allowed, index);
    }
    if (!possible)
        return 0;
    Picture in = RandomPicture(size);
    std::memcpy(in.data(), recipe.Rest().data(), std::min(recipe.Rest().size(), 4 * in.size()));
    Picture out(in.size()), one = in;
    plugin.update(instance.get(), 0, in.data(), out.data());
    plugin.update(tame.get(), 0, one.data(), one.data());
    Require(out == one);
    for (std::size_t i = 0; i < in.size(); ++i)
        Require((out[i] ^ in[i]) >> 24 == 0);
    return 0;
}
