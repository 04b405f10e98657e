// Coordinates that slide while vertices move: the picture stays where it is in space.

#include "edit/uv/uv_keep.h"

#include "edit/document/journal.h"
#include "edit/document/selection_internal.h"
#include "edit/drag_transform.h"
#include "edit/uv/uv_mesh.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "tests/support/mesh_test.h"

#include <cmath>

namespace {

class UvKeep : public SceneTest {
protected:
    // Coordinates of a slanted, scaled map of x and y; squares of a plane have them everywhere.
    static flat_uv map(const point3_t &p)
    {
        return {0.3f * p.x + 0.1f * p.y + 0.05f, -0.2f * p.x + 0.4f * p.y};
    }
    static void map_all(object_t *object)
    {
        for (const surface_t *surface : each<surface_t>(object->surfaces)) {
            for (svertex *corner : each<svertex>(surface->refs)) {
                corner->u = map(corner->vertex->position).u;
                corner->v = map(corner->vertex->position).v;
            }
        }
        object_mark(object, CHANGED_TEXTURE_COORDS);
    }
    static double largest_slip(object_t *object)
    {
        const uv_mesh mesh = uv_mesh_of({object});
        double most = 0;
        for (int c = 0; c < mesh.num_corners(); ++c) {
            const flat_uv wanted = map(mesh.position(c));
            most = std::max({most, std::fabs(double{mesh.at[c].u} - wanted.u),
                             std::fabs(double{mesh.at[c].v} - wanted.v)});
        }
        return most;
    }
};

TEST_F(UvKeep, InAPlaneThePictureStaysUnderWhateverMoves)
{
    object_t *plane = add_squares(6, 6);
    map_all(plane);
    run("change_count"); // the history begins here
    const struct {
        bool surfaces;
        std::vector<int> places;
        std::vector<std::string> words;
    } moves[] = {
        {false, {24}, {"move_with_undo", "0.3", "0.2", "0"}},
        {false, {8, 9, 10}, {"move", "0", "-0.25", "0"}},
        {true, {14, 15}, {"move_with_undo", "0.2", "0.3", "0"}},
        {true, {21}, {"scale", "0.5", "0.6", "1"}},
        {true, {21}, {"rotate_with_undo", "0", "0", "20"}},
    };
    run("uv_keep", 1);
    for (const auto &move : moves) {
        move.surfaces ? select_surfaces_at(plane, move.places)
                      : select_vertices_at(plane, move.places);
        run_words(move.words);
        EXPECT_LT(largest_slip(plane), 1e-5) << move.words[0];
    }
    run("uv_keep", 0);
    run("move", "0.5", "0", "0");
    EXPECT_GT(largest_slip(plane), 0.01);
}

TEST_F(UvKeep, UndoAndRedoBringBothBackToTheBit)
{
    object_t *plane = add_squares(4, 4);
    map_all(plane);
    run("uv_keep", 1);
    select_vertices_at(plane, {12, 13});
    run("change_count");
    const std::string before = scene_text();
    for (const std::vector<std::string> &words :
         {std::vector<std::string>{"move_with_undo", "0.3", "0.1", "0"},
          {"scale", "1.5", "0.5", "1"}}) {
        run_words(words);
        const std::string after = scene_text();
        EXPECT_LT(largest_slip(plane), 1e-5);
        run("undo");
        EXPECT_EQ(scene_text(), before) << words[0];
        run("redo");
        EXPECT_EQ(scene_text(), after) << words[0];
        run("undo");
        EXPECT_EQ(scene_text(), before) << words[0];
    }
}

TEST_F(UvKeep, WhatMovesAsAWholeTakesItsPictureAlong)
{
    object_t *plane = add_squares(2, 2);
    object_t *cube = add_cube("cube");
    map_all(plane);
    const std::vector<flat_uv> before = uv_mesh_of({plane}).at;
    run("uv_keep", 1);
    run("set_select_mode", "object");
    select_object(plane);
    select_object(cube);
    run("move_with_undo", "0.5", "0.25", "1");
    EXPECT_EQ(uv_mesh_of({plane}).at, before);
    select_all_surfaces(plane);
    run("scale", "2", "2", "2");
    EXPECT_EQ(uv_mesh_of({plane}).at, before);
}

TEST_F(UvKeep, OutOfThePlaneNothingSlidesAndTheSidesOfACubeDo)
{
    object_t *plane = add_squares(4, 4);
    map_all(plane);
    const std::vector<flat_uv> before = uv_mesh_of({plane}).at;
    run("uv_keep", 1);
    select_vertices_at(plane, {12});
    run("move_with_undo", "0", "0", "0.7");
    EXPECT_EQ(uv_mesh_of({plane}).at, before);

    object_t *cube = add_cube("cube"); // from -0.5 to 0.5
    run("set_select_mode", "object");
    clear_selection();
    select_object(cube);
    run("uv_project", "box", "0"); // one picture a unit: the map of each side is known
    std::vector<int> upper;
    int i = 0;
    for (const vertex *v : each<vertex>(cube->vertices)) {
        if (v->position.y > 0)
            upper.push_back(i);
        ++i;
    }
    select_vertices_at(cube, upper);
    run("move_with_undo", "0", "0.5", "0");
    const uv_mesh mesh = uv_mesh_of({cube});
    for (int s = 0; s < mesh.num_surfaces(); ++s) {
        for (int c = mesh.corners_begin(s); c < mesh.corners_end(s); ++c) {
            if (std::fabs(mesh.normals[s].y) < 0.5f) {
                EXPECT_NEAR(mesh.at[c].v, mesh.position(c).y, 1e-5);
            }
        }
    }
}

TEST_F(UvKeep, ADragSlidesAtEachStepAndCancelBringsTheBitsBack)
{
    object_t *plane = add_squares(5, 5);
    map_all(plane);
    run("uv_keep", 1);
    select_vertices_at(plane, {14, 15});
    journal_begin();
    journal_step("start");
    const std::string before = scene_text();
    drag_transform_t drag;
    drag_change_t change;
    for (const float x : {0.1f, 0.25f, 0.4f}) {
        change.offset = {x, -x / 2, 0};
        drag.step(change);
        EXPECT_LT(largest_slip(plane), 1e-5);
    }
    drag.take_back();
    EXPECT_EQ(scene_text(), before);
    drag.step(change);
    drag.finish();
    journal_step("drag");
    EXPECT_LT(largest_slip(plane), 1e-5);
    run("undo");
    EXPECT_EQ(scene_text(), before);
}

} // namespace
