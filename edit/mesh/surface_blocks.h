#ifndef VESK_EDIT_MESH_SURFACE_BLOCKS_H
#define VESK_EDIT_MESH_SURFACE_BLOCKS_H

// Where the surfaces of a mesh are: boxes round runs of neighbours in its list, and round runs of these.
// Neighbours in the list mostly lie side by side, so this is made in a fraction of the time of a tree;
// where they do not, the surfaces are sorted along a curve through space first.

#include "edit/mesh/box_tree.h"
#include "model/flat_mesh.h"

#include <algorithm>
#include <vector>

class surface_blocks {
public:
    surface_blocks() = default;
    // Of the marked surfaces.
    surface_blocks(const flat_mesh &mesh, const std::vector<bool> &marked);

    // Round all of them.
    [[nodiscard]] const box_t &all() const { return levels_.back().front(); }
    // Those in runs that touch the box: marked or not, in it or only near.
    template <class Visit>
    void query(const box_t &box, Visit &&visit) const
    {
        if (!levels_.empty())
            look(levels_.size() - 1, 0, box, visit);
    }

private:
    static constexpr std::size_t run = 16;

    template <class Visit>
    void look(std::size_t level, std::size_t at, const box_t &box, Visit &visit) const
    {
        if (!levels_[level][at].meets(box))
            return;
        const std::size_t below = level == 0 ? num_surfaces_ : levels_[level - 1].size();
        for (std::size_t i = at * run; i < std::min((at + 1) * run, below); ++i) {
            if (level == 0)
                visit(order_.empty() ? static_cast<int>(i) : order_[i]);
            else
                look(level - 1, i, box, visit);
        }
    }

    void build(const flat_mesh &mesh, const std::vector<bool> &marked);
    [[nodiscard]] bool lie_apart() const;
    void sort(const flat_mesh &mesh);

    std::size_t num_surfaces_ = 0;
    std::vector<int> order_;                 // empty: as in the list
    std::vector<std::vector<box_t>> levels_; // the last one has one box
};

#endif
