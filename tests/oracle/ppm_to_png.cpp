// Turns the binary PPMs that the scenes program writes under Wine into the
// PNG goldens, through the library's own encoder (the tests read them back
// with an independent reader, and the encoder is checked against libpng).
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "platform/PngFile.h"

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: ppm_to_png <in.ppm> <out.png>\n");
    return 2;
  }
  std::ifstream in(argv[1], std::ios::binary);
  std::string magic;
  int width = 0, height = 0, maxval = 0;
  in >> magic >> width >> height >> maxval;
  in.get();  // the one blank after the header
  if (!in || magic != "P6" || maxval != 255 || width <= 0 || height <= 0) {
    std::fprintf(stderr, "%s: not a binary 8-bit PPM\n", argv[1]);
    return 1;
  }
  std::vector<unsigned char> rgb(static_cast<size_t>(width) * height * 3);
  if (!in.read(reinterpret_cast<char*>(rgb.data()), static_cast<std::streamsize>(rgb.size()))) {
    std::fprintf(stderr, "%s: short file\n", argv[1]);
    return 1;
  }
  std::vector<uint32_t> pixels(static_cast<size_t>(width) * height);
  for (size_t i = 0; i < pixels.size(); ++i) {
    pixels[i] =
        0xFF000000u | uint32_t{rgb[i * 3]} << 16 | uint32_t{rgb[i * 3 + 1]} << 8 | rgb[i * 3 + 2];
  }
  vantor::platform::Surface surface{pixels.data(), width, height, width};
  if (!vantor::platform::PngFile::Save(surface, argv[2])) {
    std::fprintf(stderr, "%s: cannot write\n", argv[2]);
    return 1;
  }
  return 0;
}
