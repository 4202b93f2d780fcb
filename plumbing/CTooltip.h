#pragma once
// One tool tip of the platform for one window. A control keeps one, hands it
// its ToolTip* settings and calls Create; the tip then follows the mouse over
// the window by itself (the tool is the whole window, subclassed by the tip).
// The getters and setters are plain stores: settings take effect at the next
// Create.
//
// An icon of TTNoIcon means no tip at all, whatever the text: Create then
// only takes an older tip away. A tip window that can't be made leaves the
// handle 0 and the settings go nowhere.
#include <cstdint>
#include <string>

#include "platform/User.h"
#include "runtime/String.h"

namespace vantor::plumbing {

enum iIconType : int32_t {
  TTNoIcon = 0,
  TTIconInfo = 1,
  TTIconWarning = 2,
  TTIconError = 3,
};

enum ENUM_TOOLTIP_STYLE : int32_t {
  ToolTip_Standard = 0,
  ToolTip_Balloon = 1,
};

class CTooltip {
 public:
  CTooltip() = default;
  // The tip window goes with its object.
  ~CTooltip();
  CTooltip(const CTooltip&) = delete;
  CTooltip& operator=(const CTooltip&) = delete;

  ENUM_TOOLTIP_STYLE get_Style() const { return style_; }
  void put_Style(ENUM_TOOLTIP_STYLE v) { style_ = v; }
  bool get_Centered() const { return centered_; }
  void put_Centered(bool v) { centered_ = v; }
  iIconType get_Icon() const { return icon_; }
  void put_Icon(iIconType v) { icon_ = v; }
  OLE_COLOR get_ForeColor() const { return foreColor_; }
  void put_ForeColor(OLE_COLOR v) { foreColor_ = v; }
  String get_Title() const { return title_; }
  void put_Title(const String& v) { title_ = v; }
  OLE_COLOR get_BackColor() const { return backColor_; }
  void put_BackColor(OLE_COLOR v) { backColor_ = v; }
  String get_TipText() const { return tipText_; }
  void put_TipText(const String& v) { tipText_ = v; }
  int32_t get_VisibleTime() const { return visibleTime_; }
  void put_VisibleTime(int32_t v) { visibleTime_ = v; }
  int32_t get_DelayTime() const { return delayTime_; }
  void put_DelayTime(int32_t v) { delayTime_ = v; }

  // Makes the tip for the window, destroying the one held before.
  void Create(HWND ParentHwnd);
  void Destroy();

  // The tip window (null when there is none), the window it was made for,
  // and the tool record as it was handed to the tip.
  HWND hWnd() const { return hwnd_; }
  HWND ParentHwnd() const { return parent_; }
  const TOOLINFOA& ToolInfo() const { return ti_; }

 private:
  OLE_COLOR backColor_ = 0;
  String title_;
  OLE_COLOR foreColor_ = 0;
  iIconType icon_ = TTNoIcon;
  bool centered_ = false;
  ENUM_TOOLTIP_STYLE style_ = ToolTip_Standard;
  int32_t visibleTime_ = 5000;
  int32_t delayTime_ = 100;
  HWND hwnd_ = nullptr;
  HWND parent_ = nullptr;
  TOOLINFOA ti_{};
  String tipText_;
  // The narrow text the record points at, and the title's, kept alive with it.
  std::string tipAnsi_;
  std::string titleAnsi_;
};

}  // namespace vantor::plumbing
