#include "app/core_main.hpp"
#include "platform/platform.hpp"

/// The build files say which build this is: the shipped one, or one of the test builds.
int main(int argc, char** argv) {
  constexpr tamo::TamoCoreConfig config{.writesReceipts = TAMO_WRITES_RECEIPTS, .proofHome = TAMO_PROOF_HOME};
  const auto host = tamo::platform::makeHost();
  tamo::CoreMain::main(host->platform(), config, {argv, argv + argc});
  return 0;
}
