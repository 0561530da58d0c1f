#pragma once

#include <string_view>

namespace tamo::stage {

/// Whether a binary property list can be handed to the library that reads it. The library checks that every
/// object lies within the bytes; this looks for what it does not check:
///   - containers nested too deep, or in themselves;
///   - containers that are named so often that the list would grow without bound;
///   - an integer of more than 64 bits, which the library would silently cut. macOS keeps such a number; here
///     the whole list counts as unreadable;
///   - a set, which the library would take for an array. macOS keeps it as what it is; here the whole list
///     counts as unreadable;
///   - a key that is no text, or has a zero in it, at which the library would end the process. macOS takes
///     the zero for a character; here the whole list counts as unreadable.
/// Pure, any thread.
[[nodiscard]] bool binaryListIsSound(std::string_view bytes);

}  // namespace tamo::stage
