#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

// One topic of the help. The table of them is the only place where a map number stands: code and tests read it here,
// and the build of the help reads the same lines.
struct HelpTopic {
  std::int32_t number;      // its map number; never given to another topic, also when it has gone
  int level;                // in the contents: 0 a chapter, 1 a page of the chapter before
  std::string_view page;    // docs/help/PAGE.md, and PAGE.html in the help
  std::string_view places;  // object names of the windows and controls whose page it is, with blanks between
};

// In the order of the contents. The first is what the help begins with.
[[nodiscard]] std::span<const HelpTopic> HelpTopics();

// The topic with this map number, or with this page ("cloner"); null when there is none.
[[nodiscard]] const HelpTopic* FindHelpTopic(std::int32_t number);
[[nodiscard]] const HelpTopic* FindHelpTopic(std::string_view page);

// The topic that is nearest to a control: `names` are the object names of it and of what it stands in, the window last.
// Null when none of them has a topic. Controls of one name in several windows stand in the table as "WINDOW/CONTROL".
[[nodiscard]] const HelpTopic* HelpTopicAt(std::span<const std::string> names);

// The topic of an error message: of the first family one of whose phrases stands in it; null when it is of none.
[[nodiscard]] const HelpTopic* HelpTopicOfError(std::string_view message);

// What the error messages of a topic say: the phrases by which they are known.
[[nodiscard]] std::vector<std::string_view> ErrorPhrasesOf(const HelpTopic& topic);

// In the folder of the help: the compiled file, and the same pages as they are.
inline constexpr const char* kHelpFile = "KvTeleExe.chm";
inline constexpr const char* kHelpPages = "pages";
// What a page is called in both, behind its name.
inline constexpr std::string_view kHelpPageEnding = ".html";

}  // namespace kv
