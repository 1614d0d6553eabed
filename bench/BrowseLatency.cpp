// How long it takes from a slider's move in a settings panel to the new picture on the screen, on 1920 x 1080 pixels.
#include "host/base/Text.h"
#include "host/browse/BrowseWindow.h"
#include "host/media/PictureFile.h"
#include "host/media/SampleScene.h"

#include <algorithm>
#include <cstdio>

using namespace vixahost;
using namespace vixahost::browse;

namespace {

constexpr int moves = 120;

// The sample scene, repeated.
media::Picture FullHd()
{
    const media::Picture scene = media::DrawSampleScene();
    media::Picture picture(1920, 1080);
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x)
            std::copy_n(scene.Row(y % scene.height) + x % scene.width * 4, 4, picture.Row(y) + x * 4);
    return picture;
}

void Pump(BrowseWindow& window)
{
    MSG message = {};
    do {
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
        if (window.Pending())
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 5, QS_ALLINPUT);
    } while (window.Pending());
}

double Median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() / 2];
}

void Measure(BrowseWindow& window, const effects::CatalogueEntry& entry)
{
    const HWND slider = FindWindowExW(window.Panel(), nullptr, L"msctls_trackbar32", nullptr);
    if (!slider)
        return;
    Pump(window);
    // Away from the value that changes nothing, which some effects take a short way for.
    for (int i = 0; i < 10; ++i)
        PostMessageW(slider, WM_KEYDOWN, VK_RIGHT, 0);
    Pump(window);
    Pump(window);
    window.Work().RestartAndMedian();
    Pump(window);
    std::vector<double> times;
    for (int i = 0; i < moves; ++i) {
        const WPARAM key = i % 2 ? VK_LEFT : VK_RIGHT;
        PostMessageW(slider, WM_KEYDOWN, key, 0);
        PostMessageW(slider, WM_KEYUP, key, 0);
        Pump(window);
        Pump(window);
        times.push_back(window.Latency());
    }
    const double effect = window.Work().RestartAndMedian();
    const double whole = Median(times);
    char line[160];
    std::snprintf(line, sizeof line, "%-18s %8.2f ms to the screen   %6.2f ms in the effect   ratio %.1f\n",
                  entry.englishName.c_str(), whole, effect, whole / effect);
    Say(line);
}

} // namespace

int wmain()
{
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    const std::filesystem::path file = L"browse-latency.bmp";
    media::WritePicture(file, media::PictureFormat::Bmp, FullHd());
    {
        BrowseWindow window({1180, 760});
        ShowWindow(window.Handle(), SW_SHOW);
        window.Open(file);
        Pump(window);
        const std::vector<effects::CatalogueEntry> catalogue = window.Work().Catalogue();
        for (const effects::CatalogueEntry& entry : catalogue) {
            window.Work().Change([&](StackModel& stack) { stack.Replace({effects::StepOf(entry)}); });
            window.ShowStack();
            Measure(window, entry);
        }
    }
    DeleteFileW(file.c_str());
    CoUninitialize();
    return 0;
}
