#include "stage/launchd/launchctl.hpp"

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  return tamo::stage::runLaunchctl(tamo::stage::StageRoot::fromEnvironment(), arguments);
}
