#ifndef VESK_EDIT_SURFACE_ATTRIBUTES_H
#define VESK_EDIT_SURFACE_ATTRIBUTES_H

// Commands on the whole surfaces that are selected and on all surfaces of the selected objects,
// descendants included. Each opens one whole-model undo; nothing selected: a status line only.

// "surface_flip_normals": reverses each polygon. "surface_change_vertex_order": moves the first
// corner of each surface to the end.
void command_surface_flip_normals();
void command_surface_change_vertex_order();
// "surface_set_shaded" and "surface_set_twosided" (0 or 1), "set_surface_type" (0 polygon, 1 closed
// line, 2 line), "set_col" (an entry of the palette); other numbers are refused.
void command_surface_set_shaded(int smooth);
void command_surface_set_twosided(int twosided);
void command_set_surface_type(int type);
void command_set_col(int entry);

#endif
