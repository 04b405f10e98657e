#ifndef VESK_MODEL_IDENTITY_INTERNAL_H
#define VESK_MODEL_IDENTITY_INTERNAL_H

#include "model/identity.h"

#include <cstdint>

// Grows whenever an object gets or loses a number: under the same count the numbers that are known for
// some objects are theirs.
std::uint64_t identity_change_count();

#endif
