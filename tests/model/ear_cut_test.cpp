#include "model/ear_cut.h"

#include "tests/support/damage.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

using outline = std::vector<point3_t>;

// Twice the area that the triangles cover; those that turn round count against it.
double covered(const outline &corners, const std::vector<int> &ears)
{
    double sum = 0;
    for (size_t i = 0; i < ears.size(); i += 3) {
        const point3_t &a = corners[ears[i]];
        const point3_t &b = corners[ears[i + 1]];
        const point3_t &c = corners[ears[i + 2]];
        const double turn =
            (double{b.x} - a.x) * (double{c.y} - a.y) - (double{b.y} - a.y) * (double{c.x} - a.x);
        EXPECT_GE(turn, -1e-9);
        sum += turn;
    }
    return sum;
}

double area_of(const outline &corners)
{
    double sum = 0;
    for (size_t i = 0; i < corners.size(); ++i) {
        const point3_t &a = corners[i];
        const point3_t &b = corners[(i + 1) % corners.size()];
        sum += double{a.x} * b.y - double{b.x} * a.y;
    }
    return sum;
}

outline star(int count, double inner)
{
    outline corners;
    for (int i = 0; i < count; ++i) {
        const double angle = 2 * M_PI * i / count;
        const double r = i % 2 == 0 ? 1 : inner;
        corners.push_back(
            {static_cast<float>(r * std::cos(angle)), static_cast<float>(r * std::sin(angle)), 0});
    }
    return corners;
}

outline spiral(int count)
{
    outline corners;
    const auto add = [&](int i, double width) {
        const double angle = 12 * M_PI * i / count;
        const double r = 1 + 6.0 * i / count + width;
        corners.push_back(
            {static_cast<float>(r * std::cos(angle)), static_cast<float>(r * std::sin(angle)), 0});
    };
    for (int i = count - 1; i >= 0; --i)
        add(i, 0);
    for (int i = 0; i < count; ++i)
        add(i, 0.4);
    return corners;
}

outline comb(int teeth)
{
    outline corners;
    for (int i = 0; i < teeth; ++i) {
        const auto x = static_cast<float>(2 * i);
        corners.insert(corners.end(), {{x, 0, 0}, {x, 5, 0}, {x + 1, 5, 0}, {x + 1, 0, 0}});
    }
    corners.push_back({static_cast<float>(2 * teeth - 1), -1, 0});
    corners.push_back({0, -1, 0});
    return {corners.rbegin(), corners.rend()};
}

// One after the other gets a corner between, somewhat off the edge.
outline ragged(int count, unsigned seed)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> radius(0.2f, 1);
    outline corners;
    for (int i = 0; i < count; ++i) {
        const double angle = 2 * M_PI * i / count;
        const float r = radius(random);
        corners.push_back(
            {r * static_cast<float>(std::cos(angle)), r * static_cast<float>(std::sin(angle)), 0});
    }
    return corners;
}

} // namespace

TEST(EarCut, FillsTheOutlineAndNothingElse)
{
    for (const outline &corners : {star(5, 0.5), star(33, 0.3), star(1000, 0.9), star(1000, 0.1),
                                   spiral(400), comb(3), comb(200), ragged(40, 1), ragged(500, 2),
                                   ragged(3000, 3), outline{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}}) {
        SCOPED_TRACE(corners.size());
        std::vector<int> ears;
        cut_ears(corners.data(), static_cast<int>(corners.size()), ears);
        EXPECT_EQ(ears.size(), 3 * (corners.size() - 2));
        EXPECT_NEAR(covered(corners, ears), area_of(corners), 1e-6 * area_of(corners));
    }
}

TEST(EarCut, LargeOutlinesTakeTheirTimeInProportion)
{
    // By a scan of all corners for each ear this would take many minutes.
    const outline corners = star(fewer_when_checked(200000), 0.99);
    std::vector<int> ears;
    cut_ears(corners.data(), static_cast<int>(corners.size()), ears);
    EXPECT_EQ(ears.size(), 3 * (corners.size() - 2));
}

TEST(EarCut, OutlinesThatCannotBeFilledAreCutAndEnd)
{
    const float none = std::nanf("");
    const float endless = HUGE_VALF;
    outline crossing = star(100, 0.5);
    for (size_t i = 0; i + 20 < crossing.size(); i += 20)
        std::swap(crossing[i], crossing[i + 17]);
    outline odd = star(100, 0.5);
    odd[3] = {none, 0, 0};
    odd[50] = {endless, -endless, 0};
    for (const outline &corners :
         {outline{{0, 0, 0}, {2, 2, 0}, {2, 0, 0}, {0, 2, 0}, {1, 3, 0}}, crossing, odd,
          outline(64, point3_t{1, 2, 3}), outline(64, point3_t{none, none, none})}) {
        std::vector<int> ears;
        cut_ears(corners.data(), static_cast<int>(corners.size()), ears);
        EXPECT_EQ(ears.size(), 3 * (corners.size() - 2));
    }
    std::vector<int> ears;
    cut_ears(crossing.data(), 2, ears);
    EXPECT_TRUE(ears.empty());
}
