// The picture before and after the effects, with a divider between that the user moves.
#pragma once

#include "host/base/Handles.h"
#include "host/base/Window.h"
#include "host/browse/LiveGraph.h"
#include "host/browse/Resample.h"
#include "host/browse/Style.h"

namespace vixahost::browse {

// Left of the divider the picture as it was, right of it with the effects. Mouse: drag anywhere. Keys: left, right,
// Home, End while it has the focus.
class PreviewPane : public Window
{
public:
    PreviewPane(HWND parent, int id, const Style& look);

    // Shows it at once.
    void Show(const media::FrameFormat& format, const LiveResult& result);
    // 0: all after; 1: all before.
    void SetDivider(double position);
    double Divider() const noexcept { return divider; }
    // Whether a picture smaller than the pane is enlarged.
    void SetEnlarge(bool enlarges);
    bool Enlarges() const noexcept { return enlarge; }
    // Where the picture lies in the pane, in its pixels.
    Placement PicturePlace() const;

private:
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void Paint(HDC target);
    void DrawFailure(RECT area);
    void DrawLabel(const wchar_t* text, int x, int y, bool toTheLeft);
    void MakeBuffer(int width, int height);
    bool OnKey(WPARAM key);
    void DragTo(int x);
    int DividerX(const Placement& place) const;

    const Style& style;
    media::FrameFormat format;
    LiveResult result;
    double divider = 0.5;
    bool enlarge = true;
    bool drags = false;
    UniqueMemoryDC bufferDC;
    UniqueBitmap bufferBitmap;
    PaneView buffer; // pixels are owned by the bitmap
};

} // namespace vixahost::browse
