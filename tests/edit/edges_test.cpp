// Edge mode: what is selected, how it converts, what keeps it; and the operations on edges.

#include "edit/check/model_check.h"
#include "edit/document/edge_selection.h"
#include "edit/document/journal.h"
#include "edit/document/selection_internal.h"
#include "edit/edge_select.h"
#include "model/each.h"
#include "model/identity.h"
#include "model/world.h"
#include "tests/edit/mesh_corpus.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace {

using edge_set = std::set<std::pair<int, int>>;

edge_set edges_selected()
{
    edge_set found;
    for (const owned_edges &owned : selected_edges()) {
        for (const int e : owned.edges)
            found.insert({owned.topology->edge(e).a, owned.topology->edge(e).b});
    }
    return found;
}

class Edges : public SceneTest {
protected:
    static void mode(const char *name) { run("set_select_mode", name); }
    static void pick(const object_t *object, int a, int b)
    {
        run("edge_select", std::to_string(object_identity(object)), std::to_string(a),
            std::to_string(b));
    }
};

// 3 by 3 squares: vertex x + 4 y.
TEST_F(Edges, LoopsRingsAndConversions)
{
    object_t *object = add_squares(3, 3);
    mode("edge");
    EXPECT_EQ(select_mode(), 5);
    pick(object, 5, 6);
    EXPECT_EQ(edges_selected(), (edge_set{{5, 6}}));
    EXPECT_EQ(selection_get_num_vertices(), 2);
    run("select_loop");
    EXPECT_EQ(edges_selected(), (edge_set{{4, 5}, {5, 6}, {6, 7}}));
    clear_selection();
    pick(object, 5, 6);
    run("select_ring");
    EXPECT_EQ(edges_selected(), (edge_set{{1, 2}, {5, 6}, {9, 10}, {13, 14}}));
    EXPECT_EQ(run("selection_get_num_edges"), "4");
    // Opposite sides of squares: no square has all sides, though all its vertices are selected.
    mode("surface");
    EXPECT_EQ(selection_get_num_surfaces(), 0);
    run("undo");
    EXPECT_EQ(edges_selected(), (edge_set{{1, 2}, {5, 6}, {9, 10}, {13, 14}}));
    mode("vertex");
    EXPECT_EQ(selection_get_num_vertices(), 8);
    mode("edge"); // all edges between them now
    EXPECT_EQ(edges_selected().size(), 10u);
    mode("surface");
    EXPECT_EQ(selected_surfaces_of(object), (std::vector<int>{1, 4, 7}));
    mode("edge");
    EXPECT_EQ(edges_selected().size(), 10u);
    mode("object");
    EXPECT_EQ(selection_get_num_objects(), 1);
    mode("edge");
    EXPECT_EQ(edges_selected().size(), 24u);
    run("select_boundary");
    EXPECT_EQ(edges_selected().size(), 12u);
}

TEST_F(Edges, WhatWorksOnVerticesWorksOnEdges)
{
    object_t *object = add_squares(2, 1);
    mode("edge");
    pick(object, 1, 4);
    run("move_with_undo", "0", "0", "1");
    EXPECT_EQ(points_of(object).at(4), (point3_t{1, 1, 1}));
    EXPECT_EQ(points_of(object).at(1), (point3_t{1, 0, 1}));
    run("undo");
    EXPECT_EQ(points_of(object).at(1), (point3_t{1, 0, 0}));
    EXPECT_EQ(edges_selected(), (edge_set{{1, 4}}));
    run("delete");
    EXPECT_EQ(object->num_vertices, 0); // neither square has three corners left
}

TEST_F(Edges, TheTablesOfTheEdgesOutliveMovesAndGoWithTheMode)
{
    object_t *square = add_squares(2, 1);
    mode("edge");
    run("select_all");
    std::weak_ptr<const edge_topology> before = object_topology(square);
    const edge_table *table = &before.lock()->table();
    run("move", "1", "0", "0");
    EXPECT_EQ(&object_topology(square)->table(), table);
    EXPECT_EQ(object_topology(square)->mesh().positions, object_flat(square)->positions);
    EXPECT_TRUE(before.expired()); // what it holds of the old positions is not kept
    run("step_back");
    EXPECT_EQ(object_topology(square)->mesh().vertex_records, object_flat(square)->vertex_records);
    run("subdivide");
    EXPECT_EQ(object_topology(square)->size(), edge_topology(object_flat(square)).size());
    before = object_topology(square);
    mode("object");
    EXPECT_TRUE(before.expired());
}

TEST_F(Edges, DissolvingTheNewLoopsIsTheOldMesh)
{
    for (const char *shape : {"box", "sphere"}) {
        SCOPED_TRACE(shape);
        run("clear_all");
        run("create", shape, "0", "-1", "-1", "-1", "1", "1", "1");
        object_t *object = item_of<object_t>(vesk_get_world()->children);
        mode("edge");
        clear_selection();
        const topology_ptr topology = object_topology(object);
        int quad_side = 0;
        while (topology->ring_quads(topology->ring(quad_side)).empty())
            ++quad_side;
        select_edges({{object, topology, {quad_side}}}, edge_change::replace);
        const auto sizes = [&] {
            return std::make_pair(object->num_vertices, object->num_surfaces);
        };
        const auto before = sizes();
        run("loop_cut", "2", "0");
        EXPECT_GT(sizes(), before);
        run("dissolve");
        EXPECT_EQ(sizes(), before);
    }
}

TEST_F(Edges, ConnectPartsPolygonsAndLeavesConcaveOnesWhole)
{
    object_t *square = add_squares(1, 1);
    select_vertices_at(square, {0, 3});
    run("connect");
    EXPECT_EQ(faces_of(square), (faces_t{{0, 1, 3}, {3, 2, 0}}));
    object_t *arrow = add_mesh({{0, 0, 0}, {2, 1, 0}, {0, 2, 0}, {1, 1, 0}}, {{0, 1, 2, 3}});
    select_vertices_at(arrow, {0, 2});
    run("connect");
    EXPECT_EQ(arrow->num_surfaces, 1);
    EXPECT_EQ(last_message(), "connect - nothing selected");
}

TEST_F(Edges, DissolveRefusesWhatNoPolygonCanBe)
{
    object_t *sheet = add_squares(3, 3);
    select_surfaces_at(sheet, {0, 1, 2, 3, 5, 6, 7, 8});
    run("dissolve");
    EXPECT_EQ(last_message(), "dissolve - the surfaces would surround a hole");
    EXPECT_EQ(sheet->num_surfaces, 9);
    select_surfaces_at(sheet, {0, 1, 3, 4});
    run("dissolve");
    EXPECT_EQ(sheet->num_surfaces, 6);
    EXPECT_EQ(sheet->num_vertices, 15); // the inner one is gone
    EXPECT_DOUBLE_EQ(area_xy(sheet), 9);
}

TEST_F(Edges, HolesAreFilledAllThreeWays)
{
    for (const char *how : {"polygon", "grid", "fan"}) {
        SCOPED_TRACE(how);
        run("clear_all");
        object_t *sheet = add_squares(5, 4);
        select_surfaces_at(sheet, {6, 7, 8, 11, 12, 13});
        run("delete");
        mode("edge");
        clear_selection();
        EXPECT_DOUBLE_EQ(area_xy(sheet), 14);
        pick(sheet, 7, 8); // of the hole, not of the outline
        run("fill_hole", how);
        EXPECT_NEAR(area_xy(sheet), 20, 1e-5);
        EXPECT_EQ(euler_of_polygons(sheet), 1);
        expect_oriented(sheet);
    }
}

TEST_F(Edges, BridgesJoinBordersAndSurfaces)
{
    // Two squares one above the other, facing away from one another.
    object_t *object = add_mesh(
        {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 2}, {1, 0, 2}, {1, 1, 2}, {0, 1, 2}},
        {{3, 2, 1, 0}, {4, 5, 6, 7}});
    mode("object");
    run("select_all");
    mode("edge");
    run("bridge", "2", "0", "0");
    EXPECT_EQ(object->num_surfaces, 10);
    expect_closed(object);
    EXPECT_NEAR(volume(object), 2, 1e-6);
    run("undo");
    // A tunnel through a box.
    run("clear_all");
    run("create", "box", "0", "-1", "-1", "-1", "1", "1", "1");
    object_t *box = item_of<object_t>(vesk_get_world()->children);
    const double whole = volume(box);
    std::vector<int> ends; // front and back
    for (int i = 0; i < 6; ++i) {
        if (std::abs(object_get_surface_at(box, i)->normal.z) > 0.5f)
            ends.push_back(i);
    }
    select_surfaces_at(box, ends);
    run("surface_make_hole");
    run("set_select_mode", "object");
    run("select_all");
    run("select_boundary");
    run("bridge");
    expect_closed(box);
    EXPECT_EQ(euler_of_polygons(box), 0);
    EXPECT_LT(volume(box), whole);
    EXPECT_GT(volume(box), 0);
    // The same with the surfaces themselves: they go.
    run("clear_all");
    object_t *sheet = add_squares(5, 3);
    select_surfaces_at(sheet, {6, 8});
    run("bridge", "3", "0", "1");
    expect_oriented(sheet);
    EXPECT_EQ(sheet->num_surfaces, 25);
    EXPECT_EQ(selected_surfaces_of(sheet).size(), 12u);
    select_surfaces_at(sheet, {0});
    run("bridge");
    EXPECT_EQ(last_message(), "bridge - select two borders, or two open chains of border edges");
}

TEST_F(Edges, ASmoothBridgeOfSurfacesThatLookTheSameWayIsAHandle)
{
    object_t *sheet = add_squares(3, 1);
    select_surfaces_at(sheet, {0, 2});
    run("bridge", "16", "0", "1");
    EXPECT_EQ(sheet->num_surfaces, 65);
    expect_oriented(sheet);
    float high = 0;
    for (const point3_t &p : points_of(sheet)) {
        high = std::max(high, p.z);
        // Half rings about the middle, not twisted: all on the outer or the inner one.
        const double radius = std::hypot(static_cast<double>(p.x) - 1.5, static_cast<double>(p.z));
        EXPECT_NEAR(std::fabs(radius - 1), 0.5, 0.05);
    }
    EXPECT_NEAR(high, 1.5, 0.01);
    const model_findings found = object_find_problems(sheet);
    EXPECT_EQ(found.total(model_problem::duplicate_vertex), 0);
}

TEST_F(Edges, SlidesToEitherSideAndThePictureStays)
{
    object_t *sheet = add_squares(4, 4);
    mode("edge");
    pick(sheet, 11, 12);
    run("select_loop");
    run("slide", "0.25");
    EXPECT_EQ(std::abs(points_of(sheet).at(12).y - 2), 0.25f);
    for (int v = 10; v < 15; ++v)
        EXPECT_EQ(points_of(sheet).at(v).y, points_of(sheet).at(12).y);
    expect_picture_in_place(sheet);
    const float first = points_of(sheet).at(12).y;
    run("undo");
    pick(sheet, 11, 12);
    run("select_loop");
    run("slide", "-0.25");
    EXPECT_EQ(points_of(sheet).at(12).y, 4 - first);
    expect_picture_in_place(sheet);
    EXPECT_EQ(run("selection_get_num_edges"), "4");
}

TEST_F(Edges, ExtrudedEdgesFaceAsTheirNeighbours)
{
    object_t *sheet = add_squares(2, 2);
    mode("edge");
    run("select_boundary");
    EXPECT_EQ(run("selection_get_num_edges"), "8");
    run("extrude_edges", "0", "0", "-1");
    EXPECT_EQ(sheet->num_surfaces, 12);
    expect_oriented(sheet);
    EXPECT_EQ(run("selection_get_num_edges"), "8");
    run("fill_hole");
    expect_closed(sheet);
    EXPECT_NEAR(volume(sheet), 4, 1e-5);
}

TEST_F(Edges, BevelledBoxes)
{
    const auto bevelled = [&](const char *segments) {
        run("clear_all");
        run("create", "box", "0", "-1", "-1", "-1", "1", "1", "1");
        object_t *box = item_of<object_t>(vesk_get_world()->children);
        mode("edge"); // all of its edges
        run("edge_bevel", "0.5", segments, "0.5");
        expect_closed(box);
        expect_sound(box);
        EXPECT_EQ(euler_of_polygons(box), 2);
        return box;
    };
    object_t *flat = bevelled("1");
    EXPECT_EQ(flat->num_surfaces, 6 + 12 + 8);
    EXPECT_EQ(flat->num_vertices, 24);
    // Twelve prisms less, but for what the corners have twice.
    const double corner = 8 * (0.5 * 0.5 * 0.5) * (5.0 / 6), side = 12 * 1.0 * 0.125;
    EXPECT_NEAR(volume(flat), 8 - side - corner, 0.02);
    // Nearly the box with edges and corners of radius 0.5.
    object_t *round = bevelled("12");
    const double pi = 3.14159265, ball = 4.0 / 3 * pi * 0.125, rods = 3 * pi * 0.25 * 1.0;
    EXPECT_NEAR(volume(round), 1 + 6 * 0.5 * 1 + rods + ball, 0.05);
    for (const point3_t &p : points_of(round))
        EXPECT_LE(std::max({std::abs(p.x), std::abs(p.y), std::abs(p.z)}), 1.005f);
}

TEST_F(Edges, SharpEdgesAndTheShortestWay)
{
    run("new_cube");
    mode("edge");
    run("select_sharp", "30");
    EXPECT_EQ(edges_selected().size(), 12u);
    object_t *sheet = add_squares(4, 4);
    clear_selection();
    pick(sheet, 0, 1);
    pick(sheet, 3, 4);
    run("select_path");
    EXPECT_EQ(edges_selected(), (edge_set{{0, 1}, {1, 2}, {2, 3}, {3, 4}}));
}

// ---- over the corpus ----

// About that share of the object's edges, one at least, in edge mode.
void select_random_edges(random_source &random, object_t *object, float share)
{
    run("set_select_mode", "edge");
    owned_edges some = {object, object_topology(object), {}};
    for (int e = 0; e < some.topology->size(); ++e) {
        if (random.between(0, 1) < share)
            some.edges.push_back(e);
    }
    if (some.edges.empty() && some.topology->size() > 0)
        some.edges.push_back(random.below(some.topology->size()));
    select_edges({some}, edge_change::replace);
}

struct edge_command {
    std::vector<std::string> words;
    unsigned keeps;   // traits of the mesh that hold afterwards
    bool keeps_shape; // volume, Euler characteristic, texture coordinates
};
class EdgeCommands : public SceneTest, public testing::WithParamInterface<corpus_mesh> {};

void check_after(object_t *object, const corpus_mesh &mesh, const edge_command &command)
{
    expect_sound(object);
    if (mesh.is(MESH_CLOSED) && (command.keeps & MESH_CLOSED) != 0)
        expect_closed(object);
    if (mesh.is(MESH_ORIENTED) && (command.keeps & MESH_ORIENTED) != 0)
        expect_oriented(object);
    if (!command.keeps_shape)
        return;
    if (mesh.euler != any_euler) {
        EXPECT_EQ(euler_of_polygons(object), mesh.euler);
    }
    if (mesh.volume > 0) {
        EXPECT_NEAR(volume(object), mesh.volume, 0.02 * mesh.volume);
    }
    if (!mesh.is(MESH_SEAMS))
        expect_picture_in_place(object);
}

TEST_P(EdgeCommands, KeepWhatTheyPromise)
{
    constexpr unsigned both = MESH_CLOSED | MESH_ORIENTED;
    const std::vector<edge_command> commands = {
        {{"loop_cut", "1", "0"}, both, true},
        {{"loop_cut", "3", "0.4"}, both, true},
        {{"connect"}, both, true},
        {{"dissolve"}, both, false},
        {{"collapse"}, 0, false},
        {{"split_edges"}, MESH_ORIENTED, false},
        {{"slide", "0.3"}, both, false},
        {{"edge_bevel", "0.05"}, both, false},
        {{"edge_bevel", "0.05", "3", "0.5"}, both, false},
        {{"edge_bevel", "100", "2"}, both, false},
        {{"vertex_bevel", "0.05"}, both, false},
        {{"extrude_edges", "0", "0", "1"}, 0, false},
        {{"fill_hole"}, both, false},
        {{"fill_hole", "grid"}, both, false},
        {{"fill_hole", "fan"}, both, false},
    };
    random_source random(7);
    for (const edge_command &command : commands) {
        for (const float share : {0.02f, 0.3f, 1.0f}) {
            SCOPED_TRACE(command.words.front() + " " + std::to_string(share));
            run("clear_all");
            object_t *object = GetParam().add();
            select_random_edges(random, object, share);
            run_and_expect_exact_undo(command.words);
            check_after(object, GetParam(), command);
        }
    }
}
INSTANTIATE_TEST_SUITE_P(Meshes, EdgeCommands, testing::ValuesIn(mesh_corpus()));

} // namespace
