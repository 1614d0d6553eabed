#include "bench/Peers.h"

// The runtime library alone is asked for: its development package needs half a desktop. These declarations are all of
// it that is used.
#include <dlfcn.h>
#include <malloc.h>

#include <array>
#include <memory>
#include <stdexcept>

namespace vixa::bench {

namespace {

struct VipsImage;

constexpr int formatByte = 0, precisionInteger = 0;

// Its functions take pairs of a name and a value behind their arguments, and a null pointer at the end.
struct Vips
{
    void* handle = dlopen("libvips.so.42", RTLD_NOW);
    int (*init)(const char*) = At("vips_init");
    void (*setConcurrency)(int) = At("vips_concurrency_set");
    void (*setCache)(int) = At("vips_cache_set_max"); // of operations done before
    VipsImage* (*fromMemory)(const void*, std::size_t, int, int, int, int) = At("vips_image_new_from_memory");
    VipsImage* (*matrix)(int, int, const double*, int) = At("vips_image_new_matrix_from_array");
    void (*setDouble)(VipsImage*, const char*, double) = At("vips_image_set_double");
    void* (*toMemory)(VipsImage*, std::size_t*) = At("vips_image_write_to_memory");
    int (*linear)(VipsImage*, VipsImage**, const double*, const double*, int, ...) = At("vips_linear");
    int (*invert)(VipsImage*, VipsImage**, ...) = At("vips_invert");
    int (*map)(VipsImage*, VipsImage**, VipsImage*, ...) = At("vips_maplut");
    int (*convolve)(VipsImage*, VipsImage**, VipsImage*, ...) = At("vips_conv");
    void (*release)(void*) = At("g_object_unref");
    void (*free)(void*) = At("g_free");

    struct Symbol
    {
        void* address;
        template <typename Function>
        operator Function*() const
        {
            return reinterpret_cast<Function*>(address);
        }
    };
    Symbol At(const char* name) const { return {handle ? dlsym(handle, name) : nullptr}; }
};

struct Release
{
    void operator()(VipsImage* image) const;
};
using Image = std::unique_ptr<VipsImage, Release>;

const Vips& Library()
{
    static const Vips vips;
    return vips;
}

void Release::operator()(VipsImage* image) const
{
    Library().release(image);
}

using Operation = std::function<int(VipsImage* in, VipsImage** out)>;

Operation Linear(std::array<double, 4> factors, std::array<double, 4> offsets)
{
    return [=](VipsImage* in, VipsImage** out) {
        return Library().linear(in, out, factors.data(), offsets.data(), 4, "uchar", 1, nullptr);
    };
}

// What an effect is there; "Filter color" has no such operation and is left out of a row, which flatters the peer.
Operation OperationFor(const std::string& effect)
{
    if (effect == "Add pixel")
        return Linear({1, 1, 1, 1}, {20, -30, 50, 0});
    if (effect == "Multiply pixel")
        return Linear({1.5, 1.5, 1.5, 1}, {0, 0, 0, 0});
    if (effect == "Invert color")
        return [](VipsImage* in, VipsImage** out) { return Library().invert(in, out, nullptr); };
    if (effect == "Gamma correction") {
        const auto bytes = std::make_shared<kernels::GammaTable>(kernels::MakeGammaTable(160));
        const std::shared_ptr<VipsImage> table(Library().fromMemory(bytes->entries.data(), 256, 256, 1, 1, formatByte),
                                               Release());
        return
            [=, kept = bytes](VipsImage* in, VipsImage** out) { return Library().map(in, out, table.get(), nullptr); };
    }
    const kernels::ConvolutionKernel* kernel = kernels::KernelOf(CaseNamed(effect).kind);
    if (!kernel)
        return {};
    std::array<double, 9> values;
    double sum = 0;
    for (std::size_t i = 0; i < values.size(); ++i)
        sum += values[i] = kernel->coefficients[i];
    const std::shared_ptr<VipsImage> matrix(Library().matrix(3, 3, values.data(), 9), Release());
    Library().setDouble(matrix.get(), "scale", kernel->divides ? sum : 1);
    Library().setDouble(matrix.get(), "offset", kernel->offsets ? 128 : 0);
    return [=](VipsImage* in, VipsImage** out) {
        return Library().convolve(in, out, matrix.get(), "precision", precisionInteger, nullptr);
    };
}

void Run(const std::vector<Operation>& row, Size size, kernels::Frame bytes)
{
    Image image(Library().fromMemory(bytes.data(), bytes.size(), size.width, size.height, 4, formatByte));
    for (const Operation& operation : row) {
        VipsImage* next = nullptr;
        if (operation(image.get(), &next) != 0)
            throw std::runtime_error("libvips refuses an operation");
        image.reset(next); // it holds what it is made of
    }
    std::size_t length = 0;
    Library().free(Library().toMemory(image.get(), &length));
}

} // namespace

std::vector<Peer> VipsPeers(Size size)
{
    std::vector<Peer> peers;
    if (!Library().handle || Library().init("vixa_bench") != 0)
        return peers;
    Library().setConcurrency(1);
    Library().setCache(0);
    // Its result is memory of its own; without these every frame would also pay for new pages.
    mallopt(M_MMAP_THRESHOLD, 1 << 30);
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    for (const Stack& stack : Stacks()) {
        std::vector<Operation> row;
        for (const std::string& effect : stack.effects) {
            if (Operation operation = OperationFor(effect))
                row.push_back(std::move(operation));
        }
        peers.push_back({stack.name, {"libvips", [=](kernels::Frame bytes) { Run(row, size, bytes); }}});
    }
    return peers;
}

} // namespace vixa::bench
