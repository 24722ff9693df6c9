#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "apps/kvsim/Endpoint.h"
#include "base/InProcessLine.h"
#include "desktop/Pacer.h"

namespace kvsim {

// Carries bytes between clients and the controller's lines until the pacer has a stop request. One thread: everything
// that has arrived is handed on, and what the controller has to say goes back at once, with one call to the system for
// each of waiting, reading and writing; waiting and reading are one while a single client talks without a pause.
class Server {
 public:
  using LineMaker = std::function<std::unique_ptr<kv::InProcessLine>()>;

  // `onClientLeft` is called after each client that has left. `pacer` must outlive the server.
  Server(std::unique_ptr<Endpoint> endpoint, LineMaker makeLine, kv::Pacer& pacer, std::function<void()> onClientLeft);
  ~Server();

  void Run();

 private:
  struct Client;
  struct WaitSet;

  void Admit(kv::Instant now);
  void Serve(Client& client, bool isReadable, kv::Instant now);
  void ServeOnlyOne();
  [[nodiscard]] bool IsOnlyOneTalking() const;
  void TakeIn(Client& client, Stream::Result result, kv::Instant now);
  void SendBack(Client& client, kv::Instant now);
  void SendOut(Client& client, kv::Instant now);
  void LetGo(Client& client, kv::Instant now);
  void Forget(kv::Instant now);
  [[nodiscard]] int Wait();
  [[nodiscard]] int WaitLimit() const;

  std::unique_ptr<Endpoint> mEndpoint;
  LineMaker mMakeLine;
  kv::Pacer& mPacer;
  std::function<void()> mOnClientLeft;
  std::vector<std::unique_ptr<Client>> mClients;
  std::unique_ptr<WaitSet> mWaits;
  std::string mArrived;
  bool mIsTalking = false;  // the last wait brought bytes
  kv::Instant mLastLook{};  // when all were looked at
};

}  // namespace kvsim
