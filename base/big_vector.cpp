#include "base/big_vector.h"

#include "base/worker.h"

#include <cstdint>
#include <sys/mman.h>

void bring_memory(void *begin, std::size_t bytes)
{
#ifdef MADV_POPULATE_WRITE
    constexpr std::size_t piece = std::size_t{2} << 20; // a big page
    const auto first = (reinterpret_cast<std::uintptr_t>(begin) + piece - 1) / piece * piece;
    const auto end = (reinterpret_cast<std::uintptr_t>(begin) + bytes) / piece * piece;
    if (bytes < 4 * piece || first >= end)
        return;
    // Where the system cannot, the pages come when they are touched.
    in_parallel(static_cast<int>((end - first) / piece), [first](int i) {
        madvise(reinterpret_cast<void *>(first + static_cast<std::size_t>(i) * piece), piece,
                MADV_POPULATE_WRITE);
    });
#endif
}
