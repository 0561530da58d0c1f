#pragma once

#include "soak/tally.hpp"

namespace tamo::soak {

/// Two processes that follow each other under one pid as fast as the machine can, looked at as the product
/// looks: each must be another one, even where both began in the same tick of the kernel's clock.
void reusePids(Tally& tally, int times);
/// The same by a look that knows no start times, to which the one process is the other; that has to be counted.
void identityCanary(Tally& tally);

}  // namespace tamo::soak
