#pragma once

#include <optional>
#include <span>
#include <string>

#include "clone/DumpWindow.h"
#include "desktop/Prompts.h"

namespace kv::test {

// Surroundings of the cloner's engine for tests that are about something else.
struct SilentCloner : DumpWindow {
  SegmentBoxes boxes;

  void FillSegments(std::span<const CloneSegment>) override {}
  void Event_SegmentIndex(int) override {}
  void Event_ProgressBarInit(std::int64_t, std::int64_t) override {}
  void Event_ProgressBarValue(std::int64_t) override {}
  void Event_AddWriteCommand(std::string_view) override {}
  void Event_Refresh() override {}
  [[nodiscard]] SegmentBoxes CheckedSegments() const override { return boxes; }
};

// Says yes to everything and knows the password.
struct KnowingPrompts : Prompts {
  std::string password = "1";

  PromptAnswer Show(const MessageBox& box) override { return Consent(box.buttons); }
  std::optional<std::string> Ask(const InputBox&) override { return password; }
  std::optional<std::string> OpenFile(const FileDialog&) override { return {}; }
  std::optional<std::string> SaveFile(const FileDialog&) override { return {}; }
};

}  // namespace kv::test
