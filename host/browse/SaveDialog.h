// Shows how far a save is, and lets the user cancel it.
#pragma once

#include "host/base/Window.h"
#include "host/browse/SaveJob.h"
#include "host/browse/Style.h"
#include "host/browse/Texts.h"

#include <memory>

namespace vixahost::browse {

enum class Saved
{
    No, // the user has cancelled
    Whole,
    WithoutSound, // that the clip has
};

class SaveDialog : public Window
{
public:
    // Saves; returns when it is done. Throws HostError. `owner` is disabled meanwhile; for a picture no window appears
    // unless it takes its time.
    static Saved Run(HWND owner, const Style& look, const Texts& texts, SaveOrder order);

private:
    SaveDialog(HWND owner, const Style& look, const Texts& language, SaveOrder order);
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void Progress();

    const Style& style;
    const Texts& texts;
    const ULONGLONG start = GetTickCount64();
    HWND text = nullptr, bar = nullptr, cancel = nullptr;
    std::unique_ptr<SaveJob> job;
    bool ended = false;
};

} // namespace vixahost::browse
