#pragma once

#include <expected>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "simulator/SimulatedController.h"

namespace kv::test {

// A simulated controller that keeps a list of what it was told that may change it, and whose replies can be falsified.
class LoggedController final : public sim::Controller {
 public:
  explicit LoggedController(std::unique_ptr<sim::Controller> inner) : mInner(std::move(inner)) {}

  std::string onlyAnswered;       // a command that is answered with CCOK, and not executed
  std::vector<std::string> told;  // "CCB"; a block message as "69", one that carries a part as "65 TOPIC.SEQUENCE"
  std::function<void(const std::string& told)> onTold;
  // When it has executed one; both may change the reply.
  std::function<void(const sim::BlockRequest&, sim::BlockReply&)> onBlock;
  std::function<void(std::string_view text, sim::TextReply&)> onText;

  void Advance(Instant now) override { mInner->Advance(now); }
  sim::TextReply ExecuteText(std::string_view text, sim::ConnectionAccess& connection) override {
    sim::TextReply reply;
    if (text == onlyAnswered) {
      reply.text = "CCOK";
    } else {
      reply = mInner->ExecuteText(text, connection);
    }
    if (!reply.changesNothing) Note(std::string(text));
    if (onText) onText(text, reply);
    return reply;
  }
  sim::BlockReply ExecuteBlock(const sim::BlockRequest& request, sim::ConnectionAccess& connection) override {
    sim::BlockReply reply = mInner->ExecuteBlock(request, connection);
    const bool isPart = request.opCode == 65;
    if (isPart || request.opCode == 2 || (request.opCode >= 66 && request.opCode <= 69)) {
      const std::string place = std::to_string(request.param4) + "." + std::to_string(request.param3);
      Note(std::to_string(request.opCode) + (isPart ? " " + place : ""));
    }
    if (onBlock) onBlock(request, reply);
    return reply;
  }
  void Restart() override { mInner->Restart(); }
  bool UnderstandsBlocks() const override { return mInner->UnderstandsBlocks(); }
  std::uint8_t Unit() const override { return mInner->Unit(); }
  void SetLying(bool lying) override { mInner->SetLying(lying); }
  std::expected<void, std::string> SaveState() override { return mInner->SaveState(); }

  // Past every line, and not noted.
  std::string Tell(std::string_view text) const {
    sim::ConnectionAccess own{true};
    return mInner->ExecuteText(text, own).text;
  }
  [[nodiscard]] char State() const { return Tell("IN000000000000")[14]; }
  [[nodiscard]] std::string Project() const {
    const std::string reply = Tell("IN000000000000");
    std::string name;
    for (std::size_t i = 15; i + 1 < reply.size(); i += 2) {
      name += static_cast<char>(std::stoi(reply.substr(i, 2), nullptr, 16));
    }
    return name;
  }
  // "K220-22-R1|10|4.60|19|R".
  [[nodiscard]] std::string Truth() const { return Tell("ID").substr(2) + "|" + State(); }

 private:
  void Note(const std::string& message) {
    told.push_back(message);
    if (onTold) onTold(message);
  }

  std::unique_ptr<sim::Controller> mInner;
};

// "65" of "65 3.17", "WD" of a line of memory, "LN" of a line of a project, "OSP0" of a block of an O/S.
inline std::string CommandOf(const std::string& told) {
  const bool isLong = told.size() > 100;
  if (told.starts_with("W") || told.starts_with("L") || (isLong && told.starts_with("FW"))) return told.substr(0, 2);
  return isLong ? told.substr(0, 4) : told.substr(0, told.find(' '));
}

}  // namespace kv::test
