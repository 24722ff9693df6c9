#pragma once

#include <gtest/gtest.h>

#include "desktop/ScriptedPrompts.h"

namespace kv {

// Scripted prompts whose surprises fail the running test and name the box.
class TestPrompts : public ScriptedPrompts {
 public:
  TestPrompts() : ScriptedPrompts([](const std::string& what) { ADD_FAILURE() << what; }) {}
};

}  // namespace kv
