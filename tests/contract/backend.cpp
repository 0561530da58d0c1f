#include "contract/backend.hpp"

#include <fstream>
#include <sstream>
#include <thread>

namespace tamo::contract {

void PrintTo(const BackendKind& kind, std::ostream* stream) {
  *stream << kind.name;
}

void Contract::lay(std::string_view name, std::string_view bytes) const {
  std::ofstream file(host(name), std::ios::binary);
  file << bytes;
  if (!file.flush()) ADD_FAILURE() << "cannot lay " << name;
}

std::string Contract::contentsOf(std::string_view name) const {
  std::ostringstream bytes;
  bytes << std::ifstream(host(name), std::ios::binary).rdbuf();
  return bytes.str();
}

bool eventually(const std::function<bool()>& isTrue) {
  using namespace std::chrono_literals;
  for (int look = 0; look < 2500; ++look) {
    if (isTrue()) return true;
    std::this_thread::sleep_for(2ms);
  }
  return false;
}

std::string kindName(const ::testing::TestParamInfo<BackendKind>& info) {
  return info.param.name;
}

}  // namespace tamo::contract
