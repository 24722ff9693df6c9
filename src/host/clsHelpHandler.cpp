#include "host/clsHelpHandler.h"

#include "base/PathText.h"
#include "help/HelpTopics.h"
#include "host/PlatformHelp.h"

namespace kv {

std::string clsHelpHandler::CadinzaHelpFileName() const {
  return kHelpFile;
}

std::string clsHelpHandler::TPHelpFilePathAndName() const {
  return TPHelpFilePath() + CadinzaHelpFileName();
}

std::string clsHelpHandler::TPHelpFilePath() const {
  return Utf8FromPath(mPaths.Help() / "");
}

void clsHelpHandler::ShowHTMLHelpByMapNumber(std::int32_t mapNumber) {
  if (!ShowPlatformHelp(PathFromUtf8(TPHelpFilePathAndName()), mapNumber)) mViewer.ShowTopic(mapNumber);
}

}  // namespace kv
