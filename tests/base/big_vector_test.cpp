#include "base/big_vector.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <unistd.h>

namespace {

long resident_pages()
{
    long size = 0, resident = 0;
    std::FILE *file = std::fopen("/proc/self/statm", "r");
    if (file == nullptr || std::fscanf(file, "%ld %ld", &size, &resident) != 2)
        resident = -1;
    if (file != nullptr)
        std::fclose(file);
    return resident;
}

// What lies in the first pages stays, those behind come; ends that are no whole big page are left alone.
TEST(BigVector, MemoryComesWithoutBeingChanged)
{
    constexpr std::size_t bytes = std::size_t{64} << 20;
    std::vector<unsigned char> values;
    values.reserve(bytes + 5);
    values.resize(bytes / 8);
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = static_cast<unsigned char>(i / 7);
    const long before = resident_pages();
    bring_memory(values.data() + 3, bytes - 3);
    for (std::size_t i = 0; i < values.size(); ++i)
        ASSERT_EQ(values[i], static_cast<unsigned char>(i / 7)) << i;
    const long came = (resident_pages() - before) * sysconf(_SC_PAGESIZE);
    if (before > 0) {
        EXPECT_GE(came, static_cast<long>(bytes / 2));
    }
    bring_memory(nullptr, 0);
    bring_memory(values.data(), 17);
    const std::vector<int> zeros = big_vector<int>(5'000'000);
    EXPECT_EQ(std::count(zeros.begin(), zeros.end(), 0), 5'000'000);
}

} // namespace
