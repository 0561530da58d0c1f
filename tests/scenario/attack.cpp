#include "scenario/attack.hpp"

#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/posix/posix_files.hpp"

namespace tamo::scenario {
namespace {

namespace fs = std::filesystem;

constexpr auto letter = "a letter that is nobody's business\n";
const std::string madeByNobody = Victim::folder + "/made";

void write(const std::string& path, std::string_view bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

void makePipe(const std::string& path) {
  EXPECT_EQ(::mkfifo(path.c_str(), 0600), 0) << path;
}

}  // namespace

std::string nameOf(Trap trap) {
  switch (trap) {
    case Trap::Link:
      return "a link";
    case Trap::DanglingLink:
      return "a dangling link";
    case Trap::HardLink:
      return "a second name";
    case Trap::Pipe:
      return "a pipe";
    case Trap::HeldPipe:
      return "a pipe with its other end open";
    case Trap::Folder:
      return "a folder";
    case Trap::FolderWithLink:
      return "a folder with a link in it";
    case Trap::OtherFile:
      return "another file";
    case Trap::Nothing:
      return "nothing";
  }
  return "";
}

Victim::Victim(const stage::StageRoot& root) : root_(root) {
  fs::create_directories(root_.host(folder + "/below"));
  write(root_.host(file), letter);
  write(root_.host(folder + "/below/kept"), letter);
}

/// Links are relative, so that they lead to the same item for the stage's adapters and for the machine's own tools.
void Victim::lay(Trap trap, const std::string& path) {
  const fs::path place = root_.host(path);
  const auto linkTo = [&](const std::string& target) {
    fs::create_symlink(fs::path(root_.host(target)).lexically_relative(place.parent_path()), place);
  };
  fs::remove_all(place);
  switch (trap) {
    case Trap::Link:
      return linkTo(file);
    case Trap::DanglingLink:
      return linkTo(madeByNobody);
    case Trap::HardLink:
      return fs::create_hard_link(root_.host(file), place);
    case Trap::Pipe:
      return makePipe(place);
    case Trap::HeldPipe:
      makePipe(place);
      held_.emplace_back(::open(place.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
      return;
    case Trap::Folder:
      fs::create_directory(place);
      return;
    case Trap::FolderWithLink:
      fs::create_directory(place);
      fs::create_directory_symlink(fs::path(root_.host(folder)).lexically_relative(place), place / "link");
      return;
    case Trap::OtherFile:
      return write(place, "gui/501/studio.pell.tamo.core = {\n}\n");
    case Trap::Nothing:
      return;
  }
}

bool Victim::isUnharmed() const {
  const auto bytes = [this](const std::string& path) { return platform::posix::readWhole(root_.host(path)); };
  const auto names = std::distance(fs::directory_iterator(root_.host(folder)), fs::directory_iterator());
  return bytes(file) == letter && bytes(folder + "/below/kept") == letter && names == 2;
}

bool AttackedFiles::exists(const std::string& path) const {
  turn_("before exists", path);
  return files_.exists(path);
}

std::string AttackedFiles::resolvedPath(const std::string& path) const {
  turn_("before resolvedPath", path);
  return files_.resolvedPath(path);
}

std::optional<std::string> AttackedFiles::readWhole(const std::string& path) const {
  turn_("before readWhole", path);
  auto bytes = files_.readWhole(path);
  turn_("after readWhole", path);
  return bytes;
}

bool AttackedFiles::writeAtomically(const std::string& path, std::string_view bytes) {
  turn_("before writeAtomically", path);
  const bool written = files_.writeAtomically(path, bytes);
  turn_("after writeAtomically", path);
  return written;
}

bool AttackedFiles::createDirectories(const std::string& path) {
  turn_("before createDirectories", path);
  const bool created = files_.createDirectories(path);
  turn_("after createDirectories", path);
  return created;
}

bool AttackedFiles::remove(const std::string& path) {
  turn_("before remove", path);
  return files_.remove(path);
}

std::unique_ptr<platform::OutputFile> AttackedFiles::openForWriting(const std::string& path) {
  turn_("before openForWriting", path);
  auto opened = files_.openForWriting(path);
  turn_("after openForWriting", path);
  return opened;
}

}  // namespace tamo::scenario
