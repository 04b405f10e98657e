#include "fileio/vrml2_shapes.h"

#include "fileio/vrml2_grids.h"
#include "fileio/vrml_solids.h"
#include "model/palette.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float smooth_from = 1.0f; // crease angle, radians

// ---- colours ----

// The palette entries of one shape: the material's own, or others in its place.
class palette_of_shape {
public:
    palette_of_shape(const vrml2_look &look, const std::vector<float> &colours, bool lines)
        : look_(look), colours_(colours)
    {
        if (!lines)
            return;
        // Lines show the colour that they give off.
        float *glow = look_.colours.emissive;
        if (look.lit && std::any_of(glow, glow + 3, [](float c) { return c > 0; })) {
            std::copy_n(glow, 3, look_.colours.diffuse);
            std::fill_n(glow, 3, 0.0f);
        }
    }

    int plain()
    {
        if (plain_ < 0)
            plain_ = entry(look_.colours.diffuse);
        return plain_;
    }

    [[nodiscard]] bool has_colours() const { return !colours_.empty(); }

    int colour(std::size_t index)
    {
        if (3 * index + 2 >= colours_.size())
            return plain();
        const std::array<float, 3> rgb = {colours_[3 * index], colours_[3 * index + 1],
                                          colours_[3 * index + 2]};
        return entry_of(rgb);
    }

    // White, where the points have colours, which are multiplied by it.
    int white() { return entry_of({1, 1, 1}); }

    // The place of a corner's colour as bytes.
    [[nodiscard]] bool bytes(std::size_t index, unsigned char *rgb) const
    {
        if (3 * index + 2 >= colours_.size())
            return false;
        for (std::size_t i = 0; i < 3; ++i) {
            const float value = colours_[3 * index + i];
            rgb[i] = static_cast<unsigned char>(value > 0 ? std::min(value, 1.0f) * 255 + 0.5f : 0);
        }
        return true;
    }

private:
    int entry_of(const std::array<float, 3> &rgb)
    {
        const auto [found, fresh] = known_.emplace(rgb, 0);
        if (fresh)
            found->second = entry(rgb.data());
        return found->second;
    }

    int entry(const float *rgb)
    {
        material_values m = look_.colours;
        std::copy_n(rgb, 3, m.diffuse);
        if (!look_.name.empty())
            vesk_material_set_name(&m, look_.name.c_str());
        return vesk_palette_get_new_material_index(&m);
    }

    vrml2_look look_;
    const std::vector<float> &colours_;
    int plain_ = -1;
    std::map<std::array<float, 3>, int> known_;
};

// Gives a point the colour of a corner.
void colour_point(const palette_of_shape &palette, std::size_t index, int point, vrml2_mesh *out,
                  std::vector<bool> *known)
{
    unsigned char rgb[3];
    if (!palette.bytes(index, rgb))
        return;
    const auto place = static_cast<std::size_t>(point);
    out->colours.resize(std::max(out->colours.size(), 3 * (place + 1)), 255);
    known->resize(std::max(known->size(), place + 1));
    unsigned char *to = out->colours.data() + 3 * place;
    out->mixed_colours += (*known)[place] && !std::equal(rgb, rgb + 3, to) ? 1 : 0;
    (*known)[place] = true;
    std::copy_n(rgb, 3, to);
}

// ---- indexed sets ----

// The indices of one list for each surface of another, which ends them by -1.
struct corner_t {
    std::size_t place; // among the indices
    int point;
};

class indexed_set {
public:
    indexed_set(const vrml2_fields &from, const vrml2_look &look, const vrml_matrix &frame,
                vrml2_account *account, vrml2_mesh *out)
        : from_(from), look_(look), account_(*account), out_(*out),
          lines_(vrml2_only_lines(from.type())), points_(from.child("coord").numbers("point")),
          colours_(from.child("color").numbers("color")), palette_(look, colours_, lines_),
          frame_(frame)
    {
    }

    void run()
    {
        indices_ = from_.integers("coordIndex");
        if (!account_.take_points(static_cast<long long>(points_.size() / 3 + indices_.size())))
            return;
        add_points();
        colour_indices_ = from_.integers("colorIndex");
        by_vertex_ = from_.flag("colorPerVertex", true);
        if (from_.type() == "PointSet") {
            std::fill(out_.loose.begin(), out_.loose.end(), true);
            for (int i = 0; palette_.has_colours() && i < out_.mesh.num_points(); ++i)
                colour_point(palette_, static_cast<std::size_t>(i), i, &out_, &coloured_);
            return;
        }
        if (!lines_)
            read_face_fields();
        points_have_colours_ =
            !lines_ && palette_.has_colours() && by_vertex_ && has_mixed_surface();
        each_surface([this](std::vector<corner_t> *corners) {
            end(corners);
            return true;
        });
    }

private:
    // Calls `act` with the corners of each surface until it returns false.
    template <class Act>
    void each_surface(Act &&act)
    {
        std::vector<corner_t> corners;
        for (std::size_t i = 0; i <= indices_.size(); ++i) { // the last one needs no end
            if (i < indices_.size() && indices_[i] >= 0) {
                if (static_cast<std::size_t>(indices_[i]) < points_.size() / 3)
                    corners.push_back({i, indices_[i]});
                continue;
            }
            if (!act(&corners))
                return;
            corners.clear();
        }
    }

    // Whether the corners of some surface have several colours.
    bool has_mixed_surface()
    {
        bool mixed = false;
        each_surface([&](const std::vector<corner_t> *corners) {
            unsigned char first[3], other[3];
            for (const corner_t &corner : *corners) {
                const int a = index_at(colour_indices_, corners->front());
                const int b = index_at(colour_indices_, corner);
                mixed = mixed || (a != b && a >= 0 && b >= 0 &&
                                  palette_.bytes(static_cast<std::size_t>(a), first) &&
                                  palette_.bytes(static_cast<std::size_t>(b), other) &&
                                  !std::equal(first, first + 3, other));
            }
            return !mixed;
        });
        return mixed;
    }

    void add_points()
    {
        if (out_.mesh.num_points() > 0)
            return; // from an earlier shape of the same list
        for (std::size_t i = 0; i + 2 < points_.size(); i += 3) {
            const point3_t p = vrml_place(frame_, points_[i], points_[i + 1], points_[i + 2]);
            out_.mesh.add_point(p.x, p.y, p.z);
        }
        out_.loose.resize(points_.size() / 3);
    }

    void read_face_fields()
    {
        turned_ = !from_.flag("ccw", true) != vrml_mirrors(frame_);
        twosided_ = !from_.flag("solid", true);
        smooth_ = from_.number("creaseAngle", 0) > smooth_from;
        normals_ = from_.child("normal").numbers("vector");
        normal_indices_ = from_.integers("normalIndex");
        if (!from_.flag("normalPerVertex", true)) {
            smooth_ = smooth_ && normals_.empty();
            normals_.clear();
        }
        uv_ = from_.child("texCoord").numbers("point");
        uv_indices_ = from_.integers("texCoordIndex");
        if (uv_.empty() && !look_.picture.empty())
            spread_picture();
    }

    // Without coordinates a picture lies along the two longest sides of the shape's box.
    void spread_picture()
    {
        double low[3] = {0, 0, 0}, size[3] = {0, 0, 0};
        for (std::size_t k = 0; k < 3 && points_.size() >= 3; ++k) {
            double high = low[k] = points_[k];
            for (std::size_t i = k; i < points_.size(); i += 3) {
                low[k] = std::min<double>(low[k], points_[i]);
                high = std::max<double>(high, points_[i]);
            }
            size[k] = high - low[k];
        }
        std::size_t order[3] = {0, 1, 2};
        std::stable_sort(order, order + 3,
                         [&](std::size_t a, std::size_t b) { return size[a] > size[b]; });
        const double across = size[order[0]] > 0 ? size[order[0]] : 1;
        for (std::size_t i = 0; i + 2 < points_.size(); i += 3)
            for (std::size_t k = 0; k < 2; ++k)
                uv_.push_back(static_cast<float>((points_[i + order[k]] - low[order[k]]) / across));
        uv_indices_.clear();
    }

    void end(std::vector<corner_t> *corners)
    {
        const bool closed =
            lines_ && corners->size() > 3 && corners->front().point == corners->back().point;
        if (closed)
            corners->pop_back();
        if (turned_)
            std::reverse(corners->begin(), corners->end());
        for (const corner_t &corner : *corners)
            add_corner(corner);
        const int shape = closed ? int{SURFACE_CLOSED_LINE} : lines_ ? int{SURFACE_LINE} : 0;
        out_.mesh.end_surface(material(*corners),
                              shape | (twosided_ || lines_ ? SURFACE_TWOSIDED : 0) |
                                  (!lines_ && is_smooth(*corners) ? SURFACE_SMOOTH : 0));
        ++surface_;
    }

    void add_corner(const corner_t &corner)
    {
        const int at = index_at(uv_indices_, corner);
        const auto place = 2 * static_cast<std::size_t>(std::max(at, 0));
        if (at < 0 || place + 1 >= uv_.size()) {
            out_.mesh.add_corner(corner.point);
            return;
        }
        const auto &m = look_.placed;
        const double u = uv_[place];
        const double v = uv_[place + 1];
        out_.mesh.add_corner(corner.point, static_cast<float>(m[0] * u + m[1] * v + m[2]),
                             static_cast<float>(m[3] * u + m[4] * v + m[5]));
    }

    // Where the other list has no indices those of the points count.
    static int index_at(const std::vector<int> &indices, const corner_t &corner)
    {
        if (indices.empty())
            return corner.point;
        return corner.place < indices.size() ? indices[corner.place] : -1;
    }

    int material(const std::vector<corner_t> &corners)
    {
        if (!palette_.has_colours())
            return palette_.plain();
        if (!by_vertex_) {
            std::size_t index = surface_;
            if (index < colour_indices_.size())
                index = static_cast<std::size_t>(std::max(0, colour_indices_[index]));
            return palette_.colour(index);
        }
        for (const corner_t &corner : corners)
            if (const int at = index_at(colour_indices_, corner); at >= 0 && points_have_colours_)
                colour_point(palette_, static_cast<std::size_t>(at), corner.point, &out_,
                             &coloured_);
        const int first = corners.empty() ? -1 : index_at(colour_indices_, corners[0]);
        return points_have_colours_ ? palette_.white()
               : first < 0          ? palette_.plain()
                                    : palette_.colour(static_cast<std::size_t>(first));
    }

    // With normals: those of some corner are not the face's.
    bool is_smooth(const std::vector<corner_t> &corners) const
    {
        if (normals_.empty())
            return smooth_;
        double sum[3] = {}; // Newell's
        for (std::size_t k = 0; k < corners.size(); ++k) {
            const float *p = points_.data() + 3 * corners[k].point;
            const float *q = points_.data() + 3 * corners[(k + 1) % corners.size()].point;
            for (std::size_t i = 0; i < 3; ++i) {
                const std::size_t a = (i + 1) % 3, b = (i + 2) % 3;
                sum[i] += (static_cast<double>(p[a]) - q[a]) * (static_cast<double>(p[b]) + q[b]);
            }
        }
        const double length = std::hypot(sum[0], sum[1], sum[2]);
        for (const corner_t &corner : corners) {
            const int at = index_at(normal_indices_, corner);
            if (at < 0 || 3 * static_cast<std::size_t>(at) + 2 >= normals_.size())
                continue;
            const float *n = normals_.data() + 3 * at;
            const double size = std::hypot(static_cast<double>(n[0]), n[1], n[2]);
            const double along = n[0] * sum[0] + n[1] * sum[1] + n[2] * sum[2];
            if (length > 0 && size > 0 && std::abs(along) < 0.9997 * size * length)
                return true; // by more than a degree and a half
        }
        return false;
    }

    const vrml2_fields &from_;
    const vrml2_look &look_;
    vrml2_account &account_;
    vrml2_mesh &out_;
    const bool lines_;
    const std::vector<float> points_, colours_;
    palette_of_shape palette_;
    const vrml_matrix &frame_;
    std::vector<float> normals_, uv_;
    std::vector<int> indices_, colour_indices_, normal_indices_, uv_indices_;
    bool by_vertex_ = true, turned_ = false, twosided_ = false, smooth_ = false;
    bool points_have_colours_ = false;
    std::vector<bool> coloured_; // points that have theirs
    std::size_t surface_ = 0;
};

void add_grid(const vrml2_fields &from, const vrml2_grid &grid, const vrml2_look &look,
              const vrml_matrix &frame, vrml2_mesh *out)
{
    const std::vector<float> colours = from.child("color").numbers("color");
    palette_of_shape palette(look, colours, false);
    const bool by_vertex = from.flag("colorPerVertex", true);
    const bool turned = !from.flag("ccw", true) != vrml_mirrors(frame);
    const int flags = (from.flag("solid", true) ? 0 : SURFACE_TWOSIDED) |
                      (from.number("creaseAngle", 0) > smooth_from ? SURFACE_SMOOTH : 0);
    for (const auto &p : grid.points) {
        const point3_t at = vrml_place(frame, p[0], p[1], p[2]);
        out->mesh.add_point(at.x, at.y, at.z);
    }
    const auto &m = look.placed;
    std::size_t first = 0;
    for (std::size_t face = 0; face < grid.ends.size(); first = grid.ends[face++]) {
        for (std::size_t i = first; i < grid.ends[face]; ++i) {
            const auto &c = grid.corners[turned ? grid.ends[face] - 1 - (i - first) : i];
            out->mesh.add_corner(c.point, static_cast<float>(m[0] * c.u + m[1] * c.v + m[2]),
                                 static_cast<float>(m[3] * c.u + m[4] * c.v + m[5]));
        }
        out->mesh.end_surface(!palette.has_colours() ? palette.plain()
                              : by_vertex            ? palette.white()
                                                     : palette.colour(face),
                              flags);
    }
    std::vector<bool> known;
    for (std::size_t i = 0; palette.has_colours() && by_vertex && i < grid.points.size(); ++i)
        colour_point(palette, i, static_cast<int>(i), out, &known);
}

} // namespace

std::string_view vrml2_coordinates(const vrml2_fields &geometry)
{
    return geometry.child("coord").raw("point");
}

bool vrml2_only_lines(std::string_view type)
{
    return type == "IndexedLineSet" || type == "PointSet";
}

bool vrml2_add_shape(const vrml2_fields &geometry, const vrml2_look &look, const vrml_matrix &frame,
                     vrml2_account *account, vrml2_mesh *out)
{
    const std::string_view type = geometry.type();
    if (type == "IndexedFaceSet" || type == "IndexedLineSet" || type == "PointSet") {
        indexed_set(geometry, look, frame, account, out).run();
        return true;
    }
    if (type == "ElevationGrid" || type == "Extrusion") {
        const vrml2_grid grid = type == "Extrusion" ? vrml2_extrusion(geometry, account)
                                                    : vrml2_elevations(geometry, account);
        add_grid(geometry, grid, look, frame, out);
        return true;
    }
    const std::vector<float> none;
    palette_of_shape palette(look, none, false);
    const vrml_brush brush = {out->mesh, frame, {palette.plain()}};
    const vrml_parts parts = {geometry.flag("side", true), geometry.flag("top", true),
                              geometry.flag("bottom", true)};
    const double height = geometry.number("height", 2);
    if (!account->take_points(256))
        return true;
    if (type == "Box") {
        std::vector<float> size = geometry.numbers("size");
        size.resize(3, 2);
        vrml_add_box(brush, size[0], size[1], size[2]);
    } else if (type == "Sphere") {
        vrml_add_sphere(brush, geometry.number("radius", 1));
    } else if (type == "Cone") {
        vrml_add_cone(brush, geometry.number("bottomRadius", 1), height, parts);
    } else if (type == "Cylinder") {
        vrml_add_cylinder(brush, geometry.number("radius", 1), height, parts);
    } else {
        return false;
    }
    return true;
}
