// The TIFF byte-order readers: 'M' files are read most significant byte first, all others least
// significant byte first.
#include "imaging/files/tiff/tiff_layout.h"
#include "vrcw32/zep_files.h"

extern "C" uint16_t TIFF_read_ui16(FILE *file, uint16_t order) {
  return order == ZEP_TIFF_ORDER_MOTOROLA ? ZEP_fget_ui16m(file) : ZEP_fget_ui16i(file);
}

extern "C" uint32_t TIFF_read_ui32(FILE *file, uint16_t order) {
  return order == ZEP_TIFF_ORDER_MOTOROLA ? ZEP_fget_ui32m(file) : ZEP_fget_ui32i(file);
}

extern "C" uint32_t TIFF_read_data(FILE *file, uint16_t order, uint16_t type) {
  if (type != vrc::files::tiff::kTypeShort) return TIFF_read_ui32(file, order);
  const uint16_t value = TIFF_read_ui16(file, order);
  static_cast<void>(TIFF_read_ui16(file, order));  // the unused half of the value word
  return value;
}
