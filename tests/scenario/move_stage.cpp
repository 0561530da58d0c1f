#include "scenario/move_stage.hpp"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <thread>

#include "platform/posix/posix_files.hpp"
#include "platform/stage/application_opening.hpp"
#include "platform/stage/running_programs.hpp"
#include "values/property_list.hpp"

namespace tamo::scenario {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

std::string bytesOf(const fs::path& path) {
  return platform::posix::readWhole(path.string()).value_or("");
}

std::string described(const fs::directory_entry& item) {
  struct stat found{};
  if (::lstat(item.path().c_str(), &found) != 0) return "gone";
  std::ostringstream text;
  text << std::oct << found.st_mode << std::dec;
  if (item.is_symlink()) {
    text << " to " << fs::read_symlink(item.path()).string();
  } else if (item.is_regular_file()) {
    text << " of " << found.st_size << " at " << found.st_mtim.tv_sec << "." << found.st_mtim.tv_nsec << " "
         << std::hash<std::string>()(bytesOf(item.path()));
  }
  return text.str();
}

std::vector<std::string> words(const std::string& bytes, char end) {
  std::vector<std::string> found;
  std::istringstream rest(bytes);
  for (std::string word; std::getline(rest, word, end);)
    found.push_back(word);
  return found;
}

}  // namespace

MoveStage::MoveStage() {
  fs::remove_all(root().host(installedPath));
  place({.where = "downloaded", .build = "5000", .quarantined = true});
}

void MoveStage::place(const stage::AppCopy& copy) const {
  stage::placeCopy(root(), TAMO_BINARY_DIR "/bin", copy);
}

Started MoveStage::startMove(const std::string& copy) const {
  return stage_.start({"--core-action", "move-to-applications"}, copy);
}

Ended MoveStage::move(const std::string& copy) const {
  return Stage::finish(startMove(copy));
}

pid_t MoveStage::openTamo(const std::string& copy) const {
  const auto path = stage::copyPath(root(), copy);
  EXPECT_FALSE(stage::openApplicationNow(root(), path).has_value());
  for (int attempt = 0; attempt < 1000; ++attempt) {
    const auto running = tamosFrom(path);
    // From its own note on it minds SIGTERM and writes nothing more until its end.
    const std::string note = running.empty() ? "" : "app " + std::to_string(running.front()) + ": started";
    if (!note.empty() && bytesOf(root().control("app.log")).contains(note)) return running.front();
    std::this_thread::sleep_for(2ms);
  }
  ADD_FAILURE() << path << " does not run";
  return 0;
}

void MoveStage::quit(pid_t tamo) {
  if (tamo > 0) ::kill(tamo, SIGTERM);
}

std::vector<pid_t> MoveStage::tamosFrom(const std::string& path) const {
  std::vector<pid_t> pids;
  for (const auto& program : stage::runningPrograms(root()))
    if (program.bundle == path) pids.push_back(program.pid);
  return pids;
}

std::string MoveStage::result() const {
  return stage_.file(resultFolder + "/move-to-applications.json").value_or("none");
}

std::string MoveStage::front() const {
  const auto lines = words(bytesOf(root().control("front")), '\n');
  return lines.empty() ? "none" : lines.front();
}

std::vector<std::string> MoveStage::prompts() const {
  auto lines = words(bytesOf(root().control("prompts")), '\n');
  for (auto& line : lines)
    line.erase(0, line.find(' ') + 1);
  return lines;
}

std::vector<std::string> MoveStage::osascriptArguments() const {
  return words(bytesOf(root().control("osascript-arguments")), '\0');
}

bool MoveStage::exists(const std::string& path) const {
  return fs::exists(fs::symlink_status(root().host(path)));
}

std::string MoveStage::build(const std::string& path) const {
  const auto list = values::readPropertyList(bytesOf(root().host(path + "/Contents/Info.plist")));
  const auto* version = list ? list->entry("CFBundleVersion") : nullptr;
  return version != nullptr && version->text() != nullptr ? *version->text() : "none";
}

Tree MoveStage::tree(const std::string& path) const {
  Tree found;
  const auto top = root().existing(path);
  if (!top) return found;
  for (const auto& item : fs::recursive_directory_iterator(*top))
    found[item.path().lexically_relative(*top).string()] = described(item);
  return found;
}

int MoveStage::marked(const std::string& path) const {
  int count = 0;
  for (const auto& item : fs::recursive_directory_iterator(root().host(path)))
    if (::lgetxattr(item.path().c_str(), "user.com.apple.quarantine", nullptr, 0) >= 0) ++count;
  return count;
}

std::map<std::string, std::string> MoveStage::trash() const {
  std::map<std::string, std::string> found;
  std::error_code none;
  for (const auto& item : fs::directory_iterator(root().host(trashPath), none)) {
    const auto name = item.path().filename().string();
    found[name] = item.is_symlink() ? "link" : build(trashPath + "/" + name);
  }
  return found;
}

std::string resultOf(const std::string& code) {
  const bool ok = code == "moved" || code == "opened";
  return std::string(R"({"ok":)") + (ok ? "true" : "false") + R"(,"code":")" + code + R"("})";
}

std::string moveLine(const std::string& code) {
  return "default move-to-applications -> {public:" + code + "}";
}

}  // namespace tamo::scenario
