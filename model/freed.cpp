#include "model/freed.h"

#include "model/alloc_internal.h"
#include "model/change_marks_internal.h"
#include "model/deferred_records.h"
#include "model/freed_internal.h"
#include "model/list_internal.h"
#include "model/object_internal.h"
#include "model/property.h"
#include "model/record_maker.h"
#include "model/world.h"

namespace {

struct freed_record {
    std::vector<freed_listener> listeners;
    std::vector<freed_holder> holders;
    freed_things pending;
    int depth = 0;
};

freed_record &record()
{
    static freed_record freed;
    return freed;
}

void announce(const freed_things &freed)
{
    for (freed_listener listener : record().listeners)
        listener(freed);
}

// The object's own elements.
void add_contents(const object_t *object, freed_things &to)
{
    if (const flat_ptr flat = untouched_flat(object)) {
        const auto &surfaces = *flat->surface_records;
        const auto &vertices = *flat->vertex_records;
        to.surfaces.insert(to.surfaces.end(), surfaces.begin(), surfaces.end());
        to.vertices.insert(to.vertices.end(), vertices.begin(), vertices.end());
        return;
    }
    for (surface_t *surface : each<surface_t>(object->surfaces))
        to.surfaces.push_back(surface);
    for (vertex *point : each<vertex>(object->vertices))
        to.vertices.push_back(point);
}

void free_object_record(object_t *object)
{
    if (!object_free_deferred(object)) {
        freed_things contents;
        add_contents(object, contents);
        free_records(contents.surfaces, contents.vertices);
        list_free(&object->surfaces);
        list_free(&object->vertices);
    }
    state_forget(object);
    list_free(&object->children);
    proplist_free(&object->properties);
    myfree(object->name);
    myfree(object->data);
    myfree(object->url);
    myfree(object);
}

// Everything that `freed` names, with the elements of its objects.
freed_things with_contents(const freed_things &freed)
{
    freed_things all = freed;
    for (const object_t *object : freed.objects)
        add_contents(object, all);
    return all;
}

void finish(const freed_things &freed)
{
    if (freed.empty())
        return;
    if (!record().listeners.empty() && !freed.objects.empty())
        announce(with_contents(freed));
    else
        announce(freed);
    for (object_t *object : freed.objects)
        free_object_record(object);
    free_records(freed.surfaces, freed.vertices);
}

freed_things all_held()
{
    freed_things held;
    for (freed_holder holder : record().holders)
        holder(held);
    return held;
}

// Held elements that were not met in a walk of the living.
class missing_things {
public:
    explicit missing_things(const freed_things &held)
        : objects_(held.objects.begin(), held.objects.end()),
          surfaces_(held.surfaces.begin(), held.surfaces.end()),
          vertices_(held.vertices.begin(), held.vertices.end())
    {
    }

    void met(object_t *object)
    {
        objects_.erase(object);
        if (!surfaces_.empty()) {
            for (surface_t *surface : each<surface_t>(object->surfaces))
                surfaces_.erase(surface);
        }
        if (!vertices_.empty()) {
            for (vertex *point : each<vertex>(object->vertices))
                vertices_.erase(point);
        }
    }

    [[nodiscard]] const std::unordered_set<object_t *> &objects() const { return objects_; }
    [[nodiscard]] freed_things rest() const
    {
        return {{objects_.begin(), objects_.end()},
                {surfaces_.begin(), surfaces_.end()},
                {vertices_.begin(), vertices_.end()}};
    }

private:
    std::unordered_set<object_t *> objects_;
    std::unordered_set<surface_t *> surfaces_;
    std::unordered_set<vertex *> vertices_;
};

} // namespace

void free_nodes(const std::vector<listitem *> &nodes)
{
    constexpr std::size_t few = 4096;
    if (nodes.size() < few || !record_pages_in_use()) {
        for (listitem *node : nodes)
            myfree(node);
        return;
    }
    list_forget_all();
    in_parallel_ranges(static_cast<int>(nodes.size()), [&](int begin, int end) {
        block_freer freer;
        for (int i = begin; i < end; ++i)
            freer.free(nodes[i]);
    });
}

void freed_add_listener(freed_listener listener) { record().listeners.push_back(listener); }

void freed_add_holder(freed_holder holder) { record().holders.push_back(holder); }

void freed_filter_foreign()
{
    const freed_things held = all_held();
    if (held.empty())
        return;
    missing_things missing(held);
    for_each_object(vesk_get_world(), [&](object_t *object) { missing.met(object); });
    // Objects that a holder keeps outside the world (a clipboard) live on while they are known.
    const std::vector<object_t *> outside(missing.objects().begin(), missing.objects().end());
    for (object_t *top : outside) {
        if (state_is_alive(top))
            for_each_object(top, [&](object_t *object) { missing.met(object); });
    }
    const freed_things gone = missing.rest();
    if (!gone.empty())
        announce(gone);
}

void freed_announce_left(const std::vector<object_t *> &tops)
{
    if (record().listeners.empty())
        return;
    freed_things left;
    for (object_t *top : tops)
        for_each_object(top, [&](object_t *object) { left.objects.push_back(object); });
    announce(with_contents(left));
}

void freed_announce_geometry(const object_t *object)
{
    if (record().listeners.empty())
        return;
    freed_things gone;
    add_contents(object, gone);
    if (!gone.empty())
        announce(gone);
}

bool freed_vertices_are_held() { return !all_held().vertices.empty(); }

bool freed_elements_are_held()
{
    const freed_things held = all_held();
    return !held.surfaces.empty() || !held.vertices.empty();
}

void freed_reset_after_fault()
{
    // Pending elements may still be linked somewhere: they are left alone.
    record().pending = {};
    record().depth = 0;
}

freed_batch::freed_batch() { ++record().depth; }

freed_batch::~freed_batch()
{
    freed_record &freed = record();
    if (freed.depth == 0 || --freed.depth > 0) // 0: a fault came between
        return;
    const freed_things things = std::exchange(freed.pending, {});
    finish(things); // a listener that frees has a batch of its own
}

void freed_batch::add(vertex *point)
{
    if (point)
        record().pending.vertices.push_back(point);
}

void freed_batch::add(surface_t *surface)
{
    if (surface)
        record().pending.surfaces.push_back(surface);
}

void freed_batch::add(object_t *object)
{
    for_each_object(object, [](object_t *part) { record().pending.objects.push_back(part); });
}
