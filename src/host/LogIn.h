#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "host/shared/SharedState.h"

namespace kv {

// Who works with the tools. One user is logged in, or nobody; whoever comes begins without the passwords and the access
// of the one before.

// A user's name has so many characters at most, as fields of windows count them (those beyond U+FFFF are two), however
// many bytes they take.
inline constexpr std::size_t kLongestUserName = 255;

// Why a name, UTF-8, cannot be logged in, a clause; empty when it can. It goes into lines of texts and records.
[[nodiscard]] std::string UserNameFault(std::string_view name);

// The name that was entered last in this session, for the next log-in; "" at first.
[[nodiscard]] std::string LastUserName(const SharedState& shared);

// Both texts are UTF-8 and taken as they are; an empty name is one, too. The name is kept for the next log-in, the
// password nowhere but in memory. A name that the session's settings cannot hold is logged in all the same, and the
// host's status line says so.
void LogIn(SharedState& shared, const std::string& name, Secret password);

// Forgets the user, his password, and the access that it has opened.
void LogOff(SharedState& shared);

}  // namespace kv
