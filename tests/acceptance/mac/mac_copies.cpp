#include "acceptance/mac/mac_copies.hpp"

#include <array>
#include <fcntl.h>
#include <filesystem>
#include <iostream>
#include <sys/syslimits.h>
#include <sys/xattr.h>
#include <thread>
#include <unistd.h>

#include "acceptance/mac/mac_tools.hpp"
#include "acceptance/mac/person.hpp"
#include "acceptance/mac/sample_lists.hpp"
#include "acceptance/mac/signers.hpp"
#include "platform/posix/posix_files.hpp"

namespace tamo::acceptance {
namespace {

namespace fs = std::filesystem;

void write(const std::string& path, const std::string& text) {
  fs::create_directories(fs::path(path).parent_path());
  if (!platform::posix::writeAtomically(path, text)) throw PlaceError("cannot write " + path);
}

constexpr auto launchServicesTool =
    "/System/Library/Frameworks/CoreServices.framework/Frameworks/LaunchServices.framework/Support/"
    "lsregister";
/// Of a download that its user has opened once and put in its place: it runs where it lies, and nobody is asked.
constexpr auto markOfAnOpenedCopy = "01c1;00000000;Safari;";
/// Of one that was only just downloaded.
constexpr auto markOfAFreshCopy = "0081;00000000;Safari;";

/// A URL of the scheme is to reach a copy as soon as it is there, and no longer. Without the tool the system finds that
/// out by itself.
void tellLaunchServices(const std::string& order, const std::string& app) {
  if (::access(launchServicesTool, X_OK) != 0) return;
  for (const auto& bundle : {app, app + companionInCopy})
    runProgram({.words = {launchServicesTool, order, bundle}});
}

bool bearsOurMark(const std::string& app) {
  return fs::exists(app + sampleMark) ||
         ::getxattr(app.c_str(), copyMark, nullptr, 0, 0, XATTR_NOFOLLOW) >= 0;
}

std::string inSmallLetters() {
  const std::string app = "/applications/tamo.app";
  if (!fs::exists(app)) throw CannotArrange("this disk minds the case of letters");
  return app;
}

void mark(const std::string& app, const std::string& value) {
  need({"/usr/bin/xattr", "-r", "-w", "com.apple.quarantine", value, app});
}

std::string agentOf(const std::string& app) {
  return app + companionInCopy + "/Contents/MacOS/tamo-core-agent";
}

}  // namespace

std::string MacCopies::path(Copy copy) const {
  if (copy == Copy::Installed) return installedCopy;
  if (copy == Copy::InstalledInSmallLetters) return inSmallLetters();
  if (copy == Copy::Downloaded) return settings_.downloads() + "/Tamo.app";
  if (copy == Copy::Staged) return settings_.dataDirectory() + "staged/Tamo.app";
  return translocated_;
}

void MacCopies::onlyOfASample() const {
  if (!settings_.isSample()) throw CannotArrange("a real Tamo is played with as it is");
}

void MacCopies::place(const Sample& sample) {
  if (sample.copy == Copy::Translocated) return awaitTranslocation();
  const bool asItIs = sample.copy == Copy::Installed && sample.build == "4211" &&
                      sample.definition.exitTimeout == 20 && sample.definition.arguments.empty();
  if (!asItIs) onlyOfASample();
  const auto app = path(sample.copy);
  const auto temporary = fs::temp_directory_path() / "tamo-acceptance-sample";
  journal_.willMake(app);
  journal_.willMake(app + ".making");
  journal_.willMake(temporary.string());
  if (sample.copy == Copy::Downloaded) journal_.willTrash();
  remove(sample.copy);
  fs::create_directories(fs::path(app).parent_path());
  if (!settings_.isSample()) return putInPlace(settings_.tamoApp, app);
  const auto made = temporary / "Tamo.app";
  fs::remove_all(made);
  assemble(made.string(), sample);
  putInPlace(made.string(), app);
  fs::remove_all(temporary);
  placed_.emplace_back(::open(app.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (sample.copy == Copy::Installed) tellLaunchServices("-f", app);
  if (sample.marked) mark(app, markOfAnOpenedCopy);
}

/// By its name: whatever cuts this off, nothing lies there without its mark.
void MacCopies::putInPlace(const std::string& made, const std::string& app) const {
  const auto making = app + ".making";
  fs::remove_all(making);
  need({"/usr/bin/ditto", made, making});
  const bool marks = settings_.isSample() || ::setxattr(making.c_str(), copyMark, "", 0, 0, 0) == 0;
  if (!marks) throw PlaceError("the copy cannot be marked as put there by this command");
  fs::rename(making, app);
}

void MacCopies::assemble(const std::string& app, const Sample& sample) const {
  const auto inner = app + companionInCopy;
  write(app + "/Contents/Info.plist", sampleInfo(sample.build));
  write(app + sampleMark, "Made by ./accept, to be removed.\n");
  fs::create_directories(app + "/Contents/MacOS");
  fs::create_directories(fs::path(inner).parent_path());
  fs::copy_file(settings_.parts + "/accept-app", app + "/Contents/MacOS/Tamo");
  need({"/usr/bin/ditto", settings_.parts + "/Tamo Core.app", inner});
  fs::copy_file(settings_.parts + "/accept-agent", agentOf(app), fs::copy_options::overwrite_existing);
  writeList(app, sample.definition);
  sign(app);
}

void MacCopies::writeList(const std::string& app, const Definition& definition) const {
  const auto list = app + companionInCopy + "/Contents/Library/LaunchAgents/studio.pell.tamo.core.plist";
  write(list, sampleAgentList(definition, agentOf(installedCopy)));
  if (definition.binary) need({"/usr/bin/plutil", "-convert", "binary1", list});
}

/// From the inside out, the agent under the identifier that the building page names.
void MacCopies::sign(const std::string& app) const {
  std::vector<std::string> sign{"/usr/bin/codesign", "--force", "--options",
                                "runtime",           "--sign",  settings_.identity};
  if (settings_.identity != "-") sign.emplace_back("--timestamp");
  auto agent = sign;
  agent.insert(agent.end(), {"--identifier", "studio.pell.tamo.core-agent", agentOf(app)});
  need(agent);
  for (const auto& bundle : {app + companionInCopy, app}) {
    auto words = sign;
    words.push_back(bundle);
    need(words);
  }
}

void MacCopies::remove(Copy copy) {
  const auto app = path(copy);
  if (app.empty() || copy == Copy::Translocated || !fs::exists(app)) return;
  if (!bearsOurMark(app)) throw PlaceError(app + " was not put there by this command and is left alone");
  tellLaunchServices("-u", app);
  fs::remove_all(app + ".making");
  fs::rename(app, app + ".making");
  fs::remove_all(app + ".making");
}

void MacCopies::onlyOurs() const {
  if (fs::exists(installedCopy) && !bearsOurMark(installedCopy))
    throw PlaceError(std::string(installedCopy) + " was not put there by this command and is left alone");
}

void MacCopies::define(Copy copy, const Definition& definition) {
  onlyOfASample();
  writeList(path(copy), definition);
  sign(path(copy));
}

/// A second build of the same program, put in place as a new file.
void MacCopies::changeExecutable(Copy copy) {
  onlyOfASample();
  const auto agent = agentOf(path(copy));
  fs::copy_file(settings_.parts + "/accept-agent-two", agent + ".new", fs::copy_options::overwrite_existing);
  fs::rename(agent + ".new", agent);
  sign(path(copy));
}

void MacCopies::emptyTrash() {
  for (const auto& copy : placed_) {
    std::array<char, PATH_MAX> path{};
    if (::fcntl(copy.get(), F_GETPATH, path.data()) != 0) continue;
    const std::string now = path.data();
    std::error_code ignored;
    if (now.starts_with(settings_.home + "/.Trash/") && fs::exists(now + sampleMark, ignored))
      fs::remove_all(now, ignored);
  }
  placed_.clear();
}

int MacCopies::marked(Copy copy) const {
  int count = 0;
  for (const auto& item : fs::recursive_directory_iterator(folder(copy)))
    if (::getxattr(item.path().c_str(), "com.apple.quarantine", nullptr, 0, 0, XATTR_NOFOLLOW) >= 0) ++count;
  return count;
}

Signature MacCopies::signature(Copy copy) const {
  const auto run = runProgram(
      {.words = {"/usr/bin/codesign", "--verify", "--strict", "--deep", "--verbose=2", folder(copy)}});
  const auto shown =
      runProgram({.words = {"/usr/bin/codesign", "--display", "--verbose=2", agentOf(folder(copy))}});
  return {.fault = run.status == 0 ? "" : run.text + "(status " + std::to_string(run.status) + ")",
          .agentIdentifier = signingIdentifierIn(shown.text)};
}

/// Only a person's double click makes the system run a copy from a place of its own.
void MacCopies::awaitTranslocation() {
  askPerson(settings_, "open the Tamo that the Finder shows, by a double click");
  mark(path(Copy::Downloaded), markOfAFreshCopy);
  need({"/usr/bin/open", "-R", path(Copy::Downloaded)});
  const std::string program = "/Tamo.app/Contents/MacOS/Tamo";
  for (int look = 0; look < 360; ++look) {
    for (const auto& one : processesEndingWith(program, Whose::Ours)) {
      if (!one.path.contains("/AppTranslocation/")) continue;
      translocated_ = one.path.substr(0, one.path.size() - program.size()) + "/Tamo.app";
      return;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
  }
  throw CannotArrange("no translocated copy was opened within three minutes");
}

}  // namespace tamo::acceptance
