#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "KvTele2/cache/CacheFile.h"

namespace kv::cache {

// What a cache file looks like as a database; docs/file-formats.md says the same for others.

inline constexpr std::uint32_t kApplicationId = 0x4B544331;  // "KTC1"
inline constexpr std::uint32_t kFormatVersion = 1;

// Each table stands in the file with exactly this text, and nothing else does.
struct CacheTable {
  std::string_view name;
  std::string_view sql;
};
// clang-format off
inline constexpr std::array kCacheTables = {
    CacheTable{"controller",
               "CREATE TABLE controller (model TEXT, hardware_code TEXT, os_version TEXT, os_build TEXT, "
               "serial_number INTEGER, project TEXT, saved_at TEXT, seal INTEGER)"},
    CacheTable{"part",
               "CREATE TABLE part (kind INTEGER PRIMARY KEY, count INTEGER)"},
    CacheTable{"resource",
               "CREATE TABLE resource (number INTEGER PRIMARY KEY, kind INTEGER, place INTEGER, id INTEGER, "
               "name TEXT, length INTEGER, crc32 INTEGER, read_at TEXT, bytes BLOB)"},
};
// clang-format on

inline constexpr std::array kCacheKinds = {PanelResourceKind::Font, PanelResourceKind::Image};

inline constexpr std::size_t kMostResources = 65535;     // of a kind: the controller's directory counts in 16 bits
inline constexpr std::size_t kLongestResourceName = 32;  // characters of Windows-1252
inline constexpr int kLongestCacheText = 4096;           // bytes of any text, and of a text of the schema

// CRC-32 over all that a file holds but the bytes of its resources, each of which has a CRC-32 of its own in here.
// `content` has an owner.
[[nodiscard]] std::uint32_t SealOf(const CacheContent& content);

}  // namespace kv::cache
