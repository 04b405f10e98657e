#include "fileio/vrml1_shapes.h"

#include "model/angle.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int round_steps = 16;
constexpr int sphere_rows = 8;
constexpr float smooth_from = 1.0f; // radians between faces

int flags_of(const vrml_state &state)
{
    const bool smooth = state.has_normals || state.crease_angle > smooth_from;
    return SURFACE_TWOSIDED | (smooth ? SURFACE_SMOOTH : 0);
}

int add_place(import_mesh &mesh, const vrml_state &state, double x, double y, double z)
{
    const point3_t p = vrml_place(state, x, y, z);
    return mesh.add_point(p.x, p.y, p.z);
}

// ---- indexed sets ----

// Faces and lines whose corners are given by indices; -1 ends one.
class indexed_set {
public:
    indexed_set(const vrml_fields &fields, const vrml_state &state, import_mesh &mesh)
        : state_(state), mesh_(mesh), indices_(fields.integers("coordIndex")),
          uv_indices_(fields.integers("textureCoordIndex")),
          material_indices_(fields.integers("materialIndex")), known_(state.points->size() / 3, -1)
    {
    }

    void add(int type)
    {
        int face = 0;
        for (std::size_t i = 0; i < indices_.size(); ++i) {
            if (indices_[i] >= 0) {
                add_corner(i);
                continue;
            }
            end_face(face++, type);
        }
        end_face(face, type); // the last one needs no end
    }

private:
    void add_corner(std::size_t i)
    {
        const auto index = static_cast<std::size_t>(indices_[i]);
        if (index >= known_.size())
            return;
        if (known_[index] < 0) {
            const float *p = state_.points->data() + 3 * index;
            known_[index] = add_place(mesh_, state_, p[0], p[1], p[2]);
        }
        const int uv_index = i < uv_indices_.size() ? uv_indices_[i] : indices_[i];
        const auto uv = static_cast<std::size_t>(std::max(0, uv_index));
        const bool has_uv = uv_index >= 0 && 2 * uv + 1 < state_.uv->size();
        mesh_.add_corner(known_[index], has_uv ? (*state_.uv)[2 * uv] : 0,
                         has_uv ? (*state_.uv)[2 * uv + 1] : 0);
    }

    void end_face(int face, int type)
    {
        mesh_.end_surface(material_of(face), flags_of(state_) | type);
    }

    [[nodiscard]] int material_of(int face) const
    {
        auto place = static_cast<std::size_t>(state_.by_face ? face : 0);
        if (state_.by_face && state_.by_index && place < material_indices_.size())
            place = static_cast<std::size_t>(std::max(0, material_indices_[place]));
        const std::vector<int> &all = *state_.materials;
        return all[std::min(place, all.size() - 1)];
    }

    const vrml_state &state_;
    import_mesh &mesh_;
    std::vector<int> indices_, uv_indices_, material_indices_;
    std::vector<int> known_; // index of a point in the mesh
};

// ---- solids ----

// Points of a ring about the y axis.
std::vector<int> add_ring(import_mesh &mesh, const vrml_state &state, double radius, double y)
{
    std::vector<int> ring;
    for (int i = 0; i < round_steps; ++i) {
        const double angle = 2 * pi * i / round_steps;
        ring.push_back(
            add_place(mesh, state, radius * std::sin(angle), y, radius * std::cos(angle)));
    }
    return ring;
}

// The side between two rings, the upper one first; a ring of one point is a tip.
void add_side(import_mesh &mesh, const vrml_state &state, const std::vector<int> &upper,
              const std::vector<int> &lower, float v_upper, float v_lower)
{
    const int flags = flags_of(state) | SURFACE_SMOOTH;
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
        mesh.end_surface(state.materials->front(), flags);
    }
}

void add_cap(import_mesh &mesh, const vrml_state &state, const std::vector<int> &ring, bool top)
{
    for (int i = 0; i < round_steps; ++i)
        mesh.add_corner(ring[static_cast<std::size_t>(top ? i : round_steps - 1 - i)]);
    mesh.end_surface(state.materials->front(), SURFACE_TWOSIDED);
}

bool has_part(const vrml_fields &fields, const char *part)
{
    return !fields.has("parts") || fields.mentions("parts", "ALL") ||
           fields.mentions("parts", part);
}

void add_cube(const vrml_fields &fields, const vrml_state &state, import_mesh &mesh)
{
    const double x = fields.number("width", 2) / 2.0;
    const double y = fields.number("height", 2) / 2.0;
    const double z = fields.number("depth", 2) / 2.0;
    int corners[8];
    for (int i = 0; i < 8; ++i)
        corners[i] = add_place(mesh, state, (i & 1) != 0 ? x : -x, (i & 2) != 0 ? y : -y,
                               (i & 4) != 0 ? z : -z);
    constexpr int faces[6][4] = {{4, 5, 7, 6}, {1, 0, 2, 3}, {0, 4, 6, 2},
                                 {5, 1, 3, 7}, {6, 7, 3, 2}, {0, 1, 5, 4}};
    constexpr float uv[4][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    for (int face = 0; face < 6; ++face) {
        for (int k = 0; k < 4; ++k)
            mesh.add_corner(corners[faces[face][k]], uv[k][0], uv[k][1]);
        const std::vector<int> &all = *state.materials;
        const auto place = static_cast<std::size_t>(state.by_face ? face : 0);
        mesh.end_surface(all[std::min(place, all.size() - 1)], SURFACE_TWOSIDED);
    }
}

void add_sphere(const vrml_fields &fields, const vrml_state &state, import_mesh &mesh)
{
    const double radius = fields.number("radius", 1);
    std::vector<int> upper = {add_place(mesh, state, 0, radius, 0)};
    for (int row = 1; row <= sphere_rows; ++row) {
        const double angle = pi * row / sphere_rows;
        const std::vector<int> lower =
            row == sphere_rows
                ? std::vector<int>{add_place(mesh, state, 0, -radius, 0)}
                : add_ring(mesh, state, radius * std::sin(angle), radius * std::cos(angle));
        const auto v = [](int i) { return 1 - static_cast<float>(i) / sphere_rows; };
        add_side(mesh, state, upper, lower, v(row - 1), v(row));
        upper = lower;
    }
}

void add_cone(const vrml_fields &fields, const vrml_state &state, import_mesh &mesh)
{
    const double half = fields.number("height", 2) / 2.0;
    const std::vector<int> tip = {add_place(mesh, state, 0, half, 0)};
    const std::vector<int> base = add_ring(mesh, state, fields.number("bottomRadius", 1), -half);
    if (has_part(fields, "SIDES"))
        add_side(mesh, state, tip, base, 1, 0);
    if (has_part(fields, "BOTTOM"))
        add_cap(mesh, state, base, false);
}

void add_cylinder(const vrml_fields &fields, const vrml_state &state, import_mesh &mesh)
{
    const double half = fields.number("height", 2) / 2.0;
    const double radius = fields.number("radius", 1);
    const std::vector<int> top = add_ring(mesh, state, radius, half);
    const std::vector<int> bottom = add_ring(mesh, state, radius, -half);
    if (has_part(fields, "SIDES"))
        add_side(mesh, state, top, bottom, 1, 0);
    if (has_part(fields, "TOP"))
        add_cap(mesh, state, top, true);
    if (has_part(fields, "BOTTOM"))
        add_cap(mesh, state, bottom, false);
}

} // namespace

vrml_matrix vrml_product(const vrml_matrix &a, const vrml_matrix &b)
{
    vrml_matrix out = {};
    for (std::size_t row = 0; row < 4; ++row)
        for (std::size_t column = 0; column < 4; ++column)
            for (std::size_t k = 0; k < 4; ++k)
                out[4 * row + column] += a[4 * row + k] * b[4 * k + column];
    return out;
}

point3_t vrml_place(const vrml_state &state, double x, double y, double z)
{
    const vrml_matrix &m = state.frame;
    const auto at = [&](std::size_t i) {
        return static_cast<float>(x * m[i] + y * m[4 + i] + z * m[8 + i] + m[12 + i]);
    };
    return {at(0), at(1), at(2)};
}

bool vrml_add_shape(std::string_view type, const vrml_fields &fields, const vrml_state &state,
                    import_mesh &mesh)
{
    if (type == "IndexedFaceSet")
        indexed_set(fields, state, mesh).add(SURFACE_POLYGON);
    else if (type == "IndexedLineSet")
        indexed_set(fields, state, mesh).add(SURFACE_LINE);
    else if (type == "Cube")
        add_cube(fields, state, mesh);
    else if (type == "Sphere")
        add_sphere(fields, state, mesh);
    else if (type == "Cone")
        add_cone(fields, state, mesh);
    else if (type == "Cylinder")
        add_cylinder(fields, state, mesh);
    else
        return false;
    return true;
}
