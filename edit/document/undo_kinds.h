#ifndef VESK_EDIT_DOCUMENT_UNDO_KINDS_H
#define VESK_EDIT_DOCUMENT_UNDO_KINDS_H

// The kinds of undo records: the data of each and its reversal.

#include "edit/document/model_state.h"
#include "edit/document/undo.h"
#include "edit/document/undo_texture.h"

#include <functional>
#include <span>
#include <string>
#include <variant>
#include <vector>

// ---- data that reverse a change: each kind of record has one of these ----

struct undo_vector {
    point3_t vector = {0, 0, 0}; // translation, or the factors that reverse a scaling
};
struct undo_resize {
    point3_t before[2] = {}, after[2] = {}; // corners of the box, minimum and maximum
};
struct undo_turn {
    float degrees = 0;
    int view = 0;              // into which the axis looks ...
    point3_t axis = {0, 0, 0}; // ... or the axis of kind UNDO_ROTATE_AXIS
    point3_t centre = {0, 0, 0};
    bool has_centre = false;
};
struct undo_made_elements {
    object_t *object = nullptr; // of the surfaces; null: the one that owns each
    std::vector<surface_t *> surfaces;
    std::vector<vertex *> vertices;
};
struct undo_made_objects {
    std::vector<object_t *> objects;
};
struct undo_removed_objects {
    struct removed_t {
        object_t *object;            // null when it was freed
        object_t *before;            // the child of the world in front of which it stood, or null
        std::vector<int> identities; // of the object and its descendants, depth first
    };
    std::vector<removed_t> removed;
};
struct undo_model {
    state_ptr model;
};
struct undo_positions {
    struct saved_t {
        vertex *point;
        point3_t position;
    };
    std::vector<saved_t> saved;
};
struct undo_operation {
    vesk_undoable_t undoable = {};
    bool foreign = false; // a plug-in's
};
// monostate: the selection alone, texture coordinates alone, and kinds that are not in the table.
using undo_data = std::variant<std::monostate, undo_vector, undo_resize, undo_turn,
                               undo_made_elements, undo_made_objects, undo_removed_objects,
                               undo_model, undo_positions, undo_operation>;

struct undo_record {
    int kind;
    const unsigned serial; // grows with every record
    std::string description;
    bool filled = false; // by the setter of its kind
    bool broken =
        false; // an undo or a jump through the history freed elements that its reversal needs
    saved_selection_t saved;
    undo_texture_coords texture_coords; // that changed, or slid along
    undo_data data;

    undo_record(int new_kind, const char *text);
    ~undo_record();
    undo_record(const undo_record &) = delete;
    undo_record &operator=(const undo_record &) = delete;

    // The operation that reverses it; null for records that hold data.
    [[nodiscard]] const undo_operation *operation() const
    {
        return std::get_if<undo_operation>(&data);
    }
};
struct undo_kind {
    int kind;
    undo_data (*data)();  // of a new record
    bool notes_selection; // when the record is opened: the reversal works on it
    bool clears_all;      // the reversal drops every record
    void (*reverse)(undo_record &record);
};
// The kinds whose reversal is an operation of floors above; handed in at the start, as the rows of
// commands are.
void undo_install_kinds(std::span<const undo_kind> rows);
// Runs `change` on what was selected when the record was made; the live selection comes back.
void undo_on_saved_selection(const undo_record &record, const std::function<void()> &change);
// The data of a new record.
template <class Data>
undo_data undo_data_of()
{
    return Data{};
}
// Null for a code that is not in the table.
const undo_kind *undo_kind_of(int kind);

#endif
