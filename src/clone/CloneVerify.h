#pragma once

#include <expected>
#include <filesystem>
#include <string>
#include <vector>

#include "clone/CloneCompare.h"
#include "clone/CloneOutcome.h"
#include "link/Channel.h"

namespace kv {

// Reads every segment of the file back from the controller and compares. Bytes that the file leaves out were erased and
// must be 255. It only reads: no password is asked for, and a running program goes on (what it changes meanwhile shows
// as a difference). A damaged file is refused before anything is sent. `onProgress` gets the segment's code and
// counts the bytes of all segments that are compared: those with one of `codes`, or all when it is empty.
[[nodiscard]] std::expected<CloneComparison, CloneOutcome> VerifyClone(Channel& link, const std::filesystem::path& file,
                                                                       const CloneWork& work = {},
                                                                       const std::vector<std::string>& codes = {});

}  // namespace kv
