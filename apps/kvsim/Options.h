#pragma once

#include <cstdint>
#include <expected>
#include <optional>
#include <string>

#include "simulator/SimulatedModem.h"
#include "simulator/SimulatorOptions.h"

namespace kvsim {

enum ExitCode : int { kDone = 0, kFailed = 1, kUsage = 2 };

struct HostAndPort {
  std::string host;
  std::uint16_t port = 0;
};

// What the command line asks for. Exactly one of tcp, pty and dial is given unless models are listed.
struct Options {
  sim::SimulatorOptions controller;
  bool listsModels = false;
  std::optional<std::uint16_t> tcp;  // 0: a free port
  std::string bind = "127.0.0.1";
  std::string pty;
  std::optional<HostAndPort> dial;
  std::optional<sim::ModemOptions> modem;
};

// Reads the command line. On --help and on a mistake it has printed what there is to say, and the error is the exit
// code.
[[nodiscard]] std::expected<Options, int> ReadOptions(int argc, const char* const* argv);

// "host:port", an IPv6 host in brackets; the port 1 to 65535.
[[nodiscard]] std::optional<HostAndPort> ParseHostAndPort(const std::string& text);

// Why there is no such model, with the names that are nearest to it.
[[nodiscard]] std::string UnknownModelText(const std::string& name);

// The table of all models, one line each.
[[nodiscard]] std::string ModelListText();

}  // namespace kvsim
