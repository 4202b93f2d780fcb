#include "server/TableBuilder.h"

namespace vantor::server {

namespace {

// The three optional sizes every image loader takes. Omitted they are 0,
// which the loader replaces by the control's picture size.
std::vector<ParamInfo> WithIconSizes(std::vector<ParamInfo> params) {
  params.push_back(Opt("desiredIconWidth", td::Long, 0));
  params.push_back(Opt("desiredIconHeight", td::Long, 0));
  params.push_back(Opt("desiredIconBitDepth", td::Long, 0));
  return params;
}

// The host's pointer enumeration is not ours; the value travels and is
// persisted as a 16-bit number.
constexpr TypeRef kMousePointer = td::Int;

// The container surface's own convention for a font size.
constexpr TypeRef kFontSize = td::Single;

void AddThemeEnums(TableBuilder& lib) {
  lib.Enum("ENUM_THEME", {{"Office Blue", 0},
                          {"Office Silver", 1},
                          {"Windows 8", 2},
                          {"Windows 8 Green", 3},
                          {"Windows 8 Red", 4},
                          {"Windows 8 Orange", 5},
                          {"Windows 8 Black", 6}});
  lib.Enum("ENUM_GRADIENT_COLORS", {{"Two Colors", 0}, {"Four Colors", 1}});
  lib.Enum("ENUM_BUTTON_SHAPES",
           {{"Cut None", 0}, {"Cut Left", 1}, {"Cut Right", 2}, {"Cut Sides", 3}});
}

void AddButtonEnums(TableBuilder& lib) {
  lib.Enum("ENUM_ALIGNMENTS", {{"To Left Justify", 0}, {"On Center", 1}, {"To Right Justify", 2}});
  lib.Enum("ENUM_PIC_ALIGNMENTS", {{"Picture BehindText", 0},
                                   {"Picture BottomEdge", 1},
                                   {"Picture BottomOfCaption", 2},
                                   {"Picture LeftEdge", 3},
                                   {"Picture LeftOfCaption", 4},
                                   {"Picture RightEdge", 5},
                                   {"Picture RightOfCaption", 6},
                                   {"Picture TopEdge", 7},
                                   {"Picture TopOfCaption", 8}});
  lib.Enum("ENUM_PICTURE_SIZES", {{"Picture Normal", 0},
                                  {"Picture 16x16", 1},
                                  {"Picture 24x24", 2},
                                  {"Picture 32x32", 3},
                                  {"Picture 48x48", 4},
                                  {"Picture Custom", 5}});
}

void AddTooltipEnums(TableBuilder& lib) {
  // Only the "no icon" member of the controls' icon choice is known here.
  lib.Enum("ENUM_TOOLTIP_ICON", {{"No Icon", 0}});
  lib.Enum("iIconType",
           {{"TTNoIcon", 0}, {"TTIconInfo", 1}, {"TTIconWarning", 2}, {"TTIconError", 3}});
  lib.Enum("ENUM_TOOLTIP_STYLE", {{"ToolTip Standard", 0}, {"ToolTip Balloon", 1}});
}

void AddButton(TableBuilder& lib) {
  lib.Class("USButton", ClassKind::Control)
      .Method("About")
      .Property("CaptionDistance", td::Int)
      .Property("Alignment", td::Enum("ENUM_ALIGNMENTS"))
      .Property("Theme", td::Enum("ENUM_THEME"))
      .Property("GradientColors", td::Enum("ENUM_GRADIENT_COLORS"))
      // Tool tip settings, handed to the tip at the next CreateToolTip.
      .Property("ToolTipBackColor", td::Color)
      .Property("ToolTipForeColor", td::Color)
      .Property("ToolTipIcon", td::Enum("ENUM_TOOLTIP_ICON"))
      .Property("ToolTipCentered", td::Bool)
      .Property("ToolTipVisibleTime", td::Long)
      .Property("ToolDelayTime", td::Long)
      .Property("ToolTipStyle", td::Enum("ENUM_TOOLTIP_STYLE"))
      .Property("ToolTipTitle", td::Str)
      .Property("ToolTipDescription", td::Str)
      .Property("Picture32Dib", td::Bytes)
      .Method("ClearPicture32Dib")
      .Property("BorderColor", td::Color)
      .Property("BorderColorOver", td::Color)
      .Property("BorderColorDown", td::Color)
      .Property("BorderColorDisabled", td::Color)
      .Property("GradientColorDown1", td::Color)
      .Property("GradientColorDown2", td::Color)
      .Property("GradientColorDown3", td::Color)
      .Property("GradientColorDown4", td::Color)
      .Property("GradientColorOver1", td::Color)
      .Property("GradientColorOver2", td::Color)
      .Property("GradientColorOver3", td::Color)
      .Property("GradientColorOver4", td::Color)
      .Property("GradientColor1", td::Color)
      .Property("GradientColor2", td::Color)
      .Property("GradientColor3", td::Color)
      .Property("GradientColor4", td::Color)
      .Property("GradientColorDisabled1", td::Color)
      .Property("GradientColorDisabled2", td::Color)
      .Property("GradientColorDisabled3", td::Color)
      .Property("GradientColorDisabled4", td::Color)
      .Property("Locked", td::Bool)
      .Property("ButtonShape", td::Enum("ENUM_BUTTON_SHAPES"))
      .Property("Caption", td::Str)
      .Property("CheckBoxMode", td::Bool)
      .Property("Enabled", td::Bool)
      .Property("Font", td::Font)
      .Property("FontBold", td::Bool)
      .Property("FontItalic", td::Bool)
      .Property("FontSize", kFontSize)
      .Property("FontStrikeThru", td::Bool)
      .Property("FontUnderline", td::Bool)
      .Property("ForeColor", td::Color)
      .Property("ForeColorDown", td::Color)
      .Property("ForeColorOver", td::Color)
      .Property("ForeColorDisabled", td::Color)
      .Property("HandPointer", td::Bool)
      .ReadOnly("hDC", td::Long)
      .ReadOnly("hwnd", td::Long)
      .Property("MaskColor", td::Color)
      .Property("MouseIcon", td::Picture)
      .Property("MousePointer", kMousePointer)
      .Property("Picture", td::Picture)
      .Property("PictureAlignment", td::Enum("ENUM_PIC_ALIGNMENTS"))
      .Property("PictureOn", td::Picture)
      .Property("PictureOpacity", td::Int)
      .Property("PictureOver", td::Picture)
      .Property("PictureSize", td::Enum("ENUM_PICTURE_SIZES"))
      .Property("PictureSizeX", td::Int)
      .Property("PictureSizeY", td::Int)
      .Property("PictureToChange", td::Picture)
      .Property("ShowFocusRect", td::Bool)
      .Property("ShowFocusRectDown", td::Bool)
      .Property("UseMaskColor", td::Bool)
      .Property("Value", td::Bool)
      // The list and its key may be given by position or by name.
      .Function("LoadImage_FromUSImageList", td::Bool,
                {P("objUSImageList", td::Obj), P("Index", td::Var), Opt("Key", td::Var)})
      .Function("LoadImage_FromStdPicture", td::Bool, {P("stdPic", td::Picture)})
      .Function("LoadImage_FromHandle", td::Bool, {P("Handle", td::Long)})
      .Function("LoadImage_FromArray", td::Bool, WithIconSizes({P("Bytes", td::Bytes)}))
      .Function("LoadImage_FromFile", td::Bool, WithIconSizes({P("FileName", td::Str)}))
      // A resource is named by section and identifier, each text or number.
      .Function(
          "LoadImage_FromResource", td::Bool,
          WithIconSizes({P("VBglobal", td::Obj), P("ResSection", td::Var), P("ResID", td::Var)}))
      .Method("DestroyToolTip")
      .Method("CreateToolTip")
      .Method("Refresh")
      .Event("Click")
      .Event("DblClick")
      .Event("KeyDown", KeyArgs())
      .Event("KeyPress", {Ref("KeyAscii", td::Int)})
      .Event("KeyUp", KeyArgs())
      .Event("MouseDown", MouseArgs())
      .Event("MouseEnter")
      .Event("MouseExit")
      .Event("MouseMove", MouseArgs())
      .Event("MouseUp", MouseArgs());
}

void AddMouseTracker(TableBuilder& lib) {
  // The tracker passes on the raw message words and the pixel position it
  // decoded from them, all 32-bit.
  lib.Class("clsMouseEvents", ClassKind::ObjectModel)
      .Method("Attach", {P("Target_hWnd", td::Long)})
      .Event("MouseOut")
      .Event("MouseIn")
      .Event("MouseWheel", {P("wParam", td::Long), P("lParam", td::Long)})
      .Event("MouseVScrollEx", {P("wParam", td::Long), P("lParam", td::Long)})
      .Event("MouseHScrollEx", {P("wParam", td::Long), P("lParam", td::Long)})
      .Event("MouseMove", {P("wParam", td::Long), P("lParam", td::Long), P("Button", td::Long),
                           P("Shift", td::Long), P("X", td::Long), P("Y", td::Long)})
      .Event("MouseBackButtonClick", {P("Shift", td::Long), P("X", td::Long), P("Y", td::Long)})
      .Event("MouseForwardButtonClick", {P("Shift", td::Long), P("X", td::Long), P("Y", td::Long)});
}

// The helpers the object model names without a face of their own.
void AddHelperClasses(TableBuilder& lib) {
  lib.Class("ICrossComm", ClassKind::ObjectModel);
  lib.Class("cEnum", ClassKind::ObjectModel);
  lib.Class("cType", ClassKind::ObjectModel);
}

// The themed simple controls carry the frame's shared members and, beyond
// what the frame gives them, publish nothing of their own.
void AddSimpleControls(TableBuilder& lib) {
  lib.Class("USCheckBox", ClassKind::Control)
      .Method("About")
      .Method("Refresh")
      .Property("Theme", td::Enum("ENUM_THEME"))
      .ReadOnly("hwnd", td::Long)
      .Property("MouseIcon", td::Picture)
      .Property("MousePointer", kMousePointer);
  lib.Class("USOptionButton", ClassKind::Control)
      .Method("About")
      .Method("Refresh")
      .ReadOnly("hwnd", td::Long)
      .Property("MouseIcon", td::Picture)
      .Property("MousePointer", kMousePointer);
  lib.Class("USGroupBox", ClassKind::Control)
      .Method("About")
      .Method("Refresh")
      .Property("Theme", td::Enum("ENUM_THEME"))
      .ReadOnly("hDC", td::Long)
      .ReadOnly("hwnd", td::Long)
      .Property("Picture32Dib", td::Bytes)
      .Method("ClearPicture32Dib");
  lib.Class("USProgressBar", ClassKind::Control)
      .Method("About")
      .Property("Theme", td::Enum("ENUM_THEME"))
      .ReadOnly("hDC", td::Long)
      .ReadOnly("hwnd", td::Long);
  lib.Class("USScrollBar", ClassKind::Control)
      .Method("About")
      .Method("Refresh")
      .ReadOnly("hwnd", td::Long);
  lib.Class("USStatusBar", ClassKind::Control)
      .Method("About")
      .Method("Refresh")
      .Property("Theme", td::Enum("ENUM_THEME"))
      .ReadOnly("hwnd", td::Long);
  lib.Class("USSysTray", ClassKind::Control);
}

void AddLabel(TableBuilder& lib) {
  lib.Enum("ENUM_BACK_STYLE", {{"Transparent", 0}});
  lib.Class("USLabel", ClassKind::Control)
      .Method("About")
      .Property("MouseIcon", td::Picture)
      .Property("MousePointer", kMousePointer)
      .Property("BackStyle", td::Enum("ENUM_BACK_STYLE"))
      .Property("BackColor", td::Color)
      .Property("ForeColor", td::Color)
      .Property("Caption", td::Str)
      .ReadOnly("NoHTMLCaption", td::Str)
      .ReadOnly("CaptionWidth", td::Single)
      .Property("AutoSize", td::Bool)
      .Property("WordWrap", td::Bool)
      .Property("Font", td::Font)
      .Property("FontBold", td::Bool)
      .Property("FontItalic", td::Bool)
      .Property("FontSize", kFontSize)
      .Property("FontStrikeThru", td::Bool)
      .Property("FontUnderline", td::Bool)
      .Method("Refresh")
      .Method("OpenUrl", {P("lHwnd", td::Long), P("Url", td::Str)})
      .Event("Click")
      .Event("DblClick")
      .Event("Change")
      .Event("KeyDown", KeyArgs())
      .Event("KeyPress", {Ref("KeyAscii", td::Int)})
      .Event("KeyUp", KeyArgs())
      .Event("MouseDown", MouseArgs())
      .Event("MouseMove", MouseArgs())
      .Event("MouseUp", MouseArgs())
      .Event("MouseEnter")
      .Event("MouseExit");
}

void AddMessageBridgeEnums(TableBuilder& lib) {
  lib.Enum("eMsgWhen", {{"MSG_BEFORE", 1}, {"MSG_AFTER", 2}, {"MSG_BEFORE_AFTER", 3}});
}

void AddTooltipServices(TableBuilder& lib) {
  lib.Class("VT_TOOLTIP", ClassKind::Service)
      .ReadOnly("ToolhWnd", td::Long)
      .Method("DestroyToolTip")
      // The default back colour 14811135 is the platform's pale tip yellow.
      .Method("ShowToolTip",
              {P("Titulo", td::Str), P("Mensagem", td::Str), P("Controle", td::Obj),
               P("Tipo", td::Enum("iIconType")), Opt("Centralizado", td::Bool, false),
               Opt("CorFundo", td::Color, 14811135), Opt("CorTexto", td::Color, 0)});
  lib.Class("VT_INFOTIP", ClassKind::Service);
}

}  // namespace

void AddFrameTables(TableBuilder& lib) {
  AddThemeEnums(lib);
  AddButtonEnums(lib);
  AddButton(lib);
  AddMouseTracker(lib);
  AddHelperClasses(lib);
  AddSimpleControls(lib);
  AddLabel(lib);
  AddMessageBridgeEnums(lib);
  AddTooltipEnums(lib);
  AddTooltipServices(lib);
}

}  // namespace vantor::server
