// What a click would take is lit under the pointer.

#include "view/highlight.h"

#include "edit/document/modes.h"
#include "edit/document/selection_internal.h"
#include "edit/transform.h"
#include "tests/view/tool_fixture.h"

namespace {

class Highlight : public Tools {
protected:
    size_t segments() const
    {
        const highlight_t *lit = highlight_in(VIEW_XY);
        return lit == nullptr ? 0 : lit->segments.size();
    }
};

TEST_F(Highlight, ShowsTheElementOfTheMode)
{
    move(VIEW_XY, 200, 150);
    EXPECT_EQ(segments(), 4U); // the outline of the cube as seen from the front
    move(VIEW_XY, 20, 20);
    EXPECT_EQ(segments(), 0U);
    set_new_select_mode(SELECT_SURFACE);
    move(VIEW_XY, 200, 150);
    EXPECT_EQ(segments(), 4U);
    ASSERT_NE(highlight_in(VIEW_XY), nullptr);
    EXPECT_EQ(highlight_in(VIEW_XY)->triangles.size(), 6U);
    EXPECT_FLOAT_EQ(highlight_in(VIEW_XY)->triangles[0].z, 0.5f);
    EXPECT_EQ(highlight_in(VIEW_XYZ), nullptr);
    set_new_select_mode(SELECT_EDGE);
    move(VIEW_XY, 250, 152);
    EXPECT_EQ(segments(), 1U);
    set_new_select_mode(SELECT_VERTEX);
    move(VIEW_XY, 250, 101);
    ASSERT_NE(highlight_in(VIEW_XY), nullptr);
    ASSERT_EQ(highlight_in(VIEW_XY)->points.size(), 1U);
    EXPECT_FLOAT_EQ(highlight_in(VIEW_XY)->points[0].z, 0.5f);
}

TEST_F(Highlight, GoesWithPressSelectionAndChanges)
{
    move(VIEW_XY, 200, 150);
    press(VIEW_XY, 200, 150);
    EXPECT_EQ(segments(), 0U);
    release(VIEW_XY, 200, 150);
    move(VIEW_XY, 201, 150); // the click has selected it
    EXPECT_EQ(segments(), 0U);
    clear_selection();
    move(VIEW_XY, 202, 150);
    EXPECT_EQ(segments(), 4U);
    const point3_t offset = {3, 0, 0};
    translate_object(cube, &offset);
    EXPECT_EQ(segments(), 0U);
    move(VIEW_XY, 203, 150);
    EXPECT_EQ(segments(), 0U);
    prefs.highlight_pick = 0;
    move(VIEW_XY, 390, 150);
    EXPECT_EQ(segments(), 0U);
}

} // namespace
