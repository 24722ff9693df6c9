#include "host/ErrorReport.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <string_view>

#include "base/AnsiText.h"
#include "base/DateText.h"
#include "base/LineReader.h"
#include "base/ProgramVersion.h"
#include "base/Texts.h"
#include "sessions/SessionIni.h"

namespace kv {
namespace {

constexpr std::array kSettings{"KvTeleExe.ini", "KvTele2.ini", "KvCmDrv1.ini"};
constexpr std::size_t kMostSettings = 65536;  // bytes of one file

// Parts of the names of keys whose values are nobody's business.
constexpr std::array<std::string_view, 6> kPrivate{"PASSWORD", "USERNAME", "MODEMNUMBER", "MODEMINIT", "SECRET", "PIN"};

std::string WithoutPrivate(std::string_view line) {
  const std::size_t end = line.find('=');
  const std::string key = UpperCased(line.substr(0, end));
  const bool isPrivate = std::ranges::any_of(kPrivate, [&](std::string_view part) { return key.contains(part); });
  if (end == std::string_view::npos || !isPrivate) return std::string(line);
  const bool isEmpty = TrimBlanks(line.substr(end + 1)).empty();
  return std::string(line.substr(0, end + 1)) + (isEmpty ? "" : "(left out)");
}

// A comment is nothing that the program works with, and somebody may have noted anything in it.
std::string SettingsText(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::string content(kMostSettings, '\0');
  in.read(content.data(), static_cast<std::streamsize>(content.size()));
  content.resize(static_cast<std::size_t>(in.gcount()));
  std::string text;
  LineReader lines(content);
  while (lines.Next()) {
    const std::string_view line = TrimBlanks(lines.Line());
    if (!line.empty() && !line.starts_with(';')) text += "  " + AnsiToUtf8(WithoutPrivate(line)) + "\n";
  }
  return text;
}

}  // namespace

std::string LibraryText(const LibraryNotice& library) {
  return std::string(library.name) + " " + library.version + " (" + std::string(library.licence) + ")";
}

std::string ErrorReport(const SharedState& shared, const WallClock& clock, const ReportedProgram& program) {
  const auto now = clock.LocalTime();
  std::string text = "Telepanel error report\n" + program.name + " " + ProgramVersion() + ", " + DateText(now) + " " +
                     TimeOfDayText(now) + "\n\nSystem\n";
  for (const std::string& line : program.system) text += "  " + line + "\n";
  text += "\nLibraries\n";
  for (const LibraryNotice& library : program.libraries) text += "  " + LibraryText(library) + "\n";
  text += "\nSession " + shared.CurrentSession + "\n";
  for (const char* name : kSettings) {
    if (const std::string settings = SettingsText(SessionFile(shared, name)); !settings.empty()) {
      text += " " + std::string(name) + "\n" + settings;
    }
  }
  const std::string frames = shared.ComDriver ? shared.ComDriver->RecentFrames() : "";
  return text + "\nLast frames of the link\n" + (frames.empty() ? "  (none)\n" : frames);
}

}  // namespace kv
