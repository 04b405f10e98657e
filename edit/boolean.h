#ifndef VESK_EDIT_BOOLEAN_H
#define VESK_EDIT_BOOLEAN_H

#include "edit/mesh/solid_boolean.h"

#include <optional>
#include <vector>

// The operation of a word: union, difference or intersection.
std::optional<solid_operation> boolean_operation_of(const char *word);
// Where the solids go through themselves by more than rounding alone may bring about.
std::vector<self_crossing_t> boolean_self_crossings(const solid_meshes &solids,
                                                    const solid_faces &faces);

// Command "boolean": union, difference or intersection of the first selected object with all others,
// in the order of the selection; each is one solid with its descendants. The result is the first
// object, with its name and texture, facing outwards; the others go, or with a second word 1 stay,
// hidden. Lines of the first stay as they are. Refused, with the fault selected, when a solid is not
// closed or goes through itself. Undo "boolean".
void command_boolean(int count, const char *const *words);

#endif
