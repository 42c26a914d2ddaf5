// The conversion tables: their process-wide storage, generation against a colour map or from the
// YUV arithmetic, and destruction (also when the library releases everything).
#include "imaging/convert/conversion_luts.h"

#include "imaging/convert/colour_map.h"
#include "imaging/convert/rgb_rows.h"
#include "imaging/convert/yuv422_rows.h"

#include "imaging/core/handle_table.h"
#include "imaging/core/library_hooks.h"
#include "imaging/core/report.h"

#include <array>
#include <vector>

namespace vrc::convert {
namespace {

constexpr size_t kYuvTableEntries = size_t{1} << 19;
// Bytes kept readable past a table's end: vector kernels read 32-bit words at 16-bit entries.
constexpr size_t kReadSlack = 4;

struct Table {
  std::vector<uint8_t> storage;  // the entries, then kReadSlack zero bytes
  size_t bytes = 0;
};

std::array<Table, 6> g_tables;

Table &table_of(uint16_t id) { return g_tables[id - ZEP_LUT_RGB16_TO_PALETTED]; }

void release(Table &table) {
  std::vector<uint8_t>().swap(table.storage);
  table.bytes = 0;
}

void release_all_tables() {
  ZEP_CriticalSectionBegin();
  for (Table &table : g_tables) release(table);
  ZEP_CriticalSectionEnd();
}

[[maybe_unused]] const bool g_registered = core::register_teardown(&release_all_tables);

constexpr const char *kGeneratorNames[] = {
    "ZEP_generate_RGB16_to_paletted_LUT", "ZEP_generate_Y8_to_paletted_LUT",
    "ZEP_generate_Y16_to_paletted_LUT",   "ZEP_generate_YUV422_to_RGB16_LUT",
    "ZEP_generate_YUV422_to_RGB15_LUT",   "ZEP_generate_YUV422_to_paletted_LUT"};

// Allocates table `id` for the image of `handle` and fills it through `fill(image, table)`, after
// the checks every generator makes.
template <typename Fill>
uint32_t generate(uint16_t id, uint32_t handle, bool needs_map, Fill fill) {
  const char *name = kGeneratorNames[id - ZEP_LUT_RGB16_TO_PALETTED];
  const ZEP_IMAGE *image = core::image_record(handle);
  if (image == nullptr) return core::report(name, ZEP_ERR_HANDLE);
  if (needs_map && image->cmap == nullptr)
    return core::report(name, ZEP_ERR_STATE, "Colourmap is NULL");
  std::span<uint8_t> table;
  try {
    table = lut_allocate(id, lut_bytes(id, *image));
  } catch (const std::bad_alloc &) {
    return core::report(name, ZEP_ERR_MEMORY, lut_failure_text(id));
  }
  fill(*image, table);
  return ZEP_OK;
}

// Closest map entry of `image` for each index, through `colour_of(index)`.
template <typename ColourOf>
void fill_paletted(const ZEP_IMAGE &image, std::span<uint8_t> table, ColourOf colour_of) {
  const uint32_t colours = searched_entries(image);
  for (size_t i = 0; i < table.size(); ++i) {
    const Rgb16 c = colour_of(static_cast<uint32_t>(i));
    table[i] = closest_index(image.cmap, colours, static_cast<uint8_t>(c.r),
                             static_cast<uint8_t>(c.g), static_cast<uint8_t>(c.b));
  }
}

template <typename Pack>
void fill_yuv_to_16bit(std::span<uint8_t> table, Pack pack) {
  for (uint32_t i = 0; i < kYuvTableEntries; ++i) {
    const int y = static_cast<int>((i >> 11) & 254);
    const int u = static_cast<int>((i >> 4) & 252);
    const int v = static_cast<int>((i & 63) * 4);
    const Rgb16 c = yuv_to_rgb(y, u - 128, v - 128);
    const uint16_t word = pack(c.r, c.g, c.b);
    table[2 * i] = static_cast<uint8_t>(word);
    table[2 * i + 1] = static_cast<uint8_t>(word >> 8);
  }
}

uint32_t destroy(uint16_t id) {
  ZEP_CriticalSectionBegin();
  release(table_of(id));
  ZEP_CriticalSectionEnd();
  return ZEP_OK;
}

}  // namespace

size_t lut_bytes(uint16_t id, const ZEP_IMAGE &image) {
  switch (id) {
    case ZEP_LUT_RGB16_TO_PALETTED: return 65536;
    case ZEP_LUT_Y8_TO_PALETTED: return 256;
    case ZEP_LUT_Y16_TO_PALETTED:
      return size_t{1} << (image.data_width <= 16 ? image.data_width : 16);
    case ZEP_LUT_YUV422_TO_RGB16:
    case ZEP_LUT_YUV422_TO_RGB15: return 2 * kYuvTableEntries;
    default: return 32768;
  }
}

std::span<uint8_t> lut(uint16_t id) {
  if (!is_lut_id(id)) return {};
  Table &table = table_of(id);
  return {table.storage.data(), table.bytes};
}

std::span<uint8_t> lut_allocate(uint16_t id, size_t bytes) {
  Table &table = table_of(id);
  if (table.bytes != bytes) {
    table.storage.assign(bytes + kReadSlack, 0);
    table.bytes = bytes;
  }
  return {table.storage.data(), table.bytes};
}

const char *lut_failure_text(uint16_t id) {
  constexpr const char *kTexts[] = {
      "Unable to generate RGB16 to paletted LUT", "Unable to generate Y8 to paletted LUT",
      "Unable to generate Y16 to paletted LUT",   "Unable to generate YUV to RGB16 LUT",
      "Unable to generate YUV to RGB15 LUT",      "Unable to generate YUV to paletted LUT"};
  return kTexts[id - ZEP_LUT_RGB16_TO_PALETTED];
}

}  // namespace vrc::convert

using namespace vrc;
using namespace vrc::convert;

extern "C" {

uint32_t ZEP_generate_RGB16_to_paletted_LUT(uint32_t handle) {
  return generate(
      ZEP_LUT_RGB16_TO_PALETTED, handle, true,
      [](const ZEP_IMAGE &image, std::span<uint8_t> table) {
        fill_paletted(image, table, [](uint32_t v) {
          uint8_t rgb[3];
          const uint8_t word[2] = {static_cast<uint8_t>(v), static_cast<uint8_t>(v >> 8)};
          read_rgb_row(ZEP_RGB16, word, 1, {}, 0, rgb);
          return Rgb16{rgb[0], rgb[1], rgb[2]};
        });
      });
}

uint32_t ZEP_generate_Y8_to_paletted_LUT(uint32_t handle) {
  return generate(
      ZEP_LUT_Y8_TO_PALETTED, handle, true, [](const ZEP_IMAGE &image, std::span<uint8_t> table) {
        fill_paletted(image, table, [](uint32_t v) { return Rgb16{int(v), int(v), int(v)}; });
      });
}

uint32_t ZEP_generate_Y16_to_paletted_LUT(uint32_t handle) {
  return generate(ZEP_LUT_Y16_TO_PALETTED, handle, true,
                  [](const ZEP_IMAGE &image, std::span<uint8_t> table) {
                    const uint32_t data_width = image.data_width;
                    fill_paletted(image, table, [data_width](uint32_t s) {
                      const int grey = y16_to_grey(static_cast<uint16_t>(s), data_width);
                      return Rgb16{grey, grey, grey};
                    });
                  });
}

uint32_t ZEP_generate_YUV422_to_RGB16_LUT(uint32_t handle) {
  return generate(
      ZEP_LUT_YUV422_TO_RGB16, handle, false, [](const ZEP_IMAGE &, std::span<uint8_t> table) {
        fill_yuv_to_16bit(table, [](int r, int g, int b) { return pack_rgb16(r, g, b); });
      });
}

uint32_t ZEP_generate_YUV422_to_RGB15_LUT(uint32_t handle) {
  return generate(
      ZEP_LUT_YUV422_TO_RGB15, handle, false, [](const ZEP_IMAGE &, std::span<uint8_t> table) {
        fill_yuv_to_16bit(table, [](int r, int g, int b) { return pack_rgb15(r, g, b); });
      });
}

uint32_t ZEP_generate_YUV422_to_paletted_LUT(uint32_t handle) {
  return generate(ZEP_LUT_YUV422_TO_PALETTED, handle, true,
                  [](const ZEP_IMAGE &image, std::span<uint8_t> table) {
                    fill_paletted(image, table, [](uint32_t i) {
                      const int y = static_cast<int>((i >> 7) & 248);
                      const int u = static_cast<int>((i >> 2) & 248);
                      const int v = static_cast<int>((i & 31) * 8);
                      return yuv_to_rgb(y, u - 128, v - 128);
                    });
                  });
}

uint32_t ZEP_destroy_RGB16_to_paletted_LUT(void) { return destroy(ZEP_LUT_RGB16_TO_PALETTED); }
uint32_t ZEP_destroy_Y8_to_paletted_LUT(void) { return destroy(ZEP_LUT_Y8_TO_PALETTED); }
uint32_t ZEP_destroy_Y16_to_paletted_LUT(void) { return destroy(ZEP_LUT_Y16_TO_PALETTED); }
uint32_t ZEP_destroy_YUV422_to_RGB16_LUT(void) { return destroy(ZEP_LUT_YUV422_TO_RGB16); }
uint32_t ZEP_destroy_YUV422_to_RGB15_LUT(void) { return destroy(ZEP_LUT_YUV422_TO_RGB15); }
uint32_t ZEP_destroy_YUV422_to_paletted_LUT(void) { return destroy(ZEP_LUT_YUV422_TO_PALETTED); }

uint32_t ZEP_image_conv_LUT_generate(uint32_t handle, uint16_t id) {
  return core::api_guard("ZEP_image_conv_LUT_generate", [&]() -> uint32_t {
    if (core::image_record(handle) == nullptr)
      return core::report("ZEP_image_conv_LUT_generate", ZEP_ERR_HANDLE);
    switch (id) {
      case ZEP_LUT_RGB16_TO_PALETTED: return ZEP_generate_RGB16_to_paletted_LUT(handle);
      case ZEP_LUT_Y8_TO_PALETTED: return ZEP_generate_Y8_to_paletted_LUT(handle);
      case ZEP_LUT_Y16_TO_PALETTED: return ZEP_generate_Y16_to_paletted_LUT(handle);
      case ZEP_LUT_YUV422_TO_RGB16: return ZEP_generate_YUV422_to_RGB16_LUT(handle);
      case ZEP_LUT_YUV422_TO_RGB15: return ZEP_generate_YUV422_to_RGB15_LUT(handle);
      case ZEP_LUT_YUV422_TO_PALETTED: return ZEP_generate_YUV422_to_paletted_LUT(handle);
      default:
        return core::report("ZEP_image_conv_LUT_generate", ZEP_ERR_UNSUPPORTED,
                            "LUT function not available for this image pixel format");
    }
  });
}

uint32_t ZEP_image_conv_LUT_destroy(uint16_t id) {
  if (!is_lut_id(id))
    return core::report("ZEP_image_conv_LUT_destroy", ZEP_ERR_UNSUPPORTED,
                        "LUT function not available for this image pixel format");
  return destroy(id);
}

}  // extern "C"
