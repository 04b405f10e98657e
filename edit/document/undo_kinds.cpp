// The kinds of undo records: their reversals, their data, and how they let go of freed elements.

#include "edit/document/undo_kinds.h"

#include "base/foreign.h"
#include "base/messages.h"
#include "base/redraw.h"
#include "edit/document/edit_support.h"
#include "edit/document/model_restore.h"
#include "edit/document/modes.h"
#include "edit/document/selection_scan.h"
#include "edit/document/undo_internal.h"
#include "model/alloc.h"
#include "model/change_marks.h"
#include "model/child_changes.h"
#include "model/freed.h"
#include "model/identity.h"
#include "model/matrix.h"
#include "model/normals.h"
#include "model/object_tree.h"
#include "model/world.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace {

// ---- the data of every record ----

struct living_records {
    std::unordered_set<undo_record *> records;
    bool listening = false;
    bool jumping = false; // elements are freed by the history now
    unsigned last_serial = 0;
};
living_records &living()
{
    static auto *const record = new living_records; // outlives every record
    return *record;
}

// Sets of the freed elements, made when a record first asks.
class freed_sets {
public:
    explicit freed_sets(const freed_things &freed) : freed_(freed) {}
    [[nodiscard]] const freed_things &things() const { return freed_; }
    bool has(vertex *v) { return look(v, freed_.vertices, &vertices_); }
    bool has(surface_t *s) { return look(s, freed_.surfaces, &surfaces_); }
    bool has(object_t *o) { return look(o, freed_.objects, &objects_); }

private:
    template <class T>
    static bool look(T *element, const std::vector<T *> &freed, std::unordered_set<const T *> *set)
    {
        if (freed.empty() || !element)
            return false;
        if (set->empty())
            set->insert(freed.begin(), freed.end());
        return set->count(element) != 0;
    }

    const freed_things &freed_;
    std::unordered_set<const vertex *> vertices_;
    std::unordered_set<const surface_t *> surfaces_;
    std::unordered_set<const object_t *> objects_;
};

// Each returns whether something went.
template <class T>
bool drop(listitem **list, freed_sets &freed)
{
    bool any = false;
    for (T *element : each<T>(*list))
        any = any || freed.has(element);
    if (!any)
        return false;
    owned_list kept;
    for (T *element : each<T>(*list)) {
        if (!freed.has(element))
            kept.add(element);
    }
    list_free(list);
    *list = kept.release();
    return true;
}

template <class T>
bool drop(T **element, freed_sets &freed)
{
    if (!freed.has(*element))
        return false;
    *element = nullptr;
    return true;
}

template <class T>
bool drop(std::vector<T *> &elements, freed_sets &freed)
{
    return std::erase_if(elements, [&](T *element) { return freed.has(element); }) != 0;
}

bool drop(chosen_edges &edges, freed_sets &freed)
{
    return edges && std::erase_if(*edges, [&](const edge_ends &ends) {
                        return freed.has(ends.a) || freed.has(ends.b);
                    }) != 0;
}

bool drop_from(undo_made_elements &made, freed_sets &freed)
{
    const bool any = drop(made.surfaces, freed) | drop(made.vertices, freed);
    return drop(&made.object, freed) || any;
}
bool drop_from(undo_made_objects &made, freed_sets &freed) { return drop(made.objects, freed); }
bool drop_from(undo_removed_objects &data, freed_sets &freed)
{
    bool any = false;
    for (auto &removed : data.removed) {
        any |= drop(&removed.object, freed);
        drop(&removed.before, freed); // stands at the end then
    }
    return any;
}
bool drop_from(undo_positions &positions, freed_sets &freed)
{
    return std::erase_if(positions.saved, [&](const auto &p) { return freed.has(p.point); }) != 0;
}
template <class Data>
bool drop_from(Data &, freed_sets &) // names nothing
{
    return false;
}

bool drop_freed(undo_record &record, freed_sets &freed)
{
    bool any = drop<vertex>(&record.saved.vertices, freed);
    any |= drop<surface_t>(&record.saved.surfaces, freed);
    any |= drop<object_t>(&record.saved.objects, freed);
    any |= drop(record.saved.edges, freed);
    any |= record.texture_coords.drop(freed.things(),
                                      [&](surface_t *surface) { return freed.has(surface); });
    return std::visit([&](auto &data) { return drop_from(data, freed); }, record.data) || any;
}

void drop_freed_everywhere(const freed_things &freed)
{
    freed_sets sets(freed);
    for (undo_record *record : living().records) {
        if (drop_freed(*record, sets) && living().jumping)
            record->broken = true;
    }
}

void hold(const undo_made_elements &made, freed_things &held)
{
    held.surfaces.insert(held.surfaces.end(), made.surfaces.begin(), made.surfaces.end());
    held.vertices.insert(held.vertices.end(), made.vertices.begin(), made.vertices.end());
    if (made.object)
        held.objects.push_back(made.object);
}
void hold(const undo_made_objects &made, freed_things &held)
{
    held.objects.insert(held.objects.end(), made.objects.begin(), made.objects.end());
}
void hold(const undo_removed_objects &data, freed_things &held)
{
    for (const auto &removed : data.removed) {
        for (object_t *object : {removed.object, removed.before}) {
            if (object)
                held.objects.push_back(object);
        }
    }
}
void hold(const undo_positions &positions, freed_things &held)
{
    for (const auto &saved : positions.saved)
        held.vertices.push_back(saved.point);
}
template <class Data>
void hold(const Data &, freed_things &) // names nothing
{
}

void hold_everything(freed_things &held)
{
    for (const undo_record *record : living().records) {
        append_elements(record->saved.vertices, &held.vertices);
        append_elements(record->saved.surfaces, &held.surfaces);
        append_elements(record->saved.objects, &held.objects);
        record->texture_coords.hold(held);
        std::visit([&](const auto &data) { hold(data, held); }, record->data);
    }
}

// ---- parts of reversals ----

// A reversal works on copies: after a redo the record is reversed again.
saved_selection_t copy_of(const saved_selection_t &saved)
{
    return {list_clone(saved.vertices), list_clone(saved.surfaces), list_clone(saved.objects),
            saved.mode, saved.edges};
}

void restore_saved_selection(undo_record &record)
{
    clear_selection();
    saved_selection_t saved = copy_of(record.saved);
    owned_list objects;
    for (object_t *object : each<object_t>(saved.objects)) {
        if (object_exists(object) != 0)
            objects.add(object);
    }
    list_free(&saved.objects);
    saved.objects = objects.release();
    selection_restore(&saved);
    find_bounding_box();
    redraw_all();
    tcl_command("set_select_mode_ui %s", select_mode_name(select_mode()));
    undo_drop_newest();
    selection_changed("undo");
}

// Takes the surfaces out of the object and frees them.
void delete_surfaces(object_t *object, const std::unordered_set<const surface_t *> &gone)
{
    freed_batch batch;
    object->num_surfaces -= list_unlink_if<surface_t>(
        &object->surfaces, batch,
        [&](const surface_t *surface, std::size_t /*place*/) { return gone.count(surface) != 0; });
    object_mark(object, CHANGED_TOPOLOGY);
}

// The same for vertices; corners that name one are removed too, so that none names a freed vertex.
void delete_vertices(object_t *object, const std::unordered_set<const vertex *> &gone)
{
    freed_batch batch;
    for (surface_t *surface : each<surface_t>(object->surfaces)) {
        owned_list kept;
        for (svertex *reference : each<svertex>(surface->refs)) {
            if (gone.count(reference->vertex) == 0) {
                kept.add(reference);
                continue;
            }
            --surface->num_refs;
            myfree(reference);
        }
        list_free(&surface->refs);
        surface->refs = kept.release();
    }
    object->num_vertices -= list_unlink_if<vertex>(
        &object->vertices, batch,
        [&](const vertex *point, std::size_t /*place*/) { return gone.count(point) != 0; });
    object_mark(object, CHANGED_TOPOLOGY);
}

std::vector<object_t *> living_owners(std::vector<object_t *> &&owners)
{
    std::erase(owners, nullptr);
    return unique_objects(owners);
}

// ---- the reversals; each takes its record off ----

void delete_surfaces_of(const undo_made_elements &made)
{
    if (made.object) {
        delete_surfaces(made.object, {made.surfaces.begin(), made.surfaces.end()});
        return;
    }
    for (surface_t *surface : made.surfaces) {
        if (object_t *owner = object_of_surface(nullptr, surface))
            delete_surfaces(owner, {surface});
    }
}

// Vertices that were made with the surfaces are removed with them: those that the record names.
void reverse_made_elements(undo_record &record)
{
    const auto &made = std::get<undo_made_elements>(record.data);
    if (!made.surfaces.empty())
        delete_surfaces_of(made);
    const std::unordered_set<const vertex *> gone(made.vertices.begin(), made.vertices.end());
    for (object_t *owner : living_owners(owners_of_vertices(made.vertices)))
        delete_vertices(owner, gone);
    undo_drop_newest();
}

void reverse_positions(undo_record &record)
{
    std::vector<vertex *> vertices;
    for (const auto &saved : std::get<undo_positions>(record.data).saved) {
        saved.point->position = saved.position;
        vertices.push_back(saved.point);
    }
    for (object_t *owner : living_owners(owners_of_vertices(vertices))) {
        object_mark(owner, CHANGED_POSITIONS);
        object_calc_normals(owner);
    }
    find_bounding_box();
    undo_drop_newest();
}

void reverse_texture_coords(undo_record &record)
{
    record.texture_coords.restore();
    undo_drop_newest();
    selection_changed("undo");
}

void reverse_creation(undo_record &record)
{
    std::vector<object_t *> living = std::get<undo_made_objects>(record.data).objects;
    std::erase_if(living, [](const object_t *object) { return object_exists(object) == 0; });
    if (record.kind == UNDO_OBJECT && living.empty())
        debugf("undo add ob - object no longer exists");
    objects_delete(without_descendants(living));
    restore_saved_selection(record);
}

void reverse_deletion(undo_record &record)
{
    auto &all = std::get<undo_removed_objects>(record.data).removed;
    owned_list restored;
    // From the last one: each stands in front of one that is there already.
    for (auto removed = all.rbegin(); removed != all.rend(); ++removed) {
        if (!removed->object)
            continue;
        object_reparent_before(removed->object, vesk_get_world(), removed->before);
        auto identity = removed->identities.begin();
        for_each_object(removed->object, [&](object_t *part) {
            if (identity != removed->identities.end() && *identity++ != 0)
                identity_assign(identity[-1], part);
        });
    }
    for (const auto &removed : all) {
        if (removed.object)
            restored.add(removed.object);
    }
    all.clear();
    record.broken = true;
    clear_selection();
    select_objectlist(restored.get());
    clear_all_undos();
}

void restore_model(const undo_record &record)
{
    if (const state_ptr model = std::get<undo_model>(record.data).model)
        model_state_restore(model, nullptr);
}

void reverse_world(undo_record &record)
{
    clear_selection();
    restore_model(record);
    clear_all_undos();
}

void reverse_state(undo_record &record)
{
    restore_model(record);
    undo_drop_newest();
}

void reverse_operation(undo_record &record)
{
    const vesk_undoable_t undoable =
        record.operation() ? record.operation()->undoable : vesk_undoable_t{};
    if (undoable.undo) {
        const foreign_scope scope(code_of_function(undoable.undo));
        undoable.undo(undoable.user_data);
    }
    mark_all_suspect();
    freed_filter_foreign();
    undo_drop_newest();
}

// clang-format off
const undo_kind kinds[] = {
    {UNDO_SELECTION,       undo_data_of<std::monostate>,       false, false, restore_saved_selection},
    {UNDO_SURFACE,         undo_data_of<undo_made_elements>,   false, false, reverse_made_elements},
    {UNDO_DELETE,          undo_data_of<undo_removed_objects>, false, true, reverse_deletion},
    {UNDO_WORLD_1,         undo_data_of<undo_model>,           false, true, reverse_world},
    {UNDO_WORLD_2,         undo_data_of<undo_model>,           false, true, reverse_world},
    {UNDO_WORLD_3,         undo_data_of<undo_model>,           false, true, reverse_world},
    {UNDO_WORLD_4,         undo_data_of<undo_model>,           false, true, reverse_world},
    {UNDO_WORLD,           undo_data_of<undo_model>,           false, true, reverse_world},
    {UNDO_OBJECT,          undo_data_of<undo_made_objects>,    false, false, reverse_creation},
    {UNDO_POSITIONS,       undo_data_of<undo_positions>,       false, false, reverse_positions},
    {UNDO_VERTICES,        undo_data_of<undo_made_elements>,   false, false, reverse_made_elements},
    {UNDO_OBJECTS,         undo_data_of<undo_made_objects>,    false, false, reverse_creation},
    {UNDO_TEXTURE_COORDS,  undo_data_of<std::monostate>,       false, false, reverse_texture_coords},
    {UNDO_SURFACES,        undo_data_of<undo_made_elements>,   false, false, reverse_made_elements},
    {UNDO_EXTERNAL,        undo_data_of<undo_operation>,       false, false, reverse_operation},
    {undo_state_kind,      undo_data_of<undo_model>,           false, false, reverse_state},
};
// clang-format on

std::span<const undo_kind> installed_kinds;

} // namespace

void undo_install_kinds(std::span<const undo_kind> rows) { installed_kinds = rows; }

void undo_on_saved_selection(const undo_record &record, const std::function<void()> &change)
{
    saved_selection_t live = selection_take();
    const int mode = select_mode();
    saved_selection_t then = copy_of(record.saved);
    selection_restore(&then);
    find_bounding_box();
    change();
    saved_selection_t spent = selection_take();
    selection_free(&spent);
    live.mode = mode;
    selection_restore(&live);
    find_bounding_box();
}

const undo_kind *undo_kind_of(int kind)
{
    for (const std::span<const undo_kind> rows :
         {std::span<const undo_kind>(kinds), installed_kinds}) {
        for (const undo_kind &row : rows) {
            if (row.kind == kind)
                return &row;
        }
    }
    return nullptr;
}

undo_record::undo_record(int new_kind, const char *text)
    : kind(new_kind), serial(++living().last_serial), description(text)
{
    if (!std::exchange(living().listening, true)) {
        freed_add_listener(drop_freed_everywhere);
        freed_add_holder(hold_everything);
    }
    living().records.insert(this);
}

undo_record::~undo_record()
{
    living().records.erase(this); // elements freed below are announced, but not to this record
    selection_free(&saved);
    freed_batch at_once;
    if (const auto *taken = std::get_if<undo_removed_objects>(&data)) {
        for (const auto &entry : taken->removed) {
            if (entry.object && !entry.object->parent)
                object_free(entry.object);
        }
    }
    if (operation())
        undoable_destroy(operation()->undoable);
}

unsigned undo_last_serial() { return living().last_serial; }

void undo_set_jumping(bool jumping) { living().jumping = jumping; }

void undo_break_external()
{
    for (undo_record *record : living().records)
        record->broken = record->broken || record->operation();
}
