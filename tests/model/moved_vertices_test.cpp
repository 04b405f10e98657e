#include "model/moved_vertices.h"

#include "base/job_queue.h"
#include "model/change_marks_internal.h"
#include "model/identity.h"
#include "model/normals.h"
#include "model/vector.h"
#include "tests/support/scene_test.h"

#include <algorithm>
#include <cstring>
#include <random>
#include <utility>

namespace {

using MovedVertices = SceneTest;

// A flat mesh that somebody holds, and its positions when it was taken.
struct held_t {
    flat_ptr flat;
    std::vector<point3_t> positions;
};

bool same(const std::vector<point3_t> &a, const std::vector<point3_t> &b)
{
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof a[0]) == 0;
}

bool tells_what_differs(const held_t &before, const held_t &now)
{
    const std::vector<std::int32_t> *moved =
        moved_between(before.flat->positions, now.flat->positions);
    if (moved == nullptr)
        return true;
    for (std::size_t i = 0; i < now.positions.size(); ++i)
        if (!point_equal(before.positions[i], now.positions[i]) &&
            !std::binary_search(moved->begin(), moved->end(), static_cast<std::int32_t>(i)))
            return false;
    return true;
}

// Motions of several sets of vertices, with other changes among them, while flat meshes are held for a
// while: each is what the lists were when it was asked for, and stays so.
TEST_F(MovedVertices, AloneAreReadAnew)
{
    object_t *object = add_cube("cube");
    run("select_all");
    for (int i = 0; i < 3; ++i)
        run("surface_subdivide");
    std::mt19937 random(3);
    const std::vector<vertex *> records = *object_flat(object)->vertex_records;
    const auto any = [&] { return records[random() % records.size()]; };
    std::vector<vertex *> moving;
    moved_ptr moved;
    std::vector<held_t> held;
    int known = 0;
    for (int round = 0; round < 600; ++round) {
        if (round % 40 == 0) {
            moving = {any(), any(), any()};
            moved = find_moved({object}, moving).front();
        }
        for (int steps = static_cast<int>(random() % 3); steps >= 0; --steps) {
            for (vertex *v : moving)
                v->position.x += 0.01f;
            object_mark_moved(object, moved);
        }
        if (random() % 13 == 0) {
            any()->position.y -= 0.01f;
            object_mark(object, CHANGED_POSITIONS);
        }
        if (random() % 17 == 0)
            object_calc_normals_force(object);
        if (random() % 97 == 0)
            run("object_set_name", std::to_string(object_identity(object)), "other");
        const flat_ptr flat = object_flat(object);
        held.push_back({flat, *flat->positions});
        ASSERT_EQ(flat_compare(object, *flat), 0U) << round;
        for (const held_t &before : held) {
            ASSERT_TRUE(same(*before.flat->positions, before.positions)) << round;
            ASSERT_TRUE(tells_what_differs(before, held.back())) << round;
            known += moved_between(before.flat->positions, flat->positions) != nullptr ? 1 : 0;
        }
        while (held.size() > random() % 6)
            held.erase(held.begin() + static_cast<std::ptrdiff_t>(random() % held.size()));
    }
    EXPECT_GT(known, 500);
}

double sum_of(const flat_mesh &flat)
{
    double sum = 0;
    for (const point3_t &p : *flat.positions)
        sum += p.x;
    return sum;
}

struct reading_job_t : queued_job_t {
    flat_ptr flat;
    double sum = 0;
    void run() { sum = sum_of(*std::exchange(flat, nullptr)); }
};

TEST_F(MovedVertices, AreKeptForAWorkerThatReadsThem)
{
    object_t *object = add_cube("cube");
    run("select_all");
    for (int i = 0; i < 4; ++i)
        run("surface_subdivide");
    vertex *point = object_flat(object)->vertex_record(7);
    const moved_ptr moved = find_moved({object}, {point}).front();
    std::vector<std::shared_ptr<reading_job_t>> jobs;
    std::vector<double> sums;
    job_queue<reading_job_t> queue;
    for (int i = 0; i < 300; ++i) {
        point->position.x += 1;
        object_mark_moved(object, moved);
        jobs.push_back(std::make_shared<reading_job_t>());
        jobs.back()->flat = object_flat(object);
        sums.push_back(sum_of(*jobs.back()->flat));
        queue.add(jobs.back());
    }
    queue.wait(false);
    for (std::size_t i = 0; i < jobs.size(); ++i)
        EXPECT_EQ(jobs[i]->sum, sums[i]) << i;
}

TEST_F(MovedVertices, AreThoseOfTheirObjects)
{
    object_t *first = add_cube("first");
    object_t *second = add_cube("second");
    object_t *third = add_cube("third");
    const auto record = [](object_t *object, int i) {
        return object_flat(object)->vertex_record(i);
    };
    const std::vector<moved_ptr> moved =
        find_moved({second, first}, {record(first, 5), record(third, 2), record(second, 7),
                                     record(second, 0), record(first, 3)});
    ASSERT_EQ(moved.size(), 2U);
    EXPECT_EQ(moved[0]->numbers, (std::vector<std::int32_t>{0, 7}));
    EXPECT_EQ(moved[1]->numbers, (std::vector<std::int32_t>{3, 5}));
}

// The flat mesh was read with other vertices since.
TEST_F(MovedVertices, OfAnObjectWithOtherVerticesNothingIsTaken)
{
    object_t *object = add_cube("cube");
    vertex *point = object_flat(object)->vertex_record(2);
    const moved_ptr moved = find_moved({object}, {point}).front();
    run("select_all");
    run("surface_subdivide");
    point->position.z = 9;
    object_mark_moved(object, moved);
    EXPECT_EQ(flat_compare(object, *object_flat(object)), 0U);
}

} // namespace
