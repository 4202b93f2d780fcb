#include "plumbing/VT_TOOLTIP.h"

#include <memory>

#include "runtime/Error.h"
#include "runtime/Variant.h"
#include "server/Registry.h"
#include "server/TypeLibrary.h"

namespace vantor::plumbing {

namespace {

// A property of the control, read late bound; false when it can't be read.
bool ReadProperty(server::Dispatch& control, std::string_view name, Variant& out) {
  return control.Invoke(name, server::InvokeKind::PropertyGet, {}, &out);
}

HWND ToHwnd(int32_t value) {
  return reinterpret_cast<HWND>(static_cast<uintptr_t>(static_cast<uint32_t>(value)));
}

}  // namespace

VT_TOOLTIP::VT_TOOLTIP() : Dispatch(*server::TypeLibrary::Get().FindClass("VT_TOOLTIP")) {}

void VT_TOOLTIP::Register() {
  server::Registry::Instance().Register("VT_TOOLTIP",
                                        [] { return std::make_shared<VT_TOOLTIP>(); });
}

int32_t VT_TOOLTIP::get_ToolhWnd() const {
  return static_cast<int32_t>(reinterpret_cast<uintptr_t>(tip_.hWnd()));
}

void VT_TOOLTIP::DestroyToolTip() {
  tip_.Destroy();
}

void VT_TOOLTIP::ShowToolTip(const String& Titulo, const String& Mensagem,
                             const ObjectPtr& Controle, iIconType Tipo, bool Centralizado,
                             OLE_COLOR CorFundo, OLE_COLOR CorTexto) {
  // Each step on the control may fail alone and is passed over; the tip is
  // made all the same, and no error is left standing afterwards.
  HWND parent = nullptr;
  if (auto control = std::dynamic_pointer_cast<server::Dispatch>(Controle)) {
    Variant enabled;
    if (ReadProperty(*control, "Enabled", enabled) && enabled.ToBoolean()) {
      server::Call(*control, "SetFocus");
    }
    Variant hwnd;
    if (ReadProperty(*control, "hwnd", hwnd)) parent = ToHwnd(hwnd.ToLong());
  }
  tip_.put_Centered(Centralizado);
  tip_.put_Icon(Tipo);
  tip_.put_BackColor(CorFundo);
  tip_.put_ForeColor(CorTexto);
  tip_.put_Title(Titulo);
  tip_.put_TipText(Mensagem);
  tip_.Create(parent);
  Err().Clear();
}

const server::Bindings* VT_TOOLTIP::Bound() const {
  static const server::Bindings bindings =
      server::Binder<VT_TOOLTIP>(Info())
          .Get("ToolhWnd", &VT_TOOLTIP::get_ToolhWnd)
          .Method("DestroyToolTip", &VT_TOOLTIP::DestroyToolTip)
          .Method("ShowToolTip", &VT_TOOLTIP::ShowToolTip)
          .Done();
  return &bindings;
}

}  // namespace vantor::plumbing
