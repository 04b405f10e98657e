#ifndef VESK_EDIT_DOCUMENT_MODEL_STATE_INTERNAL_H
#define VESK_EDIT_DOCUMENT_MODEL_STATE_INTERNAL_H

// Shared by the capture and the restoring of states.

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

#endif
