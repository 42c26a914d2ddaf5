// The display surface as the display library's paint target, and a picture of the sample
// sheet (both pages, every control kind) for review.
#include <QDir>
#include <QPainter>
#include <QTabWidget>
#include <thread>

#include "platform/board/vrx_params.h"
#include "platform/window/display_surface.h"
#include "platform/window/property_sheet.h"
#include "qt_environment.h"
#include "sample_pages.h"

namespace window_test {
namespace {

using namespace vrc::window;

uint32_t make_rgb_buffer(uint32_t width, uint32_t height, const uint8_t rgb[3]) {
  uint32_t buffer = 0;
  VBL_BufferCreate(&buffer, VBL_BUFFER_TYPE_VIRTUAL);
  VBL_BufferParameterSet(buffer, VBL_WIDTH, width);
  VBL_BufferParameterSet(buffer, VBL_HEIGHT, height);
  VBL_BufferParameterSet(buffer, VBL_FORMAT, vrx::capture_format(16));  // bytes R, G, B
  VBL_BufferInit(buffer);
  void* address = nullptr;
  VBL_BufferParameterGet(buffer, VBL_ADDRESS, &address);
  auto* bytes = static_cast<uint8_t*>(address);
  for (uint32_t i = 0; i < width * height; ++i) std::copy(rgb, rgb + 3, bytes + 3 * i);
  return buffer;
}

TEST(DisplaySurface, ShowsWhatTheDisplayLibraryPaints) {
  DisplaySurface surface(nullptr);
  uint32_t display = 0;
  ASSERT_EQ(VDL_DisplayCreate(&display, surface.paint_sink(), surface.sink_context()), VRX_OK);
  const uint8_t orange[3] = {250, 120, 10};
  uint32_t buffer = make_rgb_buffer(8, 6, orange);
  ASSERT_EQ(VDL_BufferPaint(display, buffer), VRX_OK);
  EXPECT_EQ(surface.pictures_painted(), 1u);
  const QImage picture = surface.picture();
  EXPECT_EQ(picture.size(), QSize(8, 6));
  EXPECT_EQ(picture.pixel(3, 3), qRgb(250, 120, 10));

  // Painting from another thread only schedules the repaint.
  std::thread painter([&] { VDL_BufferPaint(display, buffer); });
  painter.join();
  EXPECT_EQ(surface.pictures_painted(), 2u);
  surface.widget()->resize(80, 60);
  const QImage shown = surface.widget()->grab().toImage();
  EXPECT_EQ(shown.pixel(40, 30), qRgb(250, 120, 10));
  VDL_DisplayDestroy(&display);
  VBL_BufferDestroy(&buffer);
}

// Renders both pages of the sample sheet side by side into one PNG.
TEST(SampleSheet, RendersEveryControlKindLegibly) {
  SamplePage first{kAcquisitionDialog}, second{kRegisterDialog};
  PropertySheet sheet("Vireo Control", nullptr);
  sheet.add_page(&first);
  sheet.add_page(&second);
  ASSERT_TRUE(sheet.create());
  for (auto [id, text, row, column] : {std::tuple{17001, "Live", 0, 0}, std::tuple{17002, "Freeze", 1, 0},
                                       std::tuple{17000, "Single Shot", 0, 1}, std::tuple{17003, "Abort", 1, 1},
                                       std::tuple{17004, "Refresh", 0, 4}})
    sheet.add_button(id, text, row, column);
  sheet.set_active_page(1);
  second.control<Edit>(201)->set_text("00000104");
  second.control<MultiLineEdit>(203)->set_text("00000200\r\nTIMEOUT: Requested [0x8], Read [0x4]");
  second.control<ScrollBar>(204)->set_position(160);
  second.control<Button>(205)->set_checked(true);
  sheet.set_active_page(0);
  first.control<Edit>(103)->set_text("1000");
  first.control<Button>(108)->set_checked(true);
  sheet.widget()->resize(620, 420);
  sheet.show(SW_SHOW);
  QApplication::processEvents();

  QImage pages[2];
  for (int index : {0, 1}) {
    sheet.set_active_page(index);
    QApplication::processEvents();
    pages[index] = sheet.widget()->grab().toImage();
  }
  QImage both(pages[0].width() * 2 + 10, pages[0].height(), QImage::Format_RGB32);
  both.fill(Qt::white);
  QPainter painter(&both);
  painter.drawImage(0, 0, pages[0]);
  painter.drawImage(pages[0].width() + 10, 0, pages[1]);
  painter.end();
  const QString path = QDir::current().filePath("sample_sheet.png");
  ASSERT_TRUE(both.save(path));
  EXPECT_GT(both.width(), 1000);
}

}  // namespace
}  // namespace window_test
