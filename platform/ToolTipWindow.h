#pragma once
// The platform's tool-tip window, "tooltips_class32": a system class, there
// without registration. Tools are added with TTM_ADDTOOL; with TTF_SUBCLASS
// the tip puts its own procedure into the tool window's GWL_WNDPROC chain and
// watches the mouse there itself, otherwise the owner relays the mouse with
// TTM_RELAYEVENT. When the mouse rests on a tool for the initial delay, the
// tip shows as a top-most pop-up below the cursor (centred under the tool with
// TTF_CENTERTIP), stays for the auto-pop time and goes when that passes, the
// mouse leaves the tool or a button goes down; it then stays away until the
// mouse has left the tool. Timers run on the platform clock, so a manual clock
// drives it exactly.
//
// It draws itself: back colour, a one-pixel frame in the text colour, an
// optional bold title with its icon, then the text in the window's font (the
// stock DEFAULT_GUI_FONT unless WM_SETFONT gave another), wrapped at the
// maximum tip width. TTS_BALLOON rounds the corners with a window region and
// adds a stem whose point touches the cursor (or the middle of the tool's
// edge with TTF_CENTERTIP).
//
// Text callbacks and string resources are not supported: such a tool has no
// text, and a tool without text shows no tip, as on the platform.
#include <memory>

#include "platform/User.h"
#include "platform/WindowClass.h"

namespace vantor::platform {

// A fresh description of the class, for the class registry to hold.
std::shared_ptr<WindowClass> MakeToolTipClass();

// The colours the title icons are drawn in.
constexpr COLORREF kTipInfoBlue = RGB(0x1C, 0x5F, 0xC8);
constexpr COLORREF kTipWarningYellow = RGB(0xFF, 0xC8, 0x1E);
constexpr COLORREF kTipWarningEdge = RGB(0xA8, 0x78, 0x00);
constexpr COLORREF kTipErrorRed = RGB(0xD2, 0x23, 0x23);

}  // namespace vantor::platform
