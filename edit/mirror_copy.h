#ifndef VESK_EDIT_MIRROR_COPY_H
#define VESK_EDIT_MIRROR_COPY_H

// Halves and their mirror images.

// Command "mirror_copy": a mirrored copy of the selection at the plane across an axis through a pivot
// (the origin, unless said otherwise). Object modes with a weld distance of 0: as objects beside the
// originals. Else in the same object: vertices within the distance of the plane are put onto it and
// are common to both halves, and surfaces that then lie in the plane go, for they would part the
// inside. The copies are selected. Undo "mirror copy".
void command_mirror_copy(int count, const char *const *words);

// Command "symmetrize": what of the selection lies on the side of the plane that is named, positive
// or negative, is kept, the rest of it replaced by the mirror image. Surfaces that the plane crosses
// are cut there; the halves share their vertices on it. Undo "symmetrize".
void command_symmetrize(int count, const char *const *words);

#endif
