#ifndef VESK_VIEW_DRAW_BUDGET_H
#define VESK_VIEW_DRAW_BUDGET_H

// The layers that a view leaves out while something moves, so that it keeps up: each view keeps a
// running cost of every layer, and layers go in a fixed order until the rest fits. When the motion
// has ended everything is drawn in full.

#include <array>
#include <cstddef>

enum class draw_layer { fill, edges, vertices, smoothing, rest, count };

constexpr double frame_budget = 0.033; // seconds
constexpr double slow_picture = 0.06;  // above it events come before the full picture
constexpr double settle_after = 0.15;  // of the last motion

struct layer_choice_t {
    bool fill = true;
    bool edges = true;
    bool vertices = true;
    bool smoothing = true;
    bool boxes_only = false;
    int detail = 0;      // level of coarse meshes; 0: as they are
    double expected = 0; // seconds that a picture in coarse detail should take
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

    // What a picture in coarse detail took, of which so much was expected.
    void note_coarse(double expected, double seconds);

    // The size of the scene that is drawn next. For one that is much larger than any before it the
    // costs are guessed until they are measured.
    void expect(double num_vertices);

    // The layers to draw: all at rest, and while moving those that fit, in the finest detail in which
    // some do. `fill_goes_first` says whether the fill goes before the edges (flat views) or after them
    // (3D).
    [[nodiscard]] layer_choice_t choose(bool moving, bool fill_goes_first,
                                        const detail_shares_t &shares = {1, 1, 1, 1, 1}) const;

    [[nodiscard]] double cost(draw_layer layer) const
    {
        return costs_[static_cast<std::size_t>(layer)];
    }

    // Of a picture with all layers.
    [[nodiscard]] double full_cost() const;

private:
    layer_costs_t costs_ = {};
    double coarse_factor_ = 1; // from the costs of full pictures to those of coarse ones
    double num_vertices_ = 0;  // of the largest scene of late
};

#endif
