#pragma once

#include <string_view>

namespace tamo::values::open {

/// Whether a binary property list can be handed to the library that reads it. Not so, because macOS refuses it
/// and the library does not:
///   - a table of offsets that is not exactly as large as the list says, or leads out of the objects;
///   - an object that reaches into the table;
///   - containers nested too deep, in themselves, or named so often that the list would grow without bound;
///   - a key that is no text.
/// Nor so, although macOS reads it, because the library would read something else or end the process:
///   - a zero in a text, at which the library would cut it;
///   - a byte beyond ASCII in a narrow text, or half a surrogate pair in a wide one;
///   - an integer of more than 64 bits, a set, a null.
/// Pure, any thread.
[[nodiscard]] bool binaryListIsSound(std::string_view bytes);

}  // namespace tamo::values::open
