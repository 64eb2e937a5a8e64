#include <malloc.h>
#include <stdlib.h>
#include <string.h>
#include <tests/platform/freed_secrets.h>

#include <atomic>
#include <cstddef>
#include <new>

namespace {

std::atomic<bool> watching{false};
std::atomic<int> found{0};
std::string_view wanted;

void look(void* block) {
  if (block != nullptr && watching &&
      memmem(block, malloc_usable_size(block), wanted.data(), wanted.size()) != nullptr) {
    ++found;
  }
}

}  // namespace

void* operator new(std::size_t size) {
  void* const block = calloc(1, size == 0 ? 1 : size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
void operator delete(void* block) noexcept {
  look(block);
  free(block);
}
void operator delete(void* block, std::size_t) noexcept {
  operator delete(block);
}

namespace zqxml {

FreedSecrets::FreedSecrets(std::string_view secret) {
  wanted = secret;
  found = 0;
  watching = true;
}
FreedSecrets::~FreedSecrets() {
  watching = false;
}
int FreedSecrets::count() const {
  return found;
}

}  // namespace zqxml
