// A picture control: shows an image that the page draws itself, pixel by pixel (a curve, a
// small preview). It sends no notifications.
#pragma once

#include <cstdint>
#include <span>

#include "platform/window/controls.h"

class QLabel;

namespace vrc::window {

class Picture : public Control {
 public:
  Picture(int id, Window *parent, QWidget *parent_widget);
  // Shows `width` x `height` pixels, 0xAARRGGBB, row by row; false when the sizes disagree.
  bool set_image(std::span<const uint32_t> pixels, int width, int height);
  int image_width() const { return m_width; }
  int image_height() const { return m_height; }

 private:
  QLabel *label() const;
  int m_width = 0, m_height = 0;
};

}  // namespace vrc::window
