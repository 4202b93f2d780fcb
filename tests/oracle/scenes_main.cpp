// Runs every scene with the platform's own GDI (built with mingw-w64, run
// under Wine) and writes each picture as a binary PPM and its notes as text
// into the folder given; scripts/gdi-oracle turns the PPMs into PNG goldens.
#include <cstdio>
#include <string>

#include "tests/oracle/Scenes.h"

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: scenes <output folder> [scene]\n");
    return 2;
  }
  const std::string folder = argv[1];
  int failures = 0;
  for (const oracle::Scene& scene : oracle::Scenes()) {
    if (argc > 2 && scene.name != std::string(argv[2])) continue;
    std::vector<uint32_t> pixels;
    std::string notes;
    if (!oracle::Render(scene, pixels, notes)) {
      std::fprintf(stderr, "%s: cannot render\n", scene.name);
      ++failures;
      continue;
    }
    FILE* ppm = std::fopen((folder + "/" + scene.name + ".ppm").c_str(), "wb");
    if (ppm == nullptr) return 1;
    std::fprintf(ppm, "P6\n%d %d\n255\n", scene.width, scene.height);
    for (uint32_t px : pixels) {
      const unsigned char rgb[3] = {static_cast<unsigned char>(px >> 16),
                                    static_cast<unsigned char>(px >> 8),
                                    static_cast<unsigned char>(px)};
      std::fwrite(rgb, 1, 3, ppm);
    }
    std::fclose(ppm);
    FILE* txt = std::fopen((folder + "/" + scene.name + ".txt").c_str(), "wb");
    if (txt == nullptr) return 1;
    std::fwrite(notes.data(), 1, notes.size(), txt);
    std::fclose(txt);
    std::printf("%s\n", scene.name);
  }
  return failures == 0 ? 0 : 1;
}
