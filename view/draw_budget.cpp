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

void draw_budget::expect(double num_vertices)
{
    if (num_vertices > 2 * num_vertices_) {
        for (const draw_layer layer : {draw_layer::fill, draw_layer::edges, draw_layer::vertices}) {
            double &cost = costs_[static_cast<std::size_t>(layer)];
            cost = std::max(cost, num_vertices * guessed_cost);
        }
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

layer_choice_t draw_budget::choose(bool moving, bool fill_goes_first) const
{
    layer_choice_t choice;
    if (!moving)
        return choice;
    double total = full_cost();
    const auto leave_out = [&](bool &layer, draw_layer which) {
        if (total <= frame_budget)
            return;
        layer = false;
        total -= cost(which);
    };
    leave_out(choice.vertices, draw_layer::vertices);
    leave_out(choice.smoothing, draw_layer::smoothing);
    if (fill_goes_first)
        leave_out(choice.fill, draw_layer::fill);
    else
        leave_out(choice.edges, draw_layer::edges);
    // A view that is slow but usable is better than boxes.
    constexpr double boxes_above = 10 * frame_budget;
    choice.boxes_only = total > boxes_above;
    return choice;
}
