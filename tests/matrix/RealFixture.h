#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "KvCmDrv1/Driver.h"
#include "KvCmDrv1/ports/PortFactory.h"
#include "desktop/console/ConsolePacer.h"
#include "tests/support/ProgramProcess.h"
#include "tests/support/TemporaryFolder.h"

namespace kv::matrix {

// The lines that a system has.
#ifdef _WIN32
inline const std::vector<Transport> kRealLines = {Transport::Tcp};
#else
inline const std::vector<Transport> kRealLines = {Transport::Tcp, Transport::Serial};
#endif

// The driver with its real ports, and kvsim as a program of its own at the other end of a TCP connection or a pseudo
// terminal. The place stays the same when another kvsim takes it over.
class RealFixture {
 public:
  explicit RealFixture(Transport transport) {
    mSettings.transport = transport;
    mSettings.host = "127.0.0.1";
    mSettings.serialPort = (folder.Path() / "plc").string();
    mSettings.timeOut = std::chrono::milliseconds(300);
  }

  // False when kvsim did not start; what it serves is connected to with the next Link().
  bool Serve(std::vector<std::string> arguments) {
    const bool isTcp = mSettings.transport == Transport::Tcp;
    arguments.emplace_back(isTcp ? "--tcp" : "--pty");
    arguments.push_back(isTcp ? std::to_string(mPort) : mSettings.serialPort);
    mKvsim = std::make_unique<kvtest::KvsimProcess>(std::move(arguments));
    if (!isTcp) return !mKvsim->ReadyLine().empty();
    mPort = mKvsim->Port();
    return mPort != 0;
  }

  [[nodiscard]] Channel* Link() {
    mSettings.tcpPort = mPort;
    driver.UseSettings(mSettings, false);
    mChannel = driver.GetChannel();
    return mChannel.get();
  }

  TemporaryFolder folder;
  ConsolePacer pacer;
  Driver driver{pacer, nullptr, MakePort};

 private:
  LinkSettings mSettings;
  std::uint16_t mPort = 0;
  std::unique_ptr<kvtest::KvsimProcess> mKvsim;
  std::shared_ptr<Channel> mChannel;
};

}  // namespace kv::matrix
