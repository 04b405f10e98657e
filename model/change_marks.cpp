#include "base/foreign.h"
#include "base/messages.h"
#include "model/change_marks_internal.h"
#include "model/deferred_records.h"
#include "model/each.h"
#include "model/property.h"
#include "model/world.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace {

struct marks_record {
    std::unordered_map<const object_t *, object_state> states;
    const object_t *last = nullptr; // the object asked for last, and its state
    object_state *last_state = nullptr;
    std::uint64_t stamps = 0;
    std::uint64_t model = 0;
    std::uint64_t tree = 0;
    std::uint64_t links = 0; // of the tree
    std::uint64_t palette = 0;
    int unmarked = 0; // found by marks_check
    // Objects made or marked since the list was taken; some may be gone.
    std::vector<const object_t *> changed;
    std::uint64_t list = 1;         // its number
    bool list_is_whole = true;      // it did not grow beyond all bounds
    std::uint64_t list_foreign = 0; // foreign_count() when it was begun
};

marks_record &record()
{
    static marks_record marks;
    return marks;
}

class checksum {
public:
    void add(const void *bytes, std::size_t size)
    {
        const auto *p = static_cast<const unsigned char *>(bytes);
        for (std::size_t i = 0; i < size; ++i)
            sum_ = (sum_ ^ p[i]) * 0x100000001B3ULL;
    }
    void add(const char *text)
    {
        const std::string_view view = text ? std::string_view(text) : std::string_view("\1", 1);
        add(view.data(), view.size());
        add("", 1);
    }
    template <class T>
    void value(const T &value)
    {
        add(&value, sizeof value);
    }
    [[nodiscard]] std::uint64_t sum() const { return sum_; }

private:
    std::uint64_t sum_ = 0xCBF29CE484222325ULL;
};

// Everything of the record but the geometry and its place in the tree.
std::uint64_t record_sum(const object_t *object)
{
    checksum sum;
    sum.add(object->name);
    sum.add(object->data);
    sum.add(object->url);
    sum.value(object->has_texture);
    sum.value(object->texture);
    sum.value(object->texture_repeat_x);
    sum.value(object->texture_repeat_y);
    sum.value(object->texture_offset_x);
    sum.value(object->texture_offset_y);
    sum.value(object->centre);
    sum.value(object->rotation);
    sum.value(object->type);
    sum.value(object->visible);
    sum.value(object->locked);
    for (const vesk_prop_t *prop : each<vesk_prop_t>(object->properties)) {
        sum.add(prop->name);
        sum.add(prop->kind);
        sum.add(prop->value);
    }
    return sum.sum();
}

void put_on_list(const object_t *object, object_state &state)
{
    marks_record &marks = record();
    if (state.listed == marks.list)
        return;
    state.listed = marks.list;
    // Nobody takes the list where there is no history.
    constexpr std::size_t some = 1000;
    if (marks.changed.size() > some + 2 * marks.states.size())
        marks.list_is_whole = false;
    if (marks.list_is_whole)
        marks.changed.push_back(object);
}

void mark_state(const object_t *object, object_state &state, unsigned aspects)
{
    marks_record &marks = record();
    put_on_list(object, state);
    state.marks |= aspects;
    state.stamp = ++marks.stamps;
    ++marks.model;
    if ((aspects & CHANGED_POSITIONS) != 0)
        state.moved = nullptr;
    if ((aspects & CHANGED_RECORD) != 0) {
        ++marks.tree;
        state.record_summed = false;
    }
}

// The aspects in which the object differs from its flat mesh and the sum of its record. Lists that nobody
// touched are not walked but when `also_untouched`.
unsigned differences(const object_t *object, const object_state &state, bool also_untouched)
{
    unsigned found = 0;
    if (state.flat && (also_untouched || !untouched_flat(object)))
        found = flat_compare(object, *state.flat) & ~state.marks;
    if (state.record_summed && state.record_sum != record_sum(object))
        found |= CHANGED_RECORD;
    return found;
}

// What a suspect object may differ in from what its stamp was taken for: where there is nothing to
// compare with, it is taken as changed.
unsigned suspected(const object_t *object, const object_state &state)
{
    return differences(object, state, false) | state.marks |
           (state.flat ? 0U : static_cast<unsigned>(CHANGED_GEOMETRY)) |
           (state.record_summed ? 0U : static_cast<unsigned>(CHANGED_RECORD));
}

const char *aspect_names(unsigned aspects)
{
    static std::string text;
    constexpr std::pair<unsigned, const char *> names[] = {
        {CHANGED_POSITIONS, "positions"},
        {CHANGED_TOPOLOGY, "topology"},
        {CHANGED_TEXTURE_COORDS, "texture coordinates"},
        {CHANGED_ATTRIBUTES, "attributes"},
        {CHANGED_NORMALS, "normals"},
        {CHANGED_RECORD, "record"},
    };
    text.clear();
    for (const auto &[aspect, name] : names) {
        if ((aspects & aspect) != 0)
            text += (text.empty() ? "" : ", ") + std::string(name);
    }
    return text.c_str();
}

} // namespace

void state_new(object_t *object)
{
    marks_record &marks = record();
    object_state &state = marks.states[object];
    state = {};
    state.compared = foreign_count();
    state.stamp = ++marks.stamps;
    marks.last = object;
    marks.last_state = &state;
    put_on_list(object, state);
}

void state_forget(const object_t *object)
{
    marks_record &marks = record();
    if (marks.last == object)
        marks.last = nullptr;
    marks.states.erase(object);
}

bool state_is_alive(const object_t *object) { return record().states.count(object) != 0; }

object_state &state_of(const object_t *object)
{
    marks_record &marks = record();
    if (marks.last != object) {
        marks.last_state = &marks.states[object];
        marks.last = object;
    }
    return *marks.last_state;
}

void for_each_state(const std::function<void(const object_t *, object_state &)> &visit)
{
    for (auto &[object, state] : record().states)
        visit(object, state);
}

void state_resolve(const object_t *object, object_state &state)
{
    const std::uint64_t now = foreign_count();
    if (state.compared == now)
        return;
    state.compared = now;
    const unsigned found = suspected(object, state);
    if (found != 0)
        mark_state(object, state, found);
}

bool changed_objects_take(std::vector<object_t *> *changed)
{
    marks_record &marks = record();
    const bool known = marks.list_is_whole && marks.list_foreign == foreign_count();
    for (const object_t *object : marks.changed) {
        const auto alive = known ? marks.states.find(object) : marks.states.end();
        // Of two objects that had the address one after the other, the second is there.
        if (alive != marks.states.end() && std::exchange(alive->second.listed, 0) != 0)
            changed->push_back(const_cast<object_t *>(object));
    }
    marks.changed.clear();
    ++marks.list;
    marks.list_is_whole = true;
    marks.list_foreign = foreign_count();
    return known;
}

std::uint64_t tree_link_count() { return record().links + foreign_count(); }

void object_mark(object_t *object, unsigned aspects)
{
    mark_state(object, state_of(object), aspects);
}

void tree_mark()
{
    ++record().tree;
    ++record().links;
    ++record().model;
}

void palette_mark()
{
    ++record().palette;
    ++record().model;
}

std::uint64_t object_stamp(object_t *object)
{
    object_state &state = state_of(object);
    state_resolve(object, state);
    if (!state.record_summed) {
        state.record_sum = record_sum(object);
        state.record_summed = true;
    }
    return state.stamp;
}

std::uint64_t model_change_count() { return record().model + foreign_count(); }
std::uint64_t tree_change_count() { return record().tree + foreign_count(); }
std::uint64_t palette_change_count() { return record().palette + foreign_count(); }

void mark_all_suspect() { foreign_ran(); }

int marks_check(const char *after)
{
    int unmarked = 0;
    static std::uint64_t links = 0, links_sum = 0;
    checksum tree;
    for_each_object(vesk_get_world(), [&](object_t *object) {
        tree.value(object);
        tree.value(object->parent);
        object_state &state = state_of(object);
        state_resolve(object, state);
        const unsigned found = differences(object, state, true);
        if (found != 0) {
            console_printf("unmarked change in object '%s': %s, after %s\n", object->name,
                           aspect_names(found), after);
            mark_state(object, state, found);
            ++unmarked;
        }
        object_flat(object); // for the next check to compare with
        object_stamp(object);
    });
    if (links == tree_link_count() && links_sum != tree.sum()) {
        console_printf("unmarked change of the tree, after %s\n", after);
        ++unmarked;
    }
    links = tree_link_count();
    links_sum = tree.sum();
    record().unmarked += unmarked;
    return unmarked;
}

int marks_take_unmarked() { return std::exchange(record().unmarked, 0); }
