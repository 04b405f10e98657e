#include "edit/uv/uv_edit.h"

#include "base/messages.h"
#include "base/numbers.h"
#include "base/redraw.h"
#include "model/angle.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>
#include <string_view>
#include <utility>

namespace {

float narrow(double value) { return static_cast<float>(value); }

// Commits, and reports the result.
void finish(const char *label, std::vector<flat_uv> at)
{
    const int changed = uv_commit(label, std::move(at));
    display_message("%s - %d surfaces", label, changed);
    display_status();
}

bool refuse(const char *label, const uv_state &state)
{
    if (state.mesh.num_surfaces() > 0)
        return false;
    display_message("%s - nothing selected", label);
    return true;
}

// Applies a matrix that depends on the box of the moving corners.
template <class MatrixOf>
void transform(const char *label, MatrixOf &&matrix_of)
{
    const uv_state &state = uv_editor();
    if (refuse(label, state))
        return;
    const std::vector<char> moving = uv_moving_corners(state);
    finish(label, uv_transformed(state.mesh.at, moving, matrix_of(uv_box_of(state.mesh, moving))));
}

// ---- align ----

struct side_row {
    const char *name;
    bool vertical; // v is changed
    float share;   // of the box: 0 its lower side, 1 its upper one
};
constexpr side_row sides[] = {{"left", false, 0},  {"right", false, 1}, {"centre", false, 0.5},
                              {"bottom", true, 0}, {"top", true, 1},    {"middle", true, 0.5}};

float along(const uv_box &box, const side_row &side)
{
    const float low = side.vertical ? box.v0 : box.u0;
    const float high = side.vertical ? box.v1 : box.u1;
    return side.share == 1 ? high : low + (high - low) * side.share;
}

std::vector<flat_uv> aligned(const uv_state &state, const side_row &side)
{
    std::vector<flat_uv> at = state.mesh.at;
    const std::vector<char> moving = uv_moving_corners(state);
    const float line = along(uv_box_of(state.mesh, moving), side);
    if (state.mode == uv_mode::CORNER) {
        for (std::size_t c = 0; c < at.size(); ++c) {
            if (moving[c] != 0)
                (side.vertical ? at[c].v : at[c].u) = line;
        }
        return at;
    }
    const std::vector<uv_box> boxes = uv_island_boxes(state.mesh, state.islands);
    std::vector<char> chosen(boxes.size(), 0);
    for (const int island : uv_chosen_islands(state))
        chosen[island] = 1;
    // Whole islands move, so their joint box counts.
    uv_box all;
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        if (chosen[i] != 0) {
            all.add({boxes[i].u0, boxes[i].v0});
            all.add({boxes[i].u1, boxes[i].v1});
        }
    }
    const float to = along(all, side);
    for (int i = 0; i < state.mesh.num_surfaces(); ++i) {
        const auto island = state.islands.island[i];
        if (chosen[island] == 0)
            continue;
        const float by = to - along(boxes[island], side);
        for (int c = state.mesh.corners_begin(i); c < state.mesh.corners_end(i); ++c)
            (side.vertical ? at[c].v : at[c].u) += by;
    }
    return at;
}

// ---- weld ----

// Those of the corners order[first] .. order[end - 1], sorted by u, that lie within the distance of
// the first of them that is left are moved to their middle, and so on.
void weld_near(const std::vector<flat_uv> &from, const std::vector<int> &order, std::size_t first,
               std::size_t end, double distance, std::vector<flat_uv> &at)
{
    std::vector<char> done(end - first, 0);
    std::vector<int> near;
    for (std::size_t i = first; i < end; ++i) {
        if (done[i - first] != 0)
            continue;
        const flat_uv centre = from[order[i]];
        double u = 0, v = 0;
        bool differ = false;
        near.clear();
        for (std::size_t j = i; j < end; ++j) {
            const flat_uv &p = from[order[j]];
            if (double{p.u} - centre.u > distance)
                break;
            if (done[j - first] != 0 ||
                std::hypot(double{p.u} - centre.u, double{p.v} - centre.v) > distance)
                continue;
            done[j - first] = 1;
            near.push_back(order[j]);
            u += p.u;
            v += p.v;
            differ = differ || !(p == centre);
        }
        const auto count = static_cast<double>(near.size());
        for (const int c : near) {
            if (differ)
                at[c] = {narrow(u / count), narrow(v / count)};
        }
    }
}

// The chosen corners of each vertex.
std::vector<flat_uv> welded(const uv_state &state, double distance)
{
    const uv_mesh &mesh = state.mesh;
    std::vector<flat_uv> at = mesh.at;
    const std::vector<char> moving = uv_moving_corners(state);
    std::vector<int> order;
    for (int c = 0; c < mesh.num_corners(); ++c) {
        const flat_uv &p = mesh.at[c];
        if (moving[c] != 0 && std::isfinite(p.u) && std::isfinite(p.v))
            order.push_back(c);
    }
    const auto key = [&](int c) { return std::pair(mesh.vertices[c], mesh.at[c].u); };
    std::stable_sort(order.begin(), order.end(), [&](int a, int b) { return key(a) < key(b); });
    for (std::size_t first = 0, end = 0; first < order.size(); first = end) {
        const int vertex = mesh.vertices[order[first]];
        while (end < order.size() && mesh.vertices[order[end]] == vertex)
            ++end;
        weld_near(mesh.at, order, first, end, distance, at);
    }
    return at;
}

// ---- split ----

// A part that is split off as one: the chosen surfaces that are joined, or each chosen corner by
// itself. Its corners that are joined to others move a pixel towards the middle of their surfaces.
std::vector<flat_uv> split(const uv_state &state)
{
    const uv_mesh &mesh = state.mesh;
    const uv_pixels pixels = uv_picture_size();
    const bool each_corner = state.mode == uv_mode::CORNER;
    std::vector<int> inside(state.islands.num_points, 0);
    std::vector<int> all(state.islands.num_points, 0);
    std::vector<double> sum_u(inside.size(), 0), sum_v(inside.size(), 0);
    std::vector<flat_uv> middle(mesh.at.size());
    for (int i = 0; i < mesh.num_surfaces(); ++i) {
        double u = 0, v = 0;
        const int begin = mesh.corners_begin(i), end = mesh.corners_end(i);
        for (int c = begin; c < end; ++c) {
            u += mesh.at[c].u / (end - begin);
            v += mesh.at[c].v / (end - begin);
        }
        for (int c = begin; c < end; ++c) {
            const auto point = state.islands.point[c];
            middle[c] = {narrow(u), narrow(v)};
            ++all[point];
            if (state.chosen[c] != 0) {
                ++inside[point];
                sum_u[point] += u;
                sum_v[point] += v;
            }
        }
    }
    std::vector<flat_uv> at = mesh.at;
    for (int c = 0; c < mesh.num_corners(); ++c) {
        const auto point = state.islands.point[c];
        const bool joined = each_corner ? all[point] > 1 : inside[point] < all[point];
        if (state.chosen[c] == 0 || !joined)
            continue;
        const flat_uv from = mesh.at[c];
        const double to_u = each_corner ? middle[c].u : sum_u[point] / inside[point];
        const double to_v = each_corner ? middle[c].v : sum_v[point] / inside[point];
        const double du = (to_u - from.u) * pixels.width, dv = (to_v - from.v) * pixels.height;
        const double length = std::hypot(du, dv);
        const double share = length > 0 ? std::min(1.0 / length, 0.25) : 0;
        at[c] = {narrow(from.u + (to_u - from.u) * share),
                 narrow(from.v + (to_v - from.v) * share)};
    }
    return at;
}

} // namespace

flat_uv uv_matrix::apply(const flat_uv &p) const
{
    return {narrow(a * p.u + b * p.v + e), narrow(c * p.u + d * p.v + f)};
}

uv_matrix uv_translation(double du, double dv) { return {1, 0, 0, 1, du, dv}; }

uv_matrix uv_rotation(double degrees, const flat_uv &centre, double aspect)
{
    // Right angles are exact.
    const double quarter = degrees / 90;
    const bool right = quarter == std::floor(quarter);
    const double angle = degrees * pi / 180;
    const double sine = right ? std::round(std::sin(angle)) : std::sin(angle);
    const double cosine = right ? std::round(std::cos(angle)) : std::cos(angle);
    uv_matrix m = {cosine, -sine / aspect, sine * aspect, cosine, 0, 0};
    m.e = centre.u - m.a * centre.u - m.b * centre.v;
    m.f = centre.v - m.c * centre.u - m.d * centre.v;
    return m;
}

uv_matrix uv_scaling(double su, double sv, const flat_uv &centre)
{
    return {su, 0, 0, sv, centre.u * (1 - su), centre.v * (1 - sv)};
}

uv_matrix uv_between_boxes(const uv_box &from, const uv_box &to)
{
    const auto factor = [](double old_size, double new_size) {
        return old_size != 0 ? new_size / old_size : 1.0;
    };
    const double su = factor(from.width(), to.width());
    const double sv = factor(from.height(), to.height());
    return {su, 0, 0, sv, to.u0 - su * from.u0, to.v0 - sv * from.v0};
}

std::vector<flat_uv> uv_transformed(const std::vector<flat_uv> &from,
                                    const std::vector<char> &moving, const uv_matrix &matrix)
{
    std::vector<flat_uv> at = from;
    for (std::size_t c = 0; c < at.size(); ++c) {
        if (moving[c] != 0)
            at[c] = matrix.apply(at[c]);
    }
    return at;
}

float uv_snapped(float value, double pixels) { return narrow(std::round(value * pixels) / pixels); }

// ---- commands ----

void command_uv_move(float du, float dv)
{
    transform("move texture coordinates", [&](const uv_box &) { return uv_translation(du, dv); });
}

void command_uv_rotate(float degrees)
{
    transform("rotate texture coordinates", [&](const uv_box &box) {
        return uv_rotation(degrees, box.middle(), uv_picture_size().aspect());
    });
}

void command_uv_rotate_90() { command_uv_rotate(90); }

void command_uv_scale(float su, float sv)
{
    transform("scale texture coordinates",
              [&](const uv_box &box) { return uv_scaling(su, sv, box.middle()); });
}

void command_uv_flip(const char *axis)
{
    const std::string_view name = axis;
    if (name != "u" && name != "v") {
        display_message("flip texture coordinates - no axis '%s'", axis);
        return;
    }
    transform("flip texture coordinates", [&](const uv_box &box) {
        return uv_scaling(name == "u" ? -1 : 1, name == "v" ? -1 : 1, box.middle());
    });
}

void command_uv_fit(int keep)
{
    transform("fit texture coordinates", [&](const uv_box &box) {
        uv_box to;
        to.add({0, 0});
        to.add({1, 1});
        const uv_pixels pixels = uv_picture_size();
        const double width = box.width() * pixels.width, height = box.height() * pixels.height;
        if (keep != 0 && (width > 0 || height > 0)) {
            const double scale = std::min(width > 0 ? pixels.width / width : 1e30,
                                          height > 0 ? pixels.height / height : 1e30);
            const flat_uv half = {narrow(box.width() * scale / 2),
                                  narrow(box.height() * scale / 2)};
            to = {};
            to.add({0.5f - half.u, 0.5f - half.v});
            to.add({0.5f + half.u, 0.5f + half.v});
        }
        return uv_between_boxes(box, to);
    });
}

void command_uv_align(const char *name)
{
    constexpr const char *label = "align texture coordinates";
    const uv_state &state = uv_editor();
    if (refuse(label, state))
        return;
    for (const side_row &side : sides) {
        if (std::string_view(name) == side.name) {
            finish(label, aligned(state, side));
            return;
        }
    }
    display_message("%s - no side '%s'", label, name);
}

void command_uv_weld(int count, const char *const *words)
{
    constexpr const char *label = "weld texture coordinates";
    const uv_state &state = uv_editor();
    if (refuse(label, state))
        return;
    if (count == 0 && state.num_chosen == 0) {
        display_message("%s - choose corners first, or give a distance", label);
        return;
    }
    finish(label, welded(state, count > 0 ? std::max(0.0, double_of(words[0])) : 1e300));
}

void command_uv_split()
{
    constexpr const char *label = "split texture coordinates";
    const uv_state &state = uv_editor();
    if (refuse(label, state))
        return;
    if (state.num_chosen == 0) {
        display_message("%s - choose corners or surfaces first", label);
        return;
    }
    finish(label, split(state));
}

void command_uv_snap()
{
    constexpr const char *label = "snap texture coordinates";
    const uv_state &state = uv_editor();
    if (refuse(label, state))
        return;
    const uv_pixels pixels = uv_picture_size();
    const std::vector<char> moving = uv_moving_corners(state);
    std::vector<flat_uv> at = state.mesh.at;
    for (std::size_t c = 0; c < at.size(); ++c) {
        if (moving[c] != 0)
            at[c] = {uv_snapped(at[c].u, pixels.width), uv_snapped(at[c].v, pixels.height)};
    }
    finish(label, std::move(at));
}
