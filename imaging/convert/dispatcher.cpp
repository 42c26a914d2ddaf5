// ZEP_image_convert: chooses the conversion member by the requested output type and the source's
// type. YUV 4:2:2 sources have their own members (with table-driven variants for the colour
// outputs) and no others; every other source goes through the general family.
#include "vrcw32/zep_convert.h"
#include "vrcw32/zep_files.h"

#include "imaging/core/handle_table.h"
#include "imaging/core/report.h"

namespace {

using MemberFn = uint32_t (*)(uint32_t, uint32_t, uint16_t);

struct Route {
  uint16_t out_type;
  MemberFn direct;
  MemberFn with_lut;  // chosen when the destination has ZEP_FLAG_USE_LUT; null: none
};

constexpr Route kYuv422Routes[] = {
    {ZEP_Y8, ZEP_YUV422_to_Y8, nullptr},
    {ZEP_PALETTED, ZEP_YUV422_to_paletted_LUT, nullptr},
    {ZEP_RGB15, ZEP_YUV422_to_RGB15, ZEP_YUV422_to_RGB15_LUT},
    {ZEP_RGB16, ZEP_YUV422_to_RGB16, ZEP_YUV422_to_RGB16_LUT},
    {ZEP_RGB24, ZEP_YUV422_to_RGB24, ZEP_YUV422_to_RGB24_LUT},
    {ZEP_BGR24, ZEP_YUV422_to_BGR24, ZEP_YUV422_to_BGR24_LUT},
    {ZEP_RGBX32, ZEP_YUV422_to_RGBX32, ZEP_YUV422_to_RGBX32_LUT},
    {ZEP_BGRX32, ZEP_YUV422_to_BGRX32, ZEP_YUV422_to_BGRX32_LUT},
    {ZEP_XBGR32, ZEP_YUV422_to_XBGR32, ZEP_YUV422_to_XBGR32_LUT},
    {ZEP_YUV422, ZEP_convert_to_YUV422, nullptr},
    {ZEP_Y16, ZEP_YUV422_to_Y16, nullptr},
    {ZEP_XRGB32, ZEP_YUV422_to_XRGB32, ZEP_YUV422_to_XRGB32_LUT},
    {ZEP_HSI, ZEP_YUV422_to_HSI, nullptr},
};

constexpr Route kGeneralRoutes[] = {
    {ZEP_Y8, ZEP_convert_to_Y8, nullptr},
    {ZEP_PALETTED, ZEP_convert_to_paletted, ZEP_convert_to_paletted_LUT},
    {ZEP_RGB8, ZEP_convert_to_RGB8, nullptr},
    {ZEP_RGB15, ZEP_convert_to_RGB15, nullptr},
    {ZEP_RGB16, ZEP_convert_to_RGB16, nullptr},
    {ZEP_RGB24, ZEP_convert_to_RGB24, nullptr},
    {ZEP_BGR24, ZEP_convert_to_BGR24, nullptr},
    {ZEP_RGBX32, ZEP_convert_to_RGBX32, nullptr},
    {ZEP_BGRX32, ZEP_convert_to_BGRX32, nullptr},
    {ZEP_XBGR32, ZEP_convert_to_XBGR32, nullptr},
    {ZEP_YUV422, ZEP_convert_to_YUV422, nullptr},
    {ZEP_Y16, ZEP_convert_to_Y16, nullptr},
    {ZEP_XRGB32, ZEP_convert_to_XRGB32, nullptr},
};

template <size_t N>
const Route *find_route(const Route (&routes)[N], uint16_t out_type) {
  for (const Route &route : routes)
    if (route.out_type == out_type) return &route;
  return nullptr;
}

// The member for this request, or null when the output type has none.
MemberFn choose_member(const ZEP_IMAGE *source, uint16_t out_type, uint32_t dst_flags) {
  if (out_type == ZEP_PALETTED_TO_DIRECT) return ZEP_paletted_to_RGB24_or_Y8;
  const bool yuv422 = source != nullptr && source->type == ZEP_YUV422;
  const Route *route =
      yuv422 ? find_route(kYuv422Routes, out_type) : find_route(kGeneralRoutes, out_type);
  if (route == nullptr) return nullptr;
  return (dst_flags & ZEP_FLAG_USE_LUT) && route->with_lut ? route->with_lut : route->direct;
}

}  // namespace

extern "C" uint32_t ZEP_image_convert(uint32_t src, uint32_t dst, uint16_t out_type,
                                      uint32_t dst_flags, uint16_t mode) {
  using namespace vrc;
  return core::api_guard("ZEP_image_convert", [&]() -> uint32_t {
    ZEP_IMAGE *destination = core::image_record(dst);
    if (destination == nullptr)
      return core::report("ZEP_image_convert", ZEP_ERR_HANDLE, "Output image does not exist");
    destination->flags = dst_flags;
    if (dst_flags & ZEP_FLAG_DITHER)
      return core::report("ZEP_image_convert", ZEP_ERR_UNSUPPORTED,
                          "Dithering is not yet supported");
    if (dst_flags & ZEP_FLAG_DIB) return ZEP_convert_to_DIB_w31(src, dst, dst_flags, mode);
    const MemberFn member = choose_member(core::image_record(src), out_type, dst_flags);
    if (member == nullptr)
      return core::report("ZEP_image_convert", ZEP_ERR_UNSUPPORTED,
                          "Unsupported or unrecognized output image format");
    // The destination no longer holds JPEG data once a member has run, whatever its result.
    const uint32_t status = member(src, dst, mode);
    if (ZEP_IMAGE *converted = core::image_record(dst)) converted->flags &= ~ZEP_FLAG_JPEG;
    return status;
  });
}
