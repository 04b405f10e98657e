#include "model/alloc_internal.h"
#include "model/record_pages_internal.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <mutex>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>
#include <utility>

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool heap_is_watched = true; // it then sees every block
#elif defined(__has_feature)
constexpr bool heap_is_watched = __has_feature(address_sanitizer);
#else
constexpr bool heap_is_watched = false;
#endif

constexpr std::size_t page_bytes = record_page_bytes;
constexpr std::size_t num_sizes = 4;
constexpr int most_kept = 32; // empty pages

struct record_pages {
    char *first; // null: none are reserved
    std::size_t num_pages;
    record_page *table;
    std::size_t num_begun; // pages that were ever used
    record_page *with_room[num_sizes];
    record_page *empty; // with memory
    int num_empty;
    record_page *given_back;
    std::size_t num_given_back;
    std::mutex mutex; // of makers and freers
};
record_pages pages;

char *memory_of(const record_page *page) { return pages.first + (page - pages.table) * page_bytes; }

std::uint32_t live_bytes(const record_page *page)
{
    return page->used - page->num_freed * page->size;
}

void put_in(record_page **list, record_page *page)
{
    page->previous = nullptr;
    page->next = *list;
    if (*list != nullptr)
        (*list)->previous = page;
    *list = page;
}

void take_out(record_page **list, record_page *page)
{
    (page->previous != nullptr ? page->previous->next : *list) = page->next;
    if (page->next != nullptr)
        page->next->previous = page->previous;
}

record_page **list_of(std::size_t size) { return &pages.with_room[size / 16 - 1]; }

void set_empty(record_page *page)
{
    *page = {};
    if (pages.num_empty < most_kept) {
        put_in(&pages.empty, page);
        ++pages.num_empty;
    } else {
        madvise(memory_of(page), page_bytes, MADV_DONTNEED);
        put_in(&pages.given_back, page);
        ++pages.num_given_back;
    }
}

// Puts the page where it belongs; no maker has it.
void settle(record_page *page)
{
    const std::uint32_t live = live_bytes(page);
    const bool has_room = live <= page_bytes / 4 * 3;
    if (page->has_room && live == 0)
        take_out(list_of(page->size), page);
    if (live == 0) {
        set_empty(page);
    } else if (has_room && !page->has_room) {
        put_in(list_of(page->size), page);
        page->has_room = true;
    }
}

record_page *pop(record_page **list)
{
    record_page *page = *list;
    if (page != nullptr)
        take_out(list, page);
    return page;
}

record_page *pop_empty()
{
    record_page *page = pop(&pages.empty);
    if (page != nullptr)
        --pages.num_empty;
    return page;
}

// Without memory.
record_page *pop_given_back()
{
    record_page *page = pop(&pages.given_back);
    if (page != nullptr)
        --pages.num_given_back;
    else if (pages.num_begun < pages.num_pages)
        page = pages.table + pages.num_begun++;
    return page;
}

// A page for a maker; null when all are full.
record_page *begin_page(std::size_t size)
{
    if (record_page *page = pop(list_of(size)); page != nullptr) {
        page->has_room = false;
        return page;
    }
    record_page *page = pop_empty();
    if (page == nullptr)
        page = pop_given_back();
    if (page != nullptr)
        *page = {.previous = nullptr,
                 .next = nullptr,
                 .freed = nullptr,
                 .num_freed = 0,
                 .used = 0,
                 .size = static_cast<std::uint32_t>(size),
                 .has_room = false};
    return page;
}

} // namespace

void record_pages_reserve()
{
    rlimit limit = {};
    if (heap_is_watched || pages.first != nullptr || getrlimit(RLIMIT_AS, &limit) != 0 ||
        limit.rlim_cur != RLIM_INFINITY)
        return;
    const auto memory = static_cast<std::size_t>(std::max(sysconf(_SC_PHYS_PAGES), 0L)) *
                        static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::size_t num_pages = memory / page_bytes;
    const std::size_t bytes = (num_pages + 1) * page_bytes + num_pages * sizeof(record_page);
    void *start = mmap(nullptr, bytes, PROT_READ | PROT_WRITE,
                       MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (start == MAP_FAILED)
        return;
    void *first = start;
    std::size_t left = bytes;
    std::align(page_bytes, num_pages * page_bytes, first, left);
#ifdef MADV_HUGEPAGE
    madvise(first, num_pages * page_bytes, MADV_HUGEPAGE);
#endif
    pages.first = static_cast<char *>(first);
    pages.num_pages = num_pages;
    pages.table = reinterpret_cast<record_page *>(pages.first + num_pages * page_bytes);
}

bool record_pages_in_use() { return pages.first != nullptr && !alloc_is_guarded(); }

std::size_t record_pages_bytes() { return (pages.num_begun - pages.num_given_back) * page_bytes; }

record_page *record_page_of(const void *block)
{
    const auto offset = static_cast<std::size_t>(reinterpret_cast<std::uintptr_t>(block) -
                                                 reinterpret_cast<std::uintptr_t>(pages.first));
    return offset < pages.num_pages * page_bytes ? pages.table + offset / page_bytes : nullptr;
}

void record_pages_free(record_page *page, void *block)
{
    std::memcpy(block, &page->freed, sizeof(void *));
    page->freed = block;
    ++page->num_freed;
    settle(page);
}

// ---- pages whose blocks are handed out at once ----

std::size_t record_page_count() { return pages.num_pages; }

std::size_t record_page_number(const record_page *page) { return page - pages.table; }

char *record_page_memory(const record_page *page) { return memory_of(page); }

record_page *record_page_take(std::size_t size, std::uint32_t used)
{
    const std::lock_guard lock(pages.mutex);
    record_page *page = pop_given_back();
    if (page == nullptr)
        page = pop_empty();
    if (page != nullptr) {
        *page = {};
        page->size = static_cast<std::uint32_t>(size);
        page->used = used;
    }
    return page;
}

void record_page_give_back(record_page *page)
{
    const std::lock_guard lock(pages.mutex);
    *page = {};
    put_in(&pages.given_back, page);
    ++pages.num_given_back;
}

// ---- makers ----

void *block_maker::take_elsewhere(place_t &place, std::size_t size)
{
    for (;;) {
        record_page *page = place.page;
        if (page != nullptr && page->freed != nullptr) {
            void *block = page->freed;
            std::memcpy(&page->freed, block, sizeof(void *));
            --page->num_freed;
            return block;
        }
        {
            const std::lock_guard lock(pages.mutex);
            if (page != nullptr)
                page->used = static_cast<std::uint32_t>(place.next - memory_of(page));
            place.page = page = begin_page(size);
        }
        if (page == nullptr) {
            place = {};
            return myalloc(static_cast<std::uint32_t>(size));
        }
        place.next = memory_of(page) + page->used;
        place.end = place.next + (page_bytes - page->used) / size * size;
        if (place.next != place.end)
            return std::exchange(place.next, place.next + size);
    }
}

block_maker::~block_maker()
{
    const std::lock_guard lock(pages.mutex);
    for (place_t &place : places_) {
        if (place.page == nullptr)
            continue;
        place.page->used = static_cast<std::uint32_t>(place.next - memory_of(place.page));
        settle(place.page);
    }
}

// ---- freers ----

void block_freer::free(void *block)
{
    record_page *page = record_page_of(block);
    if (page == nullptr) {
        alloc_free_block(block);
        return;
    }
    batch_t &batch = batches_[static_cast<std::size_t>(page - pages.table) % std::size(batches_)];
    if (batch.page != page) {
        flush(batch);
        batch = {page, nullptr, block, 0};
    }
    std::memcpy(block, &batch.first, sizeof(void *));
    batch.first = block;
    ++batch.count;
}

void block_freer::flush(batch_t &batch)
{
    if (batch.page == nullptr)
        return;
    const std::lock_guard lock(pages.mutex);
    std::memcpy(batch.last, &batch.page->freed, sizeof(void *));
    batch.page->freed = batch.first;
    batch.page->num_freed += batch.count;
    settle(batch.page);
}

block_freer::~block_freer()
{
    for (batch_t &batch : batches_)
        flush(batch);
}
