#include "stage/tools/ditto.hpp"

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  return tamo::stage::runDitto(tamo::stage::StageRoot::fromEnvironment(), arguments);
}
