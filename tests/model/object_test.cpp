#include "edit/document/selection.h"
#include "model/bounds.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/freed.h"
#include "model/identity.h"
#include "model/lights.h"
#include "model/normals.h"
#include "model/object_internal.h"
#include "model/object_tree.h"
#include "model/owners.h"
#include "model/property.h"
#include "model/world.h"
#include "tests/support/scene_test.h"

#include <cmath>

namespace {

std::string names(const object_t *parent)
{
    std::string all;
    for (const object_t *child : each<object_t>(parent->children))
        all += child->name;
    return all;
}

object_t *named(const char *name, object_t *parent)
{
    object_t *object = new_object(OBJECT_POLY);
    object_set_name(object, name);
    object_add_child(parent, object);
    return object;
}

class Objects : public SceneTest {
protected:
    object_t *world() { return vesk_get_world(); }
};

TEST_F(Objects, BeginWithTheirDefaults)
{
    object_t *sphere = new_object(OBJECT_SPHERE);
    object_t *light = new_object(OBJECT_LIGHT);
    EXPECT_EQ(sphere->is_sphere, 1);
    EXPECT_STREQ(sphere->name, "");
    EXPECT_STREQ(light->name, "light");
    EXPECT_EQ(sphere->visible, 1);
    EXPECT_EQ(sphere->rotation[4], 1.0f);
    surface_t *surface = new_surface();
    EXPECT_EQ(vesk_surface_get_flags(surface), 0x20);
    EXPECT_EQ(surface->material, 1);
    vesk_surface_set_flags(surface, 0x31);
    EXPECT_EQ(surface->type, SURFACE_CLOSED_LINE);
    EXPECT_EQ(vesk_surface_get_flags(surface), 0x31);
    surface_free_record(surface);
    object_free(sphere);
    object_free(light);
}

TEST_F(Objects, RefuseNullElementsWithALine)
{
    object_t *object = named("a", world());
    object_add_vertex(object, nullptr);
    object_add_surface(object, nullptr);
    object_add_child(object, nullptr);
    EXPECT_EQ(recording().console, "warning - attempt to add null point to object\n"
                                   "warning - attempt to add null surface to object\n"
                                   "warning - attempt to add null child to object\n");
    EXPECT_EQ(object->num_vertices + object->num_surfaces + object->num_children, 0);
}

TEST_F(Objects, TakeWholeArrays)
{
    object_t *object = named("a", world());
    const float xyz[] = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0};
    const int offsets[] = {0, 3, 7};
    const int indices[] = {0, 1, 2, 0, 2, 3, 9}; // the last one is none
    EXPECT_EQ(vesk_object_add_vertices_from_float_array(object, xyz, 4), 0);
    EXPECT_EQ(vesk_object_add_surfaces_from_arrays(object, 2, offsets, indices, nullptr, 5), 0);
    ASSERT_EQ(object->num_surfaces, 2);
    EXPECT_EQ(object_get_surface_at(object, 1)->num_refs, 3);
    EXPECT_EQ(object_get_surface_at(object, 1)->material, 5);
    EXPECT_NE(vesk_object_add_triangle(object, 1, 2, 3), nullptr);
    EXPECT_EQ(vesk_object_add_triangle(object, 1, 2, 4), nullptr);
}

TEST_F(Objects, HidingAGroupHidesWhatItHolds)
{
    object_t *group = named("g", world());
    object_t *inner = named("i", named("m", group));
    objects_marks() = {};
    object_set_visible(group, 0);
    EXPECT_EQ(inner->visible, 0);
    EXPECT_EQ(objects_marks().hidden, 1);
    object_set_locked(group, 1);
    EXPECT_EQ(inner->locked, 1);
    EXPECT_EQ(objects_marks().locked, 0);
    object_set_locked(group, 0); // it is unlocking that raises the mark
    EXPECT_EQ(objects_marks().locked, 1);
}

TEST_F(Objects, MoveInTheTreeWithoutRings)
{
    object_t *a = named("a", world());
    object_t *b = named("b", world());
    object_t *c = named("c", a);
    EXPECT_EQ(object_reparent(a, c), 0);
    EXPECT_EQ(object_reparent(a, a), 0);
    EXPECT_EQ(object_reparent_before(c, world(), b), 1);
    EXPECT_EQ(names(world()), "acb");
    EXPECT_EQ(a->num_children, 0);
    object_move_to_head(b);
    EXPECT_EQ(names(world()), "bac");
    EXPECT_EQ(object_reparent(a, b), 1);
    EXPECT_EQ(object_top_ancestor(a), b);
    EXPECT_EQ(object_ungroup(b), 1);
    EXPECT_EQ(names(world()), "ac");
    EXPECT_EQ(object_ungroup(a), 0); // no children
}

TEST_F(Objects, AreGoneForEverybodyOnceDeleted)
{
    object_t *group = named("g", world());
    object_t *cube = add_cube("cube");
    object_reparent(cube, group);
    const int id = object_identity(cube);
    select_object(group);
    EXPECT_EQ(object_exists(cube), 1);
    EXPECT_EQ(object_by_identity(id), cube);
    object_delete(group);
    EXPECT_EQ(object_exists(cube), 0); // before another takes its place
    EXPECT_EQ(selection_get_num_objects(), 0);
    recording().console.clear();
    EXPECT_EQ(object_by_identity(id), nullptr);
    EXPECT_EQ(recording().console, "no object with id " + std::to_string(id) + "\n");
    EXPECT_GT(object_identity(add_cube("another")), id); // numbers are not used again
}

TEST_F(Objects, AreCopiedWithAllTheyOwn)
{
    object_t *group = named("g", world());
    object_t *cube = add_cube("cube");
    object_reparent(cube, group);
    object_set_userdata(cube, "text");
    vesk_object_set_prop_value(cube, "k", "kind", "v");
    object_t *copy = object_clone(group);
    EXPECT_EQ(copy->parent, nullptr);
    object_t *twin = object_get_kid_at(copy, 0);
    ASSERT_NE(twin, nullptr);
    EXPECT_EQ(twin->parent, copy);
    EXPECT_EQ(twin->num_surfaces, cube->num_surfaces);
    vesk_object_set_prop_value(twin, "k", "", "other");
    object_set_userdata(twin, nullptr);
    vertex_set_point(object_get_vertex_at(twin, 0), 9, 9, 9);
    EXPECT_STREQ(vesk_object_get_prop_value(cube, "k"), "v");
    EXPECT_STREQ(cube->data, "text");
    const surface_t *face = object_get_surface_at(twin, 0);
    for (const svertex *corner : each<svertex>(face->refs))
        EXPECT_GE(vesk_object_get_vertex_index(twin, corner->vertex), 0);
    object_free(copy);
    point3_t min, max;
    EXPECT_EQ(object_bounds(cube, &min, &max), 8);
    EXPECT_LT(max.x, 2);
}

TEST_F(Objects, NestTenThousandDeep)
{
    object_t *at = world();
    for (int i = 0; i < 10000; ++i)
        at = named("n", at);
    object_add_new_vertex(at, 1, 2, 3);
    object_t *top = object_get_kid_at(world(), 0);
    object_t *copy = object_clone(top);
    object_set_visible(copy, 0);
    object_calc_normals_force(copy);
    EXPECT_EQ(object_of_vertex(nullptr, object_get_vertex_at(at, 0)), at);
    EXPECT_EQ(object_exists(at), 1);
    object_free(copy);
    object_delete(top);
    EXPECT_EQ(world()->num_children, 0);
}

TEST_F(Objects, FindTheOwnersOfManyElements)
{
    object_t *a = add_cube("a");
    object_t *b = add_cube("b");
    owned_list mixed; // out of order, repeated, and one that nobody owns
    vertex *stray = new_vertex();
    for (vertex *point : {object_get_vertex_at(b, 7), stray, object_get_vertex_at(a, 2),
                          object_get_vertex_at(b, 1), object_get_vertex_at(b, 7)})
        mixed.add(point);
    const std::vector<owned_elements> owners = vertices_by_owner(mixed.get());
    ASSERT_EQ(owners.size(), 2U);
    EXPECT_EQ(owners[0].object, a);
    EXPECT_EQ(owners[0].indices, std::vector<int>{2});
    EXPECT_EQ(owners[1].indices, (std::vector<int>{1, 7}));
    const std::vector<owned_elements> all = surfaces_by_owner(a->surfaces);
    ASSERT_EQ(all.size(), 1U);
    EXPECT_EQ(all[0].indices.size(), 6U);
    vertex_free_record(stray);
}

TEST_F(Objects, LightsAreFoundWhereverTheyLie)
{
    object_t *group = named("g", world());
    object_t *light = new_light();
    object_add_child(group, light);
    register_light(light);
    EXPECT_EQ(list_count(world_lights()), 1);
    object_delete(group);
    EXPECT_EQ(world_lights(), nullptr);
}

// ---- normals ----

class Normals : public Objects {
protected:
    // A fan of `n` triangles in z = 0 round the origin.
    object_t *fan(int n)
    {
        object_t *object = named("fan", world());
        object_add_new_vertex(object, 0, 0, 0);
        for (int i = 0; i <= n; ++i)
            object_add_new_vertex(object, std::cos(static_cast<float>(i) / 3),
                                  std::sin(static_cast<float>(i) / 3), 0);
        for (int i = 1; i <= n; ++i)
            vesk_object_add_triangle(object, 0, i, i + 1);
        object_calc_normals_force(object);
        return object;
    }
    static float length_at_centre(const object_t *object)
    {
        const point3_t n = object_get_vertex_at(object, 0)->normal;
        EXPECT_EQ(n.x, 0);
        return n.z;
    }
};

TEST_F(Normals, AreSumsDividedByTheRootOfTheWholeSquaredLength)
{
    EXPECT_FLOAT_EQ(length_at_centre(fan(1)), 1);
    EXPECT_FLOAT_EQ(length_at_centre(fan(2)), 1);
    EXPECT_FLOAT_EQ(length_at_centre(fan(5)), 1);

    object_t *roof = named("roof", world()); // sum (0, 1, 1): squared length 2 or, rounded, 1
    for (const point3_t &p : {point3_t{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}})
        object_add_new_vertex(roof, p.x, p.y, p.z);
    vesk_object_add_triangle(roof, 0, 1, 2);
    vesk_object_add_triangle(roof, 0, 3, 1);
    object_calc_normals_force(roof);
    EXPECT_FLOAT_EQ(object_get_vertex_at(roof, 0)->normal.y, std::sqrt(0.5f));
    EXPECT_FLOAT_EQ(object_get_vertex_at(roof, 2)->normal.z, 1);
}

TEST_F(Normals, ShorterThanOneStayUnnormalised)
{
    object_t *object = fan(1);
    vesk_surface_set_normal(object_get_surface_at(object, 0), 0, 0, 0.9f);
    object_calc_vertex_normals(object);
    EXPECT_EQ(length_at_centre(object), 0.9f);
}

TEST_F(Normals, LeaveLinesAndDegenerateCornersAlone)
{
    object_t *object = named("lines", world());
    object_add_new_vertex(object, 0, 0, 0);
    object_add_new_vertex(object, 1, 0, 0);
    surface_t *line = new_surface();
    vesk_surface_set_normal(line, 0, 5, 0);
    surface_add_vertex(line, object_get_vertex_at(object, 0), 0, 0);
    surface_add_vertex(line, object_get_vertex_at(object, 1), 0, 0);
    object_add_surface(object, line);
    surface_t *flat = vesk_object_add_triangle(object, 0, 1, 1);
    surface_t *broken = new_surface();
    for (int i = 0; i < 3; ++i)
        surface_add_vertex(broken, nullptr, 0, 0);
    object_add_surface(object, broken);
    object_get_vertex_at(object, 1)->position.x = 1e38f; // no trap on overflow either
    object_calc_normals_force(object);
    EXPECT_EQ(line->normal.y, 5);
    EXPECT_EQ(flat->normal.x + flat->normal.y + flat->normal.z, 0);
}

} // namespace
