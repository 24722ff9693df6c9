#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/Refusal.h"

namespace sim {

// A project download by block messages: password block (66), the same again (2), topics (65), programming (69). Every
// topic is taken as it comes and counted; of what is in them only the project's name is kept, which is in the topic
// whose third parameter is 1. The project takes effect with the reset.
class AurexProject {
 public:
  void Begin(std::string_view passwordBlock);  // 66
  void Drop() { *this = AurexProject(); }
  [[nodiscard]] Result<void> Confirm(std::string_view passwordBlock);                 // 2
  [[nodiscard]] Result<void> TakeTopic(std::uint16_t param3, std::string_view data);  // 65
  [[nodiscard]] Result<std::size_t> Program();  // 69: how many bytes are programmed

  [[nodiscard]] std::uint8_t TopicCount() const { return mTopics; }  // its low 8 bits
  [[nodiscard]] bool IsProgrammed() const { return mStep == Step::Programmed; }
  [[nodiscard]] std::optional<std::string> NewName() const;  // when IsProgrammed

 private:
  enum class Step : std::uint8_t { None, Begun, Confirmed, Programmed };

  Step mStep = Step::None;
  std::string mPasswordBlock;
  std::string mName;
  std::size_t mBytes = 0;
  std::uint8_t mTopics = 0;
};

// The project's name in a topic or a command: up to the first zero byte, at most 20 bytes.
[[nodiscard]] std::string ProjectNameIn(std::string_view data);

}  // namespace sim
