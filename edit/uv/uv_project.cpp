#include "edit/uv/uv_project.h"

#include "base/messages.h"
#include "base/numbers.h"
#include "base/redraw.h"
#include "edit/uv/uv_edit.h"
#include "edit/uv/uv_pack.h"
#include "model/angle.h"
#include "model/bounds.h"
#include "model/vector.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double end_facing = 0.9; // cosine: a cylinder's surface is an end from there on
constexpr double gap = 1.0 / 128;  // between parts that lie side by side

float narrow(double value) { return static_cast<float>(value); }

struct box_t {
    point3_t min, max;
    [[nodiscard]] point3_t middle() const { return point_scale(point_add(min, max), 0.5f); }
};

box_t box_of(const uv_mesh &mesh, const std::vector<int> &surfaces)
{
    box_t box = {};
    bounds_clear(&box.min, &box.max);
    for (const int i : surfaces) {
        for (int c = mesh.corners_begin(i); c < mesh.corners_end(i); ++c)
            bounds_add(mesh.position(c), &box.min, &box.max);
    }
    return box;
}

// Seen along an axis: from its positive end, or with `behind` from the other.
flat_uv planar(const point3_t &p, int axis, bool behind)
{
    const float turn = behind ? -1.0f : 1.0f;
    switch (axis) {
    case 0:
        return {-p.z * turn, p.y};
    case 1:
        return {p.x, -p.z * turn};
    default:
        return {p.x * turn, p.y};
    }
}

// The axis that a normal is nearest to, and whether it points against it.
int facing(const point3_t &normal, bool *behind)
{
    const float n[3] = {normal.x, normal.y, normal.z};
    int axis = 0;
    for (int i = 1; i < 3; ++i) {
        if (std::fabs(n[i]) > std::fabs(n[axis]) + 1e-6f)
            axis = i;
    }
    *behind = n[axis] < 0;
    return axis;
}

// Round the vertical axis: 0 to 1, and the distance from it.
double turns_of(const point3_t &p, const point3_t &middle, double *radius)
{
    const double x = double{p.x} - middle.x, z = double{p.z} - middle.z;
    *radius = std::hypot(x, z);
    const double share = 1 - std::atan2(-x, z) / (2 * pi);
    return share - std::floor(share);
}

class projector {
public:
    projector(const uv_mesh &mesh, const std::vector<int> &surfaces, uv_projection projection)
        : mesh_(mesh), at_(mesh.at), projection_(projection), box_(box_of(mesh, surfaces)),
          middle_(box_.middle())
    {
        for (const int i : surfaces) {
            for (int c = mesh.corners_begin(i); c < mesh.corners_end(i); ++c) {
                double radius = 0;
                turns_of(mesh.position(c), middle_, &radius);
                radius_ = std::max(radius_, radius);
            }
        }
    }

    // Which of the parts that lie side by side the surface belongs to.
    int project(int surface)
    {
        const point3_t &normal = mesh_.normals[surface];
        switch (projection_) {
        case uv_projection::BOX: {
            bool behind = false;
            const int axis = facing(normal, &behind);
            project_planar(surface, axis, behind);
            return axis * 2 + (behind ? 1 : 0);
        }
        case uv_projection::CYLINDER:
            if (std::fabs(double{normal.y}) > end_facing) {
                project_planar(surface, 1, normal.y < 0);
                return normal.y < 0 ? 2 : 1;
            }
            project_round(surface);
            return 0;
        case uv_projection::SPHERE:
            project_round(surface);
            return 0;
        default:
            project_view(surface);
            return 0;
        }
    }
    std::vector<flat_uv> &at() { return at_; }

private:
    void project_planar(int surface, int axis, bool behind)
    {
        for (int c = mesh_.corners_begin(surface); c < mesh_.corners_end(surface); ++c)
            at_[c] = planar(mesh_.position(c), axis, behind);
    }

    // As the flat views show it.
    void project_view(int surface)
    {
        for (int c = mesh_.corners_begin(surface); c < mesh_.corners_end(surface); ++c) {
            const point3_t &p = mesh_.position(c);
            at_[c] = projection_ == uv_projection::PLANAR_X   ? flat_uv{p.z, p.y}
                     : projection_ == uv_projection::PLANAR_Y ? flat_uv{p.x, -p.z}
                                                              : flat_uv{p.x, p.y};
        }
    }

    // u in turns, v: the height in turns of the circumference, or the angle from the lower pole.
    void project_round(int surface)
    {
        const int begin = mesh_.corners_begin(surface), end = mesh_.corners_end(surface);
        double low = 1e30, high = -1e30;
        for (int c = begin; c < end; ++c) {
            double radius = 0;
            const point3_t &p = mesh_.position(c);
            const double u = turns_of(p, middle_, &radius);
            double v = 0;
            if (projection_ == uv_projection::SPHERE)
                v = 0.5 + std::atan2(double{p.y} - middle_.y, radius) / pi;
            else if (radius_ > 0)
                v = (double{p.y} - box_.min.y) / (2 * pi * radius_);
            at_[c] = {narrow(u), narrow(v)};
            if (!on_axis(radius)) {
                low = std::min(low, u);
                high = std::max(high, u);
            }
        }
        repair_round(begin, end, high - low > 0.5);
    }
    [[nodiscard]] bool on_axis(double radius) const { return radius <= radius_ * 1e-6; }

    // Across the seam the corners beyond it are shifted by a turn; corners on the axis stand in the
    // middle of the others.
    void repair_round(int begin, int end, bool crosses)
    {
        double sum = 0;
        int count = 0;
        for (int c = begin; c < end; ++c) {
            double radius = 0;
            turns_of(mesh_.position(c), middle_, &radius);
            if (on_axis(radius))
                continue;
            if (crosses && at_[c].u < 0.5f)
                at_[c].u += 1.0f;
            sum += at_[c].u;
            ++count;
        }
        for (int c = begin; c < end && count > 0; ++c) {
            double radius = 0;
            turns_of(mesh_.position(c), middle_, &radius);
            if (on_axis(radius))
                at_[c].u = narrow(sum / count);
        }
    }

    const uv_mesh &mesh_;
    std::vector<flat_uv> at_;
    uv_projection projection_;
    box_t box_;
    point3_t middle_;
    double radius_ = 0;
};

// Ends and sides of a cylinder in one unit: the side's u is a turn of the circumference.
void scale_part(const uv_mesh &mesh, const std::vector<int> &surfaces, std::vector<flat_uv> &at,
                const uv_matrix &matrix)
{
    for (const int i : surfaces) {
        for (int c = mesh.corners_begin(i); c < mesh.corners_end(i); ++c)
            at[c] = matrix.apply(at[c]);
    }
}

uv_box box_of_part(const uv_mesh &mesh, const std::vector<int> &surfaces,
                   const std::vector<flat_uv> &at)
{
    uv_box box;
    for (const int i : surfaces) {
        for (int c = mesh.corners_begin(i); c < mesh.corners_end(i); ++c)
            box.add(at[c]);
    }
    return box;
}

// All parts into the unit square, in its middle.
void fit_square(const uv_mesh &mesh, const std::vector<int> &surfaces, std::vector<flat_uv> &at,
                uv_extent extent, double aspect)
{
    const uv_box box = box_of_part(mesh, surfaces, at);
    const double width = box.width(), height = box.height();
    if (!(width > 0) && !(height > 0))
        return;
    double su = width > 0 ? 1 / width : 1, sv = height > 0 ? 1 / height : 1;
    if (extent == uv_extent::PROPORTIONS) {
        // A unit is as long in both directions of the picture.
        su = std::min(width > 0 ? 1 / width : 1e30, height > 0 ? 1 / (height * aspect) : 1e30);
        sv = su * aspect;
    }
    const flat_uv m = box.middle();
    scale_part(mesh, surfaces, at, {su, 0, 0, sv, 0.5 - su * m.u, 0.5 - sv * m.v});
}

void lay_out(const uv_mesh &mesh, const std::vector<std::vector<int>> &parts,
             std::vector<flat_uv> &at, double aspect)
{
    std::vector<uv_rectangle> rectangles;
    for (const std::vector<int> &part : parts) {
        const uv_box box = box_of_part(mesh, part, at);
        rectangles.push_back({box.width(), box.height()});
    }
    const uv_layout layout = uv_pack_rectangles(rectangles, aspect, gap, false);
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const uv_box box = box_of_part(mesh, parts[i], at);
        const double su = layout.scale, sv = layout.scale * aspect;
        scale_part(
            mesh, parts[i], at,
            {su, 0, 0, sv, layout.places[i].u - su * box.u0, layout.places[i].v - sv * box.v0});
    }
}

constexpr const char *names[] = {"planar_x", "planar_y", "planar_z", "box", "cylinder", "sphere"};

} // namespace

bool uv_projection_of(std::string_view name, uv_projection *projection)
{
    for (std::size_t i = 0; i < std::size(names); ++i) {
        if (name == names[i]) {
            *projection = static_cast<uv_projection>(i);
            return true;
        }
    }
    return false;
}

std::vector<flat_uv> uv_project(const uv_mesh &mesh, const std::vector<int> &surfaces,
                                uv_projection projection, uv_extent extent, double aspect)
{
    projector work(mesh, surfaces, projection);
    std::vector<std::vector<int>> parts(6);
    for (const int i : surfaces)
        parts[work.project(i)].push_back(i);
    std::erase_if(parts, [](const std::vector<int> &part) { return part.empty(); });
    std::vector<flat_uv> &at = work.at();
    if (extent == uv_extent::UNITS || parts.empty())
        return at;
    if (parts.size() > 1) {
        if (projection == uv_projection::CYLINDER) {
            // The ends get the side's unit, the circumference.
            const box_t box = box_of(mesh, surfaces);
            const double size = std::max(box.max.x - box.min.x, box.max.z - box.min.z);
            for (std::size_t i = 0; i < parts.size() && size > 0; ++i) {
                if (std::fabs(double{mesh.normals[parts[i].front()].y}) > end_facing)
                    scale_part(mesh, parts[i], at,
                               uv_scaling(1 / (pi * size), 1 / (pi * size), {0, 0}));
            }
        }
        lay_out(mesh, parts, at, aspect);
    }
    if (parts.size() == 1 || extent == uv_extent::SQUARE)
        fit_square(mesh, surfaces, at, extent, aspect);
    return at;
}

// ---- commands ----

void command_uv_project(int count, const char *const *words)
{
    constexpr const char *label = "project texture coordinates";
    uv_projection projection = uv_projection::BOX;
    const int extent = count > 1 ? int_of(words[1]) : 1;
    if (!uv_projection_of(words[0], &projection)) {
        display_message("%s - no projection '%s'", label, words[0]);
        return;
    }
    if (extent < 0 || extent > 2) {
        display_message("%s - 0 units, 1 proportions or 2 square", label);
        return;
    }
    const uv_state &state = uv_editor();
    const std::vector<int> surfaces = uv_chosen_surfaces(state);
    if (surfaces.empty()) {
        display_message("%s - nothing selected", label);
        return;
    }
    uv_commit(label, uv_project(state.mesh, surfaces, projection, static_cast<uv_extent>(extent),
                                uv_picture_size().aspect()));
    display_message("%s - %d surfaces", label, static_cast<int>(surfaces.size()));
    display_status();
}
