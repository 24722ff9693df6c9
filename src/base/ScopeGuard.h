#pragma once

#include <concepts>
#include <utility>

namespace kv {

// Runs `action` when the scope ends, whichever way it ends. For what must be given back (a link, a busy state, a
// changed setting); `action` must not throw.
//
//   const ScopeGuard restore([&] { host.SetEnabled(wasEnabled); });
template <std::invocable Action>
class [[nodiscard]] ScopeGuard {
 public:
  explicit ScopeGuard(Action action) : mAction(std::move(action)) {}
  ~ScopeGuard() { Run(); }

  // A guard may be returned from a function: the duty goes with it.
  ScopeGuard(ScopeGuard&& other) noexcept
      : mAction(std::move(other.mAction)), mArmed(std::exchange(other.mArmed, false)) {}
  ScopeGuard(const ScopeGuard&) = delete;
  ScopeGuard& operator=(const ScopeGuard&) = delete;
  ScopeGuard& operator=(ScopeGuard&&) = delete;

  // Does it now, and not again at the end.
  void Run() noexcept {
    if (std::exchange(mArmed, false)) mAction();
  }

  // Gives the duty up: what was to be undone shall stay.
  void Dismiss() noexcept { mArmed = false; }

 private:
  Action mAction;
  bool mArmed = true;
};

}  // namespace kv
