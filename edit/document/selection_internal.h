#ifndef VESK_EDIT_DOCUMENT_SELECTION_INTERNAL_H
#define VESK_EDIT_DOCUMENT_SELECTION_INTERNAL_H

#include "edit/document/edge_selection.h"
#include "edit/document/selection.h"

#include <vector>

selection_t &selection();
int select_mode();
// Whether the mode's list is that of the vertices: vertex and edge mode.
inline bool mode_has_vertices(int mode) { return mode == SELECT_VERTEX || mode == SELECT_EDGE; }
// Whether it is the list of vertices or of surfaces.
inline bool mode_has_elements(int mode)
{
    return mode == SELECT_SURFACE || mode_has_vertices(mode);
}

// Three lists, the edges chosen among the vertices, and the mode they belong to, taken out of the selection or copied from it.
struct saved_selection_t {
    listitem *vertices = nullptr;
    listitem *surfaces = nullptr;
    listitem *objects = nullptr;
    int mode = SELECT_TREE;
    chosen_edges edges = {};
};
saved_selection_t selection_take();               // the live selection is empty afterwards
saved_selection_t selection_clone();              // new nodes
void selection_restore(saved_selection_t *saved); // gives its lists up, sets mode and counts
void selection_free(saved_selection_t *saved);

// Sets the mode and nothing else.
void selection_set_mode(int mode);

// The owner of each listed surface or vertex, by its place in the list; null for none. One walk of
// the world.
std::vector<object_t *> owners_of_vertices(const std::vector<vertex *> &vertices);
std::vector<object_t *> owners_of_surfaces(const std::vector<surface_t *> &surfaces);

// Adds without a rule and without announcing: objects as they are, each once.
void selection_add_objects(const std::vector<object_t *> &objects);
void selection_add_surfaces(const std::vector<surface_t *> &surfaces);
void selection_add_vertices(const std::vector<vertex *> &vertices);

// Makes distinct elements the whole list of their sort, without announcing and without touching them.
void selection_set_elements(const std::vector<surface_t *> &surfaces);
void selection_set_elements(const std::vector<vertex *> &vertices);

// The surfaces of the world all of whose vertices are in `vertices`, in tree order.
std::vector<surface_t *> surfaces_within(const std::vector<vertex *> &vertices);

// Adds by the object rule, without announcing.
void selection_add_by_rule(const std::vector<object_t *> &objects);

// Takes out, without announcing, these objects and the vertices and surfaces they own themselves.
void selection_drop_owned_by(const std::vector<object_t *> &objects);

// Grows with every announced change.
unsigned selection_change_count();
void selection_reset_for_test();

#endif
