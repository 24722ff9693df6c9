#include "apps/kvtele/Verb.h"
#include "apps/kvtele/VerbClone.h"
#include "apps/kvtele/VerbIdentify.h"
#include "apps/kvtele/VerbOnline.h"
#include "apps/kvtele/VerbPorts.h"
#include "apps/kvtele/VerbProgram.h"
#include "apps/kvtele/VerbRead.h"
#include "apps/kvtele/VerbRegions.h"
#include "apps/kvtele/VerbSessions.h"
#include "apps/kvtele/VerbWatch.h"
#include "apps/kvtele/VerbWrite.h"

namespace kv::cli {

std::vector<std::unique_ptr<Verb>> MakeVerbs() {
  std::vector<std::unique_ptr<Verb>> verbs;
  verbs.push_back(std::make_unique<VerbIdentify>());
  verbs.push_back(std::make_unique<VerbOnline>());
  verbs.push_back(std::make_unique<VerbRead>());
  verbs.push_back(std::make_unique<VerbWrite>());
  verbs.push_back(std::make_unique<VerbRegions>());
  verbs.push_back(std::make_unique<VerbWatch>());
  verbs.push_back(std::make_unique<VerbClone>());
  verbs.push_back(std::make_unique<VerbProgram>(true));
  verbs.push_back(std::make_unique<VerbProgram>(false));
  verbs.push_back(std::make_unique<VerbSessions>());
  verbs.push_back(std::make_unique<VerbPorts>());
  return verbs;
}

}  // namespace kv::cli
