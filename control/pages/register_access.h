// Reading and writing registers by hand through the board's control ports, from the hex texts a
// page's edits hold: the register write of either port, the camera read into a multi-line
// result, and the camera reset. Every check shows its message box and does nothing else; the
// SDK's own failures are reported by its error handler and only returned here.
#pragma once

#include <cstdint>

#include "platform/board/vrx_params.h"

class CVrxPage;

namespace vrc::pages {

// The camera register controls, the same on every page that carries them.
enum CameraRegisterId : int {
  IdCameraWriteAddress = 17390,
  IdCameraWriteData = 17391,
  IdCameraReadAddress = 17392,
  IdCameraReadCount = 17393,
  IdCameraReadResult = 17394,
  IdCameraWrite = 17400,
  IdCameraRead = 17402,
  IdCameraReset = 17404
};

// A register write: the port, the edits that hold the address and the data, and the caption of
// its message boxes.
struct RegisterWrite {
  uint32_t port;
  int address_id;
  int data_id;
  const char *caption;
};
inline constexpr RegisterWrite kCameraRegisterWrite{vrx::PortCamera, IdCameraWriteAddress,
                                                    IdCameraWriteData, "Write to Camera"};

// Each returns the SDK's status, or 0 when a check stopped it or there was nothing to do.
uint32_t WriteRegister(CVrxPage &page, const RegisterWrite &write, uint32_t timeout_ms);
uint32_t ReadCameraRegisters(CVrxPage &page, uint32_t timeout_ms);
uint32_t ResetCamera(CVrxPage &page, uint32_t timeout_ms);

}  // namespace vrc::pages
