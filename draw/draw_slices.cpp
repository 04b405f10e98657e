#include "draw/draw_slices.h"

#include "base/ui_port.h"

#include <utility>

namespace {

struct slice_t {
    bool runs = false;
    bool full = false;    // its time is over
    bool left = false;    // something was left out
    std::uint64_t at = 0; // steps asked for
    std::size_t part = 0; // parts asked for
    slice_progress_t *progress = nullptr;
    double seconds = 0;
    double deadline = 0;        // 0: nothing was drawn yet
    std::uint64_t elements = 0; // since the last wait
    std::function<void()> finish;
};
slice_t slice;

void look_at_clock()
{
    if (slice.elements >= slice_step_elements) {
        slice.finish(); // drivers put work off
        slice.elements = 0;
    }
    slice.full = ui_port().now_seconds() >= slice.deadline;
}

} // namespace

void slice_begin(slice_progress_t *progress, double seconds, std::function<void()> finish)
{
    slice = {};
    slice.runs = true;
    slice.progress = progress;
    slice.seconds = seconds;
    slice.finish = std::move(finish);
}

bool slice_end()
{
    slice.runs = false;
    return !slice.left;
}

bool slice_runs() { return slice.runs; }

bool slice_draws(std::uint32_t num_elements)
{
    if (!slice.runs)
        return true;
    if (slice.at++ < slice.progress->steps)
        return false;
    if (slice.deadline == 0)
        slice.deadline = ui_port().now_seconds() + slice.seconds;
    else if (!slice.full)
        look_at_clock();
    if (slice.full) {
        slice.left = true;
        return false;
    }
    ++slice.progress->steps;
    slice.elements += num_elements;
    return true;
}

slice_part_t::slice_part_t()
{
    if (!slice.runs)
        return;
    const std::vector<std::uint64_t> &drawn = slice.progress->parts;
    const std::size_t number = slice.part++;
    draws_ = number >= drawn.size() && !slice.full;
    if (number < drawn.size())
        slice.at += drawn[number];
    else if (slice.full)
        slice.left = true;
    first_ = slice.at;
}

slice_part_t::~slice_part_t()
{
    if (!slice.runs || !draws_ || slice.left)
        return;
    slice.progress->parts.push_back(slice.at - first_);
    slice.progress->prepared.reset();
}

std::any &slice_part_t::kept() { return slice.runs ? slice.progress->prepared : own_; }

void slice_items(slice_items_t &items, std::size_t count,
                 const std::function<void(std::size_t)> &draw)
{
    if (slice.runs)
        slice.at += items.steps;
    for (std::size_t i = items.drawn; i < count; ++i) {
        if (slice.runs && slice.full) {
            slice.left = true;
            return;
        }
        const std::uint64_t before = slice.at;
        draw(i);
        if (slice.runs && slice.left)
            return;
        items.drawn = i + 1;
        items.steps += slice.at - before;
    }
}
