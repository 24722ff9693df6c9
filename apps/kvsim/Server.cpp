#include "apps/kvsim/Server.h"

#include <algorithm>
#include <utility>

#ifdef _WIN32
#include <winsock2.h>
#else
#include <poll.h>
#endif

namespace kvsim {
namespace {

#ifdef _WIN32
using PollEntry = WSAPOLLFD;
int PollAll(std::vector<PollEntry>& entries, int milliseconds) {
  return WSAPoll(entries.data(), static_cast<ULONG>(entries.size()), milliseconds);
}
#else
using PollEntry = pollfd;
int PollAll(std::vector<PollEntry>& entries, int milliseconds) {
  return ::poll(entries.data(), entries.size(), milliseconds);
}
#endif

// A signal ends a wait, except one that comes in the moment before it: that one is noticed after this long.
constexpr int kLongestWait = 250;  // milliseconds

// For how long one client may have the server's ear before others are looked for.
constexpr kv::Duration kLookInterval = std::chrono::milliseconds(10);

}  // namespace

struct Server::Client {
  std::unique_ptr<Stream> stream;
  std::unique_ptr<kv::InProcessLine> line;
  std::string outgoing;      // taken from the line, not yet by the client
  bool isConnected = false;  // the line is
  bool isGone = false;       // to be forgotten
};

struct Server::WaitSet {
  std::vector<PollEntry> entries;  // the clients in their order, then the endpoint

  void Add(Handle handle, bool writes) {
    PollEntry entry{};
    entry.fd = handle;
    entry.events = static_cast<short>(writes ? POLLIN | POLLOUT : POLLIN);
    entries.push_back(entry);
  }
};

Server::Server(std::unique_ptr<Endpoint> endpoint, LineMaker makeLine, kv::Pacer& pacer,
               std::function<void()> onClientLeft)
    : mEndpoint(std::move(endpoint)),
      mMakeLine(std::move(makeLine)),
      mPacer(pacer),
      mOnClientLeft(std::move(onClientLeft)),
      mWaits(std::make_unique<WaitSet>()) {}

Server::~Server() = default;

void Server::Run() {
  Admit(mPacer.Now());
  while (!mPacer.StopRequested()) {
    if (IsOnlyOneTalking()) {
      ServeOnlyOne();
      continue;
    }
    const int ready = Wait();
    const auto now = mPacer.Now();
    mLastLook = now;
    mIsTalking = false;
    for (std::size_t i = 0; i < mClients.size(); ++i) {
      Serve(*mClients[i], ready > 0 && (mWaits->entries[i].revents & ~POLLOUT) != 0, now);
    }
    Forget(now);
    Admit(now);
  }
}

bool Server::IsOnlyOneTalking() const {
  if (!mIsTalking || mClients.size() != 1) return false;
  const Client& client = *mClients.front();
  return client.stream->CanWaitInside() && client.outgoing.empty() && !client.line->NextEvent();
}

void Server::ServeOnlyOne() {
  Client& client = *mClients.front();
  mArrived.clear();
  const auto result = client.stream->ReadWaiting(mArrived);
  const auto now = mPacer.Now();
  mIsTalking = false;
  TakeIn(client, result, now);
  SendBack(client, now);
  if (now - mLastLook >= kLookInterval) mIsTalking = false;
  Forget(now);
}

int Server::Wait() {
  auto& entries = mWaits->entries;
  entries.clear();
  for (const auto& client : mClients) mWaits->Add(client->stream->WaitHandle(), !client->outgoing.empty());
  if (const auto endpoint = mEndpoint->WaitHandle()) mWaits->Add(*endpoint, false);
  return PollAll(entries, WaitLimit());
}

int Server::WaitLimit() const {
  std::optional<kv::Instant> next = mEndpoint->NextEvent();
  for (const auto& client : mClients) {
    if (!client->outgoing.empty()) continue;  // first that has to go
    const auto event = client->line->NextEvent();
    if (event && (!next || *event < *next)) next = event;
  }
  if (!next) return kLongestWait;
  const auto span = std::chrono::ceil<std::chrono::milliseconds>(*next - mPacer.Now()).count();
  return static_cast<int>(std::clamp<std::int64_t>(span, 0, kLongestWait));
}

void Server::Admit(kv::Instant now) {
  const auto endpoint = mEndpoint->WaitHandle();
  const auto& entries = mWaits->entries;
  if (endpoint && !entries.empty() && entries.back().fd == *endpoint && entries.back().revents == 0) return;
  while (auto stream = mEndpoint->Admit(now)) {
    auto client = std::make_unique<Client>();
    client->stream = std::move(stream);
    client->line = mMakeLine();
    if (client->stream->OutlivesClients()) {  // its clients show with their first byte
      mClients.push_back(std::move(client));
    } else if (client->line->Connect(now)) {
      client->isConnected = true;
      mClients.push_back(std::move(client));
    } else {
      client->stream->Cut();
      mEndpoint->Dismissed(now);
    }
  }
}

void Server::Serve(Client& client, bool isReadable, kv::Instant now) {
  client.line->SetBaud(client.stream->Baud());
  if (isReadable) {
    mArrived.clear();
    TakeIn(client, client.stream->Read(mArrived), now);
  }
  SendBack(client, now);
}

// What the controller has to say, and the end of the connection when the controller has cut it.
void Server::SendBack(Client& client, kv::Instant now) {
  if (!client.isGone) SendOut(client, now);
  if (!client.isGone && client.isConnected && !client.line->IsConnected() && client.outgoing.empty()) {
    client.stream->Cut();
    LetGo(client, now);
  }
}

void Server::TakeIn(Client& client, Stream::Result result, kv::Instant now) {
  if (!mArrived.empty()) {
    mIsTalking = true;
    if (!client.isConnected) client.isConnected = client.line->Connect(now);
    client.line->Write(mArrived, now);
  }
  if (result == Stream::Result::Ended) LetGo(client, now);
}

void Server::SendOut(Client& client, kv::Instant now) {
  if (client.outgoing.empty()) client.outgoing = client.line->Read(now);
  if (client.outgoing.empty()) return;
  std::string_view rest = client.outgoing;
  const auto result = client.stream->Write(rest);
  client.outgoing.erase(0, client.outgoing.size() - rest.size());
  if (result == Stream::Result::Ended) LetGo(client, now);
}

void Server::LetGo(Client& client, kv::Instant now) {
  client.line->Disconnect(now);
  client.isConnected = false;
  client.outgoing.clear();
  client.isGone = !client.stream->OutlivesClients();
  mOnClientLeft();
}

void Server::Forget(kv::Instant now) {
  const auto gone = [](const std::unique_ptr<Client>& client) { return client->isGone; };
  const auto count = std::erase_if(mClients, gone);
  if (count > 0) mEndpoint->Dismissed(now);
}

}  // namespace kvsim
