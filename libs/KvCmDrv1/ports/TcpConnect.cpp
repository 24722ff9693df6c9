#include "KvCmDrv1/ports/TcpConnect.h"

#include <algorithm>
#include <asio.hpp>
#include <exception>
#include <list>
#include <memory>
#include <utility>
#include <vector>

#include "KvCmDrv1/ports/ReleasedSocket.h"

namespace kv {
namespace {

using asio::ip::tcp;

constexpr std::chrono::milliseconds kSlice{5};  // between two turns of the pacer

// Runs `context` until `isDone`, the deadline or a stop request.
std::error_code RunInSlices(asio::io_context& context, const bool& isDone, Instant deadline, Pacer& pacer) {
  while (!isDone) {
    if (pacer.StopRequested()) return asio::error::operation_aborted;
    if (pacer.Now() >= deadline) return asio::error::timed_out;
    context.restart();
    if (context.run_one_for(kSlice) == 0) pacer.Turn();
  }
  return {};
}

struct Lookup {
  asio::io_context context;
  tcp::resolver resolver{context};
  bool isDone = false;
  std::error_code code;
  std::vector<tcp::endpoint> endpoints;
};

// The system's name lookup cannot be called off and may take half a minute; ending one would have to wait for it. So
// one that nobody waits for any more is kept here until it has ended by itself. Never destroyed: leaving the program
// must not wait for it either.
std::list<std::unique_ptr<Lookup>>& GivenUpLookups() {
  static auto& lookups = *new std::list<std::unique_ptr<Lookup>>;
  return lookups;
}

void ForgetEndedLookups() {
  GivenUpLookups().remove_if([](const std::unique_ptr<Lookup>& lookup) {
    lookup->context.restart();
    lookup->context.poll();
    return lookup->isDone;
  });
}

void StartLookup(Lookup& lookup, const std::string& host, std::uint16_t port) {
  lookup.resolver.async_resolve(host, std::to_string(port), tcp::resolver::numeric_service,
                                [&lookup](const std::error_code& code, const tcp::resolver::results_type& results) {
                                  lookup.isDone = true;
                                  lookup.code = code;
                                  for (const auto& entry : results) lookup.endpoints.push_back(entry.endpoint());
                                });
}

using Endpoints = std::vector<tcp::endpoint>;

std::expected<Endpoints, std::error_code> FindAddresses(const std::string& host, std::uint16_t port, Instant deadline,
                                                        Pacer& pacer) {
  std::error_code notAnAddress;
  const auto address = asio::ip::make_address(host, notAnAddress);
  if (!notAnAddress) return Endpoints{{address, port}};

  ForgetEndedLookups();
  auto lookup = std::make_unique<Lookup>();
  StartLookup(*lookup, host, port);
  const auto cut = RunInSlices(lookup->context, lookup->isDone, deadline, pacer);
  if (cut) {
    GivenUpLookups().push_back(std::move(lookup));
    return std::unexpected(cut);
  }
  if (lookup->code) return std::unexpected(lookup->code);
  return std::move(lookup->endpoints);
}

std::expected<ConnectedSocket, std::error_code> ConnectTo(const tcp::endpoint& endpoint, Instant deadline,
                                                          Pacer& pacer) {
  asio::io_context context;
  tcp::socket socket(context);
  bool isDone = false;
  std::error_code code;
  socket.async_connect(endpoint, [&](const std::error_code& result) {
    isDone = true;
    code = result;
  });
  if (const auto cut = RunInSlices(context, isDone, deadline, pacer)) return std::unexpected(cut);
  if (!code) socket.set_option(tcp::no_delay(true), code);  // a frame leaves with the call that writes it
  if (code) return std::unexpected(code);
  auto connected = ReleaseSocket(socket, code);
  if (code) return std::unexpected(code);
  return connected;
}

// One that answered, even with no, knows more than one that was silent.
bool SaysMore(std::error_code code, std::error_code than) {
  return !than || (code == asio::error::connection_refused && than != asio::error::connection_refused);
}

std::expected<ConnectedSocket, std::error_code> ConnectToOneOf(const Endpoints& endpoints, Instant deadline,
                                                               Pacer& pacer) {
  std::error_code failure;
  for (std::size_t i = 0; i < endpoints.size(); ++i) {
    const Instant now = pacer.Now();
    const auto share =
        (deadline - now) / static_cast<int>(endpoints.size() - i);  // a silent one leaves time for the rest
    auto socket = ConnectTo(endpoints[i], now + share, pacer);
    if (socket || socket.error() == asio::error::operation_aborted) return socket;
    if (SaysMore(socket.error(), failure)) failure = socket.error();
  }
  return std::unexpected(failure ? failure : std::error_code(asio::error::host_not_found));
}

}  // namespace

std::expected<ConnectedSocket, std::error_code> ConnectTcp(const std::string& host, std::uint16_t port, Duration limit,
                                                           Pacer& pacer) {
  try {
    const Instant deadline = pacer.Now() + limit;
    const auto endpoints = FindAddresses(host, port, deadline, pacer);
    if (!endpoints) return std::unexpected(endpoints.error());
    return ConnectToOneOf(*endpoints, deadline, pacer);
  } catch (const std::system_error& error) {  // no descriptors, no thread for the lookup
    return std::unexpected(error.code());
  } catch (const std::exception&) {
    return std::unexpected(std::make_error_code(std::errc::not_enough_memory));
  }
}

}  // namespace kv
