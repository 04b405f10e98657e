#include "base/messages.h"
#include "model/alloc_internal.h"
#include "model/deferred_pages.h"
#include "model/list_internal.h"
#include "model/record_pages.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>
#include <utility>

#ifdef VESK_MIMALLOC
#include <mimalloc.h>
#define HEAP_ALLOC mi_malloc
#define HEAP_FREE mi_free
#else
#define HEAP_ALLOC std::malloc
#define HEAP_FREE std::free
#endif

namespace {

constexpr std::uint32_t live_guard = 0x5E11;
constexpr std::uint32_t freed_guard = 0xDEAD;

// Stands before every block of the guarded mode; 16 bytes, so that blocks stay aligned.
struct header {
    std::uint32_t guard;
    std::uint32_t size;
    std::uint64_t unused;
};

// Freed blocks of the guarded mode wait here before the heap gets them: a heap writes its own links
// into a free block, and a second free could no longer be distinguished from a damaged block.
constexpr std::size_t quarantine_size = 1024;

struct alloc_state {
    enum { UNSET, PLAIN, GUARDED } mode;
    bool wanted_debug;
    bool wanted_tracking;
    bool debug;
    long long total;
    header *quarantine[quarantine_size];
    std::size_t next_quarantine;
};
alloc_state state;

unsigned low_bits(const void *pointer)
{
    return static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(pointer));
}

void latch_mode()
{
    state.debug = state.wanted_debug;
    state.mode =
        state.wanted_debug || state.wanted_tracking ? alloc_state::GUARDED : alloc_state::PLAIN;
}

void *guarded_alloc(std::uint32_t size)
{
    if (size == 0) {
        console_printf("allocating size ZERO!!!!!!!!!!!%c\n", 7);
        return nullptr;
    }
    auto *block = static_cast<header *>(HEAP_ALLOC(sizeof(header) + size));
    if (!block) {
        console_printf("myalloc %d failed!!!\n", static_cast<int>(size));
        return nullptr;
    }
    *block = {live_guard, size, 0};
    state.total += size;
    if (state.debug) {
        console_printf(" allocated %d bytes (loc = 0x%X, total bytes allocated %d )\n",
                       static_cast<int>(size), low_bits(block + 1), static_cast<int>(state.total));
    }
    return block + 1;
}

int guarded_free(void *pointer)
{
    header *block = static_cast<header *>(pointer) - 1;
    const auto size = static_cast<int>(block->size);
    if (block->guard == freed_guard) {
        console_printf("%cERROR!\ttrying to free already freed space size=%d (addr %X)\n", 7, size,
                       low_bits(pointer));
        return 0;
    }
    if (block->guard != live_guard) {
        console_printf("%cERROR!\ttrying free non-allocated or corrupted space %d (addr 0x%X)\n", 7,
                       size, low_bits(block));
        return 0;
    }
    block->guard = freed_guard;
    state.total -= block->size;
    if (state.debug) {
        console_printf(" freeing %d (addr 0x%X, total allocated %d)\n", size, low_bits(pointer),
                       static_cast<int>(state.total));
    }
    HEAP_FREE(std::exchange(state.quarantine[state.next_quarantine], block));
    state.next_quarantine = (state.next_quarantine + 1) % quarantine_size;
    return 1;
}

} // namespace

void *myalloc(std::uint32_t size)
{
    if (state.mode != alloc_state::PLAIN) {
        if (state.mode == alloc_state::UNSET)
            latch_mode();
        if (state.mode == alloc_state::GUARDED)
            return guarded_alloc(size);
    }
    if (size == 0)
        console_printf("Warning - malloc called with size 0\n");
    void *block = HEAP_ALLOC(size);
    if (!block)
        console_printf("myalloc %d failed!!!\n", static_cast<int>(size));
    return block;
}

int myfree(void *block)
{
    if (!block)
        return 1;
    list_block_freed(block);
    if (record_page *page = record_page_of(block); page != nullptr) {
        record_pages_free(page, block);
        return 1;
    }
    if (state.mode == alloc_state::GUARDED)
        return guarded_free(block);
    HEAP_FREE(block);
    return 1;
}

void alloc_free_block(void *block) { HEAP_FREE(block); }

bool alloc_is_guarded()
{
    if (state.mode == alloc_state::UNSET)
        latch_mode();
    return state.mode == alloc_state::GUARDED;
}

void alloc_set_mode(bool debug, bool tracking)
{
    state.wanted_debug = debug;
    state.wanted_tracking = tracking;
}

long long alloc_total() { return state.total; }

std::size_t alloc_process_bytes()
{
#ifdef VESK_MIMALLOC
    std::size_t resident = 0;
    mi_process_info(nullptr, nullptr, nullptr, &resident, nullptr, nullptr, nullptr, nullptr);
    if (resident != 0)
        return resident + record_pages_bytes() - deferred_pages::bytes_to_come();
#endif
    unsigned long size = 0;
    unsigned long pages = 0;
    std::FILE *file = std::fopen("/proc/self/statm", "r");
    if (!file)
        return 0;
    const int n = std::fscanf(file, "%lu %lu", &size, &pages);
    std::fclose(file);
    return n == 2 ? pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) : 0;
}

void alloc_use_big_pages()
{
#if defined(VESK_MIMALLOC) && defined(MADV_HUGEPAGE)
    rlimit limit = {};
    if (getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur != RLIM_INFINITY)
        return;
    // The heap takes its memory from here in blocks of this size, at multiples of it.
    constexpr std::size_t block = std::size_t{32} << 20;
    const auto memory = static_cast<std::size_t>(std::max(sysconf(_SC_PHYS_PAGES), 0L)) *
                        static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::size_t room = memory / block * block;
    if (room == 0)
        return;
    // What is freed is asked for again soon, picture after picture; the first touch of a page that went
    // back costs more than the work on it.
    constexpr long milliseconds = 60000;
    mi_option_set(mi_option_decommit_delay, milliseconds);
    mi_option_set(mi_option_segment_decommit_delay, milliseconds);
    void *start =
        mmap(nullptr, room + block, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (start == MAP_FAILED)
        return;
    void *first = start;
    std::size_t left = room + block;
    // Deliberate: the heap is not told that the pages are big, for it never gives such pages back.
    if (std::align(block, room, first, left) == nullptr ||
        madvise(start, room + block, MADV_HUGEPAGE) != 0 ||
        !mi_manage_os_memory(first, room, false, false, true, -1))
        munmap(start, room + block);
#endif
}

void alloc_set_mode_for_test(bool debug, bool tracking)
{
    for (header *&block : state.quarantine)
        HEAP_FREE(std::exchange(block, nullptr));
    alloc_set_mode(debug, tracking);
    latch_mode();
    state.total = 0;
}

char *text_copy(std::string_view text)
{
    const auto length = static_cast<std::uint32_t>(
        std::min<std::size_t>(text.size(), static_cast<std::size_t>(UINT32_MAX) - 1));
    auto *copy = static_cast<char *>(myalloc(length + 1));
    if (!copy)
        return nullptr;
    std::copy_n(text.data(), length, copy);
    copy[length] = '\0';
    return copy;
}

char *text_copy(const char *text) { return text ? text_copy(std::string_view(text)) : nullptr; }

void text_set(char **slot, const char *text)
{
    char *copy = text_copy(text); // first: `text` may be the text that is freed
    myfree(*slot);
    *slot = copy;
}
