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

// How rows come from those of the answer before, where most of them stay as they are: some go, some come in
// one place. `possible` says whether it is so.
struct edit_t {
    bool possible = false;
    int before = 0;                  // the number of that answer
    std::size_t from = 0, count = 0; // those that come
    std::vector<int> gone;           // ids
    std::vector<std::size_t> others; // rows that stay and differ in names, flags or sums
    std::vector<std::pair<int, int>>
        at; // parents, and the place among their children of the first that comes
};

struct told_t {
    int number = 0;
    std::uint64_t identities = 0;   // identity_change_count()
    std::vector<row_t> rows;        // depth first
    std::vector<std::size_t> above; // the row of each row's parent
    std::vector<int> changed;       // those that differed from the answer before
    int hidden = 0, locked = 0;
    edit_t edit;
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

bool same_place(const row_t &a, const row_t &b)
{
    return a.id == b.id && a.parent_id == b.parent_id && a.type == b.type;
}

bool same_content(const row_t &a, const row_t &b)
{
    return a.surfaces == b.surfaces && a.flags == b.flags && a.name == b.name;
}

bool same_places(const std::vector<row_t> &a, const std::vector<row_t> &b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), same_place);
}

// Finds out how one answer comes from another: what both have at the beginning and at the end stays.
class comparison {
public:
    comparison(const told_t &old, const told_t &now) : old_(old), now_(now)
    {
        const auto &a = old.rows, &b = now.rows;
        const auto differ = std::mismatch(a.begin(), a.end(), b.begin(), b.end(), same_place);
        first_ = static_cast<std::size_t>(differ.first - a.begin());
        const std::size_t most = std::min(a.size(), b.size()) - first_;
        while (last_ < most && same_place(a[a.size() - 1 - last_], b[b.size() - 1 - last_]))
            ++last_;
    }

    edit_t edit() const
    {
        edit_t found;
        found.before = old_.number;
        found.from = first_;
        found.count = now_.rows.size() - last_ - first_;
        for (std::size_t i = first_; i < old_.rows.size() - last_; ++i)
            found.gone.push_back(old_.rows[i].id);
        found.possible =
            first_ + last_ > 0 && !goes_with_others() && take_others(&found) && take_places(&found);
        return found;
    }

private:
    // Rows that stay below one that goes. They would follow it at once.
    [[nodiscard]] bool goes_with_others() const
    {
        if (last_ == 0)
            return false;
        const std::size_t end = old_.rows.size() - last_;
        std::size_t above = old_.above[end];
        while (above != no_row && above >= end)
            above = old_.above[above];
        return above != no_row && above >= first_;
    }

    bool take_others(edit_t *found) const
    {
        constexpr std::size_t most = 100;
        const std::size_t end = now_.rows.size() - last_;
        for (std::size_t i = 0; i < now_.rows.size() && found->others.size() <= most; ++i) {
            if (i == first_)
                i = end;
            if (i == now_.rows.size())
                break;
            const std::size_t old = i < first_ ? i : i + old_.rows.size() - now_.rows.size();
            if (!same_content(now_.rows[i], old_.rows[old]))
                found->others.push_back(i);
        }
        return found->others.size() <= most;
    }

    // Where the rows that come stand among those of parents that stay. Not for very many: the panel counts to
    // the place of each.
    bool take_places(edit_t *found) const
    {
        constexpr int most = 1000;
        const std::size_t end = found->from + found->count;
        int before_others = 0;
        for (std::size_t i = found->from; i < end; ++i) {
            const std::size_t above = now_.above[i];
            if (above != no_row && above >= found->from)
                continue; // of one that comes as well
            const int parent = now_.rows[i].parent_id;
            if (found->at.empty() || found->at.back().first != parent)
                found->at.emplace_back(parent, place_below(parent));
            if (found->at.back().second >= 0 && ++before_others > most)
                return false;
        }
        return true;
    }

    // -1 for the end.
    [[nodiscard]] int place_below(int parent) const
    {
        const auto is_below = [parent](const row_t &row) { return row.parent_id == parent; };
        const auto begin = now_.rows.begin(), end = now_.rows.end();
        if (std::none_of(end - static_cast<std::ptrdiff_t>(last_), end, is_below))
            return -1;
        return static_cast<int>(
            std::count_if(begin, begin + static_cast<std::ptrdiff_t>(first_), is_below));
    }

    const told_t &old_, &now_;
    std::size_t first_ = 0, last_ = 0; // rows that are the same at the beginning and at the end
};

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
    all.edit = {};
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
        if (answer.anew || !same_content(now.rows[i], told().rows[i]))
            now.changed.push_back(static_cast<int>(i));
    }
    if (answer.anew && since == told().number && since != 0)
        now.edit = comparison(told(), now).edit();
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

void command_object_rows_edit(int number)
{
    command_result_set("");
    const edit_t &edit = told().edit;
    if (number != told().number || !edit.possible)
        return;
    std::string text = std::to_string(edit.before) + " " + std::to_string(edit.from) + " " +
                       std::to_string(edit.count) + " {";
    for (const int id : edit.gone)
        text += " " + std::to_string(id);
    text += " } {";
    for (const std::size_t row : edit.others)
        text += " " + std::to_string(row);
    text += " } {";
    for (const auto &[parent, place] : edit.at)
        text += " " + std::to_string(parent) + (place < 0 ? " end" : " " + std::to_string(place));
    command_result_set((text + " }").c_str());
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
