#ifndef VESK_EDIT_MESH_PLANAR_SIDES_H
#define VESK_EDIT_MESH_PLANAR_SIDES_H

// Sides between exact points of one plane, each with the inside on its left, that meet nowhere but
// at their ends: made into closed outlines. A hole, and whatever else lies loose in the inside, is
// joined to the outline round it by a bridge, a side there and back, so that each part of the
// inside has one outline. A side may be there in both directions. n log n.

#include "edit/mesh/exact.h"

#include <vector>

class planar_sides {
public:
    // Seen against the axis, or along it when `mirrored`.
    planar_sides(const exact_points &points, int axis, bool mirrored);

    struct side_t {
        int from, to;
    };
    // Returns the side's number.
    int add(int from, int to);
    [[nodiscard]] const std::vector<side_t> &sides() const { return sides_; }

    // Adds the bridges, as further sides.
    void connect();

    // The outlines, as numbers of sides one after another. At a point that several outlines share
    // they part, so that each is as short as can be. Sides that lead nowhere are left out.
    [[nodiscard]] std::vector<std::vector<int>> trace() const;

private:
    struct spoke_t {
        int node;   // at the other end
        int out;    // the side that leaves by it, or -1
        bool after; // in the order of the sweep
    };
    class sweep_t;

    [[nodiscard]] int turn(int a, int b, int c) const;
    [[nodiscard]] int order(int a, int b) const; // from left to right, then upwards
    int node_of(int point);
    [[nodiscard]] std::vector<std::vector<spoke_t>> spokes() const;
    [[nodiscard]] std::vector<int> component_starts() const;

    const exact_points &points_;
    int axis_, across_, up_;
    bool mirrored_;
    std::vector<side_t> sides_;                 // between points
    std::vector<int> from_node_, to_node_;      // of the sides
    std::vector<int> nodes_;                    // their points
    std::unordered_map<int, int> node_numbers_; // of the points
};

#endif
