// Register reads and writes by hand: the checks of the typed texts, the conversion of data text
// to bytes, the control-port calls and the display of what came back.
#include "control/pages/register_access.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "control/vrx_ctrl.h"
#include "control/vrx_page.h"
#include "platform/board/vrx_params.h"
#include "platform/board/vrx_sdk.h"
#include "platform/window/desktop.h"

namespace vrc::pages {
namespace {

constexpr std::size_t kTextBuffer = 256;  // characters read from an edit, terminator included
constexpr std::size_t kMaxAddressDigits = 8;
constexpr std::size_t kMaxDataDigits = 128;
constexpr std::size_t kMaxShownDigits = 96;
constexpr std::size_t kDigitsPerLine = 32;

struct PortTexts {
  uint32_t port;
  const char *write_title;
};
constexpr PortTexts kCameraPort{vrx::PortCamera, "Write to Camera"};
constexpr PortTexts kGrabberPort{vrx::PortFrameGrabber, "Write to Frame Grabber"};
constexpr const char *kReadCameraTitle = "Read from Camera";
constexpr const char *kReadGrabberTitle = "Read from Frame Grabber";

// An edit's text as a 256-character buffer holds it.
std::string text_of(const CVrxPage &page, int id) {
  const vrc::window::Window *control = page.child(id);
  std::string text = control ? control->text() : std::string();
  if (text.size() >= kTextBuffer) text.resize(kTextBuffer - 1);
  return text;
}

void show(CVrxPage &page, const char *text, const char *title) {
  vrc::window::desktop().message_box(&page, text, title,
                                     vrc::window::MB_OK | vrc::window::MB_ICONWARNING);
}

void show_count_mismatch(CVrxPage &page, const char *what, uint32_t requested, uint32_t received,
                         const char *title) {
  char text[96];
  std::snprintf(text, sizeof text, "%s: Requested [0x%x], Read [0x%x]", what, requested, received);
  show(page, text, title);
}

void write_register(CVrxPage &page, const PortTexts &port, int address_id, int data_id,
                    uint32_t timeout_ms) {
  const std::string address_text = text_of(page, address_id);
  const std::string data_text = text_of(page, data_id);
  if (address_text.size() > kMaxAddressDigits)
    return show(page, "Invalid write address", port.write_title);
  if (data_text.size() > kMaxDataDigits) return show(page, "Invalid write data", port.write_title);
  if (address_text.empty() || data_text.empty())
    return show(page, "Insufficient write information", port.write_title);
  uint32_t address = parse_hex(address_text);
  std::vector<uint8_t> bytes = bytes_of_data_text(data_text);
  auto count = static_cast<uint32_t>(bytes.size());
  VRX_ControlWrite(page.GetCtrl()->GetCameraHandle(), port.port, &address, bytes.data(), &count,
                   timeout_ms);
}

bool read_succeeded(uint32_t status) { return status == VRX_OK || status == VRX_STATUS_TIMEOUT; }

}  // namespace

uint32_t parse_hex(std::string_view text, int digits) {
  char format[8];
  std::snprintf(format, sizeof format, "%%%dx", digits);
  const std::string copy(text);
  unsigned value = 0;
  if (std::sscanf(copy.c_str(), format, &value) != 1) return 0;
  return value;
}

std::vector<uint8_t> bytes_of_data_text(std::string_view text) {
  std::vector<uint8_t> bytes;
  std::size_t at = 0;
  if (text.size() % 2 == 1) {
    bytes.push_back(static_cast<uint8_t>(parse_hex(text.substr(0, 1), 1)));
    at = 1;
  }
  for (; at < text.size(); at += 2)
    bytes.push_back(static_cast<uint8_t>(parse_hex(text.substr(at, 2), 2)));
  if (bytes.empty()) bytes.push_back(0);
  return bytes;
}

std::string hex_digits(const std::vector<uint8_t> &bytes) {
  std::string digits;
  char pair[3];
  for (uint8_t byte : bytes) {
    std::snprintf(pair, sizeof pair, "%02X", byte);
    digits += pair;
  }
  return digits;
}

std::string camera_read_display(const std::vector<uint8_t> &bytes) {
  std::string digits = hex_digits(bytes);
  if (digits.size() > kMaxShownDigits) digits.resize(kMaxShownDigits);
  std::string text;
  for (std::size_t at = 0; at < digits.size(); at += kDigitsPerLine) {
    if (at > 0) text += "\r\n";
    text += digits.substr(at, kDigitsPerLine);
  }
  return text;
}

void WriteCameraRegister(CVrxPage &page, uint32_t timeout_ms) {
  write_register(page, kCameraPort, IdCameraWriteAddress, IdCameraWriteData, timeout_ms);
}

void WriteGrabberRegister(CVrxPage &page, uint32_t timeout_ms) {
  write_register(page, kGrabberPort, IdGrabberWriteAddress, IdGrabberWriteData, timeout_ms);
}

void ReadCameraRegister(CVrxPage &page, uint32_t timeout_ms) {
  const std::string address_text = text_of(page, IdCameraReadAddress);
  const std::string count_text = text_of(page, IdCameraReadCount);
  if (address_text.size() > kMaxAddressDigits)
    return show(page, "Invalid camera read address", kReadCameraTitle);
  if (count_text.size() > kMaxDataDigits)
    return show(page, "Invalid number of bytes to read", kReadCameraTitle);
  const uint32_t requested = parse_hex(count_text);
  if (count_text.empty() || requested == 0) return;

  uint32_t address = parse_hex(address_text);
  std::vector<uint8_t> received(std::min(requested, kReceiveBufferSize));
  auto count = static_cast<uint32_t>(received.size());
  const uint32_t status = VRX_ControlRead(page.GetCtrl()->GetCameraHandle(), vrx::PortCamera,
                                          &address, received.data(), &count, timeout_ms);
  if (!read_succeeded(status)) return;
  if (count > requested)
    return show_count_mismatch(page, "OVERFLOW", requested, count, kReadCameraTitle);
  if (count < requested) show_count_mismatch(page, "TIMEOUT", requested, count, kReadCameraTitle);
  received.resize(std::min<std::size_t>(count, received.size()));
  if (received.size() * 2 > kMaxShownDigits) {
    char text[64];
    std::snprintf(text, sizeof text, "Only displaying the first %d characters",
                  static_cast<int>(kMaxShownDigits / 2));
    show(page, text, kReadCameraTitle);
  }
  if (vrc::window::Window *result = page.child(IdCameraReadResult))
    result->set_text(camera_read_display(received));
}

void ReadGrabberRegister(CVrxPage &page, uint32_t timeout_ms) {
  const std::string address_text = text_of(page, IdGrabberReadAddress);
  if (address_text.size() > kMaxAddressDigits)
    return show(page, "Invalid read address", kReadGrabberTitle);
  if (address_text.empty()) return;
  uint32_t address = parse_hex(address_text);
  std::vector<uint8_t> received(4);
  uint32_t count = 4;
  const uint32_t status = VRX_ControlRead(page.GetCtrl()->GetCameraHandle(), vrx::PortFrameGrabber,
                                          &address, received.data(), &count, timeout_ms);
  if (!read_succeeded(status)) return;
  if (count != 4) show_count_mismatch(page, "TIMEOUT", 4, count, kReadGrabberTitle);
  received.resize(std::min<uint32_t>(count, 4));
  if (vrc::window::Window *result = page.child(IdGrabberReadResult))
    result->set_text(hex_digits(received));
}

void ResetCamera(CVrxPage &page, uint32_t timeout_ms) {
  uint32_t zero = 0;
  VRX_ControlReset(page.GetCtrl()->GetCameraHandle(), vrx::PortCamera, &zero, timeout_ms);
}

}  // namespace vrc::pages
