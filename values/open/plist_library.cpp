#include "values/open/plist_library.hpp"

#include <dlfcn.h>
#include <string>

#include "values/fatal.hpp"

namespace tamo::values::open {
namespace {

/// Every function of the library has to be there: one that were called and is not would be a jump to nowhere.
template <class Function>
void find(void* library, const char* name, Function& function) {
  function = reinterpret_cast<Function>(::dlsym(library, name));
  if (function == nullptr) fatal(std::string("libplist has no ") + name);
}

}  // namespace

PlistLibrary::PlistLibrary() {
  // It is never let go, so that the second time is a look at what is loaded.
  void* library = ::dlopen(TAMO_PLIST_LIBRARY, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  if (library == nullptr) fatal("no libplist: " TAMO_PLIST_LIBRARY);
  find(library, "plist_free", free);
  find(library, "plist_from_bin", fromBinary);
  find(library, "plist_get_node_type", typeOf);
  find(library, "plist_get_bool_val", getTruth);
  find(library, "plist_get_uint_val", getInteger);
  find(library, "plist_new_uint", newInteger);
  find(library, "plist_compare_node_value", compare);
  find(library, "plist_get_real_val", getReal);
  find(library, "plist_get_string_ptr", textOf);
  find(library, "plist_array_get_size", arraySize);
  find(library, "plist_array_get_item", arrayItem);
  find(library, "plist_dict_get_size", dictionarySize);
  find(library, "plist_dict_new_iter", newIterator);
  find(library, "plist_dict_next_item", nextItem);
}

}  // namespace tamo::values::open
