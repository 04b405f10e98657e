#include "edit/document/undo.h"

#include "base/messages.h"
#include "base/prefs.h"
#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "edit/resize.h"
#include "edit/transform.h"
#include "fileio/vesk_writer.h"
#include "model/change_marks.h"
#include "model/freed.h"
#include "model/identity.h"
#include "model/lights.h"
#include "model/normals.h"
#include "model/object_tree.h"
#include "model/world.h"
#include "tests/support/mesh_test.h"

#include <functional>

namespace {

object_t *named(const char *name)
{
    return find_object_where(vesk_get_world(), [&](const object_t *object) {
        return std::string_view(object->name) == name;
    });
}

void select(const char *name)
{
    clear_selection();
    select_object(named(name));
}

// Runs `change` as a command, as a plug-in's would be.
std::function<void()> command_body;
void run_command_body() { command_body(); }
void run_as_command(const std::function<void()> &change)
{
    command_body = change;
    if (!find_command("test_change"))
        vesk_add_command("test_change", run_command_body);
    run("test_change");
}

class Undo : public SceneTest {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        object_t *group = new_group();
        object_set_name(group, "group");
        object_add_child(vesk_get_world(), group);
        object_reparent(add_cube("inner"), group);
        object_t *first = add_cube("first");
        object_add_child(vesk_get_world(), new_light());
        add_cube("last");
        const point3_t aside = {2.25f, -1.5f, 0.75f};
        translate_object(first, &aside);
        select("first");
    }
};

// ---- every kind ----

surface_t *add_triangle(object_t *object) { return vesk_object_add_triangle(object, 0, 2, 4); }

void create_surface()
{
    new_undo(UNDO_SURFACE, "surface");
    set_undo_surface(add_triangle(named("first")));
}

void create_surfaces()
{
    new_undo(UNDO_SURFACES, "surfaces");
    owned_list surfaces;
    for (int i = 0; i < 3; ++i)
        surfaces.add(add_triangle(named("first")));
    set_undo_object_surfacelist(named("first"), surfaces.get());
}

void create_vertices()
{
    new_undo(UNDO_VERTICES, "vertices");
    owned_list vertices;
    for (const char *name : {"first", "inner"})
        vertices.add(object_add_new_vertex(named(name), 1, 2, 3));
    set_undo_vertices(vertices.get());
    // A surface that came to use one of them must not be left with a freed corner.
    surface_t *surface = object_get_surface_at(named("first"), 0);
    surface_add_vertex(surface, item_of<vertex>(vertices.get()), 0, 0);
}

void create_object()
{
    object_t *square = add_square(3);
    object_set_name(square, "square");
    new_undo(UNDO_OBJECT, "object");
    set_undo_object(square);
    clear_selection();
    select_object(square);
}

void create_objects()
{
    owned_list objects;
    objects.add(add_square(3));
    objects.add(add_cube("another"));
    new_undo(UNDO_OBJECTS, "objects");
    set_undo_objectlist(objects.get());
}

void delete_objects()
{
    clear_selection();
    for (const char *name : {"group", "first"})
        select_object(named(name));
    new_undo(UNDO_DELETE, "delete");
    EXPECT_EQ(set_undo_delete_selection(), 1);
}

template <int Kind>
void change_world()
{
    new_undo(Kind, "world");
    set_undo_all();
    object_delete(named("group"));
    object_set_name(named("first"), "renamed");
    object_set_visible(named("last"), 0);
    add_triangle(named("last"));
    object_reparent(add_square(2), named("renamed"));
}

void move_positions()
{
    object_t *first = named("first");
    new_undo(UNDO_POSITIONS, "positions");
    owned_list objects;
    objects.add(named("group"));
    set_undo_vertex_positions(first->vertices, objects.get());
    for (object_t *object : {first, named("inner")}) {
        for (vertex *v : each<vertex>(object->vertices))
            v->position.x *= 1.375f;
        object_mark(object, CHANGED_POSITIONS);
    }
}

void change_texture_coords()
{
    object_t *first = named("first");
    new_undo(UNDO_TEXTURE_COORDS, "texture");
    set_undo_texture_coords(first->surfaces);
    for (surface_t *surface : each<surface_t>(first->surfaces)) {
        for (svertex *reference : each<svertex>(surface->refs))
            reference->u += 0.3f;
    }
    object_mark(first, CHANGED_TEXTURE_COORDS);
}

void resize()
{
    const selection_t &all = selection();
    const point3_t low = all.box_min, high = all.box_max;
    const point3_t new_low = {-1, 5, 0.3f}, new_high = {4, 5.5f, 1.1f};
    new_undo(UNDO_RESIZE, "resize");
    set_undo_resize(&low, &high, &new_low, &new_high);
    resize_selection(&low, &high, &new_low, &new_high);
}

template <int View>
void rotate_in_view()
{
    const point3_t centre = {0.5f, 1, -2};
    new_undo(UNDO_ROTATE, "rotate");
    set_undo_rotate(33, View, View == 1 ? nullptr : &centre);
    rotate_selected(33, View, View == 1 ? nullptr : &centre);
}

void rotate_about_axis()
{
    const point3_t axis = {0, 1, 0};
    new_undo(UNDO_ROTATE_AXIS, "rotate");
    set_undo_rotate_axis_angle(&axis, 20);
    rotate_selection_axis_angle(1, 20);
}

struct undo_case {
    const char *name;
    void (*change)();
    const char *label;
    bool clears_all; // records made before go too
};
void PrintTo(const undo_case &c, std::ostream *out) { *out << c.name; }

// clang-format off
const undo_case undo_cases[] = {
    {"move",           [] { run("move_to", 7, 8, 9); },              "move to",        false},
    {"scale",          [] { run("scale", "2", "0.75", "3"); },       "size selection", false},
    {"resize",         resize,                                       "resize",         false},
    {"rotate_front",   rotate_in_view<0>,                            "rotate",         false},
    {"rotate_side",    rotate_in_view<1>,                            "rotate",         false},
    {"rotate_plan",    rotate_in_view<2>,                            "rotate",         false},
    {"rotate_axis",    rotate_about_axis,                            "rotate",         false},
    {"surface",        create_surface,                               "surface",        false},
    {"surfaces",       create_surfaces,                              "surfaces",       false},
    {"vertices",       create_vertices,                              "vertices",       false},
    {"object",         create_object,                                "object",         false},
    {"objects",        create_objects,                               "objects",        false},
    {"delete",         delete_objects,                               "delete",         true},
    {"positions",      move_positions,                               "positions",      false},
    {"texture_coords", change_texture_coords,                        "texture",        false},
    {"world_0x80",     change_world<UNDO_WORLD_1>,                   "world",          true},
    {"world_0x200",    change_world<UNDO_WORLD_2>,                   "world",          true},
    {"world_0x400",    change_world<UNDO_WORLD_3>,                   "world",          true},
    {"world_0x800",    change_world<UNDO_WORLD_4>,                   "world",          true},
    {"world_0x10000",  change_world<UNDO_WORLD>,                     "world",          true},
};
// clang-format on

class EveryKind : public Undo, public testing::WithParamInterface<undo_case> {};

TEST_P(EveryKind, IsUndoneRedoneAndUndoneAgain)
{
    run("move_to", 3, 4, 5); // an older record
    const std::string before = scene_text();
    const std::string selected = run("get_selected_objects");
    const std::string mode = run("get_app_mode");
    const int id = object_identity(named("group"));

    run_as_command(GetParam().change);
    const std::string after = scene_text();
    const std::string mode_after = run("get_app_mode");
    EXPECT_EQ(last_undo(), GetParam().label);
    EXPECT_EQ(*undo_count_address(), 2);

    for (int round = 0; round < 2; ++round) {
        run("undo");
        EXPECT_EQ(last_message(), "undo done");
        EXPECT_EQ(scene_text(), before);
        EXPECT_EQ(last_undo(), GetParam().clears_all ? "" : "move to");
        EXPECT_EQ(*undo_count_address(), GetParam().clears_all ? 0 : 1);
        EXPECT_EQ(object_identity(named("group")), id);
        EXPECT_EQ(run("get_app_mode"), mode);
        if (!GetParam().clears_all) {
            EXPECT_EQ(run("get_selected_objects"), selected);
        }

        run("redo");
        EXPECT_EQ(scene_text(), after);
        EXPECT_EQ(last_undo(), GetParam().label);
        EXPECT_EQ(*undo_count_address(), 2);
        EXPECT_EQ(run("get_app_mode"), mode_after);
    }
}
INSTANTIATE_TEST_SUITE_P(Kinds, EveryKind, testing::ValuesIn(undo_cases));

// ---- the list of records ----

TEST_F(Undo, KeepsAsManyRecordsAsTheLevelsSay)
{
    prefs.undo_levels = 20;
    for (int i = 0; i < 21; ++i)
        new_undo(UNDO_MOVE, ("edit " + std::to_string(i)).c_str());
    EXPECT_EQ(*undo_count_address(), 20);
    for (int i = 0; i < 19; ++i)
        run("undo");
    EXPECT_EQ(last_undo(), "edit 1"); // the oldest went
    prefs.undo_levels = 3;
    for (const char *label : {"a", "b", "c", "d"})
        new_undo(UNDO_MOVE, label);
    EXPECT_EQ(*undo_count_address(), 3);
}

TEST_F(Undo, OfNothingSaysSo)
{
    const std::string before = scene_text();
    recording().scripts.clear();
    run("undo");
    EXPECT_EQ(recording().scripts,
              std::vector<std::string>{"display_message \"nothing to undo.\""});
    EXPECT_EQ(scene_text(), before);
}

TEST_F(Undo, IsOffWithNoLevels)
{
    prefs.undo_levels = 0;
    new_undo(UNDO_SELECTION, "none");
    EXPECT_EQ(*undo_count_address(), 0);
    const selection_t &all = selection();
    set_undo_selection(all.vertices, all.surfaces, all.objects, 0);
    EXPECT_EQ(all.num_objects, 1);
    set_undo_selection(all.vertices, all.surfaces, all.objects, 1);
    EXPECT_EQ(nothing_is_selected(), 1);
    EXPECT_EQ(set_undo_delete_selection(), 0);
    recording().scripts.clear();
    run("undo");
    EXPECT_TRUE(recording().scripts.empty());
}

TEST_F(Undo, LeavesRecordsOfUnknownKindsInPlace)
{
    new_undo(0x20, "strange");
    run("undo");
    EXPECT_EQ(last_undo(), "strange");
    EXPECT_EQ(last_message(), "undo done");
}

struct setter_case {
    const char *name;
    void (*call)();
    const char *told;
};
void PrintTo(const setter_case &c, std::ostream *out) { *out << c.name; }
// clang-format off
const setter_case setter_cases[] = {
    {"vert",       [] { set_undo_vert(1, 2, 3); },                  "set_undo_vert - cal new_undo first!\n"},
    {"vertices",   [] { set_undo_vertices(nullptr); },              "set_undo_vert - cal new_undo first!\n"},
    {"positions",  [] { set_undo_vertex_positions(nullptr, nullptr); }, "set_undo_vert - cal new_undo first!\n"},
    {"vertref",    [] { set_undo_vertref(nullptr); },               "set_undo_vert - cal new_undo first!\n"},
    {"object",     [] { set_undo_object(nullptr); },                "set_undo_object - cal new_undo first!\n"},
    {"objectlist", [] { set_undo_objectlist(nullptr); },            "set_undo_objectlist - cal new_undo first!\n"},
    {"selection",  [] { set_undo_selection(nullptr, nullptr, nullptr, 1); }, "set_undo_selection(List - cal new_undo first!\n"},
    {"surface",    [] { set_undo_surface(nullptr); },               "set_undo_surface - cal new_undo first!\n"},
    {"all",        [] { set_undo_all(); },                          ""},
};
// clang-format on
class Setter : public Undo, public testing::WithParamInterface<setter_case> {};
TEST_P(Setter, AsksForARecordFirst)
{
    GetParam().call();
    EXPECT_EQ(recording().console, GetParam().told);
    EXPECT_EQ(selection().num_objects, 1);
}
INSTANTIATE_TEST_SUITE_P(Calls, Setter, testing::ValuesIn(setter_cases));

// ---- what is gone is not touched ----

TEST_F(Undo, OfACreatedObjectThatIsGoneOnlySaysSo)
{
    run_as_command(create_object);
    object_delete(named("square"));
    set_debug_mode(true);
    run("undo");
    set_debug_mode(false);
    EXPECT_NE(recording().console.find("undo add ob - object no longer exists"), std::string::npos);
    EXPECT_EQ(get_current_object(), named("first"));
}

TEST_F(Undo, RecordsLetGoOfWhatIsFreed)
{
    run("set_select_mode", "vertex");
    run_as_command(move_positions);
    run_as_command(change_texture_coords);
    run_as_command(create_surfaces);
    run_as_command(create_vertices);
    select_all();
    run("move_to", 1, 1, 1);
    for (const char *name : {"first", "group", "last"})
        object_delete(named(name));
    while (*undo_count_address() > 0)
        run("undo"); // the sanitizers see what would be touched
    EXPECT_EQ(vesk_get_world()->num_children, 1);
}

TEST_F(Undo, OfADeletionBringsTheObjectsBackSelected)
{
    const int id = object_identity(named("inner"));
    run_as_command(delete_objects);
    EXPECT_EQ(nothing_is_selected(), 1);
    EXPECT_EQ(object_by_identity(id), nullptr);
    run("undo");
    EXPECT_EQ(selection().num_objects, 2);
    EXPECT_EQ(object_by_identity(id), named("inner"));
}

TEST_F(Undo, OfADeletionInVertexModeIsAWholeModelOne)
{
    run("set_select_mode", "vertex");
    const std::string before = scene_text();
    new_undo(UNDO_DELETE, "delete");
    EXPECT_EQ(set_undo_delete_selection(), 0);
    object_delete(named("first"));
    run("undo");
    EXPECT_EQ(scene_text(), before);
    EXPECT_EQ(*undo_count_address(), 0);
}

// ---- operations of plug-ins ----

struct counted_operation {
    int performed = 0, undone = 0, destroyed = 0;
};
const vesk_undoable_t counted(counted_operation *counts)
{
    return {[](void *data, int free_it) {
                static_cast<counted_operation *>(data)->destroyed += free_it;
            },
            [](void *data) { ++static_cast<counted_operation *>(data)->performed; },
            [](void *data) { ++static_cast<counted_operation *>(data)->undone; }, counts};
}

TEST_F(Undo, OperationsOfPlugInsAreUndoneByThemAndDestroyedOnce)
{
    counted_operation counts;
    const vesk_undoable_t undoable = counted(&counts);
    add_undoable("plug-in", &undoable);
    EXPECT_EQ(counts.performed, 1);
    EXPECT_EQ(last_undo(), "plug-in");
    run("undo");
    EXPECT_EQ(counts.undone, 1);
    EXPECT_EQ(counts.destroyed, 1);
    prefs.undo_levels = 0;
    add_undoable("plug-in", &undoable);
    EXPECT_EQ(counts.performed, 2);
    EXPECT_EQ(counts.destroyed, 2);
}

} // namespace
