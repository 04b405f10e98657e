#ifndef VESK_TESTS_PLUGIN_INTERCHANGE_FIXTURE_H
#define VESK_TESTS_PLUGIN_INTERCHANGE_FIXTURE_H

// The bundled plug-in for foreign formats is loaded, in the home directory of the build; the texture
// wood.bmp lies in the temporary folder.

#include "base/file_report.h"
#include "base/home.h"
#include "model/each.h"
#include "model/object_tree.h"
#include "model/textures/textures.h"
#include "model/world.h"
#include "tests/model/textures/image_writer.h"
#include "tests/plugin/plugin_test.h"

// Line numbers and texts of the last import's.
inline std::string complaints()
{
    std::string text;
    for (const file_report::complaint &complaint : last_file_report().warnings)
        text += std::to_string(complaint.line) + " " + complaint.text + "\n";
    return text;
}

class Interchange : public Plugins {
protected:
    void SetUp() override
    {
        Plugins::SetUp();
        home_ = vesk_get_vesk_homedir() == nullptr ? "" : vesk_get_vesk_homedir();
        vesk_set_homedir(VESK_BINARY_DIR "/home");
        textures_reset_for_test();
        vesk_register_builtin_texture_loaders();
        write_text(temporary_file("wood.bmp"), write_bmp(sample_picture(4, 4, 0), {}));
        ASSERT_EQ(plugin_load(bundled_plugin("interchange").c_str()), 1);
    }
    void TearDown() override
    {
        vesk_set_homedir(home_.c_str());
        Plugins::TearDown();
        textures_reset_for_test();
    }
    static std::string load(const std::string &name, const std::string &bytes)
    {
        const std::string file = temporary_file(name);
        write_text(file, bytes);
        return run("file_load", file);
    }
    static std::vector<object_t *> parts()
    {
        std::vector<object_t *> found;
        for_each_object(vesk_get_world(), [&](object_t *object) {
            if (object->num_surfaces > 0)
                found.push_back(object);
        });
        return found;
    }

    // What a damaged file may cost: a refusal, or a picture; never a fault.
    static void expect_refusals_only()
    {
        for (const std::string &box : recording().boxes)
            ASSERT_TRUE(box.starts_with("can't read ") || box.starts_with("texture_read:") ||
                        box.starts_with("Sorry, there is no texture loader"))
                << box;
    }

private:
    std::string home_;
};

#endif
