#include "base/crash_guard.h"
#include "model/record_pages.h"

#include <gtest/gtest.h>

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    crash_guard::install();
    record_pages_reserve();
    return RUN_ALL_TESTS();
}
