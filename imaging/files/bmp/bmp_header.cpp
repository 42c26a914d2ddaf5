// The header block shared by the BMP file writer and the BMP buffer writer.
#include "imaging/files/bmp/bmp_layout.h"

namespace vrc::files::bmp {

std::vector<uint8_t> build_header(const ZEP_IMAGE &image, uint32_t bits) {
  const uint32_t offset = data_offset(bits);
  // Sizes are stored as 32-bit fields, wrapping like the fields themselves.
  const auto image_bytes = static_cast<uint32_t>(image.height * row_bytes(image.width, bits));
  std::vector<uint8_t> header(offset, 0);
  header[0] = 'B';
  header[1] = 'M';
  ZEP_mput_ui32i(&header[2], image_bytes + offset);  // file size
  ZEP_mput_ui32i(&header[10], offset);               // data offset
  ZEP_mput_ui32i(&header[14], kInfoHeaderBytes);
  ZEP_mput_ui32i(&header[kWidthField], image.width);
  ZEP_mput_ui32i(&header[kWidthField + 4], image.height);  // positive: bottom-up rows
  ZEP_mput_ui16i(&header[26], 1);                          // planes
  ZEP_mput_ui16i(&header[kBitsField], static_cast<uint16_t>(bits));
  ZEP_mput_ui32i(&header[34], image_bytes);
  if (bits == 8 && image.cmap != nullptr) {
    for (uint32_t entry = 0; entry < kPaletteEntries; ++entry) {
      const uint8_t *rgb = image.cmap + 4 * entry;
      uint8_t *bgr0 = &header[kRgbDataOffset + 4 * entry];
      bgr0[0] = rgb[2];
      bgr0[1] = rgb[1];
      bgr0[2] = rgb[0];
    }
  }
  return header;
}

}  // namespace vrc::files::bmp
