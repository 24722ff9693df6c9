#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>
#include <utility>

#include "help/HelpBook.h"

namespace kv::test {

inline const std::filesystem::path kHelpFolder = KV_HELP_FOLDER;

// The help that the build has made: the compiled file, or its pages where there was no compiler.
inline HelpBook BuiltHelp() {
  auto book = HelpBook::Open(kHelpFolder / "KvTeleExe.chm", kHelpFolder / "pages");
  if (!book) throw std::runtime_error(book.error());
  return std::move(*book);
}

}  // namespace kv::test
