// The panel as vrc-panel holds it: a CVrc over the main window, built with the default pages or
// with given page bits, and its window created at once. The program builds, holds and closes
// the control object here; the commands reach it through this host.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "platform/window/property_sheet.h"
#include "tools/vrc-panel/panel_json.h"
#include "vrcw32/vrc.h"

class CVrxCtrl;

namespace vrc_panel {

class PanelHost {
 public:
  // Builds the panel with the one-argument constructor's pages when `pages` is empty.
  PanelHost(CWnd *parent, std::optional<uint32_t> pages, VRC_ERROR_CALLBACK callback);
  ~PanelHost();
  PanelHost(const PanelHost &) = delete;
  PanelHost &operator=(const PanelHost &) = delete;

  // Exec(VRC_EXEC_CREATE).
  eStat create();
  // Destroys the panel (the control stops what it runs); later calls find no panel.
  void close();

  CVrc *vrc() const { return m_vrc.get(); }
  CVrxCtrl *control() const;
  // The panel's sheet while it has a window, else null.
  vrc::window::PropertySheet *sheet() const;
  // The board SDK handle of the open channel, 0 when no board is open.
  uint32_t camera_handle() const;
  bool live() const;
  // Acquisition figures since the last Live or Single Shot.
  AcquisitionFigures figures() const;

 private:
  std::unique_ptr<CVrc> m_vrc;
};

}  // namespace vrc_panel
