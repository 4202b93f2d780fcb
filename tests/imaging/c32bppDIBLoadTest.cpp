// The load dispatch and every load form, the kept source bytes, the icon
// sizes, and the save forms that hand the pixels to the writers.
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>

#include "imaging/c32bppDIB.h"
#include "imaging/cBMPparser.h"
#include "imaging/cGIFparser.h"
#include "platform/User.h"
#include "platform/UserState.h"
#include "server/StdPicture.h"

namespace vantor::imaging {
namespace {

namespace fs = std::filesystem;

uint32_t At(const c32bppDIB& s, int x, int y) {
  uint32_t p;
  std::memcpy(&p, s.View().Row(y) + x * 4, 4);
  return p;
}

// A picture in the readers' layout: pixel (x, y) top-down is f(x, y).
Pixels Picture(int w, int h, const std::function<uint32_t(int, int)>& f) {
  Pixels p;
  p.Allocate(w, h);
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) {
      const uint32_t v = f(x, y);
      std::memcpy(p.Row(y) + x * 4, &v, 4);
    }
  }
  p.alpha = p.ScanAlpha();
  return p;
}

uint32_t Colourful(int x, int y) {
  const uint32_t palette[4] = {0xFFFF0000u, 0xFF00FF00u, 0xFF0000FFu, 0xFFFFFFFFu};
  return palette[(x / 3 + y / 2) % 4];
}

std::vector<uint8_t> GifBytes(int w = 12, int h = 8) {
  std::vector<uint8_t> out;
  EXPECT_TRUE(cGIFparser().SaveAsGIF(Picture(w, h, Colourful), out));
  return out;
}

std::vector<uint8_t> BmpBytes(int w = 12, int h = 8) {
  std::vector<uint8_t> out;
  EXPECT_TRUE(cBMPparser().SaveAsBMP(Picture(w, h, Colourful), out));
  return out;
}

void PutLe(std::vector<uint8_t>& b, uint32_t v, int bytes) {
  for (int i = 0; i < bytes; ++i) b.push_back(static_cast<uint8_t>(v >> (8 * i)));
}

// An icon file of 32-bit DIB entries of the given square sizes, each a solid
// colour with a clear AND mask.
std::vector<uint8_t> IcoBytes(const std::vector<int>& sizes) {
  std::vector<uint8_t> file;
  PutLe(file, 0, 2);
  PutLe(file, 1, 2);
  PutLe(file, static_cast<uint32_t>(sizes.size()), 2);
  std::vector<std::vector<uint8_t>> images;
  for (int n : sizes) {
    std::vector<uint8_t> img;
    PutLe(img, 40, 4);
    PutLe(img, static_cast<uint32_t>(n), 4);
    PutLe(img, static_cast<uint32_t>(2 * n), 4);
    PutLe(img, 1, 2);
    PutLe(img, 32, 2);
    for (int i = 0; i < 6; ++i) PutLe(img, 0, 4);
    for (int i = 0; i < n * n; ++i) PutLe(img, 0xFF000000u | static_cast<uint32_t>(n), 4);
    const int maskRow = (n + 31) / 32 * 4;
    img.insert(img.end(), static_cast<size_t>(maskRow * n), 0);
    images.push_back(img);
  }
  uint32_t offset = 6 + 16 * static_cast<uint32_t>(sizes.size());
  for (size_t i = 0; i < sizes.size(); ++i) {
    file.push_back(static_cast<uint8_t>(sizes[i] == 256 ? 0 : sizes[i]));
    file.push_back(static_cast<uint8_t>(sizes[i] == 256 ? 0 : sizes[i]));
    file.push_back(0);
    file.push_back(0);
    PutLe(file, 1, 2);
    PutLe(file, 32, 2);
    PutLe(file, static_cast<uint32_t>(images[i].size()), 4);
    PutLe(file, offset, 4);
    offset += static_cast<uint32_t>(images[i].size());
  }
  for (const auto& img : images) file.insert(file.end(), img.begin(), img.end());
  return file;
}

class TempFolder {
 public:
  TempFolder() {
    static std::atomic<int> counter{0};
    path_ = fs::temp_directory_path() /
            ("vantor-dib-" + std::to_string(::getpid()) + "-" + std::to_string(counter++));
    fs::create_directories(path_);
  }
  ~TempFolder() {
    std::error_code e;
    fs::remove_all(path_, e);
  }
  String Write(const std::string& name, const std::vector<uint8_t>& bytes) const {
    std::ofstream f(path_ / name, std::ios::binary);
    f.write(reinterpret_cast<const char*>(bytes.data()),
            static_cast<std::streamsize>(bytes.size()));
    return Name(name);
  }
  String Name(const std::string& name) const { return FromUtf8((path_ / name).string()); }
  const fs::path& path() const { return path_; }

 private:
  fs::path path_;
};

void ExpectColourful(const c32bppDIB& s, int w = 12, int h = 8) {
  ASSERT_EQ(s.get_Width(), w);
  ASSERT_EQ(s.get_Height(), h);
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) EXPECT_EQ(At(s, x, y), Colourful(x, y)) << x << "," << y;
  }
}

// ---------------------------------------------------------------- dispatch

TEST(c32bppDIBLoad, StreamsByTheirSignature) {
  c32bppDIB s;
  ASSERT_TRUE(s.LoadPicture_Stream(GifBytes()));
  EXPECT_EQ(s.get_ImageType(), Image_GIF);
  EXPECT_EQ(s.get_Alpha(), Alpha_None);
  ExpectColourful(s);
  ASSERT_TRUE(s.LoadPicture_Stream(BmpBytes()));
  EXPECT_EQ(s.get_ImageType(), Image_Bitmap);
  ExpectColourful(s);
}

TEST(c32bppDIBLoad, AFailedLoadLeavesNothing) {
  c32bppDIB s;
  ASSERT_TRUE(s.LoadPicture_Stream(GifBytes()));
  std::vector<uint8_t> junk(100, 0x5A);
  EXPECT_FALSE(s.LoadPicture_Stream(junk));
  EXPECT_EQ(s.get_Handle(), nullptr);
  EXPECT_EQ(s.get_ImageType(), Image_Error);
  ASSERT_TRUE(s.LoadPicture_Stream(GifBytes()));
  EXPECT_FALSE(s.LoadPicture_Stream(std::vector<uint8_t>(19, 0)));  // fewer than 20 bytes
  EXPECT_EQ(s.get_Handle(), nullptr);
  // A real picture cut short.
  std::vector<uint8_t> cut = BmpBytes();
  cut.resize(30);
  EXPECT_FALSE(s.LoadPicture_Stream(cut));
}

TEST(c32bppDIBLoad, StartAndLength) {
  const std::vector<uint8_t> gif = GifBytes();
  std::vector<uint8_t> wrapped(7 + gif.size() + 13, 0xEE);
  std::memcpy(wrapped.data() + 7, gif.data(), gif.size());
  c32bppDIB s;
  ASSERT_TRUE(s.LoadPicture_Stream(wrapped, 0, 0, 0, 7, static_cast<int32_t>(gif.size()), true));
  ExpectColourful(s);
  std::vector<uint8_t> kept;
  ASSERT_TRUE(s.GetOrginalFormat(kept));
  EXPECT_EQ(kept, gif);  // the picture's own bytes, not its wrapping
  // A negative start is the array's first byte; a length past the end is cut.
  ASSERT_TRUE(s.LoadPicture_Stream(gif, 0, 0, 0, -5, 1 << 30));
  ExpectColourful(s);
  EXPECT_FALSE(s.LoadPicture_Stream(wrapped, 0, 0, 0, static_cast<int32_t>(wrapped.size()) - 19));
  EXPECT_FALSE(s.LoadPicture_Stream(wrapped, 0, 0, 0, 1 << 30));
}

TEST(c32bppDIBLoad, FilesAndTheirExtensions) {
  TempFolder folder;
  c32bppDIB s;
  // The extension only picks the first reader to try.
  for (const char* name : {"a.gif", "b.png", "c.BMP", "d", "e.ico", "f.txt.gif"}) {
    ASSERT_TRUE(s.LoadPicture_File(folder.Write(name, GifBytes()))) << name;
    EXPECT_EQ(s.get_ImageType(), Image_GIF) << name;
    ExpectColourful(s);
  }
  ASSERT_TRUE(s.LoadPicture_File(folder.Write("g.gif", BmpBytes())));
  EXPECT_EQ(s.get_ImageType(), Image_Bitmap);
  // Missing, a folder, and too small to look at.
  EXPECT_FALSE(s.LoadPicture_File(folder.Name("missing.gif")));
  EXPECT_EQ(s.get_Handle(), nullptr);
  EXPECT_FALSE(s.LoadPicture_File(FromUtf8(folder.path().string())));
  EXPECT_FALSE(s.LoadPicture_File(u""));
  // A whole picture of 56 bytes is not looked at in a file, though an array
  // of the same bytes is read; one byte more and the file is read too.
  std::vector<uint8_t> bytes = GifBytes(2, 2);
  ASSERT_LE(bytes.size(), 56u);
  bytes.resize(56, 0);
  EXPECT_FALSE(s.LoadPicture_File(folder.Write("h.gif", bytes)));
  EXPECT_TRUE(s.LoadPicture_Stream(bytes));
  bytes.resize(57, 0);
  EXPECT_TRUE(s.LoadPicture_File(folder.Write("i.gif", bytes)));
  EXPECT_EQ(s.get_Width(), 2);
}

TEST(c32bppDIBLoad, KeptSourceBytes) {
  TempFolder folder;
  const std::vector<uint8_t> gif = GifBytes();
  const String name = folder.Write("kept.gif", gif);
  c32bppDIB s;
  std::vector<uint8_t> out{1, 2};
  ASSERT_TRUE(s.LoadPicture_File(name));
  EXPECT_FALSE(s.GetOrginalFormat(out));
  EXPECT_TRUE(out.empty());
  EXPECT_FALSE(s.LoadPicture_FromOrignalFormat());
  ASSERT_TRUE(s.LoadPicture_File(name, 0, 0, 0, true));
  ASSERT_TRUE(s.GetOrginalFormat(out));
  EXPECT_EQ(out, gif);
  // Changing the pixels does not touch the source; reloading restores them.
  s.MakeImageInverse();
  ASSERT_TRUE(s.LoadPicture_FromOrignalFormat());
  ExpectColourful(s);
  ASSERT_TRUE(s.GetOrginalFormat(out));
  EXPECT_EQ(out, gif);
  // A copy takes the bytes along only when asked.
  c32bppDIB plain, withSource;
  ASSERT_TRUE(s.CopyImageTo(plain));
  ASSERT_TRUE(s.CopyImageTo(withSource, 0, 0, true));
  EXPECT_FALSE(plain.GetOrginalFormat(out));
  ASSERT_TRUE(withSource.GetOrginalFormat(out));
  EXPECT_EQ(out, gif);
  s.DestroyDIB();
  EXPECT_FALSE(s.GetOrginalFormat(out));
}

TEST(c32bppDIBLoad, IconsBySizeAndTheirSizeTable) {
  const std::vector<uint8_t> ico = IcoBytes({16, 32, 48});
  c32bppDIB s;
  ASSERT_TRUE(s.LoadPicture_Stream(ico, 32, 32, 32));
  EXPECT_EQ(s.get_Width(), 32);
  EXPECT_EQ(At(s, 5, 5), 0xFF000020u);
  ASSERT_TRUE(s.LoadPicture_Stream(ico, 16, 16, 32, 0, 0, true));
  EXPECT_EQ(s.get_Width(), 16);
  std::vector<IconSize> sizes;
  ASSERT_EQ(s.SourceIconSizes(sizes), 3);
  EXPECT_EQ(sizes[1].width, 32);
  EXPECT_EQ(sizes[1].height, 32);
  EXPECT_EQ(sizes[1].bitDepth, 32);
  // Reloaded from the kept bytes at another size.
  ASSERT_TRUE(s.LoadPicture_FromOrignalFormat(48, 48, 32));
  EXPECT_EQ(s.get_Width(), 48);
  // Negative wishes count as none, which takes the largest.
  ASSERT_TRUE(s.LoadPicture_Stream(ico, -5, -5, 99));
  EXPECT_EQ(s.get_Width(), 48);
  EXPECT_EQ(s.SourceIconSizes(sizes), 0);  // nothing kept
  EXPECT_TRUE(sizes.empty());
  ASSERT_TRUE(s.LoadPicture_Stream(GifBytes(), 0, 0, 0, 0, 0, true));
  EXPECT_EQ(s.SourceIconSizes(sizes), 0);  // not an icon
}

// ---------------------------------------------------------------- other sources

TEST(c32bppDIBLoad, PictureObjects) {
  // A bitmap whose alpha is all 0 is opaque.
  std::vector<uint32_t> px = {0x00112233u, 0x00445566u, 0x00778899u, 0x00AABBCCu};
  auto bitmap = server::StdPicture::FromPixels(2, 2, px);
  ASSERT_TRUE(bitmap);
  c32bppDIB s;
  ASSERT_TRUE(s.LoadPicture_StdPicture(bitmap));
  EXPECT_EQ(s.get_Alpha(), Alpha_None);
  EXPECT_EQ(At(s, 0, 0), 0xFF112233u);
  EXPECT_EQ(At(s, 1, 1), 0xFFAABBCCu);
  // An icon's alpha is its mask.
  std::vector<uint32_t> icon = {0xFF102030u, 0x00FFFFFFu, 0xFF405060u, 0xFF708090u};
  auto iconPicture = server::StdPicture::FromPixels(2, 2, icon, server::PictureType::Icon);
  ASSERT_TRUE(s.LoadPicture_StdPicture(iconPicture));
  EXPECT_EQ(At(s, 0, 0), 0xFF102030u);
  EXPECT_EQ(At(s, 1, 0) >> 24, 0u);
  EXPECT_NE(s.get_Alpha(), Alpha_None);
  EXPECT_FALSE(s.LoadPicture_StdPicture(std::make_shared<server::StdPicture>()));
  EXPECT_EQ(s.get_Handle(), nullptr);
  EXPECT_FALSE(s.LoadPicture_StdPicture(nullptr));
}

TEST(c32bppDIBLoad, Handles) {
  c32bppDIB source;
  ASSERT_TRUE(
      source.SetDIBbits(std::vector<uint8_t>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}, 2, 2, false));
  c32bppDIB s;
  ASSERT_TRUE(s.LoadPicture_ByHandle(source.get_Handle()));
  EXPECT_EQ(s.get_Width(), 2);
  EXPECT_EQ(At(s, 0, 0), At(source, 0, 0));
  HRGN region = CreateRectRgn(0, 0, 2, 2);
  EXPECT_FALSE(s.LoadPicture_ByHandle(region));  // neither bitmap nor icon
  EXPECT_EQ(s.get_Handle(), nullptr);
  DeleteObject(region);
  EXPECT_FALSE(s.LoadPicture_ByHandle(nullptr));
}

TEST(c32bppDIBLoad, TheClipboardsBitmap) {
  platform::ResetClipboard();
  c32bppDIB s;
  EXPECT_FALSE(s.LoadPicture_ClipBoard());
  // A packed DIB: the bitmap file without its 14-byte file header.
  const std::vector<uint8_t> bmp = BmpBytes();
  HGLOBAL h = GlobalAlloc(GMEM_MOVEABLE, bmp.size() - 14);
  std::memcpy(GlobalLock(h), bmp.data() + 14, bmp.size() - 14);
  GlobalUnlock(h);
  ASSERT_TRUE(OpenClipboard(nullptr));
  EmptyClipboard();
  ASSERT_NE(SetClipboardData(CF_DIB, h), nullptr);
  CloseClipboard();
  ASSERT_TRUE(s.LoadPicture_ClipBoard());
  ExpectColourful(s);
  // The clipboard is closed again.
  ASSERT_TRUE(OpenClipboard(nullptr));
  CloseClipboard();
  platform::ResetClipboard();
}

TEST(c32bppDIBLoad, PastedFiles) {
  platform::ResetClipboard();
  TempFolder folder;
  const String first = folder.Write("um.gif", GifBytes(40, 4));
  const String second = folder.Write("dois.bmp", BmpBytes());
  c32bppDIB s;
  EXPECT_FALSE(s.LoadPicture_PastedFiles(1));
  // DROPFILES: offset of the names, a point, two flags, then wide names.
  std::vector<uint8_t> block;
  PutLe(block, 20, 4);
  PutLe(block, 0, 4);
  PutLe(block, 0, 4);
  PutLe(block, 0, 4);
  PutLe(block, 1, 4);
  for (const String& name : {first, second}) {
    for (char16_t c : name) PutLe(block, c, 2);
    PutLe(block, 0, 2);
  }
  PutLe(block, 0, 2);
  HGLOBAL h = GlobalAlloc(GMEM_MOVEABLE, block.size());
  std::memcpy(GlobalLock(h), block.data(), block.size());
  GlobalUnlock(h);
  ASSERT_TRUE(OpenClipboard(nullptr));
  EmptyClipboard();
  ASSERT_NE(SetClipboardData(15, h), nullptr);
  CloseClipboard();
  ASSERT_TRUE(s.LoadPicture_PastedFiles(2));
  ExpectColourful(s);
  ASSERT_TRUE(s.LoadPicture_PastedFiles(1, 32, 32, 32, true));
  EXPECT_EQ(s.get_Width(), 40);
  EXPECT_EQ(s.get_ImageType(), Image_GIF);
  EXPECT_FALSE(s.LoadPicture_PastedFiles(3));
  EXPECT_FALSE(s.LoadPicture_PastedFiles(0));
  platform::ResetClipboard();
}

TEST(c32bppDIBLoad, SourcesThisSystemHasNot) {
  c32bppDIB s;
  ASSERT_TRUE(s.LoadPicture_Stream(GifBytes()));
  EXPECT_FALSE(s.LoadPicture_Resource(Variant(int32_t{101}), Variant(String(u"PNG")), nullptr));
  EXPECT_EQ(s.get_Handle(), nullptr);
  ASSERT_TRUE(s.LoadPicture_Stream(GifBytes()));
  EXPECT_FALSE(s.LoadPicture_DropedFiles(nullptr, 1));
  EXPECT_EQ(s.get_Handle(), nullptr);
}

// ---------------------------------------------------------------- saving

TEST(c32bppDIBSave, BitmapAndGifGoThroughTheirWriters) {
  c32bppDIB s;
  ASSERT_TRUE(s.LoadPicture_Stream(GifBytes()));
  std::vector<uint8_t> bmp, gif;
  ASSERT_TRUE(s.SaveToStream_Bitmap(bmp));
  ASSERT_TRUE(s.SaveToStream_GIF(gif));
  c32bppDIB back;
  ASSERT_TRUE(back.LoadPicture_Stream(bmp));
  ExpectColourful(back);
  ASSERT_TRUE(back.LoadPicture_Stream(gif));
  ExpectColourful(back);
  c32bppDIB empty;
  EXPECT_FALSE(empty.SaveToStream_Bitmap(bmp));
  EXPECT_TRUE(bmp.empty());
  EXPECT_FALSE(empty.SaveToStream_GIF(gif));
}

TEST(c32bppDIBSave, FileChecks) {
  TempFolder folder;
  c32bppDIB s;
  ASSERT_TRUE(s.LoadPicture_Stream(GifBytes()));
  ASSERT_TRUE(s.SaveToFile_Bitmap(folder.Name("out.bmp")));
  ASSERT_TRUE(s.SaveToFile_GIF(folder.Name("out.gif")));
  c32bppDIB back;
  ASSERT_TRUE(back.LoadPicture_File(folder.Name("out.bmp")));
  ExpectColourful(back);
  ASSERT_TRUE(back.LoadPicture_File(folder.Name("out.gif")));
  ExpectColourful(back);
  EXPECT_FALSE(s.SaveToFile_Bitmap(u""));
  EXPECT_FALSE(s.SaveToFile_Bitmap(folder.Name("no/such/folder.bmp")));
  EXPECT_FALSE(s.SaveToFile_Bitmap(FromUtf8(folder.path().string())));  // a folder
  c32bppDIB empty;
  EXPECT_FALSE(empty.SaveToFile_Bitmap(folder.Name("empty.bmp")));
  EXPECT_FALSE(fs::exists(folder.path() / "empty.bmp"));
}

TEST(c32bppDIBSave, PngThroughTheWriterAndBack) {
  c32bppDIB s;
  ASSERT_TRUE(s.LoadPicture_Stream(GifBytes()));
  ASSERT_TRUE(s.SetPixel(0, 0, RGB(10, 20, 30), 100));  // and some alpha
  std::vector<uint8_t> png;
  ASSERT_TRUE(s.SaveToStream_PNG(png));
  ASSERT_GT(png.size(), 8u);
  EXPECT_EQ(png[1], 'P');
  c32bppDIB back;
  ASSERT_TRUE(back.LoadPicture_Stream(png, 0, 0, 0, 0, 0, true));
  EXPECT_EQ(back.get_ImageType(), Image_PNG);
  EXPECT_EQ(back.get_Alpha(), Alpha_Complex);
  for (int y = 0; y < 8; ++y) {
    for (int x = 0; x < 12; ++x) {
      if (x == 0 && y == 0) continue;
      EXPECT_EQ(At(back, x, y), Colourful(x, y)) << x << "," << y;
    }
  }
  EXPECT_EQ(At(back, 0, 0) >> 24, 100u);
  // Where zlib is missing our own inflater reads it, but nothing writes it.
  c32bppDIB::SetZlibAbsentForTesting(true);
  EXPECT_FALSE(c32bppDIB::isZlibEnabled());
  ASSERT_TRUE(back.LoadPicture_Stream(png));
  EXPECT_EQ(back.get_Width(), 12);
  std::vector<uint8_t> again;
  EXPECT_FALSE(back.SaveToStream_PNG(again));
  EXPECT_TRUE(again.empty());
  c32bppDIB::SetZlibAbsentForTesting(false);
  EXPECT_TRUE(c32bppDIB::isZlibEnabled());
  TempFolder folder;
  ASSERT_TRUE(back.SaveToFile_PNG(folder.Name("out.png")));
  c32bppDIB fromFile;
  ASSERT_TRUE(fromFile.LoadPicture_File(folder.Name("out.png")));
  EXPECT_EQ(fromFile.get_ImageType(), Image_PNG);
  EXPECT_EQ(fromFile.get_Width(), 12);
}

TEST(c32bppDIBSave, PngPropertiesAreTheWritersOwn) {
  c32bppDIB s;
  // Unset: the empty value of each kind.
  EXPECT_EQ(s.PngPropertyGet(Png_DefaultBkgColor).ToLong(), -1);
  EXPECT_EQ(s.PngPropertyGet(Png_DateTimeModified).TypeName(), u"Date");
  EXPECT_EQ(s.PngPropertyGet(Png_Title).TypeName(), u"String");
  EXPECT_EQ(s.PngPropertyGet(Png_Miscellaneous, u"Mine").ToString(), u"");
  EXPECT_FALSE(s.PngPropertySet(3, Variant(String(u"x"))));  // not a property
  ASSERT_TRUE(s.PngPropertySet(Png_Title, Variant(String(u"Relatório"))));
  ASSERT_TRUE(s.PngPropertySet(Png_Miscellaneous, Variant(String(u"valor")), u"Chave"));
  EXPECT_EQ(s.PngPropertyGet(Png_Title).ToString(), u"Relatório");
  EXPECT_EQ(s.PngPropertyGet(Png_Miscellaneous, u"Chave").ToString(), u"valor");
  // They go out with the picture.
  ASSERT_TRUE(s.LoadPicture_Stream(GifBytes()));
  EXPECT_EQ(s.PngPropertyGet(Png_Title).ToString(), u"Relatório");  // a load keeps them
  std::vector<uint8_t> png;
  ASSERT_TRUE(s.SaveToStream_PNG(png));
  const std::string text(png.begin(), png.end());
  EXPECT_NE(text.find("tEXtTitle"), std::string::npos);
  EXPECT_NE(text.find("Chave"), std::string::npos);
  ASSERT_TRUE(s.PngPropertySet(-1));
  EXPECT_EQ(s.PngPropertyGet(Png_Title).ToString(), u"");
  ASSERT_TRUE(s.SaveToStream_PNG(png));
  EXPECT_EQ(std::string(png.begin(), png.end()).find("tEXt"), std::string::npos);
}

TEST(c32bppDIBSave, JpegGoesThroughItsWriter) {
  c32bppDIB s;
  ASSERT_TRUE(s.LoadPicture_Stream(GifBytes()));
  std::vector<uint8_t> jpg{1};
  ASSERT_TRUE(s.SaveToStream_JPG(jpg));
  ASSERT_GT(jpg.size(), 4u);
  EXPECT_EQ(jpg[0], 0xFF);
  EXPECT_EQ(jpg[1], 0xD8);
  EXPECT_EQ(jpg[jpg.size() - 2], 0xFF);
  EXPECT_EQ(jpg.back(), 0xD9);
}

TEST(c32bppDIBSave, Zlib) {
  EXPECT_TRUE(c32bppDIB::isZlibEnabled());
  c32bppDIB::SetZlibAbsentForTesting(true);
  EXPECT_FALSE(c32bppDIB::isZlibEnabled());
  c32bppDIB::SetZlibAbsentForTesting(false);
  EXPECT_TRUE(c32bppDIB::isZlibEnabled());
}

}  // namespace
}  // namespace vantor::imaging
