// The plug-ins, loaded as a host loads them: every effect against the scalar kernels, and hosts that take little care.
#include "host/fixtures/GuardedMemory.h"
#include "tests/bridges/Plugin.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <limits>
#include <thread>

#ifndef _WIN32
#include <sys/resource.h>
#endif

namespace vixa::frei0r::test {
namespace {

using vixahost::fixtures::GuardedMemory;

// Runs one frame between pages that can't be touched.
Picture Rendered(const Plugin& plugin, f0r_instance_t instance, const Picture& in, bool oneBuffer,
                 GuardedMemory::Guard guard = GuardedMemory::Guard::Behind)
{
    GuardedMemory input(4 * in.size(), guard), output(4 * in.size(), guard);
    std::memcpy(input.data(), in.data(), 4 * in.size());
    auto* const from = reinterpret_cast<std::uint32_t*>(input.data());
    auto* const to = oneBuffer ? from : reinterpret_cast<std::uint32_t*>(output.data());
    plugin.update(instance, 0, from, to);
    return {to, to + in.size()};
}

TEST(Plugins, SayWhatTheyAre)
{
    const Plugin add("vixa_add_pixel"), filter("vixa_filter_color"), shift("vixa_shift_edges");
    EXPECT_STREQ(add.info.name, "Vixa Add pixel");
    EXPECT_EQ(add.info.plugin_type, F0R_PLUGIN_TYPE_FILTER);
    EXPECT_EQ(add.info.color_model, F0R_COLOR_MODEL_BGRA8888);
    EXPECT_EQ(add.info.frei0r_version, 1);
    ASSERT_EQ(add.info.num_params, 3);
    EXPECT_STREQ(add.Parameter(2).name, "blue");
    EXPECT_EQ(add.Parameter(2).type, F0R_PARAM_DOUBLE);
    EXPECT_STREQ(add.Parameter(2).explanation, "added to blue; 0 to 1 is -255 to 255");
    EXPECT_STREQ(filter.Parameter(1).explanation, "the hue that is matched: 0.0 blue, 0.5 green, 1.0 red");
    ASSERT_EQ(shift.info.num_params, 2);
    EXPECT_STREQ(shift.Parameter(1).name, "horizontal");
    EXPECT_EQ(shift.Parameter(1).type, F0R_PARAM_BOOL);
    EXPECT_STREQ(shift.info.explanation,
                 "the difference to a neighbouring pixel, as a grey relief; the outermost pixels become black");
}

TEST(Plugins, GiveTheKernelsColoursAndTheInputsAlpha)
{
    // Below 3 x 3, odd counts of pixels, rows of bands and one row more or less, rows beyond a band.
    const Size sizes[] = {{1, 1},    {1, 5},    {2, 2},    {8, 8},     {9, 9},     {13, 11},  {33, 97},
                          {640, 50}, {640, 51}, {640, 52}, {640, 100}, {641, 103}, {33001, 7}};
    for (const Setting& setting : AllSettings()) {
        const Plugin plugin(setting.plugin);
        for (const Size size : sizes) {
            SCOPED_TRACE(setting.plugin + " " + std::to_string(size.width) + " x " + std::to_string(size.height));
            const Picture in = RandomPicture(size), expected = Expected(setting, in, size);
            const auto instance = plugin.Make(size, setting.values);
            ASSERT_TRUE(instance);
            EXPECT_TRUE(Rendered(plugin, instance.get(), in, false, GuardedMemory::Guard::Before) == expected);
            EXPECT_TRUE(Rendered(plugin, instance.get(), in, true) == expected) << "in one buffer";
        }
    }
}

// What the kernels say of the row at the lowest address is true of the row below: pictures stand upright here.
TEST(Plugins, ShiftEdgesFromBelow)
{
    const Plugin plugin("vixa_shift_edges");
    Picture in(64, 0xFF000000);
    std::fill_n(in.begin(), 32, 0xFF646464);
    const Picture out = Rendered(plugin, plugin.Make({8, 8}, {1, 0}).get(), in, false);
    EXPECT_EQ(out[8 * 2 + 4], 0xFF808080);
    EXPECT_EQ(out[8 * 3 + 4], 0xFFE4E4E4); // 100 - 0 + 128
    EXPECT_EQ(out[8 * 4 + 4], 0xFF808080);
}

TEST(Plugins, ChangeNothingThatNobodySet)
{
    const Picture in = RandomPicture({16, 16});
    for (const char* name :
         {"vixa_add_pixel", "vixa_filter_color", "vixa_invert_color", "vixa_multiply_pixel", "vixa_gamma_correction"}) {
        const Plugin plugin(name);
        EXPECT_TRUE(Rendered(plugin, plugin.Make({16, 16}).get(), in, false) == in) << name;
    }
}

TEST(Plugins, BoundWhatTheyAreSentAndGiveItBack)
{
    const double nan = std::numeric_limits<double>::quiet_NaN(), infinity = std::numeric_limits<double>::infinity();
    const Plugin plugin("vixa_gamma_correction");
    const Size size = {8, 8};
    const Picture in = RandomPicture(size);
    const auto instance = plugin.Make(size);
    double initial = 0;
    plugin.get(instance.get(), &initial, 0);
    EXPECT_NEAR(initial, 55.0 / 175, 1e-9);
    const std::pair<double, std::int32_t> sent[] = {
        {1e300, 220}, {infinity, 220}, {-1, 45}, {nan, 45}, {0.123456789, 67}};
    for (auto [value, gamma] : sent) {
        double back = 7;
        plugin.set(instance.get(), &value, 0);
        plugin.get(instance.get(), &back, 0);
        EXPECT_EQ(std::bit_cast<std::uint64_t>(back), std::bit_cast<std::uint64_t>(value)) << value;
        EXPECT_TRUE(Rendered(plugin, instance.get(), in, false) ==
                    Expected({"", {}, kernels::MakeGammaTable(gamma)}, in, size))
            << value;
    }
}

TEST(Plugins, IgnoreWhatDoesNotExist)
{
    const Plugin plugin("vixa_add_pixel");
    for (const Size size : {Size{0, 8}, Size{8, 0}, Size{0x80000000, 1}, Size{65536, 65536}})
        EXPECT_FALSE(plugin.Make(size)) << size.width << " x " << size.height;
    const Size size = {8, 8};
    const auto instance = plugin.Make(size);
    double value = 1;
    for (const int index : {-1, 3, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        double untouched = 7;
        plugin.set(instance.get(), &value, index);
        plugin.get(instance.get(), &untouched, index);
        EXPECT_EQ(untouched, 7);
        EXPECT_EQ(plugin.Parameter(index).name, nullptr);
    }
    plugin.set(instance.get(), nullptr, 0);
    plugin.get(instance.get(), nullptr, 0);
    plugin.set(nullptr, &value, 0);
    plugin.get(nullptr, &value, 0);
    EXPECT_EQ(value, 1);
    Picture in = RandomPicture(size);
    plugin.update(nullptr, 0, in.data(), in.data());
    plugin.update(instance.get(), 0, nullptr, in.data());
    plugin.update(instance.get(), 0, in.data(), nullptr);
    EXPECT_TRUE(in == RandomPicture(size));
    plugin.getInfo(nullptr);
    plugin.getParameter(nullptr, 0);
    plugin.destruct(nullptr);
    for (int i = 0; i < 10000; ++i)
        EXPECT_TRUE(plugin.Make(size));
}

// Some hosts cut a frame into slices, for which they call one instance from several threads.
TEST(Plugins, MakeSlicesOfOneInstanceAndFramesOfTwoAtOnce)
{
    const Size size = {64, 40};
    for (const Setting& setting : AllSettings()) {
        const Plugin plugin(setting.plugin);
        const auto shared = plugin.Make(size, setting.values), own = plugin.Make(size, setting.values);
        std::vector<std::jthread> threads;
        for (unsigned i = 0; i < 3; ++i)
            threads.emplace_back([&, i] {
                Picture in = RandomPicture(size), out(in.size());
                std::rotate(in.begin(), in.begin() + i, in.end());
                const Picture expected = Expected(setting, in, size);
                for (int frame = 0; frame < 50; ++frame) {
                    plugin.update(i < 2 ? shared.get() : own.get(), frame, in.data(), out.data());
                    EXPECT_TRUE(out == expected) << setting.plugin << ", thread " << i;
                }
            });
    }
}

// (a sanitizer takes more addresses than a limit leaves)
#if !defined(_WIN32) && !defined(__SANITIZE_ADDRESS__)
int StatusWithoutMemory()
{
    const Plugin plugin("vixa_soften_filter");
    const Size size = {64, 40};
    const Picture in = RandomPicture(size);
    Picture out(in.size());
    const auto instance = plugin.Make(size);
    const rlimit none = {};
    setrlimit(RLIMIT_AS, &none);
    volatile std::uintptr_t last = 1;
    for (std::size_t block = 1 << 20; block >= 16; block -= block > 512 ? block / 2 : 16)
        do
            last = reinterpret_cast<std::uintptr_t>(std::malloc(block));
        while (last);
    if (plugin.construct(size.width, size.height))
        return 2;
    plugin.update(instance.get(), 0, in.data(), out.data());
    return out == in ? 0 : 3;
}

TEST(Plugins, GoWithoutMemory)
{
    EXPECT_EXIT(_exit(StatusWithoutMemory()), testing::ExitedWithCode(0), "");
}
#endif

} // namespace
} // namespace vixa::frei0r::test
