#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "apps/kvtele/Failure.h"
#include "base/ProgramPaths.h"

namespace kv::cli {

// The settings of a session, copied to a folder of its own below the machine's folder for temporary files. What is done
// to the copy leaves the session as it is; the copy goes with this object.
class SessionCopy {
 public:
  // A session that is not there, or has no settings, gives an empty one.
  [[nodiscard]] static OrFailure<std::unique_ptr<SessionCopy>> Make(const ProgramPaths& paths,
                                                                    const std::string& session);
  ~SessionCopy();
  SessionCopy(const SessionCopy&) = delete;
  SessionCopy& operator=(const SessionCopy&) = delete;

  // Of the program folder in which the session lies as it did in the other.
  [[nodiscard]] const ProgramPaths& Paths() const { return mPaths; }

 private:
  explicit SessionCopy(const std::filesystem::path& home) : mPaths(home) {}

  ProgramPaths mPaths;
};

}  // namespace kv::cli
