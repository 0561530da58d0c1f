#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/posix/descriptor.hpp"

/// A stage is a directory that stands for a Mac's root. Everything on it has two paths: the stage path, which
/// the played Mac sees ("/Applications/Tamo.app"), and the host path, which the kernel of this machine sees.
/// The two meet here and nowhere else.
///
/// Beside the played Mac lies the control room, ".stage", with what the stage itself needs: its settings, its
/// sockets and its logs. The product never sees it.
namespace tamo::stage {

class StageRoot {
 public:
  /// The stage that the environment names in TAMO_STAGE. Stops the process (fatal) when it names none.
  static StageRoot fromEnvironment();

  /// `directory` is an existing host directory; it is kept in its canonical form.
  explicit StageRoot(const std::string& directory);

  [[nodiscard]] const std::string& directory() const { return directory_; }

  /// The host path of a stage path, as text: no link is followed, so it suits what does not exist yet.
  [[nodiscard]] std::string host(std::string_view stagePath) const;

  /// The stage path of a host path, as text; absent when the host path does not lie below the stage.
  [[nodiscard]] std::optional<std::string> onStage(std::string_view hostPath) const;

  /// The host path of the existing item that a stage path leads to. Links are followed as the played Mac's
  /// kernel would, an absolute link and any ".." staying inside the stage (the kernel sees to that: openat2
  /// with RESOLVE_IN_ROOT). Absent when the path leads to nothing.
  [[nodiscard]] std::optional<std::string> existing(std::string_view stagePath) const;

  /// The bytes of the regular file that a stage path leads to, links followed as by existing(). Absent when there is
  /// none, or it cannot be read.
  [[nodiscard]] std::optional<std::string> readWhole(std::string_view stagePath) const;

  /// The host path at which the last component of a stage path is to be made or replaced: its folder resolved
  /// as by existing(), the last component as it stands, so a link there is the item itself. Absent without
  /// such a folder.
  [[nodiscard]] std::optional<std::string> entry(std::string_view stagePath) const;

  /// The host path of an item of the control room.
  [[nodiscard]] std::string control(std::string_view name) const;

  /// One setting, a small text file of that name in the control room's "settings", without the line break at
  /// its end; absent when it is not set. Read afresh at each call, so a running stage can be changed from
  /// outside.
  [[nodiscard]] std::optional<std::string> setting(std::string_view name) const;
  [[nodiscard]] std::string setting(std::string_view name, std::string_view otherwise) const;

  /// Sets or, with an absent value, clears a setting. Replaced as a whole: a reader never sees a part.
  void set(std::string_view name, std::optional<std::string_view> value) const;

  /// Where the home is unless the setting says otherwise.
  static constexpr const char* usualHome = "/Users/tamo";
  /// The stage's user: the id that launchd's domain carries and the home as a stage path.
  [[nodiscard]] std::uint32_t userID() const;
  [[nodiscard]] std::string home() const;

 private:
  explicit StageRoot(platform::Descriptor opened);
  [[nodiscard]] std::optional<std::string> resolved(std::string_view path, std::uint64_t flags) const;

  /// The directory itself, once for all copies: what a stage path leads to is looked up from it.
  std::shared_ptr<const platform::Descriptor> opened_;
  std::string directory_;
};

}  // namespace tamo::stage
