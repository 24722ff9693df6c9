#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

// Replays a corpus without a fuzzer: every file of the folder that is the one argument, and every file cut short at
// each length, because parsers break first where something is missing. A folder without files is an error: it would
// test nothing.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

constexpr std::size_t kLongestFileToCut = 4096;  // cutting costs the square of the length

void Run(const std::string& input) {
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
}

void Replay(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  const std::string input(std::istreambuf_iterator<char>(stream), {});
  Run(input);
  if (input.size() > kLongestFileToCut) return;
  for (std::size_t length = 0; length < input.size(); ++length) Run(input.substr(0, length));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
    return 2;
  }
  int files = 0;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(argv[1], error)) {
    if (!entry.is_regular_file()) continue;
    std::printf("%s\n", entry.path().filename().string().c_str());
    std::fflush(stdout);  // the last name printed is the file that crashed
    Replay(entry.path());
    ++files;
  }
  if (files == 0) {
    std::fprintf(stderr, "%s: no files to replay\n", argv[1]);
    return 1;
  }
  std::printf("%d files replayed\n", files);
  return 0;
}
