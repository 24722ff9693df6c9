#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "desktop/VirtualPacer.h"
#include "journal/ChangeJournal.h"
#include "journal/JournalCheck.h"
#include "tests/support/Recorded.h"
#include "tests/support/TemporaryFolder.h"

namespace kv::test {

// A disk of which the n-th call fails, counted over all its files; nothing is done by that call.
class FaultyDisk final : public JournalDisk {
 public:
  int failAt = 0;        // 0: none
  bool failsOn = false;  // the calls behind it fail, too
  int calls = 0;
  std::string failed;  // which call it was
  std::string log;     // all of them: "read 0 65536; "
  std::filesystem::path writeProtected;
  bool isReal = true;  // what is flushed reaches the disk

  [[nodiscard]] bool Fails(const std::string& call, std::uint64_t at = 0, std::uint64_t size = 0) {
    log += call + (at + size > 0 ? " " + std::to_string(at) + " " + std::to_string(size) : "") + "; ";
    ++calls;
    if (calls != failAt && !(failsOn && failAt != 0 && calls > failAt)) return false;
    failed = call;
    return true;
  }

  [[nodiscard]] std::expected<std::unique_ptr<JournalFile>, std::error_code> Open(const std::filesystem::path& path,
                                                                                  Access access) override;
  void FlushFolder(const std::filesystem::path& folder) override {
    log += "flush the folder; ";
    SystemJournalDisk().FlushFolder(folder);
  }

  static std::error_code Full() { return std::make_error_code(std::errc::no_space_on_device); }
};

class FaultyFile final : public JournalFile {
 public:
  FaultyFile(FaultyDisk& disk, std::unique_ptr<JournalFile> file) : mDisk(disk), mFile(std::move(file)) {}

  [[nodiscard]] std::expected<std::uint64_t, std::error_code> Size() override {
    if (mDisk.Fails("size")) return std::unexpected(FaultyDisk::Full());
    return mFile->Size();
  }
  [[nodiscard]] std::expected<std::string, std::error_code> Read(std::uint64_t at, std::size_t most) override {
    if (mDisk.Fails("read", at, most)) return std::unexpected(FaultyDisk::Full());
    return mFile->Read(at, most);
  }
  // A full disk takes a part.
  [[nodiscard]] std::error_code Write(std::uint64_t at, std::string_view bytes) override {
    if (!mDisk.Fails("write", at, bytes.size())) return mFile->Write(at, bytes);
    (void)mFile->Write(at, bytes.substr(0, bytes.size() / 2));
    return FaultyDisk::Full();
  }
  [[nodiscard]] std::error_code Flush() override {
    if (mDisk.Fails("flush")) return FaultyDisk::Full();
    return mDisk.isReal ? mFile->Flush() : std::error_code();
  }
  [[nodiscard]] std::error_code Truncate(std::uint64_t size) override {
    return mDisk.Fails("truncate", size) ? FaultyDisk::Full() : mFile->Truncate(size);
  }
  [[nodiscard]] std::expected<bool, std::error_code> TryLock() override {
    if (mDisk.Fails("lock")) return std::unexpected(FaultyDisk::Full());
    return mFile->TryLock();
  }

 private:
  FaultyDisk& mDisk;
  std::unique_ptr<JournalFile> mFile;
};

inline std::expected<std::unique_ptr<JournalFile>, std::error_code> FaultyDisk::Open(const std::filesystem::path& path,
                                                                                     Access access) {
  log += path.extension().string() + " " + std::to_string(static_cast<int>(access)) + " ";
  if (Fails("open")) return std::unexpected(Full());
  if (path == writeProtected && access != Access::Read) {
    return std::unexpected(std::make_error_code(std::errc::permission_denied));
  }
  auto file = SystemJournalDisk().Open(path, access);
  if (!file) return file;
  return std::make_unique<FaultyFile>(*this, std::move(*file));
}

// A journal in a folder of its own, with its head in another one.
struct JournalFixture {
  TemporaryFolder temporary;
  VirtualPacer pacer;
  JournalPlaces places{temporary.Path() / "session", temporary.Path() / "state"};
  FaultyDisk disk;
  std::unique_ptr<ChangeJournal> journal;

  JournalFixture() {
    std::filesystem::create_directories(places.folder);
    Reopen();
  }

  void Reopen() { journal = std::make_unique<ChangeJournal>(places, disk, pacer, pacer); }
  std::uint64_t Begin(const std::string& what = "write operands") {
    JournalRecord record{.kind = RecordKind::Begin, .user = "anna", .what = what};
    record.operands = {{"MI 0..1", {"1", ""}, {"2", "3"}}};
    pacer.Sleep(std::chrono::seconds(1));
    return journal->Append(record).value_or(0);
  }
  std::uint64_t End(std::uint64_t of) {
    return journal->Append({.kind = RecordKind::End, .of = of, .result = "done"}).value_or(0);
  }
  [[nodiscard]] std::filesystem::path File(unsigned segment = 1) const { return SegmentFile(places.folder, segment); }
  [[nodiscard]] std::string Bytes(unsigned segment = 1) const { return Content(File(segment)); }
  void Put(std::string_view bytes, unsigned segment = 1) const {
    std::ofstream(File(segment), std::ios::binary | std::ios::trunc) << bytes;
  }
  [[nodiscard]] static std::string Content(const std::filesystem::path& file) {
    std::ostringstream content;
    content << std::ifstream(file, std::ios::binary).rdbuf();
    return content.str();
  }
  [[nodiscard]] static std::vector<std::string> LinesOf(const std::string& bytes) {
    std::vector<std::string> lines;
    for (std::size_t from = 0, end = 0; (end = bytes.find('\n', from)) != std::string::npos; from = end + 1) {
      lines.push_back(bytes.substr(from, end + 1 - from));
    }
    return lines;
  }
  [[nodiscard]] JournalCheck Check(std::vector<JournalAnchor> anchors = {}) {
    return CheckJournal(places, SystemJournalDisk(), pacer, std::move(anchors));
  }
  // They differ from journal to journal, and so do their folders.
  // A file's name goes to the next blank; another backslash is one of a record.
  [[nodiscard]] std::string WithoutHashes(std::string text) const {
    const std::string home = std::filesystem::path(temporary.Path()).make_preferred().string();
    for (std::size_t at = 0; (at = text.find(home, at)) != std::string::npos;) {
      const std::size_t end = std::min(text.find_first_of(" \n", at), text.size());
      text.replace(at, end - at, WithoutHome(text.substr(at, end - at), temporary.Path()));
    }
    return std::regex_replace(text, std::regex("[0-9A-Fa-f]{32,}|\r|HOME"), "#");
  }
  [[nodiscard]] std::string Told(const JournalCheck& check) const {
    std::string told = VerdictText(check) + "\n";
    for (const std::string& line : CheckLines(check)) told += line + "\n";
    return WithoutHashes(told);
  }
  // "altered 3; missing 5"; empty when it is in order.
  [[nodiscard]] std::string Findings(std::vector<JournalAnchor> anchors = {}) {
    const JournalCheck check = Check(std::move(anchors));
    ExpectAsRecorded([&] { return Told(check); });
    std::string text;
    for (const auto& each : check.findings) {
      text += (text.empty() ? "" : "; ") + std::string(FaultWord(each.fault)) + " " + std::to_string(each.number);
    }
    return text;
  }
};

}  // namespace kv::test
