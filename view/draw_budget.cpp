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
    const double elements = costs[static_cast<std::size_t>(draw_layer::fill)] +
                            costs[static_cast<std::size_t>(draw_layer::edges)];
    if (full_elements_ > 0 && elements > 0)
        scale_taken(elements / full_elements_); // the camera came nearer, or went away
    full_elements_ = elements;
}

void draw_budget::scale_taken(double factor)
{
    for (auto &level : taken_)
        for (double &seconds : level)
            seconds *= factor;
}

void draw_budget::note_coarse(const layer_choice_t &choice, double seconds)
{
    // Other work makes single pictures slower, never faster.
    constexpr double most_rise = 4;
    constexpr double weight_of_faster = 0.8;
    if (choice.expected > 0) {
        const double ratio = std::min(seconds / choice.expected, most_rise);
        scale_taken(1 + (ratio < 1 ? weight_of_faster : weight_of_new) * (ratio - 1));
    }
    double &taken = taken_[static_cast<std::size_t>(choice.detail)][choice.whole ? 1 : 0];
    if (taken == 0)
        taken = seconds;
    // The first picture of a view pays for what the driver prepares.
    double &rest = costs_[static_cast<std::size_t>(draw_layer::rest)];
    rest = std::min(rest, seconds);
}

void draw_budget::take_shares(const detail_shares_t &shares)
{
    if (shares_ == shares)
        return;
    shares_ = shares;
    taken_ = {};
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
    constexpr double much_more = 1.25;
    if (num_vertices > much_more * num_vertices_ && num_vertices <= 2 * num_vertices_) {
        // The first pictures of more pay for memory that the driver has not used yet.
        constexpr double first_touch = 2;
        const double factor = first_touch * num_vertices / num_vertices_;
        for (const draw_layer layer : {draw_layer::fill, draw_layer::edges, draw_layer::vertices})
            costs_[static_cast<std::size_t>(layer)] *= factor;
        scale_taken(factor);
        num_vertices_ = num_vertices;
        full_elements_ = 0;
    }
    if (num_vertices > 2 * num_vertices_ || num_vertices < num_vertices_ / 2) {
        num_vertices_ = num_vertices;
        taken_ = {};
        full_elements_ = 0;
    }
}

double draw_budget::full_cost() const
{
    // Measured with smoothing, which is a part of them.
    return cost(draw_layer::fill) + cost(draw_layer::edges) + cost(draw_layer::vertices) +
           cost(draw_layer::rest);
}

// Of a level that was not measured by the nearest one that was, a coarser one if there is any: as if all
// that takes time were elements, of which a finer level has more. `without` is the share of a picture
// that leaves a layer out, `elements` the seconds of all elements.
double draw_budget::expected_of(std::size_t level, bool whole, double without,
                                double elements) const
{
    const auto size = [&](std::size_t of_level, bool of_whole) {
        return shares_[of_level] * (of_whole ? 1 : without);
    };
    const auto from = [&](std::size_t other, bool other_whole) {
        return taken_[other][other_whole ? 1 : 0] * size(level, whole) / size(other, other_whole);
    };
    if (taken_[level][whole ? 1 : 0] > 0)
        return taken_[level][whole ? 1 : 0];
    if (taken_[level][whole ? 0 : 1] > 0)
        return from(level, !whole);
    for (std::size_t step = 1; step < taken_.size(); ++step)
        for (const std::size_t other : {level + step, level - step})
            for (const bool other_whole : {true, false})
                if (other > 0 && other < taken_.size() && taken_[other][other_whole ? 1 : 0] > 0)
                    return from(other, other_whole);
    return cost(draw_layer::rest) + elements * size(level, whole);
}

layer_choice_t draw_budget::choose(bool moving, bool fill_goes_first, double seconds) const
{
    layer_choice_t choice;
    if (!moving || full_cost() <= seconds)
        return choice;
    choice.vertices = false;
    const double fill = cost(draw_layer::fill);
    const double edges = cost(draw_layer::edges);
    const double rest = cost(draw_layer::rest);
    if (rest + fill + edges <= seconds)
        return choice;
    choice.smoothing = false;
    // Smoothing is a part of the costs as they were measured.
    const double plain = std::max(rest + fill + edges - cost(draw_layer::smoothing), 0.0);
    if (plain <= seconds)
        return choice;
    const double sum = std::max(fill + edges, 1e-9);
    const double without = 1 - (fill_goes_first ? fill : edges) / sum;
    const double elements = std::max(plain - rest, 0.0);
    const auto coarsest = static_cast<std::size_t>(
        std::min_element(shares_.begin(), shares_.end()) - shares_.begin());
    const bool measured = taken_ != taken_t();
    for (std::size_t level = 0; level < shares_.size(); ++level) {
        if (level > 0 && shares_[level] >= shares_[level - 1])
            continue; // no coarser than the one before
        if (level > 0 && level < coarsest && !measured)
            continue; // a wrong guess would be a long pause
        choice.detail = static_cast<int>(level);
        for (const bool whole : {true, false}) {
            (fill_goes_first ? choice.fill : choice.edges) = choice.whole = whole;
            choice.expected = level > 0 ? expected_of(level, whole, without, elements)
                                        : rest + elements * (whole ? 1 : without);
            if (choice.expected <= seconds)
                return choice;
        }
    }
    // A view that is a little slow is better than dots.
    constexpr double too_slow = 0.06;
    constexpr double share_of_time = 0.6; // the rest is for the dots
    if (choice.expected > too_slow)
        choice.share = share_of_time * seconds / choice.expected;
    return choice;
}
