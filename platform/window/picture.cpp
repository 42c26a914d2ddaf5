// Picture control on a QLabel holding a pixmap.
#include "platform/window/picture.h"

#include <QImage>
#include <algorithm>
#include <QLabel>
#include <QPixmap>

namespace vrc::window {

Picture::Picture(int id, Window *parent, QWidget *parent_widget)
    : Control(ControlKind::Picture, id, parent) {
  auto label = std::make_unique<QLabel>(parent_widget);
  label->setAlignment(Qt::AlignCenter);
  attach(std::move(label));
}

QLabel *Picture::label() const { return static_cast<QLabel *>(widget()); }

bool Picture::set_image(std::span<const uint32_t> pixels, int width, int height) {
  if (width <= 0 || height <= 0 || pixels.size() != static_cast<std::size_t>(width) * height)
    return false;
  QImage image(width, height, QImage::Format_ARGB32);
  for (int y = 0; y < height; ++y) {
    auto *row = reinterpret_cast<uint32_t *>(image.scanLine(y));
    std::copy_n(pixels.begin() + static_cast<std::ptrdiff_t>(y) * width, width, row);
  }
  label()->setPixmap(QPixmap::fromImage(image));
  label()->setFixedSize(width, height);
  m_width = width;
  m_height = height;
  return true;
}

}  // namespace vrc::window
