#ifndef VESK_EDIT_MESH_NEAREST_POINTS_H
#define VESK_EDIT_MESH_NEAREST_POINTS_H

// Points that can be taken out one after the other, searched for the nearest: a tree of halves
// along the longest side of their box.

#include "base/types.h"

#include <vector>

class nearest_points {
public:
    explicit nearest_points(const std::vector<point3_t> &points);

    [[nodiscard]] int left() const { return nodes_.empty() ? 0 : nodes_.front().left; }
    // The place of the point that is nearest to this one in single precision, the lowest of equally
    // near ones, among those closer than 3.4028e38; -1 when there is none. When only one point is
    // left it is the one, however far.
    [[nodiscard]] int nearest(const point3_t &to) const;
    void take_out(int point);

private:
    struct node {
        point3_t min, max;
        int first, end; // of order_
        int left;       // points that were not taken out
    };
    struct best_t {
        float distance;
        int point;
    };

    void build(std::size_t at, int first, int end);
    void search(std::size_t at, const point3_t &to, best_t &best) const;
    [[nodiscard]] double distance_to_box(const node &box, const point3_t &to) const;

    std::vector<point3_t> points_;
    std::vector<int> order_;
    std::vector<node> nodes_; // children of i: 2i + 1 and 2i + 2
    std::vector<int> leaf_of_;
    std::vector<bool> out_;
};

#endif
