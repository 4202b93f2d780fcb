#pragma once
// `vantor gallery OUTDIR`: every control built so far, in every theme and
// state, drawn on the headless screen and saved as PNG pictures, with an
// index.html that shows them side by side under their names. It is how a
// person looks the library over without a desktop, and what a change to a
// control's painting is checked against by eye.
#include <ostream>
#include <span>
#include <string>

namespace vantor::tools {

// `args` are the words after "gallery": the folder, made when missing. 0
// done; 1 a picture or the page could not be written; 2 a malformed command.
// Progress goes to `out`, one line a section.
int RunGallery(std::span<const std::string> args, std::ostream& out, std::ostream& err);

}  // namespace vantor::tools
