#pragma once
// Icon and cursor files: the directory of entries, the choice of the entry
// that best suits a wanted size and depth, and its decoding (a DIB with its
// AND mask, or a PNG).
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "imaging/Pixels.h"
#include "platform/WinTypes.h"

namespace vantor::imaging {

// One record of the file's directory, as the file gives it.
struct IconDirEntry {
  uint8_t width = 0;       // 0 means 256
  uint8_t height = 0;      // 0 means 256
  uint8_t colorCount = 0;  // 0 means 256 or more
  uint8_t reserved = 0;
  uint16_t planes = 0;    // a cursor's hot spot x
  uint16_t bitCount = 0;  // a cursor's hot spot y
  uint32_t bytesInRes = 0;
  uint32_t imageOffset = 0;  // from the file's start
};

class cICOparser {
 public:
  // Reads the directory, chooses the entry for the wanted size and depth
  // (0: the largest, 32 bits) and decodes it. On failure returns false with
  // `out` empty. The directory stays readable after a load.
  bool LoadStream(std::span<const uint8_t> bytes, Pixels& out, size_t start = 0, size_t length = 0,
                  int32_t wantedWidth = 0, int32_t wantedHeight = 0, int32_t wantedDepth = 0);

  // Only the directory, checked and corrected from each entry's own header;
  // false for a file that is no icon or cursor.
  bool ReadDirectory(std::span<const uint8_t> bytes, size_t start = 0, size_t length = 0);

  // The colour and mask bitmaps an icon handle is made of: a 32-bit colour
  // bitmap with alpha keeps it; otherwise the mask's white pixels are clear.
  // Without a colour bitmap the mask is twice the height: AND above, XOR
  // below, as a monochrome cursor has it.
  bool ConvertstdPicTo32bpp(HBITMAP colorBitmap, HBITMAP maskBitmap, Pixels& out,
                            bool cursor = false);

  // The directory, entries counted from 0; sizes and depths as the entries'
  // own headers give them.
  int32_t IconCount() const { return static_cast<int32_t>(entries_.size()); }
  int32_t IconType() const { return type_; }  // 1 icon, 2 cursor
  int32_t Width(int32_t i) const;
  int32_t Height(int32_t i) const;
  int32_t bitDepth(int32_t i) const;
  int32_t ColorCount(int32_t i) const;  // 0 for more than 256
  int32_t ColorByteOffset(int32_t i) const;
  bool IsIconPNG(int32_t i) const;
  const IconDirEntry& Entry(int32_t i) const { return directory_[static_cast<size_t>(i)]; }
  // The entry the last LoadStream chose; -1 before one.
  int32_t ChosenEntry() const { return chosen_; }

  struct Candidate {
    int32_t width, height, depth;
  };
  // The choice rule on its own: the exact match, else the closest larger
  // entry, else the closest smaller one in size and 32-bit terms.
  static int32_t ChooseEntry(const std::vector<Candidate>& entries, int32_t width, int32_t height,
                             int32_t depth);

 private:
  struct Resolved {
    int32_t width = 0, height = 0, depth = 0, colours = 0;
    bool png = false;
  };
  bool Parse(std::span<const uint8_t> d);
  bool DecodeDib(std::span<const uint8_t> entry, Pixels& out) const;

  std::vector<IconDirEntry> directory_;
  std::vector<Resolved> entries_;
  int32_t type_ = 0;
  int32_t chosen_ = -1;
};

}  // namespace vantor::imaging
