// The screens of all sizes of displays as kvtele draws them, over a real socket and a real pseudo terminal, beside
// pictures in tests/golden that were looked at. KV_RENEW_PICTURES=1 in the environment writes those anew; how they are
// compressed does not matter.

#include <gmock/gmock.h>
#include <png.h>

#include <cstdlib>
#include <vector>

#include "tests/support/ProgramProcess.h"
#include "tests/support/TemporaryFolder.h"

namespace kvtest {
namespace {

struct Dots {
  png_uint_32 width = 0;
  png_uint_32 height = 0;
  std::vector<png_byte> colours;  // red, green and blue of each
};

Dots ReadPng(const std::filesystem::path& file) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_file(&image, file.c_str()) == 0) return {};
  image.format = PNG_FORMAT_RGB;
  std::vector<png_byte> colours(PNG_IMAGE_SIZE(image));
  if (png_image_finish_read(&image, nullptr, colours.data(), 0, nullptr) == 0) return {};
  return {image.width, image.height, std::move(colours)};
}

struct Screen {
  const char* model;
  const char* picture;
  const char* pressed;  // first; empty: nothing
};

// Draws it into `file`.
void Draw(const Screen& screen, const std::string& link, const kv::TemporaryFolder& home,
          const std::filesystem::path& file) {
  const auto run = [&](std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--home", home.Path().string(), "--link", link, "--yes"});
    ProgramProcess kvtele(KVTELE_PROGRAM, std::move(arguments));
    EXPECT_EQ(kvtele.End(), 0) << kvtele.Complaint();
  };
  if (*screen.pressed != 0) run({"press", screen.pressed});
  run({"screen", "--png", file.string(), "--fetch"});
}

TEST(GoldenScreens, AreWhatKvteleDrawsOverSocketAndPseudoTerminal) {
  constexpr Screen kScreens[] = {{"K220-22-R1", "text-16x2", ""},
                                 {"Q51", "text-20x4", ""},
                                 {"K230", "text-20x8", ""},
                                 {"K660", "colour-480x272", "Recipe"},
                                 {"K530", "colour-640x480", "Manual"},
                                 {"K670", "colour-800x480", ""},
                                 {"K800", "colour-1024x600", "Trend"}};
  const kv::TemporaryFolder home;
  setenv("XDG_STATE_HOME", home.Path().c_str(), 1);
  const bool isRenewed = std::getenv("KV_RENEW_PICTURES") != nullptr;
  for (const Screen& screen : kScreens) {
    SCOPED_TRACE(screen.model);
    const auto golden = std::filesystem::path(KV_TEST_DATA) / "golden" / (std::string(screen.picture) + ".png");
    KvsimProcess socket({"--model", screen.model, "--tcp", "0"});
    const std::string terminal = (home.Path() / screen.picture).string();
    KvsimProcess serial({"--model", screen.model, "--pty", terminal});
    ASSERT_NE(serial.ReadyLine(), "");
    const std::string links[] = {"tcp:127.0.0.1:" + std::to_string(socket.Port()), "serial:" + terminal};
    for (const std::string& link : links) {
      const auto drawn = isRenewed ? golden : home.Path() / "drawn.png";
      Draw(screen, link, home, drawn);
      const Dots wanted = ReadPng(golden);
      const Dots found = ReadPng(drawn);
      ASSERT_FALSE(wanted.colours.empty()) << "no picture in " << golden;
      ASSERT_EQ(found.width, wanted.width);
      ASSERT_EQ(found.height, wanted.height);
      const auto dot = std::ranges::mismatch(found.colours, wanted.colours).in1 - found.colours.begin();
      ASSERT_TRUE(found.colours == wanted.colours)
          << link << ": the first other dot is " << dot / 3 % wanted.width << "," << dot / 3 / wanted.width;
    }
  }
}

}  // namespace
}  // namespace kvtest
