#ifndef VESK_DRAW_DRAW_SLICES_H
#define VESK_DRAW_DRAW_SLICES_H

// A picture that takes long is drawn in slices, between which events are taken. The drawing functions
// run anew for every slice; the steps that earlier slices have drawn are passed over, and those that
// no longer fit the time are left to the next one. So a picture is made of the same steps in the same
// order as one that is drawn at once. Parts of it that are drawn, or not reached in this slice, are
// passed over as a whole, and what the one in hand has prepared is kept for the next slice.

#include <any>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

// Elements that one step draws at most; a whole number of triangles and of lines.
constexpr std::uint32_t slice_step_elements = 6 * 4096;

// What of a picture is drawn; empty at its begin.
struct slice_progress_t {
    std::uint64_t steps = 0;
    std::vector<std::uint64_t> parts; // the steps of each part that is drawn
    std::any prepared;                // by the part in hand
};

// Begins a slice of the picture. Its time runs from the first step that it draws.
//   progress stays until the slice ends
//   seconds  what it may take
//   finish   waits until what was drawn is in the picture: drivers put work off
void slice_begin(slice_progress_t *progress, double seconds, std::function<void()> finish);

// True: no step was left out.
bool slice_end();

// Whether pictures are drawn in slices just now.
bool slice_runs();

// Whether the next step is to be drawn now; always, where no slice runs. Asked once a step, with
// about how many elements it draws.
bool slice_draws(std::uint32_t num_elements);

// The steps that are asked for while it lives are a part of the picture; there is none in another. Every
// slice asks for the same parts in the same order.
class slice_part_t {
public:
    slice_part_t();
    ~slice_part_t();
    slice_part_t(const slice_part_t &) = delete;
    slice_part_t &operator=(const slice_part_t &) = delete;

    // False: nothing of it is to be drawn now.
    [[nodiscard]] bool draws() const { return draws_; }

    // What make() gives, of this slice or an earlier one. Asked once.
    template <class Make>
    const auto &prepared(Make &&make)
    {
        using result_t = decltype(make());
        if (std::any_cast<result_t>(&kept()) == nullptr)
            kept() = std::forward<Make>(make)();
        return *std::any_cast<result_t>(&std::as_const(kept()));
    }

private:
    std::any &kept();

    bool draws_ = true;
    std::uint64_t first_ = 0;
    std::any own_; // where no slice runs
};

// How far a part of items got; among what the part prepares.
struct slice_items_t {
    std::size_t drawn = 0;   // items
    std::uint64_t steps = 0; // of those
};

// Calls draw(i) for `count` items of the part in hand, each of some steps, from the first one that is not
// drawn yet to the one in which the time is over: what an item needs is done when its turn comes.
void slice_items(slice_items_t &items, std::size_t count,
                 const std::function<void(std::size_t)> &draw);

#endif
