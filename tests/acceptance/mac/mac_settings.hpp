#pragma once

#include <string>

namespace tamo::acceptance {

/// What ./accept tells the place on a Mac.
struct MacSettings {
  /// The folder with the companion's bundle and the sample's programs.
  std::string parts;
  /// For codesign; "-" is ad hoc.
  std::string identity = "-";
  /// A real Tamo.app to be played with in place of the sample; empty for the sample.
  std::string tamoApp;
  std::string journal;
  std::string home;
  /// Why this user cannot read the log; empty when he can.
  std::string unreadable;
  bool withMe = false;

  [[nodiscard]] bool isSample() const { return tamoApp.empty(); }
  [[nodiscard]] std::string dataDirectory() const { return home + "/Library/Application Support/Tamo/"; }
  /// What the sample's Core reads and writes, and what it ends without.
  [[nodiscard]] std::string coreFolder() const { return dataDirectory() + "acceptance"; }
  /// The downloaded copy alone lies in it.
  [[nodiscard]] std::string downloads() const { return home + "/Downloads/Tamo acceptance"; }
  [[nodiscard]] std::string container() const { return home + "/Library/Containers/studio.pell.Tamo"; }
};

inline constexpr auto installedCopy = "/Applications/Tamo.app";
inline constexpr auto companionInCopy = "/Contents/Library/LoginItems/Tamo Core.app";
inline constexpr auto companionProgram =
    "/Contents/Library/LoginItems/Tamo Core.app/Contents/MacOS/Tamo Core";
/// What another user is asked to run, in a folder that every user may read.
inline constexpr auto scriptForOthers = "/Users/Shared/tamo-acceptance";
/// What a data directory has that was made here. Clearing looks for it, and for the mark of a sample.
inline constexpr auto dataMark = ".made-by-acceptance";
/// What a sample has and no other application.
inline constexpr auto sampleMark = "/Contents/Resources/acceptance-sample";
/// The attribute of a real Tamo that was put in its place here, whose signature a further file would break.
inline constexpr auto copyMark = "studio.pell.tamo.acceptance";

}  // namespace tamo::acceptance
