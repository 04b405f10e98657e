#ifndef VESK_EDIT_DOCUMENT_MODEL_STATE_INTERNAL_H
#define VESK_EDIT_DOCUMENT_MODEL_STATE_INTERNAL_H

// Shared by the capture and the restoring of states.

#include "edit/document/model_state.h"

// The newest state together with the live objects that equal its entries.
struct tracked_model {
    struct tracked_object {
        object_t *object;
        std::uint64_t stamp; // of the object when it equalled its image
    };
    state_ptr state;                     // null: nothing is known
    std::vector<tracked_object> objects; // in the order of the state; set_objects numbers them
    const object_t *world = nullptr;
    std::uint64_t model_count = 0, link_count = 0, palette_count = 0;
    unsigned selection_count = 0;
    bool interrupted = false; // what was marked is not known: a state was begun and not taken

    // -1 for an object that is not among them.
    [[nodiscard]] int place_of(const object_t *object) const;
    void set_objects(std::vector<tracked_object> &&all);
};
tracked_model &tracked();

#endif
