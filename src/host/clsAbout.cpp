#include "host/clsAbout.h"

namespace kv {

void clsAbout::InitAboutScreen() {
  const std::string version = "Version " + VersionSettings;
  mScreen = mIsDistributor ? AboutScreen{"About RBK", version, 10485, 7260, true}
                           : AboutScreen{"About Telepanel", version, 5505, 6060, false};
}

}  // namespace kv
