#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

#include "figure_row.hpp"
#include "process_cost.hpp"
#include "stage/control/app_copy.hpp"
#include "stage/control/stage_layout.hpp"
#include "stage/tools/xattr.hpp"

/// What the move of a large bundle costs on a stage, beside a plain copy of the same tree by the machine's own cp:
/// the time from the end of the intake to the end of the companion. Plain copies and moves take turns, and each begins
/// when the disk has nothing left to write, so that both meet the same machine; the middle value of each is given.
///
///   move_cost [RUNS [FILES [MEGABYTES]]]
namespace {

namespace fs = std::filesystem;
using namespace tamo::stage;
using tamo::bench::Cost;
using tamo::bench::costOf;
using tamo::bench::median;
using tamo::bench::text;

constexpr double mostTimesTheCopy = 1.02;

struct Size {
  int files;
  int megabytes;
};

/// The contents of the files repeat nothing, so that no file system makes them smaller. Each carries the mark of a
/// download, which both copies take along and only the move clears.
void fill(const fs::path& bundle, const Size& size) {
  const auto bytes =
      static_cast<std::size_t>(size.megabytes) * 1'000'000 / static_cast<std::size_t>(size.files);
  std::string contents(bytes, '\0');
  const auto mark = attributeOnDisk("com.apple.quarantine");
  std::uint64_t state = 88172645463325252ULL;
  for (int file = 0; file < size.files; ++file) {
    for (auto& byte : contents) {
      state = state * 6364136223846793005ULL + 1442695040888963407ULL;
      byte = static_cast<char>(state >> 56U);
    }
    const auto folder = bundle / "Contents/Resources" / std::to_string(file / 100);
    fs::create_directories(folder);
    const auto path = folder / std::to_string(file);
    std::ofstream(path, std::ios::binary) << contents;
    if (::setxattr(path.c_str(), mark.c_str(), "0081", 4, 0) != 0)
      std::fprintf(stderr, "no mark can be set\n");
  }
}

class Rig {
 public:
  Rig(const StageRoot& root, const Size& size) : root_(root) {
    placeCopy(root_, TAMO_BINARY_DIR "/bin", {.where = "downloaded", .quarantined = true});
    fill(downloaded_, size);
    ::sync();
  }

  Cost plainCopy() {
    const auto cost = costOf({"/bin/cp", "--archive", downloaded_.string(), installed_.string()});
    clear();
    return cost;
  }

  /// The move ends by taking the copy that it came from to the Trash, from where it is fetched back.
  Cost move() {
    const auto program = root_.host(companionProgram(copyPath(root_, "downloaded")));
    const auto cost = costOf({program, "--core-action", "move-to-applications"});
    if (!fs::exists(installed_)) std::fprintf(stderr, "nothing was moved\n");
    fs::rename(root_.host("/Users/tamo/.Trash/Tamo.app"), downloaded_);
    clear();
    return cost;
  }

 private:
  void clear() {
    fs::remove_all(installed_);
    ::sync();
  }

  const StageRoot& root_;
  fs::path downloaded_ = root_.host("/Users/tamo/Downloads/Tamo.app");
  fs::path installed_ = root_.host("/Applications/Tamo.app");
};

void measure(const StageRoot& root, int runs, const Size& size) {
  Rig rig(root, size);
  std::vector<double> copies;
  std::vector<double> moves;
  std::vector<double> sleeps;
  // The first of each only warms the machine's caches.
  for (int run = -1; run < runs; ++run) {
    const auto copied = rig.plainCopy();
    const auto moved = rig.move();
    const auto slept = costOf({TAMO_BINARY_DIR "/tests/bench/sleeper"});
    if (run < 0) continue;
    copies.push_back(copied.wallMilliseconds);
    moves.push_back(moved.wallMilliseconds);
    sleeps.push_back(slept.wallMilliseconds);
  }
  const double copy = median(copies);
  const double move = median(moves) - median(sleeps);
  tamo::bench::printRow(
      {.what = text("the move of %d MB in %d files, from the intake's end", size.megabytes, size.files),
       .asked = text("at most %.2f × `cp -a`", mostTimesTheCopy),
       .measured = text("%.0f ms, `cp -a` %.0f: %.3f ×", move, copy, move / copy),
       .held = move <= mostTimesTheCopy * copy});
}

}  // namespace

int main(int argc, char** argv) {
  const int runs = argc > 1 ? std::atoi(argv[1]) : 7;
  const Size size{.files = argc > 2 ? std::atoi(argv[2]) : 5000,
                  .megabytes = argc > 3 ? std::atoi(argv[3]) : 200};
  std::string directory = "/tmp/tamo-move-cost-XXXXXX";
  if (runs < 1 || size.files < 1 || size.megabytes < 1 || ::mkdtemp(directory.data()) == nullptr) return 2;
  const auto root = layStage({.directory = directory, .programs = TAMO_BINARY_DIR "/bin", .bare = true});
  // Found by its name by every program on the stage.
  ::setenv("TAMO_STAGE", root.directory().c_str(), 1);
  measure(root, runs, size);
  ::unsetenv("TAMO_STAGE");
  strikeStage(root.directory());
  return 0;
}
