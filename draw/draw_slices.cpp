#include "draw/draw_slices.h"

#include "base/ui_port.h"

#include <utility>

namespace {

struct slice_t {
    bool runs = false;
    bool full = false;    // its time is over
    std::uint64_t at = 0; // steps asked for
    std::uint64_t done = 0;
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

void slice_begin(std::uint64_t done, double seconds, std::function<void()> finish)
{
    slice = {};
    slice.runs = true;
    slice.done = done;
    slice.seconds = seconds;
    slice.finish = std::move(finish);
}

slice_end_t slice_end()
{
    slice.runs = false;
    return {slice.done, slice.done == slice.at};
}

bool slice_runs() { return slice.runs; }

bool slice_draws(std::uint32_t num_elements)
{
    if (!slice.runs)
        return true;
    if (slice.at++ < slice.done)
        return false;
    if (slice.deadline == 0)
        slice.deadline = ui_port().now_seconds() + slice.seconds;
    else if (!slice.full)
        look_at_clock();
    if (slice.full)
        return false;
    ++slice.done;
    slice.elements += num_elements;
    return true;
}
