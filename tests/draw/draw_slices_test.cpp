#include "draw/draw_slices.h"

#include "tests/support/scene_test.h"

#include <algorithm>
#include <memory>

namespace {

using DrawSlices = SceneTest;

// A picture of `steps` steps, which notes those that it draws.
void draw_picture(int steps, std::vector<int> &drawn)
{
    for (int i = 0; i < steps; ++i)
        if (slice_draws(1000))
            drawn.push_back(i);
}

TEST_F(DrawSlices, AllStepsAreDrawnOnceAndInOrder)
{
    recording().clock_step = 0.001; // at each look at the clock
    for (const int steps : {0, 1, 2, 7, 100}) {
        std::vector<int> drawn;
        slice_progress_t progress;
        bool finished = false;
        int slices = 0;
        while (!finished && slices < 1000) {
            const std::size_t before = drawn.size();
            slice_begin(&progress, 0.005, [] {});
            draw_picture(steps, drawn);
            finished = slice_end();
            ++slices;
            EXPECT_TRUE(finished || drawn.size() > before); // it always goes on
            EXPECT_EQ(progress.steps, drawn.size());
        }
        ASSERT_EQ(drawn.size(), static_cast<std::size_t>(steps));
        for (int i = 0; i < steps; ++i)
            EXPECT_EQ(drawn[i], i);
        if (steps == 100) {
            EXPECT_GT(slices, 10);
        }
    }
}

// Parts of steps between single steps; each prepares a list of its steps, once.
TEST_F(DrawSlices, PartsArePreparedOnceAndDrawnLikeSingleSteps)
{
    recording().clock_step = 0.001;
    const std::vector<int> sizes = {3, 0, 40, 1, 25};
    std::vector<int> drawn, expected;
    int prepared = 0, asked = 0;
    const auto draw_parts = [&] {
        int first = 0;
        for (const int size : sizes) {
            if (slice_draws(1000))
                drawn.push_back(-1);
            slice_part_t part;
            if (part.draws()) {
                ++asked;
                const std::vector<int> &steps = part.prepared([&] {
                    ++prepared;
                    std::vector<int> made;
                    for (int i = 0; i < size; ++i)
                        made.push_back(first + i);
                    return made;
                });
                for (const int step : steps)
                    if (slice_draws(1000))
                        drawn.push_back(step);
            }
            first += size;
        }
    };
    draw_parts(); // at once
    std::swap(drawn, expected);
    EXPECT_EQ(expected.size(), 74U);
    prepared = asked = 0;
    slice_progress_t progress;
    for (bool finished = false; !finished; finished = slice_end()) {
        slice_begin(&progress, 0.005, [] {});
        draw_parts();
    }
    EXPECT_EQ(drawn, expected);
    EXPECT_EQ(prepared, 5);
    EXPECT_GT(asked, 10);
}

// Items of some steps each: what an item needs is made once, and not before its turn.
TEST_F(DrawSlices, ItemsAreTakenUpWhereTheSliceBeforeLeftThem)
{
    recording().clock_step = 0.001;
    const std::vector<int> sizes = {1, 12, 0, 3, 20, 0};
    std::vector<int> drawn, expected;
    std::vector<int> made(sizes.size(), 0), in_slice;
    const auto draw_items = [&] {
        in_slice.clear();
        slice_part_t part;
        if (part.draws()) {
            const auto &items =
                part.prepared([] { return std::make_shared<std::pair<slice_items_t, int>>(); });
            slice_items(items->first, sizes.size(), [&](std::size_t i) {
                in_slice.push_back(static_cast<int>(i));
                if (items->second != static_cast<int>(i) + 1)
                    ++made[i];
                items->second = static_cast<int>(i) + 1;
                for (int step = 0; step < sizes[i]; ++step)
                    if (slice_draws(1000))
                        drawn.push_back(static_cast<int>(i) * 100 + step);
            });
        }
        if (slice_draws(1000))
            drawn.push_back(-1);
    };
    draw_items(); // at once
    std::swap(drawn, expected);
    EXPECT_EQ(expected.size(), 37U);
    made.assign(sizes.size(), 0);
    slice_progress_t progress;
    int slices = 0, most_items = 0;
    for (bool finished = false; !finished && slices < 100; finished = slice_end(), ++slices) {
        slice_begin(&progress, 0.005, [] {});
        draw_items();
        most_items = std::max(most_items, static_cast<int>(in_slice.size()));
    }
    EXPECT_EQ(drawn, expected);
    EXPECT_EQ(made, std::vector<int>(sizes.size(), 1));
    drawn.clear();
    slice_progress_t another;
    slice_begin(&another, 0.005, [] {});
    draw_items();
    EXPECT_FALSE(slice_end());
    drawn.clear();
    draw_items(); // at once, after a slice that was given up
    EXPECT_EQ(drawn, expected);
    EXPECT_GT(slices, 5);
    EXPECT_LT(most_items, 5);
}

TEST_F(DrawSlices, OutsideOfASliceEverythingIsDrawn)
{
    std::vector<int> drawn;
    draw_picture(50, drawn);
    EXPECT_EQ(drawn.size(), 50U);
    slice_progress_t progress = {50, {}, {}};
    slice_begin(&progress, 1, [] {});
    draw_picture(50, drawn);
    EXPECT_TRUE(slice_end());
    EXPECT_EQ(drawn.size(), 50U);
}

TEST_F(DrawSlices, WorkThatTheDriverPutOffCounts)
{
    recording().clock_step = 0;
    int waits = 0;
    slice_progress_t progress;
    slice_begin(&progress, 0.01, [&] {
        ++waits;
        recording().clock += 0.004; // what was put off is done now
    });
    int drawn = 0;
    for (int i = 0; i < 20; ++i)
        drawn += slice_draws(slice_step_elements) ? 1 : 0;
    EXPECT_FALSE(slice_end());
    EXPECT_EQ(drawn, 3);
    EXPECT_EQ(waits, 3);
}

} // namespace
