#include "edit/document/following_normals.h"

#include "base/worker.h"

#include <algorithm>
#include <atomic>

namespace {

constexpr int few = 16384; // surfaces, whose normals are soon computed again

// What the normals follow from, as long as somebody has it.
struct computed_normals {
    std::weak_ptr<const std::vector<point3_t>> face_normals, positions;
    std::weak_ptr<const std::vector<std::int32_t>> corner_offsets, corners;
};

std::vector<computed_normals> &computed()
{
    static auto *const all = new std::vector<computed_normals>;
    return *all;
}

// Surfaces of fewer than three corners keep the normals that they have.
bool all_have_three_corners(const flat_mesh &mesh)
{
    std::atomic<bool> have = true;
    in_parallel_ranges(mesh.num_surfaces(), [&](int begin, int end) {
        for (int s = begin; s < end; ++s) {
            if (mesh.end_corner(s) - mesh.first_corner(s) < 3) {
                have = false;
                return;
            }
        }
    });
    return have;
}

} // namespace

void normals_were_computed(const flat_mesh &mesh)
{
    std::erase_if(computed(), [](const auto &known) { return known.face_normals.expired(); });
    if (mesh.num_surfaces() >= few && mesh.whole && all_have_three_corners(mesh))
        computed().push_back(
            {mesh.face_normals, mesh.positions, mesh.corner_offsets, mesh.corners});
}

bool normals_are_known_to_follow(const flat_mesh &mesh)
{
    return std::any_of(computed().begin(), computed().end(), [&](const computed_normals &known) {
        return known.face_normals.lock() == mesh.face_normals &&
               known.positions.lock() == mesh.positions &&
               known.corner_offsets.lock() == mesh.corner_offsets &&
               known.corners.lock() == mesh.corners;
    });
}
