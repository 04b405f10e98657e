// Three thousand gestures as a user makes them with the mouse, the menus and the panels, most of them
// changes, in ten scenes: Ctrl+Z gives back every file and every selection in the reverse order,
// Ctrl+Shift+Z again the later ones.

#include "edit/document/element_text.h"
#include "edit/document/journal.h"
#include "edit/document/selection_internal.h"
#include "edit/document/undo.h"
#include "model/each.h"
#include "model/identity.h"
#include "model/object_tree.h"
#include "model/world.h"
#include "tests/support/damage.h"
#include "tests/support/mesh_test.h"
#include "tests/support/random_mesh.h"
#include "tests/view/tool_fixture.h"
#include "view/projection.h"

namespace {

using words_t = std::vector<std::string>;

// What a file holds, and the marks and materials that it does not.
std::string document()
{
    std::string text = scene_text() + run("object_tree") + "\n";
    for (int i = 0; i < 15; ++i)
        text += run("get_material", i) + "\n";
    return text;
}

// The mode counts only where it says what is selected.
std::string selected()
{
    const selection_t &all = selection();
    if (nothing_is_selected() != 0)
        return "nothing";
    return std::to_string(select_mode()) + " " +
           element_text(all.objects != nullptr    ? all.objects
                        : all.surfaces != nullptr ? all.surfaces
                                                  : all.vertices);
}

struct step_seen_t {
    std::string what, label;
    std::string before, selected_before, after, selected_after;
};

struct menu_row_t {
    const char *mode; // in which it does most; "" for all
    words_t words;
};
const menu_row_t menu_rows[] = {
    {"", {"select_all"}},
    {"", {"clear_selection"}},
    {"", {"clipboard_copy"}},
    {"", {"clipboard_cut"}},
    {"", {"clipboard_paste"}},
    {"", {"duplicate"}},
    {"", {"delete"}},
    {"object", {"group"}},
    {"tree", {"ungroup"}},
    {"object", {"object_recentre"}},
    {"object", {"object_mincentre"}},
    {"object", {"object_fragment"}},
    {"object", {"object_explode"}},
    {"object", {"object_merge"}},
    {"object", {"reduce", "30"}},
    {"object", {"surface_loop_subdivision", "0.5"}},
    {"object", {"surface_doosabin"}},
    {"object", {"optimize"}},
    {"object", {"optimize_surfaces"}},
    {"object", {"revolve", "1"}},
    {"object", {"define_extrude_path"}},
    {"object", {"mirror_with_undo", "0"}},
    {"object", {"rotate_each_with_undo", "1", "30"}},
    {"", {"convexhull"}},
    {"", {"delaunay"}},
    {"surface", {"extrude_along_path"}},
    {"surface", {"extrude_normal", "1", "0.5"}},
    {"surface", {"extrude_select", "0", "0.5", "0.25", "0"}},
    {"surface", {"hole_select"}},
    {"surface", {"bevel_select"}},
    {"surface", {"surface_spike"}},
    {"surface", {"surface_subdivide"}},
    {"surface", {"surface_spline"}},
    {"surface", {"surface_triangulate"}},
    {"surface", {"surface_flip_normals"}},
    {"surface", {"surface_change_vertex_order"}},
    {"surface", {"surface_create_object"}},
    {"surface", {"surface_set_shaded", "1"}},
    {"surface", {"surface_set_twosided", "0"}},
    {"surface", {"set_surface_type", "1"}},
    {"surface", {"removesurface"}},
    {"surface", {"inituv"}},
    {"surface", {"remap_textures", "2"}},
    {"surface", {"uv_project", "box", "1"}},
    {"surface", {"uv_pack", "2"}},
    {"vertex", {"createsurface", "0"}},
    {"vertex", {"insert_vertex"}},
    {"vertex", {"snaptogrid"}},
    {"vertex", {"snaptogether"}},
    {"vertex", {"snaptogetherdistance", "0.6"}},
    {"vertex", {"unshare_vertices"}},
    {"", {"check_fix_all", "unused_vertex"}},
    {"object", {"hide_selected"}},
    {"object", {"lock_selected"}},
    {"", {"unhide"}},
    {"", {"unlock"}},
    {"", {"move_to", "0.5", "0", "-0.25"}},
    {"", {"size_to", "1", "2", "1.5"}},
    {"", {"scale", "1.5", "1", "0.5"}},
    {"", {"move_with_undo", "0.25", "0.5", "0"}},
    {"", {"rotate_with_undo", "10", "20", "30"}},
    {"", {"resize_with_undo", "0", "0", "0", "1", "1", "1"}},
    {"", {"move", "0.1", "0", "0"}},
    {"", {"rotate", "0", "15", "0"}},
    {"", {"mirror", "2"}},
    {"", {"repeat_last"}},
    {"", {"create_light", "0.5", "1", "0"}},
    {"", {"create_outline", "polyline", "0 0 0 0.5 0.5 0 1 0 0.5"}},
    {"", {"new_cube"}},
    {"", {"set_no_texture"}},
};

class UndoWalk : public Tools, public testing::WithParamInterface<unsigned> {
protected:
    void walk(int steps)
    {
        for (int i = 0; i < steps; ++i) {
            make_a_step();
            const int few = std::min(5, static_cast<int>(steps_.size()));
            if (i % 50 == 49)
                there_and_back(static_cast<int>(steps_.size()));
            else if (i % 10 == 9)
                i % 20 == 9 ? there_and_back(few) : back_to_stay(few);
            if (HasFailure())
                return;
        }
        EXPECT_LE(unseen_, 2) << "steps are changes";
        EXPECT_GT(made_, steps * 2 / 5) << "most of them change something";
    }

    // Groups in groups, a polygon object with others below it, shells, sheets and lights.
    void make_scene()
    {
        object_t *outer = new_group(), *inner = new_group();
        object_add_child(vesk_get_world(), outer);
        object_add_child(outer, inner);
        object_reparent(add_random_shell(random_, 1), outer);
        object_reparent(add_random_sheet(random_, 2), inner);
        object_reparent(add_square(0.5f), inner);
        object_t *below = add_cube("below"), *lowest = add_square(0.25f);
        object_reparent(below, cube);
        object_reparent(lowest, below);
        add_random_polygon(random_, 7);
        run("create_light", 1, 1, 1);
        run("clear_selection");
        journal_restart();
        now_ = document();
    }

private:
    [[nodiscard]] int pick(int n) { return random_.below(n); }
    std::string number() { return std::to_string(random_.between(-1, 1)); }
    static const char *mode_name(int i)
    {
        static constexpr const char *names[] = {"tree", "object", "surface", "vertex", "light"};
        return names[i];
    }
    std::string any_object()
    {
        std::vector<int> ids;
        for_each_object(vesk_get_world(), [&](object_t *object) {
            if (object != vesk_get_world())
                ids.push_back(object_identity(object));
        });
        return ids.empty() ? "0" : std::to_string(ids[pick(static_cast<int>(ids.size()))]);
    }
    static int vertices()
    {
        int count = 0;
        for_each_object(vesk_get_world(), [&](object_t *o) { count += o->num_vertices; });
        return count;
    }

    void run_noted(const words_t &words)
    {
        doing_ = "";
        for (const std::string &word : words)
            doing_ += word + " ";
        run_words(words);
    }

    // ---- gestures ----

    void choose()
    {
        if (pick(3) == 0)
            run("set_select_mode", mode_name(pick(4)));
        const int view = pick(3);
        if (pick(3) == 0) {
            run("clear_selection"); // a drag that begins on something selected moves it
            drag(view, pick(400), pick(300), pick(400), pick(300));
        } else {
            click(view, 100 + pick(200), 50 + pick(200), pick(2) * shift);
        }
        if (nothing_is_selected() != 0 || pick(6) == 0)
            run("select_all");
        if (pick(4) == 0)
            run("object_select", any_object().c_str());
    }

    void drag_selection()
    {
        static constexpr const char *tools[] = {"move", "rotate", "extrude"};
        const char *tool = tools[pick(3)];
        run("set_draw_mode", tool);
        doing_ = std::string("drag, ") + tool;
        // From a corner or the middle of the frame, else from anywhere.
        const int view = pick(3);
        int x = pick(400), y = pick(300);
        const selection_t &all = selection();
        const point3_t from = pick(2) == 0 ? all.box_centre : all.box_max;
        if (all.box_valid != 0 && pick(4) != 0)
            point2xy(&from, &x, &y, view);
        const int state = pick(4) == 0 ? control : 0;
        press(view, x, y, state);
        move(view, x + 20, y - 15, state);
        if (pick(6) == 0)
            key("x");
        const bool typed = pick(6) == 0 && keys({"1", "period", "5"});
        move(view, x + pick(80), y - pick(60), state);
        if (pick(6) == 0) {
            doing_ += ", cancelled";
            interaction_cancel();
        } else {
            release(view, x + pick(80), y - pick(60), state);
            if (typed)
                key("Return");
        }
    }

    void draw()
    {
        static constexpr const char *shapes[] = {"circle", "disk", "rect",     "grid",
                                                 "box",    "mesh", "cylinder", "sphere"};
        const char *shape = shapes[pick(8)];
        doing_ = std::string("draw, ") + shape;
        run("set_draw_mode", shape);
        drag(pick(3), 100 + pick(100), 100 + pick(50), 220 + pick(100), 170 + pick(50));
    }

    void draw_outline()
    {
        doing_ = "draw, polygon";
        run("set_draw_mode", pick(2) == 0 ? "polygon" : "polyline");
        const int view = pick(3);
        for (int i = 0; i < 4; ++i)
            click(view, 150 + pick(100), 100 + pick(100));
        key(pick(4) == 0 ? "Escape" : "Return");
    }

    void edit_material()
    {
        const int entry = pick(3);
        const auto set = [&] {
            run_words({"set_palette_entry", std::to_string(entry), number(), number(), number(),
                       "0", "0", "0", "0", "0", "0", "0", "0", "0", "5", number()});
        };
        doing_ = "material";
        switch (pick(5)) {
        case 0:
            run("material_set_name", entry, number().c_str());
            break;
        case 1:
            run("set_col", pick(15));
            break;
        case 2:
            run("new_palette_entry", entry);
            break;
        case 3: // a slider
            for (int i = 0; i < 5; ++i, recording().clock += 0.1)
                set();
            break;
        default:
            set();
        }
    }

    void edit_fields()
    {
        switch (pick(6)) {
        case 0:
            run_noted({"object_set_name", any_object(), number()});
            break;
        case 1:
            run_noted({"object_set_url", any_object(), number()});
            break;
        case 2:
            run_noted({"object_set_data", any_object(), number()});
            break;
        case 3:
            run_noted({"objects_place", any_object() + " " + any_object(), any_object(), "0"});
            break;
        case 4:
            run_noted({"object_reparent", any_object(), any_object()});
            break;
        default:
            run("transform_begin", "move");
            run("transform_to", number().c_str(), "0", number().c_str());
            run("transform_to", number().c_str(), "0", number().c_str());
            run_noted({pick(4) == 0 ? "transform_cancel" : "transform_end"});
        }
    }

    void import()
    {
        const std::string file = temporary_file("walk.vesk");
        write_text(file,
                   "VESKb\nOBJECT world\nkids 1\nOBJECT poly\nname \"came\"\nnumvert 3\n0 0 0\n"
                   "1 0 0\n0 1 0\nnumsurf 1\nSURF 0x20\nmat 2\nrefs 3\n0 0 0\n1 0 0\n2 0 0\n"
                   "kids 0\n");
        run_noted({"load_file", file});
    }

    void run_menu_row()
    {
        if (vertices() > 1000) { // one that has grown takes all the time there is
            run("set_select_mode", "object");
            run("select_all");
            expect_no_step();
            run_noted({"delete"});
            return;
        }
        const menu_row_t &row = menu_rows[pick(static_cast<int>(std::size(menu_rows)))];
        if (row.mode[0] != '\0' && pick(3) != 0) {
            run("set_select_mode", row.mode);
            if (nothing_is_selected() != 0)
                choose();
        }
        expect_no_step();
        if (vertices() < 250 || row.words[0] == "delete" || row.words[0] == "clipboard_cut")
            run_noted(row.words);
    }

    void act()
    {
        switch (pick(8)) {
        case 0:
        case 1:
            return drag_selection();
        case 2:
            return pick(2) == 0 ? draw() : draw_outline();
        case 3:
            return edit_material();
        case 4:
            return pick(8) == 0 && !steps_.empty() ? import() : edit_fields();
        default:
            return run_menu_row();
        }
    }

    // ---- what must hold ----

    static int place()
    {
        int at = -1, i = 0;
        for (const journal_item &item : journal_items()) {
            at = item.current ? i : at;
            ++i;
        }
        return at;
    }

    // Choosing changes no file, and what it chose is there before the next step.
    void expect_no_step()
    {
        ASSERT_EQ(place(), place_) << "choosing is no step";
        before_ = now_;
        selected_before_ = selected();
    }

    void note_step(const std::string &what)
    {
        const std::string after = document();
        const int place_now = place();
        if (place_now == place_) {
            EXPECT_TRUE(after == now_) << what << ": a change without a step";
        } else {
            EXPECT_EQ(place_now, place_ + 1) << what << ": a gesture is one step";
            const std::string label = run("undo_name");
            EXPECT_EQ(label, journal_items()[static_cast<std::size_t>(place_now)].label);
            unseen_ += after == before_ ? 1 : 0; // by less than a file tells
            ++made_;
            steps_.push_back({what, label, before_, selected_before_, after, selected()});
        }
        place_ = place_now;
        now_ = after;
    }

    void make_a_step()
    {
        recording().clock += 10;
        run("set_draw_mode", "move");
        expect_no_step();
        if (pick(2) == 0) {
            choose();
        }
        run("set_draw_mode", "move");
        expect_no_step();
        act();
        note_step(doing_);
    }

    void back(int n)
    {
        const auto all = static_cast<int>(steps_.size());
        for (int i = all; i-- > all - n;) {
            const step_seen_t &step = steps_[static_cast<std::size_t>(i)];
            const std::string what = std::to_string(i) + ", back over " + step.what;
            EXPECT_EQ(run("undo_name"), step.label) << what;
            run("step_back");
            ASSERT_TRUE(document() == step.before) << what;
            ASSERT_EQ(selected(), step.selected_before) << what;
        }
    }

    void there_and_back(int n)
    {
        const auto all = static_cast<int>(steps_.size());
        back(n);
        for (int i = all - n; i < all; ++i) {
            const step_seen_t &step = steps_[static_cast<std::size_t>(i)];
            const std::string what = std::to_string(i) + ", again " + step.what;
            run("redo");
            ASSERT_TRUE(document() == step.after) << what;
            ASSERT_EQ(selected(), step.selected_after) << what;
        }
        expect_sound_scene();
        place_ = place();
    }

    // The next step starts another branch.
    void back_to_stay(int n)
    {
        back(n);
        steps_.resize(steps_.size() - static_cast<std::size_t>(n));
        place_ = place();
        now_ = document();
    }

    random_source random_{GetParam()};
    std::vector<step_seen_t> steps_;
    std::string doing_, now_, before_, selected_before_;
    int place_ = 0, made_ = 0, unseen_ = 0;
};

TEST_P(UndoWalk, GivesBackEveryFileAndSelection)
{
    prefs.num_surface_div = prefs.disk_segments = prefs.ellipse_segments = prefs.cylinder_segments =
        prefs.revolve_segments = prefs.spline_steps = 4;
    prefs.grid_object_x = prefs.grid_object_y = prefs.meshx = prefs.meshy = 3;
    prefs.undo_levels = GetParam() % 3 == 0 ? 2 : 20;
    make_scene();
    walk(fewer_when_checked(300));
}
INSTANTIATE_TEST_SUITE_P(Scenes, UndoWalk, testing::Range(1u, 11u));

} // namespace
