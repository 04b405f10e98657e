#include "edit/check/model_check_fix.h"

#include "base/current_file.h"
#include "base/messages.h"
#include "base/numbers.h"
#include "edit/document/edge_selection.h"
#include "edit/document/edit_support.h"
#include "edit/document/modes.h"
#include "edit/mesh/edge_table.h"
#include "edit/mesh/mesh_change.h"
#include "edit/triangulate.h"
#include "model/alloc.h"
#include "model/change_marks.h"
#include "model/freed.h"
#include "model/identity.h"
#include "model/normals.h"
#include "model/object_internal.h"
#include "model/object_tree.h"
#include "model/textures/textures.h"
#include "model/vector.h"
#include "model/world.h"

#include <algorithm>
#include <climits>
#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>

namespace {

using problem_list = std::vector<found_problem>;

// ---- holes ----

// The loops of the open edges, each walked against its polygons, so that it outlines a polygon that
// fits. A loop that meets itself is cut there.
class hole_walker {
public:
    hole_walker(const flat_mesh &mesh, const edge_table &edges) : mesh_(mesh), edges_(edges)
    {
        next_.resize(mesh.num_vertices());
        for (int e = 0; e < edges.size(); ++e) {
            const auto uses = edges.uses(e);
            if (uses.size() != 1)
                continue;
            const mesh_edge &edge = edges.edge(e);
            next_[uses[0].forward ? edge.b : edge.a].push_back(e);
        }
    }

    using loop = std::vector<int>; // of edges

    std::vector<loop> loops()
    {
        std::vector<loop> found;
        for (int e = 0; e < edges_.size(); ++e) {
            if (edges_.uses(e).size() == 1)
                walk(start_of(e), &found);
        }
        return found;
    }
    // Against its polygon an edge goes from the end that the polygon leaves it by.
    [[nodiscard]] int start_of(int e) const
    {
        return edges_.uses(e)[0].forward ? edges_.edge(e).b : edges_.edge(e).a;
    }
    [[nodiscard]] int end_of(int e) const
    {
        return edges_.uses(e)[0].forward ? edges_.edge(e).a : edges_.edge(e).b;
    }

private:
    void walk(int at, std::vector<loop> *found)
    {
        loop path;
        std::unordered_map<int, std::size_t> seen; // vertex: length of the path there
        for (;;) {
            const auto [known, is_new] = seen.emplace(at, path.size());
            if (!is_new) {
                const auto from = path.begin() + static_cast<std::ptrdiff_t>(known->second);
                found->emplace_back(from, path.end());
                for (auto edge = from + 1; edge < path.end(); ++edge)
                    seen.erase(start_of(*edge));
                path.erase(from, path.end());
            }
            std::vector<int> &ways = next_[at];
            if (ways.empty())
                return; // the rest of the path leads nowhere
            path.push_back(ways.back());
            ways.pop_back();
            at = end_of(path.back());
        }
    }

    const flat_mesh &mesh_;
    const edge_table &edges_;
    std::vector<std::vector<int>> next_; // open edges by their start that no loop has yet
};

// The whole outline of one polygon, which stands alone: closing it would double the polygon.
bool is_outline(const hole_walker::loop &loop, const flat_mesh &mesh, const edge_table &edges)
{
    const int surface = edges.uses(loop.front())[0].surface;
    return mesh.surface_corners(surface).size() == loop.size() &&
           std::all_of(loop.begin(), loop.end(),
                       [&](int e) { return edges.uses(e)[0].surface == surface; });
}

int fill_holes(object_t *object, const problem_list &problems)
{
    mesh_change change(object);
    const flat_mesh &mesh = change.before();
    const edge_table edges(mesh);
    std::vector<bool> wanted(edges.size());
    for (const found_problem &problem : problems) {
        if (const int e = edges.find(problem.first, problem.second); e >= 0)
            wanted[e] = true;
    }
    hole_walker walker(mesh, edges);
    int count = 0;
    for (const hole_walker::loop &loop : walker.loops()) {
        if (loop.size() < 3 || is_outline(loop, mesh, edges) ||
            std::none_of(loop.begin(), loop.end(), [&](int e) { return wanted[e]; }))
            continue;
        change.add_surface(edges.uses(loop.front())[0].surface);
        for (const int e : loop) {
            // The corner after the side's own is where the walk begins it.
            const edge_use &use = edges.uses(e)[0];
            const int first = mesh.first_corner(use.surface);
            const int end = mesh.end_corner(use.surface);
            const int corner = use.corner + 1 < end ? use.corner + 1 : first;
            change.add_corner(walker.start_of(e), mesh.uv(corner));
        }
        ++count;
    }
    change.commit();
    return count;
}

// ---- corners in place ----

// The surfaces beyond the first two of each crowded edge, with the vertices they share there.
int split_crowded(object_t *object, const problem_list &problems)
{
    const flat_ptr mesh = object_flat(object);
    const edge_table edges(*mesh);
    std::map<int, std::set<int>> shared; // surface: vertices
    for (const found_problem &problem : problems) {
        const int e = edges.find(problem.first, problem.second);
        for (std::size_t use = 2; e >= 0 && use < edges.uses(e).size(); ++use)
            shared[edges.uses(e)[use].surface].insert({problem.first, problem.second});
    }
    for (const auto &[surface, vertices] : shared) {
        std::unordered_map<const vertex *, vertex *> copies;
        for (const int v : vertices) {
            vertex *original = mesh->vertex_record(v);
            copies[original] = vertex_clone(original);
            object_add_vertex(object, copies[original]);
        }
        for (svertex *corner : each<svertex>(mesh->surface_record(surface)->refs)) {
            const auto copy = copies.find(corner->vertex);
            if (copy != copies.end())
                corner->vertex = copy->second;
        }
    }
    if (!shared.empty())
        object_mark(object, CHANGED_TOPOLOGY);
    return static_cast<int>(shared.size());
}

struct inserted_vertex {
    int corner; // after which, of all corners of the mesh
    double along;
    vertex *point;
};

void insert_corners(surface_t *surface, int first_corner, std::span<const inserted_vertex> points)
{
    std::vector<svertex *> old;
    for (svertex *corner : each<svertex>(surface->refs))
        old.push_back(corner);
    owned_list corners;
    auto next = points.begin();
    for (std::size_t i = 0; i < old.size(); ++i) {
        corners.add(old[i]);
        const svertex *to = old[(i + 1) % old.size()];
        for (; next != points.end() && std::cmp_equal(next->corner - first_corner, i); ++next) {
            const auto t = static_cast<float>(next->along);
            corners.add(new_svertex(next->point, old[i]->u + t * (to->u - old[i]->u),
                                    old[i]->v + t * (to->v - old[i]->v)));
            ++surface->num_refs;
        }
    }
    list_free(&surface->refs);
    surface->refs = corners.release();
}

int insert_t_vertices(object_t *object, const problem_list &problems)
{
    const flat_ptr mesh = object_flat(object);
    const edge_table edges(*mesh);
    const std::vector<point3_t> &points = *mesh->positions;
    std::map<int, std::vector<inserted_vertex>> by_surface;
    for (const found_problem &problem : problems) {
        const int first = mesh->first_corner(problem.surface);
        const auto corners = mesh->surface_corners(problem.surface);
        const point3_t &p = points[problem.first];
        // Of the surface's sides at the edge's end the one that the vertex lies on best.
        inserted_vertex best = {-1, 0, mesh->vertex_record(problem.first)};
        double least = 1e300;
        for (std::size_t i = 0; i < corners.size(); ++i) {
            const int from = corners[i], to = corners[(i + 1) % corners.size()];
            if (from != problem.second && to != problem.second)
                continue;
            const point3_t &a = points[from];
            const point3_t along = point_sub(points[to], a);
            const double length2 = point_dot(along, along);
            const double t = length2 > 0 ? point_dot(point_sub(p, a), along) / length2 : 0;
            const auto part = static_cast<float>(t);
            const double away = point_length(point_sub(point_sub(p, a), point_scale(along, part)));
            if (t > 0 && t < 1 && away < least) {
                least = away;
                best.corner = first + static_cast<int>(i);
                best.along = t;
            }
        }
        if (best.corner >= 0)
            by_surface[problem.surface].push_back(best);
    }
    int count = 0;
    for (auto &[surface, inserted] : by_surface) {
        std::sort(inserted.begin(), inserted.end(), [](const auto &x, const auto &y) {
            return x.corner != y.corner ? x.corner < y.corner : x.along < y.along;
        });
        count += static_cast<int>(inserted.size());
        insert_corners(mesh->surface_record(surface), mesh->first_corner(surface), inserted);
    }
    object_mark(object, CHANGED_TOPOLOGY);
    return count;
}

// Removes corners that follow one of the same vertex.
void drop_repeated_corners(surface_t *surface)
{
    std::vector<svertex *> kept;
    for (svertex *corner : each<svertex>(surface->refs)) {
        if (kept.empty() || kept.back()->vertex != corner->vertex)
            kept.push_back(corner);
        else
            myfree(corner);
    }
    while (kept.size() > 1 && kept.back()->vertex == kept.front()->vertex) {
        myfree(kept.back());
        kept.pop_back();
    }
    owned_list corners;
    for (svertex *corner : kept)
        corners.add(corner);
    list_free(&surface->refs);
    surface->refs = corners.release();
    surface->num_refs = static_cast<int>(kept.size());
}

int weld(object_t *object, const problem_list &problems)
{
    const flat_ptr mesh = object_flat(object);
    std::unordered_map<const vertex *, vertex *> stays;
    for (const found_problem &problem : problems) {
        stays[mesh->vertex_record(problem.first)] = mesh->vertex_record(problem.second);
    }
    for (surface_t *surface : each<surface_t>(object->surfaces)) {
        bool changed = false;
        for (svertex *corner : each<svertex>(surface->refs)) {
            const auto other = stays.find(corner->vertex);
            if (other == stays.end())
                continue;
            corner->vertex = other->second;
            changed = true;
        }
        if (changed)
            drop_repeated_corners(surface);
    }
    object_mark(object, CHANGED_TOPOLOGY);
    mesh_change change(object);
    for (const found_problem &problem : problems)
        change.remove_vertex(problem.first);
    for (int s = 0; s < change.before().num_surfaces(); ++s) {
        const bool polygon = !change.before().surface(s).is_line();
        if (change.before().surface_corners(s).size() < (polygon ? 3u : 2u) &&
            mesh->surface_corners(s).size() >= (polygon ? 3u : 2u))
            change.remove_surface(s);
    }
    change.commit();
    return static_cast<int>(problems.size());
}

// ---- removals, triangles, facing, textures ----

int remove_surfaces(object_t *object, const problem_list &problems)
{
    mesh_change change(object);
    for (const found_problem &problem : problems)
        change.remove_surface(problem.first);
    change.remove_unused();
    change.commit();
    return static_cast<int>(problems.size());
}

int remove_vertices(object_t *object, const problem_list &problems)
{
    mesh_change change(object);
    for (const found_problem &problem : problems)
        change.remove_vertex(problem.first);
    change.commit();
    return static_cast<int>(problems.size());
}

int cut_into_triangles(object_t *object, const problem_list &problems)
{
    mesh_change change(object);
    number_vertices(object);
    int count = 0;
    for (const found_problem &problem : problems) {
        const surface_t *surface = change.before().surface_record(problem.first);
        listitem *triangles = surface_get_triangulations(surface);
        for (surface_t *triangle : each<surface_t>(triangles)) {
            change.add_surface(problem.first);
            for (const svertex *corner : each<svertex>(triangle->refs))
                change.add_corner(static_cast<int>(vertex_number(corner->vertex)),
                                  {corner->u, corner->v});
            surface_free_record(triangle);
        }
        if (triangles == nullptr)
            continue;
        list_free(&triangles);
        change.remove_surface(problem.first);
        ++count;
    }
    change.commit();
    return count;
}

// Which polygons to reverse so that neighbours agree, fewest in each connected piece.
std::vector<bool> flips_to_agree(const flat_mesh &mesh)
{
    const edge_table edges(mesh);
    const std::vector<int> edge_of = edges.edges_of_corners(mesh.num_corners());
    const auto n = mesh.num_surfaces();
    std::vector<bool> seen(n), flip(n);
    for (int start = 0; start < mesh.num_surfaces(); ++start) {
        if (seen[start])
            continue;
        std::vector<int> piece = {start};
        seen[start] = true;
        for (std::size_t i = 0; i < piece.size(); ++i) {
            const int s = piece[i];
            for (int c = mesh.first_corner(s); c < mesh.end_corner(s); ++c) {
                const int e = edge_of[c];
                if (e < 0 || edges.uses(e).size() != 2)
                    continue;
                const auto uses = edges.uses(e);
                const int other = uses[0].surface == s ? uses[1].surface : uses[0].surface;
                if (seen[other])
                    continue;
                seen[other] = true;
                flip[other] = flip[s] != (uses[0].forward == uses[1].forward);
                piece.push_back(other);
            }
        }
        const auto flipped =
            std::count_if(piece.begin(), piece.end(), [&](int s) { return bool(flip[s]); });
        if (2 * flipped > static_cast<std::ptrdiff_t>(piece.size())) {
            for (const int s : piece)
                flip[s] = !flip[s];
        }
    }
    return flip;
}

int reverse_flipped(object_t *object, const problem_list &problems, bool whole_object)
{
    const flat_ptr mesh = object_flat(object);
    std::vector<bool> flip(mesh->num_surfaces());
    if (whole_object) {
        flip = flips_to_agree(*mesh);
    } else {
        for (const found_problem &problem : problems)
            flip[problem.first] = true;
    }
    int count = 0;
    for (std::size_t s = 0; s < flip.size(); ++s) {
        if (!flip[s])
            continue;
        surface_reverse_normal(mesh->surface_record(s));
        ++count;
    }
    object_mark(object, CHANGED_TOPOLOGY);
    return count;
}

int look_for_texture(object_t *object)
{
    const std::string name = object_missing_texture(object);
    const texture_load_scope one_box;
    if (search_and_set_texture(object, current_file().name.c_str(), name.c_str()) == 0)
        object_texture_clear(object);
    return 1;
}

// ---- the commands' own ----

bool names(const found_problem &problem, model_problem kind, const object_t *object,
           const char *element)
{
    return problem.kind == kind && problem.object == object && problem_element(problem) == element;
}

// The problem that the words name, as it is now; a message when there is none.
bool find_problem(const char *kind_name, int id, const char *element, found_problem *out)
{
    model_problem kind;
    object_t *object = object_by_identity(id);
    if (object != nullptr && model_problem_of_name(kind_name, &kind)) {
        for (const found_problem &problem : object_find_problems(object, INT_MAX).problems) {
            if (names(problem, kind, object, element)) {
                *out = problem;
                return true;
            }
        }
    }
    display_message("check - no such problem");
    return false;
}

void fix(const problem_list &problems, bool all)
{
    std::string label = std::string("fix ") + model_problem_name(problems.front().kind);
    std::replace(label.begin(), label.end(), '_', ' ');
    display_message("%s...", label.c_str());
    open_world_undo(label.c_str());
    int count = 0;
    std::vector<object_t *> touched;
    {
        freed_batch at_once;
        for (auto from = problems.begin(); from != problems.end();) {
            const auto to = std::find_if(from, problems.end(), [&](const found_problem &problem) {
                return problem.object != from->object;
            });
            count += object_fix_problems(from->object, {from, to}, all);
            touched.push_back(from->object);
            from = to;
        }
    }
    calc_normals_of(touched);
    finish_edit();
    display_message("%s - %d fixed", label.c_str(), count);
}

} // namespace

int object_fix_problems(object_t *object, const problem_list &problems, bool whole_object)
{
    if (problems.empty())
        return 0;
    switch (problems.front().kind) {
    case model_problem::open_edge:
        return fill_holes(object, problems);
    case model_problem::crowded_edge:
        return split_crowded(object, problems);
    case model_problem::t_vertex:
        return insert_t_vertices(object, problems);
    case model_problem::duplicate_vertex:
        return weld(object, problems);
    case model_problem::duplicate_surface:
    case model_problem::zero_area:
        return remove_surfaces(object, problems);
    case model_problem::non_planar:
        return cut_into_triangles(object, problems);
    case model_problem::flipped:
        return reverse_flipped(object, problems, whole_object);
    case model_problem::unused_vertex:
        return remove_vertices(object, problems);
    case model_problem::missing_texture:
        return look_for_texture(object);
    case model_problem::crossing:
        return 0; // which of them should go nobody knows
    }
    return 0;
}

// ---- commands ----

void command_check_fix(const char *kind, int id, const char *element)
{
    found_problem problem = {};
    if (find_problem(kind, id, element, &problem))
        fix({problem}, false);
}

void command_check_fix_all(const char *kind_name)
{
    model_problem kind;
    problem_list problems;
    if (model_problem_of_name(kind_name, &kind))
        problems = model_find_problems(vesk_get_world(), INT_MAX).problems;
    std::erase_if(problems, [&](const found_problem &problem) { return problem.kind != kind; });
    if (problems.empty()) {
        display_message("check - no such problem");
        return;
    }
    fix(problems, true);
}

void command_check_select(const char *kind, int id, const char *element)
{
    found_problem problem = {};
    if (!find_problem(kind, id, element, &problem))
        return;
    const flat_ptr mesh = object_flat(problem.object);
    const bool is_edge =
        problem.kind == model_problem::open_edge || problem.kind == model_problem::crowded_edge;
    const bool is_vertex = problem.kind == model_problem::t_vertex ||
                           problem.kind == model_problem::duplicate_vertex ||
                           problem.kind == model_problem::unused_vertex;
    const bool is_object = problem.kind == model_problem::missing_texture;
    set_new_select_mode(is_object   ? SELECT_OBJECT
                        : is_edge   ? SELECT_EDGE
                        : is_vertex ? SELECT_VERTEX
                                    : SELECT_SURFACE);
    clear_selection();
    owned_list chosen;
    if (is_object) {
        select_object(problem.object);
    } else if (is_edge) {
        select_edges_by_ends(
            {{mesh->vertex_record(problem.first), mesh->vertex_record(problem.second)}});
    } else if (is_vertex) {
        chosen.add(mesh->vertex_record(problem.first));
        select_vertices(chosen.get());
    } else {
        select_surface(mesh->surface_record(problem.first));
        if (problem.kind == model_problem::crossing)
            select_surface(mesh->surface_record(problem.second));
    }
    finish_edit();
}
