#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "contract/child.hpp"

/// The failures of the kernel that no test can bring about by what it lays on a disk: a call that is refused.
namespace tamo::contract {

// Older processors have calls of their own for paths without a folder, and the C library uses them.
#ifdef SYS_mkdir
constexpr int makingDirectories = SYS_mkdir;
#else
constexpr int makingDirectories = SYS_mkdirat;
#endif
#ifdef SYS_readlink
constexpr int readingLinks = SYS_readlink;
#else
constexpr int readingLinks = SYS_readlinkat;
#endif

/// A call by its number (SYS_fsync), and the error that it fails with.
struct RefusedCall {
  int number;
  int error;
};

/// From now on the kernel refuses the call to this thread and to all that it starts. There is no way back, so
/// it is for a child of the test. False when this host has no such filters.
inline bool refuse(RefusedCall call) {
  std::array<sock_filter, 4> rules{{
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<std::uint32_t>(call.number), 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<std::uint32_t>(call.error)),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  }};
  sock_fprog program{.len = static_cast<unsigned short>(rules.size()), .filter = rules.data()};
  return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

/// How a condition comes out in a process that the kernel refuses a call.
enum class Refused { True, False, NotPossibleHere, Died };

[[nodiscard]] inline Refused refused(RefusedCall call, const std::function<bool()>& condition) {
  Child child([&] {
    ::_exit(static_cast<int>(!refuse(call) ? Refused::NotPossibleHere
                             : condition() ? Refused::True
                                           : Refused::False));
  });
  const int status = child.reap();
  return WIFEXITED(status) ? static_cast<Refused>(WEXITSTATUS(status)) : Refused::Died;
}

}  // namespace tamo::contract
