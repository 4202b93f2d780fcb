#include "server/TableBuilder.h"

namespace vantor::server {

namespace {

void AddRibbon(TableBuilder& lib) {
  // The host's item identifiers travel as numbers; the ribbon keeps them as
  // text internally, which is no concern of the interface.
  lib.Class("USRibbon", ClassKind::Control)
      .Method("About")
      .Method("BindPictureArray", {Ref("ImgButton", td::ArrayOf(td::Picture))})
      .Method("RemovePictureArray", {Ref("ImgButton", td::ArrayOf(td::Picture))})
      .Property("TabOffset", td::Long)
      .Property("ButtonHandPointer", td::Bool)
      .Property("TabButtonHandPointer", td::Bool)
      .Property("ShowButtonFocus", td::Bool)
      .Property("ShowTabs", td::Bool)
      .Property("ButtonCenter", td::Bool)
      .Property("ForeColorCat", td::Color)
      .Property("ForeColorTabNormal", td::Color)
      .Property("ForeColorTabSelected", td::Color)
      .Property("ForeColorButton", td::Color)
      .Property("ImageList", td::Obj)
      .Property("ImageListKey", td::Str)
      .Property("Theme", td::Enum("ENUM_THEME"))
      .Property("Font", td::Font)
      .ReadOnly("hDC", td::Long)
      .ReadOnly("hwnd", td::Long)
      .Method("Refresh")
      .Method("ActivateTab", {P("Index", td::Long)})
      .Property("ButtonEnabled", td::Bool, {P("Index", td::Long)})
      // An image index may be a number or a key of the image list.
      .Method("AddButton", {P("Index", td::Long), P("CatIndex", td::Long), P("Caption", td::Str),
                            Opt("Picture", td::Picture), Opt("ImageIndex", td::Var),
                            Opt("ShowDglButton", td::Bool, false), Opt("ToolTipText", td::Str)})
      .Method("AddTabButton", {P("Index", td::Long), Opt("Picture", td::Picture),
                               Opt("ImageIndex", td::Var), Opt("ToolTipText", td::Str)})
      .Method("AddCat", {P("Index", td::Long), P("TabIndex", td::Long), P("Caption", td::Str),
                         P("ShowDglButton", td::Bool)})
      .Method("AddTab", {P("Index", td::Long), P("Caption", td::Str)})
      .Method("Clear")
      .Method("RemoveButton")
      .Method("RemoveCat")
      .Method("RemoveTab")
      // Positions are the item's place on the container, as a mouse event gives them.
      .Event("TabClick", {P("Index", td::Long)})
      .Event("CatClick",
             {P("Index", td::Long), P("PositionX", td::Single), P("PositionY", td::Single)})
      .Event("ButtonClick",
             {P("Index", td::Long), P("PositionX", td::Single), P("PositionY", td::Single)})
      .Event("TabButtonClick",
             {P("Index", td::Long), P("PositionX", td::Single), P("PositionY", td::Single)});
}

void AddToolBar(TableBuilder& lib) {
  lib.Enum("ENUM_BUTTON_TYPE", {{"Button", 0}, {"Separator", 1}});
  lib.Enum("ButtonStyle", {{"Normal button", 0}, {"Check button", 1}, {"Dropdown button", 2}});
  lib.Enum("ENUM_ICON_ALIGNMENT", {{"IconLeftTextRight", 0},
                                   {"IconRightTextLeft", 1},
                                   {"IconTopTextBottom", 2},
                                   {"IconBottomTextTop", 3}});
  lib.Enum("ENUM_MOVE", {{"ToLeft", 0}, {"ToRight", 1}});

  // Button indexes are 16-bit throughout the bar.
  const std::vector<ParamInfo> button = {P("Index", td::Int)};

  lib.Class("USToolBar", ClassKind::Control)
      .Method("About")
      .Property("Theme", td::Enum("ENUM_THEME"))
      .Property("RightColor1", td::Color)
      .Property("RightColor2", td::Color)
      .Property("GripperColor", td::Color)
      .Property("GradientColorDownRight1", td::Color)
      .Property("GradientColorDownRight2", td::Color)
      .Property("GradientColorOverRight1", td::Color)
      .Property("GradientColorOverRight2", td::Color)
      .Property("GradientColorDown1", td::Color)
      .Property("GradientColorDown2", td::Color)
      .Property("GradientColorOver1", td::Color)
      .Property("GradientColorOver2", td::Color)
      .Property("GradientColor1", td::Color)
      .Property("GradientColor2", td::Color)
      // Returns the new button's index. The font comes last: without one the
      // button takes the ambient font.
      .Function("AddButton", td::Int,
                {P("TypeAdd", td::Enum("ENUM_BUTTON_TYPE")), P("CaptionAdd", td::Str),
                 P("KeyAdd", td::Str), Opt("IconAdd", td::Picture), Opt("IconSizeAdd", td::Int, 16),
                 Opt("ButtonAlignmentAdd", td::Enum("ENUM_ICON_ALIGNMENT")),
                 Opt("ToolTipTextAdd", td::Str), Opt("ForeColorAdd", td::Color),
                 Opt("FontAdd", td::Font)})
      .Property("ButtonCount", td::Int)
      .Property("ButtonAlignment", td::Enum("ENUM_ICON_ALIGNMENT"), button)
      .Property("ButtonCaption", td::Str, button)
      .Property("ButtonEnabled", td::Bool, button)
      .Property("ButtonFont", td::Font, button)
      .Property("ButtonForeColor", td::Color, button)
      .Property("ButtonHeight", td::Int, button)
      .Property("ButtonIcon", td::Picture, button)
      .Property("ButtonIconSize", td::Int, button)
      .Property("ButtonKey", td::Str, button)
      .Property("ButtonLeft", td::Int, button)
      .Property("ButtonMaskColor", td::Color, button)
      .Property("ButtonRHeight", td::Int, button)
      // The states 0 to 5 have no enumeration of their own.
      .Property("ButtonState", td::Long, button)
      .Property("ButtonStyle", td::Enum("ButtonStyle"), button)
      .Property("ButtonToolTipText", td::Str, button)
      .Property("ButtonTop", td::Int, button)
      .Property("ButtonType", td::Enum("ENUM_BUTTON_TYPE"), button)
      .Property("ButtonUseMaskColor", td::Bool, button)
      .Property("ButtonValue", td::Bool, button)
      .Property("ButtonWidth", td::Int, button)
      .Function("DeleteButton", td::Int, {P("Index", td::Int)})
      .ReadOnly("hDC", td::Long)
      .ReadOnly("hwnd", td::Long)
      .Property("IsStrech", td::Bool)
      .Function("MoveButton", td::Int,
                {P("Index", td::Int), P("lDirection", td::Enum("ENUM_MOVE"))})
      .Method("Refresh")
      .Property("ShowEndPanel", td::Bool)
      // The dialog helpers answer what the user chose: a colour, a file name;
      // the font dialog writes the chosen font back and says whether one was.
      .Function("ShowColorDialog", td::Color, {P("hWndParent", td::Long), P("DefColor", td::Color)})
      .Function("ShowFontDialog", td::Bool, {Ref("SelectedFont", td::Font)})
      .Property("ShowGripper", td::Bool)
      .Function("ShowOpenDialog", td::Str,
                {P("Filter", td::Str), P("Flags", td::Long), P("InitialDir", td::Str),
                 P("Title", td::Str)})
      .Method("DrawButtonsEx", {P("objUSImageList", td::Obj), P("ImageKey", td::Str),
                                P("ImageIconSize", td::Int), P("PictureRedraw", td::Bool)})
      // Positions and sizes in twips, at 15 to the pixel.
      .Event("EndPanelClick")
      .Event("GripperClick")
      .Event("ButtonClick",
             {P("ButtonIndex", td::Int), P("Key", td::Str), P("Left", td::Long), P("Top", td::Long),
              P("Width", td::Long), P("Height", td::Long), P("Visible", td::Bool)})
      .Event("MouseMove", MouseArgs())
      .Event("MouseUp", MouseArgs())
      .Event("MouseDown", MouseArgs());
}

void AddMenu(TableBuilder& lib) {
  lib.Class("USMenu", ClassKind::Control)
      .Method("About")
      .ReadOnly("hwnd", td::Long)
      .Property("Theme", td::Enum("ENUM_THEME"))
      .Property("GradientColor1", td::Color)
      .Property("GradientColor2", td::Color)
      .Property("MenuGradientColorOver1", td::Color)
      .Property("MenuGradientColorOver2", td::Color)
      .Property("MenuGradientColorDown1", td::Color)
      .Property("MenuGradientColorDown2", td::Color)
      .Property("GripperColor", td::Color)
      .Property("MenuBorderColorDown", td::Color)
      .Property("MenuBorderColorOver", td::Color)
      // Entries are counted in 16 bits.
      .Method("MenuClick", {P("Index", td::Int)})
      .Property("ShowButtonLine", td::Bool)
      // The menu is the host form's own menu object.
      .Method("AddMenuObj", {P("mnuCaption", td::Str), P("mnuControl", td::Obj),
                             Opt("mnuEnabled", td::Bool, true), Opt("mnuForeColor", td::Color, 0)})
      .Event("AcessKeyPressed", {P("Letter", td::Str)});
}

void AddTab(TableBuilder& lib) {
  lib.Enum("ENUM_TAB_STYLE", {{"Tabbed Dialog", 0}, {"Tabbed PropertyPages", 1}});
  lib.Enum("ENUM_PICTURE_ALIGNMENT", {{"Align Left Edge", 0},
                                      {"Align Right Edge", 1},
                                      {"Align Left Of Caption", 2},
                                      {"Align Right Of Caption", 3}});
  lib.Enum("ENUM_PICTURE_SIZE", {{"Small Size", 0}, {"Large Size", 1}});

  // Tab indexes follow their names' prefixes: "i" 16-bit, "l" 32-bit.
  lib.Class("USTab", ClassKind::Control)
      .Method("About")
      .Property("Theme", td::Enum("ENUM_THEME"))
      .Property("ShowTabsCorner", td::Bool)
      .Property("ActiveTabBackEndColor", td::Color)
      .Property("ActiveTabBackStartColor", td::Color)
      .Property("ActiveTabFont", td::Font)
      .Property("ActiveTabForeColor", td::Color)
      .Property("ActiveTab", td::Long)
      .Property("ActiveTabHeight", td::Long)
      .Property("DisabledTabBackColor", td::Color)
      .Property("DisabledTabForeColor", td::Color)
      .Property("Enabled", td::Bool)
      .Property("FocusedColor", td::Color)
      .Property("Font", td::Font)
      .ReadOnly("hDC", td::Long)
      .Property("HoverColor", td::Color)
      .ReadOnly("hwnd", td::Long)
      .Property("InActiveTabBackEndColor", td::Color)
      .Property("InActiveTabBackStartColor", td::Color)
      .Property("InActiveTabFont", td::Font)
      .Property("InActiveTabForeColor", td::Color)
      .Property("InActiveTabHeight", td::Long)
      .Property("BorderColor", td::Color)
      .Property("PictureAlignment", td::Enum("ENUM_PICTURE_ALIGNMENT"))
      .Property("PictureMaskColor", td::Color)
      .Property("PictureSize", td::Enum("ENUM_PICTURE_SIZE"))
      .Property("ShowFocusRect", td::Bool)
      .Property("TabCaption", td::Str, {P("iTabIndex", td::Int)})
      .Property("TabCount", td::Long)
      .Property("TabEnabled", td::Bool, {P("lTabIndex", td::Long)})
      .Property("TabOffset", td::Long)
      .Property("TabPicture", td::Picture, {P("lTabIndex", td::Long)})
      .Property("TabStripBackColor", td::Color)
      .Property("TabStyle", td::Enum("ENUM_TAB_STYLE"))
      .Property("TopLeftInnerBorderColor", td::Color)
      .Property("UseControlBox", td::Bool)
      .Property("UseFocusedColor", td::Bool)
      .Property("UseMaskColor", td::Bool)
      .Method("Cls")
      .Method("DrawTabs")
      .Method("Refresh")
      .Method("ShowHideFocus")
      .Method("RemoveTab", {P("lIndex", td::Long)})
      .Method("CopyTabImagesFromImageList", {P("oIml", td::Obj)})
      .Method("InsertTab", {P("lAfterIndex", td::Long), Opt("sCaption", td::Str, u"NewTab")})
      .Method("RemoveTabImages", {Opt("Index", td::Long, -1), Opt("bRemoveAll", td::Bool, true)})
      .Method("AddControl", {P("Ctrl", td::Obj), Opt("lHwnd", td::Long, -1),
                             Opt("LLeft", td::Long, -1), Opt("LTop", td::Long, -1)})
      .Property("XRadius", td::Long)
      .Property("YRadius", td::Long)
      .Event("TabClick", {P("Index", td::Long)})
      // The host vetoes the switch through the flag.
      .Event("BeforeTabSwitch", {P("iNewActiveTab", td::Int), Ref("bCancel", td::Bool)})
      .Event("TabSwitch", {P("lLastActiveTab", td::Long)})
      .Event("Click")
      .Event("ControlBoxEnter")
      .Event("ControlBoxExit")
      .Event("ControlBoxHover", {P("X", td::Single), P("Y", td::Single)})
      .Event("ControlBoxMouseDown", {P("X", td::Single), P("Y", td::Single)})
      .Event("ControlBoxMouseUp", {P("X", td::Single), P("Y", td::Single)})
      .Event("DblClick")
      .Event("KeyDown", {Ref("KeyCode", td::Int), Ref("Shift", td::Int)})
      .Event("KeyUp", {Ref("KeyCode", td::Int), Ref("Shift", td::Int)})
      .Event("KeyPress", {Ref("KeyAscii", td::Int)})
      .Event("MouseDown", MouseArgs())
      .Event("MouseMove", MouseArgs())
      .Event("MouseUp", MouseArgs())
      .Event("MouseHover", {P("ActiveTab", td::Long), P("X", td::Single), P("Y", td::Single)})
      .Event("TabInsert", {P("AfterTabIndex", td::Long)})
      .Event("TabRemove", {P("TabIndex", td::Long)})
      .Event("AfterCompleteInit")
      .Event("MouseEnter")
      .Event("MouseExit");
}

void AddTreeView(TableBuilder& lib) {
  const TypeRef node = td::Class("TreeNode");

  lib.Class("TreeNode", ClassKind::ObjectModel)
      .Property("IconIndex", td::Long)
      .Property("ItemData", td::Long)
      .Property("ForeColor", td::Color)
      .Property("NodeFont", td::Font)
      .Property("Bold", td::Bool)
      .Property("Underline", td::Bool)
      .Property("Italic", td::Bool)
      .Property("Strikethrough", td::Bool)
      .Property("Tag", td::Str)
      .Property("Expanded", td::Bool)
      .Property("Children", td::Class("Nodes"))
      .Property("ChildCount", td::Long)
      .Property("Parent", node)
      .Property("Caption", td::Str)
      .Property("Key", td::Str);

  // The list itself is the run time's keyed collection.
  lib.Class("Nodes", ClassKind::ObjectModel)
      .Property("Nodes", td::Obj)
      .Function("AddNode", node,
                {P("Caption", td::Str), P("Key", td::Str), P("ItemData", td::Long),
                 P("FontBold", td::Bool), P("FontItalic", td::Bool), P("FontUnderline", td::Bool),
                 P("FontStrikethrough", td::Bool), Opt("IconIndex", td::Long, -1),
                 Opt("ForeColor", td::Color), Opt("Parent", node)});

  lib.Class("USTreeView", ClassKind::Control)
      .Method("About")
      .Property("Theme", td::Enum("ENUM_THEME"))
      .Property("IncrementalScrollBarHeight", td::Int)
      .Property("FocusRectColor", td::Color)
      .Property("BackColorSelected1", td::Color)
      .Property("BackColorSelected2", td::Color)
      .Property("BorderColor", td::Color)
      .Property("BorderColorDisabled", td::Color)
      .Property("ForeColor", td::Color)
      .Property("ForeColorSelected", td::Color)
      .Property("Font", td::Font)
      .Property("BackGroundPicture", td::Picture)
      .Property("Enabled", td::Bool)
      .Property("ShowHorizontalScrollbar", td::Bool)
      .ReadOnly("hwnd", td::Long)
      .ReadOnly("hDC", td::Long)
      .ReadOnly("Nodes", td::Class("Nodes"))
      .Method("Clear")
      .Method("DeleteNode", {P("Node", node)})
      .Method("EnsureVisible", {P("Node", node)})
      .Method("ExpandAllNodes", {P("bValue", td::Bool)})
      .Function("GetNode", node, {P("strKey", td::Str)})
      .Function("GetNodebyCaption", node, {P("Caption", td::Str)})
      .Method("MoveFirst")
      .Method("MoveLast")
      .Method("Redraw")
      .Method("RefreshData")
      .Function("SelectedNode", node)
      .Event("BeforeExpand", {Ref("Node", node), Ref("bExpanding", td::Bool)})
      .Event("NodeChange", {P("Node", node)})
      .Event("Cleared")
      .Event("NodeSelected", {P("Node", node)})
      .Event("BeforeNodeChange", {P("Node", node)});
}

void AddForm(TableBuilder& lib) {
  lib.Enum("ENUM_ICON_SIZES", {{"Icon 16x16", 0},
                               {"Icon 24x24", 1},
                               {"Icon 32x32", 2},
                               {"Icon 48x48", 3},
                               {"Icon Custom", 4}});

  lib.Class("USForm", ClassKind::Control)
      .Method("About")
      .Property("Theme", td::Enum("ENUM_THEME"))
      .Property("Picture32Dib", td::Bytes)
      .Method("ClearPicture32Dib")
      .Property("BackColor", td::Color)
      .Property("BackColorDisabled", td::Color)
      .Property("BorderColor", td::Color)
      .Property("BorderColorDisabled", td::Color)
      .Property("BorderWidth", td::Long)
      .Property("GradientColor1", td::Color)
      .Property("GradientColor2", td::Color)
      .Property("Iconsize", td::Enum("ENUM_ICON_SIZES"))
      .Property("IconSizeX", td::Long)
      .Property("IconSizeY", td::Long)
      .ReadOnly("hwnd", td::Long)
      .Property("Caption", td::Str)
      .Property("CaptionDelimiter", td::Str)
      .Property("CaptionOnCenter", td::Bool)
      .Property("CaptionTop", td::Long)
      .Property("EnableCloseButton", td::Bool)
      .Property("EnableMaximizeButton", td::Bool)
      .Property("EnableMinimizeButton", td::Bool)
      .Property("Font", td::Font)
      .Property("ForeColor", td::Color)
      .Property("ForeColorDelimiter", td::Color)
      .Property("Icon", td::Picture)
      .Property("AllowMove", td::Bool)
      .Property("AllowResize", td::Bool)
      .Property("ShowControlBox", td::Bool)
      .Property("ShowClose", td::Bool)
      .Property("ShowMaximize", td::Bool)
      .Property("ShowMinimize", td::Bool)
      .Property("ToolTipClose", td::Str)
      .Property("ToolTipMaximize", td::Str)
      .Property("ToolTipMinimize", td::Str)
      .Property("ChangeThemeControls", td::Bool)
      .Method("CenterOnScreen", {P("objForm", td::Obj), P("LLeft", td::Long), P("LTop", td::Long)})
      .Method("CenterOnScreenEx")
      .Method("TranslucentForm", {P("TranslucentLevel", td::Long)})
      .Method("DrawGradient")
      .Method("DrawFadeIN")
      .Method("DrawFadeOUT")
      // The backdrop's colour is named like an object: a Variant carries either.
      .Method("BackInicalize", {P("objParent", td::Obj), P("objBackColor", td::Var)})
      .Method("BackKill")
      // The task bar calls answer the task bar object's own result code.
      .Function("TaskBar_SetProgressState", td::Long, {P("hwnd", td::Long), P("Flags", td::Long)})
      .Function("TaskBar_SetProgressValue", td::Long, {P("hwnd", td::Long), P("Percent", td::Long)})
      .Function("TaskBar_SetOverlayIcon", td::Long,
                {P("hwnd", td::Long), P("hIcon", td::Long), P("Description", td::Str)})
      .Function("TaskBar_SetThumbnailClip", td::Long,
                {P("hwnd", td::Long), P("Left", td::Long), P("Top", td::Long), P("Right", td::Long),
                 P("Bottom", td::Long)})
      .Function("TaskBar_SetThumbnailTooltip", td::Long, {P("hwnd", td::Long), P("Tip", td::Str)})
      // The buttons and their icons are lists whose shape the host chooses.
      .Function("TaskBar_ThumbBarAddButtons", td::Long,
                {P("hwnd", td::Long), P("Buttons", td::Var), P("icons", td::Var)})
      .Method("DrawForm")
      .Method("FullScreen", {P("Maximize", td::Bool)})
      // The host form's messages come through here; the result is the message's answer.
      .Function("WindowProc", td::Long,
                {Ref("bHandled", td::Bool), P("hwnd", td::Long), P("uMSG", td::Long),
                 P("wParam", td::Long), P("lParam", td::Long), P("dwRefData", td::Long)})
      .Event("ClipboardGetText", {P("Value", td::Str)})
      .Event("FormActivated", {P("Value", td::Bool)})
      .Event("MouseDown", MouseArgs())
      .Event("MouseMove", MouseArgs())
      .Event("MouseUp", MouseArgs())
      .Event("Click")
      .Event("DblClick");
}

}  // namespace

void AddChromeTables(TableBuilder& lib) {
  AddRibbon(lib);
  AddToolBar(lib);
  AddMenu(lib);
  AddTab(lib);
  AddTreeView(lib);
  AddForm(lib);
}

}  // namespace vantor::server
