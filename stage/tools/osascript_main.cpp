#include "stage/tools/osascript.hpp"
#include "stage/common/noted_tool.hpp"

int main(int argc, char** argv) {
  return tamo::stage::runNoted("osascript", tamo::stage::runOsascript, argc, argv);
}
