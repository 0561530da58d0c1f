#include "stage/control/app_copy.hpp"

#include <array>
#include <filesystem>
#include <sys/xattr.h>
#include <utility>

#include "platform/posix/posix_files.hpp"
#include "stage/common/stage_error.hpp"
#include "stage/control/property_list_text.hpp"
#include "stage/tools/xattr.hpp"
#include "values/paths.hpp"

namespace tamo::stage {
namespace {

namespace fs = std::filesystem;
using values::PropertyList;
using Dictionary = PropertyList::Dictionary;

constexpr auto agentLabel = "studio.pell.tamo.core";
constexpr auto installedCopy = "/Applications/Tamo.app";
/// A Mac makes up another place each time. This one stays, so that a rehearsal can name it beforehand.
constexpr auto translocatedCopy =
    "/private/var/folders/st/tamo/T/AppTranslocation/5C4A7B7E-0D35-4E0B-9C9C-6E1B1D1F2A10/d/Tamo.app";

PropertyList text(const std::string& value) {
  return {.value = value};
}

PropertyList flag(bool value) {
  return {.value = value};
}

std::string companionName(Companion companion) {
  static constexpr std::array names = {"tamo-core", "tamo-core-receipts", "tamo-core-proof"};
  return names.at(static_cast<std::size_t>(std::to_underlying(companion)));
}

/// As full as a real one, so that a reader who takes the wrong key is found out.
Dictionary bundleInfo(const std::string& identifier, const std::string& executable,
                      const std::string& build) {
  return {{"CFBundleIdentifier", text(identifier)},
          {"CFBundleExecutable", text(executable)},
          {"CFBundleName", text(executable)},
          {"CFBundlePackageType", text("APPL")},
          {"CFBundleInfoDictionaryVersion", text("6.0")},
          {"CFBundleShortVersionString", text("1.0")},
          {"CFBundleVersion", text(build)},
          {"LSMinimumSystemVersion", text("13.0")},
          {"NSPrincipalClass", text("NSApplication")}};
}

/// An accessory is in no Dock and may come to the front all the same. The scheme is what the system finds it by for a
/// URL.
Dictionary companionInfo(const AppCopy& copy) {
  auto info = bundleInfo(copy.bundleID + ".Core", "Tamo Core", copy.build);
  const Dictionary url = {{"CFBundleURLName", text(copy.bundleID + ".Core.action")},
                          {"CFBundleTypeRole", text("Viewer")},
                          {"CFBundleURLSchemes", {.value = PropertyList::Array{text("tamo-core")}}}};
  info["LSUIElement"] = flag(true);
  info["CFBundleURLTypes"] = {.value = PropertyList::Array{{.value = url}}};
  return info;
}

void write(const std::string& path, const std::string& bytes) {
  const bool written = platform::posix::createDirectories(std::string(values::parentPath(path))) &&
                       platform::posix::writeAtomically(path, bytes);
  if (!written) throw StageError("cannot write " + path);
}

/// Copied and not linked, because a process is known by where its executable lies, and that has to be on the stage.
void copyProgram(const std::string& from, const std::string& to) {
  std::error_code error;
  fs::create_directories(values::parentPath(to), error);
  if (!error) fs::copy_file(from, to, fs::copy_options::overwrite_existing, error);
  if (error) throw StageError("cannot copy " + from + " to " + to + ": " + error.message());
}

/// The folder is made before the path is resolved in it, so that a link on the way is followed as on a Mac. What lay
/// there goes first and whole: what a copy before has left would be taken for a part of this one.
std::string placeFor(const StageRoot& root, const std::string& path) {
  const auto folder = std::string(values::parentPath(path));
  if (!root.existing(folder)) static_cast<void>(platform::posix::createDirectories(root.host(folder)));
  const auto place = root.entry(path);
  if (!place) throw StageError("there is no folder for " + path + " on the stage");
  std::error_code error;
  fs::remove_all(*place, error);
  if (error) throw StageError("cannot replace " + path + ": " + error.message());
  return *place;
}

/// The link is relative, because the machine's own kernel would follow an absolute one out of the stage when a program
/// is started through it.
void placeLink(const StageRoot& root, const std::string& path) {
  const auto target = fs::path(installedCopy).lexically_relative(values::parentPath(path));
  std::error_code error;
  fs::create_directory_symlink(target, placeFor(root, path), error);
  if (error) throw StageError("cannot link " + path + ": " + error.message());
}

/// On every item, as an unpacked download has it.
void quarantine(const std::string& path) {
  const auto attribute = attributeOnDisk("com.apple.quarantine");
  const std::string value = "0081;00000000;Safari;";
  for (const auto& item : fs::recursive_directory_iterator(path)) {
    if (item.is_symlink()) continue;
    if (::lsetxattr(item.path().c_str(), attribute.c_str(), value.data(), value.size(), 0) != 0)
      throw StageError("the file system of " + path + " keeps no extended attributes");
  }
}

}  // namespace

std::string copyPath(const StageRoot& root, const std::string& where) {
  if (where == "installed") return installedCopy;
  if (where == "staged") return root.home() + "/Library/Application Support/Tamo/staged/Tamo.app";
  if (where == "downloaded") return root.home() + "/Downloads/Tamo.app";
  if (where == "linked") return root.home() + "/Desktop/Tamo.app";
  if (where == "translocated") return translocatedCopy;
  if (!where.starts_with("/")) throw StageError("\"" + where + "\" is no place for a copy");
  auto path = values::standardisedPath(where);
  if (path == "/") throw StageError("the whole stage is no place for a copy");
  return path;
}

std::string companionBundle(const std::string& copy) {
  return values::joinedPath(copy, "Contents/Library/LoginItems/Tamo Core.app");
}

std::string companionProgram(const std::string& copy) {
  return values::joinedPath(companionBundle(copy), "Contents/MacOS/Tamo Core");
}

void placeCopy(const StageRoot& root, const std::string& programs, const AppCopy& copy) {
  const auto path = copyPath(root, copy.where);
  if (copy.where == "linked") return placeLink(root, path);
  const auto companion = companionName(copy.companion);
  for (const auto& name : {companion, std::string("stage-app"), std::string("stage-core")})
    if (!fs::exists(values::joinedPath(programs, name)))
      throw StageError("there is no " + name + " in " + programs + ": build it first");
  const auto outer = values::joinedPath(placeFor(root, path), "Contents");
  const auto inner = values::joinedPath(outer, "Library/LoginItems/Tamo Core.app/Contents");
  write(outer + "/Info.plist", xmlPropertyList({.value = bundleInfo(copy.bundleID, "Tamo", copy.build)}));
  write(inner + "/Info.plist", xmlPropertyList({.value = companionInfo(copy)}));
  write(outer + "/PkgInfo", "APPL????");
  write(inner + "/PkgInfo", "APPL????");
  copyProgram(programs + "/stage-app", outer + "/MacOS/Tamo");
  copyProgram(programs + "/" + companion, inner + "/MacOS/Tamo Core");
  copyProgram(programs + "/stage-core", inner + "/MacOS/tamo-core-agent");
  writeAgentDefinition(root, path, {});
  if (copy.quarantined) quarantine(root.host(path));
}

/// The place that the copy was started from is known to the system alone, which may also have forgotten it.
std::string translocateCopy(const StageRoot& root, const std::string& path, Original original) {
  const auto from = root.existing(path);
  if (!from) throw StageError("there is no copy at " + path);
  std::error_code error;
  fs::copy(*from, placeFor(root, translocatedCopy),
           fs::copy_options::recursive | fs::copy_options::copy_symlinks, error);
  const auto line = std::string(translocatedCopy) + "\t" + path + "\n";
  if (error) throw StageError("cannot translocate " + path + ": " + error.message());
  write(root.control("translocated"), original == Original::Known ? line : "");
  return translocatedCopy;
}

void writeAgentDefinition(const StageRoot& root, const std::string& copy, const AgentDefinition& definition) {
  const auto bundle = companionBundle(copy);
  const auto contents = root.existing(bundle + "/Contents");
  if (!contents) throw StageError("there is no copy at " + copy);
  const std::string program = "Contents/MacOS/tamo-core-agent";
  // The program is named in both ways, as in many agents of bundles: by its place in the bundle for service
  // management, and by its whole path among the arguments, without which no change of the definition would be seen.
  PropertyList::Array arguments = {text(values::joinedPath(bundle, program))};
  for (const auto& argument : definition.arguments)
    arguments.push_back(text(argument));
  Dictionary list = {{"Label", text(agentLabel)},
                     {"BundleProgram", text(program)},
                     {"ProgramArguments", {.value = std::move(arguments)}},
                     {"AssociatedBundleIdentifiers", text("studio.pell.Tamo")},
                     {"RunAtLoad", flag(true)},
                     {"KeepAlive", flag(true)}};
  if (definition.exitTimeout) list["ExitTimeOut"] = {.value = *definition.exitTimeout};
  const PropertyList whole = {.value = std::move(list)};
  write(*contents + "/Library/LaunchAgents/" + agentLabel + ".plist",
        definition.binary ? binaryPropertyList(whole) : xmlPropertyList(whole));
}

}  // namespace tamo::stage
