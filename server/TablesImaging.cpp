#include <iterator>

#include "server/TableBuilder.h"

namespace vantor::server {

namespace {

// A drop hands over the host's data object and the effect it may change,
// as the container's own drag-and-drop events do; a drag over the control
// also tells whether it enters, leaves or moves.
std::vector<ParamInfo> DragArgs(bool withState = false) {
  std::vector<ParamInfo> args = {Ref("Data", td::Obj),   Ref("Effect", td::Long),
                                 Ref("Button", td::Int), Ref("Shift", td::Int),
                                 Ref("X", td::Single),   Ref("Y", td::Single)};
  if (withState) args.push_back(Ref("State", td::Int));
  return args;
}

// The host's pointer enumeration is not ours; the value travels and is
// persisted as a 16-bit number.
constexpr TypeRef kMousePointer = td::Int;

// The data names are a private matter between the image lists and their
// items; they travel as plain numbers so the door publishes no values.
constexpr TypeRef kDataName = td::Long;

// Image loaders take the size and depth to pick from an icon; 0 lets the
// loader decide, the drop and paste loaders start from a 32-pixel icon.
std::vector<ParamInfo> WithIconSizes(std::vector<ParamInfo> params, int32_t size = 0) {
  params.push_back(Opt("desiredIconWidth", td::Long, size));
  params.push_back(Opt("desiredIconHeight", td::Long, size));
  params.push_back(Opt("desiredIconBitDepth", td::Long, size));
  return params;
}

// How a picture is drawn onto a device context. Omitted sizes are 0, which
// the surface reads as the whole image. Angle and light take fractions,
// since a fractional angle is what makes a picture rotate.
std::vector<ParamInfo> WithRenderArgs(std::vector<ParamInfo> params) {
  const ParamInfo place[] = {
      P("destinationDC", td::Long),
      P("DestX", td::Long),
      P("DestY", td::Long),
      Opt("DestWidth", td::Long, 0),
      Opt("DestHeight", td::Long, 0),
      Opt("srcX", td::Long, 0),
      Opt("srcY", td::Long, 0),
      Opt("srcwidth", td::Long, 0),
      Opt("srcheight", td::Long, 0),
      Opt("Opacity", td::Long, 100),
      Opt("grayScale", td::Enum("ENUM_GRAY_SCALE_FORMULAS"), -1),
      Opt("LightAdjustment", td::Single, 0),
      Opt("Angle", td::Single, 0),
      Opt("CenterOnDestXY", td::Bool, false),
  };
  params.insert(params.end(), std::begin(place), std::end(place));
  return params;
}

void AddSurfaceEnums(TableBuilder& lib) {
  lib.Enum("ENUM_IMAGE_FORMAT", {{"Image Error", -1},
                                 {"Image None", 0},
                                 {"Image Bitmap", 1},
                                 {"Image WMF", 2},
                                 {"Image Icon", 3},
                                 {"Image EMF", 4},
                                 {"Image Cursor", 5},
                                 {"Image Bitmap ARGB", 6},
                                 {"Image Bitmap PARGB", 7},
                                 {"Image Icon ARGB", 8},
                                 {"Image GIF", 9},
                                 {"Image PNG", 10},
                                 {"Image PNG Icon", 11},
                                 {"Image Cursor ARGB", 12},
                                 {"Image Checker Board", 64}});
  lib.Enum("ENUM_ALPHA_TYPE", {{"Alpha None", 0}, {"Alpha Simple", 1}, {"Alpha Complex", 2}});
  lib.Enum("ENUM_GRAY_SCALE_FORMULAS", {{"GrayScale None", -1},
                                        {"GrayScale NTSCPAL", 0},
                                        {"GrayScale CCIR709", 1},
                                        {"GrayScale SimpleAvg", 2},
                                        {"GrayScale RedMask", 3},
                                        {"GrayScale GreenMask", 4},
                                        {"GrayScale BlueMask", 5},
                                        {"GrayScale RedGreenMask", 6},
                                        {"GrayScale BlueGreenMask", 7}});
  lib.Enum("ENUM_REGION_STYLES",
           {{"Region Bounds", 0}, {"Region Enclosed", 1}, {"Region Shaped", 2}});
  lib.Enum(
      "ENUM_TRIM_OPTIONS",
      {{"Trim All", 0}, {"Trim Left", 1}, {"Trim Top", 2}, {"Trim Right", 4}, {"Trim Bottom", 8}});
}

void AddPngWriterEnums(TableBuilder& lib) {
  lib.Enum("ENUM_PNG_PROPERTIES", {{"Png Title", 1},
                                   {"Png Author", 2},
                                   {"Png Description", 4},
                                   {"Png Copyright", 8},
                                   {"Png CreationTime", 16},
                                   {"Png Software", 32},
                                   {"Png Disclaimer", 64},
                                   {"Png Warning", 128},
                                   {"Png Source", 256},
                                   {"Png Comment", 512},
                                   {"Png Miscellaneous", 1024},
                                   {"Png DateTimeModified", 2048},
                                   {"Png DefaultBkgColor", 4096},
                                   {"Png FilterMethod", 8192}});
  lib.Enum("ENUM_FILTER_METHODS", {{"Filter Default", 0},
                                   {"Filter None", 1},
                                   {"Filter AdjLeft", 2},
                                   {"Filter AdjTop", 3},
                                   {"Filter AdjAvg", 4},
                                   {"Filter Paeth", 5},
                                   {"Filter Adaptive", 6}});
}

void AddImageLists(TableBuilder& lib) {
  lib.Class("USImageList", ClassKind::Control)
      .Method("About")
      .ReadOnly("ImageLists", td::Class("cImageLists"));

  // A list or an image is named by its position from 1 or by its key.
  lib.Class("cImageLists", ClassKind::ObjectModel)
      .ReadOnly("Item", td::Class("cImageList"), {P("Index", td::Var)})
      .Property("Compression", td::Bool)
      .ReadOnly("CompressionNeeded", td::Bool)
      .ReadOnly("Count", td::Long)
      .Method("Clear")
      .Method("Remove", {P("Index", td::Var)})
      .Function("MaxImages", td::Long, {P("imageWidth", td::Long), P("imageHeight", td::Long)})
      // Add and import hand back the list they made, as the images' adders do.
      .Function("Add", td::Class("cImageList"),
                {P("Width", td::Long), P("Height", td::Long), P("Key", td::Str),
                 Opt("InitImageCount", td::Long, 1)})
      .Function("IsKeyAssigned", td::Long, {P("Key", td::Str)})
      .Function("ImportImageList", td::Class("cImageList"),
                {P("inData", td::Bytes), P("Key", td::Str)})
      .Method("ExportImageList", {P("Index", td::Var), Ref("outData", td::Bytes)})
      // The enumerator the host's For Each asks for.
      .Function("xcom_IEnum", td::Obj)
      // Width and height of each image the stream offers; the result counts them.
      .Function("ImageSizesFromStream", td::Long,
                {P("inStream", td::Bytes), Ref("arraySizes", td::ArrayOf(td::Long))});

  lib.Class("cImageList", ClassKind::ObjectModel)
      .ReadOnly("Images", td::Class("cListImages"))
      .Property("Key", td::Str)
      .Property("Index", td::Long)
      .ReadOnly("Width", td::Long)
      .ReadOnly("Height", td::Long)
      .ReadOnly("MaxImages", td::Long);

  // Where an image goes is optional: omitted, it is appended.
  lib.Class("cListImages", ClassKind::ObjectModel)
      .ReadOnly("Item", td::Class("cListImage"), {P("Index", td::Var)})
      .Function("Render", td::Bool, WithRenderArgs({P("Index", td::Var)}))
      // A run of images side by side, each at its own size.
      .Function("RenderRange", td::Bool,
                {P("StartIndex", td::Var), P("EndIndex", td::Var), P("destinationDC", td::Long),
                 P("DestX", td::Long), P("DestY", td::Long), Opt("Opacity", td::Long, 100),
                 Opt("grayScale", td::Enum("ENUM_GRAY_SCALE_FORMULAS"), -1),
                 Opt("LightAdjustment", td::Single, 0)})
      // Both give an icon handle that the caller owns.
      .Function("ExtractIcon", td::Long, {P("Index", td::Var), OptRef("Rtn_BitDepth", td::Long, 0)})
      .Function("ExtractIconEx", td::Long,
                {P("Index", td::Var), Opt("MirrorAxisX", td::Bool, false),
                 Opt("MirrorAxisY", td::Bool, false), Opt("Opacity", td::Long, 100),
                 Opt("grayScale", td::Enum("ENUM_GRAY_SCALE_FORMULAS"), -1),
                 Opt("LightAdjustment", td::Single, 0), Opt("Angle", td::Single, 0),
                 OptRef("Rtn_iconWidth", td::Long, 0), OptRef("Rtn_iconHeight", td::Long, 0),
                 OptRef("Rtn_BitDepth", td::Long, 0)})
      .Property("DelayLoaded", td::Bool)
      .ReadOnly("Count", td::Long)
      .Method("Clear")
      .Method("Remove", {P("Index", td::Var)})
      .Function("IsKeyAssigned", td::Long, {P("Key", td::Str)})
      .ReadOnly("MaxImages", td::Long)
      .Function("xcom_IEnum", td::Obj)
      .Function("AddImage_fromStream", td::Class("cListImage"),
                {P("inStream", td::Bytes), Opt("Index", td::Var), Opt("Key", td::Str, u""),
                 Opt("Tag", td::Str, u""), Opt("streamStart", td::Long, 0),
                 Opt("streamLength", td::Long, 0), Opt("iconBitDepth", td::Long, 32),
                 Opt("Scaled", td::Bool, true)})
      .Function("AddImage_fromClipBoard", td::Class("cListImage"),
                {Opt("Index", td::Var), Opt("Key", td::Str, u""), Opt("Tag", td::Str, u""),
                 Opt("Scaled", td::Bool, true)})
      .Function("AddImage_fromFile", td::Class("cListImage"),
                {P("FileName", td::Str), Opt("Index", td::Var), Opt("Key", td::Str, u""),
                 Opt("Tag", td::Str, u""), Opt("iconBitDepth", td::Long, 32),
                 Opt("Scaled", td::Bool, true)})
      // A resource is named by section and identifier, each text or number.
      .Function("AddImage_fromResource", td::Class("cListImage"),
                {P("ResIndex", td::Var), P("ResSection", td::Var), P("VBglobal", td::Obj),
                 Opt("Index", td::Var), Opt("Key", td::Str, u""), Opt("Tag", td::Str, u""),
                 Opt("streamStart", td::Long, 0), Opt("streamLength", td::Long, 0),
                 Opt("iconBitDepth", td::Long, 32), Opt("Scaled", td::Bool, true)})
      .Function("AddImage_fromStdPicture", td::Class("cListImage"),
                {P("stdPic", td::Picture), Opt("Index", td::Var), Opt("Key", td::Str, u""),
                 Opt("Tag", td::Str, u""), Opt("Scaled", td::Bool, true)})
      .Function("AddImage_fromHandle", td::Class("cListImage"),
                {P("Handle", td::Long), Opt("Index", td::Var), Opt("Key", td::Str, u""),
                 Opt("Tag", td::Str, u""), Opt("Scaled", td::Bool, true)});

  // Key and tag are kept as text beside each image.
  lib.Class("cListImage", ClassKind::ObjectModel)
      .Property("Key", td::Str)
      .Property("Index", td::Long)
      .Property("Tag", td::Str)
      .ReadOnly("Width", td::Long)
      .ReadOnly("Height", td::Long);

  // oID is the identity of the asking item, tested before anything is served.
  const std::vector<ParamInfo> dataArgs = {P("DataName", kDataName), P("oID", td::Long)};
  lib.Class("IItemData", ClassKind::ObjectModel)
      .Property("ClassDataLong", td::Long, dataArgs)
      .Property("ClassDataString", td::Str, dataArgs)
      .ReadOnly("ClassDataObject", td::Obj, dataArgs);
}

void AddAlphaImage(TableBuilder& lib) {
  lib.Enum("ENUM_SCALE_METHOD",
           {{"Scaled", 0}, {"Stretch", 1}, {"ScaleDown Only", 2}, {"ActualSize", 3}});
  lib.Enum(
      "ENUM_MIRROR",
      {{"Mirror None", 0}, {"Mirror Horizontal", 1}, {"Mirror Vertical", 2}, {"Mirror All", 3}});
  lib.Enum("ENUM_HITTEST_STYLE", {{"Entire Control", 0},
                                  {"Bounding Region", 1},
                                  {"Enclosed Region", 2},
                                  {"Shaped Region", 3}});
  // The two lower corners follow the upper two, named alike.
  lib.Enum("ENUM_MASK_SOURCE", {{"No Mask", 0},
                                {"Use MaskColor", 1},
                                {"Use TopLeft", 2},
                                {"Use TopRight", 3},
                                {"Use BottomLeft", 4},
                                {"Use BottomRight", 5}});
  // One above the surface's grey formulas, in their order and with their
  // words apart; 0, which turns grey off, has no name of its own.
  lib.Enum("ENUM_GRAY_SCALES", {{"NTSC PAL", 1},
                                {"CCIR 709", 2},
                                {"Simple Avg", 3},
                                {"Red Mask", 4},
                                {"Green Mask", 5},
                                {"Blue Mask", 6},
                                {"Red Green Mask", 7},
                                {"Blue Green Mask", 8}});

  // Degrees and light may be fractional, as the surface takes them.
  lib.Class("USAlphaImage", ClassKind::Control)
      .Method("About")
      .Property("HitTest", td::Enum("ENUM_HITTEST_STYLE"))
      .Property("Rotation", td::Single)
      .Property("Opacity", td::Long)
      .Property("IntensityOffset", td::Single)
      .Property("AutoRedraw", td::Bool)
      .Property("StretchQuality", td::Bool)
      .Property("AutoSize", td::Bool)
      .Property("KeepOriginalFormat", td::Bool)
      .Property("InversedImage", td::Bool)
      .Property("ShadowEnabled", td::Bool)
      .Property("RotateEnabled", td::Bool)
      // Loading. The keep-source choice is the control's KeepOriginalFormat.
      .Function("LoadImage_FromArray", td::Bool, WithIconSizes({P("Bytes", td::Bytes)}))
      .Function("LoadImage_FromFile", td::Bool, WithIconSizes({P("FileName", td::Str)}))
      .Function("LoadImage_FromStdPicture", td::Bool, {P("stdPic", td::Picture)})
      .Function("LoadImage_FromClipboard", td::Bool)
      .Function("LoadImage_FromHandle", td::Bool, {P("Handle", td::Long)})
      .Function(
          "LoadImage_FromResource", td::Bool,
          WithIconSizes({P("VBglobal", td::Obj), P("ResSection", td::Var), P("ResID", td::Var)}))
      // Files are counted from 1 among those dropped or pasted.
      .Function("LoadImage_FromDropedFiles", td::Bool,
                WithIconSizes({P("Data", td::Obj), P("FileIndex", td::Long)}, 32))
      .Function("LoadImage_FromPastedFiles", td::Bool,
                WithIconSizes({P("FileIndex", td::Long)}, 32))
      .Function("LoadImage_FromOrignalBytes", td::Bool, WithIconSizes({}))
      .Function("LoadImage_FromUSImageList", td::Bool,
                {P("objUSImageList", td::Obj), P("Index", td::Var), Opt("Key", td::Var)})
      // Saving.
      .Function("SaveToBMP", td::Bool, {P("FileName", td::Str)})
      .Function("SaveToGIF", td::Bool, {P("FileName", td::Str)})
      .Function("SaveToJPG", td::Bool, {P("FileName", td::Str), Opt("Quality", td::Long, 75)})
      .Function("SaveToPNG", td::Bool, {P("FileName", td::Str)})
      .Function("SaveToBMPStream", td::Bool, {Ref("outStream", td::Bytes)})
      .Function("SaveToGIFStream", td::Bool, {Ref("outStream", td::Bytes)})
      .Function("SaveToJPGStream", td::Bool,
                {Ref("outStream", td::Bytes), Opt("Quality", td::Long, 75)})
      .Function("SaveToPNGStream", td::Bool, {Ref("outStream", td::Bytes)})
      .Function("SaveRederedToBMP", td::Bool,
                {P("FileName", td::Str), P("LightAdjustment", td::Single)})
      .Function("SaveRederedToGIF", td::Bool,
                {P("FileName", td::Str), P("LightAdjustment", td::Single)})
      .Function(
          "SaveRederedToJPG", td::Bool,
          {P("FileName", td::Str), P("LightAdjustment", td::Single), Opt("Quality", td::Long, 75)})
      .Function("SaveRederedToPNG", td::Bool,
                {P("FileName", td::Str), P("LightAdjustment", td::Single)})
      // The rest of its face.
      .Method("ClearImage")
      .Method("Refresh")
      .ReadOnly("imageWidth", td::Long)
      .ReadOnly("imageHeight", td::Long)
      .Function(
          "TrimImage", td::Bool,
          {P("UpdateImage", td::Bool), P("TrimOptions", td::Enum("ENUM_TRIM_OPTIONS")),
           Ref("X", td::Long), Ref("Y", td::Long), Ref("Width", td::Long), Ref("Height", td::Long)})
      .Function("Render", td::Bool, WithRenderArgs({}))
      .Function("GetImageBytes", td::Bool, {Ref("outBytes", td::Bytes)})
      .Function("SetImageBytes", td::Bool, {P("inBytes", td::Bytes)})
      // Width and Height come back as the size the method gives.
      .Method("GetImageScales",
              {Ref("Width", td::Long), Ref("Height", td::Long),
               P("ScaleMethod", td::Enum("ENUM_SCALE_METHOD")), P("desiredWidth", td::Long),
               P("desiredHeight", td::Long), P("asRotatedImage", td::Bool)})
      .ReadOnly("ImageType", td::Enum("ENUM_IMAGE_FORMAT"))
      .Function("ResizeImage", td::Bool, {P("Height", td::Long), P("Width", td::Long)})
      .Method("FadeInOut", {P("FinalOpacity", td::Long), Opt("FadeStepPercent", td::Long, 10),
                            Opt("FadeDelayInterval", td::Long, 30)})
      .Method("OffsetShadow", {P("X", td::Long), P("Y", td::Long)})
      // Without SetOffsets the offsets are read back into X and Y.
      .Method("OffsetImage", {P("SetOffsets", td::Bool), Ref("X", td::Long), Ref("Y", td::Long)})
      .ReadOnly("isMouseOver", td::Bool)
      .ReadOnly("GDIplusInitialized", td::Bool)
      .Property("GDIplusEnabled", td::Bool)
      .Function("GetStream", td::Bool, {Ref("outStream", td::Bytes)})
      .Function("SetStream", td::Bool,
                {P("inStream", td::Bytes), Ref("cX", td::Long), Ref("cY", td::Long)})
      // The surface is not one of the library's creatable classes.
      .ReadOnly("dibClass", td::Obj)
      .ReadOnly("hwnd", td::Long)
      .Property("Mirror", td::Enum("ENUM_MIRROR"))
      .Property("GrayScale", td::Enum("ENUM_GRAY_SCALES"))
      .Property("MaskUsed", td::Bool)
      .Property("MaskColor", td::Color)
      .Property("ShadowDepth", td::Long)
      .Property("ShadowColor", td::Color)
      .Property("ShadowOpacity", td::Long)
      // What every control of the frame carries.
      .Property("Enabled", td::Bool)
      .Property("MouseIcon", td::Picture)
      .Property("MousePointer", kMousePointer)
      .Event("MouseExit")
      .Event("MouseEnter")
      .Event("MouseUp", MouseArgs())
      .Event("MouseMove", MouseArgs())
      .Event("MouseDown", MouseArgs())
      .Event("KeyDown", KeyArgs())
      .Event("KeyPress", {Ref("KeyAscii", td::Int)})
      .Event("KeyUp", KeyArgs())
      .Event("OLEDragDrop", DragArgs())
      .Event("OLEDragOver", DragArgs(true))
      .Event("FadeTerminated", {P("CurrentOpacity", td::Long)});
}

void AddAnimatedImage(TableBuilder& lib) {
  lib.Enum("ENUM_ANIMATION_ACTIONS", {{"Animation Stop", 0},
                                      {"Animation Play", 1},
                                      {"Animation Pause", 2},
                                      {"Animation Forward", 3},
                                      {"Animation Reset", 4}});
  lib.Enum("ENUM_SCALE_GIF_CONSTANTS", {{"Clip", 0},
                                        {"Scale Always", 1},
                                        {"Scale Stretch", 2},
                                        {"Scale Shrink Scale To Fit", 3},
                                        {"Scale Preserve ActualSize", 4}});
  lib.Enum("ENUM_MIRROR_CONSTANTS", {{"None Mirror", 0},
                                     {"Horizontal Mirror", 1},
                                     {"Vertical Mirror", 2},
                                     {"Horizontal And Vertical Mirror", 3}});
  lib.Enum("ENUM_DELAY_MODE_CONSTANTS",
           {{"Delay None", 0}, {"Delay Startup", 1}, {"Dont Animate", 2}});
  lib.Enum("ENUM_GIF_BACKSTYLE", {{"Transparent Gif", 0}, {"Solid Gif", 1}});

  // What the control reports to the host on a change can be set; what it
  // only learns from the file or the running animation is read-only.
  lib.Class("USAnimatedImage", ClassKind::Control)
      .Method("About")
      .Property("AnimatedGIF", td::Picture)
      .ReadOnly("CurrentFrame", td::Long)
      .Property("AutoSize", td::Bool)
      .Property("Enabled", td::Bool)
      .ReadOnly("FrameCount", td::Long)
      .ReadOnly("ActualWidth", td::Long)
      .ReadOnly("ActualHeight", td::Long)
      .Property("Stretch", td::Enum("ENUM_SCALE_GIF_CONSTANTS"))
      .Property("MinFrameDelay", td::Int)
      // The loop count is a 16-bit word in the file, and so is its counter.
      .Property("Loops", td::Int)
      .ReadOnly("LoopsRemaining", td::Int)
      .Property("Mirrored", td::Enum("ENUM_MIRROR_CONSTANTS"))
      .Property("Action", td::Enum("ENUM_ANIMATION_ACTIONS"))
      .Property("DelayAnimation", td::Enum("ENUM_DELAY_MODE_CONSTANTS"))
      .Property("OffsetX", td::Long)
      .Property("OffsetY", td::Long)
      .Property("BackColor", td::Color)
      .Property("BackStyle", td::Enum("ENUM_GIF_BACKSTYLE"))
      .Property("SteppedDelay", td::Long)
      .ReadOnly("hwnd", td::Long)
      .Property("MouseIcon", td::Picture)
      .Property("MousePointer", kMousePointer)
      .Function("LoadAnimatedGIF_File", td::Bool, {P("FileName", td::Str)})
      // Returns at once; the outcome comes as an event.
      .Method("LoadAnimatedGIF_Remote", {P("RemotePath", td::Str)})
      .Function("LoadAnimatedGIF_Array", td::Bool, {P("Bytes", td::Bytes)})
      // A frame's colour table as 32-bit entries.
      .Function("GetPalette", td::Bool,
                {P("FrameIndex", td::Long), Ref("paletteEntries", td::ArrayOf(td::Long))})
      .Function("SetPalette", td::Bool,
                {P("FrameIndex", td::Long), P("paletteEntries", td::ArrayOf(td::Long))})
      .Method("Refresh")
      .Method("CacheColorTables")
      .Method("RestoreColorTables", {P("bReleaseCache", td::Bool)})
      .Event("Click")
      .Event("MouseDown", MouseArgs())
      .Event("MouseUp", MouseArgs())
      .Event("MouseMove", MouseArgs())
      .Event("LoopsEnded")
      .Event("FrameChanged", {P("FrameIndex", td::Long), P("viaTimer", td::Bool)})
      // The host cancels by setting Cancel.
      .Event("RemoteLoadComplete",
             {P("gifWidth", td::Long), P("gifHeight", td::Long), Ref("Cancel", td::Bool)})
      .Event("RemoteLoadFailure");
}

void AddPictureLCD(TableBuilder& lib) {
  // Its two pictures are numbered 1 and 2, as ActivePicture numbers them.
  lib.Class("USPictureLCD", ClassKind::Control)
      .Method("About")
      .Property("Theme", td::Enum("ENUM_THEME"))
      .Property("ShowButtonLine", td::Bool)
      .Property("ButtonLineColor", td::Color)
      .Property("GradientColor1", td::Color)
      .Property("GradientColor2", td::Color)
      .Property("CaptionDescription", td::Str)
      .Property("CaptionTitle", td::Str)
      .Property("ForeColorDescription", td::Color)
      .Property("DescriptionLeft", td::Int)
      .Property("DescriptionTop", td::Int)
      .Property("FontDescription", td::Font)
      .Property("FontTitle", td::Font)
      .Property("PictureLeft", td::Long)
      .Property("PictureTop", td::Long)
      .Property("ForeColorTitle", td::Color)
      .Property("TitleLeft", td::Int)
      .Property("TitleTop", td::Int)
      .Property("ActivePicture", td::Int)
      .Property("Picture32Dib", td::Bytes, {P("Index", td::Int)})
      .ReadOnly("hDC", td::Long)
      .ReadOnly("hwnd", td::Long)
      .Method("ClearPicture32Dib", {P("Index", td::Int)})
      .Method("Refresh")
      .Function("LoadImage_FromArray", td::Bool,
                WithIconSizes({P("ActivePicure", td::Int), P("Bytes", td::Bytes)}))
      .Function("LoadImage_FromFile", td::Bool,
                WithIconSizes({P("ActivePicure", td::Int), P("FileName", td::Str)}))
      .Function("LoadImage_FromResource", td::Bool,
                WithIconSizes({P("ActivePicure", td::Int), P("VBglobal", td::Obj),
                               P("ResSection", td::Var), P("ResID", td::Var)}))
      .Event("PictureChanged");
}

}  // namespace

void AddImagingTables(TableBuilder& lib) {
  AddSurfaceEnums(lib);
  AddPngWriterEnums(lib);
  AddImageLists(lib);
  AddAlphaImage(lib);
  AddAnimatedImage(lib);
  AddPictureLCD(lib);
}

}  // namespace vantor::server
