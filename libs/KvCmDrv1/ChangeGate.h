#pragma once

#include <functional>
#include <string_view>

#include "link/ChangeObserver.h"

namespace kv {

// The one place that every request on its way out passes. One that is no read goes out only when the observer of
// changes lets it; what became of it is told to the observer, too.
//
//   shut -> open (Pass)   a request that may change something, and the observer took it
//   open -> open          the same again: a request that was refused for want of the password goes out anew
//   open -> shut (End)
class ChangeGate {
 public:
  using Describe = std::function<ChangeRequest(std::string_view bytes)>;

  // `describe` says for a request whom it goes to. Null: nobody is told, and everything passes.
  void SetObserver(ChangeObserver* observer, Describe describe);
  [[nodiscard]] ChangeObserver* Observer() const { return mObserver; }

  // Whether the bytes may go out; if not, Refusal() says why.
  [[nodiscard]] bool Pass(std::string_view bytes);
  [[nodiscard]] bool IsOpen() const { return mIsOpen; }
  void End(const ChangeEnd& end);
  [[nodiscard]] const LinkError& Refusal() const { return mRefusal; }

 private:
  ChangeObserver* mObserver = nullptr;
  Describe mDescribe;
  LinkError mRefusal;
  bool mIsOpen = false;
};

// Whether bytes on their way to a controller may change something there. What is no whole request that is known as a
// read counts as one that may.
[[nodiscard]] bool MayChange(std::string_view bytes);

// The unit that they are for; 0 where they do not tell.
[[nodiscard]] std::uint8_t UnitOfRequest(std::string_view bytes);

}  // namespace kv
