// The Test page: the self-test table, the three buttons and the enable rules.
#include "control/pages/test_page.h"

#include "control/vrx_ctrl.h"
#include "platform/board/vrx_params.h"
#include "platform/board/vrx_sdk.h"
#include "platform/window/desktop.h"

using vrc::window::ControlKind;
using vrc::window::ControlTemplate;

namespace {

enum : int {
  IdCpld = 17253,
  IdLatchEnable = 17257,
  IdUnboundTest = 17261,
  IdBegin = 17263,
  IdSelectAll = 17264,
  IdSelectNone = 17265,
  IdFlash = 17254,
  IdOutputWalk = 17256,
  IdDataPath = 17258,
  IdCcWalk = 17259
};

struct SelfTest {
  int id;
  const char *caption;
  bool on_by_default;
  uint32_t test;
};

// The tests in running order.
constexpr std::array<SelfTest, 11> kTests{{
    {17250, "Walk", true, vrx::TestPciWalk},
    {17251, "3.3/5V", true, vrx::TestPciVoltage},
    {17266, "32/64bit", true, vrx::TestPciWidth},
    {17252, "33/66MHz", true, vrx::TestPciClock},
    {IdFlash, "Flash", false, vrx::TestFlash},
    {17255, "ZBT", true, vrx::TestZbt},
    {IdOutputWalk, "Output walk", true, vrx::TestOutputWalk},
    {IdDataPath, "Data Path", true, vrx::TestDataPath},
    {IdCcWalk, "Cc walk", true, vrx::TestCcWalk},
    {17260, "Opto walk", true, vrx::TestOptoWalk},
    {17262, "Master or Slave", true, vrx::TestChain},
}};

constexpr const char *kPci = "PCI bus";
constexpr const char *kDevices = "Programmable Devices";
constexpr const char *kTtl = "TTL I/O";
constexpr const char *kWalks = "Output walks";
constexpr const char *kChain = "Chain";

constexpr ControlTemplate kControls[] = {
    {17250, ControlKind::Check, "Walk", kPci},
    {17251, ControlKind::Check, "3.3/5V", kPci},
    {17266, ControlKind::Check, "32/64bit", kPci},
    {17252, ControlKind::Check, "33/66MHz", kPci},
    {IdCpld, ControlKind::Check, "CPLD", kDevices},
    {IdFlash, ControlKind::Check, "Flash", kDevices},
    {17255, ControlKind::Check, "ZBT", kDevices},
    {IdLatchEnable, ControlKind::Check, "Latch enable", kTtl},
    {IdDataPath, ControlKind::Check, "Data Path", kTtl},
    {IdUnboundTest, ControlKind::Check, "Test", kTtl},
    {IdOutputWalk, ControlKind::Check, "Output walk", kWalks},
    {IdCcWalk, ControlKind::Check, "Cc walk", kWalks},
    {17260, ControlKind::Check, "Opto walk", kWalks},
    {17262, ControlKind::Check, "Master or Slave", kChain},
    {IdBegin, ControlKind::Button, "Begin Tests", ""},
    {IdSelectAll, ControlKind::Button, "Select All", ""},
    {IdSelectNone, ControlKind::Button, "Select None", ""},
};

constexpr vrc::window::DialogTemplate kDialog{16168, "Test", kControls};

}  // namespace

CVrxPageTest::CVrxPageTest(CVrxCtrl *owner) : CVrxPage(owner, kDialog) {
  for (std::size_t i = 0; i < kTests.size(); ++i) m_selected[i] = kTests[i].on_by_default ? 1 : 0;
}

bool CVrxPageTest::Live() const { return GetCtrl()->GetInit() && GetCtrl()->GetAcq(); }

void CVrxPageTest::do_data_exchange(vrc::window::DataExchange &exchange) {
  for (std::size_t i = 0; i < kTests.size(); ++i) exchange.check(kTests[i].id, m_selected[i]);
}

void CVrxPageTest::on_command(int id, uint16_t code) {
  if (code != vrc::window::BN_CLICKED) return;
  switch (id) {
    case IdBegin: OnBeginTests(); break;
    case IdSelectAll: OnSelectAll(); break;
    case IdSelectNone: OnSelectNone(); break;
    case IdDataPath:
    case IdOutputWalk:
    case IdCcWalk: UpdateControls(); break;
    default: break;
  }
}

int CVrxPageTest::UpdateControls() {
  if (!has_window()) return -1;
  update_data(true);
  const bool live = Live();
  // "Flash" stays disabled: a user cannot pick the flash test from here.
  for (const SelfTest &test : kTests) EnableItem(test.id, live && test.id != IdFlash);
  for (int id : {IdCpld, IdLatchEnable, IdUnboundTest}) EnableItem(id, false);
  for (int id : {IdBegin, IdSelectAll, IdSelectNone}) EnableItem(id, live && !m_running);
  return 0;
}

CVrxPage::LRESULT CVrxPageTest::CheckLive() {
  if (!Live()) return -1;
  update_data(false);
  return 0;
}

// A refresh also sets the enable states, so that the page comes alive when a board is opened.
CVrxPage::LRESULT CVrxPageTest::OnRefreshMessage() {
  const LRESULT result = CheckLive();
  UpdateControls();
  return result;
}
CVrxPage::LRESULT CVrxPageTest::OnApplyMessage() { return CheckLive(); }

void CVrxPageTest::OnBeginTests() {
  m_running = true;
  UpdateControls();
  m_failed = false;
  const uint32_t handle = GetCtrl()->GetCameraHandle();
  for (std::size_t i = 0; i < kTests.size(); ++i) {
    if (!m_selected[i]) continue;
    const bool slow = kTests[i].test == vrx::TestFlash || kTests[i].test == vrx::TestZbt;
    if (slow) vrc::window::desktop().begin_wait_cursor();
    if (VRX_Test(handle, kTests[i].test, nullptr) != VRX_OK) m_failed = true;
    if (slow) vrc::window::desktop().end_wait_cursor();
  }
  if (m_failed)
    vrc::window::desktop().message_box(this, "System test failed (see log window for details)", "",
                                       vrc::window::MB_OK | vrc::window::MB_ICONERROR);
  else
    vrc::window::desktop().message_box(this, "System test passed (see log window for details)", "",
                                       vrc::window::MB_OK | vrc::window::MB_ICONINFORMATION);
  m_running = false;
  UpdateControls();
}

void CVrxPageTest::SetAll(bool defaults) {
  for (std::size_t i = 0; i < kTests.size(); ++i)
    m_selected[i] = defaults && kTests[i].on_by_default ? 1 : 0;
  update_data(false);
  UpdateControls();
}

void CVrxPageTest::OnSelectAll() { SetAll(true); }
void CVrxPageTest::OnSelectNone() { SetAll(false); }
