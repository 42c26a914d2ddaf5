// Life cycle of the JPEG record an image may own.
#include "imaging/core/jpeg_record.h"

#include <cstdlib>
#include <cstring>

namespace vrc::core {

ZEP_JPEG_RECORD *jpeg_record_create() {
  auto *record = static_cast<ZEP_JPEG_RECORD *>(std::calloc(1, sizeof(ZEP_JPEG_RECORD)));
  if (record == nullptr) return nullptr;
  record->quality_scale = 32;
  std::memset(record->info_block, ' ', sizeof record->info_block);
  return record;
}

void jpeg_record_free_data(ZEP_JPEG_RECORD *record) {
  std::free(record->data);
  record->data = nullptr;
  record->position = nullptr;
  record->length = 0;
}

void jpeg_record_destroy(ZEP_JPEG_RECORD *record) {
  if (record == nullptr) return;
  if (record->file != nullptr) std::fclose(record->file);
  jpeg_record_free_data(record);
  std::free(record);
}

void jpeg_record_copy_parameters(const ZEP_JPEG_RECORD &source, ZEP_JPEG_RECORD &destination) {
  ZEP_JPEG_RECORD copy = source;
  copy.file = destination.file;
  copy.data_offset = destination.data_offset;
  copy.data = destination.data;
  copy.length = destination.length;
  copy.position = destination.position;
  destination = copy;
}

}  // namespace vrc::core
