#ifndef VESK_EDIT_DOCUMENT_EDIT_SUPPORT_H
#define VESK_EDIT_DOCUMENT_EDIT_SUPPORT_H

// Shared by the handlers of the geometry commands.

#include "base/progress.h"
#include "edit/document/selection_internal.h"
#include "edit/mesh/mesh_change.h"
#include "model/each.h"
#include "model/owners.h"

#include <vector>

// A copy of the selected objects.
std::vector<object_t *> selected_objects();
// The selected objects without those that have a selected ancestor.
std::vector<object_t *> selected_top_objects();

// Those of the objects that have no ancestor among them, each once.
std::vector<object_t *> without_descendants(const std::vector<object_t *> &objects);

// These objects become the selection, as far as they are visible and unlocked: in the object modes
// they themselves, groups too, else their vertices or surfaces.
void select_results(const std::vector<object_t *> &objects);

// surfaces_by_owner and vertices_by_owner, those of each owner in the order of the list.
std::vector<owned_elements> surfaces_by_owner_in_order(const listitem *surfaces);
std::vector<owned_elements> vertices_by_owner_in_order(const listitem *vertices);

// The targets of the surface operations: the selected whole surfaces, and all surfaces of the
// selected objects and their descendants.
std::vector<owned_elements> target_surfaces();
std::size_t count_elements(const std::vector<owned_elements> &owners);

// An operation that replaces surfaces or gives them more corners: the computing half for one
// object, and its results.
struct surface_work {
    mesh_change &change;
    const std::vector<int> &surfaces;
    progress_t &progress;
    double &done;                       // one a surface
    int changed = 0;                    // surfaces
    std::vector<surface_t *> kept = {}; // those among them that keep their record
};
// `compute` returns false when the user cancelled. Runs it for every object with targets, then
// opens a whole-model undo, commits, recomputes normals and selects the results. Without any
// changed surface: "<what> - nothing selected".
void run_surface_operation(const char *what, bool (*compute)(surface_work &work));

// Recomputes the normals of each object once; one whose ancestor is in the list is done with it.
void calc_normals_of(const std::vector<object_t *> &objects);

// Opens a whole-model undo record. To be called between the computing half of an operation and its
// first change: a full list drops its oldest record for a new one, and an operation that is refused
// or cancelled must not cost a record.
void open_world_undo(const char *label);

// Box, redraw and status after a change.
void finish_edit();

#endif
