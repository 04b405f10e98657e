#include "base/big_vector.h"

#include "base/worker.h"

#include <cstdint>

// A zero in the place of a zero, a byte a page. To ask the system for the pages (MADV_POPULATE_WRITE) is no
// faster, and holds the lock of the whole address space: then the window waits with every thread and mapping
// it makes.
void touch_memory(void *begin, std::size_t bytes)
{
    constexpr std::size_t page = 4096;
    for (std::size_t at = 0; at < bytes; at += page) {
        unsigned char zero = 0;
        __atomic_compare_exchange_n(static_cast<unsigned char *>(begin) + at, &zero, 0, false,
                                    __ATOMIC_RELAXED, __ATOMIC_RELAXED);
    }
}

void bring_memory(void *begin, std::size_t bytes)
{
    constexpr std::size_t piece = std::size_t{2} << 20; // a big page
    const auto first = (reinterpret_cast<std::uintptr_t>(begin) + piece - 1) / piece * piece;
    const auto end = (reinterpret_cast<std::uintptr_t>(begin) + bytes) / piece * piece;
    if (bytes < 4 * piece || first >= end)
        return;
    in_parallel(static_cast<int>((end - first) / piece), [first](int i) {
        touch_memory(reinterpret_cast<void *>(first + static_cast<std::size_t>(i) * piece), piece);
    });
}
