#include "stage/control/tamo_stage.hpp"

int main(int argc, char** argv) {
  return tamo::stage::runTamoStage(std::vector<std::string>(argv + 1, argv + argc));
}
