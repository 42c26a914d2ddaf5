// A window that shows pictures painted by the display library. paint_sink() and
// sink_context() are handed to the display library (VDL_DisplayCreate takes a sink of exactly
// this shape); the sink may be called from any thread, copies the picture and schedules a
// repaint on the window's thread. Destroy the display before the surface.
#pragma once

#include <QImage>
#include <cstdint>
#include <mutex>

#include "platform/window/window.h"

namespace vrc::window {

// Receives one picture: 32-bit pixels, bytes B, G, R, X, `bytes_per_line` apart.
using PaintSink = void (*)(void *sink_context, const uint8_t *bgrx, uint32_t width, uint32_t height,
                           uint32_t bytes_per_line);

class DisplaySurface : public Window {
 public:
  explicit DisplaySurface(Window *parent);

  PaintSink paint_sink() const { return &DisplaySurface::sink; }
  void *sink_context() { return this; }

  QImage picture() const;  // the last picture painted (a copy)
  uint64_t pictures_painted() const;

 private:
  static void sink(void *context, const uint8_t *bgrx, uint32_t width, uint32_t height,
                   uint32_t bytes_per_line);

  mutable std::mutex m_mutex;
  QImage m_picture;
  uint64_t m_painted = 0;
};

}  // namespace vrc::window
