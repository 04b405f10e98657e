#ifndef VESK_EDIT_EXTRUDE_NORMALS_H
#define VESK_EDIT_EXTRUDE_NORMALS_H

// Commands that move or copy surfaces along their normals. Whole-model undo; without anything usable
// selected, or with a number that says nothing, only a word. Lines are left.

// Command "extrude_each": every selected polygon moves that far along its own normal, joined to
// where it was by walls. The moved polygons are selected. Undo "extrude each".
void command_extrude_each(float distance);

// Command "extrude_normals": connected polygons move as one, so far that the planes of all of them
// move by `distance`, also round edges; walls stand on the border. The moved polygons are selected.
// Undo "extrude normals".
void command_extrude_normals(float distance);

// Command "shell": surfaces get an inner side, `thickness` (above 0) behind them by the same measure
// and reversed; with `rim` walls close the borders that no other surface continues. The new surfaces
// are selected. Undo "shell".
void command_shell(float thickness, int rim);

#endif
