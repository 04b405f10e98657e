// The stack of undo records and the calls that fill them. The meaning of the kinds is in
// undo_kinds.cpp.

#include "edit/document/undo.h"

#include "base/foreign.h"
#include "base/messages.h"
#include "base/prefs.h"
#include "base/redraw.h"
#include "base/ui_port.h"
#include "edit/document/journal_internal.h"
#include "edit/document/modes.h"
#include "edit/document/selection_scan.h"
#include "edit/document/undo_internal.h"
#include "model/change_marks.h"
#include "model/child_changes.h"
#include "model/each.h"
#include "model/freed_internal.h"
#include "model/identity.h"
#include "model/world.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace {

struct undo_list {
    undo_stack records; // oldest first
    int count = 0;      // linked to the script variable
};
undo_list &list()
{
    static auto *const record = new undo_list; // records are not freed at exit: the scene is gone
    return *record;
}

bool undo_is_off() { return prefs.undo_levels <= 0; }

undo_record *current() { return list().records.empty() ? nullptr : list().records.back().get(); }

void count_changed()
{
    list().count = static_cast<int>(list().records.size());
    ui_port().update_linked("undo_count");
}

// A plug-in's operation is destroyed when its record is dropped, even while the journal keeps the
// record.
void discard(const undo_record_ptr &record)
{
    if (!record->operation())
        return;
    const vesk_undoable_t undoable = record->operation()->undoable;
    record->data = std::monostate();
    record->broken = true;
    undoable_destroy(undoable);
}

void drop_oldest()
{
    const undo_record_ptr oldest = list().records.front();
    list().records.erase(list().records.begin());
    discard(oldest);
}

// The newest record for a setter to fill; null when undo is off or there is none. `name` is
// reported on the console then, null reports nothing.
undo_record *record_for(const char *name)
{
    if (undo_is_off())
        return nullptr;
    if (!current() && name)
        console_printf("%s - cal new_undo first!\n", name);
    if (current())
        current()->filled = true;
    return current();
}

// The same record's data, when it is of that sort.
template <class Data>
Data *data_for(const char *name)
{
    undo_record *record = record_for(name);
    return record ? std::get_if<Data>(&record->data) : nullptr;
}

void note_selection()
{
    selection_free(&current()->saved);
    current()->saved = selection_clone();
}

// The child of the world in front of which each object stands when those before it in the list are
// gone already; null at the end.
std::vector<object_t *> places_in_world(const std::vector<object_t *> &objects)
{
    struct neighbours {
        object_t *previous = nullptr, *next = nullptr;
    };
    std::unordered_map<object_t *, neighbours> row;
    object_t *previous = nullptr;
    for (object_t *child : each<object_t>(vesk_get_world()->children)) {
        row[previous].next = child;
        row[child].previous = previous;
        previous = child;
    }
    std::vector<object_t *> places;
    for (object_t *object : objects) {
        const neighbours at = row[object];
        row[at.previous].next = at.next;
        row[at.next].previous = at.previous;
        places.push_back(at.next);
    }
    return places;
}

// Takes objects out of the world, notifies all who hold them and notes their places.
std::vector<undo_removed_objects::removed_t> take_out(std::vector<object_t *> &&objects)
{
    std::erase_if(objects, [](const object_t *o) { return o->parent != vesk_get_world(); });
    const std::vector<object_t *> places = places_in_world(objects);
    std::vector<undo_removed_objects::removed_t> removed;
    child_changes changes;
    for (std::size_t i = 0; i < objects.size(); ++i) {
        removed.push_back({objects[i], places[i], {}});
        for_each_object(objects[i], [&](object_t *part) {
            removed.back().identities.push_back(identity_known(part));
        });
        changes.unlink(objects[i]);
    }
    changes.commit();
    freed_announce_left(objects);
    return removed;
}

} // namespace

int *undo_count_address() { return &list().count; }

const char *undo_label() { return current() ? current()->description.c_str() : nullptr; }

const undo_stack &undo_records() { return list().records; }

void undo_records_restore(const undo_stack &stack)
{
    list().records = stack;
    while (static_cast<int>(list().records.size()) > std::max(prefs.undo_levels, 0))
        drop_oldest();
    count_changed();
    set_undo_string(undo_label());
}

void undo_drop_newest()
{
    const undo_record_ptr newest = list().records.back();
    list().records.pop_back();
    discard(newest);
    count_changed();
    set_undo_string(undo_label());
}

void undo_drop_unfilled(unsigned serial)
{
    std::erase_if(list().records, [&](const undo_record_ptr &record) {
        return record->serial > serial && !record->filled;
    });
    count_changed();
    set_undo_string(undo_label());
}

void new_undo(int kind, const char *description)
{
    if (undo_is_off())
        return;
    debugf("setting up undo for %s\n", description);
    auto record = std::make_shared<undo_record>(kind, description);
    if (const undo_kind *row = undo_kind_of(kind)) {
        record->data = row->data();
        if (row->notes_selection)
            record->saved = selection_clone();
    }
    list().records.push_back(std::move(record));
    while (static_cast<int>(list().records.size()) > prefs.undo_levels)
        drop_oldest();
    count_changed();
    set_undo_string(description);
}

void new_undo_state(const char *description)
{
    new_undo(undo_state_kind, description);
    set_undo_all();
}

// ---- filling ----

void set_undo_vert(float x, float y, float z)
{
    if (auto *data = data_for<undo_vector>("set_undo_vert"))
        data->vector = {x, y, z};
}

void set_undo_vertices(const listitem *vertices)
{
    if (auto *data = data_for<undo_made_elements>("set_undo_vert"))
        data->vertices = elements_of<vertex>(vertices);
}

void set_undo_vertex_positions(const listitem *vertices, const listitem *objects)
{
    auto *data = data_for<undo_positions>("set_undo_vert");
    if (!data)
        return;
    const auto save = [data](const listitem *points) {
        for (vertex *point : each<vertex>(points))
            data->saved.push_back({point, point->position});
    };
    save(vertices);
    for (object_t *top : each<object_t>(objects))
        for_each_object(top, [&](object_t *object) { save(object->vertices); });
}

void set_undo_object(object_t *object)
{
    if (auto *data = data_for<undo_made_objects>("set_undo_object")) {
        data->objects = {object};
        note_selection();
    }
}

void set_undo_objectlist(const listitem *objects)
{
    if (auto *data = data_for<undo_made_objects>("set_undo_objectlist")) {
        data->objects = elements_of<object_t>(objects);
        note_selection();
    }
}

void set_undo_vertref(svertex *) { record_for("set_undo_vert"); }

void set_undo_selection(listitem *vertices, listitem *surfaces, listitem *objects, int take)
{
    undo_record *record = record_for("set_undo_selection(List");
    if (!record) {
        if (take != 0 && undo_is_off())
            clear_selection();
        return;
    }
    selection_free(&record->saved);
    record->saved = take != 0
                        ? selection_take()
                        : saved_selection_t{list_clone(vertices), list_clone(surfaces),
                                            list_clone(objects), select_mode(), chosen_edges_now()};
    record->saved.mode = select_mode();
}

void set_undo_surface(surface_t *surface)
{
    if (auto *data = data_for<undo_made_elements>("set_undo_surface"))
        data->surfaces = {surface};
}

void set_undo_object_surfacelist(object_t *object, const listitem *surfaces)
{
    if (auto *data = data_for<undo_made_elements>(nullptr)) {
        data->object = object;
        data->surfaces = elements_of<surface_t>(surfaces);
    }
}

void set_undo_all(void)
{
    if (auto *data = data_for<undo_model>(nullptr))
        data->model = model_state_capture();
}

int set_undo_delete_selection(void)
{
    undo_record *record = record_for(nullptr);
    if (!record)
        return 0;
    if (select_mode() != SELECT_TREE) {
        record->kind = UNDO_WORLD;
        record->data = undo_model{model_state_capture()};
        return 0;
    }
    auto removed = take_out(elements_of<object_t>(selection().objects));
    // Not before: each leaves the lists of all holders.
    record->data = undo_removed_objects{std::move(removed)};
    return 1;
}

void set_undo_resize(const point3_t *old_a, const point3_t *old_b, const point3_t *new_a,
                     const point3_t *new_b)
{
    if (auto *data = data_for<undo_resize>(nullptr))
        *data = {{*old_a, *old_b}, {*new_a, *new_b}};
}

namespace {

void set_turn(float degrees, int view, const point3_t &axis, const point3_t *centre)
{
    const selection_t &all = selection();
    if (auto *data = data_for<undo_turn>(nullptr))
        *data = {degrees, view, axis, centre ? *centre : all.box_centre,
                 centre || all.box_valid != 0};
}

} // namespace

void set_undo_rotate(float degrees, int view, const point3_t *centre)
{
    set_turn(degrees, view, {0, 0, 0}, centre);
}

void set_undo_rotate_axis_angle(const point3_t *axis, float degrees)
{
    set_turn(degrees, 0, *axis, nullptr);
}

void set_undo_texture_coords(const listitem *surfaces)
{
    undo_record *record = record_for(nullptr);
    if (!record)
        return;
    for (surface_t *surface : each<surface_t>(surfaces))
        record->texture_coords.save(surface);
}

void set_undo_object_texture_coords(object_t *object, std::span<const int> places)
{
    if (undo_record *record = record_for(nullptr))
        record->texture_coords.save(object, places);
}

void set_undo_surface_colour(surface_t *, int) {}

// ---- operations of plug-ins ----

void undoable_destroy(const vesk_undoable_t &operation)
{
    if (!operation.destroy)
        return;
    const foreign_scope scope(code_of_function(operation.destroy));
    operation.destroy(operation.user_data, 1);
}

void add_undoable(const char *description, const vesk_undoable_t *undoable)
{
    const vesk_undoable_t operation = *undoable;
    const bool recorded = !undo_is_off();
    if (recorded) {
        new_undo(UNDO_EXTERNAL, description);
        current()->data =
            undo_operation{operation, is_foreign_code(code_of_function(operation.undo))};
        current()->filled = true;
    }
    if (operation.perform) {
        const foreign_scope scope(code_of_function(operation.perform));
        operation.perform(operation.user_data);
    }
    mark_all_suspect();
    freed_filter_foreign();
    if (!recorded)
        undoable_destroy(operation);
}

// ---- undoing ----

void clear_all_undos(void)
{
    const undo_stack cleared = std::exchange(list().records, {});
    for (const undo_record_ptr &record : cleared)
        discard(record);
    count_changed();
    set_undo_string(nullptr);
}

// ---- commands ----

void UNDO(void)
{
    if (undo_is_off())
        return;
    if (!current()) {
        display_message("nothing to undo.");
        return;
    }
    display_message("undo...");
    const undo_record_ptr record = list().records.back();
    // Records of an unknown kind stay where they are.
    if (const undo_kind *row = undo_kind_of(record->kind)) {
        journal_settle();
        // A selection is in no state of its own: what is left of it is restored.
        if (record->broken && record->kind != UNDO_SELECTION) {
            journal_restore_before(record);
        } else {
            undo_set_jumping(
                true); // a record that loses elements now cannot reverse its change after a redo
            row->reverse(*record);
            if (row->kind != UNDO_TEXTURE_COORDS)
                record->texture_coords.restore(); // coordinates that slid along
            undo_set_jumping(false);
        }
        journal_undone(record);
        redraw_all();
    }
    display_message("undo done");
    display_status();
}
