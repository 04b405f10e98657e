#include "edit/check/model_check.h"

#include "edit/check/model_check_notes.h"
#include "edit/check/model_check_search.h"
#include "edit/mesh/edge_table.h"
#include "edit/mesh/union_find.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/textures/textures.h"
#include "model/vector.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <unordered_map>

namespace {

// A polygon has no area when twice its area is below this share of its longest side squared.
constexpr double no_area = 1e-7;
// A polygon is no plane when a corner is further from it than this share of its extent.
constexpr double no_plane = 1e-4;

// The findings of one object while they are made.
class finder {
public:
    finder(object_t *object, int most) : object_(object), most_(most), mesh_(object_flat(object)) {}

    model_findings find()
    {
        const edge_table edges(*mesh_);
        const std::vector<int> first = first_at_place(*mesh_->positions);
        const meant_parts meant = find_meant_parts(*mesh_, edges, first);
        find_edges(edges, meant);
        find_t_vertices(edges);
        find_duplicate_vertices(first, meant);
        find_duplicate_surfaces();
        find_shapes();
        find_flipped(edges);
        find_unused();
        if (object_missing_texture(object_) != nullptr)
            add(model_problem::missing_texture, -1, -1);
        find_crossings(first);
        std::stable_sort(
            found_.problems.begin(), found_.problems.end(),
            [](const found_problem &a, const found_problem &b) { return a.kind < b.kind; });
        return std::move(found_);
    }

private:
    void add(model_problem kind, int first, int second, int surface = -1, bool note = false)
    {
        const auto place = static_cast<std::size_t>(kind);
        if (note)
            ++found_.notes[place];
        if (found_.totals[place]++ < most_)
            found_.problems.push_back({kind, object_, first, second, surface, note});
    }
    // Pieces of an object stand in each other on purpose, as a table's leg in its top; a piece that goes
    // through itself is a fault.
    void find_crossings(const std::vector<int> &first)
    {
        const std::vector<std::pair<int, int>> pairs = crossing_surfaces(mesh_);
        if (pairs.empty())
            return;
        union_find pieces(mesh_->num_vertices());
        for (int s = 0; s < mesh_->num_surfaces(); ++s) {
            for (const auto corner : mesh_->surface_corners(s))
                pieces.join(first[mesh_->surface_corners(s)[0]], first[corner]);
        }
        const auto piece_of = [&](int s) {
            return pieces.find(first[mesh_->surface_corners(s)[0]]);
        };
        for (const auto &[one, other] : pairs)
            add(model_problem::crossing, one, other, -1, piece_of(one) != piece_of(other));
    }
    [[nodiscard]] const point3_t &position(int v) const { return mesh_->position(v); }
    [[nodiscard]] bool polygon(int s) const { return !mesh_->surface(s).is_line(); }

    void find_edges(const edge_table &edges, const meant_parts &meant)
    {
        for (int e = 0; e < edges.size(); ++e) {
            const auto uses = edges.uses(e);
            const mesh_edge &edge = edges.edge(e);
            if (uses.size() == 1) {
                add(model_problem::open_edge, edge.a, edge.b, uses.front().surface, meant.edges[e]);
            } else if (uses.size() > 2) {
                add(model_problem::crowded_edge, edge.a, edge.b, uses[2].surface);
            }
        }
    }

    void find_t_vertices(const edge_table &edges)
    {
        for (const t_vertex &found : mesh_t_vertices(*mesh_, edges)) {
            const mesh_edge &edge = edges.edge(found.edge);
            add(model_problem::t_vertex, found.vertex, edge.a,
                edges.uses(found.edge).front().surface);
        }
    }

    void find_duplicate_vertices(const std::vector<int> &first, const meant_parts &meant)
    {
        for (int v = 0; v < mesh_->num_vertices(); ++v) {
            if (first[v] != v)
                add(model_problem::duplicate_vertex, v, first[v], -1, meant.vertices[v]);
        }
    }

    void find_duplicate_surfaces()
    {
        const std::vector<int> first = first_of_same_corners(*mesh_);
        for (int s = 0; s < mesh_->num_surfaces(); ++s) {
            if (first[s] != s)
                add(model_problem::duplicate_surface, s, first[s]);
        }
    }

    void find_shapes()
    {
        for (int s = 0; s < mesh_->num_surfaces(); ++s) {
            if (!polygon(s))
                continue;
            const polygon_shape shape = shape_of(*mesh_, s);
            if (!(shape.double_area > no_area * shape.longest_side * shape.longest_side)) {
                add(model_problem::zero_area, s, -1);
            } else if (shape.out_of_plane > no_plane * shape.extent) {
                add(model_problem::non_planar, s, -1);
            }
        }
    }

    void find_flipped(const edge_table &edges)
    {
        std::vector<bool> told(mesh_->num_surfaces());
        for (int e = 0; e < edges.size(); ++e) {
            const auto uses = edges.uses(e);
            if (uses.size() != 2 || uses[0].forward != uses[1].forward ||
                uses[0].surface == uses[1].surface || told[uses[1].surface])
                continue;
            told[uses[1].surface] = true;
            add(model_problem::flipped, uses[1].surface, uses[0].surface);
        }
    }

    void find_unused()
    {
        for (const int v : flat_loose_vertices(*mesh_))
            add(model_problem::unused_vertex, v, -1);
    }

    object_t *object_;
    int most_;
    flat_ptr mesh_;
    model_findings found_;
};

// The findings of each object, with its stamp then.
struct kept_findings {
    std::uint64_t stamp;
    unsigned walk; // the check that used it last
    model_findings findings;
};
std::unordered_map<object_t *, kept_findings> &kept()
{
    static auto *const table = new std::unordered_map<object_t *, kept_findings>;
    return *table;
}

const model_findings &findings_of(object_t *object, unsigned walk)
{
    const std::uint64_t stamp = object_stamp(object);
    const auto known = kept().find(object);
    if (known != kept().end() && known->second.stamp == stamp && stamp != 0) {
        known->second.walk = walk;
        return known->second.findings;
    }
    kept_findings fresh = {0, walk, object_find_problems(object)};
    fresh.stamp = object_stamp(object);
    return kept().insert_or_assign(object, std::move(fresh)).first->second.findings;
}

// Adds an object's findings, of each kind no more than `most` in all.
void append(const model_findings &more, int most, model_findings *all)
{
    std::array<int, num_model_problems> listed = all->totals;
    for (const found_problem &problem : more.problems) {
        if (listed[static_cast<std::size_t>(problem.kind)]++ < most)
            all->problems.push_back(problem);
    }
    for (std::size_t kind = 0; kind < all->totals.size(); ++kind) {
        all->totals[kind] += more.totals[kind];
        all->notes[kind] += more.notes[kind];
    }
}

struct problem_words {
    const char *name;
    const char *text; // of its first and second place, and the surface
};
const problem_words words[num_model_problems] = {
    {"open_edge", "edge %d-%d belongs to surface %d only"},
    {"crowded_edge", "edge %d-%d belongs to more than two surfaces"},
    {"t_vertex", "vertex %d lies on the edge from vertex %d of surface %d"},
    {"duplicate_vertex", "vertex %d is at the place of vertex %d"},
    {"duplicate_surface", "surface %d has the vertices of surface %d"},
    {"zero_area", "surface %d has no area"},
    {"non_planar", "surface %d is not flat"},
    {"flipped", "surface %d faces against its neighbour %d"},
    {"unused_vertex", "vertex %d belongs to no surface"},
    {"missing_texture", ""},
    {"crossing", "surface %d goes through surface %d"},
};

const problem_words &words_of(model_problem kind) { return words[static_cast<std::size_t>(kind)]; }

} // namespace

model_findings object_find_problems(object_t *object, int most_of_each)
{
    return finder(object, most_of_each).find();
}

model_findings model_find_problems(object_t *top, int most_of_each)
{
    static unsigned walks = 0;
    const unsigned walk = ++walks;
    model_findings all;
    for_each_object(top, [&](object_t *object) {
        if (most_of_each <= problems_shown) {
            append(findings_of(object, walk), most_of_each, &all);
        } else {
            append(object_find_problems(object, most_of_each), most_of_each, &all);
        }
    });
    std::stable_sort(
        all.problems.begin(), all.problems.end(),
        [](const found_problem &a, const found_problem &b) { return a.kind < b.kind; });
    std::erase_if(kept(), [walk](const auto &entry) { return entry.second.walk != walk; });
    return all;
}

const char *model_problem_name(model_problem kind) { return words_of(kind).name; }

bool model_problem_of_name(const char *name, model_problem *kind)
{
    for (int i = 0; i < num_model_problems; ++i) {
        if (std::strcmp(words[i].name, name) == 0) {
            *kind = static_cast<model_problem>(i);
            return true;
        }
    }
    return false;
}

std::string problem_text(const found_problem &problem)
{
    if (problem.kind == model_problem::missing_texture) {
        const char *file = object_missing_texture(problem.object);
        std::string text = std::string("texture ") + (file == nullptr ? "" : file);
        std::replace(text.begin(), text.end(), '\n', ' ');
        return text + " was not found";
    }
    // A text names as many of the numbers as it has places for them.
    std::string text;
    const int numbers[] = {problem.first, problem.second, problem.surface};
    const int *number = numbers;
    for (const char *p = words_of(problem.kind).text; *p != '\0'; ++p) {
        if (p[0] == '%' && p[1] == 'd') {
            text += std::to_string(*number++);
            ++p;
        } else {
            text += *p;
        }
    }
    return text;
}

std::string problem_element(const found_problem &problem)
{
    switch (problem.kind) {
    case model_problem::missing_texture:
        return "-";
    case model_problem::open_edge:
    case model_problem::crowded_edge:
        return std::to_string(problem.first) + "-" + std::to_string(problem.second);
    default:
        return std::to_string(problem.first);
    }
}
