#include "services/VT.h"

#include <gtest/gtest.h>

#include "server/Registry.h"

namespace vantor::services {
namespace {

// The class reaches every member it declares through the type library; the
// members themselves are tested by theme in their own files.
TEST(VT, IsMadeByNameAndAnswersThroughDispatch) {
  VT::Register();
  server::DispatchPtr vt = server::Registry::Instance().Create("Vantor2014.VT");
  ASSERT_NE(vt, nullptr);
  EXPECT_EQ(vt->ClassName(), u"VT");
  for (const auto& m : vt->Info().dispatch.members) {
    const bool later = m.name == "USMsgBox" || m.name == "USMsgBoxEx";
    EXPECT_EQ(vt->Implements(m.name, server::InvokeKind::Method), !later) << m.name;
  }
  Err().Clear();
  Variant r;
  EXPECT_FALSE(vt->Invoke("USMsgBox", server::InvokeKind::Method, {}, &r));
  EXPECT_EQ(Err().Number(), server::errArgNotOptional);
}

}  // namespace
}  // namespace vantor::services
