// Operations on large objects write their results without the records of before: the model, its selection
// and every step of its history must be what they are with records.

#include "model/deferred_pages.h"
#include "model/deferred_records.h"
#include "tests/edit/mesh_corpus.h"

namespace {

struct operation_t {
    std::vector<std::string> words;
    const char *mode; // of the selection
};

const operation_t operations[] = {
    {{"inset", "0.05", "0.02", "each"}, "surface"},
    {{"inset", "0.05", "0.02", "region"}, "surface"},
    {{"extrude_each", "0.1"}, "surface"},
    {{"extrude_normals", "0.1"}, "surface"},
    {{"extrude_select", "0", "0", "0", "0.3"}, "surface"},
    {{"shell", "0.05", "1"}, "surface"},
    {{"surface_make_hole"}, "surface"},
    {{"hole_select"}, "surface"},
    {{"surface_bevel"}, "surface"},
    {{"bevel_select"}, "surface"},
    {{"surface_triangulate"}, "surface"},
    {{"surface_subdivide"}, "surface"},
    {{"catmull_clark", "1"}, "surface"},
    {{"quads_from_triangles", "5"}, "surface"},
    {{"catmull_clark", "1"}, "object"},
    {{"surface_loop_subdivision", "1"}, "object"},
    {{"surface_doosabin"}, "object"},
    {{"duplicate"}, "object"},
    {{"weld_distance", "0.01"}, "vertex"},
    {{"unshare_vertices"}, "vertex"},
};

class RenewedRecords : public SceneTest, public testing::WithParamInterface<corpus_mesh> {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        least_ = deferred_records_set_least(never);
    }
    void TearDown() override
    {
        deferred_records_set_least(least_);
        SceneTest::TearDown();
    }

    // Texts of the scene and the selection after it, its undo and redo, and a move of what came of it.
    std::vector<std::string> told(const operation_t &operation, bool with_records)
    {
        run("clear_all");
        GetParam().add();
        deferred_records_set_least(with_records ? never : 1);
        run("set_select_mode", operation.mode);
        run("select_all");
        std::vector<std::string> texts;
        const auto tell = [&](const std::string &what) {
            texts.push_back(what + "\n" + scene_text() + run("get_counts"));
        };
        run_words(operation.words);
        tell("done");
        run("undo");
        tell("undone");
        run("redo");
        tell("redone");
        run("select_all");
        run("move", 0.5, 0, 0);
        tell("moved");
        run("undo");
        expect_sound_scene();
        return texts;
    }

private:
    static constexpr int never = 1000000;
    int least_ = 0;
};

TEST_P(RenewedRecords, GiveTheSameModel)
{
    if (!deferred_pages::are_possible())
        GTEST_SKIP() << "no pages of records in this build";
    for (const operation_t &operation : operations) {
        SCOPED_TRACE(operation.words.front() + " of " + operation.mode);
        const std::vector<std::string> expected = told(operation, true);
        const std::vector<std::string> found = told(operation, false);
        for (std::size_t i = 0; i < expected.size(); ++i)
            EXPECT_TRUE(found[i] == expected[i]) << expected[i].substr(0, expected[i].find('\n'));
    }
}
INSTANTIATE_TEST_SUITE_P(Meshes, RenewedRecords, testing::ValuesIn(mesh_corpus()));

} // namespace
