#include "platform/posix/descriptor.hpp"

#include <unistd.h>
#include <utility>

namespace tamo::platform {

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
  // The other's number first, so that a descriptor moved onto itself is kept.
  const int number = other.release();
  close();
  number_ = number;
  return *this;
}

int Descriptor::release() {
  return std::exchange(number_, -1);
}

void Descriptor::close() {
  // Not repeated after EINTR: the number is free by then, and may already be somebody else's.
  if (const int number = release(); number >= 0) ::close(number);
}

}  // namespace tamo::platform
