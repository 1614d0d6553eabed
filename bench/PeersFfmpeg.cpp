#include "bench/Peers.h"

extern "C" {
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/frame.h>
#include <libavutil/log.h>
#include <libavutil/pixdesc.h>
}

#include <cstring>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>

namespace vixa::bench {

namespace {

// Filters between a source and a sink, single-threaded. A single one gets frames in the layout that it works in, so
// that no conversion is counted; planes are filled from the test frame's bytes outside the measured time, once.
class FilterGraph
{
public:
    FilterGraph(Size size, const char* layout, const std::string& description) : graph(avfilter_graph_alloc())
    {
        graph->nb_threads = 1;
        std::ostringstream source;
        source << "buffer=video_size=" << size.width << "x" << size.height << ":pix_fmt=" << layout
               << ":time_base=1/25:pixel_aspect=1/1 [a]; [a] " << description << " [b]; [b] buffersink";
        AVFilterInOut *inputs = nullptr, *outputs = nullptr;
        if (avfilter_graph_parse2(graph, source.str().c_str(), &inputs, &outputs) < 0 ||
            avfilter_graph_config(graph, nullptr) < 0)
            throw std::runtime_error("cannot make the filter " + description);
        for (unsigned i = 0; i < graph->nb_filters; ++i) {
            if (std::strcmp(graph->filters[i]->filter->name, "buffer") == 0)
                in = graph->filters[i];
            if (std::strcmp(graph->filters[i]->filter->name, "buffersink") == 0)
                out = graph->filters[i];
        }
        frame = av_frame_alloc();
        frame->format = av_get_pix_fmt(layout);
        frame->width = size.width;
        frame->height = size.height;
        if (av_frame_get_buffer(frame, 64) < 0)
            throw std::runtime_error("no memory for a frame");
        for (int plane = 0; plane < 4 && frame->data[plane]; ++plane) {
            const int bytes = frame->linesize[plane] * size.height;
            for (int at = 0; at < bytes; ++at)
                frame->data[plane][at] = static_cast<std::uint8_t>(static_cast<unsigned>(at) * 2654435761u >> 24);
        }
        result = av_frame_alloc();
    }
    ~FilterGraph()
    {
        av_frame_free(&frame);
        av_frame_free(&result);
        avfilter_graph_free(&graph);
    }
    FilterGraph(const FilterGraph&) = delete;
    FilterGraph& operator=(const FilterGraph&) = delete;

    void Run()
    {
        ++frame->pts;
        if (av_buffersrc_add_frame_flags(in, frame, AV_BUFFERSRC_FLAG_KEEP_REF) >= 0 &&
            av_buffersink_get_frame(out, result) >= 0)
            av_frame_unref(result);
    }

private:
    AVFilterGraph* graph;
    AVFilterContext *in = nullptr, *out = nullptr;
    AVFrame *frame = nullptr, *result = nullptr;
};

std::string ConvolutionFor(const kernels::ConvolutionKernel& kernel)
{
    std::ostringstream matrix, description;
    int sum = 0;
    for (const std::int32_t coefficient : kernel.coefficients) {
        matrix << (matrix.tellp() > 0 ? " " : "") << coefficient;
        sum += coefficient;
    }
    description << "convolution=";
    for (int plane = 0; plane < 4; ++plane) {
        description << (plane > 0 ? ":" : "") << plane << "m='" << matrix.str() << "':" << plane
                    << "rdiv=" << (kernel.divides ? 1.0 / sum : 1.0) << ":" << plane
                    << "bias=" << (kernel.offsets ? 128 : 0);
    }
    return description.str();
}

} // namespace

std::vector<Peer> FfmpegPeers(Size size)
{
    av_log_set_level(AV_LOG_QUIET);
    std::vector<Peer> peers;
    std::map<std::string, std::string> descriptions; // of the effects
    const auto add = [&](const std::string& effect, const char* name, const char* layout,
                         const std::string& description) {
        descriptions[effect] = description;
        auto graph = std::make_shared<FilterGraph>(size, layout, description);
        peers.push_back({effect, {std::string("FFmpeg ") + name, [graph](kernels::Frame) { graph->Run(); }}});
    };
    add("Add pixel", "lutrgb", "bgra",
        R"(lutrgb=r=clip(val+50\,0\,255):g=clip(val-30\,0\,255):b=clip(val+20\,0\,255))");
    add("Invert color", "negate", "gbrap", "negate");
    add("Multiply pixel", "lutrgb", "bgra",
        R"(lutrgb=r=clip(val*1.5\,0\,255):g=clip(val*1.5\,0\,255):b=clip(val*1.5\,0\,255))");
    add("Gamma correction", "lutrgb", "bgra", "lutrgb=r=gammaval(0.625):g=gammaval(0.625):b=gammaval(0.625)");
    for (const auto& [effect, colour] :
         {std::pair{"Filter color, blue", "blues"}, {"Filter color, green", "greens"}, {"Filter color, red", "reds"}})
        add(effect, "selectivecolor", "bgra", std::string("selectivecolor=") + colour + "=-0.3 0.3 0.3");

    for (const Case& measured : Cases()) {
        if (measured.kind > 0)
            add(measured.effect, "convolution", "gbrap", ConvolutionFor(*kernels::KernelOf(measured.kind)));
    }
    // A row is given frames in either layout, and converts where it must.
    for (const Stack& stack : Stacks()) {
        std::string row;
        for (const std::string& effect : stack.effects)
            row += (row.empty() ? "" : ",") + descriptions.at(effect);
        for (const char* layout : {"bgra", "gbrap"})
            add(stack.name, layout, layout, row);
    }
    return peers;
}

} // namespace vixa::bench
