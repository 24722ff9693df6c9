#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "KvCmDrv1/Driver.h"
#include "KvCmDrv1/ports/PortFactory.h"
#include "base/FilePlatform.h"
#include "base/PathText.h"
#include "desktop/console/ConsolePacer.h"
#include "tests/support/ProgramProcessWindows.h"

// Exchanges a second over TCP on Windows: the driver's channel with kvsim in a process of its own, beside two processes
// of this program that pass as many bytes back and forth and do nothing else, in turn.

namespace bench {
namespace {

constexpr int kRounds = 9;

sockaddr_in Loopback(std::uint16_t port) {
  sockaddr_in place{};
  place.sin_family = AF_INET;
  place.sin_port = htons(port);
  place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return place;
}

void SendAtOnce(SOCKET socket) {
  const int isOn = 1;
  setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&isOn), sizeof isOn);
}

bool ReadAll(SOCKET socket, std::string& buffer, int count) {
  for (int done = 0; done < count;) {
    const int received = recv(socket, buffer.data() + done, count - done, 0);
    if (received <= 0) return false;
    done += received;
  }
  return true;
}

// The other process: answers each request of so many bytes with a reply of so many.
int Answer(int request, int reply) {
  const SOCKET listener = socket(AF_INET, SOCK_STREAM, 0);
  auto place = Loopback(0);
  int size = sizeof place;
  bind(listener, reinterpret_cast<sockaddr*>(&place), size);
  listen(listener, 1);
  getsockname(listener, reinterpret_cast<sockaddr*>(&place), &size);
  std::printf("%u\n", ntohs(place.sin_port));
  std::fflush(stdout);
  const SOCKET client = accept(listener, nullptr, nullptr);
  SendAtOnce(client);
  std::string buffer(65536, 'x');
  while (ReadAll(client, buffer, request)) send(client, buffer.data(), reply, 0);
  return 0;
}

double Seconds() {
  LARGE_INTEGER now{}, aSecond{};
  QueryPerformanceCounter(&now);
  QueryPerformanceFrequency(&aSecond);
  return static_cast<double>(now.QuadPart) / static_cast<double>(aSecond.QuadPart);
}

class Bare {
 public:
  Bare(int request, int reply)
      : mRequest(request),
        mReply(reply),
        mOther(kv::Utf8FromPath(kv::ExecutableFile()), {"--answer", std::to_string(request), std::to_string(reply)}),
        mSocket(socket(AF_INET, SOCK_STREAM, 0)) {
    const auto place = Loopback(static_cast<std::uint16_t>(std::atoi(mOther.ReadLine().c_str())));
    connect(mSocket, reinterpret_cast<const sockaddr*>(&place), sizeof place);
    SendAtOnce(mSocket);
  }
  ~Bare() { closesocket(mSocket); }
  Bare(const Bare&) = delete;
  Bare& operator=(const Bare&) = delete;

  bool Exchange() {
    return send(mSocket, mBuffer.data(), mRequest, 0) == mRequest && ReadAll(mSocket, mBuffer, mReply);
  }

 private:
  int mRequest;
  int mReply;
  kvtest::ProgramProcess mOther;
  SOCKET mSocket;
  std::string mBuffer = std::string(65536, 'x');
};

template <typename One>
std::optional<double> ASecond(int times, const One& one) {
  const double start = Seconds();
  for (int i = 0; i < times; ++i) {
    if (!one()) return std::nullopt;
  }
  return times / (Seconds() - start);
}

int Run(const char* model, int times) {
  kvtest::ProgramProcess kvsim(KVSIM_PROGRAM, {"--model", model, "--tcp", "0"});
  const std::string ready = kvsim.ReadLine();
  kv::LinkSettings settings;
  settings.transport = kv::Transport::Tcp;
  settings.tcpPort = static_cast<std::uint16_t>(std::atoi(ready.substr(ready.rfind(':') + 1).c_str()));
  kv::ConsolePacer pacer;
  kv::Driver driver(pacer, {}, kv::MakePort);
  driver.UseSettings(settings, false);
  const auto channel = driver.GetChannel();
  const auto read = [&] { return channel->ReadMI(0, 60, 1).has_value(); };
  if (!channel || !read() || !read()) {  // the first one also synchronises
    std::fprintf(stderr, "%s\n", driver.LastError().Text().c_str());
    return 1;
  }
  const auto before = channel->Quality();
  (void)read();
  const auto after = channel->Quality();
  Bare bare(static_cast<int>(after.bytesSent - before.bytesSent),
            static_cast<int>(after.bytesReceived - before.bytesReceived));
  std::vector<double> ours, least, ratios;
  for (int round = 0; round < kRounds; ++round) {
    const auto one = ASecond(times, read);
    const auto other = ASecond(times, [&bare] { return bare.Exchange(); });
    if (!one || !other) return 1;
    ours.push_back(*one);
    least.push_back(*other);
    ratios.push_back(*one / *other);
  }
  for (auto* figures : {&ours, &least, &ratios}) std::sort(figures->begin(), figures->end());
  std::printf("60 MI of %-11s %7.0f a second, bare %7.0f: %.1f %%\n", model, ours[kRounds / 2], least[kRounds / 2],
              ratios[kRounds / 2] * 100);
  return 0;
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  WSADATA facts{};
  WSAStartup(MAKEWORD(2, 2), &facts);
  if (argc == 4 && std::strcmp(argv[1], "--answer") == 0) return bench::Answer(std::atoi(argv[2]), std::atoi(argv[3]));
  const int times = argc > 1 && std::strcmp(argv[1], "--once") == 0 ? 20 : 2000;
  return bench::Run("K220-22-R1", times) + bench::Run("Q50", times);
}
