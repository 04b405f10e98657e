#include "edit/optimize.h"

#include "base/messages.h"
#include "base/redraw.h"
#include "edit/document/edit_support.h"
#include "edit/document/selection_scan.h"
#include "edit/mesh/duplicate_surfaces.h"
#include "edit/mesh/mesh_change.h"
#include "edit/mesh/position_index.h"
#include "model/alloc.h"
#include "model/change_marks.h"
#include "model/freed.h"
#include "model/object_tree.h"

#include <algorithm>
#include <functional>
#include <numeric>

namespace {

// Removes corners on vertices that their surface has already; `corners` is where they refer to.
// Returns the number of pairs.
int remove_repeated(mesh_change &change, const std::vector<std::int32_t> &corners)
{
    const flat_mesh &mesh = change.before();
    struct seen_t {
        int surface = -1, times = 0;
    };
    std::vector<seen_t> seen(mesh.num_vertices());
    int pairs = 0;
    for (int i = 0; i < mesh.num_surfaces(); ++i) {
        for (int c = mesh.first_corner(i); c < mesh.end_corner(i); ++c) {
            seen_t &at = seen[corners[c]];
            if (at.surface != i)
                at = {i, 0};
            if (at.times > 0)
                change.remove_corner(c);
            pairs += at.times++;
        }
    }
    return pairs;
}

struct weld_result {
    int vertices, references;
};

weld_result weld(object_t *object)
{
    mesh_change change(object);
    const flat_mesh &mesh = change.before();
    const std::size_t n = mesh.positions->size();
    position_index index(n);
    std::vector<std::int32_t> first(n);
    int removed = 0;
    for (std::size_t v = 0; v < n; ++v) {
        const int number = static_cast<int>(v);
        first[v] = index.find_or_add(mesh.position(v), number);
        if (first[v] == number)
            continue;
        change.remove_vertex(number);
        ++removed;
    }
    std::vector<std::int32_t> corners = *mesh.corners;
    for (std::size_t c = 0; removed > 0 && c < corners.size(); ++c) {
        const std::int32_t to = first[corners[c]];
        if (to == corners[c])
            continue;
        change.redirect_corner(static_cast<int>(c), to);
        corners[c] = to;
    }
    const int references = remove_repeated(change, corners);
    change.commit();
    return {removed, references};
}

void tell_removed(int vertices, const object_t *object)
{
    if (vertices > 0) {
        console_printf("%d duplicate vertices removed from object %s\n", vertices, object->name);
    }
}

void tell_references(int references)
{
    if (references > 0)
        console_printf("%d duplicate vertex references removed from surfaces\n", references);
}

// Duplicates and degenerate surfaces of one object. Returns how many went.
int clean_surfaces(object_t *object)
{
    mesh_change change(object);
    const flat_mesh &mesh = change.before();
    const std::vector<bool> duplicate = duplicate_surfaces(mesh);
    int removed = 0, degenerate = 0;
    std::vector<bool> used(mesh.num_vertices()), lost(used.size());
    for (int i = 0; i < mesh.num_surfaces(); ++i) {
        const auto corners = mesh.surface_corners(i);
        const bool polygon = mesh.surface(i).type == SURFACE_POLYGON;
        const bool small = corners.size() == 1 || (corners.size() == 2 && polygon);
        if (duplicate[i] || small)
            change.remove_surface(i);
        if (duplicate[i]) {
            ++removed;
            continue;
        }
        degenerate += small ? 1 : 0;
        for (const int v : corners)
            (small ? lost : used)[v] = true;
    }
    for (int v = 0; v < mesh.num_vertices(); ++v) {
        if (lost[v] && !used[v])
            change.remove_vertex(v);
    }
    if (degenerate > 0) {
        console_printf("(%d surfaces with 1 or 2 vertices deleted from object %s)\n", degenerate,
                       object->name);
    }
    change.commit();
    return removed + degenerate;
}

// Returns the number of surfaces; counts the objects that went.
int clean_tree(object_t *top, int &deleted)
{
    std::vector<object_t *> objects;
    for_each_object(top, [&](object_t *object) { objects.push_back(object); });
    int removed = 0;
    for (object_t *object : objects)
        removed += clean_surfaces(object);
    // Children before their parents, which may be left without any.
    for (auto at = objects.rbegin(); at != objects.rend(); ++at) {
        const object_t *object = *at;
        if (object->type != OBJECT_WORLD && object->num_vertices == 0 &&
            object->num_children == 0) {
            object_delete_nocleanup(*at);
            ++deleted;
        }
    }
    return removed;
}

} // namespace

int object_optimize(object_t *object)
{
    struct step {
        object_t *object;
        int references; // to be reported when the children are done; -1: not begun
    };
    std::vector<step> steps{{object, -1}};
    int total = 0;
    while (!steps.empty()) {
        step &current = steps.back();
        if (current.references >= 0) {
            tell_references(current.references);
            steps.pop_back();
            continue;
        }
        object_t *part = current.object;
        debugf("Optimizing object '%s' 0x%x  vertices %d, surfaces %d\n", part->name,
               static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(part)), part->num_vertices,
               part->num_surfaces);
        const weld_result result = weld(part);
        tell_removed(result.vertices, part);
        total += result.vertices;
        current.references = result.references;
        const std::vector<object_t *> children = elements_of<object_t>(part->children);
        for (auto child = children.rbegin(); child != children.rend(); ++child)
            steps.push_back({*child, -1});
    }
    return total;
}

int surface_optimize(surface_t *surface)
{
    std::vector<svertex *> corners;
    for (svertex *reference : each<svertex>(surface->refs))
        corners.push_back(reference);
    // The same vertices side by side, in the order of the corners.
    std::vector<std::size_t> order(corners.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return std::less<>()(corners[a]->vertex, corners[b]->vertex);
    });
    std::vector<bool> goes(corners.size());
    int pairs = 0, times = 0;
    for (std::size_t i = 1; i < order.size(); ++i) {
        times = corners[order[i]]->vertex == corners[order[i - 1]]->vertex ? times + 1 : 0;
        goes[order[i]] = times > 0;
        pairs += times;
    }
    std::size_t i = 0;
    for (listitem **at = &surface->refs; *at != nullptr; ++i) {
        listitem *node = *at;
        if (!goes[i]) {
            at = &node->next;
            continue;
        }
        *at = node->next;
        myfree(corners[i]);
        myfree(node);
        --surface->num_refs;
    }
    return pairs;
}

int object_optimize_surface_vertices(object_t *object)
{
    mesh_change change(object);
    const int pairs = remove_repeated(change, *change.before().corners);
    change.commit();
    return pairs;
}

int surface_compare(const surface_t *a, const surface_t *b)
{
    if (a->num_refs != b->num_refs)
        return 0;
    std::vector<const vertex *> of_a, of_b;
    for (const svertex *reference : each<svertex>(a->refs))
        of_a.push_back(reference->vertex);
    for (const svertex *reference : each<svertex>(b->refs))
        of_b.push_back(reference->vertex);
    for (auto *corners : {&of_a, &of_b}) {
        std::sort(corners->begin(), corners->end(), std::less<>());
        corners->erase(std::unique(corners->begin(), corners->end()), corners->end());
    }
    return std::includes(of_b.begin(), of_b.end(), of_a.begin(), of_a.end(), std::less<>()) ? 1 : 0;
}

int object_optimize_surfaces(object_t *object)
{
    freed_batch batch;
    int deleted = 0;
    return clean_tree(object, deleted);
}

// ---- commands ----

void optimize_selected(void)
{
    display_message("optimizing vertices...");
    int removed = 0;
    {
        freed_batch batch;
        for (object_t *object : selected_top_objects())
            removed += object_optimize(object);
    }
    windows_message_dialog("Vertex optimization finished - vertices removed = %d", removed);
    display_message("optimize vertices done");
    display_status();
}

void selected_optimize_surfaces(void)
{
    display_message("optimizing surfaces...");
    int removed = 0, deleted = 0;
    {
        freed_batch batch;
        for (object_t *object : selected_top_objects())
            removed += clean_tree(object, deleted);
    }
    clear_selection();
    redraw_all();
    windows_message_dialog("Surface optimization finished.\n\nSurfaces removed :%d\nObjects (with "
                           "no geometry or children) removed: %d",
                           removed, deleted);
    display_message("optimize surfaces done");
    display_status();
}
