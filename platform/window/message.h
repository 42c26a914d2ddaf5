// Window messages as the panel uses them: numbers relative to WM_USER, a command message that
// carries a control id and a notification code, and the other system messages the layer
// delivers. Values are those of the Win32 user interface, so that code written against them
// reads the same.
#pragma once

#include <cstdint>

namespace vrc::window {

class Window;

using WPARAM = uintptr_t;
using LPARAM = intptr_t;
using LRESULT = intptr_t;

inline constexpr uint32_t WM_QUIT = 0x0012;
inline constexpr uint32_t WM_KEYDOWN = 0x0100;
inline constexpr uint32_t WM_COMMAND = 0x0111;
inline constexpr uint32_t WM_SYSCOMMAND = 0x0112;
inline constexpr uint32_t WM_HSCROLL = 0x0114;
inline constexpr uint32_t WM_USER = 0x0400;

inline constexpr WPARAM SC_CLOSE = 0xF060;

// Notification codes in the high word of a WM_COMMAND's wparam.
inline constexpr uint16_t BN_CLICKED = 0;
inline constexpr uint16_t CBN_SELCHANGE = 1;
inline constexpr uint16_t EN_KILLFOCUS = 0x0200;
inline constexpr uint16_t EN_CHANGE = 0x0300;

// Scroll request in the low word of a WM_HSCROLL's wparam; the position is in the high word.
inline constexpr uint16_t SB_THUMBPOSITION = 4;

// Show commands.
inline constexpr int SW_HIDE = 0;
inline constexpr int SW_SHOW = 5;

// Well-known control ids of a property sheet.
inline constexpr int IDC_STATIC = -1;
inline constexpr int ID_HELP = 9;
inline constexpr int ID_TAB_CONTROL = 12320;
inline constexpr int ID_APPLY_NOW = 12321;

constexpr WPARAM make_wparam(uint32_t low, uint32_t high) {
  return static_cast<WPARAM>((low & 0xFFFF) | ((high & 0xFFFF) << 16));
}
constexpr uint16_t low_word(WPARAM value) { return static_cast<uint16_t>(value & 0xFFFF); }
constexpr uint16_t high_word(WPARAM value) { return static_cast<uint16_t>((value >> 16) & 0xFFFF); }

// One queued message; a null target is a message to the thread (WM_QUIT).
struct Message {
  Window* target = nullptr;
  uint32_t message = 0;
  WPARAM wparam = 0;
  LPARAM lparam = 0;
};

}  // namespace vrc::window
