#ifndef VESK_EDIT_DOCUMENT_SCENE_COUNTS_H
#define VESK_EDIT_DOCUMENT_SCENE_COUNTS_H

// How much there is, and how much of it is selected. Several parts of the window ask after every
// change; the objects are walked once for all of them.
struct scene_counts_t {
    int objects = 0; // without the world
    int surfaces = 0;
    int vertices = 0;
    int chosen_objects = 0;  // entries of the selection
    int chosen_surfaces = 0; // those of selected objects and what lies below them too
    int chosen_vertices = 0;
};
scene_counts_t scene_counts();

#endif
