#include "stage/common/noted_tool.hpp"
#include "stage/tools/xattr.hpp"

int main(int argc, char** argv) {
  return tamo::stage::runNoted("xattr", tamo::stage::runXattr, argc, argv);
}
