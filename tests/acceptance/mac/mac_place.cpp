#include "acceptance/mac/mac_place.hpp"

#include <array>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <thread>
#include <unistd.h>

#include "acceptance/mac/journal.hpp"
#include "acceptance/mac/mac_companions.hpp"
#include "acceptance/mac/mac_copies.hpp"
#include "acceptance/mac/mac_evidence.hpp"
#include "acceptance/mac/mac_other_user.hpp"
#include "acceptance/mac/mac_tools.hpp"
#include "acceptance/mac/mac_user.hpp"
#include "acceptance/mac/played_copies.hpp"
#include "platform/macos/mac_kernel_processes.hpp"
#include "platform/macos/mac_log.hpp"
#include "platform/posix/posix_files.hpp"

namespace tamo::acceptance {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

std::string jobTarget() {
  return "gui/" + std::to_string(::getuid()) + "/studio.pell.tamo.core";
}

class MacJob final : public Job {
 public:
  Printed print() override {
    const auto run = runProgram({.words = {"/bin/launchctl", "print", jobTarget()}});
    return {run.status, run.text};
  }
  void restart() override { runProgram({.words = {"/bin/launchctl", "kickstart", "-k", jobTarget()}}); }
};

class MacCore final : public Core {
 public:
  explicit MacCore(const MacSettings& settings) : settings_(settings) {}
  void behave(const std::string& words) override {
    if (!settings_.isSample()) throw CannotArrange("the Core of a real Tamo behaves as it does");
    if (!platform::posix::writeAtomically(settings_.coreFolder() + "/core", words))
      throw PlaceError("the Core's behaviour cannot be written");
  }
  std::vector<std::string> events() override {
    std::vector<std::string> lines;
    std::ifstream log(settings_.coreFolder() + "/core.log");
    for (std::string line; std::getline(log, line);)
      lines.push_back(line);
    return lines;
  }

 private:
  const MacSettings& settings_;
};

class MacFaults final : public Faults {
 public:
  void failNextRegister(const std::string&, int, const std::string&) override { no(); }
  void failNextUnregister(const std::string&, int, const std::string&) override { no(); }
  void failLaunchctl(const std::string&, int) override { no(); }
  void leaveLastWords(const std::string& reason) override { macos::logAtFaultLevel(reason); }

 private:
  [[noreturn]] static void no() { throw CannotArrange("nobody can order an error of this system"); }
};

std::string temporaryDirectory() {
  std::array<char, 1024> path{};
  if (::confstr(_CS_DARWIN_USER_TEMP_DIR, path.data(), path.size()) == 0)
    throw PlaceError("no temporary directory");
  return path.data();
}

class LaidMac final : public LaidPlace {
 public:
  explicit LaidMac(const MacSettings& settings) : settings_(settings) {
    clear();
    // A companion makes these, or a move does.
    for (const auto& path :
         {settings_.container(), std::string(installedCopy), settings_.downloads(), place_.paths.lockFile})
      journal_.willMake(path);
    makeDataDirectory();
    fs::create_directories(settings_.coreFolder());
    // The first start of a companion may register.
    journal_.willRegister();
  }
  ~LaidMac() override {
    try {
      clear();
    } catch (const std::exception& fault) {
      std::cerr << "accept: not everything could be cleared: " << fault.what() << "\n";
    }
  }
  const Place& place() override { return place_; }
  void begin() override {}
  std::vector<Kept> leftovers() override {
    auto print = job_.print().text;
    return {{"core.log", platform::posix::readWhole(settings_.coreFolder() + "/core.log").value_or("")},
            {"print-at-the-end.txt", std::move(print)}};
  }

 private:
  /// It bears its mark from the moment at which it is there.
  void makeDataDirectory() {
    const auto directory = fs::path(settings_.dataDirectory()).parent_path().string();
    const auto making = directory + ".making";
    journal_.willMake(directory);
    journal_.willMake(making);
    if (fs::exists(directory)) return;
    fs::create_directories(making);
    if (!platform::posix::writeAtomically(making + "/" + dataMark, "Made by ./accept, to be removed.\n"))
      throw PlaceError("the data directory cannot be marked");
    fs::rename(making, directory);
  }

  void clear() {
    copies_.onlyOurs();
    endPrograms("/Tamo.app/Contents/MacOS/Tamo");
    unregister();
    endPrograms(companionProgram);
    for (const auto copy : {Copy::Installed, Copy::Downloaded, Copy::Staged})
      copies_.remove(copy);
    copies_.emptyTrash();
    fs::remove(place_.paths.moveResult);
    // What is left of the Core ends with this folder.
    fs::remove_all(settings_.coreFolder());
  }

  /// By the companion itself, as a user would; launchd's own word is the last resort.
  void unregister() {
    if (job_.print().status == 113 && !user_.approvalMayBeWithheld()) return;
    if (fs::exists(std::string(installedCopy) + companionInCopy)) {
      const auto started = companions_.start({.arguments = {"--core-action", "unregister"}});
      for (int look = 0; look < 600 && !companions_.ended(started); ++look)
        std::this_thread::sleep_for(100ms);
    }
    if (job_.print().status != 113) runProgram({.words = {"/bin/launchctl", "bootout", jobTarget()}});
    // Registering right after unregistering is reported to fail.
    std::this_thread::sleep_for(1s);
  }

  void endPrograms(const std::string& ending) const {
    for (const auto& one : processesEndingWith(ending, Whose::Ours))
      if (isOfAPlayedCopy(one.path, settings_)) ::kill(one.pid, SIGKILL);
  }

  const MacSettings settings_;
  Journal journal_{settings_.journal};
  MacCopies copies_{settings_, journal_};
  MacCompanions companions_{copies_};
  MacJob job_;
  MacCore core_{settings_};
  MacEvidence evidence_{settings_};
  MacUser user_{settings_, copies_, companions_, evidence_};
  MacOtherUser otherUser_{settings_, journal_, evidence_};
  MacFaults faults_;
  macos::MacKernelProcesses kernel_;
  const Place place_{copies_, companions_, job_,    core_,   evidence_,
                     user_,   otherUser_,  faults_, kernel_, pathsOf(settings_.home, temporaryDirectory())};
};

}  // namespace

std::unique_ptr<LaidPlace> laidMac(const MacSettings& settings) {
  return std::make_unique<LaidMac>(settings);
}

}  // namespace tamo::acceptance
