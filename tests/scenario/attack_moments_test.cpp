#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "app/core_main.hpp"
#include "platform/stage/privileges.hpp"
#include "platform/stage/stage_host.hpp"
#include "scenario/attack.hpp"
#include "scenario/move_stage.hpp"
#include "scenario/stage.hpp"

/// A whole companion on real files, and somebody who lays a trap in the place of the very path that a call is about, just
/// before the call, at each call in turn that asks for a file.
namespace tamo::scenario {
namespace {

namespace fs = std::filesystem;
using std::chrono::seconds;

/// What the process of such a companion ends with when it made fewer calls.
constexpr int notReached = 3;

/// The surroundings of a companion, with other files in the place of its own.
struct Attacked : platform::Platform {
  platform::Files& files;
};

struct Course {
  const char* action;
  const char* copy;
  Trap trap;
};

/// Without blanks, for a test whose name has one is never begun first for its length.
void PrintTo(const Course& course, std::ostream* out) {
  auto trap = std::string(nameOf(course.trap));
  std::ranges::replace(trap, ' ', '-');
  *out << course.action << "-with-" << trap;
}

/// Whether something lies in the folder of a path, so that something can be laid beside it.
bool hasFolder(const stage::StageRoot& root, const std::string& path) {
  return fs::is_directory(fs::path(root.host(path)).parent_path());
}

/// The companion as a process of its own, from its main loop on.
[[noreturn]] void actAttacked(const stage::StageRoot& root, Victim& victim, const Course& course, int call) {
  const int null = ::open("/dev/null", O_RDWR | O_CLOEXEC);
  ::dup2(null, STDERR_FILENO);
  stage::renouncePrivileges();
  const auto program = root.host(stage::companionProgram(stage::copyPath(root, course.copy)));
  const stage::StageHost host(root, program);
  int calls = 0;
  const auto turn = [&](std::string_view moment, const std::string& path) {
    if (moment.starts_with("after") || ++calls != call) return;
    if (hasFolder(root, path)) victim.lay(course.trap, path);
  };
  AttackedFiles files(root, turn);
  const Attacked attacked{host.platform(), files};
  CoreMain::main(platform::platformOf(attacked), {.writesReceipts = true},
                 {program, "--core-action", course.action});
  ::_exit(calls < call ? notReached : 0);
}

class AttackAtEachCall : public ::testing::TestWithParam<Course> {};

/// Each call is attacked on a stage of its own: the trap destroys what lies there.
TEST_P(AttackAtEachCall, NothingElseIsHarmedAndNobodyWaits) {
  int call = 1;
  for (bool reached = true; reached; ++call) {
    SCOPED_TRACE(call);
    ASSERT_LT(call, 100);
    const MoveStage moving;
    const auto& stage = moving.stage();
    const bool acts = std::string(GetParam().copy) == "installed";
    moving.install(acts ? "5000" : "4999");
    if (acts) stage.act("register");
    stage.set("terminate", "returns");
    ::setenv("TAMO_STAGE", stage.root().directory().c_str(), 1);
    Victim victim(stage.root());
    const Started companion{.pid = ::fork(), .at = std::chrono::steady_clock::now()};
    ASSERT_GE(companion.pid, 0);
    if (companion.pid == 0) actAttacked(stage.root(), victim, GetParam(), call);
    const auto ended = Stage::finish(companion);
    reached = ended.status != notReached;
    EXPECT_TRUE(ended.status == 0 || !reached) << ended.status;
    EXPECT_LT(ended.after, seconds(30));
    EXPECT_TRUE(victim.isUnharmed());
  }
  EXPECT_GT(call, 5);
  RecordProperty("calls", call - 2);
}

INSTANTIATE_TEST_SUITE_P(Traps, AttackAtEachCall,
                         ::testing::Values(Course{"sync", "installed", Trap::Link},
                                           Course{"sync", "installed", Trap::Pipe},
                                           Course{"restart", "installed", Trap::HardLink},
                                           Course{"move-to-applications", "downloaded", Trap::Link},
                                           Course{"move-to-applications", "downloaded", Trap::Pipe}));

}  // namespace
}  // namespace tamo::scenario
