// Commands that rebuild selected surfaces: inset, extrusions by normals, shells.

#include "base/progress.h"
#include "edit/document/selection_internal.h"
#include "model/each.h"
#include "model/world.h"
#include "tests/edit/mesh_corpus.h"

#include <cmath>
#include <set>

namespace {

class RegionEdit : public SceneTest {};

object_t *first_object() { return item_of<object_t>(vesk_get_world()->children); }

TEST_F(RegionEdit, InsetOfEachLeavesARingOfTheWidthRoundEveryPolygon)
{
    object_t *object = add_squares(2, 1);
    select_all_surfaces(object);
    run("inset", "0.25", "0", "each");
    EXPECT_EQ(object->num_surfaces, 10);
    EXPECT_EQ(object->num_vertices, 6 + 8);
    EXPECT_EQ(last_message(), "inset - 2 surfaces");
    EXPECT_EQ(last_undo(), "inset");
    const std::vector<int> inner = selected_surfaces_of(object);
    ASSERT_EQ(inner.size(), 2u);
    EXPECT_NEAR(doubled_area_xy(object_get_surface_at(object, inner[0])) / 2, 0.25, 1e-6);
    EXPECT_NEAR(area_xy(object), 2, 1e-6);
    expect_picture_in_place(object);
    expect_no_problems(object);
}

TEST_F(RegionEdit, InsetOfARegionGoesAlongItsOuterBorder)
{
    object_t *object = add_squares(3, 3);
    select_surfaces_at(object, {0, 1, 2, 3, 4, 5});
    run("inset", "0.25", "0", "region");
    // 3 by 2 cells shrink to 2.5 by 1.5; the two inner vertices stay.
    double inner = 0;
    for (const int s : selected_surfaces_of(object))
        inner += doubled_area_xy(object_get_surface_at(object, s)) / 2;
    EXPECT_NEAR(inner, 2.5 * 1.5, 1e-5);
    EXPECT_NEAR(area_xy(object), 9, 1e-5);
    EXPECT_EQ(euler_of_polygons(object), 1);
    expect_oriented(object);
    expect_picture_in_place(object);
    expect_no_problems(object);
}

TEST_F(RegionEdit, InsetWidthIsTheDistanceFromTheSidesAtAnyAngle)
{
    object_t *object = corpus_with(0)[3].add(); // the notched polygon
    select_all_surfaces(object);
    run("inset", "0.2", "0", "each");
    const std::vector<int> inner = selected_surfaces_of(object);
    ASSERT_EQ(inner.size(), 1u);
    // An L of 3 by 3, arms 1 wide: arms 0.6 wide and 2.6 long are left.
    EXPECT_NEAR(doubled_area_xy(object_get_surface_at(object, inner[0])) / 2,
                2 * 2.6 * 0.6 - 0.6 * 0.6, 1e-5);
    expect_no_problems(object);
}

TEST_F(RegionEdit, InsetStopsBeforeSidesMeet)
{
    for (const corpus_mesh &mesh : corpus_with(MESH_ORIENTED | MESH_SOUND)) {
        for (const char *how : {"each", "region"}) {
            SCOPED_TRACE(std::string(mesh.name) + " " + how);
            run("clear_all");
            object_t *object = mesh.add();
            select_all_surfaces(object);
            run("inset", "50", "0", how);
            if (last_message().find("no border") != std::string::npos)
                continue;
            EXPECT_NE(last_message().find("width limited"), std::string::npos) << last_message();
            // Far inside a bent polygon the inner one is twisted: sides can then cross in space.
            if (std::string(mesh.name) != "bumpy_ball")
                expect_no_problems(object);
        }
    }
}

TEST_F(RegionEdit, InsetOfACornerOfABoxSlidesAlongItsFaces)
{
    object_t *object = corpus_with(MESH_CLOSED)[0].add();
    select_surfaces_at(object, {1, 3, 5}); // the three faces at 1 1 1
    run("inset", "0.25", "0", "region");
    expect_closed(object);
    EXPECT_NEAR(volume(object), 1, 1e-5);
    expect_no_problems(object);
}

TEST_F(RegionEdit, AClosedBodyBesideARegionStaysAsItIs)
{
    object_t *boxes = corpus_with(MESH_CLOSED)[2].add(); // two in one object
    select_surfaces_at(boxes, {0, 1, 2, 3, 4, 5, 7});
    run("inset", "0.1", "0.1", "region");
    EXPECT_EQ(last_message(), "inset - 1 surfaces");
    EXPECT_EQ(boxes->num_surfaces, 12 + 4);
    EXPECT_EQ(boxes->num_vertices, 16 + 4);
    expect_closed(boxes);
}

TEST_F(RegionEdit, InsetDepthIsTheDistanceOfThePlanes)
{
    object_t *object = corpus_with(MESH_CLOSED)[0].add();
    select_surfaces_at(object, {1});
    run("inset", "0.25", "0.5", "each");
    EXPECT_NEAR(volume(object), 1 + 0.5 * (1 + 0.25 + 0.5) / 3, 1e-5); // a frustum on top
    expect_closed(object);
}

struct volume_case {
    const char *name;
    std::vector<int> faces; // of the unit box; none: of a sheet of 5 by 4, all
    std::vector<std::string> words;
    double volume;
};
void PrintTo(const volume_case &c, std::ostream *out) { *out << c.name; }
class AlongNormals : public RegionEdit, public testing::WithParamInterface<volume_case> {};

TEST_P(AlongNormals, MakesABodyOfThisVolume)
{
    object_t *object = nullptr;
    if (GetParam().faces.empty()) {
        object = add_squares(5, 4);
        select_all_surfaces(object);
    } else {
        object = corpus_with(MESH_CLOSED)[0].add();
        select_surfaces_at(object, GetParam().faces);
    }
    run_words(GetParam().words);
    EXPECT_NEAR(volume(object), GetParam().volume, 1e-5) << last_message();
    expect_closed(object);
    expect_no_problems(object);
}
// clang-format off
INSTANTIATE_TEST_SUITE_P(Volumes, AlongNormals, testing::Values(
    volume_case{"each_face",       {0, 1, 2, 3, 4, 5}, {"extrude_each", "0.1"},     1.6},
    volume_case{"inwards",         {1},                {"extrude_each", "-0.25"},   0.75},
    volume_case{"whole_body",      {0, 1, 2, 3, 4, 5}, {"extrude_normals", "0.1"},  1.2 * 1.2 * 1.2},
    volume_case{"round_a_corner",  {1, 3, 5},          {"extrude_normals", "0.1"},  1.1 * 1.1 * 1.1},
    volume_case{"opposite_faces",  {0, 1},             {"extrude_normals", "0.1"},  1.2},
    volume_case{"hollow_body",     {0, 1, 2, 3, 4, 5}, {"shell", "0.1", "1"},       1 - 0.8 * 0.8 * 0.8},
    volume_case{"sheet",           {},                 {"shell", "0.1", "1"},       2}));
// clang-format on

TEST_F(RegionEdit, ExtrusionKeepsTheSurfacesAndSelectsThem)
{
    object_t *object = add_squares(3, 1);
    const surface_t *middle = object_get_surface_at(object, 1);
    select_surfaces_at(object, {1});
    run("extrude_normals", 0.5);
    EXPECT_EQ(object_get_surface_at(object, 1), middle);
    EXPECT_EQ(selected_surfaces_of(object), (std::vector<int>{1}));
    EXPECT_EQ(last_message(), "extrude normals - 1 surfaces");
    EXPECT_EQ(last_undo(), "extrude normals");
    expect_oriented(object);
    expect_picture_in_place(object);
}

TEST_F(RegionEdit, AShellWithoutARimLeavesTheBordersOpen)
{
    object_t *object = add_squares(2, 2);
    select_all_surfaces(object);
    run("shell", "0.1", "0");
    EXPECT_EQ(object->num_surfaces, 8);
    EXPECT_EQ(count_edges(object).once, 16);
    EXPECT_EQ(selected_surfaces_of(object), (std::vector<int>{4, 5, 6, 7}));
}

TEST_F(RegionEdit, ARimStandsOnlyWhereNoOtherSurfaceGoesOn)
{
    object_t *object = add_squares(2, 1);
    select_surfaces_at(object, {0});
    run("shell", "0.1", "1");
    EXPECT_EQ(object->num_surfaces, 2 + 1 + 3);
    EXPECT_EQ(count_edges(object).more, 0);
}

struct refusal_case {
    const char *name;
    std::vector<std::string> words;
    const char *message;
};
void PrintTo(const refusal_case &c, std::ostream *out) { *out << c.name; }
class RefusedRegion : public RegionEdit, public testing::WithParamInterface<refusal_case> {};

TEST_P(RefusedRegion, WithAWordAndWithoutARecord)
{
    object_t *object = corpus_with(MESH_CLOSED)[0].add();
    select_all_surfaces(object);
    const std::string undo = last_undo();
    if (GetParam().words.front() == "clear") {
        run("clear_selection");
        run_words({GetParam().words.begin() + 1, GetParam().words.end()});
    } else {
        EXPECT_FALSE(run_and_expect_exact_undo(GetParam().words));
    }
    EXPECT_EQ(last_message(), GetParam().message);
    EXPECT_EQ(last_undo(), undo);
}
// clang-format off
INSTANTIATE_TEST_SUITE_P(Commands, RefusedRegion, testing::Values(
    refusal_case{"inset_nothing",   {"clear", "inset", "1", "0", "each"}, "inset - nothing selected"},
    refusal_case{"each_nothing",    {"clear", "extrude_each", "1"},       "extrude each - nothing selected"},
    refusal_case{"normals_nothing", {"clear", "extrude_normals", "1"},    "extrude normals - nothing selected"},
    refusal_case{"shell_nothing",   {"clear", "shell", "1", "1"},         "shell - nothing selected"},
    refusal_case{"inset_closed",    {"inset", "0.1", "0", "region"},      "inset - the surfaces have no border"},
    refusal_case{"inset_negative",  {"inset", "-1", "0", "each"},         "inset - give a width above 0, or a depth"},
    refusal_case{"inset_word",      {"inset", "1", "0", "all"},           "inset - each or region"},
    refusal_case{"each_zero",       {"extrude_each", "0"},                "extrude each - give a distance other than 0"},
    refusal_case{"normals_no_number", {"extrude_normals", "inf"},         "extrude normals - give a distance other than 0"},
    refusal_case{"shell_negative",  {"shell", "-1", "1"},                 "shell - give a thickness above 0"}));
// clang-format on

TEST_F(RegionEdit, WhatNoCoordinateCanHoldIsRefused)
{
    object_t *object = corpus_with(MESH_CLOSED)[3].add(); // the tetrahedron
    select_all_surfaces(object);
    EXPECT_FALSE(run_and_expect_exact_undo({"extrude_normals", "3e38"}));
    EXPECT_EQ(last_message(), "extrude normals - the result would lie too far out");
}

TEST_F(RegionEdit, CancelLeavesEverything)
{
    object_t *object = add_squares(60, 60);
    select_all_surfaces(object);
    const std::string before = scene_text();
    for (const std::vector<std::string> &words :
         {std::vector<std::string>{"inset", "0.1", "0", "region"},
          {"inset", "0.1", "0", "each"},
          {"extrude_each", "1"},
          {"extrude_normals", "1"},
          {"shell", "1", "1"}}) {
        cancel_at_look(1);
        run_words(words);
        cancel_at_look(0);
        EXPECT_NE(last_message().find("- cancelled"), std::string::npos) << last_message();
        EXPECT_TRUE(scene_text() == before);
    }
}

struct random_case {
    const char *name;
    std::vector<std::string> words;
    bool keeps_euler = true, stays_sound = true;
    bool picture_stays = false; // in flat meshes
};
void PrintTo(const random_case &c, std::ostream *out) { *out << c.name; }

class OverTheCorpus : public RegionEdit, public testing::WithParamInterface<random_case> {};

// Where neighbours or regions that touch move alike their new vertices stand at one place.
// Random selections over every mesh: exact undo, sound records, and what was oriented, closed or
// without faults stays so.
TEST_P(OverTheCorpus, KeepsWhatHolds)
{
    random_source random(3);
    for (const corpus_mesh &mesh : mesh_corpus()) {
        for (const double share : {0.1, 0.4, 1.0}) {
            SCOPED_TRACE(std::string(mesh.name) + " " + std::to_string(share));
            run("clear_all");
            object_t *object = mesh.add();
            select_random_surfaces(random, object, share);
            if (!run_and_expect_exact_undo(GetParam().words))
                continue;
            object = first_object(); // undo and redo made it anew
            if (GetParam().keeps_euler && mesh.is(MESH_SOUND)) {
                EXPECT_EQ(euler_of_polygons(object), mesh.euler);
            }
            if (mesh.is(MESH_ORIENTED))
                expect_oriented(object);
            if (mesh.is(MESH_CLOSED) && (share == 1 || GetParam().words.front() != "shell"))
                expect_closed(object);
            if (GetParam().stays_sound && mesh.is(MESH_SOUND))
                expect_no_problems(object);
            if (GetParam().picture_stays && mesh.is(MESH_FLAT))
                expect_picture_in_place(object, 1e-4);
        }
    }
}
// clang-format off
INSTANTIATE_TEST_SUITE_P(Commands, OverTheCorpus, testing::Values(
    random_case{"catmull_clark",     {"catmull_clark", "1"}},
    random_case{"catmull_clark_2",   {"catmull_clark", "2"}},
    random_case{"quads",             {"quads_from_triangles", "40"}, true, true, true},
    random_case{"orient",            {"orient_outwards"}},
    random_case{"flatten",           {"flatten"}, true, false},
    random_case{"circularize",       {"circularize"}, true, false},
    random_case{"straighten",        {"straighten"}, true, false},
    random_case{"space_evenly",      {"space_evenly"}, true, false},
    random_case{"smooth_vertices",   {"smooth_vertices", "0.5", "3"}, true, false},
    random_case{"extrude_each",      {"extrude_each", "0.2"}, true, false},
    random_case{"extrude_normals",   {"extrude_normals", "0.2"}, true, false},
    random_case{"shell",             {"shell", "0.05", "0"}, false, false},
    random_case{"shell_rim",         {"shell", "0.05", "1"}, false, false},
    random_case{"inset_each",        {"inset", "0.1", "0", "each"}, true, true, true},
    random_case{"inset_region",      {"inset", "0.1", "0", "region"}, true, true, true},
    random_case{"inset_each_deep",   {"inset", "0.05", "0.1", "each"}},
    random_case{"inset_region_deep", {"inset", "0.05", "-0.02", "region"}}));
// clang-format on

} // namespace
