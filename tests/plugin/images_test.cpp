// The bundled texture plug-in: files written by another program in every sub-format, compared with
// what that program reads from them; damaged files; headers that promise more than there is.

#include "base/crash_guard.h"
#include "model/textures/textures.h"
#include "plugin/loader.h"
#include "tests/model/textures/image_writer.h"
#include "tests/plugin/plugin_test.h"
#include "tests/support/scene_test.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>

namespace {

struct image_case {
    const char *name;
    const char *arguments; // of the program that writes it
    const char *suffix;
    int depth;
    int tolerance;
};
// clang-format off
const image_case image_cases[] = {
    {"png_rgb",          "-type TrueColor",                             ".png", 3, 0},
    {"png_rgba",         "-type TrueColorAlpha -channel A -evaluate set 40% +channel", ".png", 4, 0},
    {"png_grey",         "-colorspace Gray -type Grayscale",            ".png", 1, 0},
    {"png_grey_1_bit",   "-colorspace Gray -monochrome -depth 1",       ".png", 1, 0},
    {"png_palette",      "-colors 20 -type Palette",                    ".png", 3, 0},
    {"png_palette_alpha","-alpha set -region 9x9+0+0 -alpha transparent +region -colors 20 -define png:format=png8", ".png", 4, 0},
    {"png_16_bit",       "-depth 16 -type TrueColor",                   ".png", 3, 1},
    {"png_interlaced",   "-interlace PNG -type TrueColor",              ".png", 3, 0},
    {"jpeg_rgb",         "-quality 95",                                 ".jpg", 3, 1},
    {"jpeg_progressive", "-interlace JPEG -sampling-factor 2x2",        ".jpeg", 3, 1},
    {"jpeg_grey",        "-colorspace Gray",                            ".jpg", 1, 1},
    {"tga_rgb",          "-type TrueColor -compress none",              ".tga", 3, 0},
    {"tga_runs",         "-type TrueColor -compress RLE",               ".tga", 3, 0},
    {"tga_rgba",         "-type TrueColorAlpha -channel A -evaluate set 40% +channel -compress RLE", ".tga", 4, 0},
    {"tga_grey",         "-colorspace Gray -type Grayscale -compress none", ".tga", 1, 0},
    {"tga_palette",      "-colors 20 -type Palette -compress none",     ".tga", 3, 0},
};
// clang-format on
void PrintTo(const image_case &c, std::ostream *out) { *out << c.name; }

class ImagePlugin : public Plugins {
protected:
    void SetUp() override
    {
        Plugins::SetUp();
        textures_reset_for_test();
        ASSERT_EQ(plugin_load(bundled_plugin("images").c_str()), 1);
    }
    void TearDown() override
    {
        Plugins::TearDown();
        textures_reset_for_test();
    }

    // A picture as a file that the other program writes.
    static std::string written(const image_case &c)
    {
        const std::string file = temporary_file(std::string(c.name) + c.suffix);
        if (!read_text(file).empty())
            return file; // by an earlier test
        const std::string source = temporary_file("source.bmp");
        write_text(source, write_bmp(sample_picture(61, 37, 0), {}));
        const std::string command = "convert '" + source + "' " + c.arguments + " '" + file + "'";
        EXPECT_EQ(std::system(command.c_str()), 0) << command;
        return file;
    }
};

class ImagePluginFormats : public ImagePlugin, public testing::WithParamInterface<image_case> {};

TEST_P(ImagePluginFormats, AreReadAsTheOtherProgramReadsThem)
{
    const image_case &c = GetParam();
    const std::string file = written(c);
    VESKImage *image = texture_read(file.c_str(), "x");
    ASSERT_NE(image, nullptr) << last_message();
    EXPECT_EQ(image->depth, c.depth);
    ASSERT_EQ(image->width, 61);
    ASSERT_EQ(image->height, 37);

    const std::string other =
        program_output("convert '" + file + "' -auto-orient -alpha on -depth 8 rgba:-");
    ASSERT_EQ(other.size(), 4U * 61 * 37);
    int worst = 0;
    for (int i = 0; i < 61 * 37; ++i) {
        const unsigned char *mine =
            image->data + ((36 - i / 61) * 61 + i % 61) * static_cast<int>(image->depth);
        const bool grey = c.depth <= 2;
        for (int k = 0; k < 4; ++k) {
            if (k == 3 && c.depth % 2 != 0)
                continue;
            const int value = k == 3 ? mine[c.depth - 1] : mine[grey ? 0 : k];
            worst = std::max(worst, std::abs(value - static_cast<unsigned char>(
                                                         other[static_cast<size_t>(4 * i + k)])));
        }
    }
    EXPECT_LE(worst, c.tolerance);
    free_veskimage(image);
}
INSTANTIATE_TEST_SUITE_P(All, ImagePluginFormats, testing::ValuesIn(image_cases));

int setting(const char *name, int fallback)
{
    const char *text = std::getenv(name);
    return text != nullptr ? std::atoi(text) : fallback;
}

class ImagePluginDamage : public ImagePlugin, public testing::WithParamInterface<const char *> {};

TEST_P(ImagePluginDamage, IsRefusedOrRead)
{
    const std::string suffix = GetParam();
    std::vector<std::string> sources;
    for (const image_case &c : image_cases)
        if (std::string(c.suffix) == suffix)
            sources.push_back(read_text(written(c)));
    const int files = setting("VESK_DAMAGE_FILES", 2000);
    std::mt19937 random(static_cast<unsigned>(setting("VESK_DAMAGE_SEED", 11)));
    const std::string file = temporary_file("damaged" + suffix);
    int whole = 0;
    for (int i = 0; i < files; ++i) {
        std::string bytes = sources[random() % sources.size()];
        for (unsigned changes = 1 + random() % 4; changes > 0 && !bytes.empty(); --changes) {
            const size_t at =
                random() % (random() % 2 == 0 ? std::min<size_t>(bytes.size(), 64) : bytes.size());
            if (random() % 5 == 0)
                bytes.resize(at);
            else
                bytes[at] = static_cast<char>(random() % 3 == 0 ? 0xFF : random());
        }
        write_text(file, bytes);
        VESKImage *image = texture_read(file.c_str(), "x");
        whole += image != nullptr ? 1 : 0;
        free_veskimage(image);
    }
    EXPECT_GT(whole, 0);
    EXPECT_TRUE(recording().boxes.empty()) << recording().boxes.back(); // no fault
}
INSTANTIATE_TEST_SUITE_P(All, ImagePluginDamage, testing::Values(".png", ".jpg", ".tga"));

TEST_F(ImagePlugin, PromisedSizesAreNotBelieved)
{
    struct lie_t {
        const char *name, *arguments;
        size_t at;
        std::string bytes;
    };
    const std::string most(2, '\xFF');
    const lie_t lies[] = {
        {"lie.png", "", 16, std::string("\0\0\xFF\xFF\0\0\xFF\xFF", 8)},
        {"lie.tga", "-compress none", 12, most + most},
        {"lie2.tga", "-compress RLE", 12, most + most},
    };
    const std::string source = temporary_file("source.bmp");
    write_text(source, write_bmp(sample_picture(61, 37, 0), {}));
    for (const lie_t &lie : lies) {
        const std::string file = temporary_file(lie.name);
        const std::string command = "convert '" + source + "' " + lie.arguments + " '" + file + "'";
        ASSERT_EQ(std::system(command.c_str()), 0);
        std::string bytes = read_text(file);
        bytes.replace(lie.at, lie.bytes.size(), lie.bytes);
        write_text(file, bytes);
        EXPECT_EQ(texture_read(file.c_str(), "x"), nullptr) << lie.name;
    }
}

} // namespace
