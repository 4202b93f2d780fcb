#include <cstdint>
#include <iterator>
#include <string_view>
#include <vector>

#include "server/TableBuilder.h"

namespace vantor::server {

namespace {

using ClassBuilder = TableBuilder::ClassBuilder;

// KeyPress's one argument, writable like the other key arguments.
std::vector<ParamInfo> KeyAsciiArgs() {
  return {Ref("KeyAscii", td::Int)};
}

// The parts of the control's Font, each settable on its own.
void AddFontParts(ClassBuilder& c) {
  c.Property("FontBold", td::Bool)
      .Property("FontItalic", td::Bool)
      .Property("FontSize", td::Single)
      .Property("FontStrikeThru", td::Bool)
      .Property("FontUnderline", td::Bool);
}

// Per-item members of the list, and of the combo that forwards to it.
std::vector<ParamInfo> ItemIndex() {
  return {P("Index", td::Long)};
}

// The item's fields after its value, in the order of the item record; the
// trailing ones follow ItemForeColor in that same order and may be left out.
std::vector<ParamInfo> ItemArgs(std::vector<ParamInfo> args) {
  args.insert(args.end(),
              {P("Item", td::Var), P("ItemData", td::Long), Opt("ItemIcon", td::Long, -1),
               Opt("ItemIconSelected", td::Long, -1), Opt("ItemForeColor", td::Color),
               Opt("ItemEnabled", td::Bool), Opt("ItemToolTip", td::Str),
               Opt("ItemMouseIcon", td::Picture), Opt("ItemSeparatorLine", td::Bool),
               Opt("ItemTextShadow", td::Bool), Opt("ItemTag", td::Str)});
  return args;
}

// The month buttons' look, as the calendar takes it and the picker passes it on.
std::vector<ParamInfo> ButtonThemeArgs() {
  return {P("SelectedButton", td::Enum("ENUM_CALENDAR_BUTTONS")),
          P("USImageListControl", td::Obj),
          Opt("ButtonShape", td::Long, 3),
          Opt("ButtonBorderColor", td::Color, 11906213),
          Opt("ButtonBorderColorDown", td::Color, 15048022),
          Opt("ButtonBorderColorOver", td::Color, 15381630),
          Opt("ButtonGradientColors", td::Long, 0)};
}

// USTextBoxEx is the same field without its button: one listing serves both,
// and the button's properties are left out of the second.
void AddTextBox(TableBuilder& lib, std::string_view name, bool withButton) {
  ClassBuilder c = lib.Class(name, ClassKind::Control);
  c.Property("Enabled", td::Bool)
      .Property("AditionalTag1", td::Str)
      .Property("AditionalTag2", td::Str)
      .Property("AditionalTag3", td::Str)
      .Property("AditionalTag4", td::Str)
      // The edit's own alignment numbers (1 is right), not ENUM_ALIGNMENTS.
      .Property("Alignment", td::Long)
      .Property("AllowNegativeNumber", td::Bool)
      .Property("AutoFormatCurrency", td::Bool)
      .Property("AutoFormatDate", td::Bool)
      .Property("AutoSelect", td::Bool)
      .Property("BackColor", td::Color)
      .Property("BackColorDisabled", td::Color)
      .Property("BackColorOver", td::Color)
      .Property("BorderColor", td::Color)
      .Property("BorderColorDisabled", td::Color)
      .Property("BorderColorOver", td::Color)
      .Property("ForeColor", td::Color)
      .Property("ForeColorDisabled", td::Color)
      .Property("ForeColorOver", td::Color)
      .Property("Font", td::Font)
      .Property("FontDisabled", td::Font)
      .Property("FontOver", td::Font);
  AddFontParts(c);
  if (withButton) {
    c.Property("ButtonCaption", td::Str)
        .Property("ButtonEnabled", td::Bool)
        .Property("ButtonHandPointer", td::Bool)
        .Property("ButtonVisible", td::Bool)
        .Property("ButtonFont", td::Font)
        .Property("ButtonForeColor", td::Color)
        .Property("ButtonGradientColors", td::Long)
        .Property("ButtonPictureAlignment", td::Long)
        .Property("ButtonPictureSize", td::Long)
        .Property("ButtonPicture", td::Picture)
        .Property("ButtonPictureOver", td::Picture)
        .Property("ButtonPictureSizeX", td::Long)
        .Property("ButtonPictureSizeY", td::Long);
  }
  c.Property("CoinDecPluralText", td::Str)
      .Property("CoinDecSingularText", td::Str)
      .Property("CoinIntPluralText", td::Str)
      .Property("CoinIntSingularText", td::Str)
      .Property("CurrencyChar", td::Str)
      .Property("DataField", td::Str)
      .Property("Decimals", td::Str)  // held as 16 bits, published as text
      .Property("DecimalSimbol", td::Str)
      .Property("FormatDate", td::Str)  // a format string, or the number of one
      .Property("FormatType", td::Enum("ENUM_FORMAT_TYPE"))
      .Property("Locked", td::Bool)
      .Property("Mask", td::Str)
      .Property("MaskType", td::Enum("ENUM_MASK_TYPE"))
      .Property("MaxLength", td::Int)
      .Property("Multiline", td::Bool)
      .Property("NumberOnly", td::Bool)
      .Property("OLEDragMode", td::Long)
      .Property("OLEDropMode", td::Long)
      .Property("PasswordChar", td::Str)
      .Property("Required", td::Bool)
      .Property("RequiredColor", td::Color)
      .Property("Text", td::Str)
      .Property("TextCase", td::Enum("ENUM_TEXT_CASE"))
      .Property("Theme", td::Enum("ENUM_THEME"))
      .Property("ToolDelayTime", td::Long)
      .Property("ToolTipBackColor", td::Color)
      .Property("ToolTipForeColor", td::Color)
      .Property("ToolTipCentered", td::Bool)
      .Property("ToolTipDescription", td::Str)
      .Property("ToolTipTitle", td::Str)
      .Property("ToolTipIcon", td::Enum("ENUM_TOOLTIP_ICON"))
      .Property("ToolTipStyle", td::Enum("ENUM_TOOLTIP_STYLE"))
      .Property("ToolTipVisibleTime", td::Long)
      // The bag keeps a plain number under this key; the host reads the
      // field's amount.
      .ReadOnly("Value", td::Double);

  c.Property("SelStart", td::Long)
      .Property("SelLength", td::Long)
      .Property("SelText", td::Str)
      .Function("TextDate", td::Str, {Opt("Formater", td::Str, String(u"yyyy-mm-dd"))})
      // Empty, not an empty text, when the field holds no valid date.
      .Function("TextDateEx", td::Var, {Opt("Formater", td::Enum("ENUM_DATE_FORMAT"), 25)})
      .ReadOnly("TextCdbl", td::Double)
      .ReadOnly("TextTrim", td::Str)
      .ReadOnly("TextLen", td::Long)
      .ReadOnly("TextLenEx", td::Long)
      .ReadOnly("TextUCase", td::Str)
      .ReadOnly("TextLCase", td::Str)
      .Function("TextSplit", td::ArrayOf(td::Str), {P("Delimiter", td::Str)})
      .Function("TextField", td::Str, {P("Column", td::Long), P("Delimiter", td::Str)})
      .Function("TextNoMask", td::Str, {P("ShowNullMask", td::Bool)})
      .ReadOnly("hwnd", td::Long)
      .Method("AppendTextFile", {P("FileName", td::Str)})
      .Method("SaveTextFile", {P("FileName", td::Str)})
      .Method("LoadTextFile", {P("FileName", td::Str)})
      .ReadOnly("IsValidEmail", td::Bool)
      // The validator takes one of the date formats.
      .Function("IsValidDate", td::Bool, {Opt("Formater", td::Enum("ENUM_DATE_FORMAT"), 1)})
      .ReadOnly("NumberUncoded", td::Str)
      .ReadOnly("NumbersOf", td::Long)
      .ReadOnly("ReturnNumbersOnly", td::Str)
      .ReadOnly("LinesOf", td::Long)
      .Method("AutoCompleteEx", {P("Flags", td::Enum("ENUM_AUTOCOMPLETEFLAGS"))})
      .Method("InitializeAutoComplete",
              {P("CurrentDb", td::Obj), P("TableName", td::Str), P("FieldName", td::Str)})
      .Method("FinalizeAutoComplete")
      .Method("ClearControl")
      .Method("CreateToolTip")
      .Method("DestroyToolTip")
      .Method("About");

  // Both fields publish the same events; the one without a button never raises
  // ButtonClick.
  c.Event("Change")
      .Event("ButtonClick")
      .Event("Click")
      .Event("DblClick")
      .Event("KeyUp", KeyArgs())
      .Event("KeyDown", KeyArgs())
      .Event("KeyPress", KeyAsciiArgs())
      .Event("MouseMove", MouseArgs())
      .Event("MouseDown", MouseArgs())
      .Event("MouseUp", MouseArgs())
      // The edit's own drag-and-drop events, passed on as it raises them.
      .Event("OLECompleteDrag", {Ref("Effect", td::Long)})
      .Event("OLEDragDrop", {Ref("Data", td::Obj), Ref("Effect", td::Long), Ref("Button", td::Int),
                             Ref("Shift", td::Int), Ref("X", td::Single), Ref("Y", td::Single)})
      .Event("OLEDragOver", {Ref("Data", td::Obj), Ref("Effect", td::Long), Ref("Button", td::Int),
                             Ref("Shift", td::Int), Ref("X", td::Single), Ref("Y", td::Single),
                             Ref("State", td::Int)})
      .Event("OLEGiveFeedback", {Ref("Effect", td::Long), Ref("DefaultCursors", td::Bool)})
      .Event("OLESetData", {Ref("Data", td::Obj), Ref("DataFormat", td::Int)})
      .Event("OLEStartDrag", {Ref("Data", td::Obj), Ref("AllowedEffects", td::Long)});
}

// The date formats are named by their own format strings; a format's value is
// its place in this list.
constexpr std::string_view kDateFormats[] = {
    // 0 to 13: day first
    "yyyy/mm/dd", "dd/mm/yyyy", "mm/dd/yyyy", "dd/mm/yy", "dd-mm-yyyy", "dd.mm.yyyy", "dd-mm-yy",
    "dd.mm.yy", "d/m/yyyy", "d-m-yyyy", "d.m.yyyy", "d/m/yy", "d-m-yy", "d.m.yy",
    // 14 to 24: month first
    "mm-dd-yyyy", "mm.dd.yyyy", "mm/dd/yy", "mm-dd-yy", "mm.dd.yy", "m/d/yyyy", "m-d-yyyy",
    "m.d.yyyy", "m/d/yy", "m-d-yy", "m.d.yy",
    // 25 to 35: year first
    "yyyy-mm-dd", "yyyy.mm.dd", "yy/mm/dd", "yy-mm-dd", "yy.mm.dd", "yyyy/m/d", "yyyy-m-d",
    "yyyy.m.d", "yy/m/d", "yy-m-d", "yy.m.d",
    // 36 to 44: day and month
    "dd/mm", "dd-mm", "dd.mm", "d/mm", "d-mm", "d.mm", "d/m", "d.m", "d-m",
    // 45 to 53: month and day
    "mm/dd", "mm-dd", "mm.dd", "m/dd", "m-dd", "m.dd", "m/d", "m.d", "m-d",
    // 54 to 65: month and year
    "mm/yyyy", "mm-yyyy", "mm.yyyy", "m/yyyy", "m-yyyy", "m.yyyy", "mm/yy", "mm-yy", "mm.yy",
    "m/yy", "m-yy", "m.yy",
    // 66 to 77: year and month
    "yyyy/mm", "yyyy-mm", "yyyy.mm", "yyyy/m", "yyyy-m", "yyyy.m", "yy/mm", "yy-mm", "yy.mm",
    "yy/m", "yy-m", "yy.m"};
static_assert(std::size(kDateFormats) == 78);

void AddTextBoxEnums(TableBuilder& lib) {
  lib.Enum("ENUM_FORMAT_TYPE", {{"To Text", 0}, {"To Number", 1}, {"To Currency", 2}});
  lib.Enum("ENUM_MASK_TYPE", {{"Only Text", 0}, {"Only Number", 1}, {"Text And Number", 2}});
  lib.Enum("ENUM_TEXT_CASE", {{"Case Normal", 0}, {"Case Upper", 1}, {"Case Lower", 2}});
  // The shell's SHAutoComplete flags, with the shell's values.
  lib.Enum("ENUM_AUTOCOMPLETEFLAGS", {{"SHACF_DEFAULT", 0},
                                      {"SHACF_FILESYSTEM", 1},
                                      {"SHACF_URLHISTORY", 2},
                                      {"SHACF_URLMRU", 4},
                                      {"SHACF_USETAB", 8},
                                      {"SHACF_URLALL", 6},
                                      {"SHACF_FILESYS_ONLY", 16},
                                      {"SHACF_FILESYS_DIRS", 32},
                                      {"SHACF_AUTOSUGGEST_FORCE_ON", 268435456},
                                      {"SHACF_AUTOSUGGEST_FORCE_OFF", 536870912},
                                      {"SHACF_AUTOAPPEND_FORCE_ON", 1073741824},
                                      {"SHACF_AUTOAPPEND_FORCE_OFF", INT32_MIN}});
  std::vector<EnumMember> formats;
  int32_t value = 0;
  for (std::string_view f : kDateFormats) formats.push_back({f, value++});
  lib.Enum("ENUM_DATE_FORMAT", std::move(formats));
}

void AddCalendar(TableBuilder& lib) {
  lib.Enum("ENUM_CALENDAR_BUTTONS", {{"BackButton", 0}, {"ForwardButton", 1}, {"AllButtons", 2}});

  lib.Class("USCalendar", ClassKind::Control)
      .Method("About")
      .Property("BackgroundColor", td::Color)
      .Property("BorderColor", td::Color)
      .Property("DayColumnColor", td::Color)
      .Property("ForegroundColor", td::Color)
      .Property("GradientColor1", td::Color)
      .Property("GradientColor2", td::Color)
      .Property("HeaderForeColor", td::Color)
      .Property("LastNextMonthDayColor", td::Color)
      .Property("LineColor", td::Color)
      .Property("SelectedBackColor", td::Color)
      .Property("SelectedForeColor", td::Color)
      .Property("TodayColor", td::Color)
      .Property("WeekNumberColor", td::Color)
      .Property("Enabled", td::Bool)
      .Property("FontColumns", td::Font)
      .Property("FontDays", td::Font)
      .Property("FontHeader", td::Font)
      .Property("FontToday", td::Font)
      .Property("ShowLastMonthButton", td::Bool)
      .Property("ShowNextMonthButton", td::Bool)
      .Property("ShowLastMonthDays", td::Bool)
      .Property("ShowNextMonthDays", td::Bool)
      .Property("ShowSelected", td::Bool)
      .Property("ShowShortDays", td::Bool)
      .Property("ShowTodayLabel", td::Bool)
      .Property("ShowWeekNumbers", td::Bool)
      .Property("Theme", td::Enum("ENUM_THEME"))
      .Property("WeekStartsWith", td::Long)  // a weekday number, 1 for Sunday
      .Property("CurrentDate", td::Date)
      .ReadOnly("hwnd", td::Long)
      .Method("Refresh")
      .Method("SetButtonTheme", ButtonThemeArgs())
      .Event("DateClicked", {P("inputDate", td::Date)})
      .Event("DateDblClicked", {P("inputDate", td::Date)})
      .Event("LastButtonClicked", {P("inputDate", td::Date)})
      .Event("MonthChanged", {P("inputDate", td::Date)})
      .Event("MonthHeadingClicked", {P("inputDate", td::Date)})
      .Event("MonthHeadingDblClicked", {P("inputDate", td::Date)})
      .Event("NextButtonClicked", {P("inputDate", td::Date)})
      .Event("TodayClicked", {P("inputDate", td::Date)})
      .Event("WeekHeadingClicked", {P("weekday", td::Long)})
      .Event("WeekHeadingDblClicked", {P("weekday", td::Long)})
      .Event("WeekNumberClicked", {P("weekNumber", td::Long)})
      .Event("WeekNumberDblClicked", {P("weekNumber", td::Long)});
}

void AddDatePicker(TableBuilder& lib) {
  ClassBuilder c = lib.Class("USDatePicker", ClassKind::Control);
  c.Method("About")
      .Property("Alignment", td::Enum("ENUM_ALIGNMENTS"))
      .Property("AutoOpenOnChange", td::Bool)
      .Property("BackColor", td::Color)
      .Property("BackColorDisabled", td::Color)
      .Property("BackColorOver", td::Color)
      .Property("BackColorOnShowCalendar", td::Color)
      .Property("BorderColor", td::Color)
      .Property("BorderColorDisabled", td::Color)
      .Property("BorderColorOver", td::Color)
      .Property("Enabled", td::Bool)
      .Property("Font", td::Font);
  AddFontParts(c);
  c.Property("ForeColor", td::Color)
      .Property("ForeColorDisabled", td::Color)
      .Property("FormatDate", td::Enum("ENUM_DATE_FORMAT"))
      .Property("GradientColor1", td::Color)
      .Property("GradientColor2", td::Color)
      .Property("GradientMode", td::Long)
      .Property("MouseIcon", td::Picture)
      .Property("MousePointer", td::Int)
      .Property("SelLength", td::Long)
      .Property("SelStart", td::Long)
      .Property("SelText", td::Str)
      .Property("ShowCorner", td::Bool)
      .Property("Style", td::Enum("ENUM_COMBO_STYLE"))
      .Property("Text", td::Str)
      .Property("Theme", td::Enum("ENUM_THEME"))
      .ReadOnly("hwnd", td::Long)
      .ReadOnly("hDC", td::Long)
      .ReadOnly("TextTrim", td::Str)
      .ReadOnly("TextLen", td::Long)
      .ReadOnly("TextLenEx", td::Long)
      .ReadOnly("TextLCase", td::Str)
      .ReadOnly("TextUCase", td::Str)
      // The same three as on the text box.
      .Function("TextDate", td::Str, {Opt("Formater", td::Str, String(u"yyyy-mm-dd"))})
      .Function("TextDateEx", td::Var, {Opt("Formater", td::Enum("ENUM_DATE_FORMAT"), 25)})
      .Function("IsValidDate", td::Bool, {Opt("Formater", td::Enum("ENUM_DATE_FORMAT"), 1)})
      .Method("Clear")
      .Method("SetButtonTheme", ButtonThemeArgs())
      .Event("Change")
      .Event("Click")
      .Event("KeyDown", KeyArgs())
      .Event("KeyPress", KeyAsciiArgs())
      .Event("KeyUp", KeyArgs())
      .Event("MouseDown", MouseArgs())
      .Event("MouseEnter")
      .Event("MouseExit")
      .Event("MouseMove", MouseArgs())
      .Event("MouseUp", MouseArgs())
      .Event("DateClicked", {P("inputDate", td::Date)});
}

void AddListBox(TableBuilder& lib) {
  lib.Enum("ENUM_ORDER_TYPE", {{"Ascendent", 0}, {"Descendent", 1}});
  lib.Enum("ENUM_SELECT_MODE", {{"Single", 0}, {"Multiple", 1}});

  ClassBuilder c = lib.Class("USListBox", ClassKind::Control);
  c.Method("About")
      .Property("Theme", td::Enum("ENUM_THEME"))
      .Property("ItemSelectedBorderColor", td::Color)
      .Property("ItemSelectedColor1", td::Color)
      .Property("ItemSelectedColor2", td::Color)
      .Property("GradientMode", td::Long)
      .Property("Alignment", td::Long)
      .Property("BackColor", td::Color)
      .Property("BackColorEvenRows", td::Color)
      .Property("BackColorEvenRowsEnabled", td::Bool)
      .Property("BarCurrentValue", td::Long)
      .Property("BorderColor", td::Color)
      .ReadOnly("CurrentItemData", td::Long)
      .ReadOnly("CurrentItemTag", td::Str)
      .Property("Enabled", td::Bool)
      .Property("Focus", td::Bool)  // stored as -1: a flag
      .Property("Font", td::Font);
  AddFontParts(c);
  c.Property("ForeColor", td::Color)
      .Property("ForeColorSelected", td::Color)
      .Property("HoverSelection", td::Bool)
      .Property("Item", td::Var, ItemIndex())
      .Property("ItemData", td::Long, ItemIndex())
      .Property("ItemEnabled", td::Bool, ItemIndex())
      .Property("ItemForeColor", td::Color, ItemIndex())
      .Property("ItemHeight", td::Long)
      .Property("ItemHeightAuto", td::Bool)
      .Property("ItemIcon", td::Long, ItemIndex())
      .Property("ItemIconSelected", td::Long, ItemIndex())
      .Property("ItemMouseIcon", td::Picture, ItemIndex())
      .Property("ItemOffset", td::Long)
      .Property("ItemSelected", td::Bool, ItemIndex())
      .Property("ItemSelectedBackColor", td::Color)
      .Property("ItemSeparatorLine", td::Bool, ItemIndex())
      .Property("ItemTag", td::Str, ItemIndex())
      .Property("ItemTextLeft", td::Long)
      .Property("ItemTextShadow", td::Bool, ItemIndex())
      .Property("ItemToolTip", td::Str, ItemIndex())
      .ReadOnly("ListCount", td::Long)
      .Property("ListGradient", td::Bool)
      .Property("ListIndex", td::Long)
      .Property("MouseIcon", td::Picture)
      .Property("MousePointer", td::Int)
      .Property("OrderType", td::Enum("ENUM_ORDER_TYPE"))
      .Property("Redraw", td::Bool)
      .Property("ScrollBarWidth", td::Long)
      .Property("SelectMode", td::Enum("ENUM_SELECT_MODE"))
      .ReadOnly("SelectedCount", td::Long)
      .Property("SelectionPicture", td::Picture)
      .Property("ShadowColor", td::Color)
      .Property("TopIndex", td::Long)
      .Property("VisibleRows", td::Long)
      .Property("WordWrap", td::Bool)
      .ReadOnly("hDC", td::Long)
      .ReadOnly("hwnd", td::Long)

      .Method("IncreaseBarValue")
      .Method("DecreaseBarValue")
      .Method("StartEdit")
      .Method("EndEdit", {P("Modify", td::Bool)})
      .Method("DisableMouseMove", {P("CurrentState", td::Bool)})
      .Method("SetUSImageList", {P("ImageListControl", td::Obj), P("Key", td::Var)})
      .Method("Refresh")
      .Method("Clear")
      .Method("Order")
      .Function("FindFirst", td::Long,
                {P("FindString", td::Str), Opt("StartIndex", td::Long, 0),
                 Opt("StartWith", td::Bool, false)})
      .Method("AddItem", ItemArgs({}))
      .Method("ModifyItem", ItemArgs(ItemIndex()))
      .Method("RemoveItem", ItemIndex())

      .Event("Click")
      .Event("DblClick")
      .Event("KeyDown", KeyArgs())
      .Event("KeyPress", KeyAsciiArgs())
      .Event("KeyUp", KeyArgs())
      .Event("ListIndexChange")
      .Event("MouseDown", MouseArgs())
      .Event("MouseMove", MouseArgs())
      .Event("MouseUp", MouseArgs())
      .Event("Scroll")
      .Event("TopIndexChange");
}

void AddComboBox(TableBuilder& lib) {
  lib.Enum("ENUM_COMBO_STYLE", {{"Dropdown Combo", 0}, {"Dropdown List", 1}});
  lib.Enum("ENUM_LIST_DIRECTION", {{"Show Down", 0}, {"Show Up", 1}});

  // The persisted properties first, as the form keeps them.
  ClassBuilder c = lib.Class("USComboBox", ClassKind::Control);
  c.Property("ListPicture", td::Picture)
      .Property("ListPictureOver", td::Picture)
      .Property("MouseIcon", td::Picture)
      .Property("Font", td::Font);
  AddFontParts(c);
  c.Property("SelLength", td::Long)
      .Property("SelStart", td::Long)
      .Property("SelText", td::Str)
      .Property("Enabled", td::Bool)
      .Property("Alignment", td::Long)
      .Property("AutoComplete", td::Bool)
      .Property("AutoOpenOnChange", td::Bool)
      .Property("BackColor", td::Color)
      .Property("BackColorDisabled", td::Color)
      .Property("BackColorOnShowList", td::Color)
      .Property("BackColorOver", td::Color)
      .Property("BorderColor", td::Color)
      .Property("BorderColorDisabled", td::Color)
      .Property("BorderColorOver", td::Color)
      .Property("ForeColor", td::Color)
      .Property("ForeColorDisabled", td::Color)
      .Property("GradientColor1", td::Color)
      .Property("GradientColor2", td::Color)
      .Property("Theme", td::Enum("ENUM_THEME"))
      .Property("GradientMode", td::Long)
      .Property("NumberItemsToShow", td::Long)
      .Property("ListBackColorEvenRows", td::Color)
      .Property("ListBackColorEvenRowsEnabled", td::Bool)
      .Property("ListForeColor", td::Color)
      .Property("ListForeColorSelected", td::Color)
      .Property("ListGradient", td::Bool)
      .Property("ListItemHeight", td::Long)
      .Property("ListItemSelectedBorderColor", td::Color)
      .Property("ListItemSelectedColor1", td::Color)
      .Property("ListItemSelectedColor2", td::Color)
      .Property("ListItemSelectedForeColor", td::Color)
      .Property("ListItemWidth", td::Long)
      .Property("ListItemWidthCustom", td::Bool)
      .Property("ListShadowColor", td::Color)
      .Property("MousePointer", td::Int)
      .Property("ShowCorner", td::Bool)
      .Property("ShowEmptyList", td::Bool)
      .Property("Style", td::Enum("ENUM_COMBO_STYLE"))
      .Property("Text", td::Str)

      // The item members forward to the list with the list's own signatures.
      .Method("About")
      .Method("ShowList")
      .Method("AddItem", ItemArgs({}))
      .Method("ModifyItem", ItemArgs(ItemIndex()))
      .Method("Clear")
      .Method("RemoveItem", ItemIndex())
      .Method("Order")
      .Function("FindFirst", td::Long,
                {P("FindString", td::Str), Opt("StartIndex", td::Long, 0),
                 Opt("StartWith", td::Bool, false)})
      .Method("SetUSImageList", {P("ImageListControl", td::Obj), P("Key", td::Var)})

      .ReadOnly("TextLCase", td::Str)
      .ReadOnly("TextUCase", td::Str)
      .ReadOnly("TextTrim", td::Str)
      .ReadOnly("TextLen", td::Long)
      .ReadOnly("TextLenEx", td::Long)
      .Property("Item", td::Var, ItemIndex())
      .Property("ItemData", td::Long, ItemIndex())
      .Property("ItemEnabled", td::Bool, ItemIndex())
      .Property("ItemForeColor", td::Color, ItemIndex())
      .Property("ItemIcon", td::Long, ItemIndex())
      .Property("ItemIconSelected", td::Long, ItemIndex())
      .Property("ItemMouseIcon", td::Picture, ItemIndex())
      .Property("ItemSeparatorLine", td::Bool, ItemIndex())
      .Property("ItemTag", td::Str, ItemIndex())
      .Property("ItemTextShadow", td::Bool, ItemIndex())
      .Property("ItemToolTip", td::Str, ItemIndex())
      .ReadOnly("CurrentItemData", td::Long)
      .ReadOnly("CurrentItemTag", td::Str)
      .ReadOnly("ListCount", td::Long)
      .Property("ListIndex", td::Long)
      .ReadOnly("hDC", td::Long)
      .ReadOnly("hwnd", td::Long)

      .Event("Change")
      .Event("Click")
      .Event("DblClick")
      .Event("KeyDown", KeyArgs())
      .Event("KeyPress", KeyAsciiArgs())
      .Event("KeyUp", KeyArgs())
      .Event("ListIndexChange")
      .Event("MouseDown", MouseArgs())
      .Event("MouseEnter")
      .Event("MouseExit")
      .Event("MouseMove", MouseArgs())
      .Event("MouseUp", MouseArgs())
      .Event("Scroll")
      // The item's text form, whatever the item's value is.
      .Event("SelectionMade", {P("SelectedItem", td::Str), P("SelectedItemIndex", td::Long)})
      .Event("TopIndexChange")
      .Event("TotalItems", {P("ListCount", td::Long)});
}

}  // namespace

void AddEntryTables(TableBuilder& lib) {
  AddTextBoxEnums(lib);
  AddTextBox(lib, "USTextBox", true);
  AddTextBox(lib, "USTextBoxEx", false);
  AddCalendar(lib);
  AddDatePicker(lib);
  AddListBox(lib);
  AddComboBox(lib);
}

}  // namespace vantor::server
