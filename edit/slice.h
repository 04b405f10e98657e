#ifndef VESK_EDIT_SLICE_H
#define VESK_EDIT_SLICE_H

// Command "slice": cuts the selected objects, descendants included, or in surface and vertex mode
// the whole selected surfaces, by the plane through a point with a normal; "front" is the side that
// the normal points to. Words: px py pz nx ny nz, "both", "front" or "back" for what is kept, 1 for
// caps. With both sides kept and caps each object falls into two: its back keeps the record, its
// front becomes a new object right behind it. Of surfaces without their objects both sides are never
// capped. Objects of which nothing is left go. Undo "slice".
void command_slice(int count, const char *const *words);

#endif
