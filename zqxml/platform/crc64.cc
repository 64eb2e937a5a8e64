#include <lzma.h>
#include <zqxml/platform/crc64.h>

namespace zqxml {

void CUlCRC64::UpdateCRC64(const unsigned char* data, unsigned size) {
  if (data != nullptr) value_ = lzma_crc64(data, size, value_);
}

}  // namespace zqxml
