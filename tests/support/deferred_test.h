#ifndef VESK_TESTS_SUPPORT_DEFERRED_TEST_H
#define VESK_TESTS_SUPPORT_DEFERRED_TEST_H

#include "model/deferred_pages.h"
#include "model/deferred_records.h"
#include "tests/support/scene_test.h"

// Every mesh is large: the records of its objects can be on demand.
class DeferredTest : public SceneTest {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        if (!deferred_pages::are_possible())
            GTEST_SKIP() << "no pages of records in this build";
        before_ = deferred_records_set_least(1);
    }
    void TearDown() override
    {
        if (before_ >= 0)
            deferred_records_set_least(before_);
        SceneTest::TearDown();
    }

private:
    int before_ = -1;
};

#endif
