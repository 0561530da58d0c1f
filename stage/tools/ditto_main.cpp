#include "stage/common/noted_tool.hpp"
#include "stage/tools/ditto.hpp"

int main(int argc, char** argv) {
  return tamo::stage::runNoted("ditto", tamo::stage::runDitto, argc, argv);
}
