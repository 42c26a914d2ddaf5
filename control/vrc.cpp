// CVrc: the exported wrapper. Copies share one control; a count per control, kept beside the
// wrappers, lets the last wrapper destroy it.
#include <map>
#include <mutex>

#include "control/vrx_ctrl.h"
#include "vrcw32/vrc.h"

namespace {

std::mutex &shares_mutex() {
  static std::mutex mutex;
  return mutex;
}
std::map<CVrxCtrl *, int> &shares() {
  static std::map<CVrxCtrl *, int> counts;
  return counts;
}

CVrxCtrl *share(CVrxCtrl *ctrl) {
  if (!ctrl) return nullptr;
  std::lock_guard lock(shares_mutex());
  ++shares()[ctrl];
  return ctrl;
}

// Drops one wrapper's share; true when it was the last.
bool unshare(CVrxCtrl *ctrl) {
  if (!ctrl) return false;
  std::lock_guard lock(shares_mutex());
  auto it = shares().find(ctrl);
  if (it == shares().end() || --it->second > 0) return false;
  shares().erase(it);
  return true;
}

}  // namespace

CVrc::CVrc(CWnd *parent, VRC_ERROR_CALLBACK callback)
    : m_ctrl(share(new CVrxCtrl(parent, callback))) {}

CVrc::CVrc(CWnd *parent, uint32_t pages, VRC_ERROR_CALLBACK callback)
    : m_ctrl(share(new CVrxCtrl(parent, pages, callback))) {}

CVrc::CVrc(const CVrc &other) : m_ctrl(share(other.m_ctrl)) {}

CVrc &CVrc::operator=(const CVrc &other) {
  if (this == &other || m_ctrl == other.m_ctrl) return *this;
  CVrxCtrl *previous = m_ctrl;
  m_ctrl = share(other.m_ctrl);
  if (unshare(previous)) delete previous;
  return *this;
}

CVrc::~CVrc() {
  if (unshare(m_ctrl)) delete m_ctrl;
}

eStat CVrc::Exec(etVrcExec command) { return m_ctrl->Exec(command); }

eStat CVrc::ParameterGet(etVrcParam parameter, void *value) {
  return m_ctrl->ParameterGet(parameter, value);
}

eStat CVrc::ParameterSet(etVrcParam parameter, void *value) {
  return m_ctrl->ParameterSet(parameter, value);
}

void CVrc::DisplayStats() { m_ctrl->DisplayStats(); }

void CVrc::PrintToStatusBar(char *text) { m_ctrl->PrintToStatusBar(text); }
