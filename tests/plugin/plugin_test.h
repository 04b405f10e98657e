#ifndef VESK_TESTS_PLUGIN_PLUGIN_TEST_H
#define VESK_TESTS_PLUGIN_PLUGIN_TEST_H

#include "base/crash_guard.h"
#include "plugin/loader.h"
#include "tests/support/places.h"
#include "tests/support/scene_test.h"

#include <cstdio>

// Plug-ins of the test tree, and those that come along.
inline std::string plugin_file(const char *name) { return built_file("tests/") + name + ".p"; }
inline std::string bundled_plugin(const char *name)
{
    return built_file("home/plugins/") + name + ".p";
}

// What a program writes to its standard output; "" when it fails.
inline std::string program_output(const std::string &command)
{
    FILE *pipe = popen((command + " 2>/dev/null").c_str(), "r");
    std::string bytes;
    char buffer[4096];
    while (const size_t n = fread(buffer, 1, sizeof buffer, pipe))
        bytes.append(buffer, n);
    return pclose(pipe) == 0 ? bytes : "";
}

class Plugins : public SceneTest {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        crash_guard::forget_faults_for_test();
    }
    void TearDown() override
    {
        plugins_exit();
        SceneTest::TearDown();
    }
};

#endif
