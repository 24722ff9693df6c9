#include "link/identification/GoOnline.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>
#include <vector>

#include "base/AnsiText.h"
#include "base/FilePlatform.h"
#include "base/Hex.h"
#include "base/Numbers.h"
#include "base/PathText.h"
#include "base/ScopeGuard.h"
#include "base/Texts.h"
#include "link/OsVersion.h"
#include "models/ModelCatalogue.h"
#include "sessions/RecentCaches.h"
#include "sessions/SessionIni.h"

namespace kv {
namespace {

constexpr std::array<BootSubstitution, 5> kBootSubstitutions{{
    {"CLR BOOT", "K670-67-C30 / K390-29-C30", true},
    {"K450-45-BOOT", "K450-45", true},
    {"K2040", "K2040", false},
    {"K2210", "K2210", false},
    {"K530-J-BOOT", "K530-J", true},
}};

constexpr std::string_view kBootRefusal = "You cannot access this PLC because it is currently in BOOTSTRAP mode.";
constexpr std::string_view kColourVersionRefusal =
    "Telepanel is supported by controller Operating Systems (O/S) 1.0(19) and higher. "
    "The O/S currently installed in this controller does not support Telepanel. ";
constexpr std::string_view kPlainVersionRefusal =
    "Telepanel is supported by controller Operating Systems (O/S) 2.91 and higher. "
    "The O/S currently installed in this controller does not support Telepanel. ";
constexpr std::string_view kProjectRefusal =
    "The Telepanel file does not match the project currently installed in the controller.";

// Who to ask is a matter of the installation: the host's ini may name another address.
constexpr std::string_view kSupportAddressKey = "SupportAddress";
constexpr std::string_view kSupportAddress = "support@korvantis.example";

constexpr int kInfoByteUnknown = -1;
constexpr std::size_t kInfoByteIndex = 26;
constexpr std::string_view kSystemRead = "DRS000020";
constexpr std::string_view kCommandOwner = "Korvantis";
constexpr int kRecordOfConnection = 1;

bool IsBrioText(const std::string& model) {
  return UpperCased(model.substr(0, 2)) == "BR";
}

// One run of the sequence: what it works on and what it has found out.
class OnlineSequence {
 public:
  OnlineSequence(SharedState& shared, Prompts& prompts)
      : mShared(shared), mPrompts(prompts), mHost(*shared.Remote), mDriver(*shared.ComDriver) {}

  void Run() {
    if (!mHost.IsOnline() && !BringOnline()) return;
    mHost.RunPanelSession(ReadHostIni(mShared, "Caption", "0"));
  }

 private:
  bool BringOnline() {
    if (!TakeChannel() || !Identify()) return false;
    TellUnit();
    TellBrio();
    if (RefuseBootMode()) return false;
    SubstituteBootModel();
    mHost.AttachChannel(mChannel);
    if (!AcceptCompact() && !AcceptAurex()) return false;
    if (RefuseOtherProject()) return false;
    mHost.GoOnline();
    PreparePanelData();
    return true;
  }

  bool TakeChannel() {
    mHost.SetHourglass(true);
    ScopeGuard normalPointer([this] { mHost.SetHourglass(false); });
    mHost.BeginConnect();
    ScopeGuard connected([this] { mHost.EndConnect(); });
    mChannel = mDriver.GetChannel();
    return mChannel != nullptr;
  }

  bool Identify() {
    mUnit = mChannel->UnitID();
    const auto version = mChannel->GetVersionInfo(mUnit);
    if (!version) return false;
    mVersion = *version;
    mReported = *version;
    mVersion.model = AnsiToUtf8(version->model);
    return true;
  }

  void TellUnit() {
    mHost.SetConnectedUnit(mUnit);
    mChannel->SetRecordFile(Utf8FromPath(SessionFile(mShared, "CommDriver.txt")), kRecordOfConnection);
  }

  void TellBrio() {
    mHost.SetControllerModelText("");
    if (!IsBrioText(mVersion.model)) return;
    mHost.SetModel("BRIO");
    mHost.SetControllerModelText(mVersion.model);
  }

  bool RefuseBootMode() {
    if (mVersion.model != "BOOT" && mVersion.model != "FACTORY BOOT") return false;
    Refuse(std::string(kBootRefusal));
    return true;
  }

  void SubstituteBootModel() {
    const auto substitution = FindBootSubstitution(mVersion.model);
    if (!substitution) return;
    mVersion.model = substitution->usedAs;
    mBootSubstitute = substitution->isBootSubstitute;
  }

  // Compact controllers and the BRIO have no O/S limit; true when the host is set to one of them.
  bool AcceptCompact() {
    const std::string hostModel = mHost.Model();
    if (!IsCompactModel(hostModel) && !IsBrioModel(hostModel)) return false;
    ReadSystemBytes();
    mHost.SetCompactIdentification(IsCompactIdentification(mVersion.model));
    if (mVersion.model.starts_with("BR")) mHost.SetControllerModelText(mVersion.model);
    return true;
  }

  bool AcceptAurex() {
    if (mVersion.model.starts_with("Q5")) return true;
    if (RefuseOldVersion()) return false;
    mHost.SetModel(mVersion.model);
    if (const auto kept = SetLastModel(mShared, mVersion.model); !kept) mHost.StatusMessage(kept.error());
    return true;
  }

  void ReadSystemBytes() {
    mHost.SetControllerInfoByte(kInfoByteUnknown);
    mChannel->SetCommandOwner(kCommandOwner);
    mHost.SetControllerInfoByte(PanelInformation());
  }

  int PanelInformation() {
    const auto reply = mChannel->SendCommand(kSystemRead);
    if (!reply || reply->IsError()) return kInfoByteUnknown;
    const auto bytes = HexStringToBytes(reply->Data());
    return bytes && bytes->size() > kInfoByteIndex ? (*bytes)[kInfoByteIndex] : kInfoByteUnknown;
  }

  bool RefuseOldVersion() {
    if (IsColourModel(mVersion.model) || IsK230Model(mVersion.model)) {
      return RefuseVersionBelow(kLeastColourVersion, ColourVersionNumber(mVersion), kColourVersionRefusal);
    }
    return RefuseVersionBelow(kLeastPlainVersion, PlainVersionNumber(mVersion), kPlainVersionRefusal);
  }

  bool RefuseVersionBelow(std::int64_t least, std::int64_t version, std::string_view text) {
    if (version >= least) return false;
    const std::string address = ReadHostIni(mShared, kSupportAddressKey, kSupportAddress);
    Refuse(std::string(text) + "\r\nFor more information, contact your supplier or " + address + ".");
    return true;
  }

  bool RefuseOtherProject() {
    if (mHost.ProjectMatches()) return false;
    Refuse(std::string(kProjectRefusal));
    return true;
  }

  // A colour panel draws from a file: an empty one when the controller was found in its boot loader, else a working
  // copy of the most recent cache that fits it.
  void PreparePanelData() {
    if (!IsColourModel(mVersion.model)) return;
    std::vector<std::string> recent = ReadRecentCaches(mShared);
    for (std::string& entry : recent) entry = CachePath(entry);
    if (mBootSubstitute) {
      const auto target = SessionFile(mShared, "DOS_TEMP");
      std::error_code ignored;
      std::filesystem::remove(target, ignored);
      HandOverCopy(PathFromUtf8(mHost.InstallFolder()) / "TP_Temp" / "TP_Temp_1", target);
    } else if (!recent.empty()) {
      HandOverCopy(PathFromUtf8(mHost.ChooseColourCache(recent, mReported.model)),
                   SessionFile(mShared, "APP_TEMP.ktc"));
    }
  }

  void HandOverCopy(const std::filesystem::path& source, const std::filesystem::path& copy) {
    std::error_code error = CopyOver(source, copy);
    if (!error) {
      // The host writes into it, and the file that was copied may be read-only.
      std::filesystem::permissions(copy, std::filesystem::perms::owner_write, std::filesystem::perm_options::add,
                                   error);
      return mHost.SetPanelData(Utf8FromPath(copy), Utf8FromPath(source));
    }
    mHost.StatusMessage("The panel data could not be prepared: " + Utf8FromPath(source) + " could not be copied (" +
                        SystemMessage(error) + ").");
  }

  void Refuse(const std::string& text) {
    mHost.ConnectionRefused(text, {mReported, mChannel->GetControllerInfo(mUnit)});
    mPrompts.Show({.text = text, .title = "Telepanel", .icon = PromptIcon::Exclamation});
  }

  SharedState& mShared;
  Prompts& mPrompts;
  RemoteHost& mHost;
  CommDriver& mDriver;
  std::shared_ptr<Channel> mChannel;
  std::uint8_t mUnit = 0;
  VersionInfo mReported;
  VersionInfo mVersion;  // the same, its model in UTF-8 and a boot text replaced by the model that it stands for
  bool mBootSubstitute = false;
};

}  // namespace

void GoOnline(SharedState& shared, Prompts& prompts) {
  OnlineSequence(shared, prompts).Run();
}

std::optional<BootSubstitution> FindBootSubstitution(std::string_view reportedModel) {
  const auto row = std::ranges::find(kBootSubstitutions, reportedModel, &BootSubstitution::reported);
  if (row == kBootSubstitutions.end()) return std::nullopt;
  return *row;
}

std::int64_t ColourVersionNumber(const VersionInfo& version) {
  const auto os = ParseColourOsVersion(version.osVersion);
  if (!os) return 0;
  std::string build = version.osBuild;
  std::erase(build, ';');
  if (build.size() > 2) build.erase(0, build.size() - 2);
  std::erase(build, ' ');
  const auto number = ParseInteger(build);
  return number && *number >= 0 ? os->Number() * 100 + *number : 0;
}

std::int64_t PlainVersionNumber(const VersionInfo& version) {
  return ParsePlainOsVersion(version.osVersion).value_or(0);
}

}  // namespace kv
