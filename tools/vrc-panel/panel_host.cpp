// The control object as vrc-panel uses it.
#include "tools/vrc-panel/panel_host.h"

#include "control/vrx_ctrl.h"

namespace vrc_panel {

PanelHost::PanelHost(CWnd *parent, std::optional<uint32_t> pages, VRC_ERROR_CALLBACK callback)
    : m_vrc(pages ? std::make_unique<CVrc>(parent, *pages, callback)
                  : std::make_unique<CVrc>(parent, callback)) {}

PanelHost::~PanelHost() { close(); }

eStat PanelHost::create() { return m_vrc->Exec(VRC_EXEC_CREATE); }

void PanelHost::close() { m_vrc.reset(); }

CVrxCtrl *PanelHost::control() const { return m_vrc ? m_vrc->GetCtrl() : nullptr; }

vrc::window::PropertySheet *PanelHost::sheet() const {
  CVrxCtrl *ctrl = control();
  return ctrl && ctrl->has_window() ? ctrl : nullptr;
}

uint32_t PanelHost::camera_handle() const {
  uint32_t handle = 0;
  if (m_vrc && m_vrc->ParameterGet(VRC_PARAM_CAMERA_HANDLE, &handle) != VRC_OK) return 0;
  return handle;
}

bool PanelHost::live() const {
  CVrxCtrl *ctrl = control();
  return ctrl && ctrl->GetLive() != 0;
}

AcquisitionFigures PanelHost::figures() const {
  CVrxCtrl *ctrl = control();
  if (!ctrl) return {};
  const VrcAcquisitionCounters counters = ctrl->GetCounters();
  return {counters.acquired, counters.painted, counters.dropped, counters.fps};
}

}  // namespace vrc_panel
