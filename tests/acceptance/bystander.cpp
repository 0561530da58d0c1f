#include "acceptance/bystander.hpp"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <sys/wait.h>
#include <unistd.h>

#include "acceptance/child.hpp"
#include "acceptance/place.hpp"
#include "platform/posix/posix_files.hpp"

namespace tamo::acceptance {
namespace {

/// It ends with whoever started it: nobody else would end it, and a terminal's signal does not reach its group.
constexpr auto script =
    "notes=$1 starter=$2\n"
    "for name in HUP INT QUIT TERM USR1 USR2 CONT; do trap \"echo $name >>'$notes'\" $name; done\n"
    "echo >>\"$notes\"\n"
    "while kill -0 \"$starter\"; do sleep 1; done\n"
    "rm -f \"$notes\"\n";

}  // namespace

Bystander::Bystander() {
  notes_ = (std::filesystem::temp_directory_path() / "tamo-bystander-XXXXXX").string();
  const int file = ::mkstemp(notes_.data());
  if (file < 0) throw PlaceError("no file for the notes of a bystander");
  ::close(file);
  pid_ = startProgram({.words = {"/bin/sh", "-c", script, "bystander", notes_, std::to_string(::getpid())}});
  // Its first line says that it listens.
  for (int look = 0; look < 500 && platform::posix::readWhole(notes_).value_or("").empty(); ++look)
    ::usleep(10'000);
}

Bystander::~Bystander() {
  ::kill(-pid_, SIGKILL);
  ::waitpid(pid_, nullptr, 0);
  ::unlink(notes_.c_str());
}

std::string Bystander::signalled() const {
  int status = 0;
  if (::waitpid(pid_, &status, WNOHANG | WUNTRACED) != 0) return "gone";
  auto text = platform::posix::readWhole(notes_).value_or("\n");
  return text.empty() ? text : text.substr(1);
}

}  // namespace tamo::acceptance
