#ifndef VESK_EDIT_TRANSFORM_UNDO_H
#define VESK_EDIT_TRANSFORM_UNDO_H

#include "edit/document/undo_internal.h"

// The kinds of undo records whose reversal moves, turns or scales the selection of that time.
std::span<const undo_kind> transform_undo_kinds();

#endif
