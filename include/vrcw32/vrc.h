/*
 * vrcw32 camera control panel: the public C++ API.
 *
 * An application creates the panel over one of its windows with `CVrc`, then calls
 * Exec(VRC_EXEC_CREATE) to make the modeless sheet window and either runs its own message loop
 * or Exec(VRC_EXEC_MESSAGE_LOOP). Every failure is returned as an eStat and reported once to the
 * error callback given to the constructor.
 *
 * The enumerations carry fixed values: applications pass them as numbers.
 */
#ifndef VRCW32_VRC_H
#define VRCW32_VRC_H

#include <cstdint>

#define VRC_API __attribute__((visibility("default")))

namespace vrc::window {
class Window;
}
// The parent window type of the panel: a window of the panel's windowing layer, or null.
using CWnd = vrc::window::Window;

// Status of every CVrc and CVrxCtrl operation, also passed to the error callback.
enum eStat : uint32_t {
  VRC_OK = 0,
  VRC_BAD_PARAMETER = 2,  // unknown command or parameter, null argument, or no memory
  VRC_CREATE_FAILED = 15  // the property sheet window could not be created
};

// Commands of Exec.
enum etVrcExec : uint32_t {
  VRC_EXEC_CREATE = 0x80020100u,       // create the modeless sheet window
  VRC_EXEC_MESSAGE_LOOP = 0x80020200u  // run the panel's message loop until it is closed
};

// Parameters of ParameterGet and ParameterSet (each a 32-bit word).
enum etVrcParam : uint32_t {
  VRC_PARAM_CAMERA_HANDLE = 0x80010100u,   // get: the board SDK handle of the channel
  VRC_PARAM_EVENT_CALLBACK = 0x80010200u,  // set: the event callback used when acquisition starts
  VRC_PARAM_WINDOW_HANDLE = 0x80010300u,   // get: the sheet's window
  VRC_PARAM_SHOW_WINDOW = 0x80010400u,     // set: a show command (0 hide, 5 show)
  VRC_PARAM_PLAYBACK_FRAME = 0x80010500u   // get: the current playback frame, from 1
};

// The application's error callback: function name, status, message.
typedef void (*VRC_ERROR_CALLBACK)(const char *function, eStat status, const char *message);

class CVrxCtrl;

// The exported wrapper: owns one CVrxCtrl and forwards every call to it. Copies share the
// control; the last wrapper to go destroys it.
class VRC_API CVrc {
 public:
  CVrc(CWnd *parent, VRC_ERROR_CALLBACK callback);
  CVrc(CWnd *parent, uint32_t pages, VRC_ERROR_CALLBACK callback);
  CVrc(const CVrc &other);
  CVrc &operator=(const CVrc &other);
  ~CVrc();

  eStat Exec(etVrcExec command);
  eStat ParameterGet(etVrcParam parameter, void *value);
  eStat ParameterSet(etVrcParam parameter, void *value);
  void DisplayStats();
  void PrintToStatusBar(char *text);

  // The control itself, for hosts that drive the sheet directly.
  CVrxCtrl *GetCtrl() const { return m_ctrl; }

 private:
  CVrxCtrl *m_ctrl;
};

#endif
