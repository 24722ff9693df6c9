#include "help/HelpSynonyms.h"

#include <array>

namespace kv {
namespace {

constexpr auto kGroups = std::to_array<std::string_view>({
    "plc controller cpu device machine equipment",
    "firmware os runtime",
    "backup clone image snapshot copy",
    "restore recover revert rollback",
    "tag variable operand register datapoint symbol",
    "setpoint parameter recipe value",
    "program project application ladder logic",
    "flash download transfer burn install upload",
    "journal audit history trail",
    "alter change modify overwrite adjust edit",
    "tamper manipulate forge falsify",
    "who user account operator",
    "cable wire line link connection",
    "drop lose lost break interrupt cut",
    "node slave unit",
    "telegram frame packet message traffic",
    "simulate demo practise practice virtual emulate pretend train",
    "live real online monitor watch",
    "spreadsheet excel sheet table csv office",
    "broken dead defect burnt faulty replace spare swap die",
    "respond answer reply silent timeout mute",
    "reject refuse deny decline",
    "occupy busy",
    "erase lose wipe clear retentive retain remanent",
    "schedule night automatic batch cron unattended script",
    "phone dial modem gsm call",
    "shift login user",
    "permission right access allow",
    "version release build",
    "manufacturer vendor maker support supplier",
    "forget forgot forgotten",
    "password pin code passcode",
    "serial com rs232 rs485 usb",
    "network ethernet tcp ip lan",
    "address node",
    "session site plant customer job",
    "settings setup configuration configure",
    "type kind",
    "wrong other another mismatch different",
    "binary hex decimal float",
    "picture screen display panel",
    "undo back revert",
    "special umlaut symbol character",
    "list table",
    "compare verify identical same check difference",
    "file folder",
    "trace record capture sniff",
    "print paper",
    "button key shortcut keyboard",
    "start run resume",
    "stop halt",
    "old outdated",
    "update upgrade",
    "power voltage outage",
});

}  // namespace

std::span<const std::string_view> SynonymGroups() {
  return kGroups;
}

}  // namespace kv
