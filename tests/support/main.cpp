#include "base/crash_guard.h"

#include <gtest/gtest.h>

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    crash_guard::install();
    return RUN_ALL_TESTS();
}
