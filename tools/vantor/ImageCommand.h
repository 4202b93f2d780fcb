#pragma once
// `vantor image`: what a picture file holds, and a picture written again in
// another format, both through the surface as the controls use it.
//
//   vantor image info FILE
//       Width, Height, ImageType and Alpha, the last two by their names
//   vantor image convert [--quality N] [--filter N] IN OUT
//       IN read as the surface reads any file; OUT written by its extension:
//       .png (--filter: 0 to 6, the PNG filter method), .bmp, .gif, .jpg or
//       .jpeg (--quality: 1 to 100, 75 unless given)
#include <ostream>
#include <span>
#include <string>

namespace vantor::tools {

// `args` are the words after "image". 0 done; 1 a file that cannot be read
// as a picture or cannot be written; 2 a malformed command line. Errors go to
// `err` as one line each.
int RunImage(std::span<const std::string> args, std::ostream& out, std::ostream& err);

}  // namespace vantor::tools
