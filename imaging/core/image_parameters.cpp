// Parameters, pointers, flags and file names of an image record, checked and unchecked.
#include "imaging/core/handle_table.h"
#include "imaging/core/init.h"
#include "imaging/core/jpeg_record.h"
#include "imaging/core/library_lock.h"
#include "imaging/core/pixel_formats.h"
#include "imaging/core/report.h"
#include "imaging/core/text_field.h"
#include "vrcw32/zep_core.h"

#include <cstdlib>
#include <cstring>

namespace {

constexpr const char *kGetParameter = "ZEP_image_get_parameter";
constexpr const char *kSetParameter = "ZEP_image_set_parameter";
constexpr const char *kSetPtr = "ZEP_image_set_ptr";

// The plainly stored 32-bit fields, by parameter id; null for the others.
uint32_t *plain_field(ZEP_IMAGE &image, uint16_t id) {
  switch (id) {
    case ZEP_IMAGE_WIDTH: return &image.width;
    case ZEP_IMAGE_HEIGHT: return &image.height;
    case ZEP_IMAGE_DEPTH: return &image.depth;
    case ZEP_LINES_THIS_STRIP: return &image.lines_this_strip;
    case ZEP_BYTES_PER_LINE: return &image.bytes_per_line;
    case ZEP_STRIP_BYTES: return &image.strip_bytes;
    case ZEP_NUM_FRAMES: return &image.num_frames;
    case ZEP_CURRENT_FRAME: return &image.current_frame;
    case ZEP_CMAP_COLOURS: return &image.cmap_colours;
    case ZEP_FIELD_MODE: return &image.field_mode;
    case ZEP_LINE_ALIGN: return &image.line_align;
    case ZEP_DERIVED_LINE_ALIGN: return &image.derived_line_align;
    default: return nullptr;
  }
}

// ZEP_BYTES_PER_PIXEL: the row's reported value, else whole bytes of the depth.
uint32_t bytes_per_pixel(const ZEP_IMAGE &image) {
  const vrc::core::PixelFormat *format = vrc::core::pixel_format(image.type);
  return format != nullptr && format->reported_pixel_bytes != 0 ? format->reported_pixel_bytes
                                                                : image.depth / 8;
}

// Stores the type first (QUIRK: a refused code stays stored), then the depth and data width it
// demands.
uint32_t set_type(ZEP_IMAGE &image, uint32_t type) {
  image.type = static_cast<uint16_t>(type);
  if (type == ZEP_NONE) {
    image.flags &= ~ZEP_FLAG_DIB;
    return 0;
  }
  const vrc::core::PixelFormat *format = vrc::core::pixel_format(type);
  if (format == nullptr)
    return vrc::core::report(kSetParameter, ZEP_ERR_UNSUPPORTED, "Unrecognized image type");
  image.depth = format->depth;
  if (format->data_width != 0) image.data_width = format->data_width;
  if (format->check_extra == vrc::core::CheckExtra::NeedsColourMap && image.cmap_colours == 0)
    image.cmap_colours = 256;
  image.flags &= ~ZEP_FLAG_DIB;
  return 0;
}

// The parameter `id` of `handle` into `value`; a status, failures reported under
// `function_name`.
uint32_t read_parameter(uint32_t handle, uint16_t id, const char *function_name, uint32_t &value) {
  if (id == ZEP_LIBRARY_ID) {
    value = vrc::core::library_word();
    return ZEP_OK;
  }
  ZEP_IMAGE *image = vrc::core::record_or_report(handle, function_name);
  if (image == nullptr) return ZEP_ERR_HANDLE;
  if (uint32_t *field = plain_field(*image, id)) {
    value = *field;
    return ZEP_OK;
  }
  switch (id) {
    case ZEP_IMAGE_TYPE: value = image->type; return ZEP_OK;
    case ZEP_DATA_WIDTH: value = image->data_width; return ZEP_OK;
    case ZEP_BYTES_PER_PIXEL: value = bytes_per_pixel(*image); return ZEP_OK;
    case ZEP_JPEG_LENGTH:
      if (image->jpeg == nullptr)
        return vrc::core::report(function_name, ZEP_ERR_HANDLE, "JPEG structure does not exist");
      value = image->jpeg->length;
      return ZEP_OK;
    default: return vrc::core::report(function_name, ZEP_ERR_BAD_PARAM, "Unknown parameter");
  }
}

using NameField = char (ZEP_IMAGE::*)[ZEP_NAME_LENGTH];

uint32_t set_name(uint32_t handle, const char *name, const char *function_name, NameField field) {
  ZEP_IMAGE *image = vrc::core::record_or_report(handle, function_name);
  if (image == nullptr) return ZEP_ERR_HANDLE;
  if (name == nullptr)
    return vrc::core::report(function_name, ZEP_ERR_BAD_PARAM, "File name is NULL");
  vrc::core::copy_text_field(image->*field, name);
  return 0;
}

// An unchecked accessor's field: a dead handle reads as 0 rather than crashing.
template <typename Field>
Field unchecked(uint32_t handle, Field ZEP_IMAGE::*field) {
  ZEP_IMAGE *image = vrc::core::image_record(handle);
  return image ? image->*field : Field{};
}

}  // namespace

extern "C" {

uint32_t ZEP_image_get_parameter(uint32_t handle, uint16_t id) {
  uint32_t value = 0;
  const uint32_t status = read_parameter(handle, id, kGetParameter, value);
  return status != ZEP_OK ? status : value;
}

uint32_t ZEP_image_query_parameter(uint32_t handle, uint16_t id, uint32_t *value) {
  constexpr const char *kQuery = "ZEP_image_query_parameter";
  if (value == nullptr)
    return vrc::core::report(kQuery, ZEP_ERR_BAD_PARAM, "Value pointer is NULL");
  return read_parameter(handle, id, kQuery, *value);
}

uint32_t ZEP_image_set_parameter(uint32_t handle, uint16_t id, uint32_t value) {
  ZEP_IMAGE *image = vrc::core::record_or_report(handle, kSetParameter);
  if (image == nullptr) return ZEP_ERR_HANDLE;
  if (uint32_t *field = plain_field(*image, id)) {
    *field = value;
    return 0;
  }
  switch (id) {
    case ZEP_IMAGE_TYPE: return set_type(*image, value);
    case ZEP_DATA_WIDTH: image->data_width = static_cast<uint16_t>(value); return 0;
    case ZEP_JPEG_LENGTH:
      if (image->jpeg == nullptr)
        return vrc::core::report(kSetParameter, ZEP_ERR_HANDLE, "JPEG structure does not exist");
      image->jpeg->length = value;
      return 0;
    default: return vrc::core::report(kSetParameter, ZEP_ERR_BAD_PARAM);
  }
}

void *ZEP_image_get_ptr(uint32_t handle, uint16_t id) {
  ZEP_IMAGE *image = vrc::core::image_record(handle);
  if (image == nullptr) return nullptr;
  ZEP_JPEG_RECORD *jpeg = image->jpeg;
  switch (id) {
    case ZEP_DATA_PTR: return image->data;
    case ZEP_CMAP_PTR: return image->cmap;
    case ZEP_JPEG_BUFFER_PTR: return jpeg ? jpeg->data : nullptr;
    case ZEP_JPEG_POSITION_PTR: return jpeg ? jpeg->position : nullptr;
    case ZEP_IMAGE_RECORD_PTR: return image;
    case ZEP_JPEG_RECORD_PTR: return jpeg;
    case ZEP_JPEG_INFO_BLOCK: return jpeg ? jpeg->info_block : nullptr;
    default:
      vrc::core::report("ZEP_image_get_ptr", ZEP_ERR_BAD_PARAM, "Unrecognized pointer type");
      return nullptr;
  }
}

uint32_t ZEP_image_set_ptr(uint32_t handle, uint16_t id, void *value) {
  ZEP_IMAGE *image = vrc::core::record_or_report(handle, kSetPtr);
  if (image == nullptr) return ZEP_ERR_HANDLE;
  auto *bytes = static_cast<uint8_t *>(value);
  switch (id) {
    case ZEP_DATA_PTR: image->data = bytes; return 0;
    case ZEP_CMAP_PTR: image->cmap = bytes; return 0;
    case ZEP_IMAGE_RECORD_PTR: {
      vrc::core::LibraryLock lock;
      vrc::core::table_store(handle, static_cast<ZEP_IMAGE *>(value));
      return 0;
    }
    case ZEP_JPEG_RECORD_PTR: image->jpeg = static_cast<ZEP_JPEG_RECORD *>(value); return 0;
    case ZEP_JPEG_BUFFER_PTR:
    case ZEP_JPEG_POSITION_PTR:
    case ZEP_JPEG_INFO_BLOCK: break;
    default: return vrc::core::report(kSetPtr, ZEP_ERR_BAD_PARAM, "Unrecognized pointer type");
  }
  if (image->jpeg == nullptr) return vrc::core::report(kSetPtr, ZEP_ERR_HANDLE, "Not a JPEG image");
  if (id == ZEP_JPEG_BUFFER_PTR) {
    image->jpeg->data = bytes;
  } else if (id == ZEP_JPEG_POSITION_PTR) {
    image->jpeg->position = bytes;
  } else if (bytes == nullptr) {
    return vrc::core::report(kSetPtr, ZEP_ERR_BAD_PARAM, "Information block is NULL");
  } else {
    std::memcpy(image->jpeg->info_block, bytes, ZEP_JPEG_INFO_BLOCK_BYTES);
  }
  return 0;
}

uint32_t ZEP_image_get_flags(uint32_t handle, uint32_t mask) {
  ZEP_IMAGE *image = vrc::core::record_or_report(handle, "ZEP_image_get_flags");
  if (image == nullptr) return ZEP_ERR_HANDLE;
  return (image->flags & mask) != 0 ? 1 : 0;
}

uint32_t ZEP_image_set_flags(uint32_t handle, uint32_t mask, uint32_t on) {
  auto apply = [mask, on](ZEP_IMAGE &image) {
    image.flags = on == 1 ? (image.flags | mask) : (image.flags & ~mask);
  };
  if (handle == ZEP_ALL_IMAGES) {
    vrc::core::LibraryLock lock;
    vrc::core::table_for_each([&](uint32_t, ZEP_IMAGE *image) { apply(*image); });
    return 0;
  }
  ZEP_IMAGE *image = vrc::core::record_or_report(handle, "ZEP_image_set_flags");
  if (image == nullptr) return ZEP_ERR_HANDLE;
  apply(*image);
  return 0;
}

uint32_t ZEP_image_set_infilename(uint32_t handle, const char *name) {
  return set_name(handle, name, "ZEP_image_set_infilename", &ZEP_IMAGE::infilename);
}

uint32_t ZEP_image_set_outfilename(uint32_t handle, const char *name) {
  return set_name(handle, name, "ZEP_image_set_outfilename", &ZEP_IMAGE::outfilename);
}

char *ZEP_image_get_infilename(uint32_t handle) {
  ZEP_IMAGE *image = vrc::core::image_record(handle);
  return image ? image->infilename : nullptr;
}

char *ZEP_image_get_outfilename(uint32_t handle) {
  ZEP_IMAGE *image = vrc::core::image_record(handle);
  return image ? image->outfilename : nullptr;
}

uint32_t ZEP_copy_outfilename(uint32_t dst, uint32_t src) {
  ZEP_IMAGE *to = vrc::core::image_record(dst);
  ZEP_IMAGE *from = vrc::core::image_record(src);
  if (to != nullptr && from != nullptr)
    vrc::core::copy_text_field(to->outfilename, from->outfilename);
  return 0;
}

uint32_t ZEP_get_width(uint32_t handle) { return unchecked(handle, &ZEP_IMAGE::width); }

uint32_t ZEP_get_height(uint32_t handle) { return unchecked(handle, &ZEP_IMAGE::height); }

uint16_t ZEP_get_depth(uint32_t handle) {
  return static_cast<uint16_t>(unchecked(handle, &ZEP_IMAGE::depth));
}

uint32_t ZEP_get_bytes_per_line(uint32_t handle) {
  return unchecked(handle, &ZEP_IMAGE::bytes_per_line);
}

uint32_t ZEP_get_lines_this_strip(uint32_t handle) {
  return unchecked(handle, &ZEP_IMAGE::lines_this_strip);
}

uint8_t *ZEP_malloc_N_lines(uint32_t handle, uint16_t count) {
  ZEP_IMAGE *image = vrc::core::image_record(handle);
  if (image == nullptr) return nullptr;
  return static_cast<uint8_t *>(std::malloc(std::size_t{count} * image->bytes_per_line + 1));
}

}  // extern "C"
