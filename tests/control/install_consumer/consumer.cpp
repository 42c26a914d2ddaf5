// An application of the installed panel API: builds a panel without a window, asks it for an
// unknown command and a parameter, and checks what comes back.
#include <vrcw32/vrc.h>

#include <cstdio>
#include <cstring>

namespace {

int g_reports = 0;
char g_message[64];

void on_error(const char *, eStat status, const char *message) {
  ++g_reports;
  if (status == VRC_BAD_PARAMETER) std::snprintf(g_message, sizeof g_message, "%s", message);
}

}  // namespace

int main() {
  CVrc panel(nullptr, 0x0001, &on_error);
  if (panel.Exec(static_cast<etVrcExec>(0)) != VRC_BAD_PARAMETER) return 1;
  if (g_reports != 1 || std::strcmp(g_message, "Parameter = 0x00000000") != 0) return 2;
  uint32_t handle = 0xDEADBEEF;
  if (panel.ParameterGet(VRC_PARAM_CAMERA_HANDLE, &handle) != VRC_OK || handle != 0) return 3;
  std::puts("panel consumer ok");
  return 0;
}
