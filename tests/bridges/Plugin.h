// What the tests of the plug-ins share: a plug-in as a host loads it, settings of every effect, and the pictures that
// must come of them.
#pragma once

#include "bridges/frei0r/Steps.h"
#include "effects/kernels/Kernels.h"

extern "C" {
#include <frei0r.h>
}

#include <algorithm>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace vixa::frei0r::test {

using Picture = std::vector<std::uint32_t>;

struct Size
{
    unsigned width, height;
};

inline Picture RandomPicture(Size size)
{
    std::mt19937 random(size.width * 10007 + size.height);
    Picture picture(std::size_t{size.width} * size.height);
    std::ranges::generate(picture, std::ref(random));
    return picture;
}

// One setting of an effect: the values as a host sends them, and what the kernels are to be told.
struct Setting
{
    std::string plugin;
    std::vector<double> values;
    kernels::StepParameters step;
};

inline kernels::StepParameters Kind(std::int32_t kind)
{
    return steps::Convolution({kind});
}

inline std::vector<Setting> AllSettings()
{
    return {
        {"vixa_add_pixel", {1, 0.5, 0.2}, kernels::AddParameters{255, 0, -153}},
        {"vixa_filter_color", {0.8, 1}, kernels::FilterColorParameters{153, 2, true}},
        {"vixa_filter_color", {0.2, 0.5}, kernels::FilterColorParameters{153, 1, false}},
        {"vixa_filter_color", {0, 0}, kernels::FilterColorParameters{255, 0, false}},
        {"vixa_invert_color", {1, 0, 1}, kernels::InvertParameters{5}},
        {"vixa_invert_color", {0, 1, 0}, kernels::InvertParameters{2}},
        {"vixa_invert_color", {0, 0, 0}, kernels::InvertParameters{0}},
        {"vixa_multiply_pixel", {0.75}, kernels::MultiplyParameters{150}},
        {"vixa_gamma_correction", {0.8}, kernels::MakeGammaTable(185)},
        {"vixa_detect_edges", {}, Kind(1)},
        {"vixa_emboss", {}, Kind(2)},
        {"vixa_enhance_details", {}, Kind(3)},
        {"vixa_enhance_edges", {}, Kind(4)},
        {"vixa_enhance_focus", {}, Kind(5)},
        {"vixa_light_edges", {}, Kind(6)},
        {"vixa_shift_edges", {1, 1}, Kind(7)},
        {"vixa_shift_edges", {0, 0}, Kind(7)},
        {"vixa_shift_edges", {1, 0}, Kind(9)},
        {"vixa_shift_edges", {0, 1}, Kind(10)},
        {"vixa_soften_filter", {}, Kind(8)},
    };
}

// The picture as the scalar kernels make it in the library's order of rows, with the alpha that it had.
inline Picture Expected(const Setting& setting, const Picture& in, Size size)
{
    const auto turned = [&](const Picture& picture) {
        Picture result(picture.size());
        for (std::size_t y = 0; y < size.height; ++y)
            std::copy_n(&picture[y * size.width], size.width, &result[(size.height - 1 - y) * size.width]);
        return result;
    };
    const auto width = static_cast<std::int32_t>(size.width), height = static_cast<std::int32_t>(size.height);
    Picture result = turned(in);
    std::vector<std::uint8_t> scratch(kernels::ConvolutionScratchBytes(width));
    kernels::Step step = {&kernels::KernelsOf(kernels::Level::Scalar),
                          {reinterpret_cast<std::uint8_t*>(result.data()), 4 * result.size()},
                          setting.step};
    if (auto* const convolution = std::get_if<kernels::PictureConvolution>(&step.parameters))
        *convolution = {width, height, convolution->parameters, scratch};
    kernels::RunStep(step);
    result = turned(result);
    for (std::size_t i = 0; i < in.size(); ++i)
        result[i] = (result[i] & 0xFFFFFF) | (in[i] & 0xFF000000);
    return result;
}

// A loaded plug-in; throws std::runtime_error when it can't be loaded.
class Plugin
{
public:
    explicit Plugin(const std::string& name)
    {
        const std::string file = std::string(VIXA_PLUGINS) + "/" + name;
#ifdef _WIN32
        library = LoadLibraryA((file + ".dll").c_str());
#else
        library = dlopen((file + ".so").c_str(), RTLD_NOW | RTLD_LOCAL);
#endif
        if (!library)
            throw std::runtime_error(file + " can't be loaded");
        Find(init, "f0r_init");
        Find(deinit, "f0r_deinit");
        Find(getInfo, "f0r_get_plugin_info");
        Find(getParameter, "f0r_get_param_info");
        Find(construct, "f0r_construct");
        Find(destruct, "f0r_destruct");
        Find(set, "f0r_set_param_value");
        Find(get, "f0r_get_param_value");
        Find(update, "f0r_update");
        init();
        getInfo(&info);
    }
    ~Plugin()
    {
        deinit();
#ifdef _WIN32
        FreeLibrary(library);
#else
        dlclose(library);
#endif
    }
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;

    f0r_param_info_t Parameter(int index) const
    {
        f0r_param_info_t parameter{};
        getParameter(&parameter, index);
        return parameter;
    }

    // Owned; null when the plug-in makes none.
    auto Make(Size size, std::vector<double> values = {}) const
    {
        std::unique_ptr<void, decltype(destruct)> instance(construct(size.width, size.height), destruct);
        for (std::size_t i = 0; instance && i < values.size(); ++i)
            set(instance.get(), &values[i], static_cast<int>(i));
        return instance;
    }

    f0r_plugin_info_t info{};
    decltype(&f0r_init) init{};
    decltype(&f0r_deinit) deinit{};
    decltype(&f0r_get_plugin_info) getInfo{};
    decltype(&f0r_get_param_info) getParameter{};
    decltype(&f0r_construct) construct{};
    decltype(&f0r_destruct) destruct{};
    decltype(&f0r_set_param_value) set{};
    decltype(&f0r_get_param_value) get{};
    decltype(&f0r_update) update{};

private:
    template <typename Function>
    void Find(Function& function, const char* name)
    {
#ifdef _WIN32
        function = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
#else
        function = reinterpret_cast<Function>(dlsym(library, name));
#endif
        if (!function)
            throw std::runtime_error(std::string(name) + " is missing");
    }

#ifdef _WIN32
    HMODULE library;
#else
    void* library;
#endif
};

} // namespace vixa::frei0r::test
