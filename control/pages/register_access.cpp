// Register access from hex texts. Texts are taken as a 256-character buffer would hold them and
// parsed as the C library's "%8x" does, so that a prefix, blanks or a stray character behave
// as they always have.
#include "control/pages/register_access.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include "control/vrx_ctrl.h"
#include "control/vrx_page.h"
#include "platform/board/vrx_params.h"
#include "platform/board/vrx_sdk.h"
#include "platform/window/desktop.h"

namespace vrc::pages {
namespace {

constexpr std::size_t kTextBuffer = 256;      // characters, with the terminator
constexpr std::size_t kMaxAddressText = 8;    // hex digits of a 32-bit address
constexpr std::size_t kMaxDataText = 128;     // hex digits of the data written or bytes read
constexpr std::size_t kReceiveBuffer = 4096;  // bytes the page can take in one read
constexpr std::size_t kShownDigits = 96;      // digits of a read shown at most
constexpr std::size_t kDigitsPerLine = 32;
constexpr const char *kReadCaption = "Read from Camera";

std::string edit_text(const CVrxPage &page, int id) {
  const vrc::window::Window *edit = page.child(id);
  std::string text = edit ? edit->text() : std::string();
  if (text.size() > kTextBuffer - 1) text.resize(kTextBuffer - 1);
  return text;
}

void tell(CVrxPage &page, const std::string &text, const char *caption) {
  vrc::window::desktop().message_box(&page, text, caption, vrc::window::MB_OK);
}

// "%<width>x" of the text; the value stays 0 when nothing parses.
uint32_t parse_hex(const std::string &text, const char *format = "%8x") {
  unsigned value = 0;
  std::sscanf(text.c_str(), format, &value);
  return value;
}

// Bytes from the left of a non-empty hex text: with an odd length the first digit alone, then
// pairs.
std::vector<uint8_t> data_bytes(const std::string &text) {
  std::vector<uint8_t> bytes;
  std::size_t at = 0;
  if (text.size() % 2 == 1) {
    bytes.push_back(static_cast<uint8_t>(parse_hex(text.substr(0, 1), "%01x")));
    at = 1;
  }
  for (; at + 1 < text.size(); at += 2)
    bytes.push_back(static_cast<uint8_t>(parse_hex(text.substr(at, 2), "%2x")));
  return bytes;
}

std::string counts_text(const char *what, uint32_t requested, uint32_t received) {
  char text[96];
  std::snprintf(text, sizeof text, "%s: Requested [0x%x], Read [0x%x]", what, requested, received);
  return text;
}

// Upper-case hex digits, two per byte, at most kShownDigits of them, in lines of 32.
std::string result_text(CVrxPage &page, const uint8_t *bytes, uint32_t count) {
  std::string digits;
  for (uint32_t i = 0; i < count; ++i) {
    char pair[3];
    std::snprintf(pair, sizeof pair, "%02X", bytes[i]);
    digits += pair;
  }
  if (digits.size() > kShownDigits) {
    char text[64];
    std::snprintf(text, sizeof text, "Only displaying the first %d characters", 48);
    tell(page, text, kReadCaption);
    digits.resize(kShownDigits);
  }
  std::string lines;
  for (std::size_t at = 0; at < digits.size(); at += kDigitsPerLine) {
    if (at > 0) lines += "\r\n";
    lines += digits.substr(at, kDigitsPerLine);
  }
  return lines;
}

}  // namespace

uint32_t WriteRegister(CVrxPage &page, const RegisterWrite &write, uint32_t timeout_ms) {
  const std::string address_text = edit_text(page, write.address_id);
  const std::string data_text = edit_text(page, write.data_id);
  if (address_text.size() > kMaxAddressText) {
    tell(page, "Invalid write address", write.caption);
    return 0;
  }
  if (data_text.size() > kMaxDataText) {
    tell(page, "Invalid write data", write.caption);
    return 0;
  }
  if (address_text.empty() || data_text.empty()) {
    tell(page, "Insufficient write information", write.caption);
    return 0;
  }
  uint32_t address = parse_hex(address_text);
  std::vector<uint8_t> bytes = data_bytes(data_text);
  auto count = static_cast<uint32_t>(bytes.size());
  return VRX_ControlWrite(page.GetCtrl()->GetCameraHandle(), write.port, &address, bytes.data(),
                          &count, timeout_ms);
}

uint32_t ReadCameraRegisters(CVrxPage &page, uint32_t timeout_ms) {
  const std::string address_text = edit_text(page, IdCameraReadAddress);
  const std::string count_text = edit_text(page, IdCameraReadCount);
  if (address_text.size() > kMaxAddressText) {
    tell(page, "Invalid camera read address", kReadCaption);
    return 0;
  }
  if (count_text.size() > kMaxDataText) {
    tell(page, "Invalid number of bytes to read", kReadCaption);
    return 0;
  }
  const uint32_t requested = parse_hex(count_text, "%x");
  if (requested == 0) return 0;

  // A request larger than the page's buffer asks for what fits, and shows as a short read.
  std::array<uint8_t, kReceiveBuffer> buffer{};
  uint32_t address = parse_hex(address_text);
  uint32_t received = std::min<uint32_t>(requested, kReceiveBuffer);
  const uint32_t status = VRX_ControlRead(page.GetCtrl()->GetCameraHandle(), vrx::PortCamera,
                                          &address, buffer.data(), &received, timeout_ms);
  if (status != VRX_OK && status != VRX_STATUS_TIMEOUT) return status;
  if (received > requested) {
    tell(page, counts_text("OVERFLOW", requested, received), kReadCaption);
    return status;
  }
  if (received < requested) tell(page, counts_text("TIMEOUT", requested, received), kReadCaption);
  const std::string shown =
      result_text(page, buffer.data(), std::min<uint32_t>(received, kReceiveBuffer));
  if (vrc::window::Window *result = page.child(IdCameraReadResult)) result->set_text(shown);
  return status;
}

uint32_t ResetCamera(CVrxPage &page, uint32_t timeout_ms) {
  uint32_t argument = 0;
  return VRX_ControlReset(page.GetCtrl()->GetCameraHandle(), vrx::PortCamera, &argument,
                          timeout_ms);
}

}  // namespace vrc::pages
