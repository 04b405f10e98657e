#include "draw/coarse_mesh.h"

#include "draw/coarse_job.h"
#include "model/vector.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <numbers>
#include <random>

namespace {

constexpr double pi = std::numbers::pi;

// A sheet of n x n quads, u and v from 0 to 1.
struct sheet_case {
    const char *name;
    std::function<point3_t(double u, double v)> at;
};

point3_t round_point(double radius, double u, double v)
{
    const double a = 2 * pi * u;
    const double b = pi * (v - 0.5);
    return {static_cast<float>(radius * std::cos(a) * std::cos(b)),
            static_cast<float>(radius * std::sin(b)),
            static_cast<float>(radius * std::sin(a) * std::cos(b))};
}

point3_t tube_point(double big, double small, double u, double v)
{
    const double a = 2 * pi * u;
    const double b = 2 * pi * v;
    return {static_cast<float>((big + small * std::cos(b)) * std::cos(a)),
            static_cast<float>(small * std::sin(b)),
            static_cast<float>((big + small * std::cos(b)) * std::sin(a))};
}

point3_t height_point(double u, double v, double height)
{
    return {static_cast<float>(u), static_cast<float>(height), static_cast<float>(v)};
}

const std::vector<sheet_case> &sheets()
{
    static const std::vector<sheet_case> cases = {
        {"flat", [](double u, double v) { return height_point(u, v, 0.1 * u + 0.1 * v); }},
        {"waves",
         [](double u, double v) {
             return height_point(u, v, 0.1 * std::sin(20 * u) * std::cos(15 * v));
         }},
        {"ripples",
         [](double u, double v) { return height_point(u, v, 0.01 * std::sin(120 * (u + v))); }},
        {"step",
         [](double u, double v) { return height_point(u, v, 0.1 * v + (u > 0.37 ? 0.3 : 0)); }},
        {"saddle",
         [](double u, double v) {
             return height_point(u, v, (u - 0.5) * (u - 0.5) - (v - 0.5) * (v - 0.5));
         }},
        {"sphere", [](double u, double v) { return round_point(1, u, v); }},
        {"star",
         [](double u, double v) {
             return round_point(1 + 0.3 * std::cos(10 * pi * u) * std::cos(6 * pi * v), u, v);
         }},
        {"torus", [](double u, double v) { return tube_point(1, 0.3, u, v); }},
        {"ring of beads",
         [](double u, double v) { return tube_point(1, 0.2 + 0.1 * std::cos(24 * pi * u), u, v); }},
        {"spiral",
         [](double u, double v) {
             point3_t p = tube_point(1, 0.2, 3 * u, v);
             p.y += static_cast<float>(2 * u);
             return p;
         }},
    };
    return cases;
}

// `shared`: neighbours have their corners in common; else each quad has vertices of its own.
coarse_source_t sheet_source(const sheet_case &sheet, int n, bool shared)
{
    coarse_source_t source;
    auto positions = std::make_shared<flat_vector<point3_t>>(std::vector<point3_t>());
    const auto corner = [&](int x, int y) {
        if (shared)
            return static_cast<std::uint32_t>(y * (n + 1) + x);
        positions->push_back(sheet.at(static_cast<double>(x) / n, static_cast<double>(y) / n));
        return static_cast<std::uint32_t>(positions->size() - 1);
    };
    for (int y = 0; shared && y <= n; ++y)
        for (int x = 0; x <= n; ++x)
            positions->push_back(sheet.at(static_cast<double>(x) / n, static_cast<double>(y) / n));
    for (int y = 0; y < n; ++y)
        for (int x = 0; x < n; ++x) {
            const std::uint32_t a = corner(x, y), b = corner(x + 1, y), c = corner(x + 1, y + 1),
                                d = corner(x, y + 1);
            source.triangles.insert(source.triangles.end(), {a, b, c, a, c, d});
        }
    source.num_vertices = static_cast<std::uint32_t>(positions->size());
    source.slot_face.assign(positions->size(), 0);
    const auto half = static_cast<std::uint32_t>(source.triangles.size() / 2 / 3 * 3);
    const auto rest = static_cast<std::uint32_t>(source.triangles.size()) - half;
    source.groups = {{0, false, false, 0, half}, {1, false, false, half, rest}};
    source.positions = positions;
    return source;
}

std::shared_ptr<coarse_mesh_t> coarse_sheet(const sheet_case &sheet, int n, bool shared)
{
    const std::atomic<bool> go_on = false;
    return make_coarse_mesh(sheet_source(sheet, n, shared), go_on);
}

std::vector<std::uint32_t> level_triangles(const coarse_mesh_t &mesh, int level)
{
    std::vector<std::uint32_t> all;
    const auto add = [&](const mesh_cluster_t &cluster) {
        const index_range_t &span = cluster.triangles[level];
        const auto first = mesh.triangles.begin() + span.first;
        all.insert(all.end(), first, first + span.count);
    };
    if (level == family_detail)
        for (const cluster_family_t &family : mesh.families)
            add(family.whole);
    else
        std::for_each(mesh.clusters.begin(), mesh.clusters.end(), add);
    return all;
}

// What triangles cover of a picture of `size` pixels, seen along an axis.
class mask_t {
public:
    static constexpr int size = 400;

    mask_t(const std::vector<point3_t> &points, const std::vector<std::uint32_t> &triangles,
           int axis)
        : covered_(size * size, false)
    {
        for (std::size_t i = 0; i + 2 < triangles.size(); i += 3)
            fill(on_screen(points[triangles[i]], axis), on_screen(points[triangles[i + 1]], axis),
                 on_screen(points[triangles[i + 2]], axis));
    }

    // Pixels that the other covers nowhere within `distance`.
    [[nodiscard]] int stray_pixels(const mask_t &other, int distance) const
    {
        int stray = 0;
        for (int y = 0; y < size; ++y)
            for (int x = 0; x < size; ++x)
                stray += covered_[y * size + x] && !other.has_near(x, y, distance) ? 1 : 0;
        return stray;
    }

private:
    using place_t = std::array<double, 2>;

    static place_t on_screen(const point3_t &p, int axis)
    {
        constexpr double scale = 120; // the sheets lie within 1.5 of the middle
        const double a = axis == 0 ? p.z : p.x;
        const double b = axis == 1 ? p.z : p.y;
        return {size / 2.0 + a * scale, size / 2.0 + (b - 0.3) * scale};
    }

    void fill(const place_t &a, const place_t &b, const place_t &c)
    {
        const auto low = [&](int k) { return std::min({a[k], b[k], c[k]}); };
        const auto high = [&](int k) { return std::max({a[k], b[k], c[k]}); };
        const auto side = [](const place_t &p, const place_t &q, double x, double y) {
            return (q[0] - p[0]) * (y - p[1]) - (q[1] - p[1]) * (x - p[0]);
        };
        for (int y = std::max(0, static_cast<int>(low(1))); y <= high(1) && y < size; ++y)
            for (int x = std::max(0, static_cast<int>(low(0))); x <= high(0) && x < size; ++x) {
                const double u = side(a, b, x, y), v = side(b, c, x, y), w = side(c, a, x, y);
                if ((u >= 0 && v >= 0 && w >= 0) || (u <= 0 && v <= 0 && w <= 0))
                    covered_[y * size + x] = true;
            }
    }

    [[nodiscard]] bool has_near(int x, int y, int distance) const
    {
        for (int j = std::max(0, y - distance); j <= std::min(size - 1, y + distance); ++j)
            for (int i = std::max(0, x - distance); i <= std::min(size - 1, x + distance); ++i)
                if (covered_[j * size + i])
                    return true;
        return false;
    }

    std::vector<bool> covered_;
};

TEST(CoarseMesh, IsMuchSmallerAndKeepsTheOutline)
{
    for (const sheet_case &sheet : sheets())
        for (const bool shared : {true, false}) {
            SCOPED_TRACE(std::string(sheet.name) + (shared ? "" : ", unshared"));
            const auto mesh = coarse_sheet(sheet, 200, shared);
            const std::vector<std::uint32_t> full = level_triangles(*mesh, 0);
            EXPECT_EQ(full.size(), 3U * 2 * 200 * 200);
            for (const int level : {1, 2, 3}) {
                const std::vector<std::uint32_t> coarse = level_triangles(*mesh, level);
                EXPECT_LT(coarse.size(), full.size() / 4) << level;
                for (int axis = 0; axis < 3; ++axis) {
                    const mask_t before(*mesh->positions, full, axis);
                    const mask_t after(*mesh->positions, coarse, axis);
                    EXPECT_EQ(before.stray_pixels(after, 2), 0) << level << " axis " << axis;
                    EXPECT_EQ(after.stray_pixels(before, 2), 0) << level << " axis " << axis;
                }
            }
        }
}

// Edges of one triangle only, by place.
int open_edges(const coarse_mesh_t &mesh, const std::vector<std::uint32_t> &triangles)
{
    std::map<std::array<float, 6>, int> uses;
    const auto add = [&](const point3_t &a, const point3_t &b) {
        ++uses[{a.x, a.y, a.z, b.x, b.y, b.z}];
        --uses[{b.x, b.y, b.z, a.x, a.y, a.z}];
    };
    for (std::size_t i = 0; i + 2 < triangles.size(); i += 3)
        for (int k = 0; k < 3; ++k)
            add((*mesh.positions)[triangles[i + k]], (*mesh.positions)[triangles[i + (k + 1) % 3]]);
    int open = 0;
    for (const auto &[edge, count] : uses)
        open += count > 0 ? count : 0;
    return open;
}

TEST(CoarseMesh, ClustersOfDifferentDetailMeetWithoutCracks)
{
    const auto mesh = coarse_sheet(sheets()[1], 300, true);
    ASSERT_GT(mesh->clusters.size(), 8U);
    const int around = 4 * 300;
    EXPECT_EQ(open_edges(*mesh, level_triangles(*mesh, 1)), around);
    EXPECT_EQ(open_edges(*mesh, level_triangles(*mesh, 2)), around);
    EXPECT_EQ(open_edges(*mesh, level_triangles(*mesh, 3)), around);
    EXPECT_LT(level_triangles(*mesh, 3).size(), level_triangles(*mesh, 2).size() / 2);
    ASSERT_GT(mesh->families.size(), 1U);
    std::vector<std::uint32_t> mixed;
    const auto add = [&](const mesh_cluster_t &cluster, std::size_t level) {
        const index_range_t &span = cluster.triangles[level];
        const auto first = mesh->triangles.begin() + span.first;
        mixed.insert(mixed.end(), first, first + span.count);
    };
    std::size_t in_families = 0;
    for (const cluster_family_t &family : mesh->families) {
        EXPECT_EQ(family.first, in_families);
        in_families += family.count;
        if (&family == &mesh->families.front())
            add(family.whole, family_detail);
        else
            for (std::size_t i = family.first; i < family.first + family.count; ++i)
                add(mesh->clusters[i], i % 3);
    }
    EXPECT_EQ(in_families, mesh->clusters.size());
    EXPECT_EQ(open_edges(*mesh, mixed), around);
}

// How many clusters face away from the viewer; of those no triangle is seen.
int check_bounds(const coarse_mesh_t &mesh, const point3_t &viewer)
{
    int num_away = 0;
    for (const mesh_cluster_t &cluster : mesh.clusters) {
        const point3_t to = point_sub(cluster.centre, viewer);
        const bool away =
            point_dot(cluster.axis, to) >= cluster.cutoff * point_length(to) + cluster.radius;
        num_away += away ? 1 : 0;
        const index_range_t &span = cluster.triangles[0];
        for (std::uint32_t i = span.first; i < span.first + span.count; i += 3) {
            const auto at = [&](std::uint32_t k) {
                return (*mesh.positions)[mesh.triangles[i + k]];
            };
            EXPECT_LE(point_length(point_sub(at(0), cluster.centre)), cluster.radius * 1.001);
            const point3_t normal = point_cross(point_sub(at(1), at(0)), point_sub(at(2), at(0)));
            EXPECT_FALSE(away && point_dot(normal, point_sub(at(0), viewer)) < 0);
        }
    }
    return num_away;
}

TEST(CoarseMesh, BoundsHoldTheTrianglesAndNothingThatIsSeenFacesAway)
{
    for (const std::size_t i : {0, 1, 5, 7}) {
        SCOPED_TRACE(sheets()[i].name);
        const auto mesh = coarse_sheet(sheets()[i], 200, true);
        const int above = check_bounds(*mesh, {0.5f, 60, 0.5f});
        const int below = check_bounds(*mesh, {0.5f, -60, 0.5f});
        if (i < 2) { // an open sheet shows one side to each
            EXPECT_GT(above + below, 0);
            EXPECT_EQ(std::min(above, below), 0);
        }
    }
}

TEST(CoarseMesh, MeshesThatAreHardToTakeAreTaken)
{
    const std::atomic<bool> go_on = false;
    coarse_source_t empty;
    empty.positions = std::make_shared<flat_vector<point3_t>>(std::vector<point3_t>());
    EXPECT_TRUE(make_coarse_mesh(empty, go_on)->clusters.empty());
    for (const float bad : {NAN, INFINITY, -INFINITY, 3e38f, 0.0f}) {
        const sheet_case broken = {
            "broken", [bad](double u, double v) {
                return point3_t{u > 0.5 ? bad : static_cast<float>(u), bad, static_cast<float>(v)};
            }};
        const auto mesh = coarse_sheet(broken, 100, true);
        EXPECT_EQ(level_triangles(*mesh, 0).size(), 3U * 2 * 100 * 100);
        for (const std::uint32_t slot : mesh->triangles)
            EXPECT_LT(slot, 101U * 101);
    }
}

// The library ends the program when it is asked for what it does not expect.
TEST(CoarseMesh, AnyTrianglesAreTaken)
{
    const std::atomic<bool> go_on = false;
    std::mt19937 random(7);
    for (int round = 0; round < 300; ++round) {
        coarse_source_t source;
        auto points = std::make_shared<flat_vector<point3_t>>(std::vector<point3_t>());
        const unsigned num_points = 1 + random() % (round % 3 == 0 ? 5 : 300);
        const auto coordinate = [&] {
            switch (random() % 40) {
            case 0:
                return std::array{NAN, INFINITY, 3e38f, 1e-40f, -0.0f}[random() % 5];
            case 1:
                return 0.0f;
            default:
                return static_cast<float>(random() % (round % 7 == 0 ? 3 : 1000));
            }
        };
        for (unsigned i = 0; i < num_points; ++i)
            points->push_back({coordinate(), coordinate(), coordinate()});
        source.positions = points;
        source.num_vertices = num_points;
        for (unsigned i = 0; i < 20; ++i)
            source.extra_vertices.push_back(static_cast<std::int32_t>(random() % num_points));
        source.slot_face.assign(num_points + 20, round % 2 == 0 ? -1 : 0);
        for (int group = 0; group < 3; ++group) {
            const auto first = static_cast<std::uint32_t>(source.triangles.size());
            const unsigned count = random() % (group == 0 ? 2000 : 12);
            for (unsigned i = 0; i < 3 * count; ++i)
                source.triangles.push_back(random() % (num_points + 20));
            source.groups.push_back({group, false, false, first, 3 * count});
        }
        const auto mesh = make_coarse_mesh(source, go_on);
        EXPECT_EQ(level_triangles(*mesh, 0).size(), source.triangles.size());
        for (const mesh_cluster_t &cluster : mesh->clusters)
            for (const index_range_t &span : cluster.triangles)
                EXPECT_LE(span.first + span.count, mesh->triangles.size());
        for (const std::uint32_t slot : mesh->triangles)
            EXPECT_LT(slot, num_points + 20);
        for (const std::uint32_t slot : mesh->edges)
            EXPECT_LT(slot, num_points + 20);
    }
}

TEST(CoarseJob, IsMadeAsideInTurnAndCanBeGivenUp)
{
    std::vector<std::shared_ptr<coarse_job_t>> jobs;
    for (int i = 0; i < 6; ++i)
        jobs.push_back(coarse_job_start(sheet_source(sheets()[i], 150, true)));
    jobs[3]->cancelled = true;
    coarse_jobs_wait(false);
    for (std::size_t i = 0; i < jobs.size(); ++i) {
        EXPECT_TRUE(jobs[i]->ended);
        EXPECT_EQ(jobs[i]->result == nullptr, i == 3) << i;
    }
    const auto late = coarse_job_start(sheet_source(sheets()[0], 100, true));
    const auto given_up = coarse_job_start(sheet_source(sheets()[1], 1000, true));
    coarse_jobs_wait(true);
    EXPECT_TRUE(given_up->ended);
    EXPECT_EQ(given_up->result, nullptr);
}

} // namespace
