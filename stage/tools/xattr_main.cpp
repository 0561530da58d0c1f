#include "stage/tools/xattr.hpp"
#include "stage/common/noted_tool.hpp"

int main(int argc, char** argv) {
  return tamo::stage::runNoted("xattr", tamo::stage::runXattr, argc, argv);
}
