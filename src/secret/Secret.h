#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kv {

// A password while the program keeps it. Its memory is its own: left out of core files, not swapped out where the
// system lets a program lock memory, and wiped when the secret is cleared, replaced or gone. Empty until it is given
// one.
//
// Whoever has to make a plain text of it, for a frame or a field, wipes that as soon as it is used.
class Secret {
 public:
  Secret() = default;
  explicit Secret(std::string_view bytes);
  // The same with a text that is not needed any longer: it is wiped.
  [[nodiscard]] static Secret TakenFrom(std::string& text);

  Secret(const Secret& other) : Secret(other.View()) {}
  Secret(Secret&& other) noexcept;
  Secret& operator=(Secret other) noexcept;
  ~Secret() { Clear(); }

  [[nodiscard]] bool IsEmpty() const { return mSize == 0; }
  // Good until the secret changes.
  [[nodiscard]] std::string_view View() const { return {mBytes, mSize}; }
  void Clear();

 private:
  char* mBytes = nullptr;
  std::size_t mSize = 0;
};

// Overwrites all that the text has room for, so that no optimiser leaves it out, and empties it.
void Wipe(std::string& text);
// Overwrites memory that is not a text of ours.
void WipeBytes(void* bytes, std::size_t size);

}  // namespace kv
