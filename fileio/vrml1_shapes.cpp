#include "fileio/vrml1_shapes.h"

#include "fileio/vrml_solids.h"
#include "model/palette.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float smooth_from = 1.0f; // radians between faces
constexpr float colour_steps = 15;  // of a mean of corners' colours, so that they stay few

// The mean colour of several palette entries, with the other values of the first.
int mean_material(const std::vector<int> &entries)
{
    material m = *vesk_palette_get_material(entries[0]);
    m.name = nullptr;
    m.properties = nullptr;
    for (int i = 0; i < 3; ++i) {
        float sum = 0;
        for (const int entry : entries)
            sum += vesk_palette_get_material(entry)->diffuse[i];
        m.diffuse[i] =
            std::round(sum / static_cast<float>(entries.size()) * colour_steps) / colour_steps;
    }
    return vesk_palette_get_new_material_index(&m);
}

// Faces and lines whose corners are given by indices; -1 ends one.
class indexed_set {
public:
    indexed_set(const vrml_fields &fields, const vrml_state &state, bool lines, vrml1_mesh *out)
        : state_(state), out_(*out), lines_(lines), indices_(fields.integers("coordIndex")),
          uv_indices_(fields.integers("textureCoordIndex")),
          material_indices_(fields.integers("materialIndex")),
          turned_(!lines && state.clockwise != vrml_mirrors(state.frame))
    {
        const bool smooth = state.has_normals || state.crease_angle > smooth_from;
        flags_ = lines ? int{SURFACE_TWOSIDED}
                       : (state.solid ? 0 : SURFACE_TWOSIDED) | (smooth ? SURFACE_SMOOTH : 0);
    }

    void add()
    {
        std::vector<std::size_t> corners; // places among the indices
        const std::size_t num_points = state_.points->size() / 3;
        for (std::size_t i = 0; i < indices_.size(); ++i) {
            if (indices_[i] < 0)
                end_surface(&corners);
            else if (static_cast<std::size_t>(indices_[i]) < num_points)
                corners.push_back(i);
        }
        end_surface(&corners); // the last one needs no end
    }

private:
    void end_surface(std::vector<std::size_t> *corners)
    {
        const bool closed = lines_ && corners->size() > 3 &&
                            indices_[corners->front()] == indices_[corners->back()];
        if (closed)
            corners->pop_back();
        if (turned_)
            std::reverse(corners->begin(), corners->end());
        for (const std::size_t i : *corners)
            add_corner(i);
        out_.mesh.end_surface(material_of(*corners), flags_ | (closed   ? int{SURFACE_CLOSED_LINE}
                                                               : lines_ ? int{SURFACE_LINE}
                                                                        : 0));
        corners->clear();
        ++face_;
    }

    void add_corner(std::size_t i)
    {
        const int uv_index = i < uv_indices_.size() ? uv_indices_[i] : indices_[i];
        const auto uv = static_cast<std::size_t>(std::max(0, uv_index));
        const bool has_uv = uv_index >= 0 && 2 * uv + 1 < state_.uv->size();
        out_.mesh.add_corner(indices_[i], has_uv ? (*state_.uv)[2 * uv] : 0,
                             has_uv ? (*state_.uv)[2 * uv + 1] : 0);
    }

    // Without indices materials are used up, one for each face or corner.
    [[nodiscard]] int material_at(std::size_t place) const
    {
        if (state_.by_index && place < material_indices_.size())
            place = static_cast<std::size_t>(std::max(0, material_indices_[place]));
        const std::vector<int> &all = *state_.materials;
        return all[std::min(place, all.size() - 1)];
    }

    int material_of(const std::vector<std::size_t> &corners)
    {
        if (state_.binding != vrml_state::VERTEX || corners.empty())
            return state_.binding == vrml_state::FACE ? material_at(face_)
                                                      : state_.materials->front();
        std::vector<int> entries;
        for (const std::size_t i : corners)
            entries.push_back(state_.by_index ? material_by_corner(i) : material_at(i - face_));
        if (std::all_of(entries.begin(), entries.end(),
                        [&](int entry) { return entry == entries[0]; }))
            return entries[0];
        ++out_.mixed_colours;
        return mean_material(entries);
    }
    // Without materialIndex the indices of the points count.
    [[nodiscard]] int material_by_corner(std::size_t i) const
    {
        const int place = i < material_indices_.size() ? material_indices_[i] : indices_[i];
        const std::vector<int> &all = *state_.materials;
        return all[std::min(static_cast<std::size_t>(std::max(0, place)), all.size() - 1)];
    }

    const vrml_state &state_;
    vrml1_mesh &out_;
    const bool lines_;
    std::vector<int> indices_, uv_indices_, material_indices_;
    const bool turned_;
    int flags_;
    std::size_t face_ = 0;
};

// All points of the state, once.
void add_points(const vrml_state &state, vrml1_mesh *out)
{
    if (out->mesh.num_points() > 0)
        return;
    const std::vector<float> &points = *state.points;
    for (std::size_t i = 0; i + 2 < points.size(); i += 3) {
        const point3_t p = vrml_place(state.frame, points[i], points[i + 1], points[i + 2]);
        out->mesh.add_point(p.x, p.y, p.z);
    }
    out->loose.resize(points.size() / 3);
}

void add_point_set(const vrml_fields &fields, vrml1_mesh *out)
{
    const std::vector<int> start = fields.integers("startIndex");
    const std::vector<int> number = fields.integers("numPoints");
    const auto all = static_cast<long>(out->loose.size());
    const long first = std::clamp<long>(start.empty() ? 0 : start[0], 0, all);
    const long count = number.empty() || number[0] < 0 ? all : number[0];
    for (long i = first; i < std::min(first + count, all); ++i)
        out->loose[static_cast<std::size_t>(i)] = true;
}

bool has_part(const vrml_fields &fields, const char *part)
{
    return !fields.has("parts") || fields.mentions("parts", "ALL") ||
           fields.mentions("parts", part);
}

} // namespace

bool vrml_has_points(std::string_view type)
{
    return type == "IndexedFaceSet" || type == "IndexedLineSet" || type == "PointSet";
}

bool vrml_add_shape(std::string_view type, const vrml_fields &fields, const vrml_state &state,
                    vrml1_mesh *out)
{
    if (vrml_has_points(type)) {
        add_points(state, out);
        if (type == "PointSet")
            add_point_set(fields, out);
        else
            indexed_set(fields, state, type == "IndexedLineSet", out).add();
        return true;
    }
    std::vector<int> materials = *state.materials;
    if (state.binding == vrml_state::OVERALL)
        materials.resize(1);
    const vrml_brush brush = {out->mesh, state.frame, std::move(materials)};
    const vrml_parts parts = {has_part(fields, "SIDES"), has_part(fields, "TOP"),
                              has_part(fields, "BOTTOM")};
    const auto number = [&](const char *name, float fallback) {
        return fields.number(name, fallback);
    };
    if (type == "Cube")
        vrml_add_box(brush, number("width", 2), number("height", 2), number("depth", 2));
    else if (type == "Sphere")
        vrml_add_sphere(brush, number("radius", 1));
    else if (type == "Cone")
        vrml_add_cone(brush, number("bottomRadius", 1), number("height", 2), parts);
    else if (type == "Cylinder")
        vrml_add_cylinder(brush, number("radius", 1), number("height", 2), parts);
    else
        return false;
    return true;
}
