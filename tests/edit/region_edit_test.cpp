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

TEST_F(RegionEdit, InsetDepthIsTheDistanceOfThePlanes)
{
    object_t *object = corpus_with(MESH_CLOSED)[0].add();
    select_surfaces_at(object, {1});
    run("inset", "0.25", "0.5", "each");
    EXPECT_NEAR(volume(object), 1 + 0.5 * (1 + 0.25 + 0.5) / 3, 1e-5); // a frustum on top
    expect_closed(object);
}

struct random_case {
    const char *name;
    std::vector<std::string> words;
    bool keeps_euler = true;
    bool picture_stays = false; // in flat meshes
};
void PrintTo(const random_case &c, std::ostream *out) { *out << c.name; }

class OverTheCorpus : public RegionEdit, public testing::WithParamInterface<random_case> {};

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
            if (mesh.is(MESH_CLOSED))
                expect_closed(object);
            if (mesh.is(MESH_SOUND))
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
    random_case{"inset_each",        {"inset", "0.1", "0", "each"}, true, true},
    random_case{"inset_region",      {"inset", "0.1", "0", "region"}, true, true},
    random_case{"inset_each_deep",   {"inset", "0.05", "0.1", "each"}},
    random_case{"inset_region_deep", {"inset", "0.05", "-0.1", "region"}}));
// clang-format on

} // namespace
