#ifndef VESK_EDIT_INSET_H
#define VESK_EDIT_INSET_H

// Command "inset": the selected polygons get a smaller polygon inside, at this distance from their
// sides, and quads around it; `how` is "each" (every polygon for itself) or "region" (connected ones
// as one, along their outer border). `depth` lifts the inner ones along the normal. The width is
// limited where sides would run into each other. The picture stays in place. Undo "inset"; the
// inner polygons are selected. Refuses, with a word and without a record: a negative width, numbers
// that are none, another word, regions without a border.
void command_inset(float width, float depth, const char *how);

#endif
