#include "fileio/vrml_solids.h"

#include "model/angle.h"

#include <cmath>

namespace {

constexpr int round_steps = 16;
constexpr int sphere_rows = 8;

// Points of a ring about the y axis.
std::vector<int> add_ring(const vrml_brush &brush, double radius, double y)
{
    std::vector<int> ring;
    for (int i = 0; i < round_steps; ++i) {
        const double angle = 2 * pi * i / round_steps;
        ring.push_back(brush.point(radius * std::sin(angle), y, radius * std::cos(angle)));
    }
    return ring;
}

// The side between two rings, the upper one first; a ring of one point is a tip.
void add_side(const vrml_brush &brush, const std::vector<int> &upper, const std::vector<int> &lower,
              float v_upper, float v_lower)
{
    import_mesh &mesh = brush.mesh;
    for (int i = 0; i < round_steps; ++i) {
        const auto at = [&](const std::vector<int> &ring, int k) {
            return ring[ring.size() == 1 ? 0 : static_cast<std::size_t>(k % round_steps)];
        };
        const auto u = [](int k) { return static_cast<float>(k) / round_steps; };
        mesh.add_corner(at(lower, i), u(i), v_lower);
        if (lower.size() > 1)
            mesh.add_corner(at(lower, i + 1), u(i + 1), v_lower);
        mesh.add_corner(at(upper, i + 1), u(i + 1), v_upper);
        if (upper.size() > 1)
            mesh.add_corner(at(upper, i), u(i), v_upper);
        mesh.end_surface(brush.material(0), SURFACE_TWOSIDED | SURFACE_SMOOTH);
    }
}

void add_cap(const vrml_brush &brush, const std::vector<int> &ring, bool top, int material)
{
    for (int i = 0; i < round_steps; ++i)
        brush.mesh.add_corner(ring[static_cast<std::size_t>(top ? i : round_steps - 1 - i)]);
    brush.mesh.end_surface(material, SURFACE_TWOSIDED);
}

} // namespace

void vrml_add_box(const vrml_brush &brush, double width, double height, double depth)
{
    const double x = width / 2;
    const double y = height / 2;
    const double z = depth / 2;
    int corners[8];
    for (int i = 0; i < 8; ++i)
        corners[i] =
            brush.point((i & 1) != 0 ? x : -x, (i & 2) != 0 ? y : -y, (i & 4) != 0 ? z : -z);
    // Front, back, left, right, top, bottom.
    constexpr int faces[6][4] = {{4, 5, 7, 6}, {1, 0, 2, 3}, {0, 4, 6, 2},
                                 {5, 1, 3, 7}, {6, 7, 3, 2}, {0, 1, 5, 4}};
    constexpr float uv[4][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    for (std::size_t face = 0; face < 6; ++face) {
        for (int k = 0; k < 4; ++k)
            brush.mesh.add_corner(corners[faces[face][k]], uv[k][0], uv[k][1]);
        brush.mesh.end_surface(brush.material(face), SURFACE_TWOSIDED);
    }
}

void vrml_add_sphere(const vrml_brush &brush, double radius)
{
    std::vector<int> upper = {brush.point(0, radius, 0)};
    for (int row = 1; row <= sphere_rows; ++row) {
        const double angle = pi * row / sphere_rows;
        const std::vector<int> lower =
            row == sphere_rows
                ? std::vector<int>{brush.point(0, -radius, 0)}
                : add_ring(brush, radius * std::sin(angle), radius * std::cos(angle));
        const auto v = [](int i) { return 1 - static_cast<float>(i) / sphere_rows; };
        add_side(brush, upper, lower, v(row - 1), v(row));
        upper = lower;
    }
}

void vrml_add_cone(const vrml_brush &brush, double radius, double height, const vrml_parts &parts)
{
    const std::vector<int> tip = {brush.point(0, height / 2, 0)};
    const std::vector<int> base = add_ring(brush, radius, -height / 2);
    if (parts.sides)
        add_side(brush, tip, base, 1, 0);
    if (parts.bottom)
        add_cap(brush, base, false, brush.material(1));
}

void vrml_add_cylinder(const vrml_brush &brush, double radius, double height,
                       const vrml_parts &parts)
{
    const std::vector<int> top = add_ring(brush, radius, height / 2);
    const std::vector<int> bottom = add_ring(brush, radius, -height / 2);
    if (parts.sides)
        add_side(brush, top, bottom, 1, 0);
    if (parts.top)
        add_cap(brush, top, true, brush.material(1));
    if (parts.bottom)
        add_cap(brush, bottom, false, brush.material(2));
}
