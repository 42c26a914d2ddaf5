// The messages between the control and its pages, all relative to WM_USER, and the coalescing
// rule every post of the panel follows.
#pragma once

#include <cstdint>

#include "platform/window/window.h"

namespace vrc::control {

using window::WM_USER;

inline constexpr uint32_t kMsgUpdateView = WM_USER + 6;         // update enable states
inline constexpr uint32_t kMsgFifoOverflow = WM_USER + 8;       // event bit 0x4
inline constexpr uint32_t kMsgReleaseBoard = WM_USER + 9;       // to the Configure page
inline constexpr uint32_t kMsgRefresh = WM_USER + 10;           // re-read from the board
inline constexpr uint32_t kMsgApply = WM_USER + 11;             // write to the board
inline constexpr uint32_t kMsgPaint = WM_USER + 12;             // event bit 0x2
inline constexpr uint32_t kMsgCaptureDone = WM_USER + 13;       // to the Display page
inline constexpr uint32_t kMsgInterruptTest = WM_USER + 14;     // event bit 0x1
inline constexpr uint32_t kMsgInterruptTimeout = WM_USER + 15;  // event bit 0x800
inline constexpr uint32_t kMsgAcqTrigEnd = WM_USER + 16;        // event bit 0x400, left unmapped
inline constexpr uint32_t kMsgFrameLost = WM_USER + 17;         // event bit 0x8

// The range a waiting message must fall in to hold back a further post.
inline constexpr uint32_t kCoalesceFirst = WM_USER;
inline constexpr uint32_t kCoalesceLast = WM_USER + 200;

// Whether `target` has a window and nothing in WM_USER..WM_USER+200 waits for it.
inline bool may_post(const window::Window &target) {
  return target.has_window() && !target.has_queued(kCoalesceFirst, kCoalesceLast);
}

// Posts under the coalescing rule; false when the post was skipped.
inline bool post_coalesced(window::Window &target, uint32_t message) {
  if (target.has_queued(kCoalesceFirst, kCoalesceLast)) return false;
  target.post(message);
  return true;
}

}  // namespace vrc::control
