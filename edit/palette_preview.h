#ifndef VESK_EDIT_PALETTE_PREVIEW_H
#define VESK_EDIT_PALETTE_PREVIEW_H

#include <array>

// Diffuse, ambient, emissive, specular (three parts each), shininess, transparency.
using palette_values = std::array<float, 14>;

// Sets an entry of the palette while its slider is dragged: no undo record and no state of the
// history. An entry that is not there is ignored.
void palette_preview(int entry, const palette_values &values);

// Ends the drag: the entry has its old values again. Any command that changes something does this
// first, so the one that keeps the new values makes one step. Nothing without a drag.
void palette_preview_end();

#endif
