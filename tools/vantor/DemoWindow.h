#pragma once
// A small window drawn with the platform layer and the run time, clicked
// through the headless presenter and saved as a picture: what `vantor
// screenshot` shows a person who wants to see the library at work.
#include <string>

namespace vantor::tools {

// Writes the picture to path; false when it cannot be written.
bool SaveDemoScreenshot(const std::string& path);

}  // namespace vantor::tools
