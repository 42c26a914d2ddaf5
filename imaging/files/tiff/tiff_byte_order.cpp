// The TIFF byte-order readers: 'M' files are read most significant byte first, all others least
// significant byte first.
#include "imaging/files/tiff/tiff_layout.h"
#include "vrcw32/zep_core.h"

namespace vrc::files::tiff {

uint16_t read_ui16(std::FILE *file, uint16_t order) {
  return order == kOrderMotorola ? ZEP_fget_ui16m(file) : ZEP_fget_ui16i(file);
}

uint32_t read_ui32(std::FILE *file, uint16_t order) {
  return order == kOrderMotorola ? ZEP_fget_ui32m(file) : ZEP_fget_ui32i(file);
}

uint32_t read_data(std::FILE *file, uint16_t order, uint16_t type) {
  if (type != kTypeShort) return read_ui32(file, order);
  const uint16_t value = read_ui16(file, order);
  static_cast<void>(read_ui16(file, order));  // the unused half of the value word
  return value;
}

}  // namespace vrc::files::tiff
