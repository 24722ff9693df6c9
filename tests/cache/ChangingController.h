#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "base/Crc32.h"
#include "base/LittleEndian.h"
#include "simulator/Controller.h"

namespace kv::cache {

// A simulated controller whose fonts and images are the test's own and may change at any request.
class ChangingController final : public sim::Controller {
 public:
  struct Resource {
    std::uint16_t id;
    std::string name;
    std::string bytes;
    std::uint32_t tooLong = 0;  // by so much its directory tells too large a length
  };

  explicit ChangingController(std::unique_ptr<sim::Controller> inner) : mInner(std::move(inner)) {}

  using Parts = std::map<int, std::vector<Resource>>;
  Parts parts{{1, {{1, "Sans", "sans"}, {9, "Serif", std::string(5000, 's')}}},
              {2, {{3, "pump", std::string(9000, 'p')}, {4, "", "valve"}, {5, "none", ""}}}};
  std::vector<int> requests;  // operations of block messages
  bool isSystemMode = false;
  std::function<void(int number)> onRequest = [](int) {};  // before the block message of this number

  [[nodiscard]] std::ptrdiff_t Count(int operation) const { return std::ranges::count(requests, operation); }

  sim::BlockReply ExecuteBlock(const sim::BlockRequest& request, sim::ConnectionAccess& connection) override {
    requests.push_back(request.opCode);
    onRequest(static_cast<int>(requests.size()));
    if (request.opCode == 258)
      return {10, CountOf(request.param3) + Directory(request.param3).substr(request.param1 * 42)};
    if (request.opCode == 259) return Piece(request);
    if (request.opCode == 260) isSystemMode = request.param1 == 1;
    sim::BlockReply reply = mInner->ExecuteBlock(request, connection);
    if (request.opCode == 270) {
      PutLittleEndian(reply.payload.data() + 8, Crc32(Directory(1)), 4);
      PutLittleEndian(reply.payload.data() + 12, Crc32(Directory(2)), 4);
    }
    return reply;
  }
  void Advance(Instant now) override { mInner->Advance(now); }
  sim::TextReply ExecuteText(std::string_view text, sim::ConnectionAccess& connection) override {
    return mInner->ExecuteText(text, connection);
  }
  void Restart() override { mInner->Restart(); }
  bool UnderstandsBlocks() const override { return mInner->UnderstandsBlocks(); }
  std::uint8_t Unit() const override { return mInner->Unit(); }
  void SetLying(bool lying) override { mInner->SetLying(lying); }
  std::expected<void, std::string> SaveState() override { return mInner->SaveState(); }

 private:
  std::string CountOf(int kind) {
    std::string count;
    AppendLittleEndian(count, static_cast<std::uint32_t>(parts[kind].size()), 2);
    return count;
  }
  std::string Directory(int kind) {
    std::string told;
    for (const Resource& one : parts[kind]) {
      AppendLittleEndian(told, one.id);
      AppendLittleEndian(told, static_cast<std::uint32_t>(one.bytes.size()) + one.tooLong);
      AppendLittleEndian(told, Crc32(one.bytes));
      told += one.name + std::string(32 - one.name.size(), '\0');
    }
    return told;
  }
  sim::BlockReply Piece(const sim::BlockRequest& request) {
    for (const Resource& one : parts[request.param3]) {
      const std::string bytes = one.bytes + std::string(one.tooLong, '+');
      if (one.id == request.param4 && request.param1 + request.dataLength <= bytes.size()) {
        return {10, bytes.substr(request.param1, request.dataLength)};
      }
    }
    return {128 + 0x0B, ""};
  }

  std::unique_ptr<sim::Controller> mInner;
};

}  // namespace kv::cache
