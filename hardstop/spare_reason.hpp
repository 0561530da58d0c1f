#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "hardstop/process_snapshot.hpp"

/// When a Core that outlived its grace period is left alone all the same.
namespace tamo::HardStop {

/// Names of marker files in the data directory, in the order in which they are looked for. Any of them stands
/// for a revert of the Core's database that is pending or partly done, which a kill could spoil.
inline constexpr std::array<std::string_view, 3> revertFiles{
    "core.db.revert.pending",
    "core.db.revert.partial",
    "core.db.revert.partial.json",
};

struct SpareFacts {
  /// CFBundleVersion of the installed application that this program belongs to; absent when it cannot be
  /// told.
  std::optional<std::string> build = std::nullopt;
  /// The first look at the Core.
  Seen watched = {};
  /// This program's own start time, of the same origin as `watched.startMicros`; absent when it cannot be
  /// told.
  std::optional<std::uint64_t> helperStartMicros = std::nullopt;
  /// Whether any of the revert files is there.
  bool revertFilesPresent = false;
};

/// One of "revert_release" (a build with a dot in it), "revert_restoring" (a revert file is there) and
/// "young_core" (the Core was started after this program); the first that holds, in this order. Absent means
/// that nothing speaks for sparing the Core.
[[nodiscard]] std::optional<std::string> spareReason(const SpareFacts& facts);

}  // namespace tamo::HardStop
