// Colours that are kept with vertices: after an edit each is still that of its vertex.

#include "model/vertex_colours.h"

#include "edit/document/selection.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/object_tree.h"
#include "model/world.h"
#include "tests/support/mesh_test.h"

#include <cmath>

namespace {

// Told by the place, as long as it is on the grid.
std::array<unsigned char, 3> colour_at(const point3_t &p)
{
    return {static_cast<unsigned char>(40 * std::lround(p.x)),
            static_cast<unsigned char>(40 * std::lround(p.y)), 9};
}

object_t *add_coloured_squares(float from)
{
    object_t *object = add_squares(3, 3);
    for (vertex *point : each<vertex>(object->vertices))
        point->position.x += from;
    object_mark_tree(object, CHANGED_ALL);
    std::vector<unsigned char> rgb;
    for (const vertex *point : each<vertex>(object->vertices))
        for (const unsigned char part : colour_at(point->position))
            rgb.push_back(part);
    vesk_object_set_vertex_colours(object, rgb.data());
    object_mark_tree(vesk_get_world(), CHANGED_ALL);
    return object;
}

struct edit_case {
    const char *name;
    int mode; // SELECT_OBJECT: all; else the first elements
    std::vector<std::vector<std::string>> commands;
};
void PrintTo(const edit_case &c, std::ostream *out) { *out << c.name; }
class VertexColours : public SceneTest, public testing::WithParamInterface<edit_case> {};

TEST_P(VertexColours, StayWithTheirVertices)
{
    object_t *squares = add_coloured_squares(0);
    add_coloured_squares(3);
    add_squares(1, 1); // without any
    if (GetParam().mode == SELECT_VERTEX)
        select_vertices_at(squares, {0, 1, 6});
    else if (GetParam().mode == SELECT_SURFACE)
        select_surfaces_at(squares, {0, 1});
    else
        run("select_all");
    for (const std::vector<std::string> &words : GetParam().commands) {
        if (words.size() == 1)
            run(words[0].c_str());
        else if (words.size() == 2)
            run(words[0].c_str(), words[1]);
        else
            run(words[0].c_str(), words[1], words[2]);
    }
    int coloured = 0;
    const auto check = [&](const object_t *object) {
        if (vesk_object_has_vertex_colours(object) == 0)
            return;
        const std::vector<unsigned char> rgb = object_vertex_colours(object);
        ASSERT_EQ(rgb.size(), 3 * static_cast<size_t>(object->num_vertices));
        size_t at = 0;
        for (const vertex *point : each<vertex>(object->vertices)) {
            const point3_t &p = point->position;
            const bool on_grid = p.x == std::round(p.x) && p.y == std::round(p.y) && p.z == 0;
            const std::array<unsigned char, 3> now = {rgb[at], rgb[at + 1], rgb[at + 2]};
            const std::array<unsigned char, 3> white = {255, 255, 255};
            at += 3;
            if (!on_grid || now == white)
                continue;
            EXPECT_EQ(now, colour_at(p)) << p.x << ' ' << p.y;
            ++coloured;
        }
    };
    for_each_object(vesk_get_world(), check);
    EXPECT_GE(coloured, 12); // most are still there
    coloured = 0;
    for (size_t i = 0; i < GetParam().commands.size(); ++i)
        run("step_back");
    for_each_object(vesk_get_world(), check);
    EXPECT_EQ(coloured, 32); // as before
}
// clang-format off
INSTANTIATE_TEST_SUITE_P(Edits, VertexColours, testing::Values(
    edit_case{"delete_vertices", SELECT_VERTEX,  {{"delete"}}},
    edit_case{"delete_surfaces", SELECT_SURFACE, {{"delete"}}},
    edit_case{"subdivide",       SELECT_SURFACE, {{"surface_subdivide"}}},
    edit_case{"holes",           SELECT_SURFACE, {{"surface_make_hole"}}},
    edit_case{"triangles",       SELECT_SURFACE, {{"surface_triangulate"}}},
    edit_case{"object_of",       SELECT_SURFACE, {{"surface_create_object"}}},
    edit_case{"optimize",        SELECT_OBJECT,  {{"optimize"}}},
    edit_case{"fragment",        SELECT_OBJECT,  {{"object_fragment"}}},
    edit_case{"explode",         SELECT_OBJECT,  {{"object_explode"}}},
    edit_case{"merge",           SELECT_OBJECT,  {{"object_merge"}}},
    edit_case{"merge_optimize",  SELECT_OBJECT,  {{"object_merge"}, {"optimize"}}},
    edit_case{"loop",            SELECT_OBJECT,  {{"surface_loop_subdivision"}}},
    edit_case{"weld",            SELECT_VERTEX,  {{"weld"}}},
    edit_case{"copies",          SELECT_OBJECT,  {{"duplicate"}}},
    edit_case{"unshare",         SELECT_SURFACE, {{"unshare_vertices"}}},
    edit_case{"split",           SELECT_OBJECT,  {{"extrude_normals", "1"}}},
    edit_case{"reduce",          SELECT_OBJECT,  {{"reduce", "50"}}}));
// clang-format on

TEST_F(SceneTest, VertexColoursOfAnotherNumberCountForNothing)
{
    object_t *object = add_coloured_squares(0);
    const std::string kept = object->data;
    object_add_new_vertex(object, 9, 9, 9);
    EXPECT_EQ(vesk_object_get_vertex_colours(object), nullptr);
    EXPECT_EQ(vesk_object_has_vertex_colours(object), 1);
    EXPECT_EQ(vesk_object_has_user_data(object), 0);
    for (const char *damaged :
         {"vertex-colours 17 00", "vertex-colours", "vertex-colours 17", "vertex-colours -1 0",
          "vertex-colours 17 "
          "xxyyzzxxyyzzxxyyzzxxyyzzxxyyzzxxyyzzxxyyzzxxyyzzxxyyzzxxyyzzxxyyzzxxyyzz"
          "xxyyzzxxyyzzxxyyzzxxyyzzxxyyzz"}) {
        object_set_userdata(object, damaged);
        EXPECT_EQ(vesk_object_get_vertex_colours(object), nullptr) << damaged;
    }
}

} // namespace
