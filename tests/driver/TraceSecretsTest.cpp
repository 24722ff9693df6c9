#include <gtest/gtest.h>

#include <functional>

#include "Fixture.h"
#include "KvCmDrv1/wire/AsciiCodec.h"
#include "KvCmDrv1/wire/BlockCodec.h"
#include "KvCmDrv1/wire/Requests.h"
#include "base/Crc32.h"
#include "base/Hex.h"
#include "base/PathText.h"
#include "tests/support/TemporaryFolder.h"

namespace kv {
namespace {

using namespace std::chrono_literals;
using Add = std::function<void(Trace::Direction direction, std::string_view bytes)>;

std::string Framed(std::string_view text) {
  std::string frame;
  EXPECT_EQ(EncodeFrame(1, text, frame), TextFault::None);
  return frame;
}

std::string Sealed(const std::string& request, const std::string& reply) {
  std::string text = reply + "00A7";
  AppendHex(text, Crc32(request + "\r01" + text), 8);
  return Framed(text);
}

// A request that carries the password, and the replies that a controller gives to it.
struct Asked {
  std::string request;
  std::vector<std::string> replies;
};

std::vector<Asked> AllWith(const std::string& password) {
  RequestWriter writer;
  const std::string access(writer.GiveAccess(1, 0x1234, password));
  const std::string table = "GI" + password + std::string(8 - password.size(), ' ');
  std::vector<Asked> all = {
      {Framed(access), {Sealed(access, "AC1234OK"), Sealed(access, "ACERROR08")}},
      {Framed(table), {Sealed(table, "GI0"), Sealed(table, "GI10001OPF0000000000001000"), Sealed(table, "GIERROR09")}}};
  for (const std::uint16_t operation : {std::uint16_t{2}, std::uint16_t{66}}) {
    std::string request;
    const std::string payload = password + std::string(8 - password.size(), ' ');
    EncodeBlockRequest({.unit = 1, .status = 0, .sequence = 7, .fields = {.opCode = operation}, .payload = payload},
                       request);
    all.push_back({request, {}});
  }
  return all;
}

std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

// Everything that a line can make of a request and its replies.
void PlayAll(const Asked& asked, const Add& add) {
  using enum Trace::Direction;
  const std::string& request = asked.request;
  add(Sent, request);
  for (const std::string& reply : asked.replies) {
    add(Received, reply);
    add(Dropped, reply);
    add(Dropped, reply.substr(5));
  }
  for (const Trace::Direction arrived : {Received, Dropped}) add(arrived, request);
  add(Dropped, Lower(request));
  for (std::size_t at = 1; at < request.size(); ++at) {           // split, and cut at both ends
    for (const Trace::Direction arrived : {Received, Dropped}) {  // raw traffic counts as received
      add(arrived, request.substr(0, at));
      add(arrived, request.substr(at));
    }
  }
  for (std::size_t at = 0; at < request.size(); ++at) {
    for (const int flip : {0x01, 0x02, 0x20, 0x80}) {
      std::string damaged = request;
      damaged[at] = static_cast<char>(damaged[at] ^ flip);
      add(Dropped, damaged);
    }
  }
  if (request.starts_with('/')) {  // other letters, but the sum still fits: raw traffic takes it for a frame
    std::string damaged = request;
    ++damaged[3];
    --damaged[4];
    add(Received, damaged);
  }
}

std::string TextAfter(const Asked& asked) {
  VirtualPacer pacer;
  Trace trace;
  const TemporaryFolder folder;
  EXPECT_TRUE(trace.WriteTo(Utf8FromPath(folder.Path() / "trace.txt")));
  PlayAll(asked, [&](Trace::Direction direction, std::string_view bytes) {
    trace.Add(pacer.Now(), direction, bytes);
    pacer.Sleep(1ms);
  });
  for (const Duration pause : {1s, 58s, 1s}) {
    pacer.Sleep(pause);
    trace.Add(pacer.Now(), Trace::Direction::Dropped, "noise");
  }
  const std::string kept = trace.Text();
  const std::string text = TemporaryFolder::Content(folder.Path() / "trace.txt");
  EXPECT_EQ(text.substr(text.size() - kept.size()), kept);
  return text;
}

// What two passwords leave behind is the same to the byte, so that nobody can tell them apart from it.
TEST(TraceSecrets, NothingInTheTraceDependsOnThePassword) {
  const std::vector<Asked> one = AllWith("1234");
  const std::vector<Asked> other = AllWith("Zz/9@ab");
  for (std::size_t i = 0; i < one.size(); ++i) {
    EXPECT_EQ(TextAfter(one[i]), TextAfter(other[i]));
    test::ExpectAsRecorded([&] { return TextAfter(one[i]); });
  }
  EXPECT_NE(TextAfter(one[0]).find("<-- /01AC1234OK"), std::string::npos) << "and a good reply is kept";
}

TEST(TraceSecrets, AnEchoingLineTellsNoPassword) {
  constexpr auto password = "QxZvWkJy";  // no digits, which the times are made of, too
  const std::vector<std::string> lines[] = {
      {"echo"}, {"echo", "damage:rate=0.02"}, {"echo", "dribble:ms=3"}, {"echo", "double"}};
  for (const std::vector<std::string>& rules : lines) {
    Fixture fixture("K220", SerialSettings(), password);
    fixture.plant.UseFaults(rules);
    (void)fixture.channel.GiveAccess(password, 1);
    (void)fixture.channel.SendCommand(std::string("GI") + password);
    const std::string text = fixture.trace->Text();
    EXPECT_NE(text.find("<xx"), std::string::npos) << "it does echo";
    for (const char* part : {"QxZv", "WkJy", "51785A76", "576B4A79"}) EXPECT_EQ(text.find(part), std::string::npos);
    fixture.plant.isSilent = true;
    EXPECT_FALSE(fixture.channel.SendCommand(std::string("GI") + password));
    EXPECT_TRUE(fixture.Error().doing.starts_with("sending GI to")) << fixture.Error().Text();
  }
}

}  // namespace
}  // namespace kv
