#include "base/big_vector.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sys/mman.h>
#include <unistd.h>

namespace {

// What lies in the first pages stays, those behind come; ends that are no whole big page are left alone.
TEST(BigVector, MemoryComesWithoutBeingChanged)
{
    constexpr std::size_t bytes = std::size_t{64} << 20;
    void *start = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(start, MAP_FAILED);
    auto *values = static_cast<unsigned char *>(start);
    for (std::size_t i = 0; i < bytes / 8; ++i)
        values[i] = static_cast<unsigned char>(i / 7);
    bring_memory(values + 3, bytes - 3);
    std::vector<unsigned char> present(bytes / static_cast<std::size_t>(sysconf(_SC_PAGESIZE)));
    ASSERT_EQ(mincore(start, bytes, present.data()), 0);
    EXPECT_GE(std::count(present.begin(), present.end(), 1),
              static_cast<std::ptrdiff_t>(present.size() / 8 * 7));
    for (std::size_t i = 0; i < bytes; ++i)
        ASSERT_EQ(values[i], i < bytes / 8 ? static_cast<unsigned char>(i / 7) : 0) << i;
    munmap(start, bytes);
    bring_memory(nullptr, 0);
    const std::vector<int> zeros = big_vector<int>(5'000'000);
    EXPECT_EQ(std::count(zeros.begin(), zeros.end(), 0), 5'000'000);
}

} // namespace
