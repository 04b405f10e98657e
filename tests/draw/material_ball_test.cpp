#include "draw/material_ball.h"

#include <gtest/gtest.h>

namespace {

constexpr int size = 64;

struct rgb_t {
    int r, g, b;
};

rgb_t pixel(const std::vector<std::uint8_t> &picture, int x, int y)
{
    const std::uint8_t *at = &picture[static_cast<size_t>(y * size + x) * 3];
    return {at[0], at[1], at[2]};
}

// Red, without other light than what falls on it.
std::vector<double> red() { return {1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 10}; }

} // namespace

TEST(MaterialBall, IsLitFromTheUpperLeftOverAChecker)
{
    const std::vector<std::uint8_t> picture = material_ball(size, red().data());
    ASSERT_EQ(picture.size(), static_cast<size_t>(size * size * 3));
    const rgb_t lit = pixel(picture, 24, 26);
    const rgb_t dark = pixel(picture, 44, 48);
    EXPECT_GT(lit.r, dark.r + 40);
    EXPECT_EQ(lit.g, 0);
    // Two cells of the checker at the corner, both grey with a touch of blue.
    const rgb_t first = pixel(picture, 2, 2);
    const rgb_t second = pixel(picture, 10, 2);
    EXPECT_EQ(first.r, first.g);
    EXPECT_EQ(first.b, first.r + 3);
    EXPECT_NE(first.r, second.r);
}

TEST(MaterialBall, ShowsTransparencyShineAndGlow)
{
    std::vector<double> clear = red();
    clear[12] = 1;
    const rgb_t through = pixel(material_ball(size, clear.data()), 32, 33);
    EXPECT_EQ(through.r, through.g); // nothing but the checker

    std::vector<double> shiny = red();
    shiny[9] = shiny[10] = shiny[11] = 1;
    EXPECT_GT(pixel(material_ball(size, shiny.data()), 24, 26).b, 60);

    std::vector<double> glowing = red();
    glowing[7] = 0.5;
    EXPECT_EQ(pixel(material_ball(size, glowing.data()), 44, 48).g, 127);
}
