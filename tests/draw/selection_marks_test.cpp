// What the drawing takes for selected.

#include "draw/selection_marks.h"

#include "base/prefs.h"
#include "edit/document/modes.h"
#include "edit/document/selection.h"
#include "model/each.h"
#include "tests/support/scene_test.h"

namespace {

class SelectionMarks : public SceneTest {};

TEST_F(SelectionMarks, NothingIsMarkedWhenTheSelectedSurfacesWereDeleted)
{
    object_t *cube = add_cube("cube");
    set_new_select_mode(SELECT_SURFACE);
    select_surface(*each<surface_t>(cube->surfaces).begin());
    prefs.extrude_delete_original = 1;
    selection_marks_update();
    ASSERT_NE(selected_part(cube), nullptr);

    run("extrude", "0", "0", "1");

    selection_marks_update();
    const selected_part_t *part = selected_part(cube);
    EXPECT_EQ(selection_get_num_surfaces(),
              part == nullptr ? 0 : static_cast<int>(part->surfaces.size()));
}

} // namespace
