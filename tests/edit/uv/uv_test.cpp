// Texture coordinates: islands against a plain search, the commands with their undo, what is chosen
// in step with the main selection.

#include "edit/document/selection_internal.h"
#include "edit/uv/uv_edit.h"
#include "edit/uv/uv_measure.h"
#include "edit/uv/uv_relax.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/identity.h"
#include "model/normals.h"
#include "model/world.h"
#include "tests/support/mesh_test.h"
#include "tests/support/random_mesh.h"

#include <cmath>
#include <map>
#include <numeric>
#include <set>

namespace {

std::vector<svertex *> all_corners(const object_t *object)
{
    std::vector<svertex *> corners;
    for (const surface_t *surface : each<surface_t>(object->surfaces)) {
        for (svertex *corner : each<svertex>(surface->refs))
            corners.push_back(corner);
    }
    return corners;
}

std::vector<flat_uv> coordinates(const object_t *object)
{
    std::vector<flat_uv> at;
    for (const svertex *corner : all_corners(object))
        at.push_back({corner->u, corner->v});
    return at;
}

void set_coordinates(object_t *object, const std::vector<flat_uv> &at)
{
    std::size_t i = 0;
    for (svertex *corner : all_corners(object)) {
        corner->u = at[i].u;
        corner->v = at[i++].v;
    }
    object_mark(object, CHANGED_TEXTURE_COORDS);
}

// A value of uv_info, its blanks plain.
std::string info(const std::string &key)
{
    const std::string text = " " + run("uv_info") + " ";
    std::size_t at = text.find(" " + key + " ");
    std::string value;
    for (at += key.size() + 2; text[at] != ' '; ++at) {
        if (text[at] == '\\')
            ++at;
        value += text[at];
    }
    return value;
}

void select_only(object_t *object)
{
    run("set_select_mode", "object");
    clear_selection();
    select_object(object);
}

// Whether surfaces a and b share an edge along which their coordinates agree.
bool joined(const uv_mesh &mesh, int a, int b)
{
    for (int c = mesh.corners_begin(a); c < mesh.corners_end(a); ++c) {
        for (int d = mesh.corners_begin(b); d < mesh.corners_end(b); ++d) {
            const int c2 = mesh.next_corner(a, c), d2 = mesh.next_corner(b, d);
            for (const auto &[e, f] : {std::pair(d, d2), std::pair(d2, d)}) {
                if (mesh.vertices[c] == mesh.vertices[e] && mesh.vertices[c2] == mesh.vertices[f] &&
                    mesh.at[c] == mesh.at[e] && mesh.at[c2] == mesh.at[f])
                    return true;
            }
        }
    }
    return false;
}

std::vector<int> islands_by_search(const uv_mesh &mesh)
{
    std::vector<int> island(mesh.num_surfaces());
    std::iota(island.begin(), island.end(), 0);
    for (bool changed = true; changed;) {
        changed = false;
        for (int a = 0; a < mesh.num_surfaces(); ++a) {
            for (int b = 0; b < a; ++b) {
                if (island[a] != island[b] && joined(mesh, a, b)) {
                    island[a] = island[b] = std::min(island[a], island[b]);
                    changed = true;
                }
            }
        }
    }
    return island;
}

class UvIslands : public SceneTest, public testing::WithParamInterface<unsigned> {};

TEST_P(UvIslands, AreWhatAPlainSearchFinds)
{
    random_source random(GetParam());
    object_t *object = GetParam() % 2 == 0 ? add_random_soup(random, 14, 40) : add_squares(6, 5);
    // Few different coordinates, so that many edges agree and many do not.
    std::vector<flat_uv> at = coordinates(object);
    for (flat_uv &p : at) {
        if (GetParam() % 2 == 0)
            p = {0.5f * static_cast<float>(random.below(2)), 0.25f};
        else if (random.below(8) == 0)
            p.u += 0.25f;
    }
    set_coordinates(object, at);

    const uv_mesh mesh = uv_mesh_of({object});
    const uv_islands found = uv_find_islands(mesh);

    const std::vector<int> expected = islands_by_search(mesh);
    std::set<int> names(expected.begin(), expected.end());
    EXPECT_EQ(found.num_islands, static_cast<int>(names.size()));
    for (int a = 0; a < mesh.num_surfaces(); ++a) {
        for (int b = 0; b < a; ++b)
            ASSERT_EQ(found.island[a] == found.island[b], expected[a] == expected[b])
                << a << " " << b;
    }
    // Corners of one point are of one vertex and lie on each other.
    std::vector<int> first(found.num_points, -1);
    for (int c = 0; c < mesh.num_corners(); ++c) {
        int &other = first[found.point[c]];
        if (other < 0)
            other = c;
        ASSERT_EQ(mesh.vertices[c], mesh.vertices[other]);
        ASSERT_EQ(mesh.at[c], mesh.at[other]);
    }
}
INSTANTIATE_TEST_SUITE_P(Seeds, UvIslands, testing::Range(1u, 17u));

struct edit_case {
    const char *name;
    std::vector<std::string> words;
    flat_uv expected[4]; // of the unit square's corners 0 0, 1 0, 1 1, 0 1
};
// clang-format off
const edit_case edit_cases[] = {
    {"move",           {"uv_move", "0.25", "-0.5"},  {{0.25f, -0.5f}, {1.25f, -0.5f}, {1.25f, 0.5f}, {0.25f, 0.5f}}},
    {"scale",          {"uv_scale", "0.5", "2"},     {{0.25f, -0.5f}, {0.75f, -0.5f}, {0.75f, 1.5f}, {0.25f, 1.5f}}},
    {"rotate_left",    {"uv_rotate_90"},             {{1, 0}, {1, 1}, {0, 1}, {0, 0}}},
    {"rotate_half",    {"uv_rotate", "180"},         {{1, 1}, {0, 1}, {0, 0}, {1, 0}}},
    {"flip_u",         {"uv_flip", "u"},             {{1, 0}, {0, 0}, {0, 1}, {1, 1}}},
    {"flip_v",         {"uv_flip", "v"},             {{0, 1}, {1, 1}, {1, 0}, {0, 0}}},
    {"snap",           {"uv_snap"},                  {{0, 0}, {1, 0}, {1, 1}, {0, 1}}},
    {"pack_margin_0",  {"uv_pack", "0"},             {{0, 0}, {1, 0}, {1, 1}, {0, 1}}},
    {"planar_front",   {"uv_project", "planar_z", "2"}, {{0, 0}, {1, 0}, {1, 1}, {0, 1}}},
    {"units",          {"uv_project", "planar_z", "0"}, {{-2, -2}, {2, -2}, {2, 2}, {-2, 2}}},
};
// clang-format on
void PrintTo(const edit_case &c, std::ostream *out) { *out << c.name; }
class UvEdit : public SceneTest, public testing::WithParamInterface<edit_case> {};

TEST_P(UvEdit, DoesAsWorkedOutByHandAndIsUndoneToTheBit)
{
    object_t *square = add_square(2);
    set_coordinates(square, {{0, 0}, {1, 0}, {1, 1}, {0, 1}});
    select_only(square);
    run("change_count"); // the history begins here
    const std::string before = scene_text();
    const std::string undo_before = last_undo();

    run_words(GetParam().words);

    const std::vector<flat_uv> at = coordinates(square);
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_NEAR(at[i].u, GetParam().expected[i].u, 2e-3) << i;
        EXPECT_NEAR(at[i].v, GetParam().expected[i].v, 2e-3) << i;
    }
    const std::string after = scene_text();
    if (after != before) {
        run("undo");
        EXPECT_EQ(scene_text(), before);
        run("redo");
        EXPECT_EQ(scene_text(), after);
        run("undo");
    }
    EXPECT_EQ(scene_text(), before);
    EXPECT_EQ(last_undo(), undo_before);
}
INSTANTIATE_TEST_SUITE_P(Commands, UvEdit, testing::ValuesIn(edit_cases));

class Uv : public SceneTest {};

TEST_F(Uv, OneStepIsOneRecordAndNothingToDoIsNone)
{
    object_t *squares = add_squares(4, 4);
    run("uv_move", "1", "1");
    EXPECT_EQ(last_undo(), "");
    EXPECT_EQ(last_message(), "move texture coordinates - nothing selected");
    select_only(squares);
    const std::string label = last_undo();
    run("uv_move", "0", "0");
    EXPECT_EQ(last_undo(), label);
    run("uv_move", "0.1", "0.2");
    EXPECT_EQ(last_undo(), "move texture coordinates");
    run("undo");
    EXPECT_EQ(last_undo(), label);
}

TEST_F(Uv, ChosenSurfacesAndCornersAreTheMainSelectionBothWays)
{
    object_t *squares = add_squares(3, 1); // coordinates 0..3, one island
    select_only(squares);
    EXPECT_EQ(info("islands"), "1");
    EXPECT_EQ(info("chosen_corners"), "0");

    run("uv_select_mode", "surface");
    run("uv_select_box", "0", "0", "1", "1");
    EXPECT_EQ(select_mode(), SELECT_SURFACE);
    EXPECT_EQ(selected_surfaces_of(squares), std::vector<int>({0}));
    EXPECT_EQ(info("surfaces"), "3"); // the object stays shown

    select_surfaces_at(squares, {1, 2});
    EXPECT_EQ(info("chosen_surfaces"), "2");
    EXPECT_EQ(info("box"), "1 0 3 1");

    run("uv_select_mode", "corner");
    EXPECT_EQ(select_mode(), SELECT_VERTEX);
    run("uv_select_box", "-1", "-1", "0", "5");
    EXPECT_EQ(selected_vertices_of(squares).size(), 2u);
    run("uv_select", "none");
    EXPECT_EQ(selected_vertices_of(squares).size(), 0u);
    EXPECT_EQ(info("surfaces"), "3");

    run("set_select_mode", "surface");
    EXPECT_EQ(info("surfaces"), "0"); // nothing is selected any more
    select_all_surfaces(squares);
    EXPECT_EQ(info("mode"), "surface");
    EXPECT_EQ(info("chosen_surfaces"), "3");
}

TEST_F(Uv, TheModeOfTheViewsAndTheirVerticesAreThoseOfTheEditor)
{
    object_t *squares = add_squares(3, 1); // 4 x 2 vertices, 12 corners
    select_only(squares);
    run("uv_select_mode", "island");
    struct mode_case {
        const char *views, *editor;
    };
    for (const mode_case &c : {mode_case{"vertex", "corner"}, {"surface", "surface"}}) {
        run("set_select_mode", c.views);
        EXPECT_EQ(info("mode"), c.editor);
    }
    run("set_select_mode", "vertex");
    const std::string id = std::to_string(object_identity(squares));
    // Corners at the vertices are chosen, in each surface that uses them.
    for (const auto &[vertices, corners] :
         std::map<std::string, std::string>{{"0", "1"}, {"1", "2"}, {"0-7", "12"}}) {
        run("select_elements", "set", id + ":" + vertices);
        EXPECT_EQ(info("chosen_corners"), corners) << vertices;
    }
    run("clear_selection");
    EXPECT_EQ(info("chosen_corners"), "0");
}

struct corners_case {
    const char *text, *chosen;
};

TEST_F(Uv, CornersAreChosenByAListOfRanges)
{
    run("set_select_mode", "object");
    for (int i = 0; i < 3; ++i)
        select_object(add_squares(1, 1)); // 12 corners, each for itself
    run("uv_select_mode", "corner");
    for (const corners_case &c : {corners_case{"0", "1"},
                                  {"0-2,5", "4"},
                                  {"1,1,1", "1"},
                                  {"0,2-3,11", "4"},
                                  {"10-99", "2"},
                                  {"99", "0"},
                                  {"", "0"}}) {
        run("uv_select_corners", c.text);
        EXPECT_EQ(info("chosen_corners"), c.chosen) << c.text;
    }
}

TEST_F(Uv, OfChosenCornersTheWholeSurfacesAndIslandsStay)
{
    select_only(add_squares(3, 1)); // coordinates 0..3, one island
    run("uv_select_mode", "corner");
    run("uv_select_corners", "0-5"); // the first square and half of the second
    run("uv_select_mode", "surface");
    EXPECT_EQ(info("chosen_surfaces"), "1");
    EXPECT_EQ(info("chosen_corners"), "4");
    run("uv_select_mode", "island");
    EXPECT_EQ(info("chosen_corners"), "12");
}

TEST_F(Uv, SnappedCornersLieOnPixels)
{
    object_t *squares = add_squares(2, 1);
    std::vector<flat_uv> at = coordinates(squares);
    for (std::size_t i = 0; i < at.size(); ++i)
        at[i] = {0.1f * static_cast<float>(i) + 0.0013f, 0.77f / static_cast<float>(i + 1)};
    set_coordinates(squares, at);
    select_only(squares);
    run("uv_snap");
    const std::string pixels = info("pixels");
    const float width = std::stof(pixels), height = std::stof(pixels.substr(pixels.find(' ')));
    ASSERT_GT(width, 1);
    const std::vector<flat_uv> snapped = coordinates(squares);
    for (std::size_t i = 0; i < at.size(); ++i) {
        EXPECT_NEAR(snapped[i].u * width, std::round(at[i].u * width), 1e-3f);
        EXPECT_NEAR(snapped[i].v * height, std::round(at[i].v * height), 1e-3f);
    }
    EXPECT_EQ(last_undo(), "snap texture coordinates");
    run("uv_snap"); // nothing left to do
    run("undo");
    EXPECT_EQ(coordinates(squares)[3].u, at[3].u);
}

TEST_F(Uv, AChoiceSurvivesItsOwnUndo)
{
    object_t *squares = add_squares(3, 1);
    select_only(squares);
    run("uv_select_mode", "surface");
    run("uv_select_box", "0", "0", "1", "1");
    run("uv_move", "0.25", "0");
    EXPECT_EQ(info("box"), "0.25 0 1.25 1");
    run("undo");
    EXPECT_EQ(info("chosen_surfaces"), "1");
    EXPECT_EQ(info("box"), "0 0 1 1");
}

TEST_F(Uv, MovingASurfaceKeepsItJoinedAndSplitPartsIt)
{
    object_t *squares = add_squares(3, 1);
    select_surfaces_at(squares, {0});
    run("uv_move", "0", "0.5");
    EXPECT_EQ(info("islands"), "1");
    run("uv_split");
    EXPECT_EQ(last_undo(), "split texture coordinates");
    EXPECT_EQ(info("islands"), "2");
    run("uv_select", "all");
    run("uv_weld", "0.01");
    EXPECT_EQ(info("islands"), "1");
    run("uv_select_mode", "corner");
    run("uv_select_box", "0.9", "-1", "1.1", "5"); // the edge between the first two
    run("uv_split");
    EXPECT_EQ(info("islands"), "2");
    run("uv_weld");
    EXPECT_EQ(info("islands"), "1");
}

TEST_F(Uv, AlignBringsCornersOrIslandsToOneLine)
{
    object_t *squares = add_squares(1, 1);
    select_only(squares);
    run("uv_select_mode", "corner");
    run("uv_select", "all");
    run("uv_align", "right");
    EXPECT_EQ(info("box_all"), "1 0 1 1");
    object_t *cube = add_cube("cube");
    select_only(cube);
    run("uv_select_mode", "island");
    run("uv_select", "none");
    run("uv_project", "box", "1");
    ASSERT_EQ(info("islands"), "6");
    run("uv_align", "left");
    run("uv_align", "bottom");
    const uv_state &state = uv_editor();
    for (const uv_box &box : uv_island_boxes(state.mesh, state.islands)) {
        EXPECT_NEAR(box.u0, uv_box_of(state.mesh, uv_moving_corners(state)).u0, 1e-5);
        EXPECT_NEAR(box.v0, uv_box_of(state.mesh, uv_moving_corners(state)).v0, 1e-5);
    }
    EXPECT_EQ(run("uv_overlaps"), "6");
}

TEST_F(Uv, StretchTellsAreaAndShapeOfAKnownMap)
{
    object_t *squares = add_squares(2, 1);
    std::vector<flat_uv> at = coordinates(squares);
    for (std::size_t c = 4; c < 8; ++c)
        at[c] = {at[c].u * 3, at[c].v}; // three times as wide
    set_coordinates(squares, at);
    std::vector<uv_stretch> stretch = uv_measure_stretch(uv_mesh_of({squares}), 1);
    EXPECT_NEAR(stretch[0].angle, 1, 1e-5);
    EXPECT_NEAR(stretch[1].angle, 3, 1e-5);
    EXPECT_NEAR(stretch[0].area, 0.5, 1e-5); // a quarter of the picture, half of the model
    EXPECT_NEAR(stretch[1].area, 1.5, 1e-5);
    EXPECT_FALSE(stretch[0].flipped || stretch[1].flipped);
    for (std::size_t c = 0; c < 4; ++c)
        at[c].u = -at[c].u;
    set_coordinates(squares, at);
    stretch = uv_measure_stretch(uv_mesh_of({squares}), 1);
    EXPECT_TRUE(stretch[0].flipped);
    EXPECT_FALSE(stretch[1].flipped);
    // A picture twice as wide as high makes squares of the map twice as wide.
    EXPECT_NEAR(uv_measure_stretch(uv_mesh_of({squares}), 2)[0].angle, 2, 1e-5);
}

TEST_F(Uv, OverlapsAreWhatComparingAllPairsFinds)
{
    for (unsigned seed = 1; seed < 9; ++seed) {
        random_source random(seed);
        object_t *soup = add_random_soup(random, 30, 60);
        std::vector<flat_uv> at;
        for (const surface_t *surface : each<surface_t>(soup->surfaces)) {
            const float size = random.between(0.01f, 0.3f);
            const flat_uv o = {random.between(0, 2), random.between(0, 2)};
            for (int c = 0; c < surface->num_refs; ++c)
                at.push_back({o.u + random.between(0, size), o.v + random.between(0, size)});
        }
        set_coordinates(soup, at);
        const uv_mesh mesh = uv_mesh_of({soup});
        std::vector<char> expected(mesh.num_surfaces(), 0);
        const auto triangles = [&](int i) {
            std::vector<uv_triangle> cut;
            for (int c = mesh.corners_begin(i) + 1; c + 1 < mesh.corners_end(i); ++c) {
                uv_triangle t = {{mesh.at[mesh.corners_begin(i)], mesh.at[c], mesh.at[c + 1]}};
                const float area = (t.p[1].u - t.p[0].u) * (t.p[2].v - t.p[0].v) -
                                   (t.p[2].u - t.p[0].u) * (t.p[1].v - t.p[0].v);
                if (area < 0)
                    std::swap(t.p[1], t.p[2]);
                cut.push_back(t);
            }
            return cut;
        };
        for (int a = 0; a < mesh.num_surfaces(); ++a) {
            for (int b = 0; b < a; ++b) {
                for (const uv_triangle &s : triangles(a)) {
                    for (const uv_triangle &t : triangles(b)) {
                        if (uv_triangles_overlap(s, t))
                            expected[a] = expected[b] = 1;
                    }
                }
            }
        }
        EXPECT_EQ(uv_find_overlaps(mesh), expected) << seed;
    }
    object_t *squares = add_squares(8, 8); // side by side
    select_only(squares);
    EXPECT_EQ(run("uv_overlaps"), "0");
    run("inituv"); // all on the same place
    EXPECT_EQ(run("uv_overlaps"), "64");
}

TEST_F(Uv, CoordinatesThatAreNoNumbersAreLeftAlone)
{
    object_t *squares = add_squares(5, 5);
    std::vector<flat_uv> at = coordinates(squares);
    random_source random(9);
    const float values[] = {std::nanf(""), INFINITY, -INFINITY, 1e30f, -3e38f, 1e-40f, 0};
    for (flat_uv &p : at) {
        if (random.below(3) == 0)
            (random.below(2) == 0 ? p.u : p.v) = values[random.below(7)];
    }
    set_coordinates(squares, at);
    select_only(squares);
    for (const std::vector<std::string> &words :
         std::vector<std::vector<std::string>>{{"uv_info"},
                                               {"uv_islands"},
                                               {"uv_stretch"},
                                               {"uv_overlaps"},
                                               {"uv_select", "overlapping"},
                                               {"uv_select", "flipped"},
                                               {"uv_select", "none"},
                                               {"uv_view_fit", "1"},
                                               {"uv_pack", "2"},
                                               {"uv_relax", "3"},
                                               {"uv_fit", "1"},
                                               {"uv_weld", "1"},
                                               {"uv_align", "left"},
                                               {"uv_snap"},
                                               {"uv_rotate", "30"},
                                               {"uv_move", "nan", "inf"},
                                               {"uv_scale", "inf", "1e38"},
                                               {"uv_keep", "1"},
                                               {"move", "0.5", "0", "0"},
                                               {"uv_pack", "nan"},
                                               {"uv_overlaps"}})
        run_words(words);
    const std::vector<flat_uv> after = coordinates(squares);
    for (std::size_t c = 0; c < at.size(); ++c) {
        if (std::isfinite(at[c].u) && std::isfinite(at[c].v)) {
            EXPECT_TRUE(std::isfinite(after[c].u) && std::isfinite(after[c].v));
        }
    }
    run("uv_project", "box", "1"); // which mends them all
    for (const flat_uv &p : coordinates(squares))
        EXPECT_TRUE(p.u >= 0 && p.u <= 1 && p.v >= 0 && p.v <= 1);
}

TEST_F(Uv, RelaxLowersTheDistortionAndStopsWhereThereIsNone)
{
    object_t *dome = add_squares(6, 6);
    random_source random(3);
    for (vertex *v : each<vertex>(dome->vertices))
        v->position.z = 0.3f * v->position.x * (6 - v->position.x) * 0.5f;
    object_mark(dome, CHANGED_POSITIONS);
    object_calc_normals_force(dome);
    select_only(dome);
    const auto distortion = [&] {
        double sum = 0;
        for (const uv_stretch &s : uv_measure_stretch(uv_mesh_of({dome}), 1))
            sum += std::fabs(double{s.area} - 1) + s.angle - 1;
        return sum;
    };
    for (int i = 0; i < 3; ++i) {
        const double before = distortion();
        run("uv_relax", 3);
        EXPECT_LT(distortion(), before);
    }
    // The bent sheet unrolls: nothing of the distortion is left.
    run("uv_relax", 500);
    EXPECT_LT(distortion(), 1e-3);
    EXPECT_EQ(info("islands"), "1");
    // Corners that are not chosen stay.
    run("uv_select_mode", "corner");
    const std::vector<flat_uv> held = coordinates(dome);
    run("uv_select_islands", "0");
    run("uv_select", "none");
    run("uv_select_box", info("box_all").substr(0, 1), "-100", "100", "0.5");
    const std::vector<char> moving = uv_moving_corners(uv_editor());
    run("uv_relax", 5);
    const std::vector<flat_uv> now = coordinates(dome);
    for (std::size_t c = 0; c < now.size(); ++c) {
        if (moving[c] == 0) {
            EXPECT_EQ(now[c], held[c]);
        }
    }
}

} // namespace
