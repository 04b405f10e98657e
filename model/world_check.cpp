#include "model/world_check.h"

#include "base/messages.h"
#include "model/alloc_internal.h"
#include "model/change_marks_internal.h"
#include "model/each.h"
#include "model/freed_internal.h"
#include "model/list_internal.h"
#include "model/object_internal.h"

#include <unordered_set>

namespace {

std::string number_fault(const char *what, int count, int length)
{
    return std::string(what) + " count " + std::to_string(count) + ", list has " +
           std::to_string(length);
}

// Nodes that were taken out: nobody knows who still holds them, so they are never freed.
listitem *set_aside;

bool has_ring(const listitem *head)
{
    const listitem *slow = head;
    for (const listitem *fast = head; fast && fast->next;) {
        slow = slow->next;
        fast = fast->next->next;
        if (slow == fast)
            return true;
    }
    return false;
}

class checker {
public:
    std::vector<world_fault> run(object_t *top)
    {
        if (!top)
            return {};
        objects_.insert(top);
        std::vector<object_t *> stack{top};
        while (!stack.empty()) {
            object_t *object = stack.back();
            stack.pop_back();
            check_children(object);
            check_geometry(object);
            for (object_t *child : each<object_t>(object->children))
                stack.push_back(child);
        }
        return std::move(faults_);
    }

private:
    void report(object_t *object, std::string text, unsigned aspects)
    {
        faults_.push_back({object, std::move(text)});
        object_mark(object, aspects);
    }

    // Cuts the list where it runs into itself, takes out null elements and those that `take`
    // refuses; returns its length.
    template <class T, class Take>
    int clean_list(object_t *object, listitem **head, const char *what, unsigned aspects, Take take)
    {
        std::unordered_set<const listitem *> seen;
        const bool ring = has_ring(*head);
        int n = 0;
        for (listitem **link = head; *link;) {
            if (ring && !seen.insert(*link).second) {
                report(object, std::string(what) + " list runs into itself", aspects);
                list_forget_tail(*head);
                *link = nullptr;
                break;
            }
            T *element = item_of<T>(*link);
            const char *refusal = element ? take(element) : "null element in list of ";
            if (refusal) {
                report(object, refusal + std::string(what), aspects);
                list_forget_tail(*head);
                list_add_item_head(&set_aside, *link);
                *link = (*link)->next;
                continue;
            }
            ++n;
            link = &(*link)->next;
        }
        return n;
    }

    void check_count(object_t *object, int *count, int length, const char *what, unsigned aspects)
    {
        if (*count == length)
            return;
        report(object, number_fault(what, *count, length), aspects);
        *count = length;
    }

    void check_children(object_t *object)
    {
        const int n = clean_list<object_t>(object, &object->children, "child", CHANGED_RECORD,
                                           [&](object_t *child) -> const char * {
                                               return objects_.insert(child).second
                                                          ? nullptr
                                                          : "repeated element in list of ";
                                           });
        check_count(object, &object->num_children, n, "child", CHANGED_RECORD);
        for (object_t *child : each<object_t>(object->children)) {
            if (child->parent != object) {
                report(child, "wrong parent", CHANGED_RECORD);
                child->parent = object;
            }
        }
    }

    void check_geometry(object_t *object)
    {
        const auto any = [](auto *) -> const char * { return nullptr; };
        const int num_vertices =
            clean_list<vertex>(object, &object->vertices, "vertex", CHANGED_TOPOLOGY, any);
        check_count(object, &object->num_vertices, num_vertices, "vertex", CHANGED_TOPOLOGY);
        std::vector<const vertex *> points;
        points.reserve(num_vertices);
        for (vertex *point : each<vertex>(object->vertices)) {
            set_vertex_number(point, static_cast<std::uint32_t>(points.size()));
            points.push_back(point);
        }
        const int num_surfaces =
            clean_list<surface_t>(object, &object->surfaces, "surface", CHANGED_TOPOLOGY, any);
        check_count(object, &object->num_surfaces, num_surfaces, "surface", CHANGED_TOPOLOGY);
        int i = 0;
        for (surface_t *surface : each<surface_t>(object->surfaces))
            check_corners(object, surface, i++, points);
    }

    void check_corners(object_t *object, surface_t *surface, int i,
                       const std::vector<const vertex *> &points)
    {
        const std::string what = "surface " + std::to_string(i) + " corner";
        const int n =
            clean_list<svertex>(object, &surface->refs, what.c_str(), CHANGED_TOPOLOGY,
                                [&](svertex *reference) -> const char * {
                                    const vertex *point = reference->vertex;
                                    if (!point)
                                        return "no vertex at ";
                                    const std::uint32_t number = vertex_number(point);
                                    return number < points.size() && points[number] == point
                                               ? nullptr
                                               : "foreign vertex at ";
                                });
        check_count(object, &surface->num_refs, n, what.c_str(), CHANGED_TOPOLOGY);
    }

    std::vector<world_fault> faults_;
    std::unordered_set<const object_t *> objects_; // met so far
};

} // namespace

bool world_has_ring(const object_t *top)
{
    std::unordered_set<const object_t *> seen;
    std::vector<const object_t *> stack{top};
    while (!stack.empty()) {
        const object_t *object = stack.back();
        stack.pop_back();
        if (!seen.insert(object).second || has_ring(object->children) ||
            has_ring(object->vertices) || has_ring(object->surfaces))
            return true;
        for (const surface_t *surface : each<surface_t>(object->surfaces))
            if (surface != nullptr && has_ring(surface->refs))
                return true;
        for (const object_t *child : each<object_t>(object->children))
            if (child != nullptr)
                stack.push_back(child);
    }
    return false;
}

bool world_cut_rings(object_t *top, const char *who)
{
    if (!world_has_ring(top))
        return false;
    world_check(top);
    display_message("%s left a list that runs into itself - the model was repaired", who);
    return true;
}

std::vector<world_fault> world_check(object_t *top)
{
    freed_reset_after_fault();
    std::vector<world_fault> faults = checker().run(top);
    freed_filter_foreign();
    return faults;
}
