#pragma once

#include <optional>
#include <string_view>

namespace tamo {

/// What is fixed when the program is built: no file, environment variable or argument changes it. The
/// defaults are the shipped build; a test build holds other values (see the companion's targets in the build
/// files). Copied freely.
struct TamoCoreConfig {
  /// The launchd label of the Core agent, whose property list is named after it.
  std::string_view label = "studio.pell.tamo.core";
  /// The bundle identifier of the Core, which is also the logging subsystem.
  std::string_view coreBundleID = "studio.pell.Tamo.Core";
  /// The scheme of the URLs that carry an action; compared with case.
  std::string_view urlScheme = "tamo-core";
  /// Whether an action leaves a receipt file; the move and a refused action never do. Nothing else depends on
  /// it.
  bool writesReceipts = false;
  /// A substitute home for test builds: it replaces the user's home in dataDirectory() and switches off the
  /// refusal of copies that may not open the live data. Nothing else; receipts and the guard keep the real
  /// home.
  std::optional<std::string_view> proofHome = std::nullopt;
};

}  // namespace tamo
