// Operations on ten thousand objects: each of these once took a minute, because something that
// grows with the scene was done for each object.
#include "model/object.h"
#include "model/object_tree.h"
#include "model/world.h"
#include "tests/support/scene_test.h"

namespace {

constexpr int many = 10000;
constexpr int at_least_one = -1;

class ManyObjects : public SceneTest {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        for (int i = 0; i < many; ++i)
            object_set_name(add_square(1), "square");
    }
};

} // namespace

TEST_F(ManyObjects, OperationsEndAndChangeEachOfThem)
{
    struct step_t {
        std::vector<std::string> command;
        const char *mode;
        int objects, surfaces_each; // afterwards
    };
    const step_t steps[] = {
        {{"surface_doosabin"}, "object", many, 1},
        {{"surface_triangulate"}, "object", many, 2},
        {{"uv_project", "box"}, "surface", many, 2},
        {{"uv_relax", "2"}, "surface", many, 2},
        {{"surface_make_hole"}, "surface", many, 6},
        {{"surface_create_object"}, "surface", many + 1, 6},
        {{"write_3ds", temporary_file("many.3ds")}, "object", many + 1, 6},
        {{"reduce", "99"}, "object", many + 1, at_least_one},
        {{"clear_all"}, "object", 0, 0},
    };
    for (const step_t &step : steps) {
        SCOPED_TRACE(step.command.front());
        run("set_select_mode", step.mode);
        run("select_all");
        run_words(step.command);
        EXPECT_EQ(vesk_get_world()->num_children, step.objects);
        if (step.objects == 0)
            continue;
        const auto *first = reinterpret_cast<const object_t *>(vesk_get_world()->children->data);
        if (step.surfaces_each == at_least_one)
            EXPECT_GE(first->num_surfaces, 1);
        else
            EXPECT_EQ(first->num_surfaces, step.surfaces_each);
    }
}
