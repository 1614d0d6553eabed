#include "bench/Peers.h"

#include <opencv2/core.hpp>
#include <opencv2/core/utility.hpp>
#include <opencv2/imgproc.hpp>

#include <cmath>
#include <map>
#include <memory>
#include <utility>

namespace vixa::bench {

namespace {

using Work = std::function<void(cv::Mat& frame, cv::Mat& target)>;

// How an effect is done, and where its result is.
struct Call
{
    Work work;
    bool inPlace;
};

void FilterColor(cv::Mat& frame, const cv::Scalar& from, const cv::Scalar& to, const cv::Scalar& change)
{
    static cv::Mat colour, hls, mask;
    cv::cvtColor(frame, colour, cv::COLOR_BGRA2BGR);
    cv::cvtColor(colour, hls, cv::COLOR_BGR2HLS_FULL);
    cv::inRange(hls, from, to, mask);
    cv::add(frame, change, frame, mask);
}

} // namespace

std::vector<Peer> OpenCvPeers(Size size)
{
    cv::setNumThreads(1);
    auto target = std::make_shared<cv::Mat>(size.height, size.width, CV_8UC4);
    std::vector<Peer> peers;
    std::map<std::string, Call> calls; // for an effect the first that is added
    const auto add = [&](const std::string& effect, const std::string& name, const Work& work, bool inPlace = false) {
        calls.try_emplace(effect, Call{work, inPlace});
        peers.push_back({effect, {"OpenCV " + name, [=](kernels::Frame bytes) {
                                      cv::Mat frame(size.height, size.width, CV_8UC4, bytes.data());
                                      work(frame, *target);
                                  }}});
    };
    const auto addInPlace = [&](const std::string& effect, const std::string& name, const Work& work) {
        add(effect, name, work, true);
    };

    addInPlace("Add pixel", "add", [](cv::Mat& frame, cv::Mat&) { cv::add(frame, cv::Scalar(20, -30, 50, 0), frame); });
    addInPlace("Invert color", "bitwise_not", [](cv::Mat& frame, cv::Mat&) { cv::bitwise_not(frame, frame); });
    addInPlace("Invert color", "subtract",
               [](cv::Mat& frame, cv::Mat&) { cv::subtract(cv::Scalar(255, 255, 255, 0), frame, frame); });
    addInPlace("Multiply pixel", "convertTo", [](cv::Mat& frame, cv::Mat&) { frame.convertTo(frame, -1, 1.5); });
    addInPlace("Multiply pixel", "multiply",
               [](cv::Mat& frame, cv::Mat&) { cv::multiply(frame, cv::Scalar(1.5, 1.5, 1.5, 0), frame); });

    cv::Mat table(1, 256, CV_8UC4);
    for (int i = 0; i < 256; ++i) {
        const auto value = cv::saturate_cast<uchar>(255 * std::pow(i / 255.0, 100.0 / 160));
        table.at<cv::Vec4b>(i) = {value, value, value, static_cast<uchar>(i)};
    }
    add("Gamma correction", "LUT", [table](cv::Mat& frame, cv::Mat& out) { cv::LUT(frame, table, out); });

    addInPlace("Filter color, blue", "HLS and inRange", [](cv::Mat& frame, cv::Mat&) {
        FilterColor(frame, {140, 60, 0}, {194, 200, 255}, {40, 0, 0, 0});
    });
    addInPlace("Filter color, green", "HLS and inRange", [](cv::Mat& frame, cv::Mat&) {
        FilterColor(frame, {68, 60, 0}, {110, 200, 255}, {0, 40, 0, 0});
    });
    // Red's range runs across the end of the scale; one half is asked for here, which flatters the peer.
    addInPlace("Filter color, red", "HLS and inRange", [](cv::Mat& frame, cv::Mat&) {
        FilterColor(frame, {0, 60, 0}, {24, 200, 255}, {0, 0, 40, 0});
    });

    for (const Case& measured : Cases()) {
        if (measured.kind == 0)
            continue;
        const kernels::ConvolutionKernel& row = *kernels::KernelOf(measured.kind);
        cv::Mat kernel(3, 3, CV_32F);
        float sum = 0;
        for (int i = 0; i < 9; ++i)
            sum += kernel.at<float>(i / 3, i % 3) = static_cast<float>(row.coefficients[static_cast<std::size_t>(i)]);
        if (row.divides)
            kernel /= sum;
        const double offset = row.offsets ? 128 : 0;
        add(measured.effect, "filter2D", [kernel, offset](cv::Mat& frame, cv::Mat& out) {
            cv::filter2D(frame, out, -1, kernel, {-1, -1}, offset, cv::BORDER_CONSTANT);
        });
    }
    add("Soften filter", "blur", [](cv::Mat& frame, cv::Mat& out) { cv::blur(frame, out, {3, 3}); });
    add("Light edges", "Laplacian", [](cv::Mat& frame, cv::Mat& out) { cv::Laplacian(frame, out, -1, 1); });
    // One picture less itself moved, plus 128, in one call.
    const auto shift = [&](const char* effect, int x, int y) {
        add(effect, "addWeighted", [x, y](cv::Mat& frame, cv::Mat& out) {
            const cv::Rect here(x, y, frame.cols - x, frame.rows - y), there(0, 0, frame.cols - x, frame.rows - y);
            cv::Mat inner = out(here);
            cv::addWeighted(frame(here), 1, frame(there), -1, 128, inner);
        });
    };
    shift("Shift edges, both", 1, 1);
    shift("Shift edges, vertical", 0, 1);
    shift("Shift edges, horizontal", 1, 0);

    for (const Stack& stack : Stacks()) {
        std::vector<Call> row;
        for (const std::string& effect : stack.effects)
            row.push_back(calls.at(effect));
        peers.push_back({stack.name, {"OpenCV", [=](kernels::Frame bytes) {
                                          cv::Mat frame(size.height, size.width, CV_8UC4, bytes.data());
                                          cv::Mat *here = &frame, *there = target.get();
                                          for (const Call& call : row) {
                                              call.work(*here, *there);
                                              if (!call.inPlace)
                                                  std::swap(here, there);
                                          }
                                      }}});
    }
    return peers;
}

} // namespace vixa::bench
