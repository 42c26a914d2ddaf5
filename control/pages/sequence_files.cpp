// Saving a range of the captured sequence to numbered image files and loading numbered files
// back into the capture buffers. Every failure is shown in a message box and ends the whole
// operation; files already written stay.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "control/pages/display_page.h"
#include "control/pages/sequence_formats.h"
#include "control/vrx_ctrl.h"
#include "platform/board/vrx_params.h"
#include "platform/board/vrx_sdk.h"
#include "platform/window/desktop.h"
#include "vrcw32/zep_convert.h"
#include "vrcw32/zep_core.h"
#include "vrcw32/zep_files.h"
#include "vrcw32/zep_jpeg.h"

namespace {

using vrc::window::desktop;
using vrc::window::FileFilter;

constexpr uint32_t kDialogFlags = vrc::window::OFN_OVERWRITEPROMPT | vrc::window::OFN_HIDEREADONLY |
                                  vrc::window::OFN_PATHMUSTEXIST | vrc::window::OFN_FILEMUSTEXIST;
constexpr uint16_t kJpegQualityFactor = 32;
constexpr uint16_t kWholeImage = 3;  // conversion mode: the next (only) strip

const std::vector<FileFilter> kSaveFilters{{"TIFF (*.tif)", "*.tif"},
                                           {"JPEG (*.jpg)", "*.jpg"},
                                           {"BMP (*.bmp)", "*.bmp"},
                                           {"Raw data (*.raw)", "*.raw"}};
const std::vector<FileFilter> kLoadFilters{{"JPEG (*.jpg)", "*.jpg"},
                                           {"TIFF (*.tif)", "*.tif"},
                                           {"BMP (*.bmp)", "*.bmp"},
                                           {"Raw data (*.raw)", "*.raw"}};

// The three images of a save or load: the frame as it is, a converted or decoded copy, and the
// JPEG image. When saving, the frame image borrows the capture or conversion buffer; it is
// detached before the images go, so that only the library's own data is freed.
class SequenceImages {
 public:
  SequenceImages() = default;
  SequenceImages(const SequenceImages &) = delete;
  SequenceImages &operator=(const SequenceImages &) = delete;
  ~SequenceImages() {
    if (frame_borrows && valid(frame)) ZEP_image_set_ptr(frame, ZEP_DATA_PTR, nullptr);
    for (uint32_t image : {frame, converted, jpeg}) {
      if (valid(image)) ZEP_image_destroy(image);
    }
  }
  static bool valid(uint32_t image) { return image != 0 && !ZEP_IS_ERROR(image); }
  void set_outfilename(const std::string &name) const {
    for (uint32_t image : {frame, converted, jpeg}) ZEP_image_set_outfilename(image, name.c_str());
  }

  uint32_t frame = 0, converted = 0, jpeg = 0;
  bool frame_borrows = false;  // the frame image points at a capture or conversion buffer
};

// The save or load dialog, opening on its first filter with that filter's pattern.
vrc::window::FileDialogResult ask_for_file(CVrxCtrl *owner, bool save,
                                           const std::vector<FileFilter> &filters) {
  vrc::window::FileDialogRequest request;
  request.save = save;
  request.owner = owner;
  request.filters = filters;
  request.filter_index = 1;
  request.initial_name = filters.front().pattern;
  request.flags = kDialogFlags;
  return desktop().file_dialog(request);
}

std::string format_text(const char *format, const char *argument) {
  char text[512];
  std::snprintf(text, sizeof text, format, argument);
  return text;
}

// The ring walk of save and load: fetches the newest buffer, checks its destination pointer
// type and steps round the ring until it holds `wanted`. Shows the operation's message and
// returns false on failure; the buffer held, if any, is released by the caller through `held`.
struct RingStep {
  uint32_t board;
  const char *caption;
  const char *dst_error, *dst_unknown, *no_data;
  CVrxCtrl *owner;

  bool show(const char *text) const {
    desktop().message_box(owner, text, caption, vrc::window::MB_OK);
    return false;
  }

  bool fetch(uint32_t wanted, uint32_t limit, VRX_BUFFER_RECORD &record, bool &held) const {
    uint32_t pointer_type = 0;
    held = VRX_Acquire(board, VRX_ACQ_BUFFER_GET, &record) == VRX_OK;
    if (!held || VRX_ParameterGet(board, vrx::ParamDstPtrType, &pointer_type) != VRX_OK)
      return show(dst_error);
    if (pointer_type != vrx::DstPtrVirtual && pointer_type != vrx::DstPtrPhysical &&
        pointer_type != vrx::DstPtrUser)
      return show(dst_unknown);
    for (uint32_t count = 0; record.buffer != wanted;) {
      VRX_Acquire(board, VRX_ACQ_BUFFER_RELEASE, nullptr);
      held = VRX_Acquire(board, VRX_ACQ_BUFFER_GET, &record) == VRX_OK;
      if (!held || ++count > limit) return show(no_data);
    }
    return true;
  }
};

// Releases the buffer a frame's work holds, whatever way the work ends.
struct HeldBuffer {
  uint32_t board;
  bool held = false;
  ~HeldBuffer() {
    if (held) VRX_Acquire(board, VRX_ACQ_BUFFER_RELEASE, nullptr);
  }
};

void print_progress(CVrxCtrl *ctrl, uint32_t index, uint32_t count) {
  char text[64];
  std::snprintf(text, sizeof text, "frame %u of %u", index, count);
  ctrl->PrintToStatusBar(text);
}

// Gives the frame image the geometry of a capture buffer. The line alignment that pads lines
// to the buffer's line length never makes a line longer than the buffer's: it is halved until
// the lines fit, so that no line reads past the buffer.
bool shape_frame_image(uint32_t image, const vrc::pages::SequenceFormat &format, uint32_t width,
                       uint32_t line_length, uint32_t height) {
  ZEP_image_set_parameter(image, ZEP_IMAGE_WIDTH, vrc::pages::saved_width(format, width));
  ZEP_image_set_parameter(image, ZEP_DATA_WIDTH, 16);
  uint32_t align = vrc::pages::saved_line_align(line_length, format.bytes_per_pixel * width);
  if (align != 0) ZEP_image_set_parameter(image, ZEP_LINE_ALIGN, align);
  ZEP_image_set_parameter(image, ZEP_IMAGE_HEIGHT, height);
  ZEP_image_set_parameter(image, ZEP_LINES_THIS_STRIP, height);
  ZEP_image_set_parameter(image, ZEP_IMAGE_TYPE, format.save_type);
  if (ZEP_image_check(image) != ZEP_OK) return false;
  while (ZEP_image_get_parameter(image, ZEP_BYTES_PER_LINE) > line_length && align > 1) {
    align /= 2;
    ZEP_image_set_parameter(image, ZEP_LINE_ALIGN, align);
    if (ZEP_image_check(image) != ZEP_OK) return false;
  }
  return ZEP_image_get_parameter(image, ZEP_BYTES_PER_LINE) <= line_length;
}

// Whether a buffer holds at least the bytes of the image's lines.
bool holds_image(uint32_t buffer, uint32_t image) {
  uint32_t line_length = 0, lines = 0;
  if (VBL_BufferParameterGet(buffer, VBL_LINE_LENGTH, &line_length) != VRX_OK ||
      VBL_BufferParameterGet(buffer, VBL_HEIGHT, &lines) != VRX_OK)
    return false;
  return uint64_t{line_length} * lines >=
         uint64_t{ZEP_image_get_parameter(image, ZEP_BYTES_PER_LINE)} *
             ZEP_image_get_parameter(image, ZEP_IMAGE_HEIGHT);
}

}  // namespace

uint32_t CVrxPageDisplay::SaveSequence(uint32_t board, uint32_t first, uint32_t last) {
  const vrc::window::FileDialogResult chosen = ask_for_file(GetCtrl(), true, kSaveFilters);
  if (!chosen.accepted) return 0;
  const vrc::pages::SequenceFileType file_type = vrc::pages::save_file_type(chosen.filter_index);

  SequenceImages images;
  images.frame = ZEP_image_create();
  uint32_t width = 0, line_length = 0, height = 0, format_code = 0;
  if (!SequenceImages::valid(images.frame) ||
      VRX_ParameterGet(board, vrx::ParamCaptureWidth, &width) != VRX_OK)
    return 0;
  if (m_conversion_on == 0 || m_conversion_valid == 0) {
    if (VRX_ParameterGet(board, vrx::ParamDstXLength, &line_length) != VRX_OK ||
        VRX_ParameterGet(board, vrx::ParamCaptureHeight, &height) != VRX_OK ||
        VRX_ParameterGet(board, vrx::ParamCaptureFormat, &format_code) != VRX_OK)
      return 0;
  } else if (VBL_BufferParameterGet(m_conversion_buffer, VBL_LINE_LENGTH, &line_length) != VRX_OK ||
             VBL_BufferParameterGet(m_conversion_buffer, VBL_HEIGHT, &height) != VRX_OK ||
             VBL_BufferParameterGet(m_conversion_buffer, VBL_FORMAT, &format_code) != VRX_OK) {
    return 0;
  }
  const vrc::pages::SequenceFormat *format = vrc::pages::sequence_format(format_code);
  if (!format || !shape_frame_image(images.frame, *format, width, line_length, height)) return 0;

  images.converted = ZEP_image_create();
  images.jpeg = ZEP_JPEG_image_create();
  if (!SequenceImages::valid(images.converted) || !SequenceImages::valid(images.jpeg) ||
      ZEP_JPEG_set_Quality_factor(images.jpeg, kJpegQualityFactor) != ZEP_OK)
    return 0;
  vrc::window::WaitCursor wait;
  if (first > last) return 0;
  if (m_sequence_collected == 0) CollectSequence(static_cast<uint32_t>(m_sequence_length));

  const RingStep ring{board,
                      "SAVE SEQUENCE",
                      "Error getting VRX_DST_PTR_TYPE - aborting save",
                      "Unrecognised VRX_DST_PTR_TYPE - aborting save",
                      "No image data found - aborting save",
                      GetCtrl()};
  const bool convert = m_conversion_on != 0 && m_conversion_valid != 0 && m_display_on == 0;
  uint32_t written = 0;
  auto fail = [&](const char *text) {
    ring.show(text);
    return written;
  };
  for (uint32_t frame = first; frame <= last; ++frame) {
    print_progress(GetCtrl(), frame - first + 1, last - first + 1);
    images.set_outfilename(
        vrc::pages::sequence_file_name(chosen.path, first, last, frame, file_type.extension));
    VRX_BUFFER_RECORD record{};
    HeldBuffer buffer{board};
    if (!ring.fetch(GetFrameBuffer(static_cast<int>(frame)),
                    static_cast<uint32_t>(m_frame_table.size()), record, buffer.held))
      return written;
    void *data = record.address;
    if (convert) {
      const uint32_t status = VIL_Convert(record.buffer, m_conversion_buffer);
      if (status == VIL_NOT_IMPLEMENTED)
        return fail(
            "This conversion is not implemented in the current software release -  aborting save");
      if (status != VRX_OK) return fail("Error in VIL_Convert -  aborting save");
      VBL_BufferParameterGet(m_conversion_buffer, VBL_ADDRESS, &data);
    }
    // Sizes read from the conversion buffer describe a fetched buffer only when it is as large.
    if (!holds_image(convert ? m_conversion_buffer : record.buffer, images.frame))
      return fail("No image data found - aborting save");
    ZEP_image_set_ptr(images.frame, ZEP_DATA_PTR, data);
    images.frame_borrows = true;
    // Borrowed: the library must never free or replace the capture buffer.
    ZEP_image_set_flags(images.frame, ZEP_FLAG_LOCKED, 1);

    uint32_t source = images.frame;
    if (file_type.zep_format == ZEP_FILE_BMP || file_type.zep_format == ZEP_FILE_JPEG) {
      const uint32_t type = ZEP_image_get_parameter(images.frame, ZEP_IMAGE_TYPE);
      if (type == ZEP_Y16) {
        if (ZEP_image_convert(images.frame, images.converted, ZEP_Y8, 0, kWholeImage) != ZEP_OK)
          return fail("Failed to convert from Y16 to Y8");
        source = images.converted;
      } else if (type != ZEP_Y8 && type != ZEP_RGB24) {
        if (ZEP_image_convert(images.frame, images.converted, ZEP_RGB24, 0, kWholeImage) !=
            ZEP_OK) {
          char text[64];
          std::snprintf(text, sizeof text, "Failed to convert from Format[%u] to RGB24", type);
          return fail(text);
        }
        source = images.converted;
      }
      if (file_type.zep_format == ZEP_FILE_JPEG) {
        if (ZEP_JPEG_compress(source, images.jpeg) != ZEP_OK)
          return fail("Failed to write file - disk full?");
        source = images.jpeg;
      }
    }
    if (ZEP_image_write(source, 0, file_type.zep_format, ZEP_ACTION_DATA) != ZEP_OK)
      return fail("Failed to write file - disk full?");
    ++written;
  }
  return written;
}

namespace {

// Copies the lines of a read or converted image into a capture buffer of `line_length` bytes by
// `lines` lines, as much of each as both hold.
void copy_into_buffer(uint32_t image, void *buffer, uint32_t line_length, uint32_t lines) {
  const auto *record =
      static_cast<const ZEP_IMAGE *>(ZEP_image_get_ptr(image, ZEP_IMAGE_RECORD_PTR));
  if (!record || !record->data) return;
  const uint32_t bytes = std::min(record->bytes_per_line, line_length);
  const uint32_t count = std::min(record->lines_this_strip, lines);
  for (uint32_t y = 0; y < count; ++y)
    std::memcpy(static_cast<uint8_t *>(buffer) + std::size_t{y} * line_length,
                record->data + std::size_t{y} * record->bytes_per_line, bytes);
}

// Raw pixel data has no header: the file's bytes go into the buffer as they are, when they fit.
bool read_raw_file(const std::string &name, void *buffer, std::size_t size) {
  std::FILE *file = std::fopen(name.c_str(), "rb");
  if (!file) return false;
  const std::size_t got = std::fread(buffer, 1, size, file);
  const bool more = std::fgetc(file) != EOF;
  const bool failed = std::ferror(file) != 0;
  std::fclose(file);
  return got > 0 && !more && !failed;
}

// Decodes a JPEG image into `decoded` (grey or RGB24, as the data is).
bool decompress_jpeg(uint32_t jpeg, uint32_t decoded) {
  const auto *record =
      static_cast<const ZEP_IMAGE *>(ZEP_image_get_ptr(jpeg, ZEP_IMAGE_RECORD_PTR));
  if (!record) return false;
  ZEP_image_set_parameter(decoded, ZEP_IMAGE_TYPE, record->type == ZEP_Y8 ? ZEP_Y8 : ZEP_RGB24);
  ZEP_image_set_parameter(decoded, ZEP_IMAGE_WIDTH, record->width);
  ZEP_image_set_parameter(decoded, ZEP_IMAGE_HEIGHT, record->height);
  ZEP_image_set_parameter(decoded, ZEP_LINES_THIS_STRIP, record->height);
  return ZEP_JPEG_decompress(jpeg, decoded) == ZEP_OK;
}

}  // namespace

uint32_t CVrxPageDisplay::LoadSequence(uint32_t board, uint32_t first, uint32_t last) {
  const vrc::window::FileDialogResult chosen = ask_for_file(GetCtrl(), false, kLoadFilters);
  if (!chosen.accepted) return 0;
  const vrc::pages::SequenceFileType file_type = vrc::pages::load_file_type(chosen.filter_index);

  const RingStep ring{board,
                      "LOAD SEQUENCE",
                      "Error getting VRX_DST_PTR_TYPE - aborting load",
                      "Unrecognised VRX_DST_PTR_TYPE - aborting load",
                      "No image data found - aborting load",
                      GetCtrl()};
  SequenceImages images;
  images.jpeg = ZEP_JPEG_image_create();
  images.frame = ZEP_image_create();
  images.converted = ZEP_image_create();
  if (!SequenceImages::valid(images.jpeg) || !SequenceImages::valid(images.frame) ||
      !SequenceImages::valid(images.converted))
    return 0;
  uint32_t format_code = 0, line_length = 0, height = 0;
  if (VRX_ParameterGet(board, vrx::ParamCaptureFormat, &format_code) != VRX_OK ||
      VRX_ParameterGet(board, vrx::ParamDstXLength, &line_length) != VRX_OK ||
      VRX_ParameterGet(board, vrx::ParamCaptureHeight, &height) != VRX_OK) {
    ring.show("Error getting capture buffer format - aborting load");
    return 0;
  }
  const vrc::pages::SequenceFormat *format = vrc::pages::sequence_format(format_code);
  const uint16_t load_type = format ? format->load_type : 0;
  if (first > last) return 0;
  vrc::window::WaitCursor wait;
  if (m_sequence_collected == 0) CollectSequence(static_cast<uint32_t>(m_sequence_length));

  uint32_t loaded = 0;
  auto fail = [&](const char *text, const std::string &name) {
    ring.show(format_text(text, name.c_str()).c_str());
    return loaded;
  };
  for (uint32_t frame = first; frame <= last; ++frame) {
    print_progress(GetCtrl(), frame - first + 1, last - first + 1);
    const std::string name =
        vrc::pages::sequence_file_name(chosen.path, first, last, frame, file_type.extension);
    const uint32_t read_into = file_type.zep_format == ZEP_FILE_JPEG ? images.jpeg : images.frame;
    ZEP_image_set_infilename(read_into, name.c_str());
    VRX_BUFFER_RECORD record{};
    HeldBuffer buffer{board};
    if (!ring.fetch(GetFrameBuffer(static_cast<int>(frame)),
                    static_cast<uint32_t>(m_sequence_length), record, buffer.held))
      return loaded;
    if (file_type.zep_format == ZEP_FILE_RAW) {
      if (!read_raw_file(name, record.address, std::size_t{line_length} * height))
        return fail("Failed to read file [%s]", name);
    } else {
      if (ZEP_image_read(read_into, 0, ZEP_ACTION_DATA) != ZEP_OK)
        return fail("Failed to read file [%s]", name);
      uint32_t pixels = images.frame;
      if (file_type.zep_format == ZEP_FILE_JPEG) {
        if (!decompress_jpeg(images.jpeg, images.converted))
          return fail("Error decompressing file [%s]", name);
        if (ZEP_image_convert(images.converted, images.frame, load_type, 0, kWholeImage) != ZEP_OK)
          return fail("Failed to convert file [%s] to the capture format", name);
      }
      copy_into_buffer(pixels, record.address, line_length, height);
    }
    ++loaded;
  }
  return loaded;
}
