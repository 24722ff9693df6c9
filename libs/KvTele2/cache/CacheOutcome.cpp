#include "KvTele2/cache/CacheOutcome.h"

namespace kv::cache {

CacheOutcome CacheOutcome::Failed(CacheCause cause, std::string text, std::string reason) {
  return {.end = CacheEnd::Failed,
          .cause = cause,
          .text = std::move(text),
          .reason = std::move(reason),
          .kept = {},
          .link = {}};
}

CacheOutcome CacheOutcome::OfLink(const LinkError& error) {
  CacheOutcome outcome = Failed(CacheCause::Link, {}, error.Text());
  outcome.link = error;
  if (error.code == LinkErrorCode::Stopped) return OfStop();
  if (error.code == LinkErrorCode::OtherController) outcome.cause = CacheCause::OtherController;
  return outcome;
}

CacheOutcome CacheOutcome::OfStop() {
  return {.end = CacheEnd::Stopped, .cause = CacheCause::Stop, .text = {}, .reason = {}, .kept = {}, .link = {}};
}

CacheOutcome CacheOutcome::OfFile(const FileError& error) {
  return Failed(CacheCause::File, {}, error.Text() + ".");
}

std::string WaitText(const std::string& name) {
  return "Please wait while " + name + " is being created";
}

std::string CreatedText(const std::string& name) {
  return name + " was successfully created from the PLC";
}

std::string ErrorsText(const std::string& name) {
  return "Errors occurred during the creation of the " + name + " file";
}

std::string StoppedText(const std::string& name) {
  return "The creation of the " + name + " file was stopped.";
}

}  // namespace kv::cache
