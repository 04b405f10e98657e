// The ruler and the tool that inserts vertices: events in, what is measured and the model out.

#include "edit/document/modes.h"
#include "edit/document/selection_internal.h"
#include "edit/document/undo.h"
#include "model/each.h"
#include "model/flat_mesh.h"
#include "model/world.h"
#include "tests/view/tool_fixture.h"
#include "view/camera_eye.h"
#include "view/pick_edge.h"
#include "view/ruler.h"
#include "view/tool_insert.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace {

class ExtraTools : public Tools {
protected:
    void SetUp() override
    {
        Tools::SetUp();
        prefs.gridsnap = 0;
        clear_selection();
    }
    std::string echoed() const
    {
        for (auto i = recording().scripts.rbegin(); i != recording().scripts.rend(); ++i) {
            if (i->starts_with("echo_command "))
                return i->substr(13);
        }
        return "";
    }
    [[nodiscard]] int surfaces_with_corners(std::size_t corners) const
    {
        const flat_ptr mesh = object_flat(cube);
        int count = 0;
        for (int i = 0; i < mesh->num_surfaces(); ++i)
            count += mesh->surface_corners(i).size() == corners ? 1 : 0;
        return count;
    }
};

// ---- the ruler ----

class Ruler : public ExtraTools {
protected:
    void SetUp() override
    {
        ExtraTools::SetUp();
        run("set_view_tool", "measure");
        before = *undo_count_address();
        serial = run("change_count");
    }
    void TearDown() override
    {
        EXPECT_EQ(*undo_count_address(), before);
        EXPECT_EQ(run("change_count"), serial);
        ExtraTools::TearDown();
    }
    int before = 0;
    std::string serial;
};

TEST_F(Ruler, ADragFromCornerToCornerTellsTheLengthAndAClickTheAngle)
{
    drag(VIEW_XY, 152, 198, 249, 103); // the front face's corners are at 150, 200 and 250, 100
    EXPECT_EQ(last_message(), "distance 1.41421  dX 1  dY 1  dZ 0");
    EXPECT_EQ(echoed(), "measure_points -0.5\\ -0.5\\ 0.5\\ 0.5\\ 0.5\\ 0.5");
    EXPECT_EQ(ruler_texts(ruler()),
              (std::vector<std::string>{"1.414", "dX 1.000  dY 1.000  dZ 0.000"}));
    click(VIEW_XY, 251, 199);
    EXPECT_EQ(last_message(), "angle 45 degrees  lengths 1.41421 and 1");
    EXPECT_EQ(ruler_texts(ruler()), std::vector<std::string>{"45.000 degrees"});
    drag(VIEW_XY, 20, 20, 120, 20); // a new one, beside every vertex
    EXPECT_EQ(ruler().points.size(), 2u);
    EXPECT_TRUE(nothing_is_selected());
    EXPECT_TRUE(key("Escape"));
    EXPECT_TRUE(ruler().points.empty());
    EXPECT_FALSE(key("Escape")) << "the next one clears the selection";
}

TEST_F(Ruler, ClicksDoAsWellAndAxesLockAndTheGridSnaps)
{
    click(VIEW_XZ, 30, 30);
    move(VIEW_XZ, 133, 61);
    EXPECT_TRUE(ruler().following);
    EXPECT_TRUE(key("x"));
    click(VIEW_XZ, 133, 61);
    EXPECT_EQ(last_message(), "distance 1.03  dX 1.03  dY 0  dZ 0");
    prefs.gridsnap = 1;
    prefs.grid = 0.5f;
    drag(VIEW_XZ, 56, 44, 91, 61);
    EXPECT_EQ(last_message(), "distance 0.5  dX 0.5  dY 0  dZ 0");
    prefs.gridsnap = 0;
    drag(VIEW_XZ, 56, 44, 91, 61, control);
    EXPECT_EQ(last_message(), "distance 0.5  dX 0.5  dY 0  dZ 0");
}

TEST_F(Ruler, InThe3DViewItLiesOnTheFace)
{
    run("fit_all");
    drag(VIEW_XYZ, 200, 150, 215, 150);
    ASSERT_EQ(ruler().points.size(), 2u);
    for (const point3_t &p : ruler().points) {
        const float reach = std::max({std::fabs(p.x), std::fabs(p.y), std::fabs(p.z)});
        EXPECT_NEAR(reach, 0.5f, 1e-4f);
    }
    click(VIEW_XYZ, 10, 290); // nothing there: the plane of the screen through the point before
    EXPECT_EQ(ruler().points.size(), 3u);
    EXPECT_TRUE(key("Escape"));
    press(VIEW_XYZ, 10, 290);
    EXPECT_EQ(interaction_drag(), drag_kind::turn) << "beside the model the camera turns";
    release(VIEW_XYZ, 10, 290);
    EXPECT_TRUE(nothing_is_selected());
}

TEST_F(Ruler, ADrawModeEndsIt)
{
    drag(VIEW_XY, 20, 20, 120, 20);
    run("set_draw_mode", "move");
    EXPECT_TRUE(ruler().points.empty());
    click(VIEW_XY, 200, 150);
    EXPECT_FALSE(nothing_is_selected());
    EXPECT_EQ(run("measure_points", "0 0 0 3 4 0"), "distance 5  dX 3  dY 4  dZ 0");
    run("measure_points", "0 0");
    EXPECT_EQ(last_message(), "measure - two or three points are needed");
}

// ---- inserting vertices ----

class InsertTool : public ExtraTools {
protected:
    void SetUp() override
    {
        ExtraTools::SetUp();
        run("set_view_tool", "insert_vertex");
    }
};

TEST_F(InsertTool, AClickPutsAVertexIntoBothSurfacesOfTheEdge)
{
    move(VIEW_XY, 176, 101);
    ASSERT_FALSE(insert_marks().empty());
    EXPECT_NEAR(insert_marks().front().at.x, -0.24f, 1e-5f);
    EXPECT_EQ(insert_marks().front().at.z, 0.5f) << "the edge in front";
    click(VIEW_XY, 176, 101);
    EXPECT_EQ(cube->num_vertices, 9);
    EXPECT_EQ(surfaces_with_corners(5), 2);
    EXPECT_EQ(last_undo(), "insert vertex");
    EXPECT_EQ(*undo_count_address(), 1);
    const std::string line = echoed();
    run("undo");
    cube = *each<object_t>(vesk_get_world()->children).begin();
    EXPECT_EQ(cube->num_vertices, 8);
    // The coordinates of the texture lie as far along as the vertex does.
    const flat_ptr before = object_flat(cube);
    const edge_hit_t hit = pick_edge_at(VIEW_XY, 176, 101, 4);
    ASSERT_EQ(hit.object, cube);
    click(VIEW_XY, 176, 101);
    EXPECT_EQ(echoed(), line);
    const flat_ptr after = object_flat(cube);
    int checked = 0;
    for (int i = 0; i < after->num_surfaces(); ++i) {
        const auto corners = after->surface_corners(i);
        const auto first = static_cast<std::size_t>(after->first_corner(i));
        for (std::size_t k = 0; k < corners.size(); ++k) {
            if (corners[k] != 8)
                continue;
            const std::size_t n = corners.size();
            const flat_uv &uv = after->uv(first + k);
            const flat_uv &p = after->uv(first + (k + n - 1) % n);
            const flat_uv &q = after->uv(first + (k + 1) % n);
            const float share = corners[(k + n - 1) % n] == hit.a ? hit.share : 1 - hit.share;
            EXPECT_NEAR(uv.u, p.u + (q.u - p.u) * share, 1e-5f);
            EXPECT_NEAR(uv.v, p.v + (q.v - p.v) * share, 1e-5f);
            ++checked;
        }
    }
    EXPECT_EQ(checked, 2);
}

TEST_F(InsertTool, WithSymmetryTheMarksAreOnBothSides)
{
    for (const int axis : {1, 2}) { // along the edge, and across
        prefs.symmetry_axis = axis;
        move(VIEW_XY, 176, 101);
        ASSERT_EQ(insert_marks().size(), 2U);
        const std::vector<insert_mark_t> marks = insert_marks();
        EXPECT_EQ(marks[1].at.x, axis == 1 ? -marks[0].at.x : marks[0].at.x);
        EXPECT_EQ(marks[1].at.y, axis == 2 ? -marks[0].at.y : marks[0].at.y);
        click(VIEW_XY, 176, 101);
        const flat_ptr mesh = object_flat(cube);
        ASSERT_EQ(mesh->num_vertices(), 10);
        for (int i = 0; i < 2; ++i)
            EXPECT_TRUE(point_equal(mesh->position(8 + i), marks[i].at)) << i;
        run("step_back");
        cube = *each<object_t>(vesk_get_world()->children).begin();
    }
}

TEST_F(InsertTool, ControlTakesTheMiddleAndTheGridItsCrossing)
{
    move(VIEW_XY, 176, 101, control);
    EXPECT_NEAR(insert_marks().front().at.x, 0.0f, 1e-6f);
    prefs.gridsnap = 1;
    prefs.grid = 0.2f;
    move(VIEW_XY, 176, 101);
    EXPECT_NEAR(insert_marks().front().at.x, -0.2f, 1e-5f);
    move(VIEW_XY, 200, 150);
    EXPECT_TRUE(insert_marks().empty()) << "no edge here";
    move(VIEW_XY, 176, 101);
    interaction_leave(VIEW_XY);
    EXPECT_TRUE(insert_marks().empty()) << "the pointer is elsewhere";
    click(VIEW_XY, 200, 150);
    EXPECT_EQ(cube->num_vertices, 8);
    EXPECT_TRUE(nothing_is_selected());
}

TEST_F(InsertTool, WhatIsHiddenOrLockedIsLeftAlone)
{
    run("insert_vertex_at", "12345", "0", "1", "0.5"); // no such object
    EXPECT_EQ(last_message(), "insert vertex - there is no such edge");
    const std::string id = run("object_get_children", run("get_world"));
    for (const char *off : {"object_hide", "object_lock"}) {
        run(off, id);
        click(VIEW_XY, 176, 101);
        run("insert_vertex_at", id, "0", "1", "0.5");
        EXPECT_EQ(last_message(), "insert vertex - there is no such edge");
        run("object_unhide", id);
    }
    EXPECT_EQ(cube->num_vertices, 8);
    run("object_unlock", id);
    for (const char *share : {"0", "1", "nan", "-1"})
        run("insert_vertex_at", id, "0", "1", share);
    run("insert_vertex_at", id, "0", "2", "0.5"); // no edge joins them
    run("insert_vertex_at", id, "0", "99", "0.5");
    EXPECT_EQ(cube->num_vertices, 8);
    EXPECT_NE(last_undo(), "insert vertex");
}

TEST_F(InsertTool, InThe3DViewTheShareIsThatOfTheWorldAndHiddenEdgesAreNotSeen)
{
    run("fit_all");
    set_new_select_mode(SELECT_VERTEX);
    // Everywhere on the picture: what is found lies under the pointer and is not behind the cube.
    int found = 0;
    for (int x = 0; x < 400; x += 7) {
        for (int y = 0; y < 300; y += 5) {
            const edge_hit_t hit = pick_edge_at(VIEW_XYZ, x, y, 3);
            if (hit.object == nullptr)
                continue;
            ++found;
            double px = 0, py = 0;
            ASSERT_TRUE(camera_project(point_of_edge(hit), &px, &py));
            EXPECT_LE(std::hypot(px - x, py - y), 3.1);
        }
    }
    EXPECT_GT(found, 10);
    // Seen along an axis only the front face's four edges are there.
    camera_look_along(2, true);
    std::set<std::pair<int, int>> edges;
    for (int x = 0; x < 400; x += 2) {
        for (int y = 0; y < 300; y += 2) {
            const edge_hit_t hit = pick_edge_at(VIEW_XYZ, x, y, 2);
            if (hit.object == nullptr)
                continue;
            if (hit.from.z == 0.5f && hit.to.z == 0.5f)
                edges.insert(std::minmax(hit.a, hit.b));
            else // at a corner, another edge of it
                EXPECT_NEAR(std::fabs(point_of_edge(hit).z), 0.5f, 0.2f) << x << " " << y;
        }
    }
    EXPECT_EQ(edges.size(), 4u);
}

} // namespace
