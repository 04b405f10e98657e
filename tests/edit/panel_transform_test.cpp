// What the transforms of the panels refuse.

#include "edit/panel_transform.h"

#include "edit/selection.h"
#include "edit/undo_internal.h"
#include "model/lights.h"
#include "model/object_tree.h"
#include "model/world.h"
#include "tests/support/mesh_test.h"

namespace {

using words_t = std::vector<std::string>;

// A flat rectangle 2 by 1 with its corner at the origin, selected.
class PanelTransform : public SceneTest {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        add_squares(2, 1);
        run("select_all");
        before_ = scene_text();
    }
    std::string before_;
};

struct refused_case {
    const char *name;
    words_t words;
    const char *message; // that of the selection where there is none of its own
};
void PrintTo(const refused_case &c, std::ostream *out) { *out << c.name; }
class RefusedTransform : public PanelTransform, public testing::WithParamInterface<refused_case> {};

TEST_P(RefusedTransform, OpensNoRecord)
{
    const unsigned serial = undo_last_serial();
    run_words(GetParam().words);
    EXPECT_EQ(last_message(), GetParam().message);
    EXPECT_EQ(undo_last_serial(), serial);
    EXPECT_EQ(scene_text(), before_);
}
// clang-format off
INSTANTIATE_TEST_SUITE_P(Commands, RefusedTransform, testing::Values(
    refused_case{"by_nothing", {"move_with_undo", "0", "0", "0"}, "select all done"},
    refused_case{"by_no_number", {"move_with_undo", "nan", "inf", "1e999"}, "select all done"},
    refused_case{"about_no_axis", {"rotate_axis_angle_with_undo", "3", "45"}, "rotate - no axis 3"},
    refused_case{"across_no_axis", {"mirror_with_undo", "-1"}, "mirror - no axis -1"},
    refused_case{"of_no_kind", {"transform_begin", "bend"}, "transform - no kind named 'bend'"},
    refused_case{"not_begun", {"transform_to", "1", "1", "1"}, "select all done"},
    refused_case{"too_large", {"scale", "3e38", "1", "1"}, "scale - the result would be too large"}));
// clang-format on

TEST_F(PanelTransform, TurnsNoLightThatIsAlone)
{
    object_t *light = new_light();
    object_add_child(vesk_get_world(), light);
    run("set_select_mode", "light");
    run("select_all");
    run("move_with_undo", 1, 2, 3);
    const std::string moved = scene_text();
    for (const words_t &words :
         {words_t{"rotate_with_undo", "10", "20", "30"}, words_t{"mirror_with_undo", "1"},
          words_t{"rotate_axis_angle_with_undo", "0", "45"}, words_t{"transform_begin", "scale"}}) {
        run_words(words);
        EXPECT_TRUE(last_message().ends_with(" - nothing selected that has points")) << words[0];
        EXPECT_EQ(scene_text(), moved) << words[0];
    }
    run("rotate_about_with_undo", 0, 0, 90, 0, 0, 0);
    EXPECT_NEAR(light->centre.z, 3, 1e-5);
    EXPECT_NEAR(light->centre.x * light->centre.x + light->centre.y * light->centre.y, 5, 1e-4);
    run("undo");
    EXPECT_EQ(scene_text(), moved);
}

} // namespace
