#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/ModelTable.h"
#include "simulator/OsVersion.h"
#include "simulator/Refusal.h"

namespace sim {

// One chunk of an O/S transfer, as block operation 65 carries it to a boot loader.
struct OsChunk {
  std::uint32_t address = 0;
  std::uint16_t sequence = 0;  // 1 to 255 and around, from 1 again with each topic; not looked at in the header
  std::uint16_t topic = 0;     // 0 header, 1 to 15 parts of the O/S, 16 fonts
  std::string data;

  bool operator==(const OsChunk&) const = default;
};

// The replacement of an Aurex O/S by its boot loader: a header, the chunks of the topics, programming, and the new
// version after the reset. The last chunk may come twice: that is a repeat whose answer was lost, and changes nothing.
// A topic is unpacked and checked when its last chunk arrives.
class AurexOs {
 public:
  explicit AurexOs(const Model& model) : mModel(model) {}

  void Drop();
  [[nodiscard]] Result<void> Take(const OsChunk& chunk);
  [[nodiscard]] Result<std::size_t> Program();  // how many bytes are programmed

  [[nodiscard]] std::uint8_t ChunkCount() const { return mChunks; }  // its low 8 bits
  // Whether the topic of the last chunk is whole and could be unpacked.
  [[nodiscard]] bool HasWholeTopic() const { return mLast && !mTopic; }
  // What the header announced, once programmed.
  [[nodiscard]] std::optional<OsVersion> NewVersion() const;

 private:
  // A topic that is being received.
  struct Topic {
    std::uint16_t number = 0;
    std::uint32_t base = 0;
    std::uint32_t plainSize = 0;
    std::uint32_t sentSize = 0;
    std::string stream;  // the two sizes and the data, as far as they have come
  };
  struct Announced {
    OsVersion version;
    std::uint8_t topics = 0;
    std::uint32_t check = 0;  // CRC-32 of the data of all topics, unpacked
  };

  [[nodiscard]] Result<void> TakeHeader(std::string_view header);
  [[nodiscard]] Result<void> Begin(const OsChunk& chunk);     // a topic
  [[nodiscard]] Result<void> Continue(const OsChunk& chunk);  // the topic
  [[nodiscard]] Result<void> Add(std::string_view data);

  const Model& mModel;
  std::optional<Announced> mAnnounced;
  std::optional<OsChunk> mLast;
  std::optional<Topic> mTopic;
  std::uint32_t mFree = 0;  // first address behind the parts of the O/S so far
  std::uint32_t mCheck = 0;
  std::size_t mBytes = 0;
  std::uint8_t mTopics = 0;
  std::uint8_t mChunks = 0;
  bool mHasOs = false;
  bool mProgrammed = false;
};

}  // namespace sim
