#pragma once

#include "link/PanelLink.h"

namespace kv {

class ChannelImpl;

// The panel over the channel's exchanges: text commands for controllers of the compact family, block messages for all
// others.
class PanelLinkImpl final : public PanelLink {
 public:
  explicit PanelLinkImpl(ChannelImpl& channel) : mChannel(channel) {}

  [[nodiscard]] std::optional<PanelDescription> Describe(std::uint8_t unit) override;
  [[nodiscard]] std::optional<PanelChanges> Changes(const PanelChangesRequest& request, std::uint8_t unit) override;
  [[nodiscard]] std::optional<PanelChanges> Send(const PanelEvent& event, std::uint8_t unit) override;
  [[nodiscard]] std::optional<PanelDirectory> Directory(PanelResourceKind kind, std::uint8_t unit) override;
  [[nodiscard]] std::optional<Bytes> ReadPiece(PanelResourceKind kind, std::uint16_t id, std::uint32_t offset,
                                               std::uint32_t length, std::uint8_t unit) override;
  [[nodiscard]] std::optional<PanelLinkCost> Cost(std::uint8_t unit) override;
  [[nodiscard]] unsigned Connection() const override;
  [[nodiscard]] const LinkError& LastError() const override;

 private:
  struct Piece {
    PanelResourceKind kind;
    std::uint16_t id;
    std::uint32_t offset;
    std::uint32_t length;
  };
  [[nodiscard]] std::optional<std::string> AskPiece(const Piece& piece, std::uint8_t unit, Instant notAfter);

  ChannelImpl& mChannel;
};

}  // namespace kv
