// Any sequence of edits, drags, faults, undos, redos and jumps in the history: the same number of
// changes is the same scene, and the records stay in order.

#include "base/crash_guard.h"
#include "base/prefs.h"
#include "edit/document/journal.h"
#include "edit/document/selection_internal.h"
#include "edit/document/step.h"
#include "edit/document/undo.h"
#include "edit/drag_transform.h"
#include "fileio/vesk_writer.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/identity.h"
#include "model/object_tree.h"
#include "model/palette.h"
#include "model/world.h"
#include "model/world_check.h"
#include "tests/support/mesh_test.h"

#include <map>
#include <random>

namespace {

constexpr int most_vertices = 1500;
using words_t = std::vector<std::string>;

class session_of_edits {
public:
    explicit session_of_edits(unsigned seed) : random_(seed) {}

    void run_for(int steps)
    {
        for (int i = 0; i < steps; ++i) {
            do_something();
            check(i);
            if (testing::Test::HasFailure())
                return;
        }
    }

private:
    int pick(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
    std::string number() { return std::to_string(0.25 * (pick(17) - 8) + 0.1); }
    int any_object()
    {
        std::vector<int> ids;
        for_each_object(vesk_get_world(), [&](object_t *object) {
            if (object != vesk_get_world())
                ids.push_back(object_identity(object));
        });
        return ids.empty() ? 0 : ids[pick(static_cast<int>(ids.size()))];
    }

    void do_something()
    {
        static constexpr const char *modes[] = {"tree", "object", "surface", "vertex", "light"};
        const int what = pick(46);
        last_ = std::to_string(what);
        // clang-format off
        switch (what) {
        case 0: run("select_all"); break;
        case 1: run("clear_selection"); break;
        case 2: run("set_select_mode", modes[pick(5)]); break;
        case 3: run("object_select", any_object()); break;
        case 4: run("move", number(), number(), number()); break;
        case 5: run("move_to", number(), number(), number()); break;
        case 6: run("scale", number(), number(), number()); break;
        case 7: run("rotate", number(), number(), number()); break;
        case 8: run("mirror", pick(3)); break;
        case 9: run("size_to", number(), number(), number()); break;
        case 10: run("new_cube"); break;
        case 11: run("object_set_name", any_object(), number()); break;
        case 12: run("object_reparent", any_object(), any_object()); break;
        case 13: run("hide_selected"); break;
        case 14: run("unhide"); break;
        case 15: run("object_move_to_head", any_object()); break;
        case 16: run("material_set_name", pick(15), number()); break;
        case 17: run("object_set_data", any_object(), number()); break;
        case 18: run("delete_some"); break;
        case 19: run("rebuild_some"); break;
        case 20: if (is_small()) run("repeat_last"); break;
        case 24: drag(); break;
        case 25: fault(); break;
        case 21: run("history_goto", pick(static_cast<int>(journal_items().size()))); break;
        case 22: case 23: run("redo"); break;
        case 26: case 27: case 28: case 29: run("undo"); break;
        default: edit(); break;
        }
        // clang-format on
    }

    // Small enough for an operation that multiplies what is there.
    static bool is_small()
    {
        int vertices = 0;
        for_each_object(vesk_get_world(),
                        [&](object_t *object) { vertices += object->num_vertices; });
        return vertices < most_vertices;
    }

    // One of the commands that change geometry or the tree, while the model is small.
    void edit()
    {
        static const std::vector<words_t> edits = {
            {"clipboard_copy"},
            {"clipboard_cut"},
            {"clipboard_paste"},
            {"duplicate"},
            {"clone_selection"},
            {"group"},
            {"ungroup"},
            {"object_recentre"},
            {"object_mincentre"},
            {"delete"},
            {"removesurface"},
            {"createsurface", "0"},
            {"createsurface", "2"},
            {"surface_create_object"},
            {"insert_vertex"},
            {"surface_subdivide"},
            {"slice", "0.3", "0.2", "0.1", "1", "0.5", "0.25", "both", "0"},
            {"slice", "0.5", "0.5", "0.5", "0", "1", "0", "both", "1"},
            {"slice", "0", "0", "0", "1", "1", "0", "back", "1"},
            {"boolean", "union"},
            {"boolean", "difference", "1"},
            {"boolean", "intersection"},
            {"knife", "0 0 0 1 1 0 1 0.5 0.5"},
            {"select_inside"},
            {"surface_spike"},
            {"surface_spline"},
            {"surface_bevel"},
            {"surface_make_hole"},
            {"surface_triangulate"},
            {"surface_flip_normals"},
            {"surface_change_vertex_order"},
            {"surface_set_shaded", "1"},
            {"surface_set_twosided", "0"},
            {"set_surface_type", "1"},
            {"set_surface_type", "0"},
            {"set_col", "3"},
            {"extrude", "0.5", "0.25", "0"},
            {"define_extrude_path"},
            {"extrude_along_path"},
            {"snaptogrid"},
            {"snaptogether"},
            {"snaptogetherdistance", "0.6"},
            {"object_snap_together_by_vertices"},
            {"unshare_vertices"},
            {"optimize"},
            {"optimize_surfaces"},
            {"inituv"},
            {"remap_textures", "3"},
            {"revolve", "1"},
            {"recalc_normals_all"},
            {"check_fix_all", "unused"},
            {"lock_selected"},
            {"unlock"},
            {"select_part_selected_surfaces"},
            {"hide_unselected"},
            {"object_fragment"},
            {"object_explode"},
            {"object_merge"},
            {"convexhull"},
            {"delaunay"},
            {"reduce", "30"},
            {"surface_loop_subdivision", "0.5"},
            {"uv_project", "box", "1"},
            {"uv_project", "cylinder", "2"},
            {"uv_move", "0.25", "-0.1"},
            {"uv_rotate", "30"},
            {"uv_flip", "u"},
            {"uv_fit", "1"},
            {"uv_align", "left"},
            {"uv_split"},
            {"uv_weld", "0.2"},
            {"uv_pack", "2"},
            {"uv_relax", "3"},
            {"uv_snap"},
            {"uv_select_mode", "corner"},
            {"uv_select_mode", "island"},
            {"uv_select", "all"},
            {"uv_select", "invert"},
            {"uv_select_islands", "0 2"},
            {"uv_keep", "1"},
            {"uv_keep", "0"},
        };
        const words_t &words = edits[pick(static_cast<int>(edits.size()))];
        last_ = words[0];
        if (is_small())
            run_words(words);
    }

    // As the mouse tools do: no state before the end, and none when it is cancelled.
    void drag()
    {
        const std::string before = scene_text();
        step_t step(step_t::of::drag);
        drag_transform_t drag;
        if (drag.empty())
            return;
        drag_change_t way;
        way.offset = {0.3f, 0.7f, 0.1f};
        drag.step(way);
        if (pick(2) == 0) {
            drag.take_back();
            ASSERT_EQ(scene_text(), before);
            return;
        }
        drag.finish();
        step.keep("drag");
    }

    void fault()
    {
        const std::string before = scene_text();
        crash_guard::forget_faults_for_test();
        run("fault");
        if (pick(2) == 0 && run("take_back") == "1") {
            ASSERT_EQ(scene_text(), before);
        }
    }

    // The same number, the same text; and nothing is out of order.
    void check(int step)
    {
        const std::string count = run("change_count");
        const std::string text = scene_text() + run("get_palette");
        const auto known = seen_.emplace(count, text);
        ASSERT_EQ(known.first->second, text) << "step " << step << ", command " << last_;
        for (const world_fault &fault : world_check(vesk_get_world()))
            ADD_FAILURE() << fault.text << ", step " << step << ", command " << last_;
        ASSERT_EQ(marks_check("step"), 0) << last_ << recording().console;
        expect_sound_scene();
        ASSERT_EQ(list_count(selection().vertices), selection().num_vertices);
        ASSERT_FALSE(testing::Test::HasFailure()) << "step " << step << ", command " << last_;
    }

    std::mt19937 random_;
    std::map<std::string, std::string> seen_;
    std::string last_;
};

void delete_some()
{
    new_undo(UNDO_DELETE, "delete");
    if (set_undo_delete_selection() == 0) {
        const owned_list objects(list_clone(selection().objects));
        for (object_t *object : each<object_t>(objects.get())) {
            if (object_exists(object) != 0)
                object_delete(object);
        }
    }
}

void rebuild_some()
{
    new_undo(UNDO_WORLD, "rebuild");
    set_undo_all();
    for_each_object(vesk_get_world(), [](object_t *object) {
        if (object->num_vertices > 2)
            vesk_object_add_triangle(object, 0, 1, 2);
    });
}

class AnySession : public SceneTest, public testing::WithParamInterface<unsigned> {};
TEST_P(AnySession, GoesBackAndForthExactly)
{
    vesk_add_command("delete_some", delete_some);
    vesk_add_command("rebuild_some", rebuild_some);
    vesk_add_command("fault", fault_half_way);
    prefs.undo_levels = 6;
    add_cube("a");
    add_cube("b");
    add_squares(3, 2);
    session_of_edits(GetParam()).run_for(200);
}
INSTANTIATE_TEST_SUITE_P(Seeds, AnySession, testing::Range(1u, 61u));

} // namespace
