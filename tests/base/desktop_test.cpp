#include "base/desktop.h"

#include "tests/support/scene_test.h"

namespace {

class Desktop : public SceneTest {};

TEST_F(Desktop, ExecuteGoesOnAndTellsTheExitStatus)
{
    run("execute", "render \"$HOME\" [x]");
    EXPECT_EQ(recording().programs.back(), "render \"$HOME\" [x]");
    EXPECT_NE(last_message().find("started"), std::string::npos);
    recording().program_ended("render", 3);
    EXPECT_EQ(last_message(), "render - exit status 3");
    recording().program_ended("render", -9);
    EXPECT_EQ(last_message(), "render - ended by signal 9");
}

struct address {
    const char *name, *url;
    bool opened;
};
// clang-format off
const address addresses[] = {
    {"http",           "http://example.org/a?b", true},
    {"https",          "HTTPS://example.org",    true},
    {"file",           "file:///tmp/a.html",     true},
    {"other_scheme",   "ftp://example.org",      false},
    {"script",         "javascript:alert(1)",    false},
    {"program",        "/bin/sh",                false},
    {"option",         "--help",                 false},
    {"nothing_behind", "http://",                false},
    {"empty",          "",                       false},
};
// clang-format on
void PrintTo(const address &c, std::ostream *out) { *out << c.name; }
class Addresses : public SceneTest, public testing::WithParamInterface<address> {};

TEST_P(Addresses, AreOpenedByTheirScheme)
{
    run("start_web_browser", GetParam().url);
    EXPECT_EQ(recording().programs.size(), GetParam().opened ? 1u : 0u);
}
INSTANTIATE_TEST_SUITE_P(Schemes, Addresses, testing::ValuesIn(addresses));

TEST_F(Desktop, TheAboutBoxNamesTheVersion)
{
    run("menu_about");
    ASSERT_EQ(recording().boxes.size(), 1u);
    EXPECT_TRUE(recording().boxes[0].starts_with("VESK v3.6\n"));
}

TEST_F(Desktop, WithoutAViewThereIsNoPicture)
{
    run("copy_3d_win_to_clipboard");
    EXPECT_EQ(last_message(), "copy 3D view - there is no 3D view");
}

} // namespace
