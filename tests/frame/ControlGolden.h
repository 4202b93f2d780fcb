#pragma once
// Pixel comparison of a control's window with its golden picture under
// tests/golden/controls/. With VANTOR_UPDATE_GOLDENS=1 in the environment the
// picture is written instead (scripts/update-goldens); a changed golden is
// looked at before it is committed. A mismatch writes what was drawn beside
// the build, as <name>.actual.png, so the difference can be seen.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "platform/PngFile.h"
#include "platform/Surface.h"
#include "tests/platform/GoldenPng.h"

namespace vantor::test {

inline std::string SourceRoot() {
  if (const char* env = std::getenv("VANTOR_SOURCE_DIR")) return env;
  // tests/frame/ControlGolden.h -> the repository.
  return std::filesystem::absolute(__FILE__).parent_path().parent_path().parent_path().string();
}

inline bool UpdatingGoldens() {
  const char* env = std::getenv("VANTOR_UPDATE_GOLDENS");
  return env != nullptr && std::string(env) == "1";
}

// Opaque RGB comparison: GDI leaves the alpha byte meaningless.
inline ::testing::AssertionResult MatchesGolden(const platform::Surface& drawn,
                                                const std::string& name) {
  const std::string path = SourceRoot() + "/tests/golden/controls/" + name + ".png";
  if (drawn.Empty()) return ::testing::AssertionFailure() << name << ": nothing was drawn";
  if (UpdatingGoldens()) {
    if (!platform::PngFile::Save(drawn, path)) {
      return ::testing::AssertionFailure() << "cannot write " << path;
    }
    return ::testing::AssertionSuccess();
  }
  const GoldenImage golden = ReadPng(path);
  auto keepActual = [&] {
    platform::PngFile::Save(drawn, std::filesystem::current_path().string() + "/" + name +
                                       ".actual.png");
  };
  if (golden.Empty()) {
    keepActual();
    return ::testing::AssertionFailure() << "no golden " << path
                                         << " (run scripts/update-goldens)";
  }
  if (golden.width != drawn.width || golden.height != drawn.height) {
    keepActual();
    return ::testing::AssertionFailure() << name << ": size " << drawn.width << "x"
                                         << drawn.height << ", golden " << golden.width << "x"
                                         << golden.height;
  }
  int differing = 0, firstX = -1, firstY = -1;
  for (int y = 0; y < drawn.height; ++y) {
    for (int x = 0; x < drawn.width; ++x) {
      if ((drawn.At(x, y) & 0xFFFFFF) != (golden.At(x, y) & 0xFFFFFF)) {
        if (differing++ == 0) firstX = x, firstY = y;
      }
    }
  }
  if (differing == 0) return ::testing::AssertionSuccess();
  keepActual();
  return ::testing::AssertionFailure() << name << ": " << differing
                                       << " pixels differ, the first at (" << firstX << ", "
                                       << firstY << ")";
}

}  // namespace vantor::test
