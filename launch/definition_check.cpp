#include "launch/definition_check.hpp"

#include <cstddef>
#include <optional>

#include "launch/launch_job.hpp"
#include "values/paths.hpp"

namespace tamo {
namespace {

using Side = std::optional<LaunchJob::Definition>;

/// Read from the file each time, because an update may have put another bundle in the place of this one.
Side bundledDefinition(const platform::FileReader& files, const std::string& path) {
  const auto bytes = files.readWhole(path);
  return bytes ? LaunchJob::bundled(*bytes) : std::nullopt;
}

/// Only a print that succeeded is read: what launchctl prints beside a failure describes no job.
Side loadedDefinition(const std::optional<PrintResult>& print) {
  if (!print || print->code != 0 || !print->text) return std::nullopt;
  return LaunchJob::loaded(withoutQuotedBlocks(*print->text));
}

/// A definition that was read has one argument at least.
std::string shownArguments(const Side& side) {
  if (!side) return "unknown";
  std::string shown = side->arguments.front();
  for (std::size_t index = 1; index < side->arguments.size(); ++index)
    shown.append(" ").append(side->arguments[index]);
  return shown;
}

std::string shownTimeout(const Side& side) {
  return side && side->exitTimeout ? std::to_string(*side->exitTimeout) : "-";
}

}  // namespace

/// Both sides are logged whatever comes of it: a reseat that did not come is asked about as often as one that
/// did.
bool DefinitionCheck::definitionChanged() {
  const auto relative = "Contents/Library/LaunchAgents/" + needs_.label + ".plist";
  const auto path = values::joinedPath(needs_.bundles.mainBundlePath(), relative);
  const auto bundled = bundledDefinition(needs_.files, path);
  const auto loaded = loadedDefinition(needs_.launchctl.printJob());
  const bool changed = LaunchJob::needsReseat(loaded, bundled);
  needs_.log.write({.format = platform::LogFormat::definition,
                    .arguments = {shownArguments(loaded), shownTimeout(loaded), shownArguments(bundled),
                                  shownTimeout(bundled), changed}});
  return changed;
}

}  // namespace tamo
