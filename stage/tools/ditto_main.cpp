#include "stage/tools/ditto.hpp"
#include "stage/common/noted_tool.hpp"

int main(int argc, char** argv) {
  return tamo::stage::runNoted("ditto", tamo::stage::runDitto, argc, argv);
}
