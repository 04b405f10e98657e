#include "edit/check/model_check_notes.h"

#include "edit/mesh/union_find.h"
#include "model/vector.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace {

constexpr double sheet_share = 0.6;     // of a sheet's area that its area vectors add up to
constexpr float crease_cosine = 0.985f; // of 10 degrees

class meant_finder {
public:
    meant_finder(const flat_mesh &mesh, const edge_table &edges, const std::vector<int> &first)
        : mesh_(mesh), edges_(edges), first_(first), pieces_(mesh.num_vertices()),
          torn_(edges.size()), on_crease_(mesh.num_vertices()), on_hole_(mesh.num_vertices())
    {
    }

    meant_parts find()
    {
        for (int s = 0; s < mesh_.num_surfaces(); ++s) {
            const auto corners = mesh_.surface_corners(s);
            for (std::size_t i = 1; i < corners.size(); ++i)
                pieces_.join(corners[0], corners[i]);
        }
        found_.edges.resize(edges_.size());
        found_.vertices.resize(mesh_.num_vertices());
        find_creases();
        find_sheets();
        find_vertices();
        return std::move(found_);
    }

private:
    [[nodiscard]] bool open(int e) const { return edges_.uses(e).size() == 1; }
    [[nodiscard]] const point3_t &normal_at(int e) const
    {
        return (*mesh_.face_normals)[edges_.uses(e).front().surface];
    }

    // Open edges at one place: the pieces on their sides hang together. Two whose surfaces go on in
    // one direction are one surface that was torn; more are pieces that touch.
    void find_creases()
    {
        std::map<std::pair<int, int>, std::vector<int>> at_place;
        for (int e = 0; e < edges_.size(); ++e) {
            if (open(e))
                at_place[std::minmax(first_[edges_.edge(e).a], first_[edges_.edge(e).b])].push_back(
                    e);
        }
        for (const auto &[place, sides] : at_place) {
            if (sides.size() < 2)
                continue;
            pieces_.join(place.first, place.second);
            const bool torn = sides.size() == 2 &&
                              point_dot(normal_at(sides[0]), normal_at(sides[1])) > crease_cosine;
            for (const int e : sides) {
                const mesh_edge &edge = edges_.edge(e);
                pieces_.join(place.first, edge.a);
                if (torn) {
                    torn_[e] = on_hole_[edge.a] = on_hole_[edge.b] = true;
                } else {
                    found_.edges[e] = on_crease_[edge.a] = on_crease_[edge.b] = true;
                }
            }
        }
    }

    void find_sheets()
    {
        struct piece_t {
            point3_t sum = {0, 0, 0};
            double area = 0;
        };
        std::map<int, piece_t> pieces;
        for (int s = 0; s < mesh_.num_surfaces(); ++s) {
            const auto corners = mesh_.surface_corners(s);
            if (mesh_.surface(s).is_line() || corners.size() < 3)
                continue;
            point3_t area = {0, 0, 0};
            for (std::size_t i = 2; i < corners.size(); ++i) {
                const point3_t &origin = mesh_.position(corners[0]);
                area =
                    point_add(area, point_cross(point_sub(mesh_.position(corners[i - 1]), origin),
                                                point_sub(mesh_.position(corners[i]), origin)));
            }
            piece_t &piece = pieces[pieces_.find(corners[0])];
            piece.sum = point_add(piece.sum, area);
            piece.area += point_length(area);
        }
        for (int e = 0; e < edges_.size(); ++e) {
            if (!open(e) || found_.edges[e] || torn_[e])
                continue;
            const mesh_edge &edge = edges_.edge(e);
            const piece_t &piece = pieces[pieces_.find(edge.a)];
            if (point_length(piece.sum) >= sheet_share * piece.area)
                found_.edges[e] = true;
            else
                on_hole_[edge.a] = on_hole_[edge.b] = true;
        }
    }

    void find_vertices()
    {
        for (int v = 0; v < mesh_.num_vertices(); ++v) {
            const int other = first_[v];
            if (other == v || on_hole_[v] || on_hole_[other])
                continue;
            found_.vertices[v] =
                on_crease_[v] || on_crease_[other] || pieces_.find(v) != pieces_.find(other);
        }
    }

    const flat_mesh &mesh_;
    const edge_table &edges_;
    const std::vector<int> &first_;
    union_find pieces_;
    std::vector<bool> torn_;                // edges
    std::vector<bool> on_crease_, on_hole_; // vertices
    meant_parts found_;
};

} // namespace

meant_parts find_meant_parts(const flat_mesh &mesh, const edge_table &edges,
                             const std::vector<int> &first)
{
    return meant_finder(mesh, edges, first).find();
}
