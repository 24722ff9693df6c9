#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/kvtele/CommandBench.h"

namespace kv::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

struct BadInput {
  std::vector<std::string> arguments;
  int exit;
  const char* message;  // the part that helps
  const char* os = "";
  bool boot = false;
};

TEST(BadInput, IsRefusedBeforeAnythingIsSent) {
  const BadInput rows[] = {
      {{}, 2, "No verb is given"},
      {{"erase"}, 2, "There is no verb \"erase\""},
      {{"read"}, 2, "TYPE is required"},
      {{"read", "MI", "0", "1", "2"}, 2, "not expected"},
      {{"identify", "--bogus"}, 2, "--bogus"},
      {{"identify", "--unit", "256"}, 2, "no number from 0 to 255"},
      {{"identify", "--timeout", "49"}, 2, "no number from 50 to 300000"},
      {{"identify", "--retries", "10"}, 2, "no number from 0 to 9"},
      {{"identify", "--model", "K"}, 2, "there is no model \"K\"; the models are K220-22-R1, "},
      {{"identify", "--password", "123456789"}, 2, "1 to 8 plain characters"},
      {{"identify", "--link", "sim:K"}, 2, "There is no simulated controller \"K\""},
      {{"identify", "--link", "carrier-pigeon"}, 2, "sim:MODEL, tcp:HOST:PORT"},
      {{"identify", "--session", "Nowhere"}, 2, "there is no session \"Nowhere\""},
      {{"identify", "--session", "../Default"}, 2, "A session name cannot contain"},
      {{"identify", "--trace", "/nowhere/at/all.txt"}, 6, "Opening the trace file"},

      {{"read", "QI", "0"}, 2, "There is no operand type \"QI\""},
      {{"read", "MI", "-1"}, 2, "\"-1\" is no operand address"},
      {{"read", "MI", "5", "4"}, 2, "runs backwards"},
      {{"read", "MI", "0", "--size", "16", "--format", "binary"}, 2, "--size 16 --format ascii|hex|decimal|unsigned"},
      {{"read", "MI", "0", "--size", "16"}, 2, "--size and --format belong together"},
      {{"read", "MI", "0", "--link", "sim:K220-22-R1", "--size", "64", "--format", "hex"}, 2, "is not offered"},
      {{"read", "MI", "2048", "--link", "sim:K220-22-R1"}, 4, "use addresses from 0 to 2047"},
      {{"read", "MF", "0", "--link", "sim:Q50"}, 4, "Q50 has no MF operands"},

      {{"write", "MI", "0"}, 2, "VALUE is required"},
      {{"write", "MI", "0", "1", "32768"}, 2, "value 2 is \"32768\""},
      {{"write", "TIMER-PRESET", "0", "15", "--link", "sim:Q50"}, 2, "a multiple of 10"},
      {{"write", "SI", "0", "1"}, 4, "can only be read"},
      {{"write", "MI", "255", "1", "2", "--link", "sim:Q50"}, 4, "there is no MI 256 on Q50"},
  };
  CommandBench bench;
  for (const BadInput& row : rows) {
    const Result result = bench.Run(row.arguments);
    SCOPED_TRACE(::testing::PrintToString(row.arguments));
    EXPECT_EQ(result.exit, row.exit);
    EXPECT_THAT(result.err, HasSubstr(row.message));
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.trace, "");
  }
}

// What only the controller can tell, or the line to it. No operand is asked for or written.
TEST(BadInput, IsRefusedAsSoonAsTheControllerIsKnown) {
  const BadInput rows[] = {
      {{"identify", "--link", "tcp:127.0.0.1:1"}, 3, "refused the connection"},
      {{"identify", "--link", "serial:/nowhere/ttyS99"}, 3, "/nowhere/ttyS99"},
      {{"read", "MI", "0", "--link", "sim:Q50", "--retries", "0", "--unit", "7"}, 3, "no reply after 1 try"},
      {{"read", "MI", "0", "--link", "sim:Q51", "--model", "K220-22-R1"}, 4, "not a K220-22-R1"},
      {{"read", "MI", "1024", "--link", "sim:K220-22-R1"}, 4, "use addresses from 0 to 1023", "2.90"},
      {{"write", "XI", "0", "1", "--link", "sim:K220-22-R1"}, 4, "not supported by the O/S", "2.90"},
      {{"read", "MI", "0", "--link", "sim:K220-22-R1"}, 4, "running its boot loader", "", true},
  };
  for (const BadInput& row : rows) {
    SCOPED_TRACE(::testing::PrintToString(row.arguments));
    CommandBench bench;
    bench.options.osVersion = row.os;
    bench.options.boot = row.boot;
    const Result result = bench.Run(row.arguments);
    EXPECT_EQ(result.exit, row.exit);
    EXPECT_THAT(result.err, HasSubstr(row.message));
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.trace, Not(HasSubstr(": read ")));
    EXPECT_THAT(result.trace, Not(HasSubstr(": write ")));
  }
}

TEST(BadInput, IsOneDocumentWithJson) {
  CommandBench bench;
  for (const std::vector<std::string>& arguments : std::initializer_list<std::vector<std::string>>{
           {"--json", "erase"}, {"read", "QI", "0", "--json"}, {"identify", "--json", "--unit", "900"}}) {
    const Result result = bench.Run(arguments);
    EXPECT_EQ(result.exit, 2);
    EXPECT_THAT(result.out, StartsWith("{\n  \"error\": {\n    \"code\": \"usage\",\n    \"exit\": 2,\n"));
    EXPECT_THAT(result.err, Not(HasSubstr("{")));
  }
  EXPECT_EQ(
      bench.On("Q50", {"write", "MI", "0", "x", "--json"}).out,
      "{\n  \"error\": {\n    \"code\": \"outOfRange\",\n    \"exit\": 2,\n    \"doing\": \"writing MI\",\n"
      "    \"happened\": \"The values you have entered are out of the legal range for this data type.\",\n"
      "    \"cause\": \"value 1 is \\\"x\\\"\",\n    \"cure\": \"use whole numbers from -32768 to 32767\"\n  }\n}\n");
}

}  // namespace
}  // namespace kv::test
