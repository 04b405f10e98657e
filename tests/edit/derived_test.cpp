// What is computed from the model and kept beside it: normals and the selection's box. After every
// command they are what computing them anew gives.

#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "edit/document/undo_internal.h"
#include "model/each.h"
#include "model/object_tree.h"
#include "model/world.h"
#include "tests/support/mesh_test.h"
#include "tests/support/random_mesh.h"

#include <cmath>

namespace {

using words_t = std::vector<std::string>;
struct derived_case {
    const char *name;
    words_t words;
    bool leaves_normals = false, leaves_box = false;
};
// clang-format off
const derived_case derived_cases[] = {
    {"move",           {"move", "0.5", "-1", "2"}},
    {"move_undo",      {"move_with_undo", "0.5", "-1", "2"}},
    {"move_to",        {"move_to", "3", "2", "1"}},
    {"rotate",         {"rotate", "20", "30", "40"}},
    {"rotate_undo",    {"rotate_with_undo", "20", "30", "40"}},
    {"rotate_about",   {"rotate_about", "20", "30", "40", "5", "0", "1"}},
    {"rotate_axis",    {"rotate_axis_angle", "1", "70"}},
    {"rotate_each",    {"rotate_each_with_undo", "2", "33"}},
    {"scale",          {"scale", "1", "3", "0.5"}},
    {"scale_inverted", {"scale", "-1", "1", "1"}},
    {"size_to",        {"size_to", "1", "9", "2"}},
    {"resize",         {"resize_with_undo", "0", "0", "0", "5", "1", "2"}},
    {"mirror",         {"mirror", "0"}},
    {"mirror_undo",    {"mirror_with_undo", "2"}},
    {"flip",           {"surface_flip_normals"}},
    {"first_corner",   {"surface_change_vertex_order"}},
    {"subdivide",      {"surface_subdivide"}},
    {"triangulate",    {"surface_triangulate"}, true}, // Deliberate: so do those marked below
    {"spike",          {"surface_spike"}},
    {"bevel",          {"surface_bevel"}},
    {"hole",           {"surface_make_hole"}, true},
    {"extrude",        {"extrude", "0.25", "0", "1"}},
    {"insert",         {"insert_vertex"}},
    {"slice",          {"slice", "0.3", "0.2", "0.1", "1", "0.5", "0.25", "front", "1"}},
    {"boolean",        {"boolean", "union"}},
    {"unshare",        {"unshare_vertices"}},
    {"optimize",       {"optimize"}},
    {"tidy",           {"optimize_surfaces"}},
    {"snap_grid",      {"snaptogrid"}, true},
    {"snap_together",  {"snaptogether"}},
    {"snap_distance",  {"snaptogetherdistance", "0.8"}, true, true},
    {"loop",           {"surface_loop_subdivision", "1"}},
    {"doosabin",       {"surface_doosabin"}},
    {"reduce",         {"reduce", "30"}},
    {"fragment",       {"object_fragment"}},
    {"explode",        {"object_explode"}},
    {"merge",          {"object_merge"}},
    {"group",          {"group"}},
    {"copy_object",    {"surface_create_object"}},
    {"duplicate",      {"duplicate"}},
    {"clone",          {"clone_selection"}},
    {"revolve",        {"revolve", "1"}},
    {"hull",           {"convexhull"}},
    {"delaunay",       {"delaunay"}},
    {"delete",         {"delete"}},
    {"remove",         {"removesurface"}},
    {"surface",        {"createsurface", "0"}},
    {"hide",           {"hide_selected"}},
    {"lines",          {"set_surface_type", "2"}},
    {"smooth",         {"surface_set_shaded", "1"}},
    {"inset",          {"inset", "0.1", "0.05", "each"}},
    {"inset_region",   {"inset", "0.1", "0.05", "region"}},
    {"extrude_each",   {"extrude_each", "0.2"}},
    {"extrude_normals", {"extrude_normals", "0.2"}},
    {"shell",          {"shell", "0.2", "1"}},
    {"catmull_clark",  {"catmull_clark", "1"}},
    {"quads",          {"quads_from_triangles", "90"}},
    {"orient",         {"orient_outwards"}},
    {"flatten",        {"flatten"}},
    {"circularize",    {"circularize"}},
    {"straighten",     {"straighten"}},
    {"space_evenly",   {"space_evenly"}},
    {"smooth_places",  {"smooth_vertices", "0.5", "2"}},
    {"select_grow",    {"select_grow"}},
    {"select_shrink",  {"select_shrink"}},
    {"select_invert",  {"select_invert"}},
    {"select_linked",  {"select_linked"}},
    {"select_similar", {"select_similar", "normal", "40"}},
    {"select_random",  {"select_random", "40", "3"}},
    {"grow",           {"select_part_selected_surfaces"}},
    {"other_mode",     {"set_select_mode", "tree"}},
};
// clang-format on
void PrintTo(const derived_case &c, std::ostream *out) { *out << c.name; }

// The vectors of every surface and vertex, in the order of the tree.
std::vector<point3_t> all_normals()
{
    std::vector<point3_t> normals;
    for_each_object(vesk_get_world(), [&](object_t *object) {
        for (const surface_t *surface : each<surface_t>(object->surfaces))
            normals.push_back(surface->normal);
        for (const vertex *v : each<vertex>(object->vertices))
            normals.push_back(v->normal);
    });
    return normals;
}

float apart(const point3_t &a, const point3_t &b)
{
    return std::max({std::abs(a.x - b.x), std::abs(a.y - b.y), std::abs(a.z - b.z)});
}

void expect_fresh_normals(const std::string &when)
{
    const std::vector<point3_t> kept = all_normals();
    run("recalc_normals_all");
    const std::vector<point3_t> fresh = all_normals();
    int stale = 0;
    for (size_t i = 0; i < kept.size(); ++i)
        stale += apart(kept[i], fresh[i]) < 1e-3f ? 0 : 1;
    EXPECT_EQ(stale, 0) << "of " << kept.size() << " normals, " << when;
}

void expect_fresh_box(const std::string &when)
{
    const selection_t kept = selection();
    find_bounding_box();
    const selection_t &fresh = selection();
    ASSERT_EQ(kept.box_valid, fresh.box_valid) << when;
    if (fresh.box_valid == 0)
        return;
    EXPECT_LT(apart(kept.box_min, fresh.box_min), 1e-4f) << when;
    EXPECT_LT(apart(kept.box_max, fresh.box_max), 1e-4f) << when;
}

class Derived : public SceneTest, public testing::WithParamInterface<derived_case> {};

TEST_P(Derived, StateIsFreshAfterACommandAndItsUndo)
{
    for (const std::string mode : {"tree", "object", "surface", "vertex"}) {
        run("clear_all");
        random_source random(7);
        object_t *shell = add_random_shell(random, 2);
        object_t *sheet = add_random_sheet(random, 3);
        object_reparent(sheet, shell); // a child comes along
        add_squares(2, 2);
        run("recalc_normals_all");
        run("set_select_mode", "object");
        select_object(shell);
        run("set_select_mode", mode);
        if (mode == "surface")
            select_surfaces_at(shell, {0, 1, 4});
        if (mode == "vertex")
            select_vertices_at(shell, {0, 1, 2, 3, 8});
        const int records = *undo_count_address();
        run_words(GetParam().words);
        if (!GetParam().leaves_box)
            expect_fresh_box(mode + ", done");
        if (!GetParam().leaves_normals)
            expect_fresh_normals(mode + ", done");
        if (*undo_count_address() == records)
            continue;
        run("undo");
        expect_fresh_box(mode + ", undone");
        expect_fresh_normals(mode + ", undone");
    }
}
INSTANTIATE_TEST_SUITE_P(Commands, Derived, testing::ValuesIn(derived_cases));

} // namespace
