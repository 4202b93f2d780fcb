#include "server/TableBuilder.h"

#include <vector>

namespace vantor::server {

namespace {

// Row and column arguments of the cell, column and row members: -1 names the
// current cell, so every one of them may be left out.
ParamInfo AnyRow() {
  return Opt("vRow", td::Long, -1);
}
ParamInfo AnyCol() {
  return Opt("vCol", td::Long, -1);
}

void AddGridEnums(TableBuilder& lib) {
  lib.Enum(
      "GRID_SCROLLBAR_ORIENTATION",
      {{"Scroll_Horizontal", 0}, {"Scroll_Vertical", 1}, {"Scroll_Both", 2}, {"Scroll_None", 3}});
  lib.Enum("GRID_MULTISELECT", {{"Single Select", 0}, {"Multi Standard", 1}, {"Multi Latch", 2}});
  lib.Enum("GRID_CAPTION_ALIGNMENT",
           {{"AlignToLeft", 4}, {"AlignToCenter", 5}, {"AlignToRight", 6}});
  // The values are the text-drawing flags themselves, so a cell's alignment
  // goes straight into DrawText.
  lib.Enum("GRID_ALIGNMENT", {{"AlignToLeftTop", 0},
                              {"AlignToCenterTop", 1},
                              {"AlignToRightTop", 2},
                              {"AlignToLeftCenter", 4},
                              {"AlignToCenterCenter", 5},
                              {"AlignToRightCenter", 6},
                              {"AlignToLeftBottom", 8},
                              {"AlignToCenterBottom", 9},
                              {"AlignToRightBottom", 10}});
  lib.Enum("GRID_BORDER_STYLE", {{"No Border", 0}, {"Fixed Single", 1}});
  // The type `BorderStyle` is declared with; the grid draws the same two
  // borders, so it carries the same two values.
  lib.Enum("ENUM_BORDER_STYLE", {{"No Border", 0}, {"Fixed Single", 1}});
  lib.Enum("GRID_CELL_FORMAT", {{"Format BackColor", 1},
                                {"Format ForeColor", 4},
                                {"Format Image", 8},
                                {"Format FontName", 16},
                                {"Format FontBold", 32},
                                {"Format FontItalic", 64},
                                {"Format FontUnderline", 128},
                                {"Format FontStrikethrough", 256},
                                {"Format HandPointer", 512},
                                {"Format Alignment", 1024}});
  lib.Enum("GRID_DATA_TYPE", {{"TypeString", 0},
                              {"TypeNumeric", 1},
                              {"TypeDate", 2},
                              {"TypeBoolean", 3},
                              {"TypeProgressBar", 4},
                              {"TypeCustom", 5},
                              {"TypeButton", 6}});
  // A bit set: OnF2OrDblClick is F2, double click and any key together.
  lib.Enum("GRID_EDIT_TRIGGER", {{"None Edit", 0},
                                 {"OnEnterKey", 2},
                                 {"OnF2Key", 4},
                                 {"OnMouseClick", 8},
                                 {"OnMouseDblClick", 16},
                                 {"OnAnyKey", 32},
                                 {"OnF2OrDblClick", 52}});
  lib.Enum("GRID_EDIT_MOVE", {{"DontMove", 0}, {"MoveRight", 1}, {"MoveDown", 2}});
  lib.Enum("GRID_FOCUSRECT", {{"Focus None", 0}, {"Focus Row", 1}, {"Focus Col", 2}});
  lib.Enum("GRID_FOCUSRECT_STYLE", {{"Focus Light", 0}, {"Focus Heavy", 1}, {"Focus Medium", 2}});
  lib.Enum("GRID_FOCUS_ROW_HIGHLIGHT_STYLE",
           {{"Solid", 0}, {"Vertical Gradient", 1}, {"Horizontal Gradient", 2}});
  lib.Enum(
      "GRID_MOVE_CONTROL",
      {{"Move None", 0}, {"Move Height", 1}, {"Move Width", 2}, {"Move Left", 4}, {"Move Top", 8}});
  lib.Enum("GRID_SEARCH_MODE", {{"Search Equal", 0},
                                {"Search GreaterEqual", 1},
                                {"Search Like", 2},
                                {"Search Navigate", 4},
                                {"Search BeginsWith", 5},
                                {"Search EndsWith", 6}});
  lib.Enum("GRID_SORT_TYPE", {{"Sort Normal", 0}, {"Sort Ascending", 1}, {"Sort Descending", 2}});
  lib.Enum("GRID_LINES",
           {{"None Lines", 0}, {"Both Lines", 1}, {"Vertical Lines", 2}, {"Horizontal Lines", 3}});
}

}  // namespace

void AddGridTables(TableBuilder& lib) {
  AddGridEnums(lib);

  const TypeRef alignment = td::Enum("GRID_ALIGNMENT");
  const TypeRef moveControl = td::Enum("GRID_MOVE_CONTROL");

  auto grid = lib.Class("USFlexGrid", ClassKind::Control);

  // Identity and host.
  grid.Method("About")
      .ReadOnly("hDC", td::Long)
      .ReadOnly("hwnd", td::Long)
      .Property("Theme", td::Enum("ENUM_THEME"))
      .Property("Enabled", td::Bool)
      .Property("Redraw", td::Bool)
      .Method("Refresh")
      // Locks or releases window updates: a switch.
      .Method("WindowUpdate", {P("UpdateControl", td::Bool)});

  // Geometry, read-only. Extents and row indices are whole numbers, in pixels
  // and display rows.
  grid.ReadOnly("RowNumberWidth", td::Single)
      .ReadOnly("VerticalScrollBarVisible", td::Bool)
      .ReadOnly("HorizontalScrollBarVisible", td::Bool)
      .ReadOnly("VisibleHeight", td::Long)
      .ReadOnly("VisibleWidth", td::Long)
      .ReadOnly("RowFirstVisible", td::Long)
      .ReadOnly("RowLastVisible", td::Long)
      .ReadOnly("MouseCol", td::Long)
      .ReadOnly("MouseRow", td::Long);

  // Colours.
  grid.Property("ColumnSeparatorColor", td::Color)
      .Property("ColumnSeparatorColorDown", td::Color)
      .Property("ColumnSeparatorColorOver", td::Color)
      .Property("ArrowColor", td::Color)
      .Property("BackColor", td::Color)
      .Property("BackColorBackground", td::Color)
      .Property("BackColorEdit", td::Color)
      .Property("BackColorEvenRows", td::Color)
      .Property("BackColorSelected1", td::Color)
      .Property("BackColorSelected2", td::Color)
      .Property("BorderColor", td::Color)
      .Property("FocusRectColor", td::Color)
      .Property("ForeColor", td::Color)
      .Property("ForeColorEdit", td::Color)
      .Property("ForeColorHeader", td::Color)
      .Property("ForeColorHeaderOver", td::Color)
      .Property("ForeColorSelected", td::Color)
      .Property("GridColor", td::Color)
      .Property("ProgressBarColor1", td::Color)
      .Property("ProgressBarColor2", td::Color)
      .Property("ProgressBarBorderColor", td::Color)
      .Property("CaptionGradientColor1", td::Color)
      .Property("CaptionGradientColor2", td::Color)
      .Property("HeaderGradientColor1", td::Color)
      .Property("HeaderGradientColor2", td::Color)
      .Property("HeaderGradientColorDown1", td::Color)
      .Property("HeaderGradientColorDown2", td::Color)
      .Property("HeaderGradientColorOver1", td::Color)
      .Property("HeaderGradientColorOver2", td::Color)
      .Property("HeaderBorderColorDown", td::Color)
      .Property("HeaderBorderColorOver", td::Color);

  // Switches.
  grid.Property("AllowColumnDrag", td::Bool)
      .Property("AllowColumnHover", td::Bool)
      .Property("AllowColumnResizing", td::Bool)
      .Property("AllowColumnSort", td::Bool)
      .Property("AllowColumnSwap", td::Bool)
      .Property("AllowDelete", td::Bool)
      .Property("AllowEdit", td::Bool)
      .Property("AllowInsert", td::Bool)
      .Property("AllowRowResizing", td::Bool)
      .Property("AllowWordWrap", td::Bool)
      .Property("AlphaBlendSelection", td::Bool)
      .Property("ApplySelectionToImages", td::Bool)
      .Property("AutoToolTips", td::Bool)
      .Property("BackColorEvenRowsEnabled", td::Bool)
      .Property("CaptionWordWrap", td::Bool)
      .Property("CenterRowImage", td::Bool)
      .Property("ColumnHeaders", td::Bool)
      .Property("ColumnHeaderSmall", td::Bool)
      .Property("DisplayEllipsis", td::Bool)
      .Property("FocusRectHide", td::Bool)
      .Property("FocusRowHighlight", td::Bool)
      .Property("FocusRowHighlightKeepTextForeColor", td::Bool)
      .Property("RowCheckBoxes", td::Bool)
      .Property("ScrollTrack", td::Bool)
      .Property("ShowRowNumbers", td::Bool)
      .Property("ShowRowNumbersVary", td::Bool)
      .Property("TotalLineShow", td::Bool);

  // Style values. Where no type is named, the persisted key's type decides.
  grid.Property("BorderStyle", td::Enum("ENUM_BORDER_STYLE"))
      .Property("CacheIncrement", td::Long)
      .Property("Caption", td::Str)
      .Property("CaptionHeight", td::Single)
      .Property("CaptionAlignment", td::Enum("GRID_CAPTION_ALIGNMENT"))
      .Property("ColumnHeaderLines", td::Int)
      .Property("EditMove", td::Enum("GRID_EDIT_MOVE"))
      .Property("EditTrigger", td::Enum("GRID_EDIT_TRIGGER"))
      .Property("ExpandRowImage", td::Var)
      .Property("FocusRectMode", td::Enum("GRID_FOCUSRECT"))
      .Property("FocusRectStyle", td::Enum("GRID_FOCUSRECT_STYLE"))
      .Property("FocusRowHighlightStyle", td::Enum("GRID_FOCUS_ROW_HIGHLIGHT_STYLE"))
      .Property("FontHeader", td::Font)
      .Property("Font", td::Font)
      .Property("FreezeAtCol", td::Int)
      .Property("GridLines", td::Enum("GRID_LINES"))
      .Property("GridLineWidth", td::Long)
      .Property("HeaderFormatString", td::Str)
      .Property("ImageList", td::Obj)
      .Property("MaxLineCount", td::Int)
      .Property("MinRowHeight", td::Single)
      .Property("MinVerticalOffset", td::Long)
      .Property("MultiSelect", td::Enum("GRID_MULTISELECT"))
      .Property("ScrollBars", td::Enum("GRID_SCROLLBAR_ORIENTATION"))
      .Property("SearchColumn", td::Int);

  // Current cell.
  grid.Property("Row", td::Long)
      .Property("Col", td::Long)
      .Method("RowColSet", {Opt("lNewRow", td::Long, -1), Opt("lNewCol", td::Long, -1)})
      .Method("ForceCellEdit", {Opt("lNewRow", td::Long, -1), Opt("lNewCol", td::Long, -1),
                                Opt("bBlankCell", td::Bool, false)})
      .Function("UpdateCell", td::Bool, {Opt("bAllowMove", td::Bool, false)})
      .ReadOnly("EditPending", td::Bool);

  // Counts.
  grid.ReadOnly("Rows", td::Long)
      .ReadOnly("Cols", td::Long)
      .ReadOnly("ListCount", td::Long)
      .ReadOnly("CheckedCount", td::Long)
      .ReadOnly("SelectedCount", td::Long)
      .ReadOnly("CellsChanged", td::Bool);

  // One cell.
  grid.Property("CellAlignment", alignment, {AnyRow(), AnyCol()})
      .Property("CellBackColor", td::Color, {AnyRow(), AnyCol()})
      .ReadOnly("CellChanged", td::Bool, {AnyRow(), AnyCol()})
      .Property("CellChecked", td::Bool, {AnyRow(), AnyCol()})
      .Property("CellFontBold", td::Bool, {AnyRow(), AnyCol()})
      .Property("CellFontItalic", td::Bool, {AnyRow(), AnyCol()})
      .Property("CellFontName", td::Str, {AnyRow(), AnyCol()})
      .Property("CellFontUnderline", td::Bool, {AnyRow(), AnyCol()})
      .Property("CellFontStrikethrough", td::Bool, {AnyRow(), AnyCol()})
      .Property("CellForeColor", td::Color, {AnyRow(), AnyCol()})
      .Property("CellHandPointer", td::Bool, {AnyRow(), AnyCol()})
      // An index into the bound image list.
      .Property("CellImage", td::Long, {AnyRow(), AnyCol()})
      .Property("CellProgressValue", td::Int, {AnyRow(), AnyCol()})
      .Property("CellTag", td::Str, {AnyRow(), AnyCol()})
      .Property("CellData", td::Long, {AnyRow(), AnyCol()})
      .Property("CellText", td::Str, {AnyRow(), AnyCol()})
      .Property("CellValue", td::Var, {AnyRow(), AnyCol()})
      .Property("CellWordWrap", td::Bool, {AnyRow(), AnyCol()})
      .Method("CellPicture", {P("vNewValue", td::Picture), AnyRow(), AnyCol()})
      .Function("CellPictureGet", td::Picture, {AnyRow(), AnyCol()});

  // One column.
  grid.Property("ColAlignment", alignment, {AnyCol()})
      .Property("ColFormat", td::Str, {AnyCol()})
      .Property("ColHeading", td::Str, {AnyCol()})
      .Property("ColImageAlignment", alignment, {AnyCol()})
      .Property("ColInputFilter", td::Str, {AnyCol()})
      .Property("ColLocked", td::Bool, {AnyCol()})
      .Property("ColTag", td::Str, {AnyCol()})
      .Property("ColType", td::Enum("GRID_DATA_TYPE"), {AnyCol()})
      .Property("ColVisible", td::Bool, {AnyCol()})
      .Property("ColWidth", td::Single, {AnyCol()})
      .Property("ColWordWrap", td::Bool, {AnyCol()});

  // One row; the row-wide format setters only write.
  grid.ReadOnly("RowAdded", td::Bool, {AnyRow()})
      .ReadOnly("RowChanged", td::Bool, {AnyRow()})
      .Property("RowChecked", td::Bool, {AnyRow()})
      .Property("RowData", td::Long, {AnyRow()})
      .Property("RowGroupHeader", td::Bool, {AnyRow()})
      .Property("RowHeight", td::Single, {AnyRow()})
      // The image's index in the bound list.
      .Property("RowImage", td::Long, {AnyRow()})
      .Property("RowLocked", td::Bool, {AnyRow()})
      .Property("RowSelected", td::Bool, {AnyRow()})
      .Property("RowTag", td::Str, {AnyRow()})
      .Property("RowVisible", td::Bool, {AnyRow()})
      .WriteOnly("RowBackColor", td::Color, {AnyRow()})
      .WriteOnly("RowForeColor", td::Color, {AnyRow()})
      .WriteOnly("RowFontBold", td::Bool, {AnyRow()})
      .WriteOnly("RowFontItalic", td::Bool, {AnyRow()})
      .WriteOnly("RowFontUnderline", td::Bool, {AnyRow()})
      .WriteOnly("RowFontStrikethrough", td::Bool, {AnyRow()});

  // Total line. Its alignment is a draw-text alignment like a cell's.
  grid.ReadOnly("TotalColumns", td::Double, {AnyCol()})
      .Property("TotalLineColAlignment", alignment, {P("Index", td::Long)})
      .Property("TotalLineColInvisible", td::Bool, {P("Index", td::Long)})
      .Property("TotalLineForeColor", td::Color, {P("Index", td::Long)})
      .Property("TotalLineCaption", td::Str, {P("Index", td::Long)})
      .Property("TotalLineColAvg", td::Bool, {P("Index", td::Long)});

  // Structure.
  grid.Function(
          "AddColumn", td::Long,
          {P("Caption", td::Str), Opt("Width", td::Single, 500.0), Opt("Alignment", alignment, 4),
           Opt("DataType", td::Enum("GRID_DATA_TYPE"), 0), Opt("Format", td::Str),
           Opt("InputFilter", td::Str), Opt("ImageAlignment", alignment, 4),
           Opt("WordWrap", td::Bool, false), Opt("Index", td::Long, 0),
           Opt("bVisible", td::Bool, true), Opt("bLocked", td::Bool, false)})
      .Function(
          "AddItem", td::Long,
          {P("vstrItem", td::Str), Opt("vRow", td::Long, -1), Opt("vbRowChecked", td::Bool, false),
           Opt("vbMarkAsNew", td::Bool, false), Opt("vbRowLocked", td::Bool, false),
           Opt("vbRowVisible", td::Bool, true), Opt("vRowData", td::Long)})
      .Method("RemoveRow", {AnyRow()})
      .Method("DeleteSelected")
      .Method("Clear")
      .Method("ClearEx", {Opt("ForceFit", td::Bool, true)})
      .Method("ClearAll")
      .Method("BindControl",
              {P("vCol", td::Long), P("Ctrl", td::Obj), Opt("MoveControl", moveControl, 15)})
      .Method("FillGridFromQuery",
              {P("ActiveRecordset", td::Obj), P("AddColumns", td::Bool),
               P("AddedColumnWidthAutoSize", td::Bool), P("FitColumnWidth", td::Bool)});

  // Selection.
  grid.Method("SelectAllRows");
  grid.Method("UnselectAllRows");
  grid.Method("SelectedClearAll");

  // Sort, filter, find. A sort type of -1 toggles the column's direction.
  const TypeRef sortType = td::Enum("GRID_SORT_TYPE");
  const TypeRef searchMode = td::Enum("GRID_SEARCH_MODE");
  grid.Method("Sort", {Opt("vCol1", td::Long, -1), Opt("vCol1SortType", sortType, -1),
                       Opt("vCol2", td::Long, -1), Opt("vCol2SortType", sortType, -1)})
      .Method("FilterOn", {P("FilterText", td::Str), P("SearchColumn", td::Long),
                           Opt("SearchMode", searchMode, 0), Opt("MatchCase", td::Bool, false),
                           Opt("StartingRow", td::Long, 0)})
      .Method("FilterOnEx", {P("FilterText", td::Str), P("SearchColumn", td::Long),
                             Opt("SearchMode", searchMode, 0), Opt("StartingRow", td::Long, 0)})
      .Method("FilterOff", {Opt("StartingRow", td::Long, 0)})
      .Function("FindItem", td::Long,
                {P("SearchText", td::Str), Opt("SearchColumn", td::Long, -1),
                 Opt("SearchMode", searchMode, 0), Opt("MatchCase", td::Bool, false),
                 Opt("StartingRow", td::Long, 0)});

  // Bulk formats. Mode may combine format bits (21 is colours and font name).
  grid.Method("FormatCells",
              {Opt("RowFrom", td::Long, 0), Opt("RowTo", td::Long, -1), Opt("ColFrom", td::Long, 0),
               Opt("ColTo", td::Long, -1), Opt("Mode", td::Enum("GRID_CELL_FORMAT"), 8),
               Opt("vNewValue", td::Str, u""), Opt("vNewAlign", alignment, 4)})
      .Method("FormatCellsAlignment",
              {Opt("RowFrom", td::Long, 0), Opt("RowTo", td::Long, -1), Opt("ColFrom", td::Long, 0),
               Opt("ColTo", td::Long, -1), Opt("vAlignment", alignment, 4)});

  // Column layout. ErrDescription comes back with the error text of a failed
  // call.
  grid.Method("ColumnsForceFit")
      .Method("SetColumnWidthAutoSize", {AnyCol()})
      .Method("RestoreColumnOrder")
      .Method("LoadColumnWidthsFromRegistry",
              {P("UniqueGridName", td::Str), OptRef("ErrDescription", td::Str)})
      .Method("LoadColumnWidthsFromFile",
              {P("FileName", td::Str), OptRef("ErrDescription", td::Str)})
      .Method("SaveColumnWidthsToRegistry",
              {P("UniqueGridName", td::Str), OptRef("ErrDescription", td::Str)})
      .Method("SaveColumnWidthsToFile", {P("FileName", td::Str), OptRef("ErrDescription", td::Str)})
      .Method("SaveColumnOrderToRegistry",
              {P("UniqueGridName", td::Str), OptRef("ErrDescription", td::Str)})
      .Method("SaveColumnOrderToFile", {P("FileName", td::Str), OptRef("ErrDescription", td::Str)})
      .Method("LoadColumnOrderFromRegistry",
              {P("UniqueGridName", td::Str), OptRef("ErrDescription", td::Str)})
      .Method("LoadColumnOrderFromFile",
              {P("FileName", td::Str), OptRef("ErrDescription", td::Str)});

  // Export.
  grid.Method("ExportGridToCsv",
              {P("strGridName", td::Str), Opt("vbVisibleColsOnly", td::Bool, true),
               Opt("vbVisibleRowsOnly", td::Bool, false), Opt("vbBooleanAsText", td::Bool, true)});

  // Task bar: each call goes on to the shell's task bar list and returns its
  // result code. The thumb-bar buttons and icons are Variants: their shape is
  // whatever the host holds.
  grid.Function("TaskBar_SetProgressState", td::Long, {P("hwnd", td::Long), P("Flags", td::Long)})
      .Function("TaskBar_SetProgressValue", td::Long, {P("hwnd", td::Long), P("Percent", td::Long)})
      .Function("TaskBar_SetOverlayIcon", td::Long,
                {P("hwnd", td::Long), P("hIcon", td::Long), P("Description", td::Str)})
      .Function("TaskBar_SetThumbnailClip", td::Long,
                {P("hwnd", td::Long), P("Left", td::Long), P("Top", td::Long), P("Right", td::Long),
                 P("Bottom", td::Long)})
      .Function("TaskBar_SetThumbnailTooltip", td::Long, {P("hwnd", td::Long), P("Tip", td::Str)})
      .Function("TaskBar_ThumbBarAddButtons", td::Long,
                {P("hwnd", td::Long), P("Buttons", td::Var), P("icons", td::Var)});

  // Events, in the order of their dispatch ids. What the host may change
  // travels by reference.
  const ParamInfo row = P("Row", td::Long);
  const ParamInfo col = P("Col", td::Long);
  const ParamInfo cancel = Ref("Cancel", td::Bool);
  const ParamInfo shift = Ref("Shift", td::Int);
  auto mouse = [] {
    return std::vector<ParamInfo>{Ref("Button", td::Int), Ref("Shift", td::Int),
                                  Ref("X", td::Single), Ref("Y", td::Single)};
  };
  grid.Event("AfterDelete")
      .Event("AfterEdit", {row, col, Ref("vNewValue", td::Str), cancel})
      .Event("AfterInsert", {row})
      .Event("BeforeDelete", {row, cancel})
      .Event("BeforeEdit", {row, col, cancel})
      .Event("BeforeInsert", {row, cancel})
      .Event("CellButtonClick", {row, col})
      .Event("CellClick", {row, col, shift})
      .Event("CellHandClick", {row, col, shift})
      .Event("CellImageClick", {row, col})
      .Event("Click")
      .Event("ColumnClick", {col})
      .Event("ColumnOrderChanged", {P("ToCol", td::Long), P("FromCol", td::Long)})
      // The resized column's own MoveControl bits, so the host knows how a
      // bound control follows it.
      .Event("ColumnSizeChanged", {col, P("MoveControl", moveControl)})
      .Event("CustomSort", {Ref("Ascending", td::Bool), Ref("Col", td::Long),
                            Ref("Value1", td::Str), Ref("Value2", td::Str), Ref("Swap", td::Bool)})
      .Event("DblClick")
      .Event("EditKeyPress", {col, Ref("KeyAscii", td::Int)})
      .Event("KeyDown", {Ref("KeyCode", td::Int), shift})
      .Event("KeyPress", {Ref("KeyAscii", td::Int)})
      .Event("KeyUp", {Ref("KeyCode", td::Int), shift})
      .Event("MouseDown", mouse())
      .Event("MouseEnter")
      .Event("MouseExit")
      .Event("MouseMove", mouse())
      .Event("MouseUp", mouse())
      .Event("OLEDragDrop", {Ref("Data", td::Obj), Ref("Effect", td::Long), Ref("Button", td::Int),
                             Ref("Shift", td::Int), Ref("X", td::Single), Ref("Y", td::Single)})
      .Event("RequestRowData", {row})
      .Event("RowChecked", {row})
      .Event("RowColChanged")
      .Event("RowCountChanged")
      .Event("Scroll")
      .Event("SelectionChanged")
      .Event("SortComplete");
}

}  // namespace vantor::server
