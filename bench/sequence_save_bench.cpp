// Saving a captured sequence from the Display page: 100 frames of 1920 x 1080 8-bit mono from
// the simulated board, as TIFF, BMP, raw and JPEG files, beside writing the same frames' bytes
// to as many files with plain fwrite (the peer). Prints the time of each and its ratio to the
// peer. Runs on the offscreen Qt platform with scripted dialogs.
#include <QApplication>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "control/page_slots.h"
#include "control/pages/display_page.h"
#include "control/vrx_ctrl.h"
#include "platform/board/sim/vrxsim.h"
#include "platform/board/vrx_params.h"
#include "platform/window/scripted_desktop.h"
#include "vrcw32/zep_core.h"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
constexpr uint32_t kFrames = 100, kWidth = 1920, kHeight = 1080;

void press(CVrxCtrl &ctrl, int id) {
  ctrl.send(vrc::window::WM_COMMAND,
            vrc::window::make_wparam(static_cast<uint32_t>(id), vrc::window::BN_CLICKED));
}

void set(uint32_t handle, uint32_t parameter, uint32_t value) {
  VRX_ParameterSet(handle, parameter, &value);
}

double seconds_since(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

// Writes each frame's bytes to its own file with fwrite; the seconds taken.
double fwrite_frames(const CVrxPageDisplay &display, const fs::path &folder, std::size_t bytes) {
  const Clock::time_point start = Clock::now();
  for (uint32_t frame = 1; frame <= kFrames; ++frame) {
    void *address = nullptr;
    VBL_BufferParameterGet(display.GetFrameBuffer(static_cast<int>(frame)), VBL_ADDRESS, &address);
    const std::string name = (folder / ("peer" + std::to_string(frame) + ".raw")).string();
    if (std::FILE *file = std::fopen(name.c_str(), "wb")) {
      std::fwrite(address, 1, bytes, file);
      std::fclose(file);
    }
  }
  return seconds_since(start);
}

}  // namespace

int main(int argc, char **argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  auto owned = std::make_unique<vrc::window::ScriptedDesktop>();
  vrc::window::ScriptedDesktop &desk = *owned;
  vrc::window::set_desktop(std::move(owned));
  ZEP_Init();
  ZEP_ErrHandlerInstall(nullptr);

  CVrxCtrl ctrl(nullptr, 0x3, nullptr);
  ctrl.Exec(VRC_EXEC_CREATE);
  ctrl.GetPage(vrc::control::PageSlot::Configure)
      ->control<vrc::window::Button>(17023)
      ->click_as_user();
  const uint32_t handle = ctrl.GetCameraHandle();
  auto *display = dynamic_cast<CVrxPageDisplay *>(ctrl.GetPage(vrc::control::PageSlot::Display));
  if (handle == 0 || !display) {
    std::fprintf(stderr, "no simulated board\n");
    return 1;
  }
  set(handle, vrx::ParamActiveXLength, kWidth);
  set(handle, vrx::ParamActiveYLength, kHeight);
  set(handle, vrx::ParamSrcXLength, kWidth);
  set(handle, vrx::ParamSrcYLength, kHeight);
  set(handle, vrx::ParamBufferCount, kFrames);
  display->OnRefreshMessage();
  vrxsim_set_frame_rate(handle, 200);
  press(ctrl, 17001);  // Live
  const Clock::time_point live = Clock::now();
  while (ctrl.GetCounters().acquired < kFrames + 10 && seconds_since(live) < 30)
    app.processEvents();
  press(ctrl, 17002);  // Freeze
  app.processEvents();
  display->Play();  // walks the ring into the frame table

  const fs::path folder = fs::temp_directory_path() / "vrc_sequence_bench";
  fs::remove_all(folder);
  fs::create_directories(folder);
  uint32_t line_length = 0;
  VRX_ParameterGet(handle, vrx::ParamDstXLength, &line_length);
  const std::size_t frame_bytes = std::size_t{line_length} * kHeight;
  // The peer runs twice and counts its faster run: the first also warms the folder and the cache.
  const double peer = std::min(fwrite_frames(*display, folder, frame_bytes),
                               fwrite_frames(*display, folder, frame_bytes));
  std::printf("%u frames of %u x %u 8-bit mono\n", kFrames, kWidth, kHeight);
  std::printf("%-6s %9.3f s\n", "fwrite", peer);
  const struct {
    const char *name;
    int filter;
  } types[] = {{"TIFF", 1}, {"BMP", 3}, {"raw", 4}, {"JPEG", 2}};
  for (const auto &type : types) {
    desk.answer_file((folder / "seq.x").string(), type.filter);
    const Clock::time_point start = Clock::now();
    const uint32_t written = display->SaveSequence(handle, 1, kFrames);
    const double taken = seconds_since(start);
    std::printf("%-6s %9.3f s  %5.2f x fwrite  (%u files)\n", type.name, taken, taken / peer,
                written);
  }
  fs::remove_all(folder);
  return 0;
}
