#include "base/LineError.h"

#include <utility>

namespace kv {

std::string LineError::Place() const {
  return line == 0 ? std::string() : "line " + std::to_string(line);
}

std::string LineError::Text() const {
  return line == 0 ? what : Place() + ": " + what;
}

FileError LineError::In(std::string file) const {
  return {std::move(file), Place(), what};
}

}  // namespace kv
