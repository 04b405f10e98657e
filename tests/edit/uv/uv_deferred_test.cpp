// Texture coordinates that are changed while the records of their object are on demand: the same results as
// with records, to the bit, whatever is touched between, undone, saved or shared with a copy.

#include "edit/document/journal.h"
#include "edit/document/selection_internal.h"
#include "edit/document/step.h"
#include "edit/document/undo_internal.h"
#include "edit/uv/uv_edit.h"
#include "model/change_marks_internal.h"
#include "model/each.h"
#include "model/freed.h"
#include "model/normals.h"
#include "model/object_tree.h"
#include "model/world.h"
#include "program/command_table.h"
#include "tests/support/deferred_test.h"
#include "tests/support/mesh_test.h"
#include "tests/support/random_mesh.h"

#include <cstring>
#include <functional>

namespace {

// As a command does it, but nothing compares the records after it, which would write them all.
void step(const std::function<void()> &change)
{
    step_t now(step_t::of::command);
    change();
    now.keep("step");
}

object_t *first_object() { return item_of<object_t>(vesk_get_world()->children); }

void renew_records(object_t *object)
{
    object_set_whole(object, std::make_shared<flat_mesh>(object_flat(object)->without_records()));
}

// A grid whose records are on demand, selected in object mode; some of its surfaces may be lines.
object_t *add_grid(int side, bool with_lines)
{
    object_t *object = add_squares(side, side);
    if (with_lines) {
        int i = 0;
        for (surface_t *surface : each<surface_t>(object->surfaces))
            surface->type = i++ % 7 == 3 ? SURFACE_CLOSED_LINE : SURFACE_POLYGON;
        object_mark(object, CHANGED_ATTRIBUTES);
    }
    run("set_select_mode", "object"); // compares all records
    renew_records(object);
    step([&] {
        clear_selection();
        select_object(object);
    });
    return object;
}

std::string bytes_of(const flat_array<flat_uv> &coords)
{
    return {reinterpret_cast<const char *>(coords->data()), coords->size() * sizeof(flat_uv)};
}

// Coordinates of all objects, and what is selected.
std::string now()
{
    std::string text;
    for_each_object(vesk_get_world(), [&](object_t *object) {
        text += bytes_of(object_flat(object)->texture_coords) + "|";
        // Objects that are read anew have other numbers; their places are the same.
        for (const int place : selected_surfaces_of(object))
            text += std::to_string(place) + ",";
        for (const int place : selected_vertices_of(object))
            text += std::to_string(place) + ";";
    });
    return text + (undo_label() != nullptr ? undo_label() : "");
}

// The lists hold what the flat mesh says.
void expect_lists_agree()
{
    for_each_object(vesk_get_world(), [](object_t *object) {
        EXPECT_EQ(flat_compare(object, *object_flat(object)), 0U);
        object_mark(object, CHANGED_TEXTURE_COORDS); // read from the lists
        const std::string known = bytes_of(object_flat(object)->texture_coords);
        object_mark(object, CHANGED_ALL);
        EXPECT_EQ(bytes_of(object_flat(object)->texture_coords), known);
    });
}

class UvDeferred : public DeferredTest {};

// ---- what somebody does ----

void choose(const char *what)
{
    const uv_state &state = uv_editor();
    std::vector<char> corners(state.mesh.at.size(), what[0] == 'a' ? 1 : 0);
    for (std::size_t c = 0; what[0] == 's' && c < corners.size() / 3; ++c)
        corners[c] = 1;
    uv_choose(std::move(corners));
}

// Writes into a corner through the lists, as a plug-in does.
void write_a_corner(int number)
{
    for (surface_t *surface : each<surface_t>(first_object()->surfaces)) {
        if (--number == 0)
            item_of<svertex>(surface->refs)->u += 0.375f;
    }
    object_mark(first_object(), CHANGED_TEXTURE_COORDS);
}

void turn_a_surface(int number)
{
    for (surface_t *surface : each<surface_t>(first_object()->surfaces)) {
        if (--number == 0)
            surface_reverse_normal(surface);
    }
    object_mark(first_object(), CHANGED_TOPOLOGY);
}

void delete_a_surface()
{
    freed_batch batch;
    object_t *object = first_object();
    object->num_surfaces -= list_unlink_if<surface_t>(
        &object->surfaces, batch, [](surface_t *, std::size_t i) { return i == 5; });
    object_mark(object, CHANGED_TOPOLOGY);
}

void duplicate()
{
    run("set_select_mode", "object");
    step([] {
        clear_selection();
        select_object(first_object());
    });
    run("duplicate"); // the copy, which is selected, shares all arrays
}

void save_and_load()
{
    const std::string file = temporary_file("uv.vesk");
    run("save_vesk", file);
    run("clear_all");
    run("load_file", file);
    run("set_select_mode", "object");
    run("select_all");
}

const std::vector<std::function<void(int)>> &doings()
{
    static const std::vector<std::function<void(int)>> all = {
        [](int) { step([] { choose("all"); }); },
        [](int) { step([] { choose("some"); }); },
        [](int) { step([] { choose("none"); }); },
        [](int) { step([] { uv_set_mode(uv_mode::CORNER); }); },
        [](int) { step([] { uv_set_mode(uv_mode::SURFACE); }); },
        [](int n) { step([&] { command_uv_move(0.125f * static_cast<float>(n % 9 - 4), 0.3f); }); },
        [](int) { step([] { command_uv_rotate(33); }); },
        [](int) { step([] { command_uv_scale(1.1f, 0.7f); }); },
        [](int) { step([] { command_uv_split(); }); },
        [](int) { UNDO(); },
        [](int) { UNDO(); },
        [](int) { journal_back(); },
        [](int) { journal_redo(); },
        [](int n) { step([&] { write_a_corner(n % 80); }); },
        [](int n) { step([&] { turn_a_surface(n % 60); }); },
        [](int n) { n % 3 == 0 ? delete_a_surface() : void(); },
        [](int n) { n % 4 == 0 ? duplicate() : void(); },
        [](int n) { n % 4 == 0 ? save_and_load() : void(); },
        [](int) { renew_records(first_object()); },
        [](int n) { n % 2 == 0 ? expect_lists_agree() : void(); },
    };
    return all;
}

TEST_F(UvDeferred, AnySessionIsAsWithRecords)
{
    for (unsigned seed = 1; seed <= 40; ++seed) {
        std::vector<std::string> results[2];
        for (const bool defers : {false, true}) {
            deferred_records_set_least(defers ? 1 : 1000000);
            run("set_select_mode", "object");
            run("clear_all");
            clear_all_undos();
            uv_editor_reset_for_test();
            add_grid(9, seed % 3 == 0);
            journal_restart();
            random_source random(seed);
            for (int i = 0; i < 30; ++i) {
                const auto doing =
                    static_cast<std::size_t>(random.below(static_cast<int>(doings().size())));
                doings()[doing](random.below(1000));
                results[defers].push_back(std::to_string(doing) + now());
            }
            expect_lists_agree();
        }
        for (std::size_t i = 0; i < results[0].size(); ++i) {
            ASSERT_TRUE(results[0][i] == results[1][i])
                << "seed " << seed << ", step " << i << ", doing " << results[0][i].substr(0, 2);
        }
    }
}

// ---- what it is for ----

TEST_F(UvDeferred, AllChosenMovedAndUndoneTouchesNoRecord)
{
    object_t *object = add_grid(200, false);
    const std::string before = bytes_of(object_flat(object)->texture_coords);
    const std::size_t to_come = deferred_pages::bytes_to_come();
    ASSERT_GT(to_come, 4u << 20);
    step([] { choose("all"); });
    step([] { command_uv_move(0.25f, 0.5f); });
    EXPECT_EQ(selection().num_surfaces, 40000);
    EXPECT_EQ(untouched_flat(object), object_flat(object));
    const std::string moved = bytes_of(object_flat(object)->texture_coords);
    EXPECT_NE(moved, before);
    UNDO();
    EXPECT_EQ(bytes_of(object_flat(object)->texture_coords), before);
    journal_redo();
    EXPECT_EQ(bytes_of(object_flat(object)->texture_coords), moved);
    journal_back();
    EXPECT_EQ(bytes_of(object_flat(object)->texture_coords), before);
    EXPECT_EQ(deferred_pages::bytes_to_come(), to_come);
    expect_lists_agree();
}

// Pages that were written, and those that were not, both have the new numbers.
TEST_F(UvDeferred, ChangesReachRecordsThatWereTouchedBefore)
{
    for (const bool others_too : {false, true}) {
        object_t *object = add_grid(260, false);
        const flat_ptr flat = object_flat(object);
        svertex *touched = item_of<svertex>(flat->surface_record(60000)->refs);
        const float u = touched->u;
        if (others_too) { // a list of other nodes, which hold the same corners
            surface_t *surface = flat->surface_record(7);
            listitem *copy = list_clone(surface->refs);
            surface->refs = copy;
        }
        const std::size_t to_come = deferred_pages::bytes_to_come();
        step([] { command_uv_move(0.5f, 0); });
        EXPECT_EQ(touched->u, u + 0.5f);
        EXPECT_GT(deferred_pages::bytes_to_come(), to_come / 2);
        expect_lists_agree();
        run("clear_all");
    }
}

// The record of many surfaces is reversed for those that are left, by whatever they were taken.
TEST_F(UvDeferred, UndoOfAllLeavesOutWhatIsGone)
{
    for (const bool renewed : {false, true}) {
        object_t *object = add_grid(10, false);
        const std::string before = bytes_of(object_flat(object)->texture_coords);
        step([] { command_uv_move(0.25f, 0.5f); });
        const std::string moved = bytes_of(object_flat(object)->texture_coords);
        if (renewed)
            renew_records(object); // none of the surfaces is left
        else
            delete_a_surface();
        UNDO();
        const std::size_t gone = renewed ? 0 : 4 * sizeof(flat_uv);
        const std::string expected = renewed ? moved : before;
        const std::string rest = bytes_of(object_flat(object)->texture_coords);
        EXPECT_EQ(rest, expected.substr(0, 5 * gone) + expected.substr(6 * gone)) << renewed;
        expect_lists_agree();
        run("clear_all");
    }
}

TEST_F(UvDeferred, ACopyOfTheSameArraysKeepsItsCoordinates)
{
    object_t *object = add_grid(30, false);
    duplicate();
    object_t *copy = item_of<object_t>(vesk_get_world()->children->next);
    ASSERT_EQ(object_flat(object)->texture_coords, object_flat(copy)->texture_coords);
    const std::string before = bytes_of(object_flat(copy)->texture_coords);
    step([&] {
        clear_selection();
        select_object(object);
    });
    step([] { command_uv_move(0.25f, 0.5f); });
    EXPECT_NE(bytes_of(object_flat(object)->texture_coords), before);
    EXPECT_EQ(bytes_of(object_flat(copy)->texture_coords), before);
    expect_lists_agree();
}

} // namespace
