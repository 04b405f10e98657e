#ifndef VESK_EDIT_MESH_BOX_TREE_H
#define VESK_EDIT_MESH_BOX_TREE_H

// Boxes in a tree of boxes, for finding those that overlap. Boxes that touch overlap.

#include "base/types.h"

#include <algorithm>
#include <cstddef>
#include <vector>

struct box_t {
    float low[3], high[3];

    // Of nothing; add enlarges it.
    static box_t none();
    void add(const point3_t &p);
    void add(const box_t &box);
    [[nodiscard]] bool meets(const box_t &other) const
    {
        // Without branches, which nobody could predict here.
        return ((low[0] <= other.high[0]) & (other.low[0] <= high[0]) & (low[1] <= other.high[1]) &
                (other.low[1] <= high[1]) & (low[2] <= other.high[2]) &
                (other.low[2] <= high[2])) != 0;
    }
};

class box_tree {
public:
    explicit box_tree(std::vector<box_t> boxes);

    // Calls visit(i, j) once for each two boxes that overlap, in any order; ends early when it
    // returns false.
    template <class Visit>
    bool pairs(Visit &&visit) const
    {
        return nodes_.empty() || within(0, visit);
    }
    // The same search in pieces that may run side by side: about `wanted` of them, in an order that
    // depends on the boxes only.
    struct piece_t {
        int a, b; // nodes; the same: the pairs within it
    };
    [[nodiscard]] std::vector<piece_t> pieces(int wanted) const;
    template <class Visit>
    bool pairs_of(const piece_t &piece, Visit &&visit) const
    {
        return piece.a == piece.b ? within(piece.a, visit) : between(piece.a, piece.b, visit);
    }
    // Calls visit(i) for every box that overlaps this one.
    template <class Visit>
    void query(const box_t &box, Visit &&visit) const
    {
        if (!nodes_.empty())
            query_at(0, box, visit);
    }

private:
    struct node_t {
        box_t box;
        int begin, end; // places in order_
        int right;      // the left child follows its parent; 0: a leaf
    };
    static constexpr int leaf_size = 4;

    void put_in_order();
    int build(int begin, int end);

    template <class Visit>
    bool within(int at, Visit &visit) const
    {
        const node_t &node = nodes_[at];
        if (node.right != 0)
            return within(at + 1, visit) && within(node.right, visit) &&
                   between(at + 1, node.right, visit);
        for (int i = node.begin; i < node.end; ++i) {
            for (int j = i + 1; j < node.end; ++j) {
                if (boxes_[i].meets(boxes_[j]) && !visit(order_[i], order_[j]))
                    return false;
            }
        }
        return true;
    }
    template <class Visit>
    bool between(int a, int b, Visit &visit) const
    {
        const node_t &x = nodes_[a], &y = nodes_[b];
        if (!x.box.meets(y.box))
            return true;
        if (x.right != 0 && (y.right == 0 || x.end - x.begin >= y.end - y.begin))
            return between(a + 1, b, visit) && between(x.right, b, visit);
        if (y.right != 0)
            return between(a, b + 1, visit) && between(a, y.right, visit);
        for (int i = x.begin; i < x.end; ++i) {
            if (!boxes_[i].meets(y.box))
                continue;
            for (int j = y.begin; j < y.end; ++j) {
                if (boxes_[i].meets(boxes_[j]) && !visit(order_[i], order_[j]))
                    return false;
            }
        }
        return true;
    }
    template <class Visit>
    void query_at(int at, const box_t &box, Visit &visit) const
    {
        const node_t &node = nodes_[at];
        if (!node.box.meets(box))
            return;
        if (node.right != 0) {
            query_at(at + 1, box, visit);
            query_at(node.right, box, visit);
            return;
        }
        for (int i = node.begin; i < node.end; ++i) {
            if (boxes_[i].meets(box))
                visit(order_[i]);
        }
    }

    std::vector<int> order_;
    std::vector<box_t> boxes_; // in this order
    std::vector<node_t> nodes_;
};

#endif
