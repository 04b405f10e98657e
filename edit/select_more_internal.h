#ifndef VESK_EDIT_SELECT_MORE_INTERNAL_H
#define VESK_EDIT_SELECT_MORE_INTERNAL_H

// What the commands that change the selection share: the elements of the present mode, object by
// object. A further mode of elements needs its cases in select_more.cpp.

#include "edit/mesh/edge_topology.h"
#include "edit/mesh/element_graph.h"
#include "model/object.h"

#include <vector>

// Of one object: flags of its surfaces, edges or vertices.
struct chosen_elements {
    object_t *object;
    flat_ptr mesh;
    topology_ptr topology; // in edge mode, else null
    element_flags chosen;
};

// Whether the mode has elements; says "<what> - choose ..." when not.
bool has_elements_or_says(const char *what);

// Those that are selected; all that can be selected.
std::vector<chosen_elements> selected_elements();
std::vector<chosen_elements> selectable_elements();

// These become the selection: an undo record and a message, unless they are it already.
void choose_elements(const char *what, const std::vector<chosen_elements> &all);

#endif
