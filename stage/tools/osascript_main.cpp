#include "stage/common/noted_tool.hpp"
#include "stage/tools/osascript.hpp"

int main(int argc, char** argv) {
  return tamo::stage::runNoted("osascript", tamo::stage::runOsascript, argc, argv);
}
