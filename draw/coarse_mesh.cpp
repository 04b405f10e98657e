#include "draw/coarse_mesh.h"

#include "model/bounds.h"
#include "model/vector.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <meshoptimizer.h>

namespace {

constexpr std::size_t least_cluster = 16384; // triangles
constexpr std::size_t most_clusters = 256;   // about, unless they were smaller
constexpr std::array<std::size_t, family_detail> shares = {1, 10, 100}; // aimed at
constexpr std::size_t most_in_family = 16;                              // clusters
constexpr std::size_t family_share = 20;        // of its clusters' coarsest: aimed at
constexpr double most_family_triangles = 60000; // of all together

constexpr float most_error = 0.002f; // of the size of the mesh: a pixel or two of a view

using indices_t = std::vector<std::uint32_t>;

const float *floats(const std::vector<point3_t> &points) { return &points.data()->x; }

// The triangles of one cluster by numbers of its own. Corners at one place are one vertex, whatever
// slots they are of, or a mesh of polygons that share no vertices could not be made coarser.
class local_mesh {
public:
    explicit local_mesh(const coarse_source_t &source) : source_(source) {}

    void take(std::span<const std::uint32_t> slots)
    {
        std::vector<point3_t> places;
        places.reserve(slots.size());
        for (const std::uint32_t slot : slots)
            places.push_back(place_of(slot));
        triangles.resize(slots.size());
        const std::size_t count =
            meshopt_generateVertexRemap(triangles.data(), nullptr, slots.size(), places.data(),
                                        places.size(), sizeof(point3_t));
        positions.resize(count);
        slots_.assign(count, none);
        for (std::size_t i = 0; i < slots.size(); ++i) {
            positions[triangles[i]] = places[i];
            std::uint32_t &slot = slots_[triangles[i]];
            // Flat shading reads a face's normal, which not every slot carries.
            if (slot == none || (source_.slot_face[slot] < 0 && source_.slot_face[slots[i]] >= 0))
                slot = slots[i];
        }
    }

    [[nodiscard]] std::uint32_t slot(std::uint32_t local) const { return slots_[local]; }

    [[nodiscard]] const point3_t &place_of(std::uint32_t slot) const
    {
        const std::size_t vertex =
            slot < source_.num_vertices
                ? slot
                : static_cast<std::size_t>(source_.extra_vertices[slot - source_.num_vertices]);
        return (*source_.positions)[vertex];
    }

    std::vector<point3_t> positions;
    indices_t triangles;

private:
    static constexpr std::uint32_t none = ~0U;

    const coarse_source_t &source_;
    indices_t slots_; // one for each vertex
};

class coarse_builder {
public:
    coarse_builder(const coarse_source_t &source, const std::atomic<bool> &cancelled)
        : source_(source), cancelled_(cancelled), local_(source),
          out_(std::make_shared<coarse_mesh_t>())
    {
        out_->positions = source.positions;
    }

    std::shared_ptr<coarse_mesh_t> run()
    {
        const std::vector<point3_t> &points = *source_.positions;
        if (!points.empty())
            error_ =
                most_error * meshopt_simplifyScale(floats(points), points.size(), sizeof(point3_t));
        for (std::uint32_t group = 0; group < source_.groups.size() && !cancelled_; ++group)
            cut_into_clusters(group);
        for (mesh_cluster_t &cluster : out_->clusters) {
            if (cancelled_)
                return nullptr;
            make_levels(cluster);
        }
        make_families();
        join_levels();
        return cancelled_ ? nullptr : out_;
    }

private:
    void cut_into_clusters(std::uint32_t number)
    {
        const layout_group_t &group = source_.groups[number];
        const std::size_t count = group.count / 3;
        const std::uint32_t *slots = source_.triangles.data() + group.first;
        std::vector<point3_t> middles;
        middles.reserve(count);
        for (std::size_t i = 0; i < count; ++i) {
            const point3_t sum = point_add(
                point_add(local_.place_of(slots[3 * i]), local_.place_of(slots[3 * i + 1])),
                local_.place_of(slots[3 * i + 2]));
            middles.push_back(sum);
        }
        indices_t order(count);
        if (count > 0)
            meshopt_spatialSortRemap(order.data(), floats(middles), count, sizeof(point3_t));
        const std::size_t first = out_->triangles.size();
        out_->triangles.resize(first + 3 * count);
        for (std::size_t i = 0; i < count; ++i)
            std::copy_n(slots + 3 * i, 3, &out_->triangles[first + std::size_t{3} * order[i]]);
        const std::size_t step =
            3 * std::max(least_cluster, source_.triangles.size() / 3 / most_clusters);
        for (std::size_t at = 0; at < 3 * count; at += step)
            add_cluster(number, first + at, std::min(step, 3 * count - at));
    }

    void add_cluster(std::uint32_t group, std::size_t first, std::size_t count)
    {
        mesh_cluster_t cluster = {};
        cluster.group = group;
        cluster.triangles[0] = {static_cast<std::uint32_t>(first),
                                static_cast<std::uint32_t>(count)};
        out_->clusters.push_back(cluster);
    }

    void make_levels(mesh_cluster_t &cluster)
    {
        const index_range_t &all = cluster.triangles[0];
        local_.take(std::span(out_->triangles).subspan(all.first, all.count));
        find_bounds(cluster);
        for (std::size_t level = 1; level < family_detail; ++level) {
            const std::size_t wanted = all.count / 3 / shares[level] * 3;
            local_.triangles = coarser(std::min(wanted, local_.triangles.size()), all.count / 4);
            cluster.triangles[level] = add_triangles(level);
        }
    }

    // The triangles as they are, to those of a level.
    index_range_t add_triangles(std::size_t level)
    {
        indices_t &triangles = triangles_[level];
        const index_range_t added = {static_cast<std::uint32_t>(triangles.size()),
                                     static_cast<std::uint32_t>(local_.triangles.size())};
        for (const std::uint32_t local : local_.triangles)
            triangles.push_back(local_.slot(local));
        add_edges(edges_[level]);
        return added;
    }

    void make_families()
    {
        const std::vector<mesh_cluster_t> &clusters = out_->clusters;
        for (std::size_t first = 0, end = 0; first < clusters.size() && !cancelled_; first = end) {
            while (end < clusters.size() && end - first < most_in_family &&
                   clusters[end].group == clusters[first].group)
                ++end;
            out_->families.push_back({first, end - first, {}});
            make_family(out_->families.back());
        }
    }

    // From the coarsest version of its clusters, which lie one after the other.
    void make_family(cluster_family_t &family)
    {
        const mesh_cluster_t &first = out_->clusters[family.first];
        const mesh_cluster_t &last = out_->clusters[family.first + family.count - 1];
        const index_range_t &from = first.triangles[family_detail - 1];
        const index_range_t &to = last.triangles[family_detail - 1];
        const std::size_t count = to.first + to.count - from.first;
        local_.take(std::span(triangles_[family_detail - 1]).subspan(from.first, count));
        const std::size_t wanted = count / 3 / family_share * 3;
        local_.triangles = simplified(wanted, error_);
        // Its share of what a picture of motion can have at most.
        const double part = static_cast<double>(last.triangles[0].first + last.triangles[0].count -
                                                first.triangles[0].first) /
                            static_cast<double>(source_.triangles.size());
        const std::size_t most = 3 * static_cast<std::size_t>(part * most_family_triangles);
        if (local_.triangles.size() > std::max(most, wanted))
            local_.triangles = simplified(std::max(most, wanted), FLT_MAX);
        family.whole.group = first.group;
        family.whole.triangles[family_detail] = add_triangles(family_detail);
        find_bounds(family.whole);
    }

    void find_bounds(mesh_cluster_t &cluster) const
    {
        point3_t min;
        point3_t max;
        bounds_clear(&min, &max);
        for (const point3_t &p : local_.positions)
            bounds_add(p, &min, &max);
        cluster.centre = point_scale(point_add(min, max), 0.5f);
        double radius = 0;
        for (const point3_t &p : local_.positions)
            radius = std::max(radius, point_length(point_sub(p, cluster.centre)));
        cluster.radius = static_cast<float>(radius);
        find_cone(cluster);
    }

    void find_cone(mesh_cluster_t &cluster) const
    {
        std::vector<point3_t> normals;
        point3_t sum = {0, 0, 0};
        const auto at = [&](std::size_t i) { return local_.positions[local_.triangles[i]]; };
        for (std::size_t i = 0; i + 2 < local_.triangles.size(); i += 3) {
            const point3_t n =
                point_cross(point_sub(at(i + 1), at(i)), point_sub(at(i + 2), at(i)));
            const double length = point_length(n);
            if (length > 0) {
                normals.push_back(point_scale(n, static_cast<float>(1 / length)));
                sum = point_add(sum, normals.back());
            }
        }
        const double length = point_length(sum);
        cluster.axis = length > 0 ? point_scale(sum, static_cast<float>(1 / length)) : sum;
        double least = 1;
        for (const point3_t &n : normals)
            least = std::min(least, point_dot(n, cluster.axis));
        constexpr double narrow = 0.1;
        cluster.cutoff =
            least > narrow ? static_cast<float>(std::sqrt(std::max(0.0, 1 - least * least))) : 1.0f;
    }

    // Of the triangles as they are; of so many indices, if that is possible. Above `most` the shape is
    // given up, then the borders.
    [[nodiscard]] indices_t coarser(std::size_t wanted, std::size_t most) const
    {
        indices_t to = simplified(wanted, error_);
        if (to.size() > most)
            to = simplified(wanted, FLT_MAX);
        if (to.size() <= most)
            return to;
        to.resize(local_.triangles.size());
        to.resize(meshopt_simplifySloppy(
            to.data(), local_.triangles.data(), local_.triangles.size(), floats(local_.positions),
            local_.positions.size(), sizeof(point3_t), wanted, FLT_MAX, nullptr));
        return to;
    }

    [[nodiscard]] indices_t simplified(std::size_t wanted, float error) const
    {
        const indices_t &from = local_.triangles;
        const float *points = floats(local_.positions);
        const std::size_t count = local_.positions.size();
        // The library takes errors as shares of the size of what it is given.
        const float size = meshopt_simplifyScale(points, count, sizeof(point3_t));
        const float share = error / size;
        indices_t to(from.size());
        to.resize(meshopt_simplify(to.data(), from.data(), from.size(), points, count,
                                   sizeof(point3_t), wanted, share >= 0 ? share : FLT_MAX,
                                   meshopt_SimplifyLockBorder, nullptr));
        return to;
    }

    // Of the triangles as they are, each once.
    void add_edges(indices_t &out)
    {
        std::vector<std::pair<std::uint32_t, std::uint32_t>> edges;
        const indices_t &corners = local_.triangles;
        for (std::size_t i = 0; i < corners.size(); ++i) {
            const std::uint32_t a = corners[i];
            const std::uint32_t b = corners[i % 3 == 2 ? i - 2 : i + 1];
            edges.emplace_back(std::min(a, b), std::max(a, b));
        }
        std::sort(edges.begin(), edges.end());
        edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
        for (const auto &[a, b] : edges)
            out.insert(out.end(), {local_.slot(a), local_.slot(b)});
    }

    // The levels' lists one after the other.
    void join_levels()
    {
        for (std::size_t level = 1; level < num_detail_levels; ++level) {
            const auto first = static_cast<std::uint32_t>(out_->triangles.size());
            const indices_t &triangles = triangles_[level];
            out_->triangles.insert(out_->triangles.end(), triangles.begin(), triangles.end());
            for (mesh_cluster_t &cluster : out_->clusters)
                cluster.triangles[level].first += first;
            for (cluster_family_t &family : out_->families)
                family.whole.triangles[level].first += first;
            out_->level_edges[level] = {static_cast<std::uint32_t>(out_->edges.size()),
                                        static_cast<std::uint32_t>(edges_[level].size())};
            out_->edges.insert(out_->edges.end(), edges_[level].begin(), edges_[level].end());
        }
    }

    const coarse_source_t &source_;
    const std::atomic<bool> &cancelled_;
    float error_ = 0;
    local_mesh local_;
    std::shared_ptr<coarse_mesh_t> out_;
    std::array<indices_t, num_detail_levels> triangles_, edges_; // of the coarse levels
};

} // namespace

std::shared_ptr<coarse_mesh_t> make_coarse_mesh(const coarse_source_t &source,
                                                const std::atomic<bool> &cancelled)
{
    return coarse_builder(source, cancelled).run();
}
