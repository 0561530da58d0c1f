#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/tamo_log.hpp"
#include "values/text.hpp"

/// The command's surroundings: its files, its terminal and its exit status.
namespace tamo::support {
namespace {

/// As grep ends, so that a script can ask whether a log has anything of the companion.
enum Exit { somethingTold = 0, nothingFound = 1, notUnderstood = 2 };

/// A terminal that doesn't tell its width may have it in the environment. What goes into a file or a pipe doesn't
/// depend on the terminal it was started from.
std::optional<std::size_t> terminalWidth() {
  winsize size{};
  if (::isatty(STDOUT_FILENO) == 0) return std::nullopt;
  if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col != 0) return size.ws_col;
  const char* columns = std::getenv("COLUMNS");
  const auto number = columns == nullptr ? std::nullopt : values::decimalInt32(columns);
  return number && *number > 0 ? std::optional(static_cast<std::size_t>(*number)) : std::nullopt;
}

bool isFolder(int descriptor) {
  struct stat status{};
  return ::fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode);
}

/// A reading that fails ends the log, and is remembered.
std::size_t readSome(int descriptor, char* buffer, std::size_t size, int& failure) {
  ssize_t got = 0;
  do
    got = ::read(descriptor, buffer, size);
  while (got < 0 && errno == EINTR);
  if (got < 0) failure = errno;
  return got < 0 ? 0 : static_cast<std::size_t>(got);
}

/// The likeliest folder to be handed over is an archive of the system's log.
int cannotRead(const std::string& name, int failure) {
  const char* hint = failure == EISDIR ? " (a .logarchive has to be exported first: log show --archive)" : "";
  std::fprintf(stderr, "tamo-log: %s: %s%s\n", name.c_str(), std::strerror(failure), hint);
  return notUnderstood;
}

void print(std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
}

int tell(const std::string& name, const Manner& manner) {
  const bool isInput = name == "-";
  const int descriptor = isInput ? STDIN_FILENO : ::open(name.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return cannotRead(name, errno);
  int failure = 0;
  const auto source = [&](char* buffer, std::size_t size) {
    return readSome(descriptor, buffer, size, failure);
  };
  // A folder can be opened, but not read.
  if (isFolder(descriptor)) failure = EISDIR;
  const bool found = failure == 0 && tellLog(isInput ? "standard input" : name, source, manner, print);
  if (!isInput) ::close(descriptor);
  if (failure != 0) return cannotRead(name, failure);
  return found ? somethingTold : nothingFound;
}

/// What cannot be read outweighs what was told, and that outweighs what had nothing to tell.
int overall(int before, int status) {
  if (before == notUnderstood || status == notUnderstood) return notUnderstood;
  return before == somethingTold ? somethingTold : status;
}

/// A story that could not be written, as on a full disk, must not end like one that was read.
int tellAll(const Wish& wish) {
  const Manner manner{.width = widthFor(wish, terminalWidth()), .all = wish.all};
  int status = nothingFound;
  for (const auto& name : wish.logs) {
    if (wish.logs.size() > 1) print("== " + name + "\n\n");
    status = overall(status, tell(name, manner));
  }
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return status;
  return cannotRead("standard output", errno);
}

int main(const std::vector<std::string>& words) {
  const auto wish = wishOf(words);
  if (!wish) {
    std::fputs(std::string(usage()).c_str(), stderr);
    return notUnderstood;
  }
  if (!wish->help) {
    // Started without a word it would wait in silence, as if it hung.
    if (wish->logs == std::vector<std::string>{"-"} && ::isatty(STDIN_FILENO) != 0)
      std::fputs("tamo-log: reading what is typed, up to Ctrl-D; --help tells what it reads\n", stderr);
    return tellAll(*wish);
  }
  print(usage());
  return std::fflush(stdout) == 0 ? somethingTold : notUnderstood;
}

}  // namespace
}  // namespace tamo::support

int main(int count, char** words) {
  return tamo::support::main(std::vector<std::string>(words + 1, words + count));
}
