#pragma once
// zlib for hosts: byte arrays, strings and files compressed in place, each
// call answering with zlib's own result code. A compressed file is the
// original size as a little-endian 32-bit integer followed by the zlib stream,
// so that the reader knows how large a buffer to give uncompress.
//
// zlib is linked in on this system, yet the class keeps the contract it has
// where zlib is a library found at run time: when it is missing, every member
// answers an error and leaves the caller's data as it was. ForceLibraryAbsent
// lets the tests walk that road.
#include <cstdint>
#include <vector>

#include "runtime/String.h"
#include "server/Dispatch.h"

namespace vantor::services {

enum COMPRESSION_LEVEL : int32_t {
  NO_COMPRESSION = 0,
  BEST_SPEED = 1,
  BEST_COMPRESSION = 9,
  DEFAULT_COMPRESSION = -1,
};

enum ZLIB_ERROR : int32_t {
  ZLIB_OK = 0,
  ZLIB_STREAM_END = 1,
  ZLIB_NEED_DICT = 2,
  ZLIB_ERRNO = -1,
  ZLIB_STREAM_ERROR = -2,
  ZLIB_DATA_ERROR = -3,
  ZLIB_MEM_ERROR = -4,
  ZLIB_BUF_ERROR = -5,
  ZLIB_VERSION_ERROR = -6,
};

class VT_ZLIB : public server::Dispatch {
 public:
  VT_ZLIB();
  static void Register();

  // Whether zlib can be called; false while a test forces it absent.
  static bool LibraryPresent();
  static void ForceLibraryAbsent(bool absent);

  ZLIB_ERROR CompressByteArray(std::vector<uint8_t>& TheData,
                               COMPRESSION_LEVEL CompressionLevel = DEFAULT_COMPRESSION);
  // Works on the text's ANSI bytes; the compressed bytes come back one
  // character a byte, as the platform's byte-to-text conversion gives them.
  ZLIB_ERROR CompressString(String& TheString,
                            COMPRESSION_LEVEL CompressionLevel = DEFAULT_COMPRESSION);
  ZLIB_ERROR CompressFile(const String& FilePathIN, const String& FilePathOUT,
                          COMPRESSION_LEVEL CompressionLevel = DEFAULT_COMPRESSION);
  ZLIB_ERROR DecompressByteArray(std::vector<uint8_t>& TheData, int32_t TheOriginalSize);
  ZLIB_ERROR DecompressString(String& TheString, int32_t TheOriginalSize);
  ZLIB_ERROR DecompressFile(const String& FilePathIN, const String& FilePathOUT);

  int32_t get_CompressedSize() const { return compressedSize_; }
  int32_t get_OriginalSize() const { return originalSize_; }

 protected:
  const server::Bindings* Bound() const override;

 private:
  int32_t compressedSize_ = 0;
  int32_t originalSize_ = 0;
};

}  // namespace vantor::services
