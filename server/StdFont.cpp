#include "server/StdFont.h"

#include <algorithm>

#include "runtime/Error.h"
#include "server/MulDiv.h"

namespace vantor::server {

StdFont::StdFont() : name_(u"MS Sans Serif"), size_(Currency::FromRaw(82500)) {}

bool StdFont::DefaultValue(Variant& out) const {
  out = Variant(name_);
  return true;
}

void StdFont::put_Name(StringView name) {
  name_ = String(name);
}

void StdFont::put_Size(Currency size) {
  if (size.Raw() <= 0) {
    Err().Set(errInvalidProcedureCall, u"StdFont");
    return;
  }
  size_ = size;
}

void StdFont::put_Weight(int16_t weight) {
  if (weight < 0 || weight > 1000) {
    Err().Set(errInvalidProcedureCall, u"StdFont");
    return;
  }
  weight_ = weight;
}

std::shared_ptr<StdFont> StdFont::Clone() const {
  return std::make_shared<StdFont>(*this);
}

bool StdFont::operator==(const StdFont& o) const {
  return name_ == o.name_ && size_ == o.size_ && weight_ == o.weight_ && charset_ == o.charset_ &&
         italic_ == o.italic_ && underline_ == o.underline_ && strikethrough_ == o.strikethrough_;
}

int32_t StdFont::HeightForSize(Currency size, int dpi) {
  // Points are 1/72 inch and the size counts ten-thousandths of a point.
  const int64_t h = MulDivRound(size.Raw(), dpi, 72 * Currency::kScale);
  return static_cast<int32_t>(-std::clamp<int64_t>(h, -0x7FFFFFFF, 0x7FFFFFFF));
}

LOGFONTW StdFont::ToLogFont(int dpi) const {
  LOGFONTW lf{};
  lf.lfHeight = HeightForSize(size_, dpi);
  lf.lfWeight = weight_;
  lf.lfItalic = italic_ ? 1 : 0;
  lf.lfUnderline = underline_ ? 1 : 0;
  lf.lfStrikeOut = strikethrough_ ? 1 : 0;
  lf.lfCharSet = static_cast<BYTE>(charset_);
  const size_t n = std::min<size_t>(name_.size(), LF_FACESIZE - 1);
  for (size_t i = 0; i < n; ++i) lf.lfFaceName[i] = static_cast<WCHAR>(name_[i]);
  lf.lfFaceName[n] = 0;
  return lf;
}

HFONT StdFont::CreateHFont(int dpi) const {
  const LOGFONTW lf = ToLogFont(dpi);
  return CreateFontIndirectW(&lf);
}

}  // namespace vantor::server
