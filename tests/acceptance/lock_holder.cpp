#include "acceptance/lock_holder.hpp"

#include <fcntl.h>
#include <sys/file.h>

#include "acceptance/place.hpp"

namespace tamo::acceptance {

LockHolder::LockHolder(const std::string& lockFile)
    : file_(::open(lockFile.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
  if (!file_ || ::flock(file_.get(), LOCK_EX | LOCK_NB) != 0) throw PlaceError("the job lock cannot be held");
}

}  // namespace tamo::acceptance
