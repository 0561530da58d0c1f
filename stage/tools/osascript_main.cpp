#include "stage/tools/osascript.hpp"

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  return tamo::stage::runOsascript(tamo::stage::StageRoot::fromEnvironment(), arguments);
}
