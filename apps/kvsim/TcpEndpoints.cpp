#include "apps/kvsim/TcpEndpoints.h"

#include <asio.hpp>
#include <exception>
#include <optional>
#include <utility>
#include <vector>

#include "apps/kvsim/SocketStream.h"
#include "base/FilePlatform.h"

namespace kvsim {
namespace {

using asio::ip::tcp;

constexpr kv::Duration kDialPause = std::chrono::milliseconds(500);  // between two tries to get through
constexpr kv::Duration kDialLimit = std::chrono::seconds(5);         // for one try
constexpr kv::Duration kDialLook = std::chrono::milliseconds(10);    // between two looks at a try under way

class ListeningEndpoint final : public Endpoint {
 public:
  ListeningEndpoint() : mAcceptor(mContext) {}

  std::error_code Open(const tcp::endpoint& place) {
    std::error_code code;
    mAcceptor.open(place.protocol(), code);
#ifndef _WIN32
    if (!code) mAcceptor.set_option(tcp::acceptor::reuse_address(true), code);  // a run may follow the last one at once
#endif
    if (!code) mAcceptor.bind(place, code);
    if (!code) mAcceptor.listen(asio::socket_base::max_listen_connections, code);
    if (!code) mAcceptor.non_blocking(true, code);
    return code;
  }

  [[nodiscard]] std::string ReadyText() const override {
    std::error_code code;
    const auto place = mAcceptor.local_endpoint(code);
    return "listening on " + place.address().to_string() + ":" + std::to_string(place.port());
  }

  [[nodiscard]] std::optional<Handle> WaitHandle() const override {
    return const_cast<tcp::acceptor&>(mAcceptor).native_handle();
  }

  [[nodiscard]] std::unique_ptr<Stream> Admit(kv::Instant) override {
    std::error_code code;
    tcp::socket socket(mContext);
    mAcceptor.accept(socket, code);
    if (code) return nullptr;
    return std::make_unique<SocketStream>(std::move(socket));
  }

 private:
  asio::io_context mContext;
  tcp::acceptor mAcceptor;
};

class DiallingEndpoint final : public Endpoint {
 public:
  DiallingEndpoint(std::string place, std::vector<tcp::endpoint> endpoints)
      : mPlace(std::move(place)), mEndpoints(std::move(endpoints)) {}

  [[nodiscard]] std::string ReadyText() const override { return "dialling " + mPlace; }
  [[nodiscard]] std::optional<Handle> WaitHandle() const override { return std::nullopt; }

  [[nodiscard]] std::optional<kv::Instant> NextEvent() const override {
    if (mIsConnected) return std::nullopt;
    return mNextLook;
  }

  [[nodiscard]] std::unique_ptr<Stream> Admit(kv::Instant now) override {
    if (mIsConnected || now < mNextLook) return nullptr;
    if (!mTry) StartTry(now);
    mContext.restart();
    mContext.poll();
    mNextLook = now + kDialLook;
    if (mCode == asio::error::would_block && now < mTryEnds) return nullptr;
    auto socket = std::exchange(mTry, std::nullopt);
    if (mCode) {
      mNextLook = now + kDialPause;
      return nullptr;
    }
    mIsConnected = true;
    return std::make_unique<SocketStream>(std::move(*socket));
  }

  void Dismissed(kv::Instant now) override {
    mIsConnected = false;
    mNextLook = now + kDialPause;
  }

 private:
  void StartTry(kv::Instant now) {
    mTry.emplace(mContext);
    mCode = asio::error::would_block;
    mTryEnds = now + kDialLimit;
    const int number = ++mTryNumber;
    const auto& endpoint = mEndpoints[static_cast<std::size_t>(number) % mEndpoints.size()];
    mTry->async_connect(endpoint, [this, number](const std::error_code& code) {
      if (number == mTryNumber) mCode = code;
    });
  }

  asio::io_context mContext;
  std::string mPlace;
  std::vector<tcp::endpoint> mEndpoints;  // tried in turn
  std::optional<tcp::socket> mTry;        // nothing between tries
  std::error_code mCode;                  // would_block while a try is under way
  kv::Instant mTryEnds{};
  kv::Instant mNextLook{};
  int mTryNumber = 0;
  bool mIsConnected = false;
};

std::string PortInUse(const std::string& place) {
  return "cannot listen on " + place + ": another program does; end it, choose another port, or let --tcp 0 pick one";
}

}  // namespace

std::expected<std::unique_ptr<Endpoint>, std::string> ListenOn(const std::string& address, std::uint16_t port) {
  const std::string place = address + ":" + std::to_string(port);
  try {
    std::error_code code;
    const auto bound = asio::ip::make_address(address, code);
    if (code) return std::unexpected("\"" + address + "\" is not an address such as 127.0.0.1 or 0.0.0.0");
    auto endpoint = std::make_unique<ListeningEndpoint>();
    code = endpoint->Open({bound, port});
    if (code == asio::error::address_in_use) return std::unexpected(PortInUse(place));
    if (code) return std::unexpected("cannot listen on " + place + ": " + kv::SystemMessage(code));
    return endpoint;
  } catch (const std::exception& error) {
    return std::unexpected("cannot listen on " + place + ": " + error.what());
  }
}

std::expected<std::unique_ptr<Endpoint>, std::string> DialTo(const std::string& host, std::uint16_t port) {
  const std::string place = host + ":" + std::to_string(port);
  try {
    asio::io_context context;
    std::error_code code;
    std::vector<tcp::endpoint> endpoints;
    for (const auto& entry : tcp::resolver(context).resolve(host, std::to_string(port), code)) {
      endpoints.push_back(entry.endpoint());
    }
    if (endpoints.empty()) return std::unexpected("the host of " + place + " is not known: " + kv::SystemMessage(code));
    return std::make_unique<DiallingEndpoint>(place, std::move(endpoints));
  } catch (const std::exception& error) {
    return std::unexpected("cannot dial " + place + ": " + error.what());
  }
}

}  // namespace kvsim
