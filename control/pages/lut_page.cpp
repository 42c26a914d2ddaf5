// The LUT page: its dialog, the scroll bars and edits of each channel, apply and refresh, and
// the curve preview.
#include "control/pages/lut_page.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "control/vrx_ctrl.h"
#include "platform/board/vrx_sdk.h"
#include "platform/window/picture.h"

using vrc::window::ControlKind;
using vrc::window::ControlTemplate;
using vrc::window::IDC_STATIC;

namespace {

enum : int { IdEnable = 17120, IdReset = 17121, IdPreview = 17170 };
constexpr int kPreviewSize = 129;

// A channel's controls: base + 0 offset edit, + 1 its scroll bar, + 2 gain edit, + 3 its scroll
// bar, + 4 gamma edit, + 5 its scroll bar.
constexpr std::array<int, 3> kChannelBase{17130, 17140, 17150};
constexpr std::array<const char *, 3> kChannelGroups{"Red / Mono", "Green", "Blue"};
enum : int {
  kOffsetEdit = 0,
  kOffsetBar = 1,
  kGainEdit = 2,
  kGainBar = 3,
  kGammaEdit = 4,
  kGammaBar = 5
};

// Each channel value: its member, the scroll-bar offset of its controls and its range.
struct ValueKind {
  int32_t vrx::LutChannel::*member;
  int bar;
  int32_t minimum, maximum;
  const uint32_t *parameters;
};
constexpr std::array<ValueKind, 3> kValues{{
    {&vrx::LutChannel::offset, kOffsetBar, vrx::kLutOffsetMin, vrx::kLutOffsetMax,
     vrx::ParamLutOffset},
    {&vrx::LutChannel::gain, kGainBar, vrx::kLutGainMin, vrx::kLutGainMax, vrx::ParamLutGain},
    {&vrx::LutChannel::gamma, kGammaBar, vrx::kLutGammaMin, vrx::kLutGammaMax, vrx::ParamLutGamma},
}};

constexpr auto kControls = [] {
  std::array<ControlTemplate, 3 + 3 * 9> rows{};
  std::size_t n = 0;
  rows[n++] = {IdEnable, ControlKind::Check, "Enable LUT", "Look-up Table"};
  rows[n++] = {IdReset, ControlKind::Button, "Reset", "Look-up Table"};
  for (std::size_t c = 0; c < 3; ++c) {
    const int base = kChannelBase[c];
    const char *group = kChannelGroups[c];
    rows[n++] = {IDC_STATIC, ControlKind::Label, "Offset", group};
    rows[n++] = {base + kOffsetEdit, ControlKind::Edit, "", group};
    rows[n++] = {base + kOffsetBar, ControlKind::ScrollBar, "", group};
    rows[n++] = {IDC_STATIC, ControlKind::Label, "Gain (%)", group};
    rows[n++] = {base + kGainEdit, ControlKind::Edit, "", group};
    rows[n++] = {base + kGainBar, ControlKind::ScrollBar, "", group};
    rows[n++] = {IDC_STATIC, ControlKind::Label, "Gamma", group};
    rows[n++] = {base + kGammaEdit, ControlKind::Edit, "", group};
    rows[n++] = {base + kGammaBar, ControlKind::ScrollBar, "", group};
  }
  rows[n++] = {IdPreview, ControlKind::Picture, "", "Look-up Table"};
  return rows;
}();

constexpr vrc::window::DialogTemplate kDialog{16165, "LUT", kControls};

int32_t clamp(int32_t value, const ValueKind &kind) {
  return value < kind.minimum ? kind.minimum : value > kind.maximum ? kind.maximum : value;
}

bool is_edit(int id, std::size_t &channel, int &role) {
  for (std::size_t c = 0; c < 3; ++c) {
    const int offset = id - kChannelBase[c];
    if (offset == kOffsetEdit || offset == kGainEdit || offset == kGammaEdit) {
      channel = c;
      role = offset;
      return true;
    }
  }
  return false;
}

// Preview colours of the three curves.
constexpr std::array<uint32_t, 3> kCurveColours{0xFFD02020, 0xFF20A020, 0xFF2040D0};
constexpr uint32_t kBackground = 0xFFFFFFFF, kGrid = 0xFFE0E0E0, kIdentity = 0xFFB0B0B0,
                   kOff = 0xFF808080;

}  // namespace

namespace vrc::pages {

std::string gamma_text(int32_t gamma) {
  char text[16];
  std::snprintf(text, sizeof text, "%d.%02d", gamma / 100, gamma % 100);
  return text;
}

bool parse_gamma(const std::string &text, int32_t &gamma) {
  char *end = nullptr;
  const double value = std::strtod(text.c_str(), &end);
  if (text.empty() || end == text.c_str()) return false;
  while (*end == ' ') ++end;
  if (*end != '\0' || !std::isfinite(value)) return false;
  const long hundredths = std::lround(value * 100.0);
  if (hundredths < vrx::kLutGammaMin || hundredths > vrx::kLutGammaMax) return false;
  gamma = static_cast<int32_t>(hundredths);
  return true;
}

std::vector<uint32_t> lut_preview(const std::array<vrx::LutChannel, 3> &channels, bool enabled,
                                  int size) {
  std::vector<uint32_t> pixels(static_cast<std::size_t>(size) * size, kBackground);
  auto plot = [&](int x, int y, uint32_t colour) {
    if (x >= 0 && x < size && y >= 0 && y < size)
      pixels[static_cast<std::size_t>(size - 1 - y) * size + x] = colour;
  };
  const int last = size - 1;
  for (int i = 0; i <= last; ++i)
    for (int quarter = 1; quarter < 4; ++quarter) {
      plot(i, last * quarter / 4, kGrid);
      plot(last * quarter / 4, i, kGrid);
    }
  for (int i = 0; i <= last; ++i) plot(i, i, kIdentity);
  for (std::size_t c = 3; c-- > 0;) {
    int previous = -1;
    for (int x = 0; x <= last; ++x) {
      const int y =
          static_cast<int>(std::lround(vrx::lut_output(channels[c], double(x) / last) * last));
      // Join the points so that a steep curve stays unbroken.
      const int from = previous < 0 ? y : std::min(previous + 1, y),
                to = previous < 0 ? y : std::max(previous - 1, y);
      for (int v = std::min(from, to); v <= std::max(from, to); ++v)
        plot(x, v, enabled ? kCurveColours[c] : kOff);
      previous = y;
    }
  }
  return pixels;
}

}  // namespace vrc::pages

CVrxPageLut::CVrxPageLut(CVrxCtrl *owner) : CVrxPage(owner, kDialog) {
  for (std::size_t c = 0; c < 3; ++c)
    m_gamma_texts[c] = vrc::pages::gamma_text(m_channels[c].gamma);
}

bool CVrxPageLut::Live() const { return GetCtrl()->GetInit() && GetCtrl()->GetAcq(); }

void CVrxPageLut::do_data_exchange(vrc::window::DataExchange &exchange) {
  exchange.check(IdEnable, m_enabled);
  for (std::size_t c = 0; c < 3; ++c) {
    exchange.number(kChannelBase[c] + kOffsetEdit, m_channels[c].offset);
    exchange.number(kChannelBase[c] + kGainEdit, m_channels[c].gain);
    if (!exchange.saving()) m_gamma_texts[c] = vrc::pages::gamma_text(m_channels[c].gamma);
    exchange.text(kChannelBase[c] + kGammaEdit, m_gamma_texts[c]);
  }
}

bool CVrxPageLut::on_init_dialog() {
  for (std::size_t c = 0; c < 3; ++c)
    for (const ValueKind &kind : kValues)
      if (auto *bar = control<vrc::window::ScrollBar>(kChannelBase[c] + kind.bar))
        bar->set_range(kind.minimum, kind.maximum);
  return CVrxPage::on_init_dialog();
}

// The gamma edits hold text; a text that is no gamma leaves the value as it was.
void CVrxPageLut::TakeGammaTexts() {
  for (std::size_t c = 0; c < 3; ++c)
    vrc::pages::parse_gamma(m_gamma_texts[c], m_channels[c].gamma);
}

void CVrxPageLut::on_command(int id, uint16_t code) {
  std::size_t channel = 0;
  int role = 0;
  if (is_edit(id, channel, role)) {
    if (code == vrc::window::EN_CHANGE) OnChanged();
    if (code == vrc::window::EN_KILLFOCUS) {
      OnChangedWithData();
      update_data(false);  // out-of-range numbers shown as kept
    }
    return;
  }
  if (code != vrc::window::BN_CLICKED) return;
  if (id == IdEnable) OnChangedWithData();
  if (id == IdReset) OnReset();
}

// The notification carries the position as 16 unsigned bits; negative offsets are read from the
// bar itself.
void CVrxPageLut::on_scroll(int id, int) {
  const auto *bar = control<vrc::window::ScrollBar>(id);
  if (!bar) return;
  const int position = bar->position();
  for (std::size_t c = 0; c < 3; ++c)
    for (const ValueKind &kind : kValues)
      if (kChannelBase[c] + kind.bar == id) {
        update_data(true);
        TakeGammaTexts();
        m_channels[c].*(kind.member) = clamp(position, kind);
        update_data(false);
        OnChanged();
      }
}

void CVrxPageLut::OnReset() {
  m_channels = {};
  update_data(false);
  OnChanged();
}

int CVrxPageLut::UpdateControls() {
  if (!has_window()) return -1;
  update_data(true);
  TakeGammaTexts();
  for (std::size_t c = 0; c < 3; ++c)
    for (const ValueKind &kind : kValues)
      m_channels[c].*(kind.member) = clamp(m_channels[c].*(kind.member), kind);
  const bool live = Live();
  EnableItem(IdEnable, live);
  EnableItem(IdReset, live);
  for (std::size_t c = 0; c < 3; ++c) {
    for (int role : {kOffsetEdit, kGainEdit, kGammaEdit}) EnableItem(kChannelBase[c] + role, live);
    for (const ValueKind &kind : kValues)
      SetScroll(kChannelBase[c] + kind.bar, m_channels[c].*(kind.member), live, true);
  }
  DrawPreview();
  return 0;
}

void CVrxPageLut::DrawPreview() {
  if (auto *preview = control<vrc::window::Picture>(IdPreview))
    preview->set_image(vrc::pages::lut_preview(m_channels, m_enabled != 0, kPreviewSize),
                       kPreviewSize, kPreviewSize);
}

CVrxPage::LRESULT CVrxPageLut::OnApplyMessage() {
  if (!Live()) {
    UpdateControls();
    return -1;
  }
  const uint32_t handle = GetCtrl()->GetCameraHandle();
  uint32_t enable = m_enabled ? vrx::FlagOn : vrx::FlagOff;
  if (VRX_ParameterSet(handle, vrx::ParamLutEnable, &enable) != VRX_OK) return -1;
  for (std::size_t c = 0; c < 3; ++c)
    for (const ValueKind &kind : kValues) {
      auto value = static_cast<uint32_t>(m_channels[c].*(kind.member));
      if (VRX_ParameterSet(handle, kind.parameters[c], &value) != VRX_OK) return -1;
    }
  update_data(false);
  UpdateControls();
  return 0;
}

CVrxPage::LRESULT CVrxPageLut::OnRefreshMessage() {
  if (!Live()) {
    UpdateControls();
    return -1;
  }
  const uint32_t handle = GetCtrl()->GetCameraHandle();
  uint32_t enable = 0;
  if (VRX_ParameterGet(handle, vrx::ParamLutEnable, &enable) != VRX_OK) return -1;
  m_enabled = enable == vrx::FlagOn ? 1 : 0;
  for (std::size_t c = 0; c < 3; ++c)
    for (const ValueKind &kind : kValues) {
      uint32_t value = 0;
      if (VRX_ParameterGet(handle, kind.parameters[c], &value) != VRX_OK) return -1;
      m_channels[c].*(kind.member) = static_cast<int32_t>(value);
    }
  update_data(false);
  UpdateControls();
  return 0;
}
