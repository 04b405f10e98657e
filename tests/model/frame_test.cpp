// World and local coordinates of objects below turned parents.

#include "model/frame.h"

#include "model/matrix.h"
#include "model/object_tree.h"
#include "model/world.h"
#include "tests/support/scene_test.h"

namespace {

class Frame : public SceneTest {
protected:
    static object_t *add(object_t *parent, const point3_t &centre, float angle)
    {
        object_t *object = new_object(OBJECT_POLY);
        matrix_set_rotate(object->rotation, angle, 0.5f * angle, -angle);
        object->centre = centre;
        object_add_child(parent, object);
        return object;
    }
    static void expect_near(const point3_t &a, const point3_t &b)
    {
        EXPECT_NEAR(a.x, b.x, 1e-5f);
        EXPECT_NEAR(a.y, b.y, 1e-5f);
        EXPECT_NEAR(a.z, b.z, 1e-5f);
    }
};

TEST_F(Frame, LocationAndRotationOfAChildMakeItsWorldFrame)
{
    const object_t *parent = add(vesk_get_world(), {1, -2, 3}, 0.7f);
    const object_t *child = add(const_cast<object_t *>(parent), {4, 0, 1}, -1.1f);
    point3_t location;
    float rotation[9], together[9];
    object_global_to_local(child, &location, rotation);

    // centre = parent's centre + location x parent's rotation
    point3_t offset;
    point_transform_local_to_global(&offset, parent->rotation, &parent->centre, &location);
    expect_near(offset, child->centre);
    float copy[9];
    matrix_copy(const_cast<float *>(parent->rotation), copy);
    matrix_multiply(copy, rotation, together);
    for (int i = 0; i < 9; ++i)
        EXPECT_NEAR(together[i], child->rotation[i], 1e-5f) << i;

    point3_t turned = {10, 20, 30};
    object_translation_local_to_global(child, &turned);
    expect_near(turned, {11, 18, 33});
}

TEST_F(Frame, APointOfAnObjectIsAtItsOwnCoordinates)
{
    object_t *parent = add(vesk_get_world(), {1, -2, 3}, 0.7f);
    const object_t *child = add(parent, {4, 0, 1}, -1.1f);
    const point3_t own = {0.5f, 2, -7};
    point3_t world, local;
    point_transform_local_to_global(&world, child->rotation, &child->centre, &own);
    object_point_global_to_local(child, &world, &local);
    expect_near(local, own);
}

TEST_F(Frame, WithoutAParentNothingIsTurnedOrMoved)
{
    const object_t *world = vesk_get_world();
    point3_t location = {9, 9, 9}, offset = {1, 2, 3}, local;
    float rotation[9];
    object_global_to_local(world, &location, rotation);
    expect_near(location, {0, 0, 0});
    EXPECT_EQ(matrix_is_identity(rotation), 1);
    object_translation_local_to_global(world, &offset);
    expect_near(offset, {1, 2, 3});
    object_point_global_to_local(world, &offset, &local);
    expect_near(local, {1, 2, 3});
}

} // namespace
