#include "platform/stage/privileges.hpp"

#include <fcntl.h>
#include <linux/capability.h>
#include <sched.h>
#include <string>
#include <string_view>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "platform/posix/byte_stream.hpp"
#include "platform/posix/descriptor.hpp"
#include "values/fatal.hpp"

namespace tamo::stage {
namespace {

/// The two words that the kernel keeps the capabilities of a thread in.
struct Capabilities {
  __user_cap_data_struct words[2] = {};
};

__user_cap_header_struct ownHeader() {
  return {.version = _LINUX_CAPABILITY_VERSION_3, .pid = 0};
}

bool has(int capability) {
  auto header = ownHeader();
  Capabilities own;
  if (::syscall(SYS_capget, &header, own.words) != 0) return false;
  const auto number = static_cast<unsigned>(capability);
  return ((own.words[number / 32].effective >> (number % 32)) & 1U) != 0;
}

bool writeLine(const char* path, const std::string& line) {
  const platform::Descriptor file(::open(path, O_WRONLY | O_CLOEXEC));
  return file && platform::writeAll(file.get(), line);
}

/// The kernel lets a process map groups only after it has renounced setgroups. One id on one line is all that a
/// process without privileges may map, and all that is needed.
bool enterOwnNamespace() {
  const auto user = std::to_string(::geteuid());
  const auto group = std::to_string(::getegid());
  if (::unshare(CLONE_NEWUSER) != 0) return false;
  return writeLine("/proc/self/setgroups", "deny") && writeLine("/proc/self/uid_map", "0 " + user + " 1\n") &&
         writeLine("/proc/self/gid_map", "0 " + group + " 1\n");
}

}  // namespace

void renouncePrivileges() {
  // Without this, root would get everything back with the next program that it starts.
  const bool forGood = ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0;
  auto header = ownHeader();
  const Capabilities none;
  const bool gone = ::syscall(SYS_capset, &header, none.words) == 0;
  if (!forGood || !gone) values::fatal("root's privileges cannot be given up");
}

/// What counts is the right to write where owner and mode say no; who has that is administrator enough.
bool takeAdministratorPrivileges() {
  return has(CAP_DAC_OVERRIDE) || enterOwnNamespace();
}

}  // namespace tamo::stage
