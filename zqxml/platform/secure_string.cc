#include <openssl/crypto.h>
#include <zqxml/platform/secure_string.h>

namespace zqxml {

void cleanse(void* data, std::size_t size) noexcept {
  OPENSSL_cleanse(data, size);
}

}  // namespace zqxml
