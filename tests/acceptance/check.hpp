#pragma once

#include <string>
#include <string_view>
#include <vector>

/// The checks themselves: what each is called, what must be seen, and how it is played. They are the same at
/// every place.
namespace tamo::acceptance {

class Scene;

/// What lies there when a check begins.
enum class Setting {
  /// The installed copy; its agent is not registered.
  Installed,
  /// The same, with the agent registered and the Core running.
  Registered,
  /// A copy of build 5000 in Downloads, without the mark of a download, and nothing installed.
  Downloaded,
};

struct Check {
  /// In small letters with hyphens; a heading of the page that explains the report.
  std::string_view name;
  /// What must be seen, as one sentence for people.
  std::string_view sees;
  Setting setting = Setting::Registered;
  void (*play)(Scene&) = nullptr;
  /// Needs the sample's own Core, which misbehaves on demand.
  bool needsSampleCore = false;
  /// What a person has to do on a Mac; empty when nobody is needed.
  std::string_view person{};
};

/// Checks of one theme, in the order in which they are played.
struct Theme {
  std::string_view name;
  std::vector<Check> checks;
};

[[nodiscard]] const std::vector<Theme>& allThemes();
/// Null when no check has the name.
[[nodiscard]] const Check* checkNamed(std::string_view name);

[[nodiscard]] Theme actionChecks();
[[nodiscard]] Theme sequenceChecks();
[[nodiscard]] Theme hardStopChecks();
[[nodiscard]] Theme spareChecks();
[[nodiscard]] Theme reseatChecks();
[[nodiscard]] Theme definitionChecks();
[[nodiscard]] Theme urlChecks();
[[nodiscard]] Theme copyChecks();
[[nodiscard]] Theme crowdChecks();
[[nodiscard]] Theme lockChecks();
[[nodiscard]] Theme printChecks();
[[nodiscard]] Theme privacyChecks();
[[nodiscard]] Theme moveChecks();
[[nodiscard]] Theme systemChecks();

}  // namespace tamo::acceptance
