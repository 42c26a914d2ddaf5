// The exported buffer (VBL_), display (VDL_) and conversion (VIL_) calls. These libraries have
// no error handler of their own: they return their status and report nothing.
#include <algorithm>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/board/sim/api_guard.h"
#include "platform/board/sim/buffer_table.h"
#include "platform/board/sim/pixel_codec.h"
#include "platform/board/vrx_params.h"

namespace vrxsim {
namespace {

struct Display {
  VDL_PAINT_SINK sink = nullptr;
  void* sink_context = nullptr;
  uint32_t format = vrx::capture_format(0);
  uint32_t interpolation = 0;
  uint32_t bayer = 0;
};

std::mutex g_display_mutex;
std::map<uint32_t, Display> g_displays;
uint32_t g_next_display = 1;

std::optional<Display> find_display(uint32_t handle) {
  std::lock_guard lock(g_display_mutex);
  auto it = g_displays.find(handle);
  return it == g_displays.end() ? std::nullopt : std::optional(it->second);
}

// A buffer whose data holds every line its geometry describes.
std::shared_ptr<Buffer> ready_buffer(uint32_t handle) {
  std::shared_ptr<Buffer> buffer = buffers().find(handle);
  if (!buffer || buffer->width == 0 || buffer->height == 0 || line_bytes(buffer->format, buffer->width) == 0 ||
      buffer->data.size() < std::size_t{buffer->effective_line_length()} * buffer->height)
    return nullptr;
  return buffer;
}

uint32_t run(const char* function, auto&& body) noexcept {
  return guarded(CallReport(function, nullptr), body);
}

uint32_t create_buffer(uint32_t* buffer_out, uint32_t type, uint32_t display, uint32_t format) {
  if (!buffer_out) return VRX_ERR_NULL_ARGUMENT;
  if (type != VBL_BUFFER_TYPE_VIRTUAL && type != VBL_BUFFER_TYPE_CONTIGUOUS) return VRX_ERR_BAD_VALUE;
  auto buffer = std::make_shared<Buffer>();
  buffer->type = type;
  buffer->display = display;
  buffer->format = format;
  *buffer_out = buffers().add(std::move(buffer));
  return VRX_OK;
}

uint32_t destroy_buffer(uint32_t* handle) {
  if (!handle) return VRX_ERR_NULL_ARGUMENT;
  std::shared_ptr<Buffer> buffer = buffers().find(*handle);
  if (!buffer || buffer->capture) return VRX_ERR_BAD_HANDLE;
  buffers().remove(*handle);
  *handle = 0;
  return VRX_OK;
}

}  // namespace
}  // namespace vrxsim

using vrxsim::Buffer;

extern "C" {

uint32_t VBL_BufferCreate(uint32_t* buffer_out, uint32_t type) {
  return vrxsim::run("VBL_BufferCreate",
                     [&] { return vrxsim::create_buffer(buffer_out, type, 0, vrx::capture_format(0)); });
}

uint32_t VBL_BufferParameterSet(uint32_t buffer, uint32_t item, uint32_t value) {
  return vrxsim::run("VBL_BufferParameterSet", [&] {
    std::shared_ptr<Buffer> b = vrxsim::buffers().find(buffer);
    if (!b) return VRX_ERR_BAD_HANDLE;
    if (b->capture) return VRX_ERR_READ_ONLY;
    // A refused value leaves the buffer as it was.
    auto store = [value](uint32_t& field, bool accepted) {
      if (!accepted) return VRX_ERR_BAD_VALUE;
      field = value;
      return VRX_OK;
    };
    switch (item) {
      case VBL_WIDTH: return store(b->width, value > 0 && value <= 65536);
      case VBL_HEIGHT: return store(b->height, value > 0 && value <= 65536);
      case VBL_LINE_LENGTH: return store(b->line_length, value <= 0x100000);
      case VBL_FORMAT: return store(b->format, vrx::is_capture_format(value));
      default: return VRX_ERR_BAD_PARAMETER;
    }
  });
}

uint32_t VBL_BufferParameterGet(uint32_t buffer, uint32_t item, void* value) {
  return vrxsim::run("VBL_BufferParameterGet", [&] {
    std::shared_ptr<Buffer> b = vrxsim::buffers().find(buffer);
    if (!b) return VRX_ERR_BAD_HANDLE;
    if (!value) return VRX_ERR_NULL_ARGUMENT;
    uint32_t& word = *static_cast<uint32_t*>(value);
    switch (item) {
      case VBL_WIDTH: word = b->width; return VRX_OK;
      case VBL_HEIGHT: word = b->height; return VRX_OK;
      case VBL_LINE_LENGTH: word = b->effective_line_length(); return VRX_OK;
      case VBL_FORMAT: word = b->format; return VRX_OK;
      case VBL_ADDRESS:
        *static_cast<void**>(value) = b->data.empty() ? nullptr : b->data.data();
        return VRX_OK;
      default: return VRX_ERR_BAD_PARAMETER;
    }
  });
}

uint32_t VBL_BufferInit(uint32_t buffer) {
  return vrxsim::run("VBL_BufferInit", [&] {
    std::shared_ptr<Buffer> b = vrxsim::buffers().find(buffer);
    if (!b) return VRX_ERR_BAD_HANDLE;
    if (b->capture) return VRX_ERR_READ_ONLY;
    if (b->width == 0 || b->height == 0) return VRX_ERR_BAD_VALUE;
    b->data.assign(std::size_t{b->effective_line_length()} * b->height, 0);
    return VRX_OK;
  });
}

uint32_t VBL_BufferDestroy(uint32_t* buffer) {
  return vrxsim::run("VBL_BufferDestroy", [&] { return vrxsim::destroy_buffer(buffer); });
}

uint32_t VDL_DisplayCreate(uint32_t* display_out, VDL_PAINT_SINK sink, void* sink_context) {
  return vrxsim::run("VDL_DisplayCreate", [&] {
    if (!display_out) return VRX_ERR_NULL_ARGUMENT;
    std::lock_guard lock(vrxsim::g_display_mutex);
    *display_out = vrxsim::g_next_display++;
    vrxsim::g_displays[*display_out] = {sink, sink_context};
    return VRX_OK;
  });
}

uint32_t VDL_DisplayDestroy(uint32_t* display) {
  return vrxsim::run("VDL_DisplayDestroy", [&] {
    if (!display) return VRX_ERR_NULL_ARGUMENT;
    std::lock_guard lock(vrxsim::g_display_mutex);
    if (vrxsim::g_displays.erase(*display) == 0) return VRX_ERR_BAD_HANDLE;
    *display = 0;
    return VRX_OK;
  });
}

uint32_t VDL_DisplayParameterGet(uint32_t display, uint32_t parameter, uint32_t* value) {
  return vrxsim::run("VDL_DisplayParameterGet", [&] {
    if (!value) return VRX_ERR_NULL_ARGUMENT;
    std::lock_guard lock(vrxsim::g_display_mutex);
    auto it = vrxsim::g_displays.find(display);
    if (it == vrxsim::g_displays.end()) return VRX_ERR_BAD_HANDLE;
    switch (parameter) {
      case VDL_PARAM_FORMAT: *value = it->second.format; return VRX_OK;
      case VDL_PARAM_INTERPOLATION: *value = it->second.interpolation; return VRX_OK;
      case VDL_PARAM_BAYER: *value = it->second.bayer; return VRX_OK;
      default: return VRX_ERR_BAD_PARAMETER;
    }
  });
}

uint32_t VDL_DisplayParameterSet(uint32_t display, uint32_t parameter, uint32_t value) {
  return vrxsim::run("VDL_DisplayParameterSet", [&] {
    std::lock_guard lock(vrxsim::g_display_mutex);
    auto it = vrxsim::g_displays.find(display);
    if (it == vrxsim::g_displays.end()) return VRX_ERR_BAD_HANDLE;
    switch (parameter) {
      case VDL_PARAM_FORMAT:
        if (!vrx::is_capture_format(value)) return VRX_ERR_BAD_VALUE;
        it->second.format = value;
        return VRX_OK;
      case VDL_PARAM_INTERPOLATION:
        if (value > 2) return VRX_ERR_BAD_VALUE;
        it->second.interpolation = value;
        return VRX_OK;
      case VDL_PARAM_BAYER:
        if (value != 0 && (value < vrx::ColourBayerRggb || value > vrx::ColourBayerBggr)) return VRX_ERR_BAD_VALUE;
        it->second.bayer = value;
        return VRX_OK;
      default: return VRX_ERR_BAD_PARAMETER;
    }
  });
}

uint32_t VDL_BufferCreate(uint32_t display, uint32_t* buffer_out, uint32_t type) {
  return vrxsim::run("VDL_BufferCreate", [&] {
    std::optional<vrxsim::Display> d = vrxsim::find_display(display);
    if (!d) return VRX_ERR_BAD_HANDLE;
    return vrxsim::create_buffer(buffer_out, type, display, d->format);
  });
}

uint32_t VDL_BufferDestroy(uint32_t* buffer) {
  return vrxsim::run("VDL_BufferDestroy", [&] { return vrxsim::destroy_buffer(buffer); });
}

uint32_t VDL_BufferPaint(uint32_t display, uint32_t buffer) {
  return vrxsim::run("VDL_BufferPaint", [&] {
    std::optional<vrxsim::Display> d = vrxsim::find_display(display);
    if (!d) return VRX_ERR_BAD_HANDLE;
    std::shared_ptr<Buffer> b = vrxsim::ready_buffer(buffer);
    if (!b) return VRX_ERR_BAD_HANDLE;
    std::vector<vrxsim::Rgb16> picture =
        vrxsim::decode_picture(b->format, b->data.data(), b->effective_line_length(), b->width, b->height,
                               d->bayer ? d->bayer : vrx::ColourBayerRggb, d->bayer != 0);
    std::vector<uint8_t> bgrx(picture.size() * 4);
    for (std::size_t i = 0; i < picture.size(); ++i) {
      bgrx[4 * i] = static_cast<uint8_t>(picture[i].b >> 8);
      bgrx[4 * i + 1] = static_cast<uint8_t>(picture[i].g >> 8);
      bgrx[4 * i + 2] = static_cast<uint8_t>(picture[i].r >> 8);
      bgrx[4 * i + 3] = 0xFF;
    }
    if (d->sink) d->sink(d->sink_context, bgrx.data(), b->width, b->height, b->width * 4);
    return VRX_OK;
  });
}

uint32_t VIL_Convert(uint32_t source_buffer, uint32_t destination_buffer) {
  return vrxsim::run("VIL_Convert", [&] {
    std::shared_ptr<Buffer> source = vrxsim::ready_buffer(source_buffer);
    std::shared_ptr<Buffer> destination = vrxsim::ready_buffer(destination_buffer);
    if (!source || !destination) {
      auto known = [](uint32_t h) {
        std::shared_ptr<Buffer> b = vrxsim::buffers().find(h);
        return b && vrx::is_capture_format(b->format);
      };
      return known(source_buffer) && known(destination_buffer) ? VRX_ERR_BAD_VALUE : VIL_NOT_IMPLEMENTED;
    }
    const uint32_t width = std::min(source->width, destination->width);
    const uint32_t height = std::min(source->height, destination->height);
    const bool demosaic = vrxsim::is_bayer(source->format) && !vrxsim::is_bayer(destination->format);
    std::vector<vrxsim::Rgb16> picture =
        vrxsim::decode_picture(source->format, source->data.data(), source->effective_line_length(),
                               source->width, height, vrx::ColourBayerRggb, demosaic);
    const uint32_t stride = destination->effective_line_length();
    const uint32_t bytes = vrxsim::line_bytes(destination->format, width);
    for (uint32_t y = 0; y < height; ++y)
      vrxsim::encode_line(destination->format,
                          std::span(picture.data() + std::size_t{y} * source->width, width),
                          std::span(destination->data.data() + std::size_t{y} * stride, bytes),
                          {y, vrx::ColourBayerRggb});
    return VRX_OK;
  });
}

}  // extern "C"
