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
    std::vector<int> changed; // those that differed from the answer before
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

struct answer_t {
    bool anew = false;
    int hidden = 0, locked = 0;
    bool differs = false;

    // "NUMBER ANEW OBJECTS HIDDEN LOCKED"
    [[nodiscard]] std::string head() const
    {
        return std::to_string(told().number) + (anew ? " 1 " : " 0 ") +
               std::to_string(told().rows.size()) + " " + std::to_string(hidden) + " " +
               std::to_string(locked);
    }
};

// Where nothing differs, the answer before goes on to be the last one.
answer_t ask(int since)
{
    std::vector<row_t> now = rows_now();
    answer_t answer;
    answer.anew = since != told().number || !same_places(now, told().rows);
    std::vector<int> changed;
    for (std::size_t i = 0; i < now.size(); ++i) {
        answer.hidden += now[i].visible ? 0 : 1;
        answer.locked += now[i].locked ? 1 : 0;
        if (answer.anew || now[i] != told().rows[i])
            changed.push_back(static_cast<int>(i));
    }
    answer.differs = answer.anew || !changed.empty();
    if (answer.differs)
        told() = {told().number + 1, std::move(now), std::move(changed)};
    return answer;
}

// Of the rows that differed, each after a blank.
std::string words_of(std::size_t from, std::size_t count)
{
    std::string text;
    const std::vector<int> &changed = told().changed;
    for (std::size_t i = from; i < changed.size() && i - from < count; ++i) {
        const row_t &row = told().rows[static_cast<std::size_t>(changed[i])];
        text += " " + std::to_string(row.id) + " " + std::to_string(row.parent) + " " +
                object_type_word(row.type) + " " + list_element(row.name) + " " +
                std::to_string(row.surfaces) + (row.visible ? " 1" : " 0") +
                (row.locked ? " 1" : " 0");
    }
    return text;
}

} // namespace

void command_object_rows(int since)
{
    const answer_t answer = ask(since);
    const std::string words = answer.differs ? words_of(0, told().changed.size()) : "";
    command_result_set((answer.head() + words).c_str());
}

void command_object_rows_begin(int since)
{
    const answer_t answer = ask(since);
    const std::size_t count = answer.differs ? told().changed.size() : 0;
    command_result_set((answer.head() + " " + std::to_string(count)).c_str());
}

void command_object_rows_part(int number, int from, int count)
{
    if (number != told().number || from < 0 || count <= 0)
        return;
    command_result_set(
        words_of(static_cast<std::size_t>(from), static_cast<std::size_t>(count)).c_str());
}
