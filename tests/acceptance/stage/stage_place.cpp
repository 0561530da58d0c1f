#include "acceptance/stage/stage_place.hpp"

#include <filesystem>
#include <fstream>
#include <sys/utsname.h>
#include <thread>

#include "acceptance/child.hpp"
#include "acceptance/stage/bare_stage.hpp"
#include "acceptance/stage/stage_companions.hpp"
#include "acceptance/stage/stage_copies.hpp"
#include "acceptance/stage/stage_evidence.hpp"
#include "acceptance/stage/stage_other_user.hpp"
#include "platform/posix/posix_files.hpp"
#include "platform/stage/application_opening.hpp"
#include "platform/stage/launchd_wire.hpp"
#include "platform/stage/running_programs.hpp"
#include "platform/stage/stage_kernel_processes.hpp"
#include "stage/common/rights.hpp"
#include "stage/common/tool_fault.hpp"
#include "stage/control/stage_layout.hpp"

namespace tamo::acceptance {
namespace {

namespace fs = std::filesystem;

class StageJob final : public Job {
 public:
  explicit StageJob(const stage::StageRoot& root) : root_(root) {}
  Printed print() override {
    const auto run = launchctl({"print", target()});
    return {run.status, run.text};
  }
  void restart() override { launchctl({"kickstart", "-k", target()}); }

 private:
  [[nodiscard]] std::string target() const {
    return "gui/" + std::to_string(root_.userID()) + "/studio.pell.tamo.core";
  }
  Run launchctl(std::vector<std::string> words) const {
    words.insert(words.begin(), root_.host("/bin/launchctl"));
    return runProgram(
        {.words = words,
         .environment = std::vector<std::string>{"TAMO_STAGE=" + root_.directory(), "PATH=/usr/bin:/bin"}});
  }
  const stage::StageRoot& root_;
};

class StageCore final : public Core {
 public:
  explicit StageCore(const stage::StageRoot& root) : root_(root) {}
  void insist(const std::string& words) { insisted_ = words; }
  void behave(const std::string& words) override { root_.set("core", insisted_.value_or(words)); }
  std::vector<std::string> events() override {
    std::vector<std::string> lines;
    std::ifstream log(root_.control("core.log"));
    for (std::string line; std::getline(log, line);)
      lines.push_back(line);
    return lines;
  }

 private:
  const stage::StageRoot& root_;
  std::optional<std::string> insisted_;
};

class StageUser final : public User {
 public:
  StageUser(const stage::StageRoot& root, const Copies& copies) : root_(root), copies_(copies) {}
  void open(Copy copy) override {
    const auto alone = whileNothingStarts();
    if (stage::openApplicationNow(root_, copies_.path(copy)))
      throw PlaceError("the application does not open");
  }
  std::vector<RunningApp> applications() override {
    std::vector<RunningApp> found;
    for (const auto& program : stage::runningPrograms(root_))
      if (program.bundle.ends_with("/Tamo.app")) found.push_back({program.pid, program.bundle});
    return found;
  }
  std::string front() override {
    auto path = platform::posix::readWhole(root_.control("front")).value_or("");
    return path.substr(0, path.find('\n'));
  }
  std::string whereabouts(int directory) override {
    std::error_code none;
    return fs::read_symlink("/proc/self/fd/" + std::to_string(directory), none).string();
  }
  void approve(bool granted) override {
    if (!granted) return root_.set("approval", "withheld");
    root_.set("approval", std::nullopt);
    static_cast<void>(stage::askLaunchd(root_, {"approve"}));
  }
  void loseApplications(const std::string& answer) override {
    stage::chooseAdministrator(root_, answer);
    stage::closeApplications(root_);
  }
  void sleepAWhile() override { throw CannotArrange("a stage cannot put the machine to sleep"); }

 private:
  const stage::StageRoot& root_;
  const Copies& copies_;
};

class StageFaults final : public Faults {
 public:
  explicit StageFaults(const stage::StageRoot& root) : root_(root) {}
  void failNextRegister(const std::string& domain, int code, const std::string& text) override {
    root_.set("next-register-error", domain + "\t" + std::to_string(code) + "\t" + text);
  }
  void failNextUnregister(const std::string& domain, int code, const std::string& text) override {
    root_.set("next-unregister-error", domain + "\t" + std::to_string(code) + "\t" + text);
  }
  void failLaunchctl(const std::string& verb, int status) override {
    const auto faults = root_.setting("tool-launchctl", "");
    root_.set("tool-launchctl", stage::withToolFault(faults, verb, "fail " + std::to_string(status)));
  }
  void leaveLastWords(const std::string&) override {
    throw CannotArrange("on a stage last words go to standard error, which nobody keeps");
  }

 private:
  const stage::StageRoot& root_;
};

class LaidStage final : public LaidPlace {
 public:
  LaidStage(const std::string& programs, const Lie& lie)
      : root_(bareStage(programs)), lie_(lie), copies_(root_, programs), otherUser_(root_, programs) {}
  ~LaidStage() override { stage::strikeStage(root_.directory()); }

  const Place& place() override { return place_; }
  void begin() override {
    if (lie_.plant != nullptr) lie_.plant(root_);
    if (lie_.core) core_.insist(*lie_.core);
    copies_.hold(lie_.companion);
    if (lie_.oneSession) otherUser_.joinSession();
  }
  std::vector<Kept> leftovers() override {
    std::vector<Kept> kept;
    for (const auto* name : {"core.log", "launchd.log", "app.log"})
      if (auto text = platform::posix::readWhole(root_.control(name)))
        kept.push_back({name, *std::move(text)});
    return kept;
  }

 private:
  const stage::StageRoot root_;
  const Lie lie_;
  StageCopies copies_;
  StageCompanions companions_{root_, copies_};
  StageJob job_{root_};
  StageCore core_{root_};
  StageEvidence evidence_{root_, companions_};
  StageUser user_{root_, copies_};
  StageOtherUser otherUser_;
  StageFaults faults_{root_};
  stage::StageKernelProcesses kernel_;
  const Place place_{
      copies_,    companions_,
      job_,       core_,
      evidence_,  user_,
      otherUser_, faults_,
      kernel_,    pathsOf(root_.host(root_.home()), root_.host("/private/var/folders/st/tamo/T") + "/")};
};

}  // namespace

std::unique_ptr<LaidPlace> laidStage(const std::string& programs, const Lie& lie) {
  return std::make_unique<LaidStage>(programs, lie);
}

PlaceFacts stageFacts() {
  utsname system{};
  ::uname(&system);
  return {.kind = "stage",
          .system = std::string(system.sysname) + " " + system.release,
          .processor = system.machine,
          .signature = "none: nothing is signed on a stage"};
}

}  // namespace tamo::acceptance
