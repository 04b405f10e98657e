// The findings that a worker makes are those that the main thread would make, whatever happens
// meanwhile.

#include "edit/check/findings.h"

#include "edit/document/selection_internal.h"
#include "model/each.h"
#include "model/normals.h"
#include "model/object_tree.h"
#include "model/textures/textures.h"
#include "model/world.h"
#include "tests/support/scene_test.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <functional>
#include <random>
#include <thread>
#include <tuple>

namespace {

constexpr int large_side = 120, small_side = 8;

// A terrain with some surfaces turned round and some vertices doubled.
object_t *add_terrain(int side, unsigned seed)
{
    std::mt19937 random(seed);
    object_t *terrain = new_object(OBJECT_POLY);
    std::vector<vertex *> points;
    for (int i = 0; i <= side; ++i) {
        for (int j = 0; j <= side; ++j) {
            const auto x = static_cast<float>(j), z = static_cast<float>(i);
            points.push_back(object_add_new_vertex(terrain, x, std::sin(x) * std::cos(z), z));
        }
    }
    for (int i = 0; i < 20; ++i) {
        const point3_t &at = points[random() % points.size()]->position;
        object_add_new_vertex(terrain, at.x, at.y, at.z);
    }
    for (int i = 0; i < side; ++i) {
        for (int j = 0; j < side; ++j) {
            const int a = i * (side + 1) + j, b = a + side + 1;
            std::vector<int> corners = {a, b, b + 1, a + 1};
            if (random() % 16 == 0)
                std::reverse(corners.begin(), corners.end());
            surface_t *surface = new_surface();
            object_add_surface(terrain, surface);
            for (const int v : corners)
                surface_add_vertex(surface, points[v], 0, 0);
        }
    }
    object_calc_normals_force(terrain);
    object_add_child(vesk_get_world(), terrain);
    return terrain;
}

using problem_key = std::tuple<model_problem, object_t *, int, int, int, bool>;
std::vector<problem_key> keys(const model_findings &findings)
{
    std::vector<problem_key> all;
    for (const found_problem &p : findings.problems)
        all.emplace_back(p.kind, p.object, p.first, p.second, p.surface, p.note);
    return all;
}

// What the panel is given is what every object gives when it is asked afresh.
void expect_findings_as_afresh()
{
    const model_findings found = model_find_problems(vesk_get_world());
    model_findings fresh;
    for_each_object(vesk_get_world(), [&](object_t *object) {
        const model_findings own = object_find_problems(object);
        std::array<int, num_model_problems> listed = fresh.totals;
        for (const found_problem &problem : own.problems) {
            if (listed[static_cast<std::size_t>(problem.kind)]++ < problems_shown)
                fresh.problems.push_back(problem);
        }
        for (std::size_t kind = 0; kind < fresh.totals.size(); ++kind) {
            fresh.totals[kind] += own.totals[kind];
            fresh.notes[kind] += own.notes[kind];
        }
    });
    std::stable_sort(
        fresh.problems.begin(), fresh.problems.end(),
        [](const found_problem &a, const found_problem &b) { return a.kind < b.kind; });
    EXPECT_EQ(found.totals, fresh.totals);
    EXPECT_EQ(found.notes, fresh.notes);
    EXPECT_EQ(keys(found), keys(fresh));
}

bool wait_for_end()
{
    using namespace std::chrono;
    const auto until = steady_clock::now() + seconds(60);
    while (steady_clock::now() < until) {
        if (run_woken())
            return true;
        std::this_thread::sleep_for(milliseconds(1));
    }
    return false;
}

int times_told()
{
    return static_cast<int>(
        std::count(recording().scripts.begin(), recording().scripts.end(), "model_check_ended"));
}

class Findings : public SceneTest {};

TEST_F(Findings, OfLittleAreMadeOnTheSpot)
{
    add_terrain(small_side, 1);
    EXPECT_EQ(run("check_begin"), "1");
    expect_findings_as_afresh();
    EXPECT_FALSE(run_woken());
}

TEST_F(Findings, OfALargeModelAreMadeByAWorkerThatTellsItsEnd)
{
    object_t *terrain = add_terrain(large_side, 1);
    add_terrain(small_side, 2);
    ASSERT_EQ(run("check_begin"), "0");
    EXPECT_EQ(times_told(), 0);
    ASSERT_TRUE(wait_for_end());
    EXPECT_EQ(times_told(), 1);
    EXPECT_EQ(run("check_begin"), "1");
    expect_findings_as_afresh();

    // Neither the name nor the texture is anything of the mesh's.
    object_set_name(terrain, "hills");
    search_and_set_texture(terrain, "", "nowhere.gif");
    EXPECT_EQ(run("check_begin"), "1");
    EXPECT_EQ(model_find_problems(vesk_get_world()).total(model_problem::missing_texture), 1);
    expect_findings_as_afresh();

    select_object(terrain);
    run("move", 1, 0, 0);
    EXPECT_EQ(run("check_begin"), "0");
}

TEST_F(Findings, AreWaitedForByWhoAsksMeanwhile)
{
    add_terrain(large_side, 3);
    const std::string afresh = run("check_model");
    run("select_all");
    run("move", 0, 1, 0);
    ASSERT_EQ(run("check_begin"), "0");
    EXPECT_EQ(run("check_model"), afresh);
    EXPECT_EQ(run("check_begin"), "1");
}

struct meanwhile_case {
    const char *name;
    void (*change)();
};
// clang-format off
const meanwhile_case meanwhile_cases[] = {
    {"moved",    [] { run("select_all"); run("move", 1, 0, 0); }},
    {"reversed", [] { run("select_all"); run("surface_flip_normals"); }},
    {"deleted",  [] { run("select_all"); run("delete"); }},
    {"undone",   [] { run("undo"); }},
    {"cleared",  [] { run("clear_all"); add_terrain(small_side, 5); }},
};
// clang-format on
void PrintTo(const meanwhile_case &c, std::ostream *out) { *out << c.name; }
class FindingsOfWhatIs : public SceneTest, public testing::WithParamInterface<meanwhile_case> {};

TEST_P(FindingsOfWhatIs, AreNeverThoseOfWhatItWas)
{
    add_terrain(large_side, 4);
    run("set_select_mode", "object");
    run("select_all");
    run("move", 0, 0, 1);
    run("check_model");
    run("scale", 2, 2, 2);
    run("undo");
    run("move", 0, 0, 1);

    ASSERT_EQ(run("check_begin"), "0");
    GetParam().change();
    run("check_follow");
    expect_findings_as_afresh();
    ASSERT_TRUE(wait_for_end());
    expect_findings_as_afresh();
}
INSTANTIATE_TEST_SUITE_P(Changes, FindingsOfWhatIs, testing::ValuesIn(meanwhile_cases));

// Anything at any moment of the worker's.
TEST_F(Findings, HoldAtRandomMoments)
{
    std::mt19937 random(7);
    run("set_select_mode", "object");
    const std::function<void()> actions[] = {
        [] {
            run("select_all");
            run("move", 1, 0, 0);
        },
        [] { run("undo"); },
        [] {
            run("select_all");
            run("delete");
        },
        [&] { add_terrain(large_side, random()); },
        [&] { add_terrain(small_side, random()); },
        [] {
            run("select_all");
            run("surface_flip_normals");
        },
        [] { run("check_counts"); },
        [] { model_check_end(); },
        [] { run("clear_all"); },
        [] {},
    };
    add_terrain(large_side, 6);
    for (int round = 0; round < 60; ++round) {
        run("check_begin");
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 8000));
        actions[random() % std::size(actions)]();
        run("check_follow");
        run_woken();
        if (round % 6 == 5)
            expect_findings_as_afresh();
    }
}

} // namespace
