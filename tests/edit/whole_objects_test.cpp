// What is selected as a whole, or changed as a whole, leaves records that are on demand untouched, and comes to
// the bit to what it comes to with records.

#include "edit/document/modes.h"
#include "edit/document/selection_internal.h"
#include "edit/drag_transform.h"
#include "edit/transform.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/flat_mesh.h"
#include "model/world.h"
#include "tests/support/deferred_test.h"
#include "tests/support/mesh_test.h"

#include <cstring>
#include <functional>
#include <string>

namespace {

class WholeObjects : public DeferredTest {
protected:
    // Two grids, nothing selected; the second is untouched, and so is the first where `all` says so.
    void add_grids(bool all)
    {
        run("clear_all");
        objects = {add_squares(3, 4), add_squares(5, 2)};
        run("set_select_mode", "vertex"); // looks at all records
        for (object_t *object : objects) {
            if (object == objects[1] || all)
                object_set_whole(
                    object, std::make_shared<flat_mesh>(object_flat(object)->without_records()));
        }
    }

    [[nodiscard]] bool are_untouched() const
    {
        return untouched_flat(objects[0]) != nullptr && untouched_flat(objects[1]) != nullptr;
    }

    std::string bytes() const
    {
        std::string text;
        for (const object_t *object : objects) {
            for (const vertex *point : each<vertex>(object->vertices))
                text.append(reinterpret_cast<const char *>(&point->position), sizeof(point3_t));
        }
        return text;
    }

    std::vector<object_t *> objects;
};

const std::vector<std::function<void()>> changes = {
    [] {
        const point3_t offset = {0.1f, -3, 0.7f};
        move_selection(&offset);
    },
    [] { rotate_selection(10, 20, 30); },
    [] {
        const point3_t there = {-1, -1, 0}, factors = {2, 0.3f, 1}, back = {1, 1, 0};
        translate_multiply_selected(&there, &factors, &back);
    },
};

TEST_F(WholeObjects, AreSelectedAndTransformedUntouched)
{
    for (const int mode : {SELECT_VERTEX, SELECT_SURFACE, SELECT_OBJECT, SELECT_TREE}) {
        for (const auto &change : changes) {
            std::string results[3];
            for (const int touched :
                 {0, 1, 2}) { // one has no such records, then all of the other are read
                add_grids(touched == 0);
                selection_set_mode(mode);
                clear_selection();
                if (touched == 2) {
                    for (const vertex *point : each<vertex>(objects[1]->vertices))
                        ASSERT_GE(point->position.x, 0);
                }
                select_all();
                change();
                EXPECT_EQ(are_untouched(), touched == 0) << mode;
                results[touched] = bytes();
            }
            EXPECT_TRUE(results[0] == results[1]) << mode;
            EXPECT_TRUE(results[0] == results[2]) << mode;
        }
    }
}

std::vector<drag_change_t> drags()
{
    drag_change_t move, turn, own, resize, place;
    move.offset = {1, -2, 0.3f};
    turn.kind = drag_change_t::TURN;
    turn.angles = {10, 20, 30};
    turn.centre = {1, 1, 1};
    own.kind = drag_change_t::ROTATE;
    own.own_centres = true;
    own.degrees = 33;
    own.view = VIEW_XZ;
    resize.kind = drag_change_t::RESIZE;
    resize.from_min = {0, 0, 0};
    resize.from_max = {150, 150, 1};
    resize.to_min = {-1, 2, 0};
    resize.to_max = {100, 300, 1};
    place.kind = drag_change_t::PLACE;
    place.place = affine_turn({0, 0, 1}, 40);
    return {move, turn, own, resize, place};
}

// The same as vertex by vertex, and taken back to the bit.
TEST_F(WholeObjects, AreDraggedUntouched)
{
    for (const int mode : {SELECT_VERTEX, SELECT_SURFACE, SELECT_OBJECT, SELECT_TREE}) {
        for (const drag_change_t &change : drags()) {
            SCOPED_TRACE(std::to_string(mode) + " " + std::to_string(change.kind));
            std::string results[2];
            for (const bool by_vertices : {false, true}) {
                run("clear_all");
                objects = {add_squares(150, 150)};
                run("set_select_mode", "vertex");
                const std::string before = bytes();
                object_set_whole(objects[0], std::make_shared<flat_mesh>(
                                                 object_flat(objects[0])->without_records()));
                selection_set_mode(mode);
                clear_selection();
                select_all();
                drag_transform_t drag;
                if (by_vertices) {
                    EXPECT_EQ(drag.moving().size(), 151U * 151);
                }
                drag.step(change);
                drag.step(drags()[0]);
                drag.take_back();
                EXPECT_EQ(untouched_flat(objects[0]) != nullptr, !by_vertices);
                if (!by_vertices) {
                    const flat_ptr flat = object_flat(objects[0]);
                    EXPECT_EQ(std::memcmp(flat->positions->data(), before.data(), before.size()),
                              0);
                }
                drag.step(change);
                drag.finish();
                EXPECT_EQ(untouched_flat(objects[0]) != nullptr, !by_vertices);
                results[by_vertices] = bytes();
                const object_t *object = objects[0];
                results[by_vertices].append(reinterpret_cast<const char *>(&object->centre),
                                            sizeof(point3_t));
                results[by_vertices].append(reinterpret_cast<const char *>(object->rotation),
                                            sizeof object->rotation);
                EXPECT_NE(results[by_vertices].substr(0, before.size()), before);
            }
            EXPECT_TRUE(results[0] == results[1]);
        }
    }
}

// Each once and in order, whatever is selected before.
TEST_F(WholeObjects, AreAddedToWhatIsSelected)
{
    for (const std::size_t before : {0, 1, 7, 20}) { // vertices of the first grid, all of it
        add_grids(true);
        std::vector<vertex *> some(untouched_vertices(objects[0])->begin(),
                                   untouched_vertices(objects[0])->begin() +
                                       static_cast<std::ptrdiff_t>(before));
        selection_add_vertices(some);
        select_all();
        select_all();
        std::vector<vertex *> expected;
        for (const object_t *object : objects) {
            for (vertex *point : each<vertex>(object->vertices))
                expected.push_back(point);
        }
        std::vector<vertex *> found;
        for (vertex *point : each<vertex>(selection().vertices))
            found.push_back(point);
        EXPECT_EQ(found, expected) << before;
        EXPECT_EQ(selection().num_vertices, static_cast<int>(expected.size())) << before;
    }
}

// A list that foreign code has changed is taken as it is.
TEST_F(WholeObjects, ListsChangedByHandAreWalked)
{
    add_grids(true);
    listitem *first = objects[0]->vertices;
    listitem *second = first->next, *third = second->next;
    first->next = third; // the second one comes last
    listitem *last = list_end(first);
    last->next = second;
    second->next = nullptr;
    select_all();
    std::vector<vertex *> found;
    for (vertex *point : each<vertex>(selection().vertices))
        found.push_back(point);
    ASSERT_EQ(found.size(),
              static_cast<std::size_t>(objects[0]->num_vertices + objects[1]->num_vertices));
    EXPECT_EQ(found[0], item_of<vertex>(first));
    EXPECT_EQ(found[1], item_of<vertex>(third));
    EXPECT_EQ(found[objects[0]->num_vertices - 1], item_of<vertex>(second));
    object_mark(objects[0], CHANGED_TOPOLOGY);
}

} // namespace
