#ifndef VESK_EDIT_DISSOLVE_H
#define VESK_EDIT_DISSOLVE_H

// Takes elements away and leaves polygons: edge mode: the surfaces on both sides of a selected edge
// become one, and vertices that are left between two sides go too; vertex mode: the surfaces round
// a selected vertex become one; surface mode: connected selected surfaces become one. Refused where
// the surfaces would enclose others or touch themselves.
void command_dissolve();

// Connected selected elements become one vertex at the middle of theirs.
void command_collapse();

#endif
