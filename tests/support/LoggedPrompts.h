#pragma once

#include <gtest/gtest.h>

#include <string>

#include "desktop/ScriptedPrompts.h"
#include "tests/support/FakeHost.h"

namespace kv::test {

// Scripted prompts that also write what they ask into the log, so that its place among the other calls is seen. A
// message box reads "Box (!) Title: text"; a surprise fails the test.
class LoggedPrompts : public ScriptedPrompts {
 public:
  explicit LoggedPrompts(CallLog& log)
      : ScriptedPrompts([](const std::string& what) { ADD_FAILURE() << what; }), mLog(log) {}

  PromptAnswer Show(const MessageBox& box) override {
    mLog.push_back(std::string("Box (") + Sign(box.icon) + ") " + box.title + ": " + box.text);
    return ScriptedPrompts::Show(box);
  }
  std::optional<std::string> OpenFile(const FileDialog& dialog) override {
    mLog.push_back("OpenFile " + dialog.filter);
    return ScriptedPrompts::OpenFile(dialog);
  }

 private:
  static char Sign(PromptIcon icon) { return " i!?x"[static_cast<std::size_t>(icon)]; }  // in the order of PromptIcon

  CallLog& mLog;
};

}  // namespace kv::test
