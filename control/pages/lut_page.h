// The LUT page: the board's input look-up table, one curve per colour channel (red or grey for a
// mono camera, green, blue), each set by its offset, gain and gamma through a scroll bar or its
// edit, and drawn in a small preview. Apply writes the table's switch and the nine values; refresh
// reads them back.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "control/vrx_page.h"
#include "platform/board/vrx_params.h"

namespace vrc::pages {
// "1.00" for a gamma of 100 hundredths.
std::string gamma_text(int32_t gamma);
// A gamma text ("0.45", "2") in hundredths; false when it does not parse or is out of range.
bool parse_gamma(const std::string &text, int32_t &gamma);
// The preview: `size` x `size` pixels 0xAARRGGBB, the identity as a grey diagonal and each
// channel's curve in its colour (all in grey when the table is off).
std::vector<uint32_t> lut_preview(const std::array<vrx::LutChannel, 3> &channels, bool enabled,
                                  int size);
}  // namespace vrc::pages

class VRC_API CVrxPageLut : public CVrxPage {
 public:
  explicit CVrxPageLut(CVrxCtrl *owner);

  int UpdateControls() override;
  LRESULT OnRefreshMessage() override;
  LRESULT OnApplyMessage() override;

  // Every channel back to the identity.
  void OnReset();
  const std::array<vrx::LutChannel, 3> &Channels() const { return m_channels; }
  bool Enabled() const { return m_enabled != 0; }

 protected:
  void do_data_exchange(vrc::window::DataExchange &exchange) override;
  bool on_init_dialog() override;
  void on_command(int id, uint16_t code) override;
  void on_scroll(int id, int position) override;

 private:
  bool Live() const;
  void TakeGammaTexts();
  void DrawPreview();

  int32_t m_enabled = 0;
  std::array<vrx::LutChannel, 3> m_channels{};
  std::array<std::string, 3> m_gamma_texts;
};
