#pragma once

#include <optional>

#include "stage/picture/picture.hpp"
#include "stage/picture/scene.hpp"

namespace tamo::stage {

/// The picture of the last action of a journal; absent when none has begun by it. Pure.
[[nodiscard]] std::optional<Picture> pictureOf(const JournalReading& reading, const Present& present);

}  // namespace tamo::stage
