#include "edit/align.h"

#include "base/messages.h"
#include "base/numbers.h"
#include "base/prefs.h"
#include "edit/document/edit_support.h"
#include "edit/document/undo.h"
#include "edit/part_moves.h"
#include "model/vector.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numeric>

namespace {

// A part's extent along the axis.
struct extent_t {
    double low, high;
    [[nodiscard]] double centre() const { return (low + high) / 2; }
};

enum class end_of_part { MIN, CENTRE, MAX };

double place_of(const extent_t &extent, end_of_part end)
{
    return end == end_of_part::MIN   ? extent.low
           : end == end_of_part::MAX ? extent.high
                                     : extent.centre();
}

// The place of a word in a list, or -1 with a message.
int word_in(const char *what, const char *word, std::initializer_list<const char *> words)
{
    int place = 0;
    std::string all;
    for (const char *each_word : words) {
        if (std::strcmp(word, each_word) == 0)
            return place;
        all += (place++ == 0 ? "" : ", ") + std::string(each_word);
    }
    display_message("%s - one of %s, not '%s'", what, all.c_str(), word);
    return -1;
}

std::vector<extent_t> extents_of(const part_moves &parts, int axis)
{
    std::vector<extent_t> extents;
    for (int i = 0; i < parts.count(); ++i) {
        extents.push_back({static_cast<double>(axis_of(parts.box_min(i), axis)),
                           static_cast<double>(axis_of(parts.box_max(i), axis))});
    }
    return extents;
}

void move_along(part_moves &parts, int axis, const std::vector<double> &offsets, const char *what)
{
    for (int i = 0; i < parts.count(); ++i) {
        point3_t offset = {0, 0, 0};
        axis_of(offset, axis) = static_cast<float>(offsets[i]);
        parts.set_offset(i, offset);
    }
    parts.commit(what);
}

// Where the parts come when they stand between the first and the last with equal gaps or distances.
std::vector<double> spread(const std::vector<extent_t> &extents, bool gaps)
{
    std::vector<int> order(extents.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&](int a, int b) { return extents[a].centre() < extents[b].centre(); });
    const extent_t &first = extents[order.front()], &last = extents[order.back()];
    const auto n = static_cast<double>(extents.size());
    double sizes = 0;
    for (const extent_t &extent : extents)
        sizes += extent.high - extent.low;
    const double gap = (last.high - first.low - sizes) / (n - 1);
    const double step = (last.centre() - first.centre()) / (n - 1);
    std::vector<double> offsets(extents.size());
    double low = first.low;
    for (std::size_t i = 1; i + 1 < order.size(); ++i) {
        const extent_t &before = extents[order[i - 1]], &extent = extents[order[i]];
        low += before.high - before.low + gap;
        offsets[order[i]] = gaps ? low - extent.low
                                 : first.centre() + step * static_cast<double>(i) - extent.centre();
    }
    return offsets;
}

} // namespace

// ---- commands ----

void command_align(int, const char *const *words)
{
    const int axis = part_axis("align", words[0]);
    const int end = word_in("align", words[1], {"min", "centre", "max"});
    if (axis < 0 || end < 0)
        return;
    const int to = word_in("align", words[2], {"selection", "first", "origin", "grid"});
    part_moves parts;
    if (to < 0 || !parts.any("align"))
        return;
    const auto where = static_cast<end_of_part>(end);
    const std::vector<extent_t> extents = extents_of(parts, axis);
    extent_t all = extents.front();
    for (const extent_t &extent : extents)
        all = {std::min(all.low, extent.low), std::max(all.high, extent.high)};
    const double spacing = prefs.grid > 0 ? prefs.grid : 1;
    std::vector<double> offsets;
    for (const extent_t &extent : extents) {
        const double at = place_of(extent, where);
        const double goal = to == 0   ? place_of(all, where)
                            : to == 1 ? place_of(extents.front(), where)
                            : to == 2 ? 0.0
                                      : std::round(at / spacing) * spacing;
        offsets.push_back(goal - at);
    }
    move_along(parts, axis, offsets, "align");
}

void command_distribute(int, const char *const *words)
{
    const int axis = part_axis("distribute", words[0]);
    const int by = word_in("distribute", words[1], {"gaps", "centres"});
    part_moves parts;
    if (axis < 0 || by < 0 || !parts.any("distribute"))
        return;
    if (parts.count() < 3) {
        display_message("distribute - select three or more");
        return;
    }
    move_along(parts, axis, spread(extents_of(parts, axis), by == 0), "distribute");
}
