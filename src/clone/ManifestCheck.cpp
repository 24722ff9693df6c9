#include "clone/ManifestCheck.h"

#include <algorithm>

#include "base/AnsiText.h"
#include "base/PathText.h"
#include "clone/CloneImage.h"
#include "digest/Sha256.h"

namespace kv {
namespace {

std::expected<std::string, CloneOutcome> DigestOfSegment(CloneImage& image, std::size_t index, const CloneWork& work) {
  constexpr std::uint32_t kPiece = 4096;
  const CloneSegment& segment = image.Info().segments[index].segment;
  Sha256 digest;
  image.Begin(index);
  for (std::uint32_t offset = 0; offset < segment.length; offset += kPiece) {
    if (work.IsStopped()) return std::unexpected(CloneOutcome::OfStop());
    const auto bytes = image.Read(std::min(kPiece, segment.length - offset));
    if (!bytes) return std::unexpected(bytes.error());
    digest.Add(*bytes);
  }
  return digest.Hex();
}

bool IsSamePlace(const CloneSegment& left, const CloneSegment& right) {
  return left.code == right.code && left.start == right.start && left.length == right.length;
}

bool IsSameSegment(const CloneInfoSegment& inFile, const CloneManifest::Segment& recorded) {
  return IsSamePlace(inFile.segment, recorded.segment) &&
         (!inFile.hasFrames || inFile.segment.kind == recorded.segment.kind);
}

// What the manifest names differently from the file, although the file is byte for byte the recorded one; empty when
// nothing, as far as the file tells it.
std::string OtherFact(const CloneInfo& info, const CloneManifest& manifest) {
  if (!info.head) return "";
  if (info.head->version != manifest.version) return "another model or O/S";
  if (info.unit && *info.unit != manifest.unit) return "another unit";
  if (!std::ranges::equal(info.segments, manifest.segments, IsSameSegment)) return "other segments";
  return "";
}

std::string ChangedText(const std::filesystem::path& file, const std::string& otherFact) {
  return "The manifest (" + Utf8FromPath(ManifestPath(file).filename()) + ") does not fit the file: it names " +
         otherFact + " than the file. The file is as recorded, so the manifest was changed after it was made.";
}

// Which of the recorded segments the file does not hold as recorded; nothing when that cannot be told.
std::optional<std::string> OtherSegments(const std::filesystem::path& file, const CloneManifest& manifest,
                                         const CloneWork& work) {
  auto image = CloneImage::Open(file, work);
  if (!image) return std::nullopt;
  const auto& segments = image->Info().segments;
  if (segments.size() != manifest.segments.size()) return std::nullopt;
  std::string others;
  for (std::size_t i = 0; i < segments.size(); ++i) {
    const CloneManifest::Segment& recorded = manifest.segments[i];
    const CloneSegment& segment = segments[i].segment;
    const auto digest = DigestOfSegment(*image, i, work);
    if (!IsSamePlace(segment, recorded.segment) || !digest) return std::nullopt;
    if (*digest != recorded.sha256) others += (others.empty() ? "" : ", ") + AnsiToUtf8(segment.code);
  }
  return others;
}

std::string OtherText(const std::filesystem::path& file, const CloneManifest& manifest, const CloneWork& work) {
  const std::string name = Utf8FromPath(ManifestPath(file).filename());
  std::string text = "The manifest (" + name +
                     ") does not fit the file: the file was changed after it was made, or the manifest belongs to an "
                     "earlier file of this name.";
  const auto others = OtherSegments(file, manifest, work);
  if (!others) return text;
  if (others->empty()) return text + " The memory in the file is as recorded; head or line ends are not.";
  return text + " Segments whose bytes are not as recorded: " + *others + ".";
}

std::string FitText(const CloneManifest& manifest) {
  std::string text = "By its manifest the file is, byte for byte, as it was made";
  if (manifest.serialNumber)
    text += " from the controller with serial number " + std::to_string(*manifest.serialNumber);
  text += manifest.wasRunning ? ", while the program ran: values that it changed meanwhile may not belong together."
                              : ", while the program was stopped.";
  return text;
}

}  // namespace

ManifestReport CheckManifest(const std::filesystem::path& file, const CloneInfo& info, const CloneWork& work) {
  auto manifest = ReadManifest(file);
  if (!manifest) {
    return {
        ManifestFit::Unreadable, "The manifest beside the file cannot be used: " + manifest.error().Text() + ".", {}};
  }
  if (!*manifest) {
    return {ManifestFit::Missing,
            "There is no manifest beside the file, so a line of flash that was lost does not show.",
            {}};
  }
  const bool fits = info.sha256 == (*manifest)->sha256 && info.length == (*manifest)->length;
  if (!fits) return {ManifestFit::Other, OtherText(file, **manifest, work), {}};
  if (const std::string otherFact = OtherFact(info, **manifest); !otherFact.empty()) {
    return {ManifestFit::Other, ChangedText(file, otherFact), {}};
  }
  std::string text = FitText(**manifest);
  return {ManifestFit::Fits, std::move(text), *std::move(manifest)};
}

std::string WholenessText(const CloneInfo& info, const ManifestReport& report) {
  if (!info.IsSound()) return "The file is damaged.";
  if (report.fit == ManifestFit::Fits) return report.text;
  return "All lines of the file are good and its end is there. " + report.text;
}

}  // namespace kv
