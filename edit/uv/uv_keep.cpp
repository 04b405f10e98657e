#include "edit/uv/uv_keep.h"

#include "base/command_result.h"
#include "base/messages.h"
#include "edit/document/journal.h"
#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "edit/document/undo_internal.h"
#include "edit/mesh/union_find.h"
#include "edit/uv/uv_islands.h"
#include "model/each.h"
#include "model/identity.h"
#include "model/vec3d.h"
#include "model/vector.h"
#include "model/world.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace {

// An object as it was: the source of the new coordinates.
struct origin_t {
    image_ptr image;
    uv_mesh mesh;
    uv_islands islands;
    std::vector<int> piece; // of each vertex: the connected part it is in
};

struct keep_t {
    bool on = false;
    state_ptr state; // the state that the images belong to
    std::unordered_map<int, image_ptr> images;
    std::unordered_map<int, std::shared_ptr<const origin_t>> origins;
    std::unordered_set<int> followed; // objects whose coordinates were written since that state
};
keep_t &keep()
{
    static auto *const record = new keep_t; // the images are not freed at exit
    return *record;
}

void look_at_state()
{
    keep_t &now = keep();
    state_ptr state = journal_state();
    if (state == now.state)
        return;
    now.images.clear();
    now.origins.clear();
    now.followed.clear();
    for (int i = 0; state != nullptr && i < state->num_objects; ++i)
        now.images[state->entry(i).image->identity] = state->entry(i).image;
    now.state = std::move(state);
}

// The number of the connected part that each vertex is in.
std::vector<int> pieces_of(const uv_mesh &mesh)
{
    union_find vertices(static_cast<int>(mesh.positions.size()));
    for (int i = 0; i < mesh.num_surfaces(); ++i) {
        for (int c = mesh.corners_begin(i) + 1; c < mesh.corners_end(i); ++c)
            vertices.join(mesh.vertices[c], mesh.vertices[mesh.corners_begin(i)]);
    }
    std::vector<int> pieces;
    vertices.number(&pieces);
    return pieces;
}

std::shared_ptr<const origin_t> origin_of(int identity)
{
    keep_t &now = keep();
    const auto known = now.origins.find(identity);
    if (known != now.origins.end())
        return known->second;
    const auto image = now.images.find(identity);
    if (image == now.images.end())
        return nullptr;
    auto origin = std::make_shared<origin_t>();
    origin->image = image->second;
    origin->mesh =
        uv_mesh_of_flats({std::make_shared<flat_mesh>(image->second->geometry->without_records())});
    origin->islands = uv_find_islands(origin->mesh);
    origin->piece = pieces_of(origin->mesh);
    now.origins[identity] = origin;
    return origin;
}

// The elements that a transform works on. Some may stay in place, as the middle of a scaled part.
class selected_set {
public:
    selected_set()
    {
        const selection_t &all = selection();
        append_elements(all.objects, &objects_);
        std::vector<vertex *> list = elements_of<vertex>(all.vertices);
        for (const surface_t *surface : each<surface_t>(all.surfaces))
            append_surface_vertices(surface, &list);
        vertices_.insert(list.begin(), list.end());
        std::sort(objects_.begin(), objects_.end());
    }
    [[nodiscard]] bool has_object(const object_t *object) const
    {
        for (; object != nullptr; object = object->parent) {
            if (std::binary_search(objects_.begin(), objects_.end(), object))
                return true;
        }
        return false;
    }
    [[nodiscard]] bool has(const vertex *v) const { return vertices_.count(v) != 0; }

private:
    std::vector<object_t *> objects_;
    std::unordered_set<const vertex *> vertices_;
};

// 1 for the vertices that slide: moved, while others of their piece stay.
std::vector<char> sliding(const origin_t &origin, const std::vector<point3_t> &now,
                          const selected_set &selected, const uv_part &part)
{
    const bool all = selected.has_object(part.object);
    const std::size_t count = now.size();
    std::vector<char> moved(count, 0), stays(count, 0);
    for (std::size_t v = 0; v < count; ++v) {
        moved[v] = point_equal(origin.mesh.positions[v], now[v]) ? 0 : 1;
        if (moved[v] == 0 && !all && !selected.has(part.flat->vertex_record(v)))
            stays[origin.piece[v]] = 1;
    }
    for (std::size_t v = 0; v < count; ++v)
        moved[v] = moved[v] != 0 && stays[origin.piece[v]] != 0 ? 1 : 0;
    return moved;
}

// How the coordinates of one polygon grow along its plane, fitted to its corners.
class slope_t {
public:
    slope_t(const uv_mesh &mesh, int surface)
    {
        const int begin = mesh.corners_begin(surface), end = mesh.corners_end(surface);
        const point3_t &n = mesh.normals[surface];
        normal_ = to_vec3d(n);
        // Two directions in the plane: the one that is farthest from the normal, laid flat.
        const vec3d start = std::fabs(n.x) <= std::fabs(n.y) && std::fabs(n.x) <= std::fabs(n.z)
                                ? vec3d{1, 0, 0}
                            : std::fabs(n.y) <= std::fabs(n.z) ? vec3d{0, 1, 0}
                                                               : vec3d{0, 0, 1};
        const double along = dot(start, normal_);
        across_ = start - normal_ * along;
        const double size = length(across_);
        if (!(size > 0) || !(dot(normal_, normal_) > 0.5))
            return;
        across_ = across_ / size;
        up_ = cross(normal_, across_);
        fit(mesh, begin, end);
    }

    // How much the surface has to say about a move: 1 in its plane, 0 from 30 degrees out of it.
    [[nodiscard]] double weight(const vec3d &move) const
    {
        const double out = dot(move, normal_);
        return known_ ? std::max(0.0, 1 - 4 * out * out / dot(move, move)) : 0;
    }
    [[nodiscard]] double by_u(const vec3d &move) const
    {
        return u_[0] * dot(move, across_) + u_[1] * dot(move, up_);
    }
    [[nodiscard]] double by_v(const vec3d &move) const
    {
        return v_[0] * dot(move, across_) + v_[1] * dot(move, up_);
    }

private:
    void fit(const uv_mesh &mesh, int begin, int end)
    {
        const point3_t &origin = mesh.position(begin);
        const double count = end - begin;
        double mx = 0, my = 0, mu = 0, mv = 0;
        for (int c = begin; c < end; ++c) {
            const vec3d d = between(origin, mesh.position(c));
            mx += dot(d, across_) / count;
            my += dot(d, up_) / count;
            mu += mesh.at[c].u / count;
            mv += mesh.at[c].v / count;
        }
        double xx = 0, xy = 0, yy = 0, xu = 0, yu = 0, xv = 0, yv = 0;
        for (int c = begin; c < end; ++c) {
            const vec3d d = between(origin, mesh.position(c));
            const double x = dot(d, across_) - mx, y = dot(d, up_) - my;
            const double u = mesh.at[c].u - mu, v = mesh.at[c].v - mv;
            xx += x * x;
            xy += x * y;
            yy += y * y;
            xu += x * u;
            yu += y * u;
            xv += x * v;
            yv += y * v;
        }
        const double det = xx * yy - xy * xy;
        if (!(det > 1e-12 * (xx + yy) * (xx + yy)))
            return;
        u_[0] = (xu * yy - yu * xy) / det;
        u_[1] = (yu * xx - xu * xy) / det;
        v_[0] = (xv * yy - yv * xy) / det;
        v_[1] = (yv * xx - xv * xy) / det;
        known_ = true;
    }

    vec3d normal_ = {}, across_ = {}, up_ = {};
    double u_[2] = {}, v_[2] = {};
    bool known_ = false;
};

// All corners of a point slide by the mean of their surfaces' answers.
std::vector<flat_uv> slid(const origin_t &origin, const uv_mesh &now_mesh,
                          const selected_set &selected)
{
    const std::vector<point3_t> &now = now_mesh.positions;
    const uv_mesh &mesh = origin.mesh;
    std::vector<flat_uv> at = mesh.at;
    const std::vector<char> slides = sliding(origin, now, selected, now_mesh.parts[0]);
    if (std::find(slides.begin(), slides.end(), 1) == slides.end())
        return at;
    struct sum_t {
        double weight = 0, u = 0, v = 0;
    };
    std::vector<sum_t> sums(origin.islands.num_points);
    for (int i = 0; i < mesh.num_surfaces(); ++i) {
        const auto begin = mesh.vertices.begin() + mesh.corners_begin(i);
        const auto end = mesh.vertices.begin() + mesh.corners_end(i);
        if (std::none_of(begin, end, [&](int v) { return slides[v] != 0; }))
            continue;
        const slope_t slope(mesh, i);
        for (int c = mesh.corners_begin(i); c < mesh.corners_end(i); ++c) {
            const int v = mesh.vertices[c];
            if (slides[v] == 0)
                continue;
            const vec3d move = between(mesh.positions[v], now[v]);
            const double weight = slope.weight(move);
            if (!(weight > 0))
                continue;
            sum_t &sum = sums[origin.islands.point[c]];
            sum.weight += weight;
            sum.u += weight * slope.by_u(move);
            sum.v += weight * slope.by_v(move);
        }
    }
    for (std::size_t c = 0; c < at.size(); ++c) {
        const sum_t &sum = sums[origin.islands.point[c]];
        if (sum.weight > 0)
            at[c] = {static_cast<float>(at[c].u + sum.u / sum.weight),
                     static_cast<float>(at[c].v + sum.v / sum.weight)};
    }
    return at;
}

// Saves the coordinates as they were in an undo record.
void save_in(undo_record &record, const uv_mesh &mesh, const std::vector<flat_uv> &before,
             const std::vector<int> &surfaces)
{
    for (const int i : surfaces) {
        saved_texture_coords saved = {mesh.surfaces[i], {}};
        int corner = mesh.corners_begin(i);
        const uv_part &part = mesh.part_of(i);
        for (svertex *reference : each<svertex>(saved.surface->refs)) {
            const int at = corner < mesh.corners_end(i) ? mesh.vertices[corner] : -1;
            if (at < 0 || part.flat->vertex_record(at - part.first_vertex) != reference->vertex)
                continue;
            saved.corners.push_back({reference, before[corner].u, before[corner].v});
            ++corner;
        }
        record.texture_coords.surfaces.push_back(std::move(saved));
    }
}

bool same_coordinates(const std::vector<flat_uv> &a, const std::vector<flat_uv> &b)
{
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof a[0]) == 0;
}

// The object when it has the surfaces it had, with other positions, or with coordinates that were
// written before.
void follow(object_t *object, const selected_set &selected, undo_record *record, bool at_end)
{
    const int identity = identity_known(object);
    const auto image = keep().images.find(identity);
    if (identity == 0 || image == keep().images.end())
        return;
    const flat_ptr flat = object_flat(object);
    const bool followed = keep().followed.count(identity) != 0;
    if (flat->positions == image->second->geometry->positions && !followed)
        return;
    const std::shared_ptr<const origin_t> origin = origin_of(identity);
    const uv_mesh mesh = uv_mesh_of({object});
    if (mesh.parts.empty() || !(mesh.vertices == origin->mesh.vertices) ||
        mesh.positions.size() != origin->mesh.positions.size() ||
        !(mesh.first_corner == origin->mesh.first_corner))
        return;
    if (at_end && !followed && !same_coordinates(mesh.at, origin->mesh.at))
        return;
    const uv_array<flat_uv> at = slid(*origin, mesh, selected);
    uv_write(mesh, at, uv_changed_surfaces(mesh, mesh.at, at));
    keep().followed.insert(identity);
    if (record != nullptr)
        save_in(*record, mesh, origin->mesh.at, uv_changed_surfaces(mesh, origin->mesh.at, at));
}

// At the end of a step, before its state is taken: all objects follow, but not those whose
// coordinates the step changed itself. The undo record that the step opened (the newest one, when
// its number is above `first_serial`) gets the former coordinates.
void end_step(unsigned first_serial)
{
    look_at_state();
    const undo_stack &records = undo_records();
    undo_record *record = !records.empty() && records.back()->serial > first_serial &&
                                  records.back()->texture_coords.empty()
                              ? records.back().get()
                              : nullptr;
    const selected_set selected;
    for_each_object(vesk_get_world(),
                    [&](object_t *object) { follow(object, selected, record, true); });
}

} // namespace

void uv_keep_set(bool on)
{
    keep() = {};
    keep().on = on;
    journal_set_before_state(on ? end_step : nullptr);
}

bool uv_keep_is_on() { return keep().on; }

void uv_keep_follow(const std::vector<object_t *> &objects)
{
    if (!keep().on)
        return;
    look_at_state();
    const selected_set selected;
    for (object_t *object : objects)
        follow(object, selected, nullptr, false);
}

// ---- commands ----

void command_uv_keep(int on)
{
    uv_keep_set(on != 0);
    display_message("texture coordinates %s",
                    on != 0 ? "keep the picture in place" : "move with their vertices");
}
