// The process that reads other formats: whatever it does, the session goes on and the user is told.

#include "base/home.h"
#include "base/progress.h"
#include "fileio/helper_process.h"
#include "fileio/scene_stream.h"
#include "tests/fileio/foreign_files.h"
#include "tests/support/places.h"
#include "tests/support/scene_test.h"

#include <cstring>
#include <filesystem>
#include <random>

namespace {

plain_scene sample_scene()
{
    plain_scene scene;
    scene.materials.resize(2);
    scene.materials[1].name = "paint";
    scene.materials[1].picture = "wood.bmp";
    plain_node top;
    top.name = "top";
    scene.nodes.push_back(top);
    plain_node square;
    square.name = "a square";
    square.kind = PLAIN_POLY;
    square.parent = 0;
    square.picture = 1;
    square.points = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0};
    square.corners = {0, 1, 2, 3, 0, 2};
    square.uv.resize(12);
    square.offsets = {0, 4, 6};
    square.materials = {1, 0};
    square.flags = {PLAIN_SMOOTH, PLAIN_LINE};
    scene.nodes.push_back(square);
    scene.images.push_back({"wood.bmp", "BM"});
    scene.warnings.emplace_back("one");
    return scene;
}

TEST(SceneStream, WhatIsSentArrives)
{
    plain_scene read;
    ASSERT_TRUE(decode_scene(encode_scene(sample_scene()), &read));
    EXPECT_EQ(encode_scene(read), encode_scene(sample_scene()));
    EXPECT_EQ(read.nodes[1].corners, sample_scene().nodes[1].corners);
    EXPECT_EQ(read.materials[1].picture, "wood.bmp");
}

struct lie {
    const char *name;
    void (*tell)(plain_scene &);
};
void PrintTo(const lie &c, std::ostream *out) { *out << c.name; }

class SceneStreamLies : public testing::TestWithParam<lie> {};

TEST_P(SceneStreamLies, AreFound)
{
    plain_scene scene = sample_scene();
    GetParam().tell(scene);
    plain_scene read;
    EXPECT_FALSE(decode_scene(encode_scene(scene), &read));
}
// clang-format off
INSTANTIATE_TEST_SUITE_P(Each, SceneStreamLies, testing::Values(
    lie{"parent_is_itself",     [](plain_scene &s) { s.nodes[1].parent = 1; }},
    lie{"parent_comes_later",   [](plain_scene &s) { s.nodes[0].parent = 1; }},
    lie{"picture_of_nothing",   [](plain_scene &s) { s.nodes[1].picture = 2; }},
    lie{"no_such_kind",         [](plain_scene &s) { s.nodes[1].kind = 999; }},
    lie{"corner_too_high",      [](plain_scene &s) { s.nodes[1].corners[5] = 4; }},
    lie{"corner_below_zero",    [](plain_scene &s) { s.nodes[1].corners[0] = -1; }},
    lie{"offsets_go_back",      [](plain_scene &s) { s.nodes[1].offsets = {0, 7, 6}; }},
    lie{"offsets_end_early",    [](plain_scene &s) { s.nodes[1].offsets = {0, 4, 5}; }},
    lie{"offsets_begin_late",   [](plain_scene &s) { s.nodes[1].offsets = {1, 4, 6}; }},
    lie{"no_offsets",           [](plain_scene &s) { s.nodes[1].offsets.clear(); }},
    lie{"material_of_nothing",  [](plain_scene &s) { s.nodes[1].materials[0] = 2; }},
    lie{"too_few_materials",    [](plain_scene &s) { s.nodes[1].materials.pop_back(); }},
    lie{"half_a_point",         [](plain_scene &s) { s.nodes[1].points.push_back(1); }},
    lie{"too_few_uv",           [](plain_scene &s) { s.nodes[1].uv.pop_back(); }},
    lie{"odd_flags",            [](plain_scene &s) { s.nodes[1].flags[0] = 0x100; }}),
    [](const auto &row) { return std::string(row.param.name); });
// clang-format on

TEST(SceneStream, DamagedBytesNeverMakeAScenePointOutsideItself)
{
    const std::string good = encode_scene(sample_scene());
    std::mt19937 random(11);
    int accepted = 0;
    for (int i = 0; i < 20000; ++i) {
        std::string bytes = good;
        for (unsigned changes = 1 + random() % 4; changes > 0; --changes) {
            const size_t at = random() % bytes.size();
            if (random() % 8 == 0)
                bytes.resize(std::max<size_t>(at, 1));
            else
                bytes[at] = static_cast<char>(random() % 3 == 0 ? 0xFF : random());
        }
        plain_scene read;
        if (!decode_scene(bytes, &read))
            continue;
        ++accepted;
        for (const plain_node &node : read.nodes)
            for (const int corner : node.corners)
                ASSERT_LT(static_cast<size_t>(corner), node.points.size() / 3);
    }
    EXPECT_GT(accepted, 100); // colours and names may be anything
}

// ---- the process ----

// A home directory whose helper is a shell script.
class Helper : public SceneTest {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        home_ = vesk_get_vesk_homedir() == nullptr ? "" : vesk_get_vesk_homedir();
        folder_ = temporary_file("home");
        std::filesystem::create_directories(folder_ + "/lib");
        vesk_set_homedir(folder_.c_str());
    }
    void TearDown() override
    {
        vesk_set_homedir(home_.c_str());
        SceneTest::TearDown();
    }
    void helper(const std::string &script) const
    {
        const std::string file = folder_ + "/lib/scene_helper";
        std::filesystem::remove(file);
        write_text(file, "#!/bin/sh\n" + script + "\n");
        std::filesystem::permissions(file, std::filesystem::perms::owner_all);
    }
    static std::string told()
    {
        const std::string file = temporary_file("a.md2");
        write_text(file, make_md2());
        EXPECT_EQ(run("file_load", file), "0");
        const std::string text = recording().boxes.empty() ? "" : recording().boxes.back();
        const std::string start = "can't read " + file + "\n";
        EXPECT_TRUE(text.starts_with(start)) << text;
        return text.substr(std::min(start.size(), text.size()));
    }

private:
    std::string home_, folder_;
};

TEST_F(Helper, ItsEndIsToldInOneBox)
{
    const struct {
        const char *script, *told;
    } ends[] = {
        {"kill -SEGV $$", "its reader crashed (Segmentation fault)"},
        {"kill -XCPU $$", "its reader took more than 22 seconds"},
        {"kill -XFSZ $$", "its reader made too much of it"},
        {"printf 'bad magic' >&3; exit 1", "bad magic"},
        {"exit 1", "its reader gave up"},
        {"exit 77", "its reader gave up"},
        {"exit 0", "its reader gave something that is no scene"},
        {"head -c 100000 /dev/zero >&3", "its reader gave something that is no scene"},
    };
    for (const auto &end : ends) {
        recording().boxes.clear();
        helper(end.script);
        EXPECT_EQ(told(), end.told);
        EXPECT_EQ(recording().boxes.size(), 1U);
    }
    std::filesystem::remove(std::string(vesk_get_vesk_homedir()) + "/lib/scene_helper");
    EXPECT_EQ(told(), "lib/scene_helper cannot be started: No such file or directory");
}

TEST_F(Helper, IsGivenItsWordsAndNothingElse)
{
    helper("cat >&3; printf '%s|' \"$@\" >&3; ls /proc/self/fd | tr '\\n' ' ' >&3");
    const helper_result result = run_helper({"do", "a b\n\"c"}, {2000, 7});
    ASSERT_EQ(result.state, helper_result::DONE) << result.reason;
    EXPECT_TRUE(result.output.starts_with("2000|7|do|a b\n\"c|0 1 2 3 ")) << result.output;
    EXPECT_EQ(result.output.find(" 6 "), std::string::npos) << result.output;
}

TEST_F(Helper, CancelEndsItAtOnce)
{
    helper("sleep 100000");
    recording().clock_step = 0.2;
    recording().while_pumping = progress_cancel;
    EXPECT_EQ(run_helper({}, {1000, 100}).state, helper_result::CANCELLED);
}

TEST_F(Helper, LimitsHoldInsideTheRealOne)
{
    vesk_set_homedir(built_file("home").c_str());
    const std::string file = temporary_file("many.stl");
    std::string bytes(80, ' ');
    const std::uint32_t count = 2000000;
    bytes.append(reinterpret_cast<const char *>(&count), 4);
    bytes.resize(84 + 50 * std::size_t{count});
    write_text(file, bytes);
    const helper_result little = run_helper({"read", "stl", file}, {400, 20});
    EXPECT_EQ(little.state, helper_result::FAILED);
    EXPECT_TRUE(little.output.size() < 200 && !little.reason.empty()) << little.reason;
    const helper_result enough = run_helper({"read", "stl", file}, {4000, 60});
    EXPECT_EQ(enough.state, helper_result::DONE) << enough.reason;
    EXPECT_GT(helper_limits_for(100 << 20).megabytes, helper_limits_for(10).megabytes);
}

} // namespace
