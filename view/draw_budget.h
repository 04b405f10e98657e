#ifndef VESK_VIEW_DRAW_BUDGET_H
#define VESK_VIEW_DRAW_BUDGET_H

// The layers that a view leaves out while something moves, so that it keeps up: each view keeps a
// running cost of every layer, and layers go in a fixed order until the rest fits. When the motion
// has ended everything is drawn in full.

#include <array>
#include <cstddef>
#include <tuple>

enum class draw_layer { fill, edges, vertices, smoothing, rest, count };

constexpr double frame_budget = 0.028; // seconds; a thirtieth has room for the event, too
constexpr double slow_picture = 0.04;  // above it events come before the full picture
constexpr double settle_after = 0.15;  // of the last motion

struct layer_choice_t {
    bool fill = true;
    bool edges = true;
    bool vertices = true;
    bool smoothing = true;
    bool boxes_only = false; // by those who draw, never chosen
    int detail = 0;          // level of coarse meshes; 0: as they are
    double expected = 0;     // seconds that a picture in coarse detail should take
    bool whole = true;       // in coarse detail, without any layer left out
    double share = 1;        // of the elements that have no coarse detail; below 1 the rest is dots
};

// How much of a picture's elements is left in each level of detail; in the last one meshes that have no
// coarse versions are clouds of points.
using detail_shares_t = std::array<double, 5>;

// Seconds of each layer of one picture.
using layer_costs_t = std::array<double, static_cast<std::size_t>(draw_layer::count)>;

class draw_budget {
public:
    // A measured cost in seconds of one layer of a frame; that of smoothing is its surplus.
    void note(draw_layer layer, double seconds);

    // The costs of a whole picture; layers that it has not are left as they were.
    void note_all(const layer_costs_t &costs);

    // What a picture in coarse detail took, as `choose` chose it. The next one in that detail is expected
    // to take as much, those in others more or less with it.
    void note_coarse(const layer_choice_t &choice, double seconds);

    // How much each level has of the elements. Where it is no longer what it was, the levels are others,
    // and what they took is forgotten.
    void take_shares(const detail_shares_t &shares);

    // The size of the scene that is drawn next. For one that is much larger than any before it the
    // costs are guessed until they are measured; for one that has grown they grow with it.
    void expect(double num_vertices);

    // The layers to draw: all at rest, and while moving those that fit, in the finest detail in which
    // some do; of coarse levels the coarsest first, then finer ones as far as it leaves room.
    // `fill_goes_first` says whether the fill goes before the edges (flat views) or after them (3D);
    // `seconds` what a picture may take.
    [[nodiscard]] layer_choice_t choose(bool moving, bool fill_goes_first,
                                        double seconds = frame_budget) const;

    [[nodiscard]] double cost(draw_layer layer) const
    {
        return costs_[static_cast<std::size_t>(layer)];
    }

    // Of a picture with all layers.
    [[nodiscard]] double full_cost() const;

private:
    // Seconds of coarse pictures by level, of all layers and without one; 0: not measured yet.
    using taken_t = std::array<std::array<double, 2>, std::tuple_size_v<detail_shares_t>>;

    [[nodiscard]] double expected_of(std::size_t level, bool whole, double without,
                                     double elements) const;
    void scale_taken(double factor);

    layer_costs_t costs_ = {};
    detail_shares_t shares_ = {1, 1, 1, 1, 1};
    taken_t taken_ = {};
    double full_elements_ = 0; // seconds of the last whole picture's fill and edges
    double num_vertices_ = 0;  // of the largest scene of late
};

#endif
