#ifndef VESK_TESTS_VIEW_VIEW_TEST_H
#define VESK_TESTS_VIEW_VIEW_TEST_H

#include "base/prefs.h"
#include "tests/support/scene_test.h"
#include "view/camera_internal.h"
#include "view/interaction.h"
#include "view/views_internal.h"

// Views as at the start, with the window sizes of the default preferences: 430 x 353 in front,
// 400 x 353 at the side, 431 x 334 from above, 400 x 334 in 3D.
class ViewTest : public SceneTest {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        views_reset_for_test();
        camera_reset_for_test();
        interaction_reset_for_test();
    }
};

#endif
