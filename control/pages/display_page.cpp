// The Display page: the display of the board's buffers, its conversion and display buffers,
// the page's controls, and playback of the captured sequence.
#include "control/pages/display_page.h"

#include <QLayout>
#include <QWidget>
#include <cstdio>

#include "control/pages/display_choices.h"
#include "control/pages/sequence_formats.h"
#include "control/vrx_ctrl.h"
#include "control/vrx_messages.h"
#include "platform/board/vrx_params.h"
#include "platform/board/vrx_sdk.h"
#include "platform/window/desktop.h"
#include "platform/window/message_queue.h"

using vrc::window::ControlKind;
using vrc::window::ControlTemplate;

namespace {

enum : int {
  IdDisplayOn = 17140,
  IdConvert = 17141,
  IdAlternativeBuffers = 17142,
  IdCaptureFormat = 17143,
  IdDisplayFormat = 17144,
  IdInterpolation = 17145,
  IdFirstFrame = 17146,
  IdLastFrame = 17147,
  IdPlay = 17148,
  IdStop = 17149,
  IdSave = 17150,
  IdLoad = 17151,
  IdCurrentFrame = 17152,
  IdSequenceLength = 17153,
};

constexpr const char *kDisplayGroup = "Display";
constexpr const char *kSequenceGroup = "Sequence";

constexpr ControlTemplate kControls[] = {
    {IdDisplayOn, ControlKind::Check, "Display", kDisplayGroup},
    {IdConvert, ControlKind::Check, "Convert", kDisplayGroup},
    {IdAlternativeBuffers, ControlKind::Check, "Contiguous buffers", kDisplayGroup},
    {vrc::window::IDC_STATIC, ControlKind::Label, "Capture format", kDisplayGroup},
    {IdCaptureFormat, ControlKind::Combo, "", kDisplayGroup},
    {vrc::window::IDC_STATIC, ControlKind::Label, "Display format", kDisplayGroup},
    {IdDisplayFormat, ControlKind::Combo, "", kDisplayGroup},
    {vrc::window::IDC_STATIC, ControlKind::Label, "Interpolation", kDisplayGroup},
    {IdInterpolation, ControlKind::Combo, "", kDisplayGroup},
    {vrc::window::IDC_STATIC, ControlKind::Label, "Frames", kSequenceGroup},
    {IdSequenceLength, ControlKind::Static, "2", kSequenceGroup},
    {vrc::window::IDC_STATIC, ControlKind::Label, "Frame", kSequenceGroup},
    {IdCurrentFrame, ControlKind::Static, "1", kSequenceGroup},
    {vrc::window::IDC_STATIC, ControlKind::Label, "First", kSequenceGroup},
    {IdFirstFrame, ControlKind::Edit, "", kSequenceGroup},
    {vrc::window::IDC_STATIC, ControlKind::Label, "Last", kSequenceGroup},
    {IdLastFrame, ControlKind::Edit, "", kSequenceGroup},
    {IdPlay, ControlKind::Button, "Play", kSequenceGroup},
    {IdStop, ControlKind::Button, "Stop", kSequenceGroup},
    {IdSave, ControlKind::Button, "Save", kSequenceGroup},
    {IdLoad, ControlKind::Button, "Load", kSequenceGroup},
};
constexpr vrc::window::DialogTemplate kDialog{16161, "Display", kControls};

}  // namespace

CVrxPageDisplay::CVrxPageDisplay(CVrxCtrl *owner) : CVrxPage(owner, kDialog) {}

CVrxPageDisplay::~CVrxPageDisplay() {
  StopDisplay();
  CVrxPageDisplay::destroy_window();
}

uint32_t CVrxPageDisplay::GetFrameBuffer(int frame) const {
  if (frame < 1 || static_cast<std::size_t>(frame) > m_frame_table.size()) return 0;
  return m_frame_table[static_cast<std::size_t>(frame) - 1];
}

void CVrxPageDisplay::do_data_exchange(vrc::window::DataExchange &exchange) {
  exchange.check(IdDisplayOn, m_display_on);
  exchange.check(IdConvert, m_conversion_on);
  exchange.check(IdAlternativeBuffers, m_alternative_buffers);
  exchange.combo_index(IdCaptureFormat, m_capture_format_index);
  exchange.combo_index(IdDisplayFormat, m_display_format_index);
  exchange.combo_index(IdInterpolation, m_interpolation_index);
  exchange.number(IdFirstFrame, m_first_frame);
  exchange.number(IdLastFrame, m_last_frame);
  m_conversion_mode = m_conversion_on != 0 ? 1 : 0;
}

bool CVrxPageDisplay::on_init_dialog() {
  FillList(IdCaptureFormat, vrc::pages::kCaptureFormatChoices);
  FillList(IdDisplayFormat, vrc::pages::kCaptureFormatChoices);
  FillList(IdInterpolation, vrc::pages::kInterpolationChoices);
  m_surface = std::make_unique<vrc::window::DisplaySurface>(this);
  if (QLayout *layout = widget()->layout()) layout->addWidget(m_surface->widget());
  return CVrxPage::on_init_dialog();
}

int CVrxPageDisplay::UpdateControls() {
  const bool board = GetCtrl()->GetCameraHandle() != 0;
  const bool idle = board && m_playing == 0 && GetCtrl()->GetLive() == 0;
  EnableItem(IdPlay, idle);
  EnableItem(IdStop, m_playing != 0);
  EnableItem(IdSave, idle);
  EnableItem(IdLoad, idle);
  EnableItem(IdDisplayFormat, m_conversion_on != 0);
  SetNumber(IdCurrentFrame, m_current_frame, true);
  SetNumber(IdSequenceLength, m_sequence_length, true);
  return 0;
}

void CVrxPageDisplay::on_command(int id, uint16_t code) {
  using vrc::window::BN_CLICKED;
  using vrc::window::CBN_SELCHANGE;
  if (code == CBN_SELCHANGE) {
    OnChangedWithData();
    return;
  }
  if (code != BN_CLICKED) return;
  switch (id) {
    case IdDisplayOn:
    case IdConvert:
    case IdAlternativeBuffers: OnChangedWithData(); break;
    case IdPlay:
      if (m_playing == 0) Play();
      break;
    case IdStop: m_playing = 0; break;
    case IdSave:
      update_data(true);
      SaveSequence(GetCtrl()->GetCameraHandle(), static_cast<uint32_t>(m_first_frame),
                   static_cast<uint32_t>(m_last_frame));
      break;
    case IdLoad:
      update_data(true);
      LoadSequence(GetCtrl()->GetCameraHandle(), static_cast<uint32_t>(m_first_frame),
                   static_cast<uint32_t>(m_last_frame));
      break;
    default: break;
  }
}

void CVrxPageDisplay::destroy_window() {
  // The display paints into the surface: it goes first.
  DestroyBuffers();
  if (m_display != 0) VDL_DisplayDestroy(&m_display);
  m_surface.reset();
  CVrxPage::destroy_window();
}

// ---- Board settings ----

void CVrxPageDisplay::ReadSequenceLength() {
  uint32_t length = 0;
  if (VRX_ParameterGet(handle(), vrx::ParamBufferCount, &length) != VRX_OK || length == 0) return;
  m_sequence_length = static_cast<int>(length);
  if (m_current_frame > m_sequence_length) m_current_frame = m_sequence_length;
  if (m_frame_table.size() != length) {
    m_frame_table.assign(length, 0);
    m_sequence_collected = 0;
  }
}

void CVrxPageDisplay::ReadCameraColour() {
  uint32_t colour = 0;
  if (VRX_ParameterGet(handle(), vrx::ParamCameraColour, &colour) != VRX_OK) return;
  const bool bayer = colour >= vrx::ColourBayerRggb && colour <= vrx::ColourBayerBggr;
  m_bayer = bayer ? static_cast<int>(colour) : 0;
  m_colour_bands = colour == vrx::ColourMono || bayer ? 1 : 3;
}

CVrxPage::LRESULT CVrxPageDisplay::OnRefreshMessage() {
  if (handle() == 0) return -1;
  ReadSequenceLength();
  ReadCameraColour();
  LRESULT result =
      SelectBySdkValue(IdCaptureFormat, vrx::ParamCaptureFormat, m_capture_format_index);
  if (m_display != 0) {
    if (SelectByDisplayValue(IdDisplayFormat, m_display, VDL_PARAM_FORMAT,
                             m_display_format_index) != 0)
      result = -1;
    if (SelectByDisplayValue(IdInterpolation, m_display, VDL_PARAM_INTERPOLATION,
                             m_interpolation_index) != 0)
      result = -1;
  }
  if (m_last_frame > m_sequence_length || m_last_frame < 1) m_last_frame = m_sequence_length;
  if (m_first_frame > m_last_frame || m_first_frame < 1) m_first_frame = 1;
  update_data(false);
  UpdateControls();
  return result;
}

CVrxPage::LRESULT CVrxPageDisplay::OnApplyMessage() {
  update_data(true);
  if (handle() == 0) return 0;
  if (m_capture_format_index >= 0 &&
      WriteSelection(IdCaptureFormat, vrx::ParamCaptureFormat, m_capture_format_index) != 0)
    return -1;
  if (m_display == 0) return 0;
  auto *display_format = control<vrc::window::ComboBox>(IdDisplayFormat);
  auto *interpolation = control<vrc::window::ComboBox>(IdInterpolation);
  if (display_format && m_display_format_index >= 0 &&
      VDL_DisplayParameterSet(m_display, VDL_PARAM_FORMAT,
                              display_format->item_data(m_display_format_index)) != VRX_OK)
    return -1;
  if (interpolation && m_interpolation_index >= 0 &&
      VDL_DisplayParameterSet(m_display, VDL_PARAM_INTERPOLATION,
                              interpolation->item_data(m_interpolation_index)) != VRX_OK)
    return -1;
  return 0;
}

// ---- Display and buffers ----

bool CVrxPageDisplay::ReadBufferGeometry(BufferGeometry &geometry) const {
  const uint32_t board = handle();
  auto read = [board](uint32_t parameter, uint32_t &value) {
    return VRX_ParameterGet(board, parameter, &value) == VRX_OK;
  };
  uint32_t width = 0, height = 0, colour = 0, x_offset = 0, y_offset = 0;
  uint32_t pixel_code = 0, line_code = 0, pixel_bin = 0, line_bin = 0;
  uint32_t depth = 0, interlaced = 0, interlace_mode = 0, format = 0;
  if (!read(vrx::ParamSrcXLength, width) || !read(vrx::ParamSrcYLength, height) ||
      !read(vrx::ParamCameraColour, colour) || !read(vrx::ParamSrcXOffset, x_offset) ||
      !read(vrx::ParamSrcYOffset, y_offset) || !read(vrx::ParamSubsamplePixel, pixel_code) ||
      !read(vrx::ParamSubsampleLine, line_code))
    return false;
  const std::optional<uint32_t> sub_width = vrc::pages::subsampled_size(width, pixel_code);
  const std::optional<uint32_t> sub_height = vrc::pages::subsampled_size(height, line_code);
  if (!sub_width || !sub_height) return false;
  // A zero binning factor is refused rather than divided by.
  if (!read(vrx::ParamBinPixel, pixel_bin) || !read(vrx::ParamBinLine, line_bin) ||
      pixel_bin == 0 || line_bin == 0)
    return false;
  if (!read(vrx::ParamCameraDepth, depth) || !read(vrx::ParamCameraInterlaced, interlaced) ||
      !read(vrx::ParamInterlaceMode, interlace_mode) || !read(vrx::ParamCaptureFormat, format))
    return false;
  geometry.width = *sub_width / pixel_bin;
  geometry.height = *sub_height / line_bin;
  if (interlaced == vrx::InterlacedOn && interlace_mode >= 0xC0020603 &&
      interlace_mode <= 0xC0020607)
    geometry.height /= 2;
  geometry.format = vrc::pages::coerced_capture_format(depth, colour, format);
  return true;
}

bool CVrxPageDisplay::SizeBuffer(uint32_t buffer, const BufferGeometry &geometry) const {
  return VBL_BufferParameterSet(buffer, VBL_WIDTH, geometry.width) == VRX_OK &&
         VBL_BufferParameterSet(buffer, VBL_HEIGHT, geometry.height) == VRX_OK &&
         VBL_BufferParameterSet(buffer, VBL_LINE_LENGTH, 0) == VRX_OK &&
         VBL_BufferParameterSet(buffer, VBL_FORMAT, geometry.format) == VRX_OK &&
         VBL_BufferInit(buffer) == VRX_OK;
}

void CVrxPageDisplay::DestroyBuffers() {
  m_conversion_valid = 0;
  if (m_conversion_buffer != 0) VBL_BufferDestroy(&m_conversion_buffer);
  if (m_display_buffer != 0) VDL_BufferDestroy(&m_display_buffer);
  m_conversion_buffer = m_display_buffer = 0;
}

int CVrxPageDisplay::RebuildBuffers() {
  vrc::window::WaitCursor wait;
  DestroyBuffers();
  BufferGeometry geometry;
  if (!ReadBufferGeometry(geometry)) return -1;
  // The capture format follows what the camera can fill.
  if (VRX_ParameterSet(handle(), vrx::ParamCaptureFormat, &geometry.format) != VRX_OK) return -1;
  const uint32_t type =
      m_alternative_buffers != 0 ? VBL_BUFFER_TYPE_CONTIGUOUS : VBL_BUFFER_TYPE_VIRTUAL;
  if (VBL_BufferCreate(&m_conversion_buffer, type) != VRX_OK ||
      !SizeBuffer(m_conversion_buffer, geometry))
    return -1;
  if (VDL_BufferCreate(m_display, &m_display_buffer, type) != VRX_OK ||
      !SizeBuffer(m_display_buffer, geometry))
    return -1;
  m_conversion_valid = 1;
  return 0;
}

int CVrxPageDisplay::SetUpDisplay() {
  if (!m_surface) return -1;
  if (m_display == 0 &&
      VDL_DisplayCreate(&m_display, m_surface->paint_sink(), m_surface->sink_context()) != VRX_OK)
    return -1;
  if (handle() == 0) return 0;
  ReadCameraColour();
  VDL_DisplayParameterSet(m_display, VDL_PARAM_BAYER, static_cast<uint32_t>(m_bayer));
  if (m_conversion_on == 0) {
    DestroyBuffers();
    return 0;
  }
  return RebuildBuffers();
}

void CVrxPageDisplay::StopDisplay() {
  m_playing = 0;
  DestroyBuffers();
  if (m_display != 0) VDL_DisplayDestroy(&m_display);
}

// ---- Messages and playback ----

CVrxPage::LRESULT CVrxPageDisplay::handle_message(uint32_t message, vrc::window::WPARAM wparam,
                                                  vrc::window::LPARAM lparam) {
  if (message == vrc::control::kMsgCaptureDone) {
    ++m_captures_finished;
    if (handle() != 0) ReadSequenceLength();
    m_last_frame = m_sequence_length;
    if (m_first_frame > m_last_frame) m_first_frame = 1;
    update_data(false);
    UpdateControls();
    return 0;
  }
  return CVrxPage::handle_message(message, wparam, lparam);
}

uint32_t CVrxPageDisplay::CollectSequence(uint32_t length) {
  m_frame_table.assign(length, 0);
  for (uint32_t i = 0; i < length; ++i) {
    VRX_BUFFER_RECORD record{};
    const uint32_t status = VRX_Acquire(handle(), VRX_ACQ_BUFFER_GET, &record);
    if (status != VRX_OK) return status;
    m_frame_table[i] = record.buffer;
    VRX_Acquire(handle(), VRX_ACQ_BUFFER_RELEASE, nullptr);
  }
  m_sequence_collected = 1;
  return VRX_OK;
}

void CVrxPageDisplay::PaintFrame(int frame) {
  const uint32_t buffer = GetFrameBuffer(frame);
  if (m_display_on == 0 || m_display == 0 || buffer == 0) return;
  if (m_conversion_mode == 1 && m_conversion_buffer != 0) {
    if (VIL_Convert(buffer, m_conversion_buffer) == VRX_OK)
      VDL_BufferPaint(m_display, m_conversion_buffer);
    return;
  }
  VDL_BufferPaint(m_display, buffer);
}

bool CVrxPageDisplay::DispatchOneMessage() {
  auto &queue = vrc::window::MessageQueue::current();
  const auto waiting = queue.peek(nullptr, 0, 0, false);
  if (!waiting) return true;
  if (waiting->message == vrc::window::WM_QUIT) return false;
  if (const auto taken = queue.peek(nullptr, 0, 0, true))
    vrc::window::MessageQueue::dispatch(*taken);
  return true;
}

uint32_t CVrxPageDisplay::Play() {
  CVrxCtrl *ctrl = GetCtrl();
  const uint32_t board = ctrl->GetCameraHandle();
  const float rate = ctrl->GetFrameRate();
  const uint32_t delay_ms = rate > 0.0f ? static_cast<uint32_t>(1000.0 / rate) : 0;
  uint32_t length = 0;
  const uint32_t status = VRX_ParameterGet(board, vrx::ParamBufferCount, &length);
  if (status != VRX_OK) return status;
  m_sequence_length = static_cast<int>(length);
  if (m_sequence_collected == 0 || m_frame_table.size() != length) CollectSequence(length);
  m_playing = 1;
  UpdateControls();
  for (int frame = 1; frame <= m_sequence_length && m_playing == 1; ++frame) {
    m_current_frame = frame;
    if (ctrl->GetParentHandle() != nullptr) {
      char title[96];
      std::snprintf(title, sizeof title, "Vireo Control - Playback frame %d at %.1f fps", frame,
                    static_cast<double>(rate));
      ctrl->set_text(title);
    }
    update_data(false);
    UpdateControls();
    PaintFrame(frame);
    if (!DispatchOneMessage()) break;
    vrc::window::desktop().sleep_ms(delay_ms);
  }
  m_playing = 0;
  update_data(false);
  return static_cast<uint32_t>(UpdateControls());
}
