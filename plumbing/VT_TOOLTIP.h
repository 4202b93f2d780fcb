#pragma once
// The host's own tool tip: a tip over any control of the host's, reached late
// bound. ShowToolTip gives the control the focus when it is enabled, reads its
// window and makes the tip there with the given title, text, icon and
// colours; the tip then shows as the mouse rests on the control.
#include <cstdint>

#include "plumbing/CTooltip.h"
#include "runtime/Object.h"
#include "runtime/String.h"
#include "server/Dispatch.h"

namespace vantor::plumbing {

class VT_TOOLTIP : public server::Dispatch {
 public:
  VT_TOOLTIP();
  static void Register();

  // The tip window as a Long; 0 when there is none.
  int32_t get_ToolhWnd() const;
  void DestroyToolTip();
  void ShowToolTip(const String& Titulo, const String& Mensagem, const ObjectPtr& Controle,
                   iIconType Tipo, bool Centralizado = false, OLE_COLOR CorFundo = 14811135,
                   OLE_COLOR CorTexto = 0);

  const CTooltip& Tip() const { return tip_; }

 protected:
  const server::Bindings* Bound() const override;

 private:
  CTooltip tip_;
};

}  // namespace vantor::plumbing
