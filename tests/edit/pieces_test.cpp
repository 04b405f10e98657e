#include "edit/pieces.h"

#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "fileio/vesk_writer.h"
#include "model/change_marks.h"
#include "model/lights.h"
#include "model/normals.h"
#include "model/object_tree.h"
#include "model/textures/textures.h"
#include "model/world.h"
#include "model/world_check.h"
#include "tests/support/mesh_test.h"

#include <algorithm>
#include <random>
#include <set>

namespace {

// "name[vertices/surfaces](children)".
std::string tree_text(const object_t *top)
{
    std::string text;
    for (const object_t *child : each<object_t>(top->children)) {
        text += (text.empty() ? "" : " ") + std::string(child->name);
        if (child->vertices != nullptr || child->surfaces != nullptr) {
            text += "[" + std::to_string(child->num_vertices) + "/" +
                    std::to_string(child->num_surfaces) + "]";
        }
        if (child->children != nullptr)
            text += "(" + tree_text(child) + ")";
    }
    return text;
}
std::string tree_text() { return tree_text(vesk_get_world()); }

// Two squares that share an edge, a triangle apart, and a vertex of nothing.
object_t *add_pieces(const char *name)
{
    object_t *object = new_object(OBJECT_POLY);
    object_set_name(object, name);
    for (int i = 0; i < 10; ++i)
        object_add_new_vertex(object, static_cast<float>(i / 2), static_cast<float>(i % 2), 0);
    for (const std::vector<int> &corners :
         {std::vector<int>{0, 2, 3, 1}, {6, 8, 7}, {2, 4, 5, 3}}) {
        surface_t *surface = new_surface();
        for (const int v : corners)
            surface_add_vertex(surface, object_get_vertex_at(object, v), 0.25f, 0);
        object_add_surface(object, surface);
    }
    object_calc_normals_force(object);
    object_add_child(vesk_get_world(), object);
    return object;
}

class Pieces : public SceneTest {
protected:
    void TearDown() override
    {
        EXPECT_TRUE(world_check(vesk_get_world()).empty());
        SceneTest::TearDown();
    }
};

TEST_F(Pieces, KeepATextureThatWasNotFound)
{
    struct row_t {
        const char *name;
        std::vector<std::vector<std::string>> commands;
        int named; // how often the file names the texture afterwards
    };
    // clang-format off
    const row_t rows[] = {
        {"fragment", {{"object_fragment"}}, 4}, // the group and its pieces
        {"explode", {{"object_explode"}}, 5},
        {"merge", {{"duplicate"}, {"select_all"}, {"object_merge"}}, 1},
        {"create object", {{"set_select_mode", "surface"}, {"surface_create_object"}}, 2},
        {"copy", {{"set_select_mode", "surface"}, {"clipboard_copy"}, {"clipboard_paste"}}, 2},
    };
    // clang-format on
    for (const row_t &row : rows) {
        SCOPED_TRACE(row.name);
        run("clear_all");
        run("set_select_mode", "tree");
        object_t *object = add_pieces("a");
        search_and_set_texture(object, "model.vesk", "lost.png");
        object_set_texture_repeat(object, 2, 3);
        select_object(object);
        for (const std::vector<std::string> &words : row.commands)
            run_words(words);
        const std::string text = scene_text();
        int named = 0;
        for (std::size_t at = text.find("lost.png"); at != std::string::npos;
             at = text.find("lost.png", at + 1))
            ++named;
        EXPECT_EQ(named, row.named) << text;
    }
}

TEST_F(Pieces, OfHiddenAndLockedMembersStayHiddenAndLocked)
{
    object_t *group = new_group();
    object_add_child(vesk_get_world(), group);
    for (const char *name : {"hidden", "locked"})
        object_reparent(add_pieces(name), group);
    object_set_visible(item_of<object_t>(group->children), 0);
    object_set_locked(item_of<object_t>(group->children->next), 1);
    select_object(group);
    run("object_fragment");
    for (const object_t *member : each<object_t>(group->children)) {
        ASSERT_GT(member->num_children, 1);
        const bool hidden = std::string(member->name) == "hidden";
        for (const object_t *piece : each<object_t>(member->children)) {
            EXPECT_EQ(piece->visible == 0, hidden);
            EXPECT_EQ(piece->locked != 0, !hidden);
        }
        EXPECT_EQ(member->visible == 0, hidden);
    }
}

TEST_F(Pieces, AreWhatHangsTogether)
{
    object_t *object = add_pieces("a");
    object_set_userdata(object, "data");
    add_cube("b");
    select_object(object);
    const std::string before = scene_text();

    run("object_fragment");

    EXPECT_EQ(tree_text(), "a(a[6/2] a[3/1] a[1/0]) b[8/6]");
    EXPECT_STREQ(object_get_kid_at(vesk_get_world(), 0)->data, "data");
    EXPECT_EQ(last_message(), "fragment - 3 objects");
    EXPECT_EQ(last_undo(), "fragment");
    EXPECT_EQ(selection().num_objects, 1) << "the group, in tree mode";
    run("undo");
    EXPECT_EQ(scene_text(), before);
}

TEST_F(Pieces, AreSingleSurfacesAfterAnExplosion)
{
    add_pieces("a");
    run("set_select_mode", "object");
    run("select_all");
    const std::string before = scene_text();
    run("object_explode");
    EXPECT_EQ(tree_text(), "a(a[4/1] a[3/1] a[4/1] a[1/0])");
    EXPECT_EQ(selection().num_objects, 4);
    run("undo");
    EXPECT_EQ(scene_text(), before);
}

TEST_F(Pieces, OfNestedObjectsKeepTheTree)
{
    object_t *parent = add_pieces("p");
    object_t *child = add_pieces("c");
    object_reparent(child, parent);
    object_reparent(add_cube("cube"), child);
    select_object(parent);
    const std::string before = scene_text();
    run("object_fragment");
    EXPECT_EQ(tree_text(), "p(p[6/2] p[3/1] p[1/0] c(c[6/2] c[3/1] c[1/0] cube[8/6]))");
    run("undo");
    EXPECT_EQ(scene_text(), before);
}

TEST_F(Pieces, OfOnePieceStayOne)
{
    select_object(add_cube("cube"));
    run("object_fragment");
    EXPECT_EQ(last_message(), "fragment - of one piece already");
    EXPECT_EQ(last_undo(), "");
}

TEST_F(Pieces, AreMergedIntoTheFirst)
{
    object_t *group = new_group();
    object_set_name(group, "group");
    object_add_child(vesk_get_world(), group);
    for (const char *name : {"a", "b", "c"})
        add_cube(name);
    object_t *light = new_light();
    object_add_child(vesk_get_world(), light);
    object_t *a = object_get_kid_at(vesk_get_world(), 1);
    object_reparent(light, object_get_kid_at(vesk_get_world(), 2));
    object_reparent(a, group);
    run("select_all");
    const std::string before = scene_text();

    run("object_merge");

    EXPECT_EQ(tree_text(), "group[24/18](light)");
    EXPECT_EQ(last_message(), "merge - 3 objects");
    EXPECT_EQ(last_undo(), "merge");
    run("undo");
    EXPECT_EQ(scene_text(), before);
}

TEST_F(Pieces, MergedKeepTheFirstTextureAndSaySo)
{
    object_t *a = add_cube("a");
    object_t *b = add_cube("b");
    b->has_texture = 1;
    b->texture = 0;
    object_mark(b, CHANGED_RECORD);
    run("select_all");
    run("object_merge");
    EXPECT_EQ(last_message(), "merge - 2 objects, with the texture of the first");
    EXPECT_EQ(a->has_texture, 0);
    EXPECT_EQ(a->num_vertices, 16);
}

TEST_F(Pieces, AGroupThatIsMergedGetsTheTextureOfItsFirstMember)
{
    object_t *group = new_group();
    object_add_child(vesk_get_world(), group);
    object_t *member = add_cube("member");
    object_reparent(member, group);
    member->has_texture = 1;
    member->texture = 3;
    object_set_texture_repeat(member, 2, 5);
    object_t *other = add_cube("other");
    run("set_select_mode", "tree");
    select_object(group);
    select_object(other);
    run("object_merge");
    EXPECT_EQ(group->type, OBJECT_POLY);
    EXPECT_EQ(group->num_surfaces, 12);
    EXPECT_EQ(group->children, nullptr);
    EXPECT_EQ(group->has_texture, 1);
    EXPECT_EQ(group->texture, 3);
    EXPECT_EQ(group->texture_repeat_y, 5);
    run("undo");
    EXPECT_EQ(group->type, OBJECT_GROUP);
    EXPECT_EQ(group->has_texture, 0);
    EXPECT_EQ(list_count(group->children), 1);
}

TEST_F(Pieces, OneObjectCannotBeMerged)
{
    select_object(add_cube("a"));
    run("object_merge");
    EXPECT_EQ(last_message(), "merge - nothing selected");
}

class RandomPieces : public Pieces, public testing::WithParamInterface<unsigned> {};

// Taken apart and merged again nothing is lost: the same surfaces over the same places.
TEST_P(RandomPieces, MergeBackToTheSameSurfaces)
{
    std::mt19937 random(GetParam());
    const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    object_t *object = new_object(OBJECT_POLY);
    object_set_name(object, "o");
    for (int i = 0; i < 40; ++i)
        object_add_new_vertex(object, static_cast<float>(i), 0, 0);
    int corners = 0;
    for (int s = 0; s < 12; ++s) {
        surface_t *surface = new_surface();
        for (int c = 0, n = 1 + below(4); c < n; ++c, ++corners)
            surface_add_vertex(surface, object_get_vertex_at(object, below(40)), 0, 0);
        surface_set_type(surface, below(3));
        object_add_surface(object, surface);
    }
    object_add_child(vesk_get_world(), object);
    run("set_select_mode", "object");
    const auto outlines = [] {
        std::vector<std::vector<float>> all;
        for_each_object(vesk_get_world(), [&](object_t *part) {
            for (const surface_t *surface : each<surface_t>(part->surfaces)) {
                all.push_back({static_cast<float>(surface->type)});
                for (const svertex *corner : each<svertex>(surface->refs))
                    all.back().push_back(corner->vertex->position.x);
            }
        });
        std::sort(all.begin(), all.end());
        return all;
    };
    const auto before = outlines();
    run("select_all");
    run(GetParam() % 2 == 0 ? "object_fragment" : "object_explode");
    EXPECT_EQ(outlines(), before);
    for_each_object(vesk_get_world(), [&](object_t *part) {
        // Every vertex of a piece but the loose ones is used.
        std::set<const vertex *> used;
        for (const surface_t *surface : each<surface_t>(part->surfaces)) {
            for (const svertex *corner : each<svertex>(surface->refs))
                used.insert(corner->vertex);
        }
        if (part->surfaces != nullptr) {
            EXPECT_EQ(static_cast<int>(used.size()), part->num_vertices);
        }
    });
    run("object_merge");
    EXPECT_EQ(outlines(), before);
}
INSTANTIATE_TEST_SUITE_P(Seeds, RandomPieces, testing::Range(1u, 13u));

} // namespace
