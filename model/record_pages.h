#ifndef VESK_MODEL_RECORD_PAGES_H
#define VESK_MODEL_RECORD_PAGES_H

// Where records stand that are made or freed by the hundred thousand: pages of 2 MB, all blocks of a
// page of one size, one behind the other in the order in which they were made. Several makers may
// take blocks at once, each on a thread of its own, and several freers may give blocks back;
// makers and freers do not work at the same time. myfree knows the blocks and frees them as any other,
// on the main thread. A page that is a quarter free serves the next maker, an empty one any size;
// of empty pages a few are kept, the others go back to the system.

#include "model/alloc.h"

#include <cstddef>
#include <cstdint>

struct record_page; // a page's entry in the table of pages

// Reserves the address space, as much as the machine has memory. Until then, where address space is
// limited, and in the guarded mode of the allocator all records come from the heap. To be called once.
void record_pages_reserve();
// Whether makers and freers may work on several threads: there are pages, and the allocator does not
// guard its blocks.
bool record_pages_in_use();
// Bytes of memory in pages.
std::size_t record_pages_bytes();

// A null pointer where the block is not from a page.
record_page *record_page_of(const void *block);
// For myfree.
void record_pages_free(record_page *page, void *block);

// Hands out blocks of 16 to 64 bytes; from the heap when there are no pages.
class block_maker {
public:
    // From pages only when they are in use.
    explicit block_maker(bool from_pages) : from_pages_(from_pages) {}
    ~block_maker();
    block_maker(const block_maker &) = delete;
    block_maker &operator=(const block_maker &) = delete;

    template <class T>
    T *make(const T &value)
    {
        constexpr std::size_t size = (sizeof(T) + 15) / 16 * 16;
        static_assert(size <= largest);
        place_t &place = places_[size / 16 - 1];
        void *block = place.next;
        if (!from_pages_)
            block = myalloc(sizeof(T));
        else if (block != place.end)
            place.next += size;
        else
            block = take_elsewhere(place, size);
        if (block == nullptr)
            return nullptr;
        *static_cast<T *>(block) = value;
        return static_cast<T *>(block);
    }

private:
    static constexpr std::size_t largest = 64;
    struct place_t {
        record_page *page;
        char *next, *end; // blocks of the page that were never used
    };
    void *take_elsewhere(place_t &place, std::size_t size);

    bool from_pages_;
    place_t places_[largest / 16] = {};
};

// Frees blocks of any origin. Nothing may know them any more: see list_forget_all.
class block_freer {
public:
    block_freer() = default;
    ~block_freer();
    block_freer(const block_freer &) = delete;
    block_freer &operator=(const block_freer &) = delete;

    void free(void *block);

private:
    struct batch_t {
        record_page *page;
        void *first, *last;
        std::uint32_t count;
    };
    static void flush(batch_t &batch);

    batch_t batches_[8] = {}; // by the number of the page
};

#endif
