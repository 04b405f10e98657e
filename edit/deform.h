#ifndef VESK_EDIT_DEFORM_H
#define VESK_EDIT_DEFORM_H

// Deformers of the selection; each is one undo record of its own name. What soft selection and
// symmetry say holds for them, too. Axes and pivots are words (edit/axis_pivot.h), z and the middle
// of the selection where they are left out.

// "bend": by degrees in all about an axis through the pivot; what lies along the longer side of the
// selection's box becomes an arc of the same length.
void command_bend(int count, const char *const *words);
// "taper": sizes across the axis go from 1 at the lower end to a factor at the upper one.
void command_taper(int count, const char *const *words);
// "twist": turned about the axis by degrees in all from one end to the other; the pivot stays.
void command_twist(int count, const char *const *words);
// "inflate": by a share of the way onto a sphere round the pivot, as large as the points are far
// from it in the mean.
void command_inflate(int count, const char *const *words);
// "noise": each vertex by up to an amount in a direction by chance, the same one for the same seed and
// place.
void command_noise(int count, const char *const *words);
// "push_normals": each vertex by a distance along its normal.
void command_push_normals(int count, const char *const *words);

#endif
