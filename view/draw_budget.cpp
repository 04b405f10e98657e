#include "view/draw_budget.h"

#include <algorithm>

namespace {
constexpr double weight_of_new = 0.4;   // of a running cost
constexpr double guessed_cost = 100e-9; // seconds a vertex and layer, of a software driver
} // namespace

void draw_budget::note(draw_layer layer, double seconds)
{
    double &cost = costs_[static_cast<std::size_t>(layer)];
    cost = cost == 0 ? seconds : cost + (seconds - cost) * weight_of_new;
}

void draw_budget::note_all(const layer_costs_t &costs)
{
    for (std::size_t layer = 0; layer < costs.size(); ++layer)
        if (costs[layer] > 0)
            note(static_cast<draw_layer>(layer), costs[layer]);
}

void draw_budget::note_coarse(double expected, double seconds)
{
    if (expected > 0)
        coarse_factor_ *= 1 + weight_of_new * (std::clamp(seconds / expected, 0.5, 2.0) - 1);
    coarse_factor_ = std::clamp(coarse_factor_, 0.1, 4.0);
    // The first picture of a view pays for what the driver prepares.
    double &rest = costs_[static_cast<std::size_t>(draw_layer::rest)];
    rest = std::min(rest, seconds);
}

void draw_budget::expect(double num_vertices)
{
    if (num_vertices > 2 * num_vertices_) {
        for (const draw_layer layer : {draw_layer::fill, draw_layer::edges, draw_layer::vertices}) {
            double &cost = costs_[static_cast<std::size_t>(layer)];
            cost = std::max(cost, num_vertices * guessed_cost);
        }
        costs_[static_cast<std::size_t>(draw_layer::smoothing)] = 0; // its share is not known
    }
    if (num_vertices > 2 * num_vertices_ || num_vertices < num_vertices_ / 2)
        num_vertices_ = num_vertices;
}

double draw_budget::full_cost() const
{
    // Measured with smoothing, which is a part of them.
    return cost(draw_layer::fill) + cost(draw_layer::edges) + cost(draw_layer::vertices) +
           cost(draw_layer::rest);
}

layer_choice_t draw_budget::choose(bool moving, bool fill_goes_first,
                                   const detail_shares_t &shares) const
{
    layer_choice_t choice;
    if (!moving || full_cost() <= frame_budget)
        return choice;
    choice.vertices = false;
    const double fill = cost(draw_layer::fill);
    const double edges = cost(draw_layer::edges);
    const double rest = cost(draw_layer::rest);
    if (rest + fill + edges <= frame_budget)
        return choice;
    choice.smoothing = false;
    // Smoothing is a part of the costs as they were measured.
    const double plain = std::max(rest + fill + edges - cost(draw_layer::smoothing), 0.0);
    if (plain <= frame_budget)
        return choice;
    const double sum = std::max(fill + edges, 1e-9);
    const double without = 1 - (fill_goes_first ? fill : edges) / sum;
    const double elements = std::max(plain - rest, 0.0);
    for (std::size_t level = 0; level < shares.size(); ++level) {
        if (level > 0 && shares[level] >= shares[level - 1])
            continue; // no coarser than the one before
        choice.detail = static_cast<int>(level);
        const double factor = level > 0 ? coarse_factor_ : 1;
        for (const bool all : {true, false}) {
            (fill_goes_first ? choice.fill : choice.edges) = all;
            choice.expected = rest + elements * shares[level] * factor * (all ? 1 : without);
            if (choice.expected <= frame_budget)
                return choice;
        }
    }
    // A view that is slow but usable is better than boxes.
    constexpr double boxes_above = 10 * frame_budget;
    choice.boxes_only = choice.expected > boxes_above;
    return choice;
}
