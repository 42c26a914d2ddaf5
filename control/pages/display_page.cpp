// The Display page: the display the acquisition engine paints through.
#include "control/pages/display_page.h"

#include <QLayout>
#include <QWidget>

#include "control/vrx_messages.h"
#include "platform/board/vrx_sdk.h"

using vrc::window::ControlKind;
using vrc::window::ControlTemplate;

namespace {

enum : int { IdDisplayOn = 17140 };

constexpr ControlTemplate kControls[] = {
    {IdDisplayOn, ControlKind::Check, "Display", "Display"},
};
constexpr vrc::window::DialogTemplate kDialog{16161, "Display", kControls};

}  // namespace

CVrxPageDisplay::CVrxPageDisplay(CVrxCtrl *owner) : CVrxPage(owner, kDialog) {}

CVrxPageDisplay::~CVrxPageDisplay() {
  StopDisplay();
  CVrxPageDisplay::destroy_window();
}

void CVrxPageDisplay::do_data_exchange(vrc::window::DataExchange &exchange) {
  exchange.check(IdDisplayOn, m_display_on);
}

bool CVrxPageDisplay::on_init_dialog() {
  m_surface = std::make_unique<vrc::window::DisplaySurface>(this);
  if (QLayout *layout = widget()->layout()) layout->addWidget(m_surface->widget());
  return CVrxPage::on_init_dialog();
}

void CVrxPageDisplay::on_command(int id, uint16_t code) {
  if (id == IdDisplayOn && code == vrc::window::BN_CLICKED) OnChangedWithData();
}

void CVrxPageDisplay::destroy_window() {
  // The display paints into the surface: it goes first.
  if (m_display != 0) VDL_DisplayDestroy(&m_display);
  m_surface.reset();
  CVrxPage::destroy_window();
}

int CVrxPageDisplay::SetUpDisplay() {
  if (m_display != 0) return 0;
  if (!m_surface) return -1;
  return VDL_DisplayCreate(&m_display, m_surface->paint_sink(), m_surface->sink_context()) == VRX_OK
             ? 0
             : -1;
}

void CVrxPageDisplay::StopDisplay() {
  m_playing = 0;
  if (m_display != 0) VDL_DisplayDestroy(&m_display);
}

CVrxPage::LRESULT CVrxPageDisplay::handle_message(uint32_t message, vrc::window::WPARAM wparam,
                                                  vrc::window::LPARAM lparam) {
  if (message == vrc::control::kMsgCaptureDone) {
    ++m_captures_finished;
    update_data(false);
    return 0;
  }
  return CVrxPage::handle_message(message, wparam, lparam);
}
