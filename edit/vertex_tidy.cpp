#include "edit/vertex_tidy.h"

#include "base/messages.h"
#include "edit/document/edit_support.h"
#include "edit/document/undo.h"
#include "edit/mesh/outline.h"
#include "edit/mesh/polygon_plane.h"
#include "edit/mesh/vertex_links.h"
#include "model/angle.h"
#include "model/change_marks.h"
#include "model/vector.h"

#include <cmath>
#include <functional>

namespace {

// The vertices of one object: `chosen` of them may move.
struct vertex_places {
    const flat_mesh &mesh;
    const vertex_links &links;
    const std::vector<int> &chosen;
    std::vector<vec3d> places; // of all
    progress_t &progress;
    double &done;
};

// False when the user cancelled.
using mover_t = std::function<bool(vertex_places &)>;

struct moved_vertices {
    object_t *object;
    flat_ptr mesh;
    std::vector<int> vertices;
    std::vector<point3_t> places;
};

std::vector<owned_elements> chosen_vertices()
{
    if (!mode_has_elements(select_mode()))
        return {};
    const owned_list vertices(selection_get_selected_vertices());
    return vertices_by_owner(vertices.get());
}

// Those that went elsewhere.
moved_vertices find_moved(object_t *object, const flat_ptr &mesh, const vertex_places &after)
{
    moved_vertices moved = {object, mesh, {}, {}};
    for (const int v : after.chosen) {
        const point3_t to = to_point(after.places[v]);
        if (point_equal(to, mesh->position(v)))
            continue;
        moved.vertices.push_back(v);
        moved.places.push_back(to);
    }
    return moved;
}

void move(const std::vector<moved_vertices> &all, const char *what)
{
    owned_list undone;
    for (const moved_vertices &moved : all) {
        for (const int v : moved.vertices)
            undone.add(moved.mesh->vertex_record(v));
    }
    new_undo(UNDO_POSITIONS, what);
    set_undo_vertex_positions(undone.get(), nullptr);
    std::vector<object_t *> touched;
    for (const moved_vertices &moved : all) {
        for (std::size_t i = 0; i < moved.vertices.size(); ++i)
            moved.mesh->vertex_record(moved.vertices[i])->position = moved.places[i];
        object_mark(moved.object, CHANGED_POSITIONS);
        touched.push_back(moved.object);
    }
    calc_normals_of(touched);
    finish_edit();
}

// `steps` says how often the mover goes through the vertices.
void tidy(const char *what, const char *nothing_fits, int steps, const mover_t &mover)
{
    const std::vector<owned_elements> owners = chosen_vertices();
    if (owners.empty()) {
        display_message("%s - nothing selected", what);
        return;
    }
    display_message("%s...", what);
    progress_t progress(static_cast<double>(count_elements(owners)) * steps);
    double done = 0;
    std::vector<moved_vertices> all;
    std::size_t count = 0;
    for (const owned_elements &owned : owners) {
        const flat_ptr mesh = object_flat(owned.object);
        const vertex_links links(*mesh);
        vertex_places work = {*mesh, links, owned.indices, {}, progress, done};
        for (const point3_t &p : *mesh->positions)
            work.places.push_back(to_vec3d(p));
        if (!mover(work)) {
            display_message("%s - cancelled", what);
            return;
        }
        moved_vertices moved = find_moved(owned.object, mesh, work);
        for (const point3_t &to : moved.places) {
            if (!point_is_finite(to)) {
                display_message("%s - the result would lie too far out", what);
                return;
            }
        }
        count += moved.vertices.size();
        if (!moved.vertices.empty())
            all.push_back(std::move(moved));
    }
    if (count == 0) {
        display_message("%s - %s", what, nothing_fits);
        return;
    }
    move(all, what);
    display_message("%s - %d vertices", what, static_cast<int>(count));
}

// Calls for each group with its places, then puts what it made of them back.
bool each_group(vertex_places &work, std::size_t fewest,
                const std::function<void(const std::vector<int> &, std::vector<vec3d> &)> &change)
{
    std::vector<vec3d> places;
    for (const std::vector<int> &group :
         linked_groups(work.links, work.mesh.num_vertices(), work.chosen)) {
        if (group.size() >= fewest) {
            places.clear();
            for (const int v : group)
                places.push_back(work.places[v]);
            change(group, places);
            for (std::size_t i = 0; i < group.size(); ++i)
                work.places[group[i]] = places[i];
        }
        if (!work.progress.step(work.done += static_cast<double>(group.size())))
            return false;
    }
    return true;
}

// The same for each chain, its places in its order.
bool each_chain(vertex_places &work, bool with_closed,
                const std::function<void(bool closed, std::vector<vec3d> &)> &change)
{
    return each_group(work, 3, [&](const std::vector<int> &group, std::vector<vec3d> &places) {
        const vertex_chain chain = chain_of(work.links, group);
        if (chain.vertices.empty() || (chain.closed && !with_closed))
            return;
        std::vector<vec3d> along;
        for (const int v : chain.vertices)
            along.push_back(work.places[v]);
        change(chain.closed, along);
        for (std::size_t i = 0; i < along.size(); ++i)
            work.places[chain.vertices[i]] = along[i];
        for (std::size_t i = 0; i < group.size(); ++i)
            places[i] = work.places[group[i]];
    });
}

// ---- flat and round ----

void onto_plane(std::vector<vec3d> &places)
{
    const fit_plane plane = best_fit_plane(places);
    for (vec3d &p : places) {
        const vec3d away = p - plane.middle;
        p = plane.middle + plane.along * dot(away, plane.along) +
            plane.across * dot(away, plane.across);
    }
}

struct polar_t {
    double angle, radius;
};

polar_t polar_of(const vec3d &p, const fit_plane &plane)
{
    const vec3d away = p - plane.middle;
    const double x = dot(away, plane.along), y = dot(away, plane.across);
    return {std::atan2(y, x), std::hypot(x, y)};
}

vec3d on_circle(const fit_plane &plane, double angle, double radius)
{
    return plane.middle + plane.along * (radius * std::cos(angle)) +
           plane.across * (radius * std::sin(angle));
}

double mean_radius(const std::vector<vec3d> &places, const fit_plane &plane)
{
    double sum = 0;
    for (const vec3d &p : places)
        sum += polar_of(p, plane).radius;
    return sum / static_cast<double>(places.size());
}

void onto_circle(std::vector<vec3d> &places)
{
    const fit_plane plane = best_fit_plane(places);
    const double radius = mean_radius(places, plane);
    for (vec3d &p : places)
        p = on_circle(plane, polar_of(p, plane).angle, radius);
}

// Even steps round the circle, turned so that they lie as near to where they were as they can.
void round_circle(std::vector<vec3d> &ring)
{
    const fit_plane plane = best_fit_plane(ring);
    const double radius = mean_radius(ring, plane);
    double area = 0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const vec3d a = ring[i] - plane.middle, b = ring[(i + 1) % ring.size()] - plane.middle;
        area += dot(cross(a, b), cross(plane.along, plane.across));
    }
    const double step = (area < 0 ? -2 : 2) * pi / static_cast<double>(ring.size());
    double x = 0, y = 0; // the sum of how far each is ahead of its step
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const double ahead = polar_of(ring[i], plane).angle - step * static_cast<double>(i);
        x += std::cos(ahead);
        y += std::sin(ahead);
    }
    const double start = std::atan2(y, x);
    for (std::size_t i = 0; i < ring.size(); ++i)
        ring[i] = on_circle(plane, start + step * static_cast<double>(i), radius);
}

bool circularize(vertex_places &work)
{
    return each_group(work, 3, [&](const std::vector<int> &group, std::vector<vec3d> &places) {
        const vertex_chain chain = chain_of(work.links, group);
        if (!chain.closed) {
            onto_circle(places);
            return;
        }
        std::vector<vec3d> ring;
        for (const int v : chain.vertices)
            ring.push_back(work.places[v]);
        round_circle(ring);
        for (std::size_t i = 0; i < ring.size(); ++i)
            work.places[chain.vertices[i]] = ring[i];
        for (std::size_t i = 0; i < group.size(); ++i)
            places[i] = work.places[group[i]];
    });
}

// ---- along chains ----

void onto_line(std::vector<vec3d> &chain)
{
    const vec3d start = chain.front(), along = chain.back() - start;
    const double size = dot(along, along);
    for (std::size_t i = 1; i + 1 < chain.size() && size > 0; ++i)
        chain[i] = start + along * (dot(chain[i] - start, along) / size);
}

void space_chain(bool closed, std::vector<vec3d> &chain)
{
    std::vector<vec3d> path = chain;
    if (closed)
        path.push_back(chain.front());
    double whole = 0;
    for (std::size_t i = 1; i < path.size(); ++i)
        whole += length(path[i] - path[i - 1]);
    const double step = whole / static_cast<double>(path.size() - 1);
    std::size_t segment = 1;
    double before = 0; // the length up to the segment's start
    for (std::size_t i = 1; i + 1 < path.size(); ++i) {
        const double wanted = step * static_cast<double>(i);
        double size = length(path[segment] - path[segment - 1]);
        while (segment + 1 < path.size() && before + size < wanted) {
            before += size;
            ++segment;
            size = length(path[segment] - path[segment - 1]);
        }
        const double share = size > 0 ? (wanted - before) / size : 0;
        chain[i] = path[segment - 1] + (path[segment] - path[segment - 1]) * share;
    }
}

// ---- smooth ----

vec3d smoothed(const vertex_places &work, int v)
{
    vec3d all, border;
    int borders = 0;
    const auto links = work.links.of(v);
    for (const vertex_link &link : links) {
        all += work.places[link.other];
        if (link.border) {
            border += work.places[link.other];
            ++borders;
        }
    }
    if (links.empty() || (borders != 0 && borders != 2))
        return work.places[v];
    return borders == 2 ? border / 2 : all / static_cast<double>(links.size());
}

bool smooth(vertex_places &work, double factor, int steps)
{
    std::vector<vec3d> next(work.chosen.size());
    for (int step = 0; step < steps; ++step) {
        for (std::size_t i = 0; i < work.chosen.size(); ++i) {
            const vec3d &p = work.places[work.chosen[i]];
            next[i] = p + (smoothed(work, work.chosen[i]) - p) * factor;
            if (!work.progress.step(++work.done))
                return false;
        }
        for (std::size_t i = 0; i < work.chosen.size(); ++i)
            work.places[work.chosen[i]] = next[i];
    }
    return true;
}

} // namespace

// ---- commands ----

void command_flatten()
{
    tidy("flatten", "nothing to flatten", 1, [](vertex_places &work) {
        return each_group(work, 4,
                          [](const std::vector<int> & /*group*/, std::vector<vec3d> &places) {
                              onto_plane(places);
                          });
    });
}

void command_circularize()
{
    tidy("circularize", "no vertices that hang together", 1, circularize);
}

void command_straighten()
{
    tidy("straighten", "no chain to straighten", 1, [](vertex_places &work) {
        return each_chain(work, false,
                          [](bool /*closed*/, std::vector<vec3d> &chain) { onto_line(chain); });
    });
}

void command_space_evenly()
{
    tidy("space evenly", "no chain to space", 1,
         [](vertex_places &work) { return each_chain(work, true, space_chain); });
}

void command_smooth_vertices(float factor, int steps)
{
    if (!(factor > 0 && factor <= 1) || steps < 1 || steps > 1000) {
        display_message("smooth vertices - give a factor from 0 to 1 and 1 to 1000 steps");
        return;
    }
    tidy("smooth vertices", "nothing to smooth", steps, [factor, steps](vertex_places &work) {
        return smooth(work, static_cast<double>(factor), steps);
    });
}
