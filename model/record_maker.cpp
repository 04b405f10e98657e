#include "model/record_maker.h"

#include "model/each.h"
#include "model/list_internal.h"

namespace {

constexpr std::size_t few = 4096;

void free_surface(const surface_t *surface, block_freer &freer)
{
    for (listitem *node = surface->refs; node != nullptr;) {
        listitem *next = node->next;
        freer.free(item_of<void>(node));
        freer.free(node);
        node = next;
    }
}

} // namespace

void list_append_chain(listitem **head, int *count, const record_chain &chain)
{
    if (chain.first != nullptr)
        (*head != nullptr ? list_end(*head)->next : *head) = chain.first;
    *count += chain.count;
}

void free_records(std::span<surface_t *const> surfaces, std::span<vertex *const> vertices)
{
    if (surfaces.size() + vertices.size() < few || !record_pages_in_use()) {
        for (surface_t *surface : surfaces)
            surface_free_record(surface);
        for (vertex *point : vertices)
            vertex_free_record(point);
        return;
    }
    list_forget_all();
    in_parallel_ranges(static_cast<int>(surfaces.size()), [&](int begin, int end) {
        block_freer freer;
        for (surface_t *surface : surfaces.subspan(begin, end - begin)) {
            free_surface(surface, freer);
            freer.free(surface);
        }
    });
    in_parallel_ranges(static_cast<int>(vertices.size()), [&](int begin, int end) {
        block_freer freer;
        for (vertex *point : vertices.subspan(begin, end - begin))
            freer.free(point);
    });
}
