// The control's command and parameter interface: Exec, ParameterGet, ParameterSet,
// VRC_PropertyGet, the status bar, the modeless window and the control's own message loop.
#include <cstdio>
#include <cstring>

#include "control/pages/display_page.h"
#include "control/vrx_ctrl.h"
#include "platform/board/vrx_sdk.h"
#include "platform/window/desktop.h"

#include <QWidget>

namespace {

constexpr std::size_t kPropertyValueSize = 256;

// Reports "<format>" with `value` through the control and returns VRC_BAD_PARAMETER.
eStat bad_parameter(CVrxCtrl &ctrl, const char *function, const char *format, uint32_t value) {
  char text[64];
  std::snprintf(text, sizeof text, format, value);
  ctrl.ErrHandler(function, VRC_BAD_PARAMETER, text);
  return VRC_BAD_PARAMETER;
}

}  // namespace

eStat CVrxCtrl::Exec(etVrcExec command) {
  switch (command) {
    case VRC_EXEC_CREATE:
      if (DoModeless() != 0) return VRC_OK;
      ErrHandler("VrxCtrl::Exec", VRC_CREATE_FAILED, "Failed to create PropertySheet");
      return VRC_CREATE_FAILED;
    case VRC_EXEC_MESSAGE_LOOP: MessageHandler(); return VRC_OK;
  }
  return bad_parameter(*this, "VrxCtrl::Exec", "Parameter = 0x%08x", command);
}

eStat CVrxCtrl::ParameterGet(etVrcParam parameter, void *value) {
  uint32_t word = 0;
  switch (parameter) {
    case VRC_PARAM_CAMERA_HANDLE: word = m_camera_handle; break;
    case VRC_PARAM_EVENT_CALLBACK: return VRC_OK;  // the callback is read through GetCallback
    case VRC_PARAM_WINDOW_HANDLE:
      word = has_window() ? static_cast<uint32_t>(widget()->winId()) : 0;
      break;
    case VRC_PARAM_PLAYBACK_FRAME:
      word = m_display ? static_cast<uint32_t>(m_display->GetCurrentFrame()) : 0;
      break;
    default:
      return bad_parameter(*this, "VrxCtrl::ParameterGet", "Bad Parameter [0x%08x]", parameter);
  }
  if (!value)
    return bad_parameter(*this, "VrxCtrl::ParameterGet", "Bad Parameter [0x%08x]", parameter);
  std::memcpy(value, &word, sizeof word);
  return VRC_OK;
}

eStat CVrxCtrl::ParameterSet(etVrcParam parameter, void *value) {
  switch (parameter) {
    case VRC_PARAM_EVENT_CALLBACK:
      m_event_callback = reinterpret_cast<EventCallback>(value);
      return VRC_OK;
    case VRC_PARAM_SHOW_WINDOW:
      show(static_cast<int>(reinterpret_cast<intptr_t>(value)));
      return VRC_OK;
    default: return bad_parameter(*this, "VrxCtrl::ParameterSet", "Parameter = 0x%08x", parameter);
  }
}

// Looks `key` up in lines of key=value. Tokens are split at "=" and at newlines and taken in
// pairs, key then value, purely by position.
eStat CVrxCtrl::VRC_PropertyGet(uint8_t *value, uint8_t *properties, const uint8_t *key) {
  if (!value || !properties || !key) return VRC_BAD_PARAMETER;
  const std::size_t length = std::strlen(reinterpret_cast<const char *>(properties));
  void *block = nullptr;
  if (VRX_MemoryAlloc(0, &block, static_cast<uint32_t>(length + kPropertyValueSize), 0, 0) !=
          VRX_OK ||
      !block)
    return VRC_BAD_PARAMETER;
  char *copy = static_cast<char *>(block);
  std::memcpy(copy, properties, length);
  copy[length] = '\0';

  eStat status = VRC_OK;
  bool found = false;
  char *state = nullptr;
  for (char *token = strtok_r(copy, "=\n", &state); token && !found;
       token = strtok_r(nullptr, "=\n", &state)) {
    const bool match = std::strcmp(token, reinterpret_cast<const char *>(key)) == 0;
    char *paired = strtok_r(nullptr, "=\n", &state);
    if (!match) continue;
    found = true;
    if (!paired) {
      status = VRC_BAD_PARAMETER;
      break;
    }
    // A value too long for 256 bytes is cut there and left unterminated, as callers expect.
    const std::size_t size = std::strlen(paired) + 1;
    std::memcpy(value, paired, size <= kPropertyValueSize ? size : kPropertyValueSize);
  }
  if (!found) value[0] = '\0';
  VRX_MemoryFreeAndNull(0, &block);
  return status;
}

void CVrxCtrl::PrintToStatusBar(char *text) {
  if (text) vrc::window::desktop().set_status_text(text);
}

int CVrxCtrl::DoModeless() {
  if (!create()) return 0;
  show(vrc::window::SW_SHOW);
  return 1;
}

void CVrxCtrl::MessageHandler() {
  m_quit = false;
  vrc::window::MessageQueue &messages = queue();
  while (!m_quit) {
    if (std::optional<vrc::window::Message> next = messages.peek(nullptr, 0, 0, true))
      vrc::window::MessageQueue::dispatch(*next);
    else
      vrc::window::desktop().sleep_ms(10);
  }
}
