// Page geometry of the EPS writer: the longer image side fills 720 points unless that would make
// the shorter side wider than 522, in which case the shorter side fills 522. The comparison is
// made on 16.16 fixed-point ratios, as the page has always been laid out.
#include "imaging/files/eps/eps_layout.h"

#include <algorithm>

namespace vrc::files::eps {

std::optional<PageGeometry> page_geometry(uint32_t width, uint32_t height) {
  if (width == 0 || height == 0) return std::nullopt;
  const int64_t shorter = std::min(width, height);
  const int64_t longer = std::max(width, height);
  PageGeometry page{};
  page.landscape = width > height;
  int64_t extent_short = 0;
  int64_t extent_long = 0;
  if (kAreaShort * 65536 / shorter >= kAreaLong * 65536 / longer) {
    extent_short = shorter * kAreaLong / longer;
    extent_long = kAreaLong;
    page.x0 = ((kAreaShort - extent_short) >> 1) + kAreaLeft;
    page.x1 = ((extent_short + kAreaShort) >> 1) + kAreaLeft;
    page.y0 = kAreaBottom;
    page.y1 = kAreaLong + kAreaBottom;
  } else {
    extent_long = longer * kAreaShort / shorter;
    extent_short = kAreaShort;
    page.y0 = ((kAreaLong - extent_long) >> 1) + kAreaBottom;
    page.y1 = ((extent_long + kAreaLong) >> 1) + kAreaBottom;
    page.x0 = kAreaLeft;
    page.x1 = kAreaShort + kAreaLeft;
  }
  page.scale_x = page.landscape ? extent_long : extent_short;
  page.scale_y = page.landscape ? extent_short : extent_long;
  return page;
}

}  // namespace vrc::files::eps
