#include "platform/stage/stage_kernel_processes.hpp"

#include <array>
#include <cerrno>
#include <charconv>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/vfs.h>
#include <unistd.h>

#include "platform/posix/descriptor.hpp"
#include "values/fatal.hpp"

namespace tamo::stage {
namespace {

using platform::Descriptor;

/// Takes the next word off the front of `rest`; empty when there is none.
std::string_view takeWord(std::string_view& rest) {
  const auto start = std::min(rest.find_first_not_of(' '), rest.size());
  const auto end = std::min(rest.find_first_of(" \n", start), rest.size());
  const auto word = rest.substr(start, end - start);
  rest.remove_prefix(end);
  return word;
}

template <class Integer>
bool read(std::string_view word, Integer& value) {
  const auto* end = word.data() + word.size();
  const auto [stopped, error] = std::from_chars(word.data(), end, value);
  return error == std::errc() && stopped == end;
}

/// The kernel refuses the id of a thread that does not lead its process, and knows a process by it as long
/// as it has not been reaped.
Descriptor processDescriptor(std::int32_t pid) {
  return Descriptor(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0)));
}

std::optional<ProcStat> statOf(std::int32_t pid) {
  const auto path = "/proc/" + std::to_string(pid) + "/stat";
  const Descriptor opened(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!opened) return std::nullopt;
  // Room for a name and fifty of the longest numbers; the kernel gives the line in one reading.
  std::array<char, 2048> line;
  const auto size = platform::uninterrupted([&] { return ::read(opened.get(), line.data(), line.size()); });
  if (size <= 0) return std::nullopt;
  return procStat({line.data(), static_cast<std::size_t>(size)});
}

/// Process descriptors of newer kernels lie in a file system of their own, where every process has an inode
/// number that no other ever gets; before, all shared one.
bool isNumbered(const Descriptor& process) {
  constexpr long processFileSystem = 0x50494446;
  struct statfs system{};
  return ::fstatfs(process.get(), &system) == 0 && system.f_type == processFileSystem;
}

std::uint64_t inodeOf(const Descriptor& process) {
  struct stat found{};
  return ::fstat(process.get(), &found) == 0 ? found.st_ino : 0;
}

}  // namespace

/// The name of the program stands in brackets and may hold brackets and blanks, so the fields are counted
/// behind the last one.
std::optional<ProcStat> procStat(std::string_view line) {
  const auto close = line.rfind(')');
  if (close == std::string_view::npos) return std::nullopt;
  auto rest = line.substr(close + 1);
  const auto state = takeWord(rest);
  takeWord(rest);  // the parent
  ProcStat found;
  if (state.size() != 1 || !read(takeWord(rest), found.group)) return std::nullopt;
  found.state = state.front();
  for (int field = 6; field < 22; ++field)
    takeWord(rest);
  if (!read(takeWord(rest), found.startTicks)) return std::nullopt;
  return found;
}

StageKernelProcesses::StageKernelProcesses()
    : microsecondsPerTick_(1'000'000 / static_cast<std::uint64_t>(::sysconf(_SC_CLK_TCK))) {}

bool StageKernelProcesses::numbers(const Descriptor& process) const {
  if (numbering_ == Numbering::Unknown)
    numbering_ = isNumbered(process) ? Numbering::Present : Numbering::Absent;
  return numbering_ == Numbering::Present;
}

std::optional<platform::ProcessInfo> StageKernelProcesses::info(std::int32_t pid) const {
  if (pid <= 0) return std::nullopt;
  // Should the pid change hands between the two looks, the mixture equals neither process, which reads as
  // gone, and that is what became of the first one.
  const auto process = processDescriptor(pid);
  if (!process && errno == ENOSYS) values::fatal("a stage needs process descriptors");
  if (!process) return std::nullopt;
  const auto stat = statOf(pid);
  if (!stat) return std::nullopt;
  const auto belowTick = numbers(process) ? inodeOf(process) % microsecondsPerTick_ : 0;
  const auto start = stat->startTicks * microsecondsPerTick_ + belowTick;
  return platform::ProcessInfo{.startSeconds = start / 1'000'000,
                               .startMicroseconds = start % 1'000'000,
                               .group = stat->group,
                               .zombie = stat->state == 'Z' || stat->state == 'X'};
}

}  // namespace tamo::stage
