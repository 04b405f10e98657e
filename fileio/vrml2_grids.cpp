#include "fileio/vrml2_grids.h"

#include "fileio/vrml_frame.h"

#include <algorithm>
#include <cmath>

namespace {

using vector_t = std::array<double, 3>;

vector_t minus(const vector_t &a, const vector_t &b)
{
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
vector_t cross(const vector_t &a, const vector_t &b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
double dot(const vector_t &a, const vector_t &b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
double length(const vector_t &a) { return std::hypot(a[0], a[1], a[2]); }
vector_t unit(const vector_t &a, const vector_t &fallback)
{
    const double size = length(a);
    return size > 0 && std::isfinite(size) ? vector_t{a[0] / size, a[1] / size, a[2] / size}
                                           : fallback;
}

// ---- the frames along a spine: x and z of the cross section's plane, y along it ----

struct station_t {
    vector_t place, x, y, z;
};

constexpr double tiny = 1e-12;

bool meets(const vector_t &a, const vector_t &b) { return length(minus(a, b)) == 0; }

// Frame of a straight spine: its direction is y; the others are turned there from their own places
// the shortest way.
void straight_frame(const vector_t &y, vector_t *x, vector_t *z)
{
    const vector_t up = {0, 1, 0};
    const vector_t axis = cross(up, y);
    const double sine = length(axis);
    if (sine < tiny) {
        *x = {1, 0, 0};
        *z = {0, 0, y[1] < 0 ? -1.0 : 1.0};
        return;
    }
    const vrml_matrix turn =
        vrml_rotation({static_cast<float>(axis[0]), static_cast<float>(axis[1]),
                       static_cast<float>(axis[2]), static_cast<float>(std::atan2(sine, y[1]))});
    *x = {turn[0], turn[1], turn[2]};
    *z = {turn[8], turn[9], turn[10]};
}

std::vector<station_t> stations_of(const std::vector<vector_t> &spine)
{
    const std::size_t n = spine.size();
    const bool closed = n > 2 && meets(spine.front(), spine.back());
    std::vector<station_t> out(n);
    std::vector<vector_t> bends(n); // the z axes as far as they are known
    vector_t along = {0, 1, 0};
    for (std::size_t i = 0; i < n; ++i) {
        // Points that repeat the one before have its frame.
        const std::size_t before = i > 0 ? i - 1 : closed ? n - 2 : 0;
        const std::size_t after = i + 1 < n ? i + 1 : closed ? 1 : i;
        along = unit(minus(spine[after], spine[before]), along);
        out[i] = {spine[i], {}, along, {}};
        bends[i] = cross(minus(spine[after], spine[i]), minus(spine[before], spine[i]));
    }
    const auto is_bend = [](const vector_t &b) { return length(b) > tiny; };
    const auto first = std::find_if(bends.begin(), bends.end(), is_bend);
    vector_t last = first == bends.end() ? vector_t{} : unit(*first, {});
    for (std::size_t i = 0; i < n; ++i) {
        if (first == bends.end()) {
            straight_frame(out[i].y, &out[i].x, &out[i].z);
            continue;
        }
        vector_t z = is_bend(bends[i]) ? unit(bends[i], last) : last;
        if (dot(z, last) < 0) // else the section would turn over
            z = {-z[0], -z[1], -z[2]};
        last = z;
        out[i].z = z;
        out[i].x = unit(cross(out[i].y, z), {1, 0, 0});
    }
    return out;
}

std::vector<vector_t> points_of(const std::vector<float> &numbers)
{
    std::vector<vector_t> points;
    for (std::size_t i = 0; i + 2 < numbers.size(); i += 3)
        points.push_back({numbers[i], numbers[i + 1], numbers[i + 2]});
    return points;
}

// The values of a list at a station: one is for all.
std::vector<float> values_at(const std::vector<float> &all, std::size_t place, std::size_t width)
{
    if (all.size() < width)
        return {};
    const std::size_t at = std::min(place, all.size() / width - 1) * width;
    return {all.begin() + static_cast<std::ptrdiff_t>(at),
            all.begin() + static_cast<std::ptrdiff_t>(at + width)};
}

using cell_t = std::array<std::size_t, 2>;

template <class Corner>
void add_quad(vrml2_grid *grid, Corner &&corner, const cell_t &a, const cell_t &b, const cell_t &c,
              const cell_t &d)
{
    for (const cell_t *cell : {&a, &b, &c, &d})
        grid->corners.push_back(corner((*cell)[0], (*cell)[1]));
    grid->ends.push_back(grid->corners.size());
}

void add_caps(const vrml2_fields &from, std::size_t across, std::size_t stations, bool closed,
              const std::vector<float> &section, vrml2_grid *grid)
{
    const std::size_t corners = closed ? across - 1 : across;
    const auto cap = [&](std::size_t row, bool end) {
        for (std::size_t i = 0; i < corners; ++i) {
            const std::size_t k = end ? i : corners - 1 - i;
            grid->corners.push_back(
                {static_cast<int>(row * across + k), section[2 * k], section[2 * k + 1]});
        }
        grid->ends.push_back(grid->corners.size());
    };
    if (from.flag("beginCap", true))
        cap(0, false);
    if (from.flag("endCap", true))
        cap(stations - 1, true);
}

} // namespace

vrml2_grid vrml2_elevations(const vrml2_fields &from, vrml2_account *account)
{
    vrml2_grid grid;
    const std::vector<float> heights = from.numbers("height");
    const std::vector<int> across = from.integers("xDimension");
    const std::vector<int> down = from.integers("zDimension");
    if (across.empty() || down.empty() || across[0] < 2 || down[0] < 2)
        return grid;
    const auto w = static_cast<std::size_t>(across[0]);
    const std::size_t h = std::min(static_cast<std::size_t>(down[0]), heights.size() / w);
    if (h < 2 || !account->take_points(static_cast<long long>(w * h)))
        return grid;
    const double dx = from.number("xSpacing", 1);
    const double dz = from.number("zSpacing", 1);
    for (std::size_t i = 0; i < w * h; ++i)
        grid.points.push_back(
            {dx * static_cast<double>(i % w), heights[i], dz * static_cast<double>(i / w)});
    const std::vector<float> uv = from.child("texCoord").numbers("point");
    const auto corner = [&](std::size_t x, std::size_t z) {
        const std::size_t at = z * w + x;
        const bool own = 2 * at + 1 < uv.size();
        return vrml2_grid::corner_t{
            static_cast<int>(at),
            own ? uv[2 * at] : static_cast<float>(x) / static_cast<float>(w - 1),
            own ? uv[2 * at + 1] : static_cast<float>(z) / static_cast<float>(h - 1)};
    };
    for (std::size_t z = 0; z + 1 < h; ++z)
        for (std::size_t x = 0; x + 1 < w; ++x)
            add_quad(&grid, corner, {x, z}, {x, z + 1}, {x + 1, z + 1}, {x + 1, z});
    return grid;
}

vrml2_grid vrml2_extrusion(const vrml2_fields &from, vrml2_account *account)
{
    vrml2_grid grid;
    std::vector<float> section = from.numbers("crossSection");
    if (!from.has("crossSection"))
        section = {1, 1, 1, -1, -1, -1, -1, 1, 1, 1};
    std::vector<vector_t> spine = points_of(from.numbers("spine"));
    if (!from.has("spine"))
        spine = {{0, 0, 0}, {0, 1, 0}};
    const std::size_t across = section.size() / 2;
    if (across < 2 || spine.size() < 2 ||
        !account->take_points(static_cast<long long>(across) *
                              static_cast<long long>(spine.size())))
        return grid;
    const std::vector<float> scales = from.numbers("scale");
    const std::vector<float> turns = from.numbers("orientation");
    const std::vector<station_t> stations = stations_of(spine);
    for (std::size_t row = 0; row < stations.size(); ++row) {
        const station_t &s = stations[row];
        std::vector<float> scale = values_at(scales, row, 2);
        scale.resize(2, 1);
        const vrml_matrix turn = vrml_rotation(values_at(turns, row, 4));
        for (std::size_t i = 0; i < across; ++i) {
            const point3_t p =
                vrml_place(turn, section[2 * i] * scale[0], 0, section[2 * i + 1] * scale[1]);
            vector_t at = s.place;
            for (std::size_t k = 0; k < 3; ++k)
                at[k] += p.x * s.x[k] + p.y * s.y[k] + p.z * s.z[k];
            grid.points.push_back(at);
        }
    }
    const auto corner = [&](std::size_t row, std::size_t i) {
        return vrml2_grid::corner_t{static_cast<int>(row * across + i),
                                    static_cast<float>(i) / static_cast<float>(across - 1),
                                    static_cast<float>(row) /
                                        static_cast<float>(stations.size() - 1)};
    };
    for (std::size_t row = 0; row + 1 < stations.size(); ++row)
        for (std::size_t i = 0; i + 1 < across; ++i)
            add_quad(&grid, corner, {row, i}, {row, i + 1}, {row + 1, i + 1}, {row + 1, i});
    const bool closed = across > 3 && section[0] == section[2 * across - 2] &&
                        section[1] == section[2 * across - 1];
    add_caps(from, across, stations.size(), closed, section, &grid);
    return grid;
}
