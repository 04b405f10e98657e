#include "model/record_maker.h"

#include "model/alloc_internal.h"
#include "model/each.h"
#include "model/freed.h"
#include "model/list_internal.h"
#include "tests/support/scene_test.h"

#include <random>
#include <unordered_set>

namespace {

constexpr int many = 100000;

// Quads whose number is their material, each with corners at one vertex.
record_chain make_quads(vertex *point)
{
    return make_records(many, [point](int i, record_maker &maker) {
        surface_t like = plain_surface();
        like.material = i;
        surface_t *surface = maker.make(like);
        listitem *last = nullptr;
        for (int c = 0; c < 4; ++c)
            last = maker.add_corner(surface, last, {point, static_cast<float>(i), 0});
        return surface;
    });
}

// Whether the list holds the quads from `first` on, every `step`-th, and none of their blocks twice.
bool are_quads(const listitem *head, int first, int step)
{
    std::unordered_set<const void *> blocks;
    for (const listitem *node = head; node != nullptr; node = node->next, first += step) {
        const auto *surface = item_of<surface_t>(node);
        if (!blocks.insert(node).second || !blocks.insert(surface).second ||
            surface->material != first || surface->num_refs != 4 || list_count(surface->refs) != 4)
            return false;
        for (const listitem *corner = surface->refs; corner != nullptr; corner = corner->next) {
            const auto *reference = item_of<svertex>(corner);
            if (!blocks.insert(corner).second || !blocks.insert(reference).second ||
                static_cast<int>(reference->u) != first)
                return false;
        }
    }
    return first >= many;
}

class RecordMaker : public SceneTest {
protected:
    void TearDown() override
    {
        vertex_free_record(point_);
        SceneTest::TearDown();
    }
    vertex *point_ = new_vertex();
};

TEST_F(RecordMaker, RecordsOfManyThreadsStandInTheirOrderAndKeepTheirBlocks)
{
    record_chain one = make_quads(point_);
    EXPECT_EQ(one.count, many);
    ASSERT_TRUE(are_quads(one.first, 0, 1));

    // Every second one goes, by myfree, and its blocks serve the next ones.
    listitem *kept = nullptr, *last = nullptr;
    int i = 0;
    for (listitem *node = one.first; node != nullptr; ++i) {
        listitem *next = node->next;
        if (i % 2 == 0) {
            last = list_add_item_fast(&kept, last, item_of<void>(node));
        } else {
            surface_free_record(item_of<surface_t>(node));
        }
        myfree(node);
        node = next;
    }
    const std::size_t bytes = record_pages_bytes();
    record_chain two = make_quads(point_);
    EXPECT_TRUE(are_quads(kept, 0, 2));
    EXPECT_TRUE(are_quads(two.first, 0, 1));
    if (record_pages_in_use()) {
        EXPECT_LT(record_pages_bytes() - bytes, std::size_t{many} * 208 * 3 / 4);
    }

    last->next = two.first;
    std::vector<surface_t *> all;
    for (surface_t *surface : each<surface_t>(kept))
        all.push_back(surface);
    std::shuffle(all.begin(), all.end(), std::mt19937(5));
    free_records(all, {});
    list_free(&kept);
    EXPECT_LE(record_pages_bytes(), std::size_t{80} << 20); // of empty pages a few are kept
}

TEST_F(RecordMaker, AListWhoseNodesWereFreedAmongManyIsWalkedAgain)
{
    surface_t *line = new_surface();
    for (int i = 0; i < 100; ++i)
        surface_add_vertex(line, point_, 0, 0); // its last corner is remembered
    record_chain quads = make_quads(point_);
    std::vector<surface_t *> surfaces = {line};
    for (surface_t *surface : each<surface_t>(quads.first))
        surfaces.push_back(surface);
    free_records(surfaces, {});
    list_free(&quads.first);

    surface_t *next = new_surface(); // perhaps with blocks of the line
    for (int i = 0; i < 100; ++i)
        surface_add_vertex(next, point_, 0, 0);
    EXPECT_EQ(list_count(next->refs), 100);
    surface_free_record(next);
}

TEST_F(RecordMaker, ALongListIsCopiedWithTheEmptyPlacesInIt)
{
    owned_list list;
    for (int i = 0; i < many; ++i)
        list.add(int_element(i % 5));
    const owned_list copy(list_clone(list.get()));
    const listitem *node = copy.get();
    for (int i = 0; i < many; ++i, node = node->next)
        ASSERT_EQ(int_of(node), i % 5);
    EXPECT_EQ(node, nullptr);
}

TEST_F(RecordMaker, WhatIsFreedLeavesAListInWhateverOrder)
{
    std::vector<vertex *> points;
    for (int i = 0; i < 8; ++i)
        points.push_back(new_vertex());
    const auto left_of = [&](const std::vector<int> &listed, const std::vector<int> &freed) {
        owned_list list;
        for (const int i : listed)
            list.add(points[i]);
        std::vector<vertex *> gone;
        for (const int i : freed)
            gone.push_back(points[i]);
        listitem *head = list.release();
        const int count = list_count(head);
        const int dropped = list_drop_freed(&head, gone);
        std::vector<std::ptrdiff_t> left;
        for (vertex *point : each<vertex>(head))
            left.push_back(std::find(points.begin(), points.end(), point) - points.begin());
        list_free(&head);
        EXPECT_EQ(dropped, count - static_cast<int>(left.size()));
        return left;
    };
    using places = std::vector<std::ptrdiff_t>;
    EXPECT_EQ(left_of({1, 3, 5}, {0, 1, 2, 3, 4, 5}), places()); // all, in order
    EXPECT_EQ(left_of({5, 3, 1}, {0, 1, 2, 3, 4, 5}), places());
    EXPECT_EQ(left_of({1, 3, 5}, {0, 1, 2, 3}), places({5}));
    EXPECT_EQ(left_of({1, 1, 2}, {1, 2}), places());
    EXPECT_EQ(left_of({1, 2}, {3, 4}), places({1, 2}));
    for (vertex *point : points)
        vertex_free_record(point);
}

TEST_F(RecordMaker, GuardedBlocksAreMadeOneByOneAndCounted)
{
    alloc_set_mode_for_test(false, true);
    record_chain quads = make_quads(point_);
    EXPECT_EQ(alloc_total(), static_cast<long long>(many) * (sizeof(surface_t) + 9 * 16));
    std::vector<surface_t *> surfaces;
    for (surface_t *surface : each<surface_t>(quads.first))
        surfaces.push_back(surface);
    free_records(surfaces, {});
    list_free(&quads.first);
    EXPECT_EQ(alloc_total(), 0);
    alloc_set_mode_for_test(false, false);
}

} // namespace
