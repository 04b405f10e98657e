#include "view/extrude_preview.h"

#include "edit/document/selection.h"
#include "model/each.h"
#include "model/normals.h"
#include "model/object.h"
#include "model/vector.h"

#include <unordered_map>
#include <utility>

namespace {

// An outline of more edges is shown in part: drawing it would hold the mouse up.
constexpr std::size_t most_edges = 20000;

struct edge_key_t {
    const vertex *a, *b; // a below b
    bool operator==(const edge_key_t &) const = default;
};
struct edge_hash_t {
    std::size_t operator()(const edge_key_t &key) const
    {
        const auto a = reinterpret_cast<std::uintptr_t>(key.a);
        const auto b = reinterpret_cast<std::uintptr_t>(key.b);
        return (a >> 4) * 0x9E3779B97F4A7C15ull ^ (b >> 4);
    }
};
using edge_uses_t = std::unordered_map<edge_key_t, int, edge_hash_t>;

void count_edges(const surface_t *surface, edge_uses_t *uses)
{
    const vertex *first = nullptr;
    const vertex *before = nullptr;
    const auto add = [&](const vertex *a, const vertex *b) {
        ++(*uses)[a < b ? edge_key_t{a, b} : edge_key_t{b, a}];
    };
    for (const svertex *corner : each<svertex>(surface->refs)) {
        if (corner->vertex == nullptr)
            continue;
        if (before != nullptr)
            add(before, corner->vertex);
        else
            first = corner->vertex;
        before = corner->vertex;
    }
    if (before != nullptr && before != first && surface->type != SURFACE_LINE)
        add(before, first);
}

} // namespace

extrude_preview_t::extrude_preview_t()
{
    const owned_list surfaces(find_selected_whole_surfaces());
    edge_uses_t uses;
    for (const surface_t *surface : each<surface_t>(surfaces.get())) {
        count_edges(surface, &uses);
        normal_ = point_add(normal_, surface->normal);
    }
    const double length = point_length(normal_);
    normal_ =
        length > 1e-6 ? point_scale(normal_, static_cast<float>(1 / length)) : point3_t{0, 0, 0};
    for (const auto &[edge, count] : uses) {
        if (count == 1 && edges_.size() < most_edges)
            edges_.push_back({edge.a->position, edge.b->position});
    }
}

void extrude_preview_t::outline_at(const point3_t &offset,
                                   std::vector<overlay_segment_t> *out) const
{
    out->clear();
    for (const overlay_segment_t &edge : edges_) {
        const point3_t from = point_add(edge.from, offset), to = point_add(edge.to, offset);
        out->push_back({from, to});
        out->push_back({edge.from, from});
        out->push_back({edge.to, to});
    }
}

bool extrude_has_surfaces()
{
    const owned_list surfaces(find_selected_whole_surfaces());
    return surfaces.get() != nullptr;
}
