#ifndef VESK_EDIT_KNIFE_H
#define VESK_EDIT_KNIFE_H

// Command "knife": cuts the polygons of the selected objects, descendants included, or the whole
// selected surfaces, along a line on them; one word, x y z of each of its points, which may lie on
// corners, sides or inside of polygons. All of the line lies on one object. What it does to polygons:
// see knife_cut. Undo "knife"; the pieces are selected in surface mode, else the selection stays.
void command_knife(const char *coordinates);

#endif
