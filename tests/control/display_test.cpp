// The Display page over the simulated board: buffer sizing from the board's settings, playback
// timing, Stop and WM_QUIT, and sequences saved to files of each type, checked by outside tools
// and loaded back into the ring, with a failure injected at each step.
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <string>
#include <vector>

#include <QImage>
#include <QWidget>

#include "control/pages/display_page.h"
#include "control/pages/sequence_formats.h"
#include "control/vrx_messages.h"
#include "control_support.h"
#include "platform/board/vrx_params.h"
#include "platform/window/message_queue.h"
#include "support/error_capture.h"
#include "vrcw32/zep.h"

namespace control_test {
namespace {

namespace fs = std::filesystem;
using vrc::control::PageSlot;

constexpr int kLive = 17001, kFreeze = 17002;
constexpr int kIdPlay = 17148, kIdStop = 17149;
enum Filter { kTif = 1, kJpg = 2, kBmp = 3, kRaw = 4 };
const char *const kExtensions[] = {"", "tif", "jpg", "bmp", "raw"};

std::string run(const std::string &command) {
  std::string output;
  if (FILE *pipe = popen(command.c_str(), "r")) {
    char chunk[256];
    while (std::fgets(chunk, sizeof chunk, pipe)) output += chunk;
    pclose(pipe);
  }
  return output;
}

class DisplayPage : public PanelTest {
 protected:
  void SetUp() override {
    PanelTest::SetUp();
    folder = fs::temp_directory_path() / ("vrc_display_" + std::to_string(::getpid()));
    fs::remove_all(folder);
    fs::create_directories(folder);
    make();
    ASSERT_TRUE(configure());
  }
  void TearDown() override {
    PanelTest::TearDown();
    fs::remove_all(folder);
  }
  CVrxPageDisplay &display() { return *page<CVrxPageDisplay>(PageSlot::Display); }
  void set(uint32_t parameter, uint32_t value) {
    ASSERT_EQ(VRX_ParameterSet(handle(), parameter, &value), VRX_OK) << std::hex << parameter;
  }
  uint32_t get(uint32_t parameter) {
    uint32_t value = 0;
    EXPECT_EQ(VRX_ParameterGet(handle(), parameter, &value), VRX_OK);
    return value;
  }
  // Captures a full ring of `frames` buffers and freezes.
  void capture(uint32_t frames, uint32_t format = vrx::capture_format(0)) {
    set(vrx::ParamBufferCount, frames);
    set(vrx::ParamCaptureFormat, format);
    display().OnRefreshMessage();
    press(kLive);
    ASSERT_TRUE(pump_until([&] { return ctrl->GetCounters().painted >= frames + 2; }));
    press(kFreeze);
    pump_for(30);
  }
  // The bytes of frame `frame` as the ring holds them now.
  std::vector<uint8_t> frame_bytes(int frame) {
    void *address = nullptr;
    EXPECT_EQ(VBL_BufferParameterGet(display().GetFrameBuffer(frame), VBL_ADDRESS, &address),
              VRX_OK);
    const std::size_t size = std::size_t{get(vrx::ParamDstXLength)} * get(vrx::ParamCaptureHeight);
    const auto *bytes = static_cast<const uint8_t *>(address);
    return {bytes, bytes + size};
  }
  void clear_frame(int frame) {
    void *address = nullptr;
    ASSERT_EQ(VBL_BufferParameterGet(display().GetFrameBuffer(frame), VBL_ADDRESS, &address),
              VRX_OK);
    std::memset(address, 0, std::size_t{get(vrx::ParamDstXLength)} * get(vrx::ParamCaptureHeight));
  }
  uint32_t save(Filter filter, uint32_t first, uint32_t last, const std::string &name = "seq.bmp") {
    desk().answer_file((folder / name).string(), filter);
    return display().SaveSequence(handle(), first, last);
  }
  // The load dialog lists JPEG first and TIFF second: `filter_index` is that dialog's.
  uint32_t load(int filter_index, uint32_t first, uint32_t last, const std::string &name) {
    desk().answer_file((folder / name).string(), filter_index);
    return display().LoadSequence(handle(), first, last);
  }
  std::vector<std::string> files() const {
    std::vector<std::string> names;
    for (const auto &entry : fs::directory_iterator(folder))
      names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
  }
  std::vector<std::string> boxes() const {
    std::vector<std::string> shown;
    for (const auto &box : const_cast<DisplayPage *>(this)->desk().boxes())
      shown.push_back(box.caption + ": " + box.text);
    return shown;
  }

  vrc::test::ErrorCapture zep_errors;
  fs::path folder;
};

template <typename Case>
std::string case_name(const ::testing::TestParamInfo<Case> &param_info) {
  return param_info.param.name;
}
std::string filter_name(const ::testing::TestParamInfo<Filter> &param_info) {
  return kExtensions[param_info.param];
}

// ---- Sizing and coercion ----

struct SizingCase {
  const char *name;
  uint32_t depth, colour, format_k;
  uint32_t pixel_code, line_code, pixel_bin, line_bin;
  bool interlaced;
  uint32_t width, height, expected_k;
};
std::ostream &operator<<(std::ostream &out, const SizingCase &c) { return out << c.name; }

class DisplaySizing : public DisplayPage, public ::testing::WithParamInterface<SizingCase> {};

TEST_P(DisplaySizing, ConversionBufferFollowsTheBoard) {
  const SizingCase &c = GetParam();
  set(vrx::ParamCameraDepth, c.depth);
  set(vrx::ParamCameraColour, c.colour);
  set(vrx::ParamCaptureFormat, vrx::capture_format(c.format_k));
  set(vrx::ParamSrcXLength, 641);
  set(vrx::ParamSrcYLength, 481);
  set(vrx::ParamSubsamplePixel, c.pixel_code);
  set(vrx::ParamSubsampleLine, c.line_code);
  set(vrx::ParamBinPixel, c.pixel_bin);
  set(vrx::ParamBinLine, c.line_bin);
  if (c.interlaced) {
    set(vrx::ParamCameraInterlaced, vrx::InterlacedOn);
    set(vrx::ParamInterlaceMode, 0xC0020604);
  }
  display().control<vrc::window::Button>(17141)->click_as_user();
  ASSERT_EQ(display().SetUpDisplay(), 0);
  ASSERT_TRUE(display().GetConversionValid());
  uint32_t width = 0, height = 0, format = 0;
  VBL_BufferParameterGet(display().GetConversionBuffer(), VBL_WIDTH, &width);
  VBL_BufferParameterGet(display().GetConversionBuffer(), VBL_HEIGHT, &height);
  VBL_BufferParameterGet(display().GetConversionBuffer(), VBL_FORMAT, &format);
  EXPECT_EQ(width, c.width);
  EXPECT_EQ(height, c.height);
  EXPECT_EQ(format, vrx::capture_format(c.expected_k));
  EXPECT_EQ(get(vrx::ParamCaptureFormat), vrx::capture_format(c.expected_k));
  EXPECT_NE(display().GetDisplayBuffer(), 0u);
  EXPECT_EQ(desk().wait_cursor_depth(), 0);
}

constexpr uint32_t kMono = 1, kRgb = 3, kBayer = 0xC0021201;
constexpr uint32_t kFull = 0xC0020701, kHalf = 0xC0020702, kQuarter = 0xC0020703,
                   kEighth = 0xC0020704;
INSTANTIATE_TEST_SUITE_P(
    Cases, DisplaySizing,
    ::testing::Values(
        SizingCase{"Mono8", 8, kMono, 0, kFull, kFull, 1, 1, false, 641, 481, 0},
        SizingCase{"Mono12Halves", 12, kMono, 18, kHalf, kQuarter, 1, 1, false, 321, 121, 18},
        SizingCase{"Mono10ForcedFrom16", 10, kMono, 1, kEighth, kFull, 1, 1, false, 81, 481, 18},
        SizingCase{"Bayer14Binned", 14, kBayer, 0, kFull, kFull, 2, 4, false, 320, 120, 0},
        SizingCase{"Bayer16Forced", 16, kBayer, 16, kFull, kFull, 1, 1, false, 641, 481, 25},
        SizingCase{"Mono32Forced", 32, kMono, 0, kFull, kFull, 1, 1, false, 641, 481, 0},
        SizingCase{"Mono32Other", 32, kMono, 16, kFull, kFull, 1, 1, false, 641, 481, 2},
        SizingCase{"Interlaced", 8, kMono, 0, kFull, kFull, 1, 1, true, 641, 240, 0},
        SizingCase{"RgbLeftAlone", 8, kRgb, 16, kFull, kFull, 1, 1, false, 641, 481, 16}),
    case_name<SizingCase>);

TEST_F(DisplayPage, ZeroBinningOrUnknownSubsamplingIsRefused) {
  display().control<vrc::window::Button>(17141)->click_as_user();
  vrxsim_parameter_force(handle(), vrx::ParamBinPixel, 0);
  EXPECT_EQ(display().SetUpDisplay(), -1);
  EXPECT_FALSE(display().GetConversionValid());
  EXPECT_EQ(desk().wait_cursor_depth(), 0);
  vrxsim_parameter_force(handle(), vrx::ParamBinPixel, 1);
  vrxsim_parameter_force(handle(), vrx::ParamSubsampleLine, 0xC0020709);
  EXPECT_EQ(display().SetUpDisplay(), -1);
  vrxsim_parameter_force(handle(), vrx::ParamSubsampleLine, kFull);
  EXPECT_EQ(display().SetUpDisplay(), 0);
}

TEST_F(DisplayPage, CombosAndColourAccessors) {
  auto *interpolation = display().control<vrc::window::ComboBox>(17145);
  ASSERT_EQ(interpolation->count(), 3);
  EXPECT_EQ(interpolation->item_text(1), "Simple averaging ");
  EXPECT_EQ(interpolation->item_text(2), "Median filter    ");
  EXPECT_EQ(display().control<vrc::window::ComboBox>(17143)->count(), 31);
  EXPECT_EQ(display().control<vrc::window::ComboBox>(17144)->item_text(4), "12 bit mono x2");
  set(vrx::ParamCameraColour, kBayer);
  display().OnRefreshMessage();
  EXPECT_EQ(ctrl->GetBayer(), static_cast<int>(kBayer));
  EXPECT_EQ(ctrl->GetColourBands(), 1);
  set(vrx::ParamCameraColour, kRgb);
  set(vrx::ParamBufferCount, 7);
  display().OnRefreshMessage();
  EXPECT_EQ(ctrl->GetBayer(), 0);
  EXPECT_EQ(ctrl->GetColourBands(), 3);
  EXPECT_EQ(ctrl->GetSeqLength(), 7);
}

// ---- Playback ----

TEST_F(DisplayPage, PlaybackAt25FpsWaits40MsAFrameAndShowsEachFrameOnce) {
  capture(6);
  // A measured rate of 25 fps: a frame every 40 ms on the manual clock.
  desk().use_manual_clock(desk().ScriptedDesktop::performance_counter());
  for (int i = 0; i < 200 && ctrl->GetFrameRate() != 25.0f; ++i) {
    desk().advance_ms(40);
    ctrl->DisplayStats();
  }
  ASSERT_FLOAT_EQ(ctrl->GetFrameRate(), 25.0f);
  const uint64_t painted = display().GetSurface()->pictures_painted();
  const uint64_t slept = desk().slept_ms();
  EXPECT_EQ(display().GetSequenceCollected(), 0);
  EXPECT_EQ(display().Play(), 0u);
  EXPECT_EQ(desk().slept_ms() - slept, 6u * 40u);
  EXPECT_EQ(display().GetSurface()->pictures_painted() - painted, 6u);
  EXPECT_EQ(display().GetSequenceCollected(), 1);
  EXPECT_EQ(display().GetPlaying(), 0);
  uint32_t frame = 0;
  EXPECT_EQ(ctrl->ParameterGet(VRC_PARAM_PLAYBACK_FRAME, &frame), VRC_OK);
  EXPECT_EQ(frame, 6u);
  std::vector<uint32_t> buffers;
  for (int f = 1; f <= 6; ++f) buffers.push_back(display().GetFrameBuffer(f));
  std::sort(buffers.begin(), buffers.end());
  EXPECT_EQ(std::unique(buffers.begin(), buffers.end()), buffers.end());
  // Live clears the collected flag.
  press(kLive);
  EXPECT_EQ(display().GetSequenceCollected(), 0);
  press(kFreeze);
}

TEST_F(DisplayPage, StopThroughADispatchedMessageEndsPlayback) {
  capture(5);
  vrc::window::MessageQueue::current().post(
      &display(), vrc::window::WM_COMMAND,
      vrc::window::make_wparam(kIdStop, vrc::window::BN_CLICKED), 0);
  display().Play();
  EXPECT_EQ(display().GetCurrentFrame(), 1);
  EXPECT_EQ(display().GetPlaying(), 0);
}

TEST_F(DisplayPage, PlayPressedDuringPlaybackIsIgnored) {
  capture(3);
  const uint64_t slept = desk().slept_ms();
  vrc::window::MessageQueue::current().post(
      &display(), vrc::window::WM_COMMAND,
      vrc::window::make_wparam(kIdPlay, vrc::window::BN_CLICKED), 0);
  display().Play();
  EXPECT_EQ(display().GetCurrentFrame(), 3);
  const uint32_t delay = static_cast<uint32_t>(1000.0 / ctrl->GetFrameRate());
  EXPECT_EQ(desk().slept_ms() - slept, 3u * delay);
}

TEST_F(DisplayPage, QuitStopsPlaybackAndStaysQueued) {
  capture(5);
  auto &queue = vrc::window::MessageQueue::current();
  queue.post_quit(0);
  display().Play();
  EXPECT_EQ(display().GetCurrentFrame(), 1);
  const auto quit = queue.peek(nullptr, 0, 0, true);
  ASSERT_TRUE(quit.has_value());
  EXPECT_EQ(quit->message, vrc::window::WM_QUIT);
}

TEST_F(DisplayPage, PlaybackTitleWithAParentWindow) {
  vrc::window::Window parent;
  ctrl.reset();
  make(0x4EFF, &parent);
  ASSERT_TRUE(configure());
  capture(3);
  display().Play();
  char title[96];
  std::snprintf(title, sizeof title, "Vireo Control - Playback frame 3 at %.1f fps",
                static_cast<double>(ctrl->GetFrameRate()));
  EXPECT_EQ(ctrl->text(), title);
}

// Grabs the sheet when its message is dispatched (from inside the playback loop).
class SheetGrabber : public vrc::window::Window {
 public:
  static constexpr uint32_t kGrab = vrc::window::WM_USER + 150;
  explicit SheetGrabber(CVrxCtrl &sheet) : m_sheet(sheet) {}
  vrc::window::LRESULT handle_message(uint32_t message, vrc::window::WPARAM,
                                      vrc::window::LPARAM) override {
    if (message == kGrab) picture = m_sheet.widget()->grab().toImage();
    return 0;
  }
  QImage picture;

 private:
  CVrxCtrl &m_sheet;
};

// The Display page during playback, saved as display_playback.png in the test's folder (the
// picture under docs/).
TEST_F(DisplayPage, ScreenshotDuringPlayback) {
  vrc::window::Window parent;
  ctrl.reset();
  make(0x4EFF, &parent);
  ASSERT_TRUE(configure());
  const std::vector<std::string> tabs = tabs_of(*ctrl);
  const auto display_tab = std::find(tabs.begin(), tabs.end(), "Display");
  ASSERT_NE(display_tab, tabs.end());
  ctrl->set_active_page(static_cast<int>(display_tab - tabs.begin()));
  ctrl->widget()->resize(760, 640);
  capture(4);
  SheetGrabber grabber(*ctrl);
  grabber.post(SheetGrabber::kGrab);
  display().Play();
  ASSERT_FALSE(grabber.picture.isNull());
  EXPECT_TRUE(grabber.picture.save("display_playback.png"));
}

// ---- Save ----

TEST_F(DisplayPage, SaveDialogAndSingleFrameWithoutNumber) {
  capture(4);
  EXPECT_EQ(save(kBmp, 3, 3), 1u);
  EXPECT_EQ(files(), std::vector<std::string>{"seq.bmp"});
  const auto &request = desk().file_requests().back();
  EXPECT_TRUE(request.save);
  EXPECT_EQ(request.filters.at(0).description, "TIFF (*.tif)");
  EXPECT_EQ(request.initial_name, "*.tif");
  EXPECT_EQ(request.filter_index, 1);
  EXPECT_EQ(request.flags, 0x1806u);
  EXPECT_TRUE(boxes().empty());
  EXPECT_EQ(desk().wait_cursor_depth(), 0);
  EXPECT_EQ(desk().status_texts().back(), "frame 1 of 1");
}

TEST_F(DisplayPage, CancelledDialogSavesNothing) {
  capture(2);
  desk().answer_file_cancel();
  EXPECT_EQ(display().SaveSequence(handle(), 1, 2), 0u);
  EXPECT_TRUE(files().empty());
}

TEST_F(DisplayPage, SaveThroughTheWrapperAndAnUnextendedName) {
  capture(3);
  CVrc wrapper(nullptr, 0x2, nullptr);
  desk().answer_file((folder / "plain").string(), kTif);
  display().SaveSequence(handle(), 1, 2);
  EXPECT_EQ(files(), (std::vector<std::string>{"plain001", "plain002"}));
}

class SaveFileTypes : public DisplayPage, public ::testing::WithParamInterface<Filter> {};

// Twelve frames as seq.bmp under each filter: seq001 .. seq012 with the filter's extension,
// each holding its own frame; the files load back into the ring as they were captured.
TEST_P(SaveFileTypes, TwelveFramesNumberedAndLoadedBack) {
  const Filter filter = GetParam();
  capture(12);
  ASSERT_EQ(save(filter, 1, 12), 12u) << ::testing::PrintToString(boxes());
  std::vector<std::string> expected;
  for (int i = 1; i <= 12; ++i) {
    char name[32];
    std::snprintf(name, sizeof name, "seq%03d.%s", i, kExtensions[filter]);
    expected.push_back(name);
  }
  EXPECT_EQ(files(), expected);
  EXPECT_EQ(desk().status_texts().back(), "frame 12 of 12");

  std::vector<std::vector<uint8_t>> captured;
  for (int f = 1; f <= 12; ++f) {
    captured.push_back(frame_bytes(f));
    clear_frame(f);
  }
  EXPECT_NE(captured[0], captured[1]);
  const std::string name = std::string("seq.") + kExtensions[filter];
  const int load_index = filter == kTif ? 2 : filter == kJpg ? 1 : filter;
  ASSERT_EQ(load(load_index, 1, 12, name), 12u) << ::testing::PrintToString(boxes());
  const auto &request = desk().file_requests().back();
  EXPECT_FALSE(request.save);
  EXPECT_EQ(request.filters.at(0).description, "JPEG (*.jpg)");
  EXPECT_EQ(request.initial_name, "*.jpg");
  EXPECT_EQ(request.flags, 0x1806u);
  for (int f = 1; f <= 12; ++f) {
    const std::vector<uint8_t> loaded = frame_bytes(f);
    if (filter == kJpg) {
      double difference = 0;
      for (std::size_t i = 0; i < loaded.size(); ++i)
        difference += std::abs(loaded[i] - captured[f - 1][i]);
      EXPECT_LT(difference / loaded.size(), 6.0) << f;
    } else {
      EXPECT_EQ(loaded, captured[f - 1]) << f;
    }
  }
  EXPECT_TRUE(boxes().empty());
}

INSTANTIATE_TEST_SUITE_P(Filters, SaveFileTypes, ::testing::Values(kTif, kJpg, kBmp, kRaw),
                         filter_name);

// The files open in outside tools and hold the captured frame: Pillow for BMP and TIFF, djpeg
// for JPEG (pixel sums agree with the capture buffer's).
TEST_F(DisplayPage, SavedFilesOpenInOutsideTools) {
  capture(3);
  display().Play();  // walks the ring: the frame table
  uint64_t sum = 0;
  const std::vector<uint8_t> bytes = frame_bytes(2);
  const uint32_t width = get(vrx::ParamCaptureWidth), line = get(vrx::ParamDstXLength);
  const uint32_t height = get(vrx::ParamCaptureHeight);
  for (uint32_t y = 0; y < height; ++y)
    for (uint32_t x = 0; x < width; ++x) sum += bytes[y * line + x];
  for (Filter filter : {kBmp, kTif}) {
    ASSERT_EQ(save(filter, 2, 2, std::string("one.") + kExtensions[filter]), 1u);
    const std::string said = run("/usr/bin/python3 -c \"from PIL import Image; im = Image.open('" +
                                 (folder / (std::string("one.") + kExtensions[filter])).string() +
                                 "'); print(im.size[0], im.size[1], im.mode, sum(im.getdata()))\"");
    EXPECT_EQ(said, std::to_string(width) + " " + std::to_string(height) + " L " +
                        std::to_string(sum) + "\n");
  }
  ASSERT_EQ(save(kJpg, 2, 2, "one.jpg"), 1u);
  const std::string pgm = run("djpeg -pnm " + (folder / "one.jpg").string() + " | head -c 15");
  EXPECT_EQ(pgm.rfind("P5\n" + std::to_string(width) + " " + std::to_string(height), 0), 0u) << pgm;
}

TEST_F(DisplayPage, SixteenBitGreyIsReducedToEightBitsForBmpAndJpeg) {
  set(vrx::ParamCameraDepth, 16);
  capture(3, vrx::capture_format(1));
  ASSERT_EQ(save(kBmp, 1, 1, "g.bmp"), 1u);
  ASSERT_EQ(save(kJpg, 1, 1, "g.jpg"), 1u);
  ASSERT_EQ(save(kTif, 1, 1, "g.tif"), 1u);
  EXPECT_EQ(run("/usr/bin/python3 -c \"from PIL import Image; print(Image.open('" +
                (folder / "g.bmp").string() + "').mode)\""),
            "L\n");
  EXPECT_EQ(run("djpeg -pnm " + (folder / "g.jpg").string() + " | head -c 2"), "P5");
  EXPECT_EQ(run("/usr/bin/python3 -c \"from PIL import Image; print(Image.open('" +
                (folder / "g.tif").string() + "').mode)\""),
            "I;16B\n");
}

// Every capture format the board fills saves in each file type, or fails with the message of the
// step the imaging library refuses: TIFF takes only the pixel formats it stores as they are, and
// BMP and JPEG only what converts to RGB24.
class SaveCaptureFormats : public DisplayPage, public ::testing::WithParamInterface<uint32_t> {};

TEST_P(SaveCaptureFormats, InEveryFileType) {
  const uint32_t format = vrx::capture_format(GetParam());
  capture(2, format);
  const uint16_t type = vrc::pages::sequence_format(format)->save_type;
  const bool tiff_stores = ZEP_file_format_stores_type(ZEP_FILE_TIFF, type) == 1;
  const bool converts = type != ZEP_XRGB32;
  for (Filter filter : {kTif, kJpg, kBmp, kRaw}) {
    SCOPED_TRACE(kExtensions[filter]);
    const std::size_t shown = desk().boxes().size();
    const bool written = filter == kRaw || (filter == kTif ? tiff_stores : converts);
    EXPECT_EQ(save(filter, 1, 2, std::string("f.") + kExtensions[filter]), written ? 2u : 0u);
    std::vector<std::string> expected;
    if (!written && filter == kTif)
      expected.push_back("SAVE SEQUENCE: Failed to write file - disk full?");
    if (!written && filter != kTif)
      expected.push_back("SAVE SEQUENCE: Failed to convert from Format[" + std::to_string(type) +
                         "] to RGB24");
    const std::vector<std::string> all = boxes();
    EXPECT_EQ(std::vector<std::string>(all.begin() + static_cast<long>(shown), all.end()),
              expected);
  }
}

INSTANTIATE_TEST_SUITE_P(Formats, SaveCaptureFormats,
                         ::testing::Values(0u, 1u, 2u, 4u, 5u, 6u, 7u, 8u, 9u, 10u, 11u, 12u, 13u,
                                           14u, 15u, 16u, 17u, 18u, 19u, 20u, 21u, 22u, 23u, 24u,
                                           25u, 26u, 27u, 28u, 29u, 30u, 31u));

// ---- Failures ----

struct FailureCase {
  const char *name;
  bool load;
  const char *faults;  // the simulator's fault text
  uint32_t first, last;
  const char *box;
  uint32_t done;  // files written or loaded before the failure
};
std::ostream &operator<<(std::ostream &out, const FailureCase &c) { return out << c.name; }

class SequenceFailures : public DisplayPage, public ::testing::WithParamInterface<FailureCase> {};

TEST_P(SequenceFailures, ShowTheirMessageAndStop) {
  const FailureCase &c = GetParam();
  capture(4);
  ASSERT_EQ(save(kBmp, 1, 4), 4u);
  desk().answer_box(vrc::window::IDOK);
  ASSERT_EQ(vrxsim_fault_load(c.faults), VRX_OK);
  const uint32_t done =
      c.load ? load(3, c.first, c.last, "seq.bmp") : save(kTif, c.first, c.last, "out.tif");
  vrxsim_fault_clear();
  EXPECT_EQ(done, c.done);
  EXPECT_EQ(boxes(), std::vector<std::string>{c.box});
  EXPECT_EQ(desk().wait_cursor_depth(), 0);
  // The ring is back in step: the next save of the whole ring works.
  EXPECT_EQ(save(kTif, 1, 4, "again.tif"), 4u);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, SequenceFailures,
    ::testing::Values(
        FailureCase{"SaveDstRead", false, "param:0xC0022700:r:1:0x8102", 1, 2,
                    "SAVE SEQUENCE: Error getting VRX_DST_PTR_TYPE - aborting save", 0},
        FailureCase{"SaveBufferGet", false, "call:VRX_Acquire:1:0x8108", 1, 2,
                    "SAVE SEQUENCE: Error getting VRX_DST_PTR_TYPE - aborting save", 0},
        FailureCase{"SaveNoData", false, "", 3, 6,
                    "SAVE SEQUENCE: No image data found - aborting save", 2},
        FailureCase{"LoadDstRead", true, "param:0xC0022700:r:1:0x8102", 1, 2,
                    "LOAD SEQUENCE: Error getting VRX_DST_PTR_TYPE - aborting load", 0},
        FailureCase{"LoadNoData", true, "", 4, 5,
                    "LOAD SEQUENCE: No image data found - aborting load", 1},
        FailureCase{"LoadFormat", true, "param:0xC0022600:r:1:0x8102", 1, 2,
                    "LOAD SEQUENCE: Error getting capture buffer format - aborting load", 0}),
    case_name<FailureCase>);

TEST_F(DisplayPage, UnknownDestinationPointerTypeStopsSaveAndLoad) {
  capture(2);
  vrxsim_parameter_force(handle(), vrx::ParamDstPtrType, 0xC0022704);
  EXPECT_EQ(save(kBmp, 1, 2), 0u);
  EXPECT_EQ(load(3, 1, 2, "seq.bmp"), 0u);
  EXPECT_EQ(boxes(), (std::vector<std::string>{
                         "SAVE SEQUENCE: Unrecognised VRX_DST_PTR_TYPE - aborting save",
                         "LOAD SEQUENCE: Unrecognised VRX_DST_PTR_TYPE - aborting load"}));
}

TEST_F(DisplayPage, WriteAndReadFailuresNameTheFile) {
  capture(2);
  desk().answer_file((folder / "missing" / "seq.tif").string(), kTif);
  EXPECT_EQ(display().SaveSequence(handle(), 1, 2), 0u);
  EXPECT_EQ(load(3, 1, 2, "none.bmp"), 0u);
  std::ofstream(folder / "bad.jpg") << "not a JPEG";
  EXPECT_EQ(load(1, 1, 1, "bad.jpg"), 0u);
  EXPECT_EQ(boxes(),
            (std::vector<std::string>{
                "SAVE SEQUENCE: Failed to write file - disk full?",
                "LOAD SEQUENCE: Failed to read file [" + (folder / "none001.bmp").string() + "]",
                "LOAD SEQUENCE: Failed to read file [" + (folder / "bad.jpg").string() + "]"}));
}

TEST_F(DisplayPage, ConversionFailuresWhenSavingConvertedFrames) {
  display().control<vrc::window::Button>(17141)->click_as_user();
  display().control<vrc::window::Button>(17140)->click_as_user();
  capture(2);
  ASSERT_TRUE(display().GetConversionValid());
  ASSERT_FALSE(display().GetDisplayFlag());
  ASSERT_EQ(vrxsim_fault_load("call:VIL_Convert:1:10"), VRX_OK);
  EXPECT_EQ(save(kTif, 1, 2, "c.tif"), 0u);
  ASSERT_EQ(vrxsim_fault_load("call:VIL_Convert:1:0x8103"), VRX_OK);
  EXPECT_EQ(save(kTif, 1, 2, "c.tif"), 0u);
  EXPECT_EQ(save(kTif, 1, 2, "c.tif"), 2u);
  EXPECT_EQ(boxes(),
            (std::vector<std::string>{"SAVE SEQUENCE: This conversion is not implemented in the "
                                      "current software release -  aborting save",
                                      "SAVE SEQUENCE: Error in VIL_Convert -  aborting save"}));
}

}  // namespace
}  // namespace control_test
