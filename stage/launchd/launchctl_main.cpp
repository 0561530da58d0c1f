#include "stage/common/noted_tool.hpp"
#include "stage/launchd/launchctl.hpp"

int main(int argc, char** argv) {
  return tamo::stage::runNoted("launchctl", tamo::stage::runLaunchctl, argc, argv);
}
