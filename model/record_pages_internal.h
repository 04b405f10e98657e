#ifndef VESK_MODEL_RECORD_PAGES_INTERNAL_H
#define VESK_MODEL_RECORD_PAGES_INTERNAL_H

#include "model/record_pages.h"

struct record_page {
    record_page *previous, *next; // in the list that the page is in
    void *freed; // blocks that were given back; each begins with a pointer to the next
    std::uint32_t num_freed;
    std::uint32_t used; // bytes of blocks that were ever handed out
    std::uint32_t size; // of a block
    bool has_room;      // whether it is in the list of those that have
};

constexpr std::size_t record_page_bytes = std::size_t{2} << 20;

// How many there can be, their numbers, and where they stand.
std::size_t record_page_count();
std::size_t record_page_number(const record_page *page);
char *record_page_memory(const record_page *page);

// A page that never had a block or has none any more, all of whose blocks are handed out at once, `used`
// bytes of them; null when there is none. Its memory may be there or not.
record_page *record_page_take(std::size_t size, std::uint32_t used);
// Takes back such a page, none of whose blocks was freed, once its memory is given back.
void record_page_give_back(record_page *page);

#endif
