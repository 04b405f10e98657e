// Catmull and Clark's subdivision: where points go, what stays sharp, and what a part of a mesh does
// to its neighbours.

#include "edit/document/edge_selection.h"
#include "edit/document/selection_internal.h"
#include "model/each.h"
#include "model/flat_mesh.h"
#include "model/identity.h"
#include "model/vec3d.h"
#include "model/world.h"
#include "tests/edit/mesh_corpus.h"

#include <cmath>
#include <map>

namespace {

class CatmullClark : public SceneTest {
protected:
    static object_t *add(const char *name)
    {
        for (const corpus_mesh &mesh : mesh_corpus()) {
            if (std::string(mesh.name) == name)
                return mesh.add();
        }
        return nullptr;
    }
};

bool has_point(const object_t *object, double x, double y, double z)
{
    for (const point3_t &p : points_of(object)) {
        if (std::hypot(static_cast<double>(p.x) - x, static_cast<double>(p.y) - y,
                       static_cast<double>(p.z) - z) < 1e-6)
            return true;
    }
    return false;
}

// Half the sum of u dv - v du over the corners: 1 for the whole picture.
double area_uv(const surface_t *surface)
{
    std::vector<std::pair<double, double>> uv;
    for (const svertex *corner : each<svertex>(surface->refs))
        uv.emplace_back(corner->u, corner->v);
    double sum = 0;
    for (std::size_t i = 0; i < uv.size(); ++i) {
        const auto &[u, v] = uv[i];
        const auto &[next_u, next_v] = uv[(i + 1) % uv.size()];
        sum += u * next_v - next_u * v;
    }
    return sum / 2;
}

TEST_F(CatmullClark, ABoxGetsThePointsOfTheScheme)
{
    object_t *box = add("box");
    select_object(box);
    run("catmull_clark", 1);
    EXPECT_EQ(box->num_surfaces, 24);
    EXPECT_EQ(box->num_vertices, 26);
    EXPECT_TRUE(has_point(box, 2.0 / 9, 2.0 / 9, 2.0 / 9)); // a corner: (F + 2R) / 3
    EXPECT_TRUE(has_point(box, 0.5, 0.125, 0.125));         // an edge
    EXPECT_TRUE(has_point(box, 0.5, 0.5, 0));               // a face
    EXPECT_EQ(last_message(), "catmull-clark - 24 surfaces");
    EXPECT_EQ(last_undo(), "catmull-clark");
    expect_closed(box);
}

TEST_F(CatmullClark, OpenBordersAreCurvesOfTheirOwn)
{
    object_t *grid = add("grid");
    select_object(grid);
    run("catmull_clark", 1);
    EXPECT_EQ(grid->num_surfaces, 80);
    EXPECT_TRUE(has_point(grid, 0.125, 0.125, 0)); // (a + 6 p + b) / 8
    EXPECT_TRUE(has_point(grid, 0.5, 0, 0));
    EXPECT_TRUE(has_point(grid, 2, 3, 0)); // regular inside: stays
    expect_no_problems(grid);
}

TEST_F(CatmullClark, EdgesOfManyPolygonsAreSharp)
{
    object_t *book = add("book");
    select_object(book);
    run("catmull_clark", 2);
    for (const double share : {0.25, 0.5, 0.75})
        EXPECT_TRUE(has_point(book, 0, share, 0)) << share << " of the spine";
    EXPECT_TRUE(has_point(book, 0, 0, 0)) << "three borders and the spine meet";
}

TEST_F(CatmullClark, NeighboursOfAPartStayWhereTheyAreAndNoCrackOpens)
{
    object_t *grid = add("grid"); // 5 by 4
    const std::vector<point3_t> before = points_of(grid);
    select_surfaces_at(grid, {6, 7});
    run("catmull_clark", 2);
    EXPECT_EQ(grid->num_surfaces, 18 + 32);
    EXPECT_EQ(selected_surfaces_of(grid).size(), 32u);
    for (const point3_t &p : before)
        EXPECT_TRUE(has_point(grid, p.x, p.y, p.z));
    EXPECT_EQ(euler_of_polygons(grid), 1);
    EXPECT_NEAR(area_xy(grid), 20, 1e-5);
    expect_picture_in_place(grid);
    expect_oriented(grid);
    expect_no_problems(grid);
}

TEST_F(CatmullClark, PropertiesAndSeamsGoToTheQuadsOfEachPolygon)
{
    object_t *box = add("box_with_seams");
    std::map<int, double> picture; // by material: two sides have each
    for (const surface_t *surface : each<surface_t>(box->surfaces))
        picture[surface->material] += area_uv(surface);
    select_object(box);
    run("catmull_clark", 3);
    EXPECT_EQ(box->num_surfaces, 6 * 64);
    for (const surface_t *surface : each<surface_t>(box->surfaces))
        picture[surface->material] -= area_uv(surface);
    for (const auto &[material, left] : picture)
        EXPECT_NEAR(left, 0, 1e-6) << material;
}

TEST_F(CatmullClark, LinesAndLooseVerticesStay)
{
    object_t *sheet = add("sheet_with_lines");
    select_object(sheet);
    run("catmull_clark", 1);
    EXPECT_EQ(sheet->num_surfaces, 2 + 36);
    EXPECT_EQ(object_get_surface_at(sheet, 0)->num_refs, 4);
    EXPECT_TRUE(has_point(sheet, 9, 9, 9));
}

TEST_F(CatmullClark, RefusesWithAWord)
{
    object_t *grid = add("grid");
    run("catmull_clark", 1);
    EXPECT_EQ(last_message(), "catmull-clark - nothing selected");
    select_object(grid);
    const std::string before = scene_text();
    for (const int steps : {0, -1, 9}) {
        run("catmull_clark", steps);
        EXPECT_EQ(last_message(), "catmull-clark - give 1 to 8 steps");
    }
    object_t *large = add_squares(60, 60);
    const std::string with_large = scene_text();
    select_object(large);
    run("catmull_clark", 8);
    EXPECT_NE(last_message().find("too many"), std::string::npos) << last_message();
    cancel_at_look(1);
    run("catmull_clark", 2);
    cancel_at_look(0);
    EXPECT_EQ(last_message(), "catmull-clark - cancelled");
    EXPECT_TRUE(scene_text() == with_large);
    EXPECT_EQ(last_undo(), "");
}

TEST_F(CatmullClark, CreasesStaySharpByAngle)
{
    object_t *box = add("box");
    select_object(box);
    run("catmull_clark", 2, 30);
    EXPECT_EQ(box->num_surfaces, 96);
    EXPECT_NEAR(std::fabs(volume(box)), 1, 1e-6); // a box of more surfaces
    EXPECT_EQ(euler_characteristic(box), 2);
    run("step_back");
    run("catmull_clark", 2, 100); // no edge is folded that much
    const std::string all_round = scene_text();
    EXPECT_LT(std::fabs(volume(box)), 0.8);
    run("step_back");
    run("catmull_clark", 2);
    EXPECT_EQ(scene_text(), all_round);
}

TEST_F(CatmullClark, SelectedEdgesStaySharpAndTheirObjectsAreSmoothedAsWholes)
{
    object_t *box = add("box");
    run("set_select_mode", "edge");
    select_edges({}, edge_change::replace);
    // The four edges of one face: a rim that stays a curve of its own.
    const flat_ptr mesh = object_flat(box);
    const auto rim = mesh->surface_corners(0);
    for (std::size_t i = 0; i < rim.size(); ++i)
        run("edge_select", object_identity(box), rim[i], rim[(i + 1) % rim.size()]);
    vec3d middle;
    for (const int v : rim)
        middle += to_vec3d(mesh->position(v)) / 4;
    run("catmull_clark", 2, "selected");
    EXPECT_EQ(box->num_surfaces, 96);
    EXPECT_EQ(euler_characteristic(box), 2);
    EXPECT_TRUE(has_point(box, middle.x, middle.y, middle.z)); // the face inside stays flat
    run("step_back");
    clear_selection();
    run("edge_select", object_identity(box), rim[0], rim[1]);
    run("catmull_clark", 1, "selected"); // it ends inside
    EXPECT_EQ(box->num_surfaces, 24);
    const vec3d half = (to_vec3d(mesh->position(rim[0])) + to_vec3d(mesh->position(rim[1]))) / 2;
    EXPECT_TRUE(has_point(box, half.x, half.y, half.z));
}

} // namespace
