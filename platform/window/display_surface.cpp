// Display surface: the picture scaled to the widget, keeping its aspect ratio.
#include "platform/window/display_surface.h"

#include <QMetaObject>
#include <QPainter>
#include <QWidget>
#include <functional>

namespace vrc::window {
namespace {

class SurfaceWidget : public QWidget {
 public:
  SurfaceWidget(QWidget* parent, std::function<QImage()> picture)
      : QWidget(parent, parent ? Qt::Widget : Qt::Window), m_picture(std::move(picture)) {
    setMinimumSize(160, 120);
    setAttribute(Qt::WA_OpaquePaintEvent);
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    const QImage image = m_picture();
    if (image.isNull()) return;
    QSize size = image.size().scaled(this->size(), Qt::KeepAspectRatio);
    QRect target(QPoint((width() - size.width()) / 2, (height() - size.height()) / 2), size);
    painter.drawImage(target, image);
  }

 private:
  std::function<QImage()> m_picture;
};

}  // namespace

DisplaySurface::DisplaySurface(Window* parent) {
  set_parent_window(parent);
  attach(std::make_unique<SurfaceWidget>(parent ? parent->widget() : nullptr, [this] { return picture(); }));
}

QImage DisplaySurface::picture() const {
  std::lock_guard lock(m_mutex);
  return m_picture.copy();
}

uint64_t DisplaySurface::pictures_painted() const {
  std::lock_guard lock(m_mutex);
  return m_painted;
}

void DisplaySurface::sink(void* context, const uint8_t* bgrx, uint32_t width, uint32_t height,
                          uint32_t bytes_per_line) {
  auto* surface = static_cast<DisplaySurface*>(context);
  // Format_RGB32 is 0xffRRGGBB in native order: bytes B, G, R, X on this little-endian host.
  QImage copy = QImage(bgrx, static_cast<int>(width), static_cast<int>(height), static_cast<qsizetype>(bytes_per_line),
                       QImage::Format_RGB32)
                    .copy();
  {
    std::lock_guard lock(surface->m_mutex);
    surface->m_picture = std::move(copy);
    ++surface->m_painted;
  }
  if (QWidget* widget = surface->widget())
    QMetaObject::invokeMethod(widget, qOverload<>(&QWidget::update), Qt::QueuedConnection);
}

}  // namespace vrc::window
