#include "model/alloc_internal.h"

#include <gtest/gtest.h>
#ifdef VESK_MIMALLOC
#include <mimalloc.h>
#endif

#include <cstring>
#include <fstream>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

std::size_t resident_bytes()
{
    std::size_t size = 0, pages = 0;
    std::ifstream("/proc/self/statm") >> size >> pages;
    return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

void take_and_free(std::size_t bytes)
{
    constexpr std::size_t size = 256;
    std::vector<void *> blocks(bytes / size);
    for (void *&block : blocks) {
        block = myalloc(size);
        std::memset(block, 1, size);
    }
    for (void *block : blocks)
        myfree(block);
}

// A heap that knows its pages as big ones keeps them for ever.
TEST(Alloc, MemoryThatWasFreedGoesBackToTheSystemWithBigPages)
{
#ifdef VESK_MIMALLOC
    alloc_use_big_pages();
    constexpr std::size_t most = 400 << 20;
    // A thread has a heap of its own: this one shares no page with what earlier tests left.
    std::thread([] {
        const std::size_t before = resident_bytes();
        take_and_free(most);
        EXPECT_GT(resident_bytes(), before + most / 2); // it waits a little for others who ask
        mi_collect(true);
        EXPECT_LT(resident_bytes(), before + most / 4);
    }).join();
#else
    GTEST_SKIP() << "the heap of the C library";
#endif
}

} // namespace
