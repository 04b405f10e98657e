#ifndef VESK_EDIT_DOCUMENT_MODEL_STATE_INTERNAL_H
#define VESK_EDIT_DOCUMENT_MODEL_STATE_INTERNAL_H

// What the taking and the restoring of states share.

#include "edit/document/model_state.h"

#include <unordered_map>

// The newest state together with the live objects that equal its entries.
struct tracked_model {
    struct tracked_object {
        object_t *object;
        std::uint64_t stamp; // of the object when it equalled its image
    };
    state_ptr state; // null: nothing is known
    std::vector<tracked_object> objects;
    std::unordered_map<const object_t *, int> places; // in `objects`
    const object_t *world = nullptr;
    std::uint64_t model_count = 0, tree_count = 0, palette_count = 0;
    unsigned selection_count = 0;
};
tracked_model &tracked();

// The normal that three or more corners give, as surface_calc_normal computes it; 0 0 0 for fewer.
point3_t normal_of_corners(const flat_mesh &mesh, int surface);

// Accounting of the arrays of images.
void images_hold(const flat_mesh &geometry);
void images_release(const flat_mesh &geometry);

// ---- selection ----

std::shared_ptr<const selection_image>
selection_image_take(const std::vector<tracked_model::tracked_object> &objects);
using objects_by_identity = std::unordered_map<int, object_t *>;
void selection_image_restore(const selection_image &image, const objects_by_identity &objects);

// ---- geometry ----

// Makes the object's vertices and surfaces those of the image and sets its flat mesh. Where the
// lists are known to be the image's, values are written; else the holders of references are told
// that all vertices and surfaces are gone, though their records are used again.
void object_write_geometry(object_t *object, const flat_mesh &image);

#endif
