#include "secret/Secret.h"

#include <sodium.h>

#include <algorithm>
#include <new>
#include <utility>

namespace kv {
namespace {

// The library guards, locks and wipes what it gives out, once it has been set up.
char* NewMemory(std::size_t size) {
  static const bool isReady = sodium_init() >= 0;
  void* memory = isReady ? sodium_malloc(size) : nullptr;
  if (memory == nullptr) throw std::bad_alloc();
  return static_cast<char*>(memory);
}

}  // namespace

Secret::Secret(std::string_view bytes) : mSize(bytes.size()) {
  if (bytes.empty()) return;
  mBytes = NewMemory(bytes.size());
  std::ranges::copy(bytes, mBytes);
}

Secret Secret::TakenFrom(std::string& text) {
  Secret taken(text);
  Wipe(text);
  return taken;
}

Secret::Secret(Secret&& other) noexcept
    : mBytes(std::exchange(other.mBytes, nullptr)), mSize(std::exchange(other.mSize, 0)) {}

Secret& Secret::operator=(Secret other) noexcept {
  std::swap(mBytes, other.mBytes);
  std::swap(mSize, other.mSize);
  return *this;
}

void Secret::Clear() {
  sodium_free(mBytes);  // wipes it
  mBytes = nullptr;
  mSize = 0;
}

void Wipe(std::string& text) {
  text.resize(text.capacity());
  WipeBytes(text.data(), text.size());
  text.clear();
}

void WipeBytes(void* bytes, std::size_t size) {
  sodium_memzero(bytes, size);
}

}  // namespace kv
