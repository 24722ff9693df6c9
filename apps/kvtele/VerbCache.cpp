#include <CLI/Option.hpp>
#include <CLI/Validators.hpp>
#include <string>
#include <vector>

#include "apps/kvtele/CacheActions.h"
#include "apps/kvtele/Verb.h"
#include "base/PathText.h"

namespace kv::cli {

namespace {

// Brings a controller's fonts and images into a cache file, and looks into such files: what the import wizard does.
class VerbCache : public Verb {
 public:
  [[nodiscard]] const char* Name() const override { return "cache"; }
  [[nodiscard]] const char* Summary() const override {
    return "Import the fonts and images of a colour controller into a file; look into such files";
  }
  [[nodiscard]] const char* Examples() const override;
  void Declare(CLI::App& app) override;
  [[nodiscard]] VerbResult Run(Environment& environment, const CommonOptions& common) override;

 private:
  [[nodiscard]] OrFailure<void> CheckArguments() const;

  std::string mAction;
  std::vector<std::string> mFiles;  // UTF-8 paths
  CacheOrder mOrder;
};

const char* VerbCache::Examples() const {
  return "  kvtele --link sim:K670 --yes cache import plant.ktc     read what the file does not have yet\n"
         "  kvtele cache info plant.ktc                             whose it is, and what it holds\n"
         "  kvtele --link sim:K670 cache diff plant.ktc             whether it is still as the controller\n"
         "  kvtele cache diff monday.ktc friday.ktc\n"
         "  kvtele --link tcp:192.168.1.20 cache import plant.ktc --all --only images\n";
}

void VerbCache::Declare(CLI::App& app) {
  app.add_option("ACTION", mAction, "import, info or diff")
      ->required()
      ->type_name("")
      ->check(CLI::IsMember({"import", "info", "diff"}));
  app.add_option("FILE", mFiles, "The cache file; for diff one or two: one is compared with the controller")
      ->required()
      ->expected(1, 2)
      ->type_name("");
  app.add_flag("--all", mOrder.readsAll, "import: read everything anew, also what the file holds already");
  app.add_option("--only", mOrder.only, "import: fonts or images; the other part of the file stays as it is")
      ->check(CLI::IsMember({"fonts", "images"}))
      ->type_name("PART");
  app.add_flag("--replace", mOrder.replace,
               "import: another controller's cache or another file may be replaced, a damaged cache repaired");
}

OrFailure<void> VerbCache::CheckArguments() const {
  if (mFiles.size() > 1 && mAction != "diff") {
    return std::unexpected(UsageFailure("a second file can be given with diff only"));
  }
  if (mAction != "import" && (mOrder.readsAll || mOrder.replace || !mOrder.only.empty())) {
    return std::unexpected(UsageFailure("--all, --only and --replace can be given with import only"));
  }
  return {};
}

VerbResult VerbCache::Run(Environment& environment, const CommonOptions& common) {
  if (const auto fit = CheckArguments(); !fit) return std::unexpected(fit.error());
  const std::filesystem::path file = PathFromUtf8(mFiles.front());
  if (mAction == "import") return ImportCache(environment, common, file, mOrder);
  if (mAction == "info") return ReportCache(file);
  if (mFiles.size() > 1) return CompareCaches(file, PathFromUtf8(mFiles.back()));
  return CompareCacheWithController(environment, common, file);
}

}  // namespace

std::unique_ptr<Verb> MakeVerbCache() {
  return std::make_unique<VerbCache>();
}

}  // namespace kv::cli
