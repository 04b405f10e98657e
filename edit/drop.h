#ifndef VESK_EDIT_DROP_H
#define VESK_EDIT_DROP_H

// Command "drop": each selected object moves along y until its lowest point has that height, or with
// the word below, down until it touches what lies below it, the lowest ones first; where nothing
// does it stays. Selected vertices, edges and surfaces move as one, and fall onto all that does not
// hang on them, their own object's other surfaces, too. Undo "drop".
void command_drop(const char *height);

#endif
