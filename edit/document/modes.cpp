#include "edit/document/modes.h"

#include "base/messages.h"
#include "base/numbers.h"
#include "base/redraw.h"
#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "edit/document/undo.h"
#include "edit/mesh/edge_topology.h"
#include "model/object_tree.h"
#include "model/world.h"

#include <cctype>
#include <cstring>
#include <unordered_set>

namespace {

struct draw_mode_t {
    const char *name;
    int code;
    bool selectable;
};
// clang-format off
const draw_mode_t draw_modes[] = {
    {"move", DRAW_MOVE, true},          {"rotate", DRAW_ROTATE, true},
    {"extrude", DRAW_EXTRUDE, true},    {"polygon", DRAW_POLYGON, false},
    {"polyline", DRAW_POLYLINE, false}, {"line", DRAW_LINE, false},
    {"circle", DRAW_CIRCLE, false},     {"disk", DRAW_DISK, false},
    {"rect", DRAW_RECT, false},         {"grid", DRAW_GRID, false},
    {"mesh", DRAW_MESH, false},         {"box", DRAW_BOX, false},
    {"cylinder", DRAW_CYLINDER, false}, {"sphere", DRAW_SPHERE, false},
    {"light", DRAW_LIGHT, false},       {"zoom", DRAW_ZOOM, false},
    // Deliberate: two names share the code 100; the first one is found for it.
    {"subselect", 100, false},          {"submove", 100, false},
    {"subresize", 101, false},          {"subrotate", 102, false},
    {"subextrude", 103, false},         {"substretch", 107, false},
};
// clang-format on

const char *const select_names[] = {"tree", "object", "surface", "vertex", "light", "edge"};

int current_draw_mode = DRAW_MOVE;
void (*cancel_half_drawn)() = nullptr;
void (*draw_mode_was_set)() = nullptr;

const draw_mode_t *find_mode(int code)
{
    for (const draw_mode_t &row : draw_modes) {
        if (row.code == code)
            return &row;
    }
    return nullptr;
}

const draw_mode_t *find_mode(const char *name)
{
    for (const draw_mode_t &row : draw_modes) {
        if (std::strcmp(row.name, name) == 0)
            return &row;
    }
    return nullptr;
}

void drop_half_drawn()
{
    if (current_draw_mode != DRAW_POLYGON && current_draw_mode != DRAW_POLYLINE &&
        current_draw_mode != DRAW_LINE)
        return;
    if (cancel_half_drawn != nullptr)
        cancel_half_drawn();
    redraw_all();
}

void take_draw_mode(const draw_mode_t &row)
{
    current_draw_mode = row.code;
    if (draw_mode_was_set != nullptr)
        draw_mode_was_set();
    tcl_command("set_draw_mode_ui %s", row.name);
}

// ---- carrying the selection over ----

using objects_t = std::vector<object_t *>;

// The objects by the object rule, then those below them that the rule did not reach (under hidden
// ones). Each object is looked at once.
void add_with_descendants(const objects_t &objects)
{
    std::unordered_set<const object_t *> reached;
    objects_t order;
    for (object_t *top : objects) {
        for_each_object(top, [&](object_t *object) {
            if (object == vesk_get_world() || reached.contains(object))
                return;
            order.push_back(object);
            // Objects that the rule visits from here need no second visit; in object mode it ends
            // at polygon objects.
            std::vector<object_t *> stack = {object};
            while (!stack.empty()) {
                object_t *visited = stack.back();
                stack.pop_back();
                if (!reached.insert(visited).second || visited->visible == 0 ||
                    visited->locked != 0 ||
                    (select_mode() == SELECT_OBJECT && visited->type == OBJECT_POLY))
                    continue;
                append_elements(visited->children, &stack);
            }
        });
    }
    selection_add_by_rule(order);
}

void add_top_ancestors(const objects_t &objects, bool make_visible)
{
    objects_t tops;
    for (object_t *object : objects)
        tops.push_back(object_top_ancestor(object));
    tops = unique_objects(tops);
    if (make_visible) {
        for (object_t *top : tops) {
            if (top->visible == 0)
                object_set_visible(top, 1);
        }
    }
    selection_add_objects(tops);
}

objects_t owners(const std::vector<vertex *> &vertices)
{
    objects_t found = owners_of_vertices(vertices);
    std::erase(found, nullptr);
    return unique_objects(found);
}

// `from` and `to` differ; the live selection is empty and the mode is already the new one.
void carry_over(const saved_selection_t &old, int to)
{
    const int from = old.mode;
    const bool from_objects = from == SELECT_TREE || from == SELECT_OBJECT;
    if (from_objects && to == SELECT_SURFACE) {
        selection_add_by_rule(elements_of<object_t>(old.objects));
    } else if (from == SELECT_OBJECT && mode_has_vertices(to)) {
        selection_add_by_rule(elements_of<object_t>(old.objects));
    } else if (from == SELECT_TREE && (mode_has_vertices(to) || to == SELECT_OBJECT)) {
        add_with_descendants(elements_of<object_t>(old.objects));
    } else if (from == SELECT_OBJECT && to == SELECT_TREE) {
        add_top_ancestors(elements_of<object_t>(old.objects), true);
    } else if (mode_has_vertices(from) && to == SELECT_OBJECT) {
        selection_add_objects(owners(elements_of<vertex>(old.vertices)));
    } else if (mode_has_vertices(from) && to == SELECT_TREE) {
        add_top_ancestors(owners(elements_of<vertex>(old.vertices)), false);
    } else if (from == SELECT_VERTEX && to == SELECT_SURFACE) {
        selection_add_surfaces(surfaces_within(elements_of<vertex>(old.vertices)));
    } else if (from == SELECT_VERTEX && to == SELECT_EDGE) {
        selection_add_vertices(ends_of(edges_of_saved(old)));
    } else if (from == SELECT_EDGE && to == SELECT_VERTEX) {
        selection_add_vertices(elements_of<vertex>(old.vertices));
    } else if (from == SELECT_EDGE && to == SELECT_SURFACE) {
        selection_add_surfaces(surfaces_of_sides(edges_of_saved(old)));
    } else if (from == SELECT_SURFACE && to == SELECT_EDGE) {
        select_edges(edges_of_saved(old), edge_change::replace);
        return; // announced
    } else if (from == SELECT_SURFACE && to != SELECT_LIGHT) {
        select_surfacelist(old.surfaces);
        return; // announced
    } else {
        clear_selection();
        return; // announced
    }
    find_bounding_box();
    selection_changed("set_new_select_mode");
}

} // namespace

int draw_mode() { return current_draw_mode; }

const char *select_mode_name(int mode)
{
    return mode >= SELECT_TREE && mode <= SELECT_EDGE ? select_names[mode] : nullptr;
}

void set_draw_cancel_hook(void (*hook)()) { cancel_half_drawn = hook; }

void set_draw_mode_hook(void (*hook)()) { draw_mode_was_set = hook; }

void set_new_select_mode(int mode)
{
    if (select_mode_name(mode) == nullptr)
        return;
    if (mode != select_mode()) {
        new_undo(UNDO_SELECTION, "selection");
        // The undo record gets the old lists, so a copy carries the selection over.
        saved_selection_t old = selection_clone();
        set_undo_selection(selection().vertices, selection().surfaces, selection().objects, 1);
        selection_set_mode(mode);
        carry_over(old, mode);
        selection_free(&old);
        if (mode == SELECT_TREE || mode == SELECT_OBJECT || mode == SELECT_LIGHT)
            object_topology_forget();
    }
    tcl_command("set_select_mode_ui %s", select_mode_name(mode));
}

void set_new_draw_mode(int mode)
{
    drop_half_drawn();
    const draw_mode_t *row = find_mode(mode);
    if (row == nullptr) { // Deliberate: names the other function
        console_printf("ERROR!!! set_new_draw_mode_string %d has no equiv string!\n", mode);
    } else {
        take_draw_mode(*row);
    }
}

void set_new_draw_mode_string(const char *name)
{
    drop_half_drawn();
    const draw_mode_t *row = find_mode(name);
    if (row == nullptr) { // Deliberate: names the other function
        console_printf("ERROR!!! set_new_draw_mode %s has no equiv number!\n", name);
    } else {
        take_draw_mode(*row);
    }
}

const char *mode_to_string(int mode)
{
    const draw_mode_t *row = find_mode(mode);
    if (row == nullptr)
        console_printf("ERROR!!! mode %d has no equiv string!\n", mode);
    return row == nullptr ? nullptr : row->name;
}

int string_to_mode(const char *name)
{
    const draw_mode_t *row = find_mode(name);
    if (row == nullptr)
        console_printf("ERROR!!! mode %s has no equiv number!\n", name);
    return row == nullptr ? 999 : row->code;
}

int mode_is_selectable(int mode)
{
    const draw_mode_t *row = find_mode(mode);
    return row != nullptr && row->selectable ? 1 : 0;
}

// ---- commands ----

void command_set_select_mode(const char *text)
{
    int code = -1;
    for (int i = SELECT_TREE; i <= SELECT_EDGE; ++i) {
        if (std::strcmp(select_names[i], text) == 0)
            code = i;
    }
    if (code < 0 && std::isdigit(static_cast<unsigned char>(text[0])) != 0)
        code = int_of(text);
    if (select_mode_name(code) == nullptr) {
        display_message("no select mode named '%s'", text);
        return;
    }
    set_new_select_mode(code);
    redraw_all();
    display_status();
}

void command_set_draw_mode(const char *text)
{
    if (std::isdigit(static_cast<unsigned char>(text[0])) != 0) {
        set_new_draw_mode(int_of(text));
    } else {
        set_new_draw_mode_string(text);
    }
    redraw_orth();
}

void modes_reset_for_test()
{
    current_draw_mode = DRAW_MOVE;
    cancel_half_drawn = nullptr;
    draw_mode_was_set = nullptr;
}
