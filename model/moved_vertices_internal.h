#ifndef VESK_MODEL_MOVED_VERTICES_INTERNAL_H
#define VESK_MODEL_MOVED_VERTICES_INTERNAL_H

#include "model/moved_vertices.h"

#include <mutex>

// The arrays of positions that the steps of one motion make from a first one. They differ in the moved
// vertices alone, so that an array that nobody holds any more becomes the next one by writing these.
// Workers may be the last to hold one.
class moved_positions : public std::enable_shared_from_this<moved_positions> {
public:
    moved_positions(moved_ptr moved, const flat_array<point3_t> &first)
        : moved_(std::move(moved)), first_(first)
    {
    }
    [[nodiscard]] const moved_ptr &moved() const { return moved_; }
    [[nodiscard]] bool holds(const flat_array<point3_t> &positions) const;
    // Of the vertices as they are now; `before` is one of these arrays.
    flat_array<point3_t> read(const flat_array<point3_t> &before);
    // No further array will be read.
    void end();

    static const moved_positions *of(const flat_array<point3_t> &positions);

private:
    using array_t = std::unique_ptr<flat_vector<point3_t>>;
    struct give_back_t;
    array_t spare();
    void give_back(array_t array);

    const moved_ptr moved_;
    const std::weak_ptr<const flat_vector<point3_t>> first_;
    std::mutex mutex_;
    std::vector<array_t> spares_;
    bool ended_ = false;
};

#endif
