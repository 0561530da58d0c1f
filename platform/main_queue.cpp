#include "platform/main_queue.hpp"

#include <string>

#include "values/fatal.hpp"

namespace tamo::platform {

void requireMain(const MainQueue& queue, const char* where) {
  if (!queue.isMain()) values::fatal(std::string(where) + " entered off the main thread");
}

}  // namespace tamo::platform
