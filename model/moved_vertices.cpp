#include "model/change_marks_internal.h"
#include "model/moved_vertices_internal.h"
#include "model/object_internal.h"

#include <algorithm>

std::vector<moved_ptr> find_moved(const std::vector<object_t *> &objects,
                                  const std::vector<vertex *> &vertices)
{
    std::vector<std::shared_ptr<moved_vertices>> found;
    std::vector<std::uint32_t> firsts; // the vertices of all objects are numbered through
    std::uint32_t count = 0;
    for (object_t *object : objects) {
        found.push_back(std::make_shared<moved_vertices>());
        found.back()->records = object_flat(object)->vertex_records;
        firsts.push_back(count);
        for (vertex *v : *found.back()->records)
            set_vertex_number(v, count++);
    }
    for (const vertex *v : vertices) {
        const std::uint32_t number = vertex_number(v);
        if (number >= count)
            continue;
        const auto owner = std::upper_bound(firsts.begin(), firsts.end(), number) - 1;
        moved_vertices &moved = *found[static_cast<std::size_t>(owner - firsts.begin())];
        const std::uint32_t place = number - *owner;
        if ((*moved.records)[place] == v)
            moved.numbers.push_back(static_cast<std::int32_t>(place));
    }
    for (const auto &moved : found)
        std::sort(moved->numbers.begin(), moved->numbers.end());
    return {found.begin(), found.end()};
}

void object_mark_moved(object_t *object, const moved_ptr &moved)
{
    object_state &state = state_of(object);
    const bool alone = (state.marks & CHANGED_POSITIONS) == 0 || state.moved == moved;
    object_mark(object, CHANGED_POSITIONS); // of any vertex
    if (alone)
        state.moved = moved;
}

const std::vector<std::int32_t> *moved_between(const flat_array<point3_t> &before,
                                               const flat_array<point3_t> &now)
{
    const moved_positions *arrays = moved_positions::of(now);
    return arrays != nullptr && arrays->holds(before) ? &arrays->moved()->numbers : nullptr;
}

// ---- the arrays ----

struct moved_positions::give_back_t {
    std::shared_ptr<moved_positions> arrays;
    void operator()(flat_vector<point3_t> *array) const { arrays->give_back(array_t(array)); }
};

const moved_positions *moved_positions::of(const flat_array<point3_t> &positions)
{
    const auto *deleter = std::get_deleter<give_back_t>(positions);
    return deleter != nullptr ? deleter->arrays.get() : nullptr;
}

bool moved_positions::holds(const flat_array<point3_t> &positions) const
{
    return of(positions) == this || first_.lock() == positions;
}

flat_array<point3_t> moved_positions::read(const flat_array<point3_t> &before)
{
    array_t array = spare();
    if (array == nullptr)
        array = std::make_unique<flat_vector<point3_t>>(std::vector(*before));
    for (const std::int32_t number : moved_->numbers)
        (*array)[number] = (*moved_->records)[number]->position;
    return flat_array<point3_t>(array.release(), give_back_t{shared_from_this()});
}

moved_positions::array_t moved_positions::spare()
{
    const std::lock_guard lock(mutex_);
    if (spares_.empty())
        return nullptr;
    array_t array = std::move(spares_.back());
    spares_.pop_back();
    return array;
}

void moved_positions::give_back(array_t array)
{
    constexpr std::size_t most_spares = 2;
    const std::lock_guard lock(mutex_);
    if (!ended_ && spares_.size() < most_spares)
        spares_.push_back(std::move(array));
}

void moved_positions::end()
{
    const std::lock_guard lock(mutex_);
    ended_ = true;
    spares_.clear();
}
