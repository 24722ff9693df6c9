#include "simulator/AurexProject.h"

namespace sim {
namespace {

constexpr std::uint16_t kNameTopic = 1;
constexpr std::size_t kLongestName = 20;
constexpr std::size_t kProjectMemory = std::size_t{16} << 20;  // more than any project; a bound on what is believed

}  // namespace

void AurexProject::Begin(std::string_view passwordBlock) {
  Drop();
  mStep = Step::Begun;
  mPasswordBlock = passwordBlock;
}

Result<void> AurexProject::Confirm(std::string_view passwordBlock) {
  if (mStep == Step::None || mStep == Step::Programmed) return Refuse(Refusal::WrongState);
  if (passwordBlock != mPasswordBlock) return Refuse(Refusal::WrongPassword);
  mStep = Step::Confirmed;
  return {};
}

Result<void> AurexProject::TakeTopic(std::uint16_t param3, std::string_view data) {
  if (mStep == Step::Begun) return Refuse(Refusal::NotTogether);
  if (mStep != Step::Confirmed) return Refuse(Refusal::WrongState);
  if (data.size() > kProjectMemory - mBytes) return Refuse(Refusal::OutsideMemory);
  if (param3 == kNameTopic) mName = ProjectNameIn(data);
  mBytes += data.size();
  ++mTopics;
  return {};
}

Result<std::size_t> AurexProject::Program() {
  if (mStep == Step::Begun) return Refuse(Refusal::NotTogether);
  if (mStep != Step::Confirmed) return Refuse(Refusal::WrongState);
  mStep = Step::Programmed;
  return mBytes;
}

std::optional<std::string> AurexProject::NewName() const {
  return IsProgrammed() ? std::optional(mName) : std::nullopt;
}

std::string ProjectNameIn(std::string_view data) {
  return std::string(data.substr(0, data.find('\0')).substr(0, kLongestName));
}

}  // namespace sim
