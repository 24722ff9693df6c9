#include "apps/kvsim/PtyEndpoint.h"

#ifdef _WIN32

namespace kvsim {

std::expected<std::unique_ptr<Endpoint>, std::string> ServeOnPty(const std::string&) {
  return std::unexpected("this system has no pseudo terminals: use --tcp");
}

}  // namespace kvsim

#else

#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <system_error>
#include <utility>

namespace kvsim {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kReadSize = 4096;  // what a terminal hands over at most

struct Speed {
  speed_t code;
  int baud;
};
constexpr Speed kSpeeds[] = {
    {B300, 300},       {B600, 600},       {B1200, 1200},     {B2400, 2400},     {B4800, 4800},
    {B9600, 9600},     {B19200, 19200},   {B38400, 38400},   {B57600, 57600},   {B115200, 115200},
    {B230400, 230400}, {B460800, 460800}, {B500000, 500000}, {B576000, 576000}, {B921600, 921600},
};

class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int handle) : mHandle(handle) {}
  ~Descriptor() { Close(); }
  Descriptor(Descriptor&& other) noexcept : mHandle(std::exchange(other.mHandle, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(mHandle, other.mHandle);
    return *this;
  }
  [[nodiscard]] int Get() const { return mHandle; }
  [[nodiscard]] bool IsOpen() const { return mHandle >= 0; }
  void Close() {
    if (IsOpen()) ::close(std::exchange(mHandle, -1));
  }

 private:
  int mHandle = -1;
};

std::string SystemMessage() {
  return std::error_code(errno, std::system_category()).message();
}

bool IsOurKindOfLink(const fs::path& link) {
  std::error_code code;
  return fs::is_symlink(link, code) && fs::read_symlink(link, code).string().starts_with("/dev/pts/");
}

// The symbolic link under which clients find the terminal.
class Link {
 public:
  explicit Link(fs::path path) : mPath(std::move(path)) {}
  ~Link() {
    std::error_code code;
    if (!mTarget.empty() && fs::read_symlink(mPath, code) == mTarget) fs::remove(mPath, code);
  }
  Link(const Link&) = delete;
  Link& operator=(const Link&) = delete;

  // Empty when it went well. Only a link to a pseudo terminal, left over from another run, is replaced.
  [[nodiscard]] std::string PointTo(const std::string& target) {
    std::error_code code;
    if (fs::exists(fs::symlink_status(mPath, code)) && !IsOurKindOfLink(mPath)) {
      return mPath.string() + " exists and is not a link to a pseudo terminal: choose another name";
    }
    fs::path fresh = mPath;
    fresh += ".new";
    fs::remove(fresh, code);
    fs::create_symlink(target, fresh, code);
    if (!code) fs::rename(fresh, mPath, code);
    if (code) return "cannot make the link " + mPath.string() + ": " + code.message();
    mTarget = target;
    return {};
  }

  [[nodiscard]] const fs::path& Path() const { return mPath; }

 private:
  fs::path mPath;
  fs::path mTarget;
};

// The terminal with its two ends. The far end is ours while no client has written: with nobody there the system would
// report the near end as hung up without pause. After the first byte it is the clients' alone, so that their leaving
// shows.
class Terminal {
 public:
  // Empty when it went well.
  [[nodiscard]] std::string Open() {
    Descriptor near(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    if (!near.IsOpen() || ::grantpt(near.Get()) != 0 || ::unlockpt(near.Get()) != 0) {
      return "cannot make a pseudo terminal: " + SystemMessage();
    }
    const char* name = ::ptsname(near.Get());
    if (name == nullptr) return "cannot make a pseudo terminal: " + SystemMessage();
    mName = name;
    mNear = std::move(near);
    return Park() ? std::string() : "cannot open " + mName + ": " + SystemMessage();
  }

  // Takes the far end and makes it raw. False when a client that crashed has left it to nobody.
  [[nodiscard]] bool Park() {
    mFar = Descriptor(::open(mName.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    if (!mFar.IsOpen()) return false;
    ::ioctl(mFar.Get(), TIOCNXCL);
    termios settings{};
    if (::tcgetattr(mFar.Get(), &settings) != 0) return false;
    ::cfmakeraw(&settings);
    return ::tcsetattr(mFar.Get(), TCSANOW, &settings) == 0;
  }

  // The speed that the far end is set to, whoever has it open; 0 when it is no usual one.
  [[nodiscard]] int Baud() const {
    termios settings{};
    if (::tcgetattr(mNear.Get(), &settings) != 0) return 0;
    const auto* speed = std::ranges::find(kSpeeds, ::cfgetospeed(&settings), &Speed::code);
    return speed == std::end(kSpeeds) ? 0 : speed->baud;
  }

  void Unpark() { mFar.Close(); }
  [[nodiscard]] bool IsParked() const { return mFar.IsOpen(); }
  [[nodiscard]] int Near() const { return mNear.Get(); }
  [[nodiscard]] const std::string& Name() const { return mName; }

 private:
  Descriptor mNear;
  Descriptor mFar;  // while parked
  std::string mName;
};

class PtyStream final : public Stream {
 public:
  PtyStream(Terminal terminal, std::shared_ptr<Link> link) : mTerminal(std::move(terminal)), mLink(std::move(link)) {}

  [[nodiscard]] Handle WaitHandle() const override { return mTerminal.Near(); }
  [[nodiscard]] bool OutlivesClients() const override { return true; }
  [[nodiscard]] int Baud() const override { return mTerminal.Baud(); }

  [[nodiscard]] Result Read(std::string& buffer) override {
    std::array<char, kReadSize> chunk;
    const auto count = ::read(mTerminal.Near(), chunk.data(), chunk.size());
    if (count > 0) {
      mTerminal.Unpark();
      buffer.append(chunk.data(), static_cast<std::size_t>(count));
      return Result::Done;
    }
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) return Result::Nothing;
    if (!mTerminal.Park()) Replace();
    return Result::Ended;
  }

  [[nodiscard]] Result Write(std::string_view& bytes) override {
    if (mTerminal.IsParked()) {  // nobody is there to read it
      bytes = {};
      return Result::Done;
    }
    const auto count = ::write(mTerminal.Near(), bytes.data(), bytes.size());
    if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
    return count > 0 ? Result::Done : Result::Nothing;  // that a client has left shows when reading
  }

  // The adapter is pulled out and plugged in again: the client loses its port, the next one finds a new one.
  void Cut() override { Replace(); }

 private:
  void Replace() {
    Terminal fresh;
    if (fresh.Open().empty() && mLink->PointTo(fresh.Name()).empty()) mTerminal = std::move(fresh);
  }

  Terminal mTerminal;
  std::shared_ptr<Link> mLink;
};

class PtyEndpoint final : public Endpoint {
 public:
  PtyEndpoint(Terminal terminal, std::shared_ptr<Link> link)
      : mText("serving " + link->Path().string() + " (" + terminal.Name() + ")"),
        mStream(std::make_unique<PtyStream>(std::move(terminal), std::move(link))) {}

  [[nodiscard]] std::string ReadyText() const override { return mText; }
  [[nodiscard]] std::optional<Handle> WaitHandle() const override { return std::nullopt; }
  [[nodiscard]] std::unique_ptr<Stream> Admit(kv::Instant) override { return std::move(mStream); }

 private:
  std::string mText;
  std::unique_ptr<Stream> mStream;  // until it is handed out: one stream for all clients
};

}  // namespace

std::expected<std::unique_ptr<Endpoint>, std::string> ServeOnPty(const std::string& link) {
  Terminal terminal;
  if (auto error = terminal.Open(); !error.empty()) return std::unexpected(std::move(error));
  auto place = std::make_shared<Link>(link);
  if (auto error = place->PointTo(terminal.Name()); !error.empty()) return std::unexpected(std::move(error));
  return std::make_unique<PtyEndpoint>(std::move(terminal), std::move(place));
}

}  // namespace kvsim

#endif
