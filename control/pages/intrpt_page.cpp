// The Interrupt page: the interrupt bits in check-box order, their enable and disable writes,
// the buffer-ready count and the DMA time-out.
#include "control/pages/intrpt_page.h"

#include "control/vrx_ctrl.h"
#include "platform/board/vrx_params.h"
#include "platform/board/vrx_sdk.h"

using vrc::window::ControlKind;
using vrc::window::ControlTemplate;
using vrc::window::IDC_STATIC;

namespace {

enum : int {
  IdBufferReadyCount = 17361,
  IdDmaTimeout = 17363,
  IdFifoOverflowCount = 17364,
  IdFifoOverflow = 17349,
  IdTimeout = 17358
};

struct InterruptSource {
  int id;
  const char *caption;
  uint32_t bit;
};

// The check boxes in the order apply writes them.
constexpr std::array<InterruptSource, 11> kSources{{
    {17347, "Test", VRX_EVENT_TEST},
    {17348, "Buffer Ready", VRX_EVENT_BUFFER_READY},
    {IdFifoOverflow, "FIFO Overflow :", VRX_EVENT_FIFO_OVERFLOW},
    {17352, "Start of Frame", VRX_EVENT_START_OF_FRAME},
    {17353, "End of Frame", VRX_EVENT_END_OF_FRAME},
    {17354, "Start of Line", VRX_EVENT_START_OF_LINE},
    {17355, "End of Line", VRX_EVENT_END_OF_LINE},
    {17356, "Start of Acq Trigger", VRX_EVENT_ACQ_TRIG_START},
    {17357, "End of Acq Trigger", VRX_EVENT_ACQ_TRIG_END},
    {IdTimeout, "Timeout", VRX_EVENT_TIMEOUT},
    {17360, "Global Enable", VRX_EVENT_GLOBAL_ENABLE},
}};
constexpr std::size_t kTimeoutIndex = 9;
constexpr std::size_t kFifoOverflowIndex = 2;

constexpr const char *kSourceGroup = "Interrupt Source";

constexpr ControlTemplate kControls[] = {
    {kSources[0].id, ControlKind::Check, kSources[0].caption, kSourceGroup},
    {kSources[1].id, ControlKind::Check, kSources[1].caption, kSourceGroup},
    {kSources[2].id, ControlKind::Check, kSources[2].caption, kSourceGroup},
    {IDC_STATIC, ControlKind::Label, "Count", kSourceGroup},
    {IdFifoOverflowCount, ControlKind::Static, "0", kSourceGroup},
    {kSources[3].id, ControlKind::Check, kSources[3].caption, kSourceGroup},
    {kSources[4].id, ControlKind::Check, kSources[4].caption, kSourceGroup},
    {kSources[5].id, ControlKind::Check, kSources[5].caption, kSourceGroup},
    {kSources[6].id, ControlKind::Check, kSources[6].caption, kSourceGroup},
    {kSources[7].id, ControlKind::Check, kSources[7].caption, kSourceGroup},
    {kSources[8].id, ControlKind::Check, kSources[8].caption, kSourceGroup},
    {kSources[9].id, ControlKind::Check, kSources[9].caption, kSourceGroup},
    {kSources[10].id, ControlKind::Check, kSources[10].caption, kSourceGroup},
    {IDC_STATIC, ControlKind::Label, "Buffer Ready Count", ""},
    {IdBufferReadyCount, ControlKind::Edit, "", ""},
    {IDC_STATIC, ControlKind::Label, "DMA Timeout (msecs)", ""},
    {IdDmaTimeout, ControlKind::Edit, "", ""},
};

constexpr vrc::window::DialogTemplate kDialog{16170, "Interrupt", kControls};

bool write_word(uint32_t handle, uint32_t parameter, uint32_t value) {
  return VRX_ParameterSet(handle, parameter, &value) == VRX_OK;
}

bool read_number(uint32_t handle, uint32_t parameter, int32_t &number) {
  uint32_t value = 0;
  if (VRX_ParameterGet(handle, parameter, &value) != VRX_OK) return false;
  number = static_cast<int32_t>(value);
  return true;
}

}  // namespace

CVrcPageIntrpt::CVrcPageIntrpt(CVrxCtrl *owner) : CVrxPage(owner, kDialog) {}

bool CVrcPageIntrpt::Live() const { return GetCtrl()->GetInit() && GetCtrl()->GetAcq(); }

void CVrcPageIntrpt::do_data_exchange(vrc::window::DataExchange &exchange) {
  for (std::size_t i = 0; i < kSources.size(); ++i) exchange.check(kSources[i].id, m_enabled[i]);
  exchange.number(IdFifoOverflowCount, m_fifo_overflow_count);
  exchange.number(IdBufferReadyCount, m_buffer_ready_count);
  exchange.number(IdDmaTimeout, m_dma_timeout_ms);
}

void CVrcPageIntrpt::on_command(int id, uint16_t code) {
  if (id == IdBufferReadyCount || id == IdDmaTimeout) {
    if (code == vrc::window::EN_KILLFOCUS) OnChangedWithData();
    if (code == vrc::window::EN_CHANGE) OnChanged();
    return;
  }
  if (code != vrc::window::BN_CLICKED) return;
  for (const InterruptSource &source : kSources)
    if (source.id == id) OnChangedWithData();
}

int CVrcPageIntrpt::UpdateControls() {
  if (!has_window()) return -1;
  update_data(true);
  const bool live = Live();
  for (const InterruptSource &source : kSources) EnableItem(source.id, live);
  EnableItem(IdBufferReadyCount, live);
  EnableItem(IdDmaTimeout, live && m_enabled[kTimeoutIndex] != 0);
  return 0;
}

CVrxPage::LRESULT CVrcPageIntrpt::OnApplyMessage() {
  if (!Live()) {
    UpdateControls();
    return -1;
  }
  const uint32_t handle = GetCtrl()->GetCameraHandle();
  for (std::size_t i = 0; i < kSources.size(); ++i) {
    const bool on = m_enabled[i] != 0;
    if (!write_word(handle, on ? vrx::ParamIntrptEnable : vrx::ParamIntrptDisable, kSources[i].bit))
      return -1;
    if (i == kFifoOverflowIndex && !on) m_fifo_overflow_count = 0;
  }
  if (!write_word(handle, vrx::ParamBufferReadyCount,
                  static_cast<uint32_t>(m_buffer_ready_count)) ||
      !write_word(handle, vrx::ParamDmaTimeout, static_cast<uint32_t>(m_dma_timeout_ms)))
    return -1;
  update_data(false);
  UpdateControls();
  return 0;
}

CVrxPage::LRESULT CVrcPageIntrpt::OnRefreshMessage() {
  if (!Live()) {
    UpdateControls();
    return -1;
  }
  const uint32_t handle = GetCtrl()->GetCameraHandle();
  uint32_t mask = 0;
  if (VRX_ParameterGet(handle, vrx::ParamIntrptEnable, &mask) != VRX_OK) return -1;
  for (std::size_t i = 0; i < kSources.size(); ++i) {
    // Bit 31 is tested as the sign of the word.
    const bool set = kSources[i].bit == VRX_EVENT_GLOBAL_ENABLE ? static_cast<int32_t>(mask) < 0
                                                                : (mask & kSources[i].bit) != 0;
    m_enabled[i] = set ? 1 : 0;
  }
  if (!read_number(handle, vrx::ParamBufferReadyCount, m_buffer_ready_count) ||
      !read_number(handle, vrx::ParamDmaTimeout, m_dma_timeout_ms))
    return -1;
  update_data(false);
  UpdateControls();
  return 0;
}
