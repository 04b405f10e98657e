// The shared meshes are what their rows say: a command that is tested on them is tested on that.

#include "tests/edit/mesh_corpus.h"

namespace {

class Corpus : public SceneTest, public testing::WithParamInterface<corpus_mesh> {};

TEST_P(Corpus, IsWhatItsRowSays)
{
    const corpus_mesh &mesh = GetParam();
    object_t *object = mesh.add();
    expect_sound(object);
    if (mesh.euler != any_euler) {
        EXPECT_EQ(euler_of_polygons(object), mesh.euler);
    }
    if (mesh.volume > 0) {
        EXPECT_NEAR(volume(object), mesh.volume, 1e-4);
    }
    if (mesh.is(MESH_CLOSED)) {
        expect_closed(object);
        EXPECT_GT(volume(object), 0);
    }
    if (mesh.is(MESH_ORIENTED))
        expect_oriented(object);
    if (mesh.is(MESH_SOUND))
        expect_no_problems(object);
    if (!mesh.is(MESH_SEAMS))
        expect_picture_in_place(object);
}
INSTANTIATE_TEST_SUITE_P(Meshes, Corpus, testing::ValuesIn(mesh_corpus()));

} // namespace
