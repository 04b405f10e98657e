#include "base/foreign.h"
#include "base/messages.h"
#include "base/redraw.h"
#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "model/alloc.h"
#include "model/deferred_records.h"
#include "model/each.h"
#include "model/freed.h"
#include "model/object_tree.h"
#include "model/world.h"

#include <cstring>
#include <unordered_set>
#include <utility>

namespace {

struct callback_t {
    vesk_selection_callback_t function;
    void *user_data;
};

struct state_t {
    selection_t *current = nullptr; // null only after a plug-in installed a null record
    int mode = SELECT_TREE;
    std::vector<callback_t> callbacks;
    unsigned changes = 0;
    bool listening = false;
};

state_t state;

void drop_freed(const freed_things &freed)
{
    selection_t &all = selection();
    all.num_vertices -= list_drop_freed(&all.vertices, freed.vertices);
    all.num_surfaces -= list_drop_freed(&all.surfaces, freed.surfaces);
    all.num_objects -= list_drop_freed(&all.objects, freed.objects);
    chosen_edges_drop(freed.vertices);
}

void hold_selected(freed_things &held)
{
    const selection_t &all = selection();
    append_elements(all.vertices, &held.vertices);
    append_elements(all.surfaces, &held.surfaces);
    append_elements(all.objects, &held.objects);
}

bool selectable(const object_t *object) { return object->visible != 0 && object->locked == 0; }

// ---- the object rule ----

// Calls visit(object) for `top` and its descendants, not below those for which it is false.
template <class Visit>
void walk_while(object_t *top, Visit &&visit)
{
    std::vector<object_t *> stack = {top};
    while (!stack.empty()) {
        object_t *object = stack.back();
        stack.pop_back();
        if (!visit(object))
            continue;
        std::vector<object_t *> children;
        append_elements(object->children, &children);
        stack.insert(stack.end(), children.rbegin(), children.rend());
    }
}

// Elements of objects. Those of a list that was deferred and that nobody touched are taken without touching
// it, and are known to be there once.
template <class T>
struct gathered_t {
    std::vector<T *> elements;
    std::unordered_set<const object_t *> untouched; // where they are from
    bool all_untouched = true;

    void add(const object_t *object, const std::vector<T *> *known, const listitem *list)
    {
        all_untouched = all_untouched &&
                        (list == nullptr || (known != nullptr && untouched.insert(object).second));
        if (known != nullptr)
            elements.insert(elements.end(), known->begin(), known->end());
        else
            append_elements(list, &elements);
    }
};

void gather_vertices(object_t *top, gathered_t<vertex> *out)
{
    for_each_object(top, [&](object_t *object) {
        if (selectable(object))
            out->add(object, untouched_vertices(object), object->vertices);
    });
}

void gather_surfaces(object_t *top, gathered_t<surface_t> *out)
{
    for_each_object(top, [&](object_t *object) {
        if (selectable(object))
            out->add(object, untouched_surfaces(object), object->surfaces);
    });
}

template <class T>
bool holds_just(const listitem *list, const std::vector<T *> &elements)
{
    auto at = elements.begin();
    for (const T *element : each<T>(list)) {
        if (at == elements.end() || *at++ != element)
            return false;
    }
    return at == elements.end();
}

// Adds them to the list of their kind.
template <class T>
void add(const gathered_t<T> &found, const listitem *list,
         void (*add_each)(const std::vector<T *> &))
{
    if (found.elements.empty() || (found.all_untouched && holds_just(list, found.elements)))
        return;
    if (found.all_untouched && list == nullptr)
        selection_set_elements(found.elements);
    else
        add_each(found.elements);
}

void gather_leaf_objects(object_t *top, std::vector<object_t *> *out)
{
    walk_while(top, [&](object_t *object) {
        if (!selectable(object))
            return false;
        if (object->type != OBJECT_POLY) // a group: its members instead
            return true;
        out->push_back(object);
        return false;
    });
}

void gather_lights(object_t *top, std::vector<object_t *> *out)
{
    for_each_object(top, [&](object_t *object) {
        if (selectable(object) && object->type == OBJECT_LIGHT)
            out->push_back(object);
    });
}

void announce_added(const char *tag)
{
    find_bounding_box();
    selection_changed(tag);
}

void remove_objects(const std::vector<object_t *> &objects)
{
    selection_t &all = selection();
    all.num_objects -= list_drop_freed(&all.objects, objects);
}

// The list entry of an object in the present mode, for taking it out again.
void remove_by_rule(const std::vector<object_t *> &objects)
{
    selection_t &all = selection();
    if (mode_has_vertices(state.mode)) {
        std::vector<vertex *> vertices;
        for (object_t *object : objects)
            for_each_object(object, [&](object_t *o) { append_elements(o->vertices, &vertices); });
        all.num_vertices -= list_drop_freed(&all.vertices, vertices);
    } else if (state.mode == SELECT_SURFACE) {
        std::vector<surface_t *> surfaces;
        for (object_t *object : objects)
            for_each_object(object, [&](object_t *o) { append_elements(o->surfaces, &surfaces); });
        all.num_surfaces -= list_drop_freed(&all.surfaces, surfaces);
    } else if (state.mode == SELECT_TREE) {
        std::vector<object_t *> tops;
        for (object_t *object : objects)
            tops.push_back(object_top_ancestor(object));
        remove_objects(tops);
    } else { // the list holds members of groups; what lies below a polygon object has its own entry
        std::vector<object_t *> members;
        for (object_t *object : objects) {
            walk_while(object, [&](object_t *o) {
                members.push_back(o);
                return state.mode == SELECT_LIGHT || o->type != OBJECT_POLY;
            });
        }
        remove_objects(members);
    }
}

void add_surfaces_by_rule(const std::vector<surface_t *> &surfaces)
{
    if (mode_has_vertices(state.mode)) {
        std::vector<vertex *> vertices;
        for (const surface_t *surface : surfaces)
            append_surface_vertices(surface, &vertices);
        selection_add_vertices(vertices);
    } else if (state.mode == SELECT_SURFACE) {
        selection_add_surfaces(surfaces);
    } else {
        std::vector<object_t *> owners = owners_of_surfaces(surfaces);
        std::erase(owners, nullptr);
        selection_add_by_rule(unique_objects(owners));
    }
}

} // namespace

selection_t &selection()
{
    if (state.current == nullptr) {
        state.current = static_cast<selection_t *>(myalloc(sizeof(selection_t)));
        *state.current = {};
    }
    if (!std::exchange(state.listening, true)) {
        freed_add_listener(drop_freed);
        freed_add_holder(hold_selected);
    }
    return *state.current;
}

int select_mode() { return state.mode; }

void selection_set_mode(int mode) { state.mode = mode; }

unsigned selection_change_count() { return state.changes; }

int vesk_get_current_selection(listitem **vertices, listitem **surfaces, listitem **objects)
{
    const selection_t &all = selection();
    if (vertices != nullptr)
        *vertices = all.vertices;
    if (surfaces != nullptr)
        *surfaces = all.surfaces;
    if (objects != nullptr)
        *objects = all.objects;
    return state.mode;
}

int vesk_get_selection(listitem **vertices, listitem **surfaces, listitem **objects)
{
    console_printf("vesk_get_selection now deprecated - use vesk_get_current_selection(List "
                   "**vertexlist, List **surfacelist, List **objectlist) instead\n");
    return vesk_get_current_selection(vertices, surfaces, objects);
}

void vesk_current_selection_replace(selection_t *fresh)
{
    if (fresh == nullptr)
        console_printf("NULL selection passed to vesk_current_selection_replace\n");
    selection_t &old = selection();
    list_free(&old.vertices);
    list_free(&old.surfaces);
    list_free(&old.objects);
    chosen_edges_forget();
    myfree(state.current);
    state.current = fresh;
}

void vesk_add_selection_changed_callback(vesk_selection_callback_t function, void *user_data)
{
    state.callbacks.push_back({function, user_data});
}

void selection_changed(const char *tag)
{
    ++state.changes;
    debugf("SELECTION CHANGED (%s)\n", tag);
    for (size_t i = 0; i < state.callbacks.size(); ++i) { // a callback may add another
        const callback_t callback = state.callbacks[i];
        const foreign_scope scope(code_of_function(callback.function));
        callback.function(tag, callback.user_data);
    }
}

void clear_selection(void)
{
    selection_t &all = selection();
    list_free(&all.vertices);
    list_free(&all.surfaces);
    list_free(&all.objects);
    all.num_vertices = all.num_surfaces = all.num_objects = 0;
    all.box_valid = 0;
    chosen_edges_forget();
    selection_changed("clear_selection");
}

// ---- adding ----

void selection_add_vertices(const std::vector<vertex *> &vertices)
{
    selection_t &all = selection();
    const int added = add_unique(&all.vertices, vertices);
    all.num_vertices += added;
    if (added > 0)
        chosen_edges_forget();
}

void selection_add_surfaces(const std::vector<surface_t *> &surfaces)
{
    selection_t &all = selection();
    all.num_surfaces += add_unique(&all.surfaces, surfaces);
}

void selection_set_elements(const std::vector<surface_t *> &surfaces)
{
    selection_t &all = selection();
    list_free(&all.surfaces);
    all.surfaces = make_nodes(surfaces).first;
    all.num_surfaces = static_cast<int>(surfaces.size());
}

void selection_set_elements(const std::vector<vertex *> &vertices)
{
    selection_t &all = selection();
    list_free(&all.vertices);
    all.vertices = make_nodes(vertices).first;
    all.num_vertices = static_cast<int>(vertices.size());
    chosen_edges_forget();
}

void selection_add_objects(const std::vector<object_t *> &objects)
{
    selection_t &all = selection();
    all.num_objects += add_unique(&all.objects, objects);
}

void selection_add_by_rule(const std::vector<object_t *> &objects)
{
    gathered_t<vertex> vertices;
    gathered_t<surface_t> surfaces;
    std::vector<object_t *> found;
    for (object_t *object : objects) {
        if (mode_has_vertices(state.mode)) {
            gather_vertices(object, &vertices);
        } else if (state.mode == SELECT_SURFACE) {
            gather_surfaces(object, &surfaces);
        } else if (state.mode == SELECT_LIGHT) {
            gather_lights(object, &found);
        } else if (state.mode == SELECT_OBJECT) {
            gather_leaf_objects(object, &found);
        } else if (selectable(object) && object != vesk_get_world()) {
            found.push_back(object_top_ancestor(object));
        }
    }
    add(vertices, selection().vertices, selection_add_vertices);
    add(surfaces, selection().surfaces, selection_add_surfaces);
    selection_add_objects(found);
}

void selection_drop_owned_by(const std::vector<object_t *> &objects)
{
    selection_t &all = selection();
    std::vector<vertex *> vertices;
    std::vector<surface_t *> surfaces;
    for (const object_t *object : objects) {
        if (all.vertices != nullptr)
            append_elements(object->vertices, &vertices);
        if (all.surfaces != nullptr)
            append_elements(object->surfaces, &surfaces);
    }
    all.num_vertices -= list_drop_freed(&all.vertices, vertices);
    all.num_surfaces -= list_drop_freed(&all.surfaces, surfaces);
    all.num_objects -= list_drop_freed(&all.objects, objects);
}

void select_vertices(const listitem *vertices)
{
    if (!mode_has_vertices(state.mode)) {
        console_printf("select_vertices called when not in VERTEX selectmode\n");
        return;
    }
    selection_add_vertices(elements_of<vertex>(vertices));
    announce_added("select_vertices");
}

void unselect_vertices(const listitem *vertices)
{
    if (!mode_has_vertices(state.mode)) {
        console_printf("unselect_vertices called when not in VERTEX selectmode\n");
        return;
    }
    selection_t &all = selection();
    all.num_vertices -= list_drop_freed(&all.vertices, elements_of<vertex>(vertices));
    announce_added("unselect_vertices");
}

void select_surface(surface_t *surface)
{
    add_surfaces_by_rule({surface});
    announce_added("select_surface");
}

void select_surfacelist(const listitem *surfaces)
{
    add_surfaces_by_rule(elements_of<surface_t>(surfaces));
    announce_added("select_surfacelist");
}

void unselect_surface(surface_t *surface)
{
    if (state.mode != SELECT_SURFACE) {
        console_printf("unselect_surface called in non surface mode\n");
        return;
    }
    selection_t &all = selection();
    all.num_surfaces -= list_remove_item(&all.surfaces, surface);
    announce_added("unselect_surface");
}

void unselect_surfacelist(const listitem *surfaces)
{
    if (state.mode != SELECT_SURFACE) {
        console_printf("unselect_surface called in non surface mode\n");
        return;
    }
    selection_t &all = selection();
    all.num_surfaces -= list_drop_freed(&all.surfaces, elements_of<surface_t>(surfaces));
    announce_added("unselect_surfacelist");
}

void select_object(object_t *object)
{
    selection_add_by_rule({object});
    announce_added("select_object");
}

void select_objectlist(const listitem *objects)
{
    selection_add_by_rule(elements_of<object_t>(objects));
    announce_added("select_objectlist");
}

void unselect_object(object_t *object)
{
    remove_by_rule({object});
    announce_added("unselect_object");
}

void unselect_objectlist(const listitem *objects)
{
    remove_by_rule(elements_of<object_t>(objects));
    announce_added("unselect_objectlist");
}

int nothing_is_selected(void)
{
    const selection_t &all = selection();
    return all.vertices == nullptr && all.surfaces == nullptr && all.objects == nullptr ? 1 : 0;
}

object_t *get_current_object(void)
{
    const selection_t &all = selection();
    return all.num_objects == 1 ? item_of<object_t>(all.objects) : nullptr;
}

int selection_get_num_vertices(void) { return selection().num_vertices; }
int selection_get_num_surfaces(void) { return selection().num_surfaces; }
int selection_get_num_objects(void) { return selection().num_objects; }

void select_whole_surfaces(void) { console_printf("select:select_whole_surfaces NOT RUNNING!\n"); }

// ---- by name, all, parts ----

namespace {

std::vector<object_t *> objects_named(const char *name, object_t *top)
{
    std::vector<object_t *> found;
    for_each_object(top, [&](object_t *object) {
        if (object != vesk_get_world() && object->name != nullptr &&
            std::strcmp(object->name, name) == 0)
            found.push_back(object);
    });
    return found;
}

} // namespace

void select_named(const char *name, object_t *top)
{
    std::vector<object_t *> named = objects_named(name, top);
    std::erase_if(named, [](const object_t *object) { return !selectable(object); });
    selection_add_by_rule(named);
    announce_added("select_object");
}

void unselect_named(const char *name, object_t *top)
{
    remove_by_rule(objects_named(name, top));
    announce_added("unselect_object");
}

void select_by_name(const char *name)
{
    select_named(name, vesk_get_world());
    redraw_all();
    display_status();
}

void unselect_by_name(const char *name)
{
    unselect_named(name, vesk_get_world());
    redraw_all();
    display_status();
}

void select_all(void)
{
    display_message("select all...");
    selection_add_by_rule(elements_of<object_t>(vesk_get_world()->children));
    announce_added("select_objectlist");
    redraw_all();
    display_status();
    display_message("select all done");
}

void select_part_selected_surfaces(void)
{
    display_message("selecting surfaces...");
    const std::vector<vertex *> selected = elements_of<vertex>(selection().vertices);
    if (selected.empty()) {
        display_message("no vertices selected");
        return;
    }
    const std::vector<surface_t *> touched = surfaces_touching(selected);
    std::vector<vertex *> vertices;
    for (const surface_t *surface : touched)
        append_surface_vertices(surface, &vertices);
    selection_add_vertices(vertices);
    announce_added("select_vertices");
    redraw_all();
    display_message("Done.");
    display_status();
    display_message("%d surfaces selected", static_cast<int>(touched.size()));
}

// ---- saving ----

saved_selection_t selection_take()
{
    selection_t &all = selection();
    const saved_selection_t saved = {all.vertices, all.surfaces, all.objects, state.mode,
                                     chosen_edges_now()};
    chosen_edges_forget();
    all.vertices = all.surfaces = all.objects = nullptr;
    all.num_vertices = all.num_surfaces = all.num_objects = 0;
    return saved;
}

saved_selection_t selection_clone()
{
    const selection_t &all = selection();
    return {list_clone(all.vertices), list_clone(all.surfaces), list_clone(all.objects), state.mode,
            chosen_edges_now()};
}

void selection_restore(saved_selection_t *saved)
{
    selection_t &all = selection();
    list_free(&all.vertices);
    list_free(&all.surfaces);
    list_free(&all.objects);
    all.vertices = std::exchange(saved->vertices, nullptr);
    all.surfaces = std::exchange(saved->surfaces, nullptr);
    all.objects = std::exchange(saved->objects, nullptr);
    all.num_vertices = list_count(all.vertices);
    all.num_surfaces = list_count(all.surfaces);
    all.num_objects = list_count(all.objects);
    state.mode = saved->mode;
    chosen_edges_set(std::exchange(saved->edges, {}));
}

void selection_free(saved_selection_t *saved)
{
    list_free(&saved->vertices);
    list_free(&saved->surfaces);
    list_free(&saved->objects);
}

void selection_reset_for_test()
{
    saved_selection_t empty;
    selection_restore(&empty);
    selection().box_valid = 0;
    state.callbacks.clear();
    state.changes = 0;
}
