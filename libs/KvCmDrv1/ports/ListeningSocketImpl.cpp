#include "KvCmDrv1/ports/ListeningSocketImpl.h"

#include <algorithm>
#include <asio.hpp>
#include <exception>
#include <utility>

#include "KvCmDrv1/ports/PortErrors.h"
#include "KvCmDrv1/ports/ReleasedSocket.h"

namespace kv {

using asio::ip::tcp;

struct ListeningSocketImpl::Listener {
  asio::io_context context;
  tcp::acceptor acceptor{context};
};

namespace {

std::error_code OpenListener(tcp::acceptor& acceptor, std::uint16_t port) {
  std::error_code code;
  acceptor.open(tcp::v4(), code);
#ifndef _WIN32
  // A port that was in use a minute ago may be used again. (On Windows the same option would let two programs share
  // it.)
  if (!code) acceptor.set_option(tcp::acceptor::reuse_address(true), code);
#endif
  if (!code) acceptor.bind(tcp::endpoint(tcp::v4(), port), code);
  if (!code) acceptor.listen(static_cast<int>(ListeningSocketImpl::kMostCallers), code);
  if (!code) acceptor.non_blocking(true, code);
  return code;
}

}  // namespace

ListeningSocketImpl::ListeningSocketImpl() = default;
ListeningSocketImpl::~ListeningSocketImpl() = default;

bool ListeningSocketImpl::Listen(std::uint16_t port) {
  mConnection.Close();
  mRequest.Close();
  if (port == mPort && mListener) {
    mState = State::Listening;
    return true;
  }
  if (port != mPort) mCallers.clear();
  mListener.reset();
  mPort = port;
  const bool isOpen = port != 0 && OpenPort();
  if (!isOpen) mCallers.clear();
  mState = isOpen ? State::Listening : State::Closed;
  return isOpen;
}

bool ListeningSocketImpl::Listen() {
  return Listen(mPort);
}

bool ListeningSocketImpl::OpenPort() {
  try {
    auto listener = std::make_unique<Listener>();
    if (OpenListener(listener->acceptor, mPort)) return false;
    mListener = std::move(listener);
  } catch (const std::exception&) {  // no descriptors left
    return false;
  }
  return true;
}

// A request that waits outlives this, and so do the callers behind it: the usual answer to a request is to close the
// listening side and then to accept it, the usual answer to the end of a connection to close and to listen again.
void ListeningSocketImpl::Close() {
  const bool isPassing = mState == State::Requested || mIsTelling;
  if (isPassing && mListener) TakeCallers();
  if (!isPassing) {
    mRequest.Close();
    mCallers.clear();
  }
  mListener.reset();
  mConnection.Close();
  mState = State::Closed;
}

void ListeningSocketImpl::Stop() {
  mState = State::Closed;
  mIsTelling = false;
  Close();
}

bool ListeningSocketImpl::Accept(int requestId) {
  if (!mRequest.IsOpen() || requestId != mRequestId) return false;
  if (mRequest.HasEnded()) {
    EndRequest();
    return false;
  }
  mConnection = std::move(mRequest);
  mRequest.Close();
  ++mConnectionNumber;
  mState = State::Connected;
  if (!mListener) (void)OpenPort();  // without it nobody can call meanwhile, which is no reason to refuse this one
  return true;
}

void ListeningSocketImpl::Poll() {
  if (mListener) TakeCallers();
  switch (mState) {
    case State::Listening:
      TakeRequest();
      if (mState == State::Requested && OnConnectionRequest) OnConnectionRequest(mRequestId);
      break;
    case State::Requested:
      if (mRequest.HasEnded()) EndRequest();
      break;
    case State::Connected:
      if (mConnection.HasEnded()) EndConnection();
      break;
    case State::Closed:
      break;
  }
}

// Bounded in what it takes: who calls faster than this is looked at waits in the system's own queue.
void ListeningSocketImpl::TakeCallers() {
  std::erase_if(mCallers, [](const Caller& caller) { return caller.socket.HasEnded(); });
  for (std::size_t i = 0; i < kMostCallers; ++i) {
    std::error_code code;
    tcp::socket socket(mListener->context);
    tcp::endpoint partner;
    mListener->acceptor.accept(socket, partner, code);
    if (code) return;  // nobody there, or gone again
    socket.set_option(tcp::no_delay(true), code);
    auto connected = ReleaseSocket(socket, code);
    if (code) continue;
    if (mCallers.size() == kMostCallers) mCallers.erase(mCallers.begin());
    mCallers.push_back(
        {std::move(connected), EndpointText(partner.address().to_string(), partner.port()), ++mCallerNumber});
  }
}

void ListeningSocketImpl::TakeRequest() {
  if (mCallers.empty()) return;
  Caller newest = std::move(mCallers.back());
  mCallers.pop_back();
  mRequest = std::move(newest.socket);
  mPartner = std::move(newest.name);
  mRequestId = newest.number;
  mState = State::Requested;
}

void ListeningSocketImpl::EndRequest() {
  mRequest.Close();
  mState = mListener ? State::Listening : State::Closed;
}

void ListeningSocketImpl::EndConnection() {
  if (!OnClose) return DropConnection();
  mIsTelling = true;
  Close();
  OnClose();
  mIsTelling = false;
  if (mState == State::Closed) Close();  // the program does not listen any more
}

bool ListeningSocketImpl::HasNewerCaller() const {
  return mState == State::Connected && !mCallers.empty() && mCallers.back().number > mRequestId;
}

void ListeningSocketImpl::DropConnection() {
  mConnection.Close();
  if (mState == State::Connected) mState = mListener || OpenPort() ? State::Listening : State::Closed;
}

}  // namespace kv
