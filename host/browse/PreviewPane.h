// The picture before and after the effects, with a divider between that the user moves.
#pragma once

#include "host/base/Handles.h"
#include "host/base/Window.h"
#include "host/browse/LiveGraph.h"
#include "host/browse/Resample.h"
#include "host/browse/Style.h"
#include "host/browse/Texts.h"

namespace vixahost::browse {

// Left of the divider the picture as it was, right of it with the effects. Mouse: drag the divider, or anywhere while
// the picture is wholly seen; else dragging moves the picture. The wheel zooms. Keys while it has the focus: left,
// right, Home, End for the divider, with Shift for the picture.
class PreviewPane : public Window
{
public:
    PreviewPane(HWND parent, int id, const Style& look, const Texts& language);

    // Shows it at once.
    void Show(const media::FrameFormat& format, const LiveResult& result);
    // 0: all after; 1: all before.
    void SetDivider(double position);
    double Divider() const noexcept { return divider; }
    // Whether a picture smaller than the pane is enlarged.
    void SetEnlarge(bool enlarges);
    bool Enlarges() const noexcept { return enlarge; }
    // Pane pixels for a pixel of the picture, from 1/64 to 32; 0 fits the picture into the pane again. What is at
    // `fixed`, in the pane's pixels, stays there; without it the pane's middle does.
    void SetZoom(double factor, const POINT* fixed = nullptr);
    void ZoomBy(double factor, const POINT* fixed = nullptr);
    bool Fits() const noexcept { return zoom == 0; }
    // Where the picture lies in the pane, in its pixels.
    Placement PicturePlace() const;

private:
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void Paint(HDC target);
    void DrawFailure(RECT area);
    void DrawLabel(const wchar_t* text, int x, int y, bool toTheLeft);
    void MakeBuffer(int width, int height);
    bool OnKey(WPARAM key);
    void DragTo(POINT at);
    void MoveBy(int x, int y);
    SIZE PaneSize() const;
    double Scale() const;
    struct Span
    {
        int begin, end;
    };
    Span Seen(const Placement& place) const;
    int DividerX(const Placement& place) const;

    const Style& style;
    const Texts& texts;
    media::FrameFormat format;
    LiveResult result;
    double divider = 0.5;
    bool enlarge = true;
    double zoom = 0;                     // 0: fitted
    double centreX = 0.5, centreY = 0.5; // the share of the picture that lies in the pane's middle when zoomed
    enum class Drag
    {
        None,
        Divider,
        Picture,
    } drag = Drag::None;
    POINT draggedFrom = {};
    UniqueMemoryDC bufferDC;
    UniqueBitmap bufferBitmap;
    PaneView buffer; // pixels are owned by the bitmap
};

} // namespace vixahost::browse
