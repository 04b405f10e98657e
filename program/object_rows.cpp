#include "program/object_rows.h"

#include "base/command_result.h"
#include "base/numbers.h"
#include "edit/document/selection_internal.h"
#include "model/each.h"
#include "model/identity_internal.h"
#include "model/object_internal.h"
#include "model/object_tree.h"
#include "model/world.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace {

struct flags_t {
    int surfaces; // its own
    bool visible, locked;
    bool operator==(const flags_t &) const = default;
};

struct row_t {
    const object_t *object; // that it was made of; it may be gone
    const object_t *parent;
    int id, parent_id, type;
    flags_t flags;
    int surfaces; // of the object and all below it
    std::string name;
};

constexpr std::size_t no_row = static_cast<std::size_t>(-1);

struct told_t {
    int number = 0;
    std::uint64_t identities = 0;   // identity_change_count()
    std::vector<row_t> rows;        // depth first
    std::vector<std::size_t> above; // the row of each row's parent
    std::vector<int> changed;       // those that differed from the answer before
    int hidden = 0, locked = 0;
};
told_t &told()
{
    static auto *const last = new told_t;
    return *last;
}

const char *name_of(const object_t *object) { return object->name == nullptr ? "" : object->name; }

flags_t flags_of(const object_t *object)
{
    return {object->num_surfaces, object->visible != 0, object->locked != 0};
}

// Surfaces of each row with those below it.
std::vector<int> sums_of(const told_t &all)
{
    std::vector<int> sums(all.rows.size());
    for (std::size_t i = sums.size(); i-- > 0;) {
        sums[i] += all.rows[i].flags.surfaces;
        if (all.above[i] != no_row)
            sums[all.above[i]] += sums[i];
    }
    return sums;
}

void count_flags(told_t *all)
{
    all->hidden = all->locked = 0;
    for (const row_t &row : all->rows) {
        all->hidden += row.flags.visible ? 0 : 1;
        all->locked += row.flags.locked ? 1 : 0;
    }
}

told_t rows_now()
{
    object_t *const world = vesk_get_world();
    told_t now;
    now.rows.reserve(told().rows.size());
    now.above.reserve(told().rows.size());
    std::vector<std::size_t> way; // rows of the present object and those above it
    const int world_id = object_identity(world);
    for_each_object(world, [&](object_t *object) {
        if (object == world)
            return;
        while (!way.empty() && now.rows[way.back()].object != object->parent)
            way.pop_back();
        now.above.push_back(way.empty() ? no_row : way.back());
        const int parent_id = way.empty() ? world_id : now.rows[way.back()].id;
        way.push_back(now.rows.size());
        now.rows.push_back({object, object->parent, object_identity(object), parent_id,
                            object->type, flags_of(object), 0, name_of(object)});
    });
    const std::vector<int> sums = sums_of(now);
    for (std::size_t i = 0; i < sums.size(); ++i)
        now.rows[i].surfaces = sums[i];
    count_flags(&now);
    now.identities = identity_change_count();
    return now;
}

bool same_places(const std::vector<row_t> &a, const std::vector<row_t> &b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const row_t &x, const row_t &y) {
        return x.id == y.id && x.parent_id == y.parent_id && x.type == y.type;
    });
}

// Whether the objects stand where the rows do that were told. Which rows differ in names and flags
// alone is found out on the way: most changes are of few objects, and to look each of them up by its
// number costs more than all the rest.
bool note_changes(std::vector<std::size_t> *changed)
{
    if (told().identities != identity_change_count())
        return false;
    const std::vector<row_t> &rows = told().rows;
    object_t *const world = vesk_get_world();
    std::size_t i = 0;
    const object_t *other = find_object_where(world, [&](object_t *object) {
        if (object == world)
            return false;
        if (i == rows.size() || rows[i].object != object || rows[i].parent != object->parent ||
            rows[i].type != object->type)
            return true;
        if (flags_of(object) != rows[i].flags || rows[i].name != name_of(object))
            changed->push_back(i);
        ++i;
        return false;
    });
    return other == nullptr && i == rows.size();
}

// Takes over what note_changes found. Returns whether any row differs.
bool take_changes(const std::vector<std::size_t> &noted)
{
    if (noted.empty())
        return false;
    told_t &all = told();
    bool own_changed = false;
    for (const std::size_t i : noted) {
        row_t &row = all.rows[i];
        const flags_t flags = flags_of(row.object);
        own_changed = own_changed || flags.surfaces != row.flags.surfaces;
        row.flags = flags;
        row.name = name_of(row.object);
    }
    all.changed.clear();
    if (own_changed) {
        const std::vector<int> sums = sums_of(all);
        std::size_t next = 0; // of those that were noted
        for (std::size_t i = 0; i < sums.size(); ++i) {
            const bool is_noted = next < noted.size() && noted[next] == i;
            next += is_noted ? 1 : 0;
            if (is_noted || sums[i] != all.rows[i].surfaces)
                all.changed.push_back(static_cast<int>(i));
            all.rows[i].surfaces = sums[i];
        }
    } else {
        all.changed.assign(noted.begin(), noted.end());
    }
    count_flags(&all);
    ++all.number;
    return true;
}

struct answer_t {
    bool anew = false;
    bool differs = false;

    // "NUMBER ANEW OBJECTS HIDDEN LOCKED"
    [[nodiscard]] std::string head() const
    {
        return std::to_string(told().number) + (anew ? " 1 " : " 0 ") +
               std::to_string(told().rows.size()) + " " + std::to_string(told().hidden) + " " +
               std::to_string(told().locked);
    }
};

// Where nothing differs, the answer before goes on to be the last one.
answer_t ask(int since)
{
    std::vector<std::size_t> noted;
    if (since == told().number && note_changes(&noted))
        return {.anew = false, .differs = take_changes(noted)};
    told_t now = rows_now();
    answer_t answer;
    answer.anew = since != told().number || !same_places(now.rows, told().rows);
    for (std::size_t i = 0; i < now.rows.size(); ++i) {
        if (answer.anew || now.rows[i].surfaces != told().rows[i].surfaces ||
            now.rows[i].flags != told().rows[i].flags || now.rows[i].name != told().rows[i].name)
            now.changed.push_back(static_cast<int>(i));
    }
    answer.differs = answer.anew || !now.changed.empty();
    now.number = told().number + (answer.differs ? 1 : 0);
    if (!answer.differs)
        now.changed = std::move(told().changed);
    told() = std::move(now);
    return answer;
}

// Of the rows that differed, each after a blank.
std::string words_of(std::size_t from, std::size_t count)
{
    std::string text;
    const std::vector<int> &changed = told().changed;
    for (std::size_t i = from; i < changed.size() && i - from < count; ++i) {
        const row_t &row = told().rows[static_cast<std::size_t>(changed[i])];
        text += " " + std::to_string(row.id) + " " + std::to_string(row.parent_id) + " " +
                object_type_word(row.type) + " " + list_element(row.name) + " " +
                std::to_string(row.surfaces) + (row.flags.visible ? " 1" : " 0") +
                (row.flags.locked ? " 1" : " 0");
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

void command_selected_objects_part(int from, int count)
{
    command_result_set("");
    const listitem *node = selection().objects;
    for (int i = 0; i < from && node != nullptr; ++i)
        node = node->next;
    for (int i = 0; i < count && node != nullptr; ++i, node = node->next)
        command_result_append_element(object_identity(item_of<object_t>(node)));
}

void command_objects_are_selected(const char *ids)
{
    std::vector<int> asked;
    const char *end = ids + std::strlen(ids);
    int id = 0;
    while ((ids = scan_int(ids, end, &id)) != nullptr)
        asked.push_back(id);
    std::unordered_map<const object_t *, bool> found;
    for (const int number : asked)
        found.emplace(object_by_identity(number), false);
    for (const object_t *object : each<object_t>(selection().objects)) {
        const auto place = found.find(object);
        if (place != found.end())
            place->second = true;
    }
    command_result_set("");
    for (const int number : asked) {
        const object_t *object = object_by_identity(number);
        command_result_append_element(object != nullptr && found[object] ? 1 : 0);
    }
}
