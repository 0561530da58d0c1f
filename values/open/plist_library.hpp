#pragma once

#include <plist/plist.h>

namespace tamo::values::open {

/// The functions of libplist, which is loaded with the first of these that is made and stays until the process ends. The
/// lists here are XML, but for a few: a process that lives for milliseconds should not have two libraries mapped, libplist
/// and the one for mathematics that it needs, before it has met a list that asks for them. Any thread.
struct PlistLibrary {
  /// Ends the process when the library that this was built with is not there, or has not all of them.
  PlistLibrary();

  decltype(&plist_free) free = nullptr;
  decltype(&plist_from_bin) fromBinary = nullptr;
  decltype(&plist_get_node_type) typeOf = nullptr;
  decltype(&plist_get_bool_val) getTruth = nullptr;
  decltype(&plist_get_uint_val) getInteger = nullptr;
  decltype(&plist_new_uint) newInteger = nullptr;
  decltype(&plist_compare_node_value) compare = nullptr;
  decltype(&plist_get_real_val) getReal = nullptr;
  decltype(&plist_get_string_ptr) textOf = nullptr;
  decltype(&plist_array_get_size) arraySize = nullptr;
  decltype(&plist_array_get_item) arrayItem = nullptr;
  decltype(&plist_dict_get_size) dictionarySize = nullptr;
  decltype(&plist_dict_new_iter) newIterator = nullptr;
  decltype(&plist_dict_next_item) nextItem = nullptr;
};

}  // namespace tamo::values::open
