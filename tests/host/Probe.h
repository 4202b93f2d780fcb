#pragma once
// A control of the tests' own, so that the form is tested on every kind of
// persisted value and every container event without leaning on what the
// library's controls implement. It writes what it is told into a journal.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "host/Form.h"
#include "platform/HeadlessPresenter.h"
#include "runtime/Currency.h"
#include "runtime/Date.h"
#include "server/Event.h"
#include "server/StdFont.h"
#include "server/TypeLibrary.h"
#include "server/UserControl.h"

namespace vantor::host::test {

// "HostProbe" (a control), "HostService" (a service, no control) and
// "HostImpostor" (listed as a control but not one underneath).
const server::TypeLibrary& ProbeLibrary();
void RegisterProbes();

// "Name: Event" for every container event of every probe, in order.
std::vector<std::string>& Journal();
// The entries of one control, without its name.
std::vector<std::string> JournalOf(const std::string& name);

class Probe : public server::UserControl {
 public:
  Probe();

  String get_Caption() const { return caption_; }
  void put_Caption(String v);
  int32_t get_Value() const { return value_; }
  void put_Value(int32_t v);
  double get_Ratio() const { return ratio_; }
  void put_Ratio(double v);
  bool get_Checked() const { return checked_; }
  void put_Checked(bool v);
  uint32_t get_BackColor() const { return backColor_; }
  void put_BackColor(uint32_t v);
  std::shared_ptr<server::StdFont> get_Font() const { return font_; }
  void putref_Font(std::shared_ptr<server::StdFont> v);
  std::vector<uint8_t> get_Data() const { return data_; }
  void put_Data(std::vector<uint8_t> v);
  Currency get_Amount() const { return amount_; }
  void put_Amount(Currency v);
  Date get_Stamp() const { return stamp_; }
  void put_Stamp(Date v);
  int16_t get_Style() const { return style_; }
  void put_Style(int16_t v);
  bool get_UserModeSeen() const { return userModeSeen_; }

  int16_t LastKey() const { return lastKey_; }

  server::Event<> ClickEvent{*this, "Click"};
  server::Event<int16_t&> KeyPressEvent{*this, "KeyPress"};

 protected:
  const server::Bindings* Bound() const override;

  void Initialize() override { Log("Initialize"); }
  void InitProperties() override;
  void ReadProperties(const server::PropertyBag& bag) override;
  void WriteProperties(server::PropertyBag& bag) override;
  void Resize() override;
  void Show() override { Log("Show"); }
  void Terminate() override { Log("Terminate"); }
  void GotFocus() override { Log("GotFocus"); }
  void LostFocus() override { Log("LostFocus"); }
  void KeyPress(int16_t& keyAscii) override;
  void Click() override;
  void AmbientChanged(const String& name) override;
  void AccessKeyPress(int16_t keyAscii) override;

 private:
  void Log(const std::string& what);
  void Changed(const char16_t* name);
  void ApplyAccessKeys();

  String caption_;
  int32_t value_ = 0;
  double ratio_ = 0.5;
  bool checked_ = false;
  uint32_t backColor_ = 0x8000000F;
  std::shared_ptr<server::StdFont> font_;
  std::vector<uint8_t> data_;
  Currency amount_;
  Date stamp_;
  int16_t style_ = 1;
  bool userModeSeen_ = false;
  int16_t lastKey_ = 0;
};

// Every read-write property of two objects of one class, compared as the
// property bag compares values; returns how many were compared.
int ExpectSameProperties(server::Dispatch& a, server::Dispatch& b);

// A clean desktop on a headless screen, the probes registered and the
// journal empty.
class HostTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;
  Probe& ProbeOf(Form& form, const char16_t* name);

  platform::HeadlessPresenter screen_{1024, 768};
};

}  // namespace vantor::host::test
