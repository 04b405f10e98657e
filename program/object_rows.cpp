#include "program/object_rows.h"

#include "base/command_result.h"
#include "model/each.h"
#include "model/identity.h"
#include "model/object_internal.h"
#include "model/object_tree.h"
#include "model/world.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace {

struct row_t {
    int id, parent, type;
    int surfaces; // of the object and all below it
    bool visible, locked;
    std::string name;
    bool operator==(const row_t &) const = default;
};

struct told_t {
    int number = 0;
    std::vector<row_t> rows;
};
told_t &told()
{
    static auto *const last = new told_t;
    return *last;
}

// Depth first.
std::vector<row_t> rows_now()
{
    object_t *const world = vesk_get_world();
    std::vector<row_t> rows;
    std::vector<std::pair<const object_t *, std::size_t>>
        above;                        // of the present object, and its row
    std::vector<std::size_t> parents; // the row above each row
    for_each_object(world, [&](object_t *object) {
        if (object == world)
            return;
        while (!above.empty() && above.back().first != object->parent)
            above.pop_back();
        parents.push_back(above.empty() ? rows.size() : above.back().second);
        above.emplace_back(object, rows.size());
        rows.push_back({object_identity(object), object_identity(object->parent), object->type,
                        object->num_surfaces, object->visible != 0, object->locked != 0,
                        object->name == nullptr ? "" : object->name});
    });
    for (std::size_t i = rows.size(); i-- > 0;) {
        if (parents[i] != i)
            rows[parents[i]].surfaces += rows[i].surfaces;
    }
    return rows;
}

bool same_places(const std::vector<row_t> &a, const std::vector<row_t> &b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const row_t &x, const row_t &y) {
        return x.id == y.id && x.parent == y.parent && x.type == y.type;
    });
}

} // namespace

void command_object_rows(int since)
{
    std::vector<row_t> now = rows_now();
    const bool anew = since != told().number || !same_places(now, told().rows);
    int hidden = 0, locked = 0;
    std::string text;
    for (std::size_t i = 0; i < now.size(); ++i) {
        const row_t &row = now[i];
        hidden += row.visible ? 0 : 1;
        locked += row.locked ? 1 : 0;
        if (!anew && row == told().rows[i])
            continue;
        text += " " + std::to_string(row.id) + " " + std::to_string(row.parent) + " " +
                object_type_word(row.type) + " " + list_element(row.name) + " " +
                std::to_string(row.surfaces) + (row.visible ? " 1" : " 0") +
                (row.locked ? " 1" : " 0");
    }
    const int number = told().number + 1;
    const std::string head = std::to_string(number) + (anew ? " 1 " : " 0 ") +
                             std::to_string(now.size()) + " " + std::to_string(hidden) + " " +
                             std::to_string(locked);
    told() = {number, std::move(now)};
    command_result_set((head + text).c_str());
}
