// The texture table, its loaders and the commands that put pictures on objects and behind views.

#include "base/messages.h"
#include "base/ui_port.h"
#include "edit/document/selection.h"
#include "model/alloc_internal.h"
#include "model/object_tree.h"
#include "model/textures/texture_preview.h"
#include "model/textures/texture_search.h"
#include "model/textures/textures.h"
#include "model/world.h"
#include "tests/model/textures/image_writer.h"
#include "tests/view/view_test.h"
#include "view/background.h"

#include <filesystem>
#include <sys/stat.h>

namespace {

class TextureTable : public ViewTest {
protected:
    void SetUp() override
    {
        ViewTest::SetUp();
        textures_reset_for_test();
        backgrounds_reset_for_test();
        vesk_register_builtin_texture_loaders();
    }
    void TearDown() override
    {
        backgrounds_reset_for_test();
        ViewTest::TearDown();
        textures_reset_for_test();
    }

    static std::string picture_file(const std::string &name, int width = 4, int height = 2)
    {
        const std::string file = temporary_file(name);
        write_text(file, write_bmp(sample_picture(width, height, 0), {}));
        return file;
    }
    static int number_of_scripts(const char *start)
    {
        int count = 0;
        for (const std::string &script : recording().scripts)
            count += script.starts_with(start) ? 1 : 0;
        return count;
    }
};

TEST_F(TextureTable, AFileIsReadOnceUnlessItIsReloaded)
{
    const std::string file = picture_file("once.bmp");
    EXPECT_EQ(run("add_new_texture", file), "0");
    EXPECT_EQ(run("add_new_texture", file), "0");
    EXPECT_EQ(vesk_get_num_textures(), 1);

    write_text(file, write_bmp(sample_picture(9, 3, 0), {}));
    EXPECT_EQ(add_new_texture_reload(file.c_str(), "again"), 1);

    EXPECT_EQ(vesk_get_num_textures(), 2);
    EXPECT_EQ(texture_find_by_name(file.c_str()), 0);
    EXPECT_EQ(texture_id_to_image(0)->width, 9);
    EXPECT_STREQ(texture_id_to_origname(0), "again");
    EXPECT_EQ(run("add_new_texture", temporary_file("none.bmp")), "-1");
}

TEST_F(TextureTable, TheMenuGetsAnEntryForEachAndOneSeparator)
{
    run("add_new_texture", picture_file("one.bmp"));
    run("add_new_texture", picture_file("two.bmp"));
    EXPECT_EQ(number_of_scripts(".mbar.object.menu.texture add separator"), 1);
    EXPECT_EQ(number_of_scripts(".mbar.object.menu.texture add command"), 2);
    EXPECT_TRUE(recording().scripts.back().ends_with("-command \"vesk set_texture 1\""));
}

TEST_F(TextureTable, TheTableGrowsByTwenty)
{
    set_debug_mode(true);
    for (int i = 0; i < 21; ++i)
        add_new_texture_opt(picture_file("t" + std::to_string(i) + ".bmp", 1, 1).c_str(), "t");
    set_debug_mode(false);
    EXPECT_NE(recording().console.find("texture space expanded , is now 20\n"), std::string::npos);
    EXPECT_NE(recording().console.find("texture space expanded , is now 40\n"), std::string::npos);
    EXPECT_NE(recording().console.find("added texture 20 - t\n"), std::string::npos);
}

TEST_F(TextureTable, AMissingLoaderIsToldOnce)
{
    const std::string file = temporary_file("picture.BMP");
    write_text(file, "x");
    set_debug_mode(true);
    EXPECT_EQ(add_new_texture_opt(file.c_str(), "p"), -1);
    EXPECT_EQ(add_new_texture_opt(file.c_str(), "p"), -1);
    EXPECT_EQ(add_new_texture_opt("nosuffix", "p"), -1);
    set_debug_mode(false);
    ASSERT_EQ(recording().boxes.size(), 2U);
    EXPECT_EQ(recording().boxes[0],
              "Sorry, there is no texture loader for .BMP files\nCheck the VESK home page for "
              "plugins or updates.");
    EXPECT_EQ(recording().boxes[1], "texture_read:I need a filename with a suffix (e.g. file.rgb) "
                                    "- got 'nosuffix'");
    EXPECT_NE(
        recording().console.find("I can load these files as textures:\n.bmp (Bitmap files)\n"
                                 ".rgb .rgba (SGI rgb image files)\n.gif (GIF image files)\n"),
        std::string::npos);
}

TEST_F(TextureTable, FoldersAndPipesAreNoPictures)
{
    for (const char *name : {"folder.bmp", "pipe.bmp"}) {
        const std::string path = temporary_file(name);
        ASSERT_EQ(name[0] == 'f' ? mkdir(path.c_str(), 0700) : mkfifo(path.c_str(), 0600), 0);
        EXPECT_EQ(add_new_texture_opt(path.c_str(), "p"),
                  -1); // a read of the pipe would not return
        EXPECT_EQ(recording().boxes.back(), path + " is a folder, a pipe or a device: no picture");
    }
}

VESKImage *load_without_pixels(const char *name) { return new_veskimage(name); }
VESKImage *load_one_pixel(const char *name)
{
    VESKImage *image = new_veskimage(name);
    auto *data = static_cast<unsigned char *>(myalloc(4));
    std::fill_n(data, 4, static_cast<unsigned char>(7));
    vesk_image_set_dim(image, 1, 1, 4);
    vesk_image_set_data(image, data);
    return image;
}
[[gnu::no_sanitize("undefined")]] VESKImage *load_fault(const char *)
{
    volatile int *volatile nowhere = nullptr;
    *nowhere = 1;
    return nullptr;
}

TEST_F(TextureTable, LaterLoadersComeFirstAndMayFault)
{
    EXPECT_STREQ(vesk_get_texture_loader_by_suffix(".rgba")->suffixes, ".rgb .rgba");
    vesk_register_texture_loader(".empty", "No pixels", load_without_pixels);
    vesk_register_texture_loader(".bad", "Faulting", load_fault);
    vesk_register_texture_loader(".bmp", "One pixel", load_one_pixel);

    EXPECT_EQ(run("add_new_texture", "x.empty"), "-1");
    EXPECT_EQ(run("add_new_texture", "x.bad"), "-1");
    EXPECT_TRUE(recording().boxes.back().starts_with(
        "The texture loader for .bad files failed on x.bad\n"));
    EXPECT_EQ(run("add_new_texture", "a\\b.bmp"), "0");
    EXPECT_STREQ(texture_id_to_name(0), "a/b.bmp");
    EXPECT_TRUE(image_has_alpha(texture_id_to_image(0)));
    EXPECT_EQ(run("texture_list"), "{a/b.bmp a/b.bmp 1 1 4}");
}

// ---- on objects ----

TEST_F(TextureTable, GoOnASelectedSurfaceInOneStep)
{
    run("add_new_texture", picture_file("wood.bmp"));
    object_t *box = add_cube("box");
    run("set_select_mode", "surface");
    select_surface(object_get_surface_at(box, 2));
    run("set_texture", 0);
    ASSERT_EQ(vesk_get_world()->num_children, 2);
    const object_t *face = object_get_kid_at(vesk_get_world(), 1);
    EXPECT_EQ(face->num_surfaces, 1);
    EXPECT_NE(face->has_texture, 0);
    EXPECT_EQ(box->num_surfaces, 5);
    EXPECT_EQ(box->has_texture, 0);
    EXPECT_EQ(selection_get_num_surfaces(), 1);
    EXPECT_EQ(last_undo(), "set texture");
    run("undo");
    EXPECT_EQ(vesk_get_world()->num_children, 1);
    EXPECT_EQ(object_get_kid_at(vesk_get_world(), 0)->num_surfaces, 6);
}

TEST_F(TextureTable, GoOnSelectedObjectsWithTheirDescendantsInOneStep)
{
    run("add_new_texture", picture_file("wood.bmp"));
    object_t *top = add_cube("top");
    object_t *below = new_object(OBJECT_POLY);
    object_add_child(top, below);
    object_t *other = add_cube("other");

    run("set_texture", 0);
    EXPECT_EQ(last_message(), "set texture - nothing selected");
    EXPECT_EQ(last_undo(), "");
    select_object(top);
    run("texture_set", 4);
    EXPECT_EQ(last_message(), "set texture - there is no texture 4");
    EXPECT_EQ(last_undo(), "");

    run("set_texture", 0);
    EXPECT_EQ(last_undo(), "set texture");
    run("set_texture_repeats", 2.0f, 3.0f);
    run("set_texture_offsets", 0.25f, -1.0f);
    EXPECT_TRUE(top->has_texture != 0 && below->has_texture != 0 && other->has_texture == 0);
    EXPECT_EQ(run("get_texture_repoff"), "2 3 0.25 -1");
    EXPECT_FLOAT_EQ(below->texture_repeat_y, 3);

    run("selected_texture_off");
    EXPECT_EQ(last_undo(), "clear texture");
    EXPECT_EQ(top->has_texture, 0);
    run("undo");
    const auto first = [] { return object_get_kid_at(vesk_get_world(), 0); };
    EXPECT_NE(first()->has_texture, 0);
    EXPECT_FLOAT_EQ(first()->texture_repeat_x, 2);
    clear_selection();
    EXPECT_EQ(run("get_texture_repoff"), "1 1 0 0");
}

TEST_F(TextureTable, AreChosenInADialog)
{
    select_object(add_cube("cube"));
    run("file_select_texture"); // cancelled
    EXPECT_EQ(last_undo(), "");
    EXPECT_TRUE(last_call("get_opentexturename").starts_with("Load a texture\" \"\\{Texture"));

    recording().answers["get_opentexturename"] = temporary_file("none.gif");
    run("file_select_texture");
    EXPECT_EQ(last_message(), "can't load texture file: " + temporary_file("none.gif"));

    recording().answers["get_opentexturename"] = picture_file("chosen.bmp");
    run("file_select_texture");
    EXPECT_EQ(last_undo(), "set texture");
    EXPECT_EQ(get_current_object()->texture, 0);
}

// ---- search ----

TEST_F(TextureTable, AreSearchedBesideTheModel)
{
    const std::string folder = temporary_file("models");
    for (const char *below : {"/maps", "/textures"})
        std::filesystem::create_directories(folder + below);
    const std::string model = folder + "/scene.vesk";
    const auto found = [&] {
        const char *name = search_texture(model.c_str(), "maps/wood.bmp");
        return name == nullptr ? std::string() : std::string(name);
    };
    EXPECT_EQ(found(), "");
    for (const char *place : {"/textures/wood.bmp", "/wood.bmp", "/maps/wood.bmp"}) {
        write_text(folder + place, write_bmp(sample_picture(2, 2, 0), {}));
        EXPECT_EQ(found(), folder + place);
    }
    EXPECT_EQ(search_texture(model.c_str(), (folder + "/wood.bmp").c_str()), folder + "/wood.bmp");
    object_t *cube = add_cube("cube");
    EXPECT_EQ(search_and_set_texture(cube, model.c_str(), "maps/wood.bmp"), 1);
    EXPECT_EQ(search_and_set_texture(cube, model.c_str(), "maps/wood.bmp"), 1);
    EXPECT_EQ(vesk_get_num_textures(), 1);
    EXPECT_STREQ(texture_id_to_origname(0), "maps/wood.bmp");
}

// ---- behind views ----

TEST_F(TextureTable, ABackgroundImageFollowsItsView)
{
    const std::string file = picture_file("plan.bmp", 40, 20);
    double r[4];
    run("load_background_image", file, 3);
    EXPECT_EQ(last_message(), "background image - there is no flat view 3");
    run("load_background_image", temporary_file("none.bmp"), 0);
    EXPECT_FALSE(view_background_rectangle(0, r));

    run("load_background_image", file, 0);
    ASSERT_TRUE(view_background_rectangle(0, r));
    EXPECT_DOUBLE_EQ(r[0], 430 / 2.0 - 20); // one pixel of the window each, about the origin
    EXPECT_DOUBLE_EQ(r[3], 353 / 2.0 + 10);
    run("zoom_in"); // by 1.5 about the window's middle
    ASSERT_TRUE(view_background_rectangle(0, r));
    EXPECT_NEAR(r[2] - r[0], 60, 1e-3);

    view_background(0).x = 10;
    view_background(0).y = 4;
    double moved[4];
    ASSERT_TRUE(view_background_rectangle(0, moved));
    EXPECT_NEAR(moved[0] - r[0], -15, 1e-3);
    EXPECT_NEAR(moved[1] - r[1], 6, 1e-3);

    run("clear_background_image", 0);
    EXPECT_FALSE(view_background_rectangle(0, r));
}

// ---- previews ----

TEST_F(TextureTable, PreviewsKeepProportionsAndMeanColours)
{
    VESKImage *image = load_one_pixel("x");
    EXPECT_EQ(image_scaled(*image, 1, 1), (std::vector<unsigned char>(3, 149))); // mostly checker
    free_veskimage(image);

    const std::string file = temporary_file("halves.rgb");
    picture_t halves = {4, 2, {}};
    for (int i = 0; i < 8; ++i)
        halves.pixels.push_back(i % 4 < 2 ? rgba_t{200, 0, 0, 255} : rgba_t{0, 100, 0, 255});
    write_text(file, write_sgi(halves, {.channels = 4}));
    image = texture_read(file.c_str(), "halves");
    ASSERT_NE(image, nullptr);
    int width = 0;
    int height = 0;
    image_fit(*image, 2, 50, &width, &height);
    EXPECT_EQ(width, 2);
    EXPECT_EQ(height, 1);
    EXPECT_EQ(image_scaled(*image, 2, 1), (std::vector<unsigned char>{200, 0, 0, 0, 100, 0}));
    EXPECT_EQ(image_scaled(*image, 1, 1), (std::vector<unsigned char>{100, 50, 0}));
    free_veskimage(image);
}

TEST_F(TextureTable, AreShownInWidgets)
{
    run("add_new_texture", picture_file("shown.bmp", 40, 20));
    run("window_draw_texture", 0, ".nowhere");
    EXPECT_EQ(last_call("window_show_photo"), "");

    static int put[2];
    ui_port_t port = ui_port();
    port.widget_size = [](const char *, int out[2]) {
        out[0] = out[1] = 10;
        return true;
    };
    port.photo_put = [](const char *, int width, int height, const unsigned char *) {
        put[0] = width;
        put[1] = height;
        return true;
    };
    ui_port_install(port);
    run("window_draw_texture", 0, ".label");
    EXPECT_EQ(last_call("window_show_photo"), ".label\" \"vesk_texture_in.label");
    EXPECT_EQ(put[0], 10);
    EXPECT_EQ(put[1], 5);
    EXPECT_EQ(run("texture_photo", 0, 16), "vesk_texture_0_16");
    EXPECT_EQ(run("texture_photo", 3, 16), "");
}

} // namespace
