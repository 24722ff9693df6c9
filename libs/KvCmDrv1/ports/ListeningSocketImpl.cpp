#include "KvCmDrv1/ports/ListeningSocketImpl.h"

#include <asio.hpp>
#include <exception>
#include <utility>

#include "KvCmDrv1/ports/PortErrors.h"

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
  if (!code) acceptor.listen(1, code);
  if (!code) acceptor.non_blocking(true, code);
  return code;
}

}  // namespace

ListeningSocketImpl::ListeningSocketImpl() = default;
ListeningSocketImpl::~ListeningSocketImpl() = default;

bool ListeningSocketImpl::Listen(std::uint16_t port) {
  Close();
  mRequest.Close();
  if (port == 0) return false;
  mPort = port;
  try {
    auto listener = std::make_unique<Listener>();
    if (OpenListener(listener->acceptor, port)) return false;
    mListener = std::move(listener);
  } catch (const std::exception&) {  // no descriptors left
    return false;
  }
  mState = State::Listening;
  return true;
}

bool ListeningSocketImpl::Listen() {
  return Listen(mPort);
}

// A request that waits outlives this: the usual answer to one is to close the listening side and then to accept it.
void ListeningSocketImpl::Close() {
  if (mState != State::Requested) mRequest.Close();
  StopListening();
  mConnection.Close();
  mState = State::Closed;
}

void ListeningSocketImpl::StopListening() {
  mListener.reset();
}

bool ListeningSocketImpl::Accept(int requestId) {
  if (!mRequest.IsOpen() || requestId != mRequestId) return false;
  if (mRequest.HasEnded()) {
    mRequest.Close();
    mState = mListener ? State::Listening : State::Closed;
    return false;
  }
  StopListening();
  mConnection = std::move(mRequest);
  mRequest.Close();
  ++mConnectionNumber;
  mState = State::Connected;
  return true;
}

void ListeningSocketImpl::Poll() {
  switch (mState) {
    case State::Listening:
      TakeRequest();
      if (mState == State::Requested && OnConnectionRequest) OnConnectionRequest(mRequestId);
      break;
    case State::Requested:
      if (mRequest.HasEnded()) {
        mRequest.Close();
        mState = State::Listening;
      }
      break;
    case State::Connected:
      if (!mConnection.HasEnded()) break;
      Close();
      if (OnClose) OnClose();
      break;
    case State::Closed:
      break;
  }
}

void ListeningSocketImpl::TakeRequest() {
  std::error_code code;
  tcp::socket socket(mListener->context);
  tcp::endpoint partner;
  mListener->acceptor.accept(socket, partner, code);
  if (code) return;  // nobody there, or gone again
  socket.set_option(tcp::no_delay(true), code);
  const auto handle = socket.release(code);
  if (code) return;
  mRequest = ConnectedSocket(handle);
  mPartner = EndpointText(partner.address().to_string(), partner.port());
  ++mRequestId;
  mState = State::Requested;
}

}  // namespace kv
