#include "draw/draw_slices.h"

#include "tests/support/scene_test.h"

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
        slice_end_t end = {0, false};
        int slices = 0;
        while (!end.finished && slices < 1000) {
            const std::size_t before = drawn.size();
            slice_begin(end.done, 0.005, [] {});
            draw_picture(steps, drawn);
            end = slice_end();
            ++slices;
            EXPECT_TRUE(end.finished || drawn.size() > before); // it always goes on
            EXPECT_EQ(end.done, drawn.size());
        }
        ASSERT_EQ(drawn.size(), static_cast<std::size_t>(steps));
        for (int i = 0; i < steps; ++i)
            EXPECT_EQ(drawn[i], i);
        if (steps == 100) {
            EXPECT_GT(slices, 10);
        }
    }
}

TEST_F(DrawSlices, OutsideOfASliceEverythingIsDrawn)
{
    std::vector<int> drawn;
    draw_picture(50, drawn);
    EXPECT_EQ(drawn.size(), 50U);
    slice_begin(50, 1, [] {});
    draw_picture(50, drawn);
    EXPECT_TRUE(slice_end().finished);
    EXPECT_EQ(drawn.size(), 50U);
}

TEST_F(DrawSlices, WorkThatTheDriverPutOffCounts)
{
    recording().clock_step = 0;
    int waits = 0;
    slice_begin(0, 0.01, [&] {
        ++waits;
        recording().clock += 0.004; // what was put off is done now
    });
    int drawn = 0;
    for (int i = 0; i < 20; ++i)
        drawn += slice_draws(slice_step_elements) ? 1 : 0;
    EXPECT_FALSE(slice_end().finished);
    EXPECT_EQ(drawn, 3);
    EXPECT_EQ(waits, 3);
}

} // namespace
