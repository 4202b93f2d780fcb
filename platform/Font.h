#pragma once
// A logical font (HFONT): the LOGFONTW it was made from and, on first use, the
// face and size it stands for. Forms name Windows faces; each is mapped to the
// metric-compatible Liberation family (sans for "MS Sans Serif", "Tahoma",
// "Arial", "Segoe UI" and any unknown name; mono for "Courier New"; serif for
// "Times New Roman") and found through fontconfig.
#include <memory>
#include <string>

#include "platform/GdiObject.h"
#include "platform/GlyphCache.h"
#include "platform/WinTypes.h"

namespace vantor::platform {

class Font : public GdiObject {
 public:
  explicit Font(const LOGFONTW& logfont);

  const LOGFONTW& LogFont() const { return logfont_; }
  // The face name as the caller gave it (the stock font's when empty).
  String FaceName() const;
  bool Bold() const { return logfont_.lfWeight >= 600; }

  // The glyphs at this font's size, or nullptr when no face file could be
  // found at all (then text measures zero wide and draws nothing).
  GlyphCache* Glyphs();
  // The platform's metrics; they exist even without a face.
  const TEXTMETRICW& Metrics();
  const FaceMetrics& Face();

  // The Liberation family a face name stands for.
  static const char* FamilyFor(const String& face_name);

  // The stock font behind DEFAULT_GUI_FONT, which a DC without a selected
  // font draws with.
  static Font& DefaultGui();

 private:
  void Resolve();

  LOGFONTW logfont_;
  bool resolved_ = false;
  std::shared_ptr<GlyphCache> glyphs_;
  FaceMetrics face_;
  TEXTMETRICW metrics_{};
};

}  // namespace vantor::platform
