#include "KvCmDrv1/ports/PortList.h"

#include <gtest/gtest.h>

#include <ostream>

#include "tests/support/TemporaryFolder.h"

namespace kv {

void PrintTo(const SerialPortInfo& port, std::ostream* stream) {
  *stream << port.name << " | " << port.path << " | " << port.description << " | " << port.stablePath;
}

namespace {

namespace fs = std::filesystem;

class PortListTest : public testing::Test {
 protected:
  void Put(const std::string& file, const std::string& line) const {
    fs::create_directories((root / file).parent_path());
    (void)folder.Put(file, line + "\n");
  }
  void LinkTo(const std::string& link, const std::string& target) const {
    fs::create_directories((root / link).parent_path());
    fs::create_symlink(target, root / link);
  }

  const TemporaryFolder folder;
  const fs::path root = folder.Path();
};

TEST_F(PortListTest, ListsWhatHasHardwareWithWhatIsPluggedIn) {
  // Two of the kernel's table of ports, one of them without hardware; two adapters; a console that is no serial port.
  Put("sys/devices/platform/serial8250/type", "");
  LinkTo("sys/devices/platform/serial8250/driver", "../../../bus/platform/drivers/serial8250");
  LinkTo("sys/devices/platform/serial8250/0/driver", "../../../../bus/serial-base/drivers/port");
  for (const std::string name : {"ttyS0", "ttyS1"}) {
    Put("sys/class/tty/" + name + "/type", name == "ttyS0" ? "4" : "0");
    LinkTo("sys/class/tty/" + name + "/device", "../../../devices/platform/serial8250/0");
  }
  Put("sys/devices/usb1/1-2/product", "USB-Serial Controller");
  Put("sys/devices/usb1/1-2/manufacturer", "Adapter Works");
  for (const std::string name : {"ttyACM10", "ttyACM2"}) {
    Put("sys/devices/usb1/1-2/1-2:1.0/" + name + "/port_number", "0");
    fs::create_directories(root / "sys/class/tty" / name);
    LinkTo("sys/class/tty/" + name + "/device", "../../../devices/usb1/1-2/1-2:1.0/" + name);
  }
  fs::create_directories(root / "sys/class/tty/tty0");
  LinkTo("dev/serial/by-id/usb-Adapter_Works-if00-port0", "../../ttyACM10");

  const std::string adapter = "USB-Serial Controller (Adapter Works)";
  const std::vector<SerialPortInfo> expected{
      {"ttyACM2", "/dev/ttyACM2", adapter, ""},
      {"ttyACM10", "/dev/ttyACM10", adapter, "/dev/serial/by-id/usb-Adapter_Works-if00-port0"},
      {"ttyS0", "/dev/ttyS0", "serial port, driver serial8250", ""},
  };
  EXPECT_EQ(ListSerialPortsBelow(root), expected);
}

}  // namespace
}  // namespace kv
