#include "apps/kvtele/PasswordGiven.h"

#include "apps/kvtele/OperandLink.h"
#include "apps/kvtele/Prompting.h"

namespace kv::cli {

namespace {

InputBox PasswordBox() {
  InputBox box;
  box.text = "The controller's password:";
  box.secret = true;
  return box;
}

}  // namespace

std::expected<void, Failure> WithPassword(Environment& environment, const CommonOptions& common, Connection& connection,
                                          const std::function<std::expected<void, Failure>()>& write) {
  std::optional<std::string> password = common.password;
  if (!password) {
    auto written = write();
    if (written || written.error().code != kPasswordNeeded || !environment.input.IsInteractive()) return written;
    password = PromptsFor(environment, common).Ask(PasswordBox());
    if (environment.pacer.StopRequested()) return std::unexpected(InterruptedFailure("asking for the password"));
    if (!password) return written;
  }
  if (!connection.Link().GiveAccess(*password, connection.Unit())) return std::unexpected(connection.LastFailure());
  return write();
}

}  // namespace kv::cli
