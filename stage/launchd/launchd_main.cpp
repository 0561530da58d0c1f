#include "stage/launchd/launchd_loop.hpp"

int main() {
  return tamo::stage::runLaunchd(tamo::stage::StageRoot::fromEnvironment());
}
