// A frei0r plug-in of one effect: its row's texts and parameters to the host, its kernel to the frames. Compiled once
// for each effect; the build says which: VIXA_EFFECT, VIXA_PARAMETERS and the English VIXA_NAME.
#include "bridges/frei0r/Bands.h"
#include "bridges/frei0r/Knobs.h"
#include "bridges/frei0r/Steps.h"

#include <atomic>
#include <cstdlib>
#include <limits>
#include <new>

extern "C" {
#include <frei0r.h>
}

namespace {

using namespace vixavideofx;

constexpr auto& effect = descriptions::VIXA_EFFECT;
using Block = std::remove_cvref_t<decltype(effect)>::Block;
constexpr vixa::frei0r::Knobs<Block, effect.defaults> knobs(parameters::VIXA_PARAMETERS);

constexpr vixa::frei0r::Text Explain()
{
    vixa::frei0r::Text text;
    text << effect.meaning;
    if (std::is_same_v<Block, ConvolutionBlock>)
        text << "; the outermost pixels become black";
    return text;
}
constexpr vixa::frei0r::Text explanation = Explain();

// Some hosts have several threads work with one instance, each on a slice of a frame, while another sets parameters: so
// an instance holds nothing but a size and the numbers as the host gave them.
struct Instance
{
    vixa::frei0r::PictureSize size;
    std::array<std::atomic<double>, std::tuple_size_v<decltype(knobs)::Values>> values;
};

static_assert(std::is_trivially_destructible_v<Instance>);

std::atomic<double>* ValueOf(f0r_instance_t instance, f0r_param_t value, int index) noexcept
{
    const bool exists = instance && value && index >= 0 && static_cast<std::size_t>(index) < knobs.size();
    return exists ? &static_cast<Instance*>(instance)->values[static_cast<std::size_t>(index)] : nullptr;
}

} // namespace

int f0r_init()
{
    return 1;
}

void f0r_deinit() {}

void f0r_get_plugin_info(f0r_plugin_info_t* info)
{
    if (!info)
        return;
    *info = {.name = "Vixa " VIXA_NAME,
             .author = "VixaVideoFX",
             .plugin_type = F0R_PLUGIN_TYPE_FILTER,
             .color_model = F0R_COLOR_MODEL_BGRA8888,
             .frei0r_version = FREI0R_MAJOR_VERSION,
             .major_version = VIXA_VERSION_MAJOR,
             .minor_version = VIXA_VERSION_MINOR,
             .num_params = static_cast<int>(knobs.size()),
             .explanation = explanation.CString()};
}

void f0r_get_param_info(f0r_param_info_t* info, int index)
{
    if (!info || index < 0 || static_cast<std::size_t>(index) >= knobs.size())
        return;
    const vixa::frei0r::Knob& knob = knobs[static_cast<std::size_t>(index)];
    *info = {.name = knob.name,
             .type = knob.isSwitch ? F0R_PARAM_BOOL : F0R_PARAM_DOUBLE,
             .explanation = knob.explanation.CString()};
}

f0r_instance_t f0r_construct(unsigned int width, unsigned int height)
{
    // Sizes that no buffer can have are refused here, so that nothing overflows later.
    constexpr std::size_t most = std::numeric_limits<std::int32_t>::max();
    if (width == 0 || height == 0 || width > most || height > most / 4 / width)
        return nullptr;
    // (an operator new would bring the C++ run-time library, which takes memory for each plug-in that is loaded)
    void* const memory = std::malloc(sizeof(Instance));
    if (!memory)
        return nullptr;
    auto* const instance = new (memory) Instance;
    instance->size = {width, height};
    for (std::size_t i = 0; i < knobs.size(); ++i)
        instance->values[i] = knobs[i].initial;
    return instance;
}

void f0r_destruct(f0r_instance_t instance)
{
    std::free(instance);
}

void f0r_set_param_value(f0r_instance_t instance, f0r_param_t param, int index)
{
    if (auto* const place = ValueOf(instance, param, index))
        *place = *static_cast<const double*>(param);
}

void f0r_get_param_value(f0r_instance_t instance, f0r_param_t param, int index)
{
    if (const auto* const place = ValueOf(instance, param, index))
        *static_cast<double*>(param) = *place;
}

void f0r_update(f0r_instance_t instance, double, const std::uint32_t* in, std::uint32_t* out)
{
    if (!instance || !in || !out)
        return;
    const auto& self = *static_cast<const Instance*>(instance);
    decltype(knobs)::Values values;
    std::copy(self.values.begin(), self.values.end(), values.begin());
    vixa::frei0r::Render(vixa::frei0r::steps::VIXA_EFFECT(knobs.BlockOf(values)), in, out, self.size);
}

void f0r_update2(f0r_instance_t instance, double time, const std::uint32_t* in, const std::uint32_t*,
                 const std::uint32_t*, std::uint32_t* out)
{
    f0r_update(instance, time, in, out);
}
