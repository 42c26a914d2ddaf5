// The acquisition figures in the main window's status bar: while the panel is live, twice a
// second, the frames acquired, painted and dropped since Live and the data rate in MB/s
// (10^6 bytes per second of captured frames over the last half second). The last figures stay
// when acquisition stops.
#pragma once

#include <QTimer>
#include <chrono>
#include <cstdint>
#include <string>

#include "tools/vrc-panel/panel_json.h"

namespace vrc_panel {

class MainWindow;
class PanelHost;

// The status-bar text of the figures.
std::string figures_text(const AcquisitionFigures &figures, double megabytes_per_second);

class StatusFigures {
 public:
  StatusFigures(PanelHost &panel, MainWindow &main_window);
  void update();

 private:
  // Bytes of one captured frame: destination line length times lines.
  uint32_t frame_bytes() const;

  PanelHost &m_panel;
  MainWindow &m_main_window;
  QTimer m_timer;
  bool m_was_live = false;
  uint32_t m_frame_bytes = 0;
  uint64_t m_last_acquired = 0;
  std::chrono::steady_clock::time_point m_last_time;
};

}  // namespace vrc_panel
