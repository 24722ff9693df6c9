// Writes the completions of shells and the manual page of kvtele into a folder: kvtele_texts FOLDER.

#include <filesystem>
#include <fstream>
#include <iostream>
#include <utility>

#include "apps/kvtele/Completions.h"
#include "apps/kvtele/ManPage.h"
#include "base/ProgramVersion.h"

int main(int argc, char** argv) {
  using namespace kv;
  if (argc != 2) {
    std::cerr << "usage: kvtele_texts FOLDER\n";
    return 2;
  }
  const cli::ProgramFacts facts = cli::DescribeProgram();
  const std::pair<const char*, std::string> files[] = {{"kvtele.bash", cli::BashCompletion(facts)},
                                                       {"_kvtele", cli::ZshCompletion(facts)},
                                                       {"kvtele.fish", cli::FishCompletion(facts)},
                                                       {"kvtele.1", cli::ManPage(facts, ProgramVersion())}};
  for (const auto& [name, text] : files) {
    std::ofstream file(std::filesystem::path(argv[1]) / name, std::ios::binary);
    file << text << std::flush;
    if (file) continue;
    std::cerr << name << " cannot be written\n";
    return 1;
  }
  return 0;
}
