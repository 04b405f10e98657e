#ifndef VESK_DRAW_DRAW_SLICES_H
#define VESK_DRAW_DRAW_SLICES_H

// A picture that takes long is drawn in slices, between which events are taken. The drawing functions
// run anew for every slice; the steps that earlier slices have drawn are passed over, and those that
// no longer fit the time are left to the next one. So a picture is made of the same steps in the same
// order as one that is drawn at once.

#include <cstdint>
#include <functional>

// Elements that one step draws at most; a whole number of triangles and of lines.
constexpr std::uint32_t slice_step_elements = 6 * 4096;

// Begins a slice after `done` steps. Its time runs from the first step that it draws.
//   seconds  what it may take
//   finish   waits until what was drawn is in the picture: drivers put work off
void slice_begin(std::uint64_t done, double seconds, std::function<void()> finish);

struct slice_end_t {
    std::uint64_t done; // steps drawn by now
    bool finished;      // none was left out
};
slice_end_t slice_end();

// Whether pictures are drawn in slices just now.
bool slice_runs();

// Whether the next step is to be drawn now; always, where no slice runs. Asked once a step, with
// about how many elements it draws.
bool slice_draws(std::uint32_t num_elements);

#endif
