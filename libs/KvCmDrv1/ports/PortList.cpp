#include "KvCmDrv1/ports/PortList.h"

#include <algorithm>
#include <fstream>
#include <string_view>
#include <system_error>

#ifdef _WIN32
// clang-format off
#include <windows.h>
#include <setupapi.h>
#include <devguid.h>
// clang-format on

#include "base/PathText.h"
#endif

namespace kv {
namespace {

namespace fs = std::filesystem;

// "ttyS2" before "ttyS10": the number at the end counts as a number.
bool ComesBefore(const SerialPortInfo& left, const SerialPortInfo& right) {
  const auto split = [](const std::string& name) {
    const auto last = name.find_last_not_of("0123456789");
    return name.substr(0, last == std::string::npos ? 0 : last + 1);
  };
  const auto leftLetters = split(left.name);
  const auto rightLetters = split(right.name);
  if (leftLetters != rightLetters) return leftLetters < rightLetters;
  if (left.name.size() != right.name.size()) return left.name.size() < right.name.size();
  return left.name < right.name;
}

#ifdef _WIN32

std::string TextProperty(HDEVINFO devices, SP_DEVINFO_DATA& device, DWORD property) {
  wchar_t text[256] = {};
  SetupDiGetDeviceRegistryPropertyW(devices, &device, property, nullptr, reinterpret_cast<BYTE*>(text),
                                    sizeof text - sizeof text[0], nullptr);
  return Utf8FromPath(text);
}

std::string PortName(HDEVINFO devices, SP_DEVINFO_DATA& device) {
  const HKEY key = SetupDiOpenDevRegKey(devices, &device, DICS_FLAG_GLOBAL, 0, DIREG_DEV, KEY_READ);
  if (key == INVALID_HANDLE_VALUE) return {};
  wchar_t name[64] = {};
  DWORD size = sizeof name - sizeof name[0];
  RegQueryValueExW(key, L"PortName", nullptr, nullptr, reinterpret_cast<BYTE*>(name), &size);
  RegCloseKey(key);
  return Utf8FromPath(name);
}

std::vector<SerialPortInfo> FindPorts() {
  std::vector<SerialPortInfo> ports;
  const HDEVINFO devices = SetupDiGetClassDevsW(&GUID_DEVCLASS_PORTS, nullptr, nullptr, DIGCF_PRESENT);
  if (devices == INVALID_HANDLE_VALUE) return ports;
  SP_DEVINFO_DATA device{};
  device.cbSize = sizeof device;
  for (DWORD i = 0; SetupDiEnumDeviceInfo(devices, i, &device); ++i) {
    const auto name = PortName(devices, device);
    if (!name.starts_with("COM")) continue;  // printer ports are of the same class
    ports.push_back({name, name, TextProperty(devices, device, SPDRP_FRIENDLYNAME), {}});
  }
  SetupDiDestroyDeviceInfoList(devices);
  return ports;
}

#else

std::string FirstLine(const fs::path& file) {
  std::ifstream stream(file);
  std::string line;
  std::getline(stream, line);
  return line.substr(0, 100);
}

constexpr int kLevels = 6;  // from a port up to the adapter that it belongs to

// What drives the port. Newer kernels put two layers of their own, "port" and "ctrl", between it and the chip's driver.
std::string DriverName(fs::path folder) {
  std::error_code code;
  for (int level = 0; level < kLevels && folder.has_relative_path(); ++level, folder = folder.parent_path()) {
    const fs::path driver = fs::read_symlink(folder / "driver", code);
    if (!driver.empty() && driver.string().find("/serial-base/") == std::string::npos)
      return driver.filename().string();
  }
  return {};
}

// The nearest folder above the port that says what is plugged in; for a port without one, its driver.
std::string Describe(const fs::path& device) {
  std::error_code code;
  const fs::path port = fs::canonical(device, code);
  fs::path folder = port;
  for (int level = 0; level < kLevels && folder.has_relative_path(); ++level, folder = folder.parent_path()) {
    const auto product = FirstLine(folder / "product");
    const auto maker = FirstLine(folder / "manufacturer");
    if (!product.empty()) return maker.empty() ? product : product + " (" + maker + ")";
  }
  const std::string driver = DriverName(port);
  return driver.empty() ? driver : "serial port, driver " + driver;
}

std::string StablePath(const fs::path& byId, const std::string& name) {
  std::error_code code;
  for (const auto& entry : fs::directory_iterator(byId, code)) {
    if (fs::read_symlink(entry.path(), code).filename() == name) {
      return "/dev/serial/by-id/" + entry.path().filename().string();
    }
  }
  return {};
}

// The kernel's table has ports that this machine may not have; theirs is the type 0, unknown.
bool HasHardware(const fs::path& port) {
  std::error_code code;
  return fs::exists(port / "device", code) && FirstLine(port / "type") != "0";
}

#endif

}  // namespace

std::vector<SerialPortInfo> ListSerialPorts() {
#ifdef _WIN32
  auto ports = FindPorts();
  std::sort(ports.begin(), ports.end(), ComesBefore);
  return ports;
#else
  return ListSerialPortsBelow("/");
#endif
}

std::vector<SerialPortInfo> ListSerialPortsBelow([[maybe_unused]] const std::filesystem::path& root) {
  std::vector<SerialPortInfo> ports;
#ifndef _WIN32
  std::error_code code;
  for (const auto& entry : fs::directory_iterator(root / "sys/class/tty", code)) {
    if (!HasHardware(entry.path())) continue;
    const auto name = entry.path().filename().string();
    ports.push_back(
        {name, "/dev/" + name, Describe(entry.path() / "device"), StablePath(root / "dev/serial/by-id", name)});
  }
#endif
  std::sort(ports.begin(), ports.end(), ComesBefore);
  return ports;
}

}  // namespace kv
