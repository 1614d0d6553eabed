// The plug-ins in the hosts that they are made for: each effect through FFmpeg, MLT and GStreamer as they are
// installed, a frame of noise in each, every colour byte and every alpha byte compared.
#include "tests/bridges/Plugin.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

namespace vixa::frei0r::test {
namespace {

class Hosts : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        std::filesystem::create_directories("hosts-test");
        std::filesystem::current_path("hosts-test");
        setenv("FREI0R_PATH", VIXA_PLUGINS, 1);
        setenv("GST_REGISTRY", "gstreamer-registry", 1);
        setenv("QT_QPA_PLATFORM", "offscreen", 1); // one of melt's modules looks for a display
        setenv("LC_ALL", "C.UTF-8", 1);
    }

    static std::string Name(Size size) { return std::to_string(size.width) + "x" + std::to_string(size.height); }
    static std::string Number(double value) { return std::to_string(value); }
    static std::string InputFile(Size size) { return Name(size) + ".bgra"; }
    static std::string OutputFile(std::size_t setting) { return std::to_string(setting) + ".bgra"; }

    static void Run(const std::string& command)
    {
        ASSERT_EQ(std::system(("timeout 60 " + command + " >log 2>&1").c_str()), 0) << command << "\n"
                                                                                    << std::ifstream("log").rdbuf();
    }

    // Makes a frame, and forgets what an earlier host made.
    Picture WriteInput(Size size)
    {
        for (std::size_t i = 0; i < settings.size(); ++i)
            std::filesystem::remove(OutputFile(i));
        Picture in = RandomPicture(size);
        std::ofstream(InputFile(size), std::ios::binary)
            .write(reinterpret_cast<const char*>(in.data()), static_cast<std::streamsize>(4 * in.size()));
        return in;
    }

    void ExpectOutput(std::size_t setting, const Picture& expected)
    {
        Picture out(expected.size() + 1);
        std::ifstream file(OutputFile(setting), std::ios::binary);
        file.read(reinterpret_cast<char*>(out.data()), static_cast<std::streamsize>(4 * out.size()));
        ASSERT_EQ(file.gcount(), static_cast<std::streamsize>(4 * expected.size())) << settings[setting].plugin;
        out.pop_back();
        EXPECT_TRUE(out == expected) << settings[setting].plugin << ", setting " << setting;
    }

    // Through melt; what follows the filter's name and parameters is `more`.
    void Melt(std::size_t setting, Size size, const std::string& more)
    {
        const std::string width = std::to_string(size.width), height = std::to_string(size.height);
        std::ofstream("profile")
            << "description=test\nframe_rate_num=25\nframe_rate_den=1\nwidth=" + width + "\nheight=" + height +
                   "\nprogressive=1\nsample_aspect_num=1\nsample_aspect_den=1\ndisplay_aspect_num=" + width +
                   "\ndisplay_aspect_den=" + height + "\ncolorspace=709\n";
        std::string command =
            "melt -silent -profile profile in.png in=0 out=0 -filter frei0r." + settings[setting].plugin;
        for (std::size_t i = 0; i < settings[setting].values.size(); ++i)
            command += " " + std::to_string(i) + "=" + Number(settings[setting].values[i]);
        Run(command + more + " -consumer avformat:" + OutputFile(setting) +
            " f=rawvideo vcodec=rawvideo pix_fmt=bgra mlt_image_format=rgba an=1 real_time=-1");
    }
    static void WritePng(Size size)
    {
        Run("ffmpeg -v error -y -f rawvideo -pix_fmt bgra -s " + Name(size) + " -i " + InputFile(size) + " in.png");
    }

    const std::vector<Setting> settings = AllSettings();
};

TEST_F(Hosts, FFmpegMakesWhatTheKernelsMake)
{
    for (const Size size : {Size{16, 8}, Size{336, 205}}) { // of other widths it shears frames
        const Picture in = WriteInput(size);
        std::string graph = "[0]split=" + std::to_string(settings.size()), filters, outputs;
        for (std::size_t i = 0; i < settings.size(); ++i) {
            const Plugin plugin(settings[i].plugin);
            const std::string number = std::to_string(i);
            graph += "[i" + number + "]";
            filters += ";[i" + number + "]frei0r=" + settings[i].plugin;
            for (std::size_t k = 0; k < settings[i].values.size(); ++k) {
                const double value = settings[i].values[k];
                const bool isSwitch = plugin.Parameter(static_cast<int>(k)).type == F0R_PARAM_BOOL;
                filters += (k == 0 ? ":" : "|") + (isSwitch ? value != 0 ? "y" : "n" : Number(value));
            }
            filters += "[o" + number + "]";
            outputs += " -map '[o" + number + "]' -f rawvideo -pix_fmt bgra " + OutputFile(i);
        }
        Run("ffmpeg -v error -y -f rawvideo -pix_fmt bgra -s " + Name(size) + " -i " + InputFile(size) +
            " -filter_complex '" + graph + filters + "'" + outputs);
        for (std::size_t i = 0; i < settings.size(); ++i)
            ExpectOutput(i, Expected(settings[i], in, size));
    }
}

TEST_F(Hosts, GStreamerMakesWhatTheKernelsMake)
{
    for (const Size size : {Size{37, 29}, Size{336, 205}}) {
        const Picture in = WriteInput(size);
        std::string pipeline = "gst-launch-1.0 -q filesrc location=" + InputFile(size) +
                               " blocksize=" + std::to_string(4 * in.size()) +
                               " ! rawvideoparse format=bgra framerate=25/1 width=" + std::to_string(size.width) +
                               " height=" + std::to_string(size.height) + " ! tee name=t";
        for (std::size_t i = 0; i < settings.size(); ++i) {
            const Plugin plugin(settings[i].plugin);
            std::string element = "frei0r-filter-" + settings[i].plugin;
            std::ranges::replace(element, '_', '-');
            pipeline += " t. ! queue ! " + element;
            for (std::size_t k = 0; k < settings[i].values.size(); ++k) {
                const f0r_param_info_t parameter = plugin.Parameter(static_cast<int>(k));
                const double value = settings[i].values[k];
                pipeline += std::string(" ") + parameter.name + "=" +
                            (parameter.type == F0R_PARAM_BOOL ? value != 0 ? "true" : "false" : Number(value));
            }
            pipeline += " ! filesink location=" + OutputFile(i);
        }
        Run(pipeline);
        for (std::size_t i = 0; i < settings.size(); ++i)
            ExpectOutput(i, Expected(settings[i], in, size));
    }
}

TEST_F(Hosts, MltMakesWhatTheKernelsMake)
{
    const Size size = {37, 29};
    const Picture in = WriteInput(size);
    WritePng(size);
    for (std::size_t i = 0; i < settings.size(); ++i) {
        Melt(i, size, "");
        ExpectOutput(i, Expected(settings[i], in, size));
    }
}

// Two threads each make half of the frame, as if it were a picture of its own.
TEST_F(Hosts, MltMakesSlicesAtOnce)
{
    const Size size = {64, 40}, slice = {64, std::thread::hardware_concurrency() > 1 ? 20u : 40u};
    const Picture in = WriteInput(size);
    WritePng(size);
    for (std::size_t i = 0; i < settings.size(); ++i) {
        if (!std::holds_alternative<kernels::PictureConvolution>(settings[i].step))
            continue;
        Melt(i, size, " threads=2");
        Picture expected;
        const std::ptrdiff_t pixels = std::ptrdiff_t{slice.width} * slice.height;
        for (auto from = in.begin(); from != in.end(); from += pixels)
            std::ranges::copy(Expected(settings[i], {from, from + pixels}, slice), std::back_inserter(expected));
        ExpectOutput(i, expected);
    }
}

} // namespace
} // namespace vixa::frei0r::test
