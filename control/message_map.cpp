// The control's message map, its window's initialisation with the five acquisition buttons, and
// the enable states of the buttons.
#include "control/vrx_ctrl.h"
#include "control/vrx_messages.h"

namespace msg = vrc::control;
using vrc::window::Button;

namespace {

enum : int {
  IdSingleShot = 17000,
  IdLive = 17001,
  IdFreeze = 17002,
  IdAbort = 17003,
  IdRefresh = 17004
};

// Where each button sits in the grid beneath the tabs: Live and Freeze in the first column,
// Single Shot and Abort in the second, Refresh beside Apply Now on the upper row; the lower row
// is level with Apply Now.
struct ButtonPlace {
  int id;
  const char *text;
  int row, column;
};
constexpr ButtonPlace kButtonPlaces[] = {{IdSingleShot, "Single Shot", 0, 1},
                                         {IdLive, "Live", 0, 0},
                                         {IdFreeze, "Freeze", 1, 0},
                                         {IdAbort, "Abort", 1, 1},
                                         {IdRefresh, "Refresh", 0, 4}};

// Pages activated when the window is made, so that every page window exists before a message
// reaches it: indexes 1 to 13, then 0.
constexpr int kLastActivatedPage = 13;

}  // namespace

CVrxCtrl::LRESULT CVrxCtrl::handle_message(uint32_t message, WPARAM wparam, LPARAM lparam) {
  switch (message) {
    case msg::kMsgUpdateView: return UpdateView();
    case msg::kMsgFifoOverflow: return OnFifoOverflow();
    case msg::kMsgRefresh: return OnRefreshMessage();
    case msg::kMsgPaint: return PaintBuffer();
    case msg::kMsgInterruptTest: return OnInterruptTest();
    case msg::kMsgInterruptTimeout: return OnInterruptTimeout();
    case msg::kMsgFrameLost: return OnInterruptFrameLost();
    case msg::kMsgAcqTrigEnd: return 0;  // not in the message map, deliberately
    default: return CVrxSheet::handle_message(message, wparam, lparam);
  }
}

void CVrxCtrl::on_command(int id, uint16_t code) {
  if (code != vrc::window::BN_CLICKED) return;
  switch (id) {
    case IdSingleShot: OnSingle(); break;
    case IdLive: OnLive(); break;
    case IdFreeze: OnFreeze(); break;
    case IdAbort: OnAbort(); break;
    case IdRefresh: OnRefreshButton(); break;
    case vrc::window::ID_APPLY_NOW: OnApply(); break;
    case vrc::window::ID_HELP: OnHelp(); break;
    default: break;
  }
}

void CVrxCtrl::on_sys_command(WPARAM command) { OnSysCommand(command); }

// Close ends the control's own message loop when there is no parent, and hides the window when
// there is one.
CVrxCtrl::LRESULT CVrxCtrl::OnSysCommand(WPARAM command) {
  if ((command & 0xFFF0) != vrc::window::SC_CLOSE) {
    CVrxSheet::on_sys_command(command);
    return 0;
  }
  if (!m_parent)
    m_quit = true;
  else
    show(vrc::window::SW_HIDE);
  return 0;
}

bool CVrxCtrl::on_init_dialog() {
  for (std::size_t i = 0; i < m_buttons.size(); ++i) {
    const ButtonPlace &place = kButtonPlaces[i];
    m_buttons[i] = add_button(place.id, place.text, place.row, place.column);
    if (m_buttons[i]) m_buttons[i]->enable(false);
  }
  for (int index = 1; index <= kLastActivatedPage && index < page_count(); ++index)
    set_active_page(index);
  set_active_page(0);
  m_has_window = true;
  return true;
}

CVrxCtrl::LRESULT CVrxCtrl::UpdateView() {
  if (!has_window()) return 0;
  const bool ready = m_init && m_acq;
  const auto enable = [this](int id, bool on) {
    if (vrc::window::Window *button = child(id)) button->enable(on);
  };
  enable(IdSingleShot, ready && !m_live);
  enable(IdLive, ready && !m_live);
  enable(IdFreeze, ready && m_live);
  enable(IdAbort, ready);
  enable(IdRefresh, m_init != 0);
  enable(vrc::window::ID_APPLY_NOW, m_apply != 0);
  return 0;
}
