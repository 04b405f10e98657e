// The built-in image readers: every sub-format against the picture it was written from and against an
// independent decoder, damaged files, and headers that promise more than there is.

#include "base/messages.h"
#include "model/alloc_internal.h"
#include "model/textures/image_bmp.h"
#include "model/textures/image_gif.h"
#include "model/textures/image_sgi.h"
#include "model/textures/textures.h"
#include "tests/model/textures/image_writer.h"
#include "tests/support/scene_test.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <random>

namespace {

struct format_case {
    const char *name;
    const char *suffix;
    std::string bytes;
    picture_t picture;
    int depth;
    int tolerance; // of what the file's few bits can hold
    bool known_elsewhere = true;
};
void PrintTo(const format_case &c, std::ostream *out) { *out << c.name; }

format_case gif(const char *name, int colours, const gif_options_t &options, int width = 23)
{
    const picture_t picture = sample_picture(width, 19, colours);
    return {name, ".gif", write_gif(picture, options), picture, 3, 0};
}
format_case sgi(const char *name, const sgi_options_t &options)
{
    const picture_t picture = sample_picture(150, 11, 0);
    return {name, ".rgb", write_sgi(picture, options), picture, options.channels, 0};
}
format_case bmp(const char *name, int colours, const bmp_options_t &options, int tolerance = 0,
                bool known_elsewhere = true)
{
    const picture_t picture = sample_picture(23, 19, colours);
    const bool alpha = options.compression == 3 && options.header >= 56 && options.masks[3] != 0;
    return {name,      ".bmp",         write_bmp(picture, options), picture, alpha ? 4 : 3,
            tolerance, known_elsewhere};
}

std::vector<format_case> all_formats()
{
    constexpr std::array<std::uint32_t, 4> masks565 = {0xF800, 0x7E0, 0x1F, 0};
    constexpr std::array<std::uint32_t, 4> masks4444 = {0xF00, 0xF0, 0xF, 0xF000};
    constexpr std::array<std::uint32_t, 4> masks_rgba = {0xFF000000, 0xFF0000, 0xFF00, 0xFF};
    constexpr std::array<std::uint32_t, 4> masks_bgra = {0xFF0000, 0xFF00, 0xFF, 0xFF000000};
    // clang-format off
    return {
        gif("gif_87a",              16, {.version = "87a"}),
        gif("gif_89a_extensions",   13, {.with_extensions = true}),
        gif("gif_two_colours",       2, {}),
        gif("gif_256_colours",     200, {}),
        gif("gif_interlaced",       64, {.interlaced = true}),
        gif("gif_local_map",        16, {.interlaced = true, .local_map = true}),
        gif("gif_clear_codes",      16, {.restart_often = true}),
        gif("gif_full_table",      256, {}, 700),
        sgi("sgi_grey",            {.channels = 1}),
        sgi("sgi_grey_alpha",      {.channels = 2}),
        sgi("sgi_rgb",             {.channels = 3}),
        sgi("sgi_rgba",            {.channels = 4}),
        sgi("sgi_rgb_16",          {.value_bytes = 2, .channels = 3}),
        sgi("sgi_runs_grey",       {.encoded = true, .channels = 1}),
        sgi("sgi_runs_rgb",        {.encoded = true, .channels = 3}),
        sgi("sgi_runs_rgba",       {.encoded = true, .channels = 4}),
        sgi("sgi_runs_rgba_16",    {.encoded = true, .value_bytes = 2, .channels = 4}),
        bmp("bmp_1",               2, {.bits = 1}),
        bmp("bmp_2",               4, {.bits = 2}, 0, false),
        bmp("bmp_4",              16, {.bits = 4}),
        bmp("bmp_8",              60, {.bits = 8}),
        bmp("bmp_16_555",          0, {.bits = 16}, 5),
        bmp("bmp_16_565",          0, {.bits = 16, .compression = 3, .masks = masks565}, 5),
        bmp("bmp_16_4444",         0, {.bits = 16, .header = 108, .compression = 3, .masks = masks4444}, 9, false),
        bmp("bmp_24",              0, {.bits = 24}),
        bmp("bmp_24_top_down",     0, {.bits = 24, .top_down = true}),
        bmp("bmp_32",              0, {.bits = 32}, 0, false),
        bmp("bmp_32_masks",        0, {.bits = 32, .compression = 3, .masks = masks_rgba}, 0, false),
        bmp("bmp_32_alpha_v4",     0, {.bits = 32, .header = 108, .compression = 3, .masks = masks_bgra}),
        bmp("bmp_32_alpha_v5",     0, {.bits = 32, .header = 124, .compression = 3, .top_down = true, .masks = masks_bgra}),
        bmp("bmp_8_v3",           60, {.bits = 8, .header = 56}, 0, false),
        bmp("bmp_os2_1",           2, {.bits = 1, .header = 12}),
        bmp("bmp_os2_4",          16, {.bits = 4, .header = 12}),
        bmp("bmp_os2_24",          0, {.bits = 24, .header = 12}),
        bmp("bmp_os2_short",      16, {.bits = 8, .header = 16}, 0, false),
        bmp("bmp_os2_64",         16, {.bits = 8, .header = 64}, 0, false),
        bmp("bmp_runs_8",         60, {.bits = 8, .compression = 1}),
        bmp("bmp_runs_4",         16, {.bits = 4, .compression = 2}),
    };
    // clang-format on
}

bool decode(const format_case &c, std::string_view bytes, decoded_image *out)
{
    const auto reader = c.suffix[1] == 'g'   ? decode_gif
                        : c.suffix[1] == 'r' ? decode_sgi
                                             : decode_bmp;
    return reader(bytes, c.name, out);
}

// The value of a picture's pixel that stands in channel `i` of an image.
unsigned char expected_value(const rgba_t &pixel, int depth, int i)
{
    const bool is_alpha = depth % 2 == 0 && i == depth - 1;
    return pixel[is_alpha ? 3 : static_cast<size_t>(i)];
}

// Pixels of a file as ImageMagick reads it: rows from the top, four bytes each; empty when it does not.
std::string decoded_elsewhere(const std::string &file)
{
    const std::string command = "convert '" + file + "[0]' -alpha on -depth 8 rgba:- 2>/dev/null";
    FILE *pipe = popen(command.c_str(), "r");
    std::string bytes;
    char buffer[4096];
    while (const size_t n = fread(buffer, 1, sizeof buffer, pipe))
        bytes.append(buffer, n);
    return pclose(pipe) == 0 ? bytes : "";
}

class ImageFormats : public SceneTest, public testing::WithParamInterface<format_case> {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        textures_reset_for_test();
        vesk_register_builtin_texture_loaders();
    }
    void TearDown() override
    {
        textures_reset_for_test();
        SceneTest::TearDown();
    }
};

TEST_P(ImageFormats, GiveThePictureTheyWereWrittenFrom)
{
    const format_case &c = GetParam();
    decoded_image image;
    ASSERT_TRUE(decode(c, c.bytes, &image)) << recording().console;

    ASSERT_EQ(image.width, c.picture.width);
    ASSERT_EQ(image.height, c.picture.height);
    ASSERT_EQ(image.depth, c.depth);
    const auto *pixel = image.pixels.data();
    for (int y = image.height; y-- > 0;)
        for (int x = 0; x < image.width; ++x)
            for (int i = 0; i < image.depth; ++i)
                ASSERT_LE(std::abs(*pixel++ - expected_value(c.picture.at(x, y), c.depth, i)),
                          c.tolerance)
                    << "at " << x << " " << y << " channel " << i;
}

TEST_P(ImageFormats, AreReadAsAnIndependentDecoderReadsThem)
{
    const format_case &c = GetParam();
    const std::string file = temporary_file(std::string(c.name) + c.suffix);
    write_text(file, c.bytes);
    VESKImage *image = texture_read(file.c_str(), "given");
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->name, file);
    EXPECT_STREQ(image->origname, "given");
    const std::string other = c.known_elsewhere ? decoded_elsewhere(file) : "";
    const bool same_kind = c.depth >= 3;
    if (!other.empty() && same_kind) {
        ASSERT_EQ(other.size(), size_t{4} * image->width * image->height);
        const bool alpha = c.depth == 4;
        for (size_t i = 0; i < other.size() / 4; ++i) {
            const size_t y = image->height - 1 - i / image->width;
            const unsigned char *mine =
                image->data + (y * image->width + i % image->width) * image->depth;
            for (size_t k = 0; k < (alpha ? 4 : 3); ++k)
                ASSERT_NEAR(mine[k], static_cast<unsigned char>(other[4 * i + k]), 1) << i;
        }
    }
    EXPECT_EQ(c.known_elsewhere && other.empty(), false) << "the other decoder refuses " << c.name;
    free_veskimage(image);
}

TEST_P(ImageFormats, ThatEndTooEarlyAreRefusedOrWhole)
{
    const format_case &c = GetParam();
    for (size_t size = 0; size < c.bytes.size(); size += 1 + c.bytes.size() / 500) {
        // A block of its own, so that a read behind its end is found.
        const std::vector<char> cut(c.bytes.begin(),
                                    c.bytes.begin() + static_cast<std::ptrdiff_t>(size));
        decoded_image image;
        if (decode(c, {cut.data(), cut.size()}, &image)) {
            EXPECT_EQ(image.pixels.size(),
                      static_cast<size_t>(image.width * image.height * image.depth));
        }
    }
}
INSTANTIATE_TEST_SUITE_P(All, ImageFormats, testing::ValuesIn(all_formats()));

// ---- damage ----

int setting(const char *name, int fallback)
{
    const char *text = std::getenv(name);
    return text != nullptr ? std::atoi(text) : fallback;
}

void damage(std::string &bytes, std::mt19937 &random)
{
    const auto below = [&](size_t n) { return static_cast<size_t>(random()) % n; };
    for (size_t changes = 1 + below(4); changes > 0 && !bytes.empty(); --changes) {
        const size_t reach = below(2) == 0 ? std::min<size_t>(bytes.size(), 64) : bytes.size();
        const size_t at = below(reach);
        switch (below(6)) {
        case 0:
            bytes[at] = static_cast<char>(random());
            break;
        case 1:
            bytes[at] = static_cast<char>(below(2) == 0 ? 0 : 0xFF);
            break;
        case 2:
            bytes[at] = static_cast<char>(bytes[at] ^ 1 << below(8));
            break;
        case 3:
            bytes.resize(at);
            break;
        case 4:
            bytes.erase(at, 1 + below(4));
            break;
        default:
            bytes.insert(at, 1 + below(4), static_cast<char>(random()));
            break;
        }
    }
}

class DamagedImages : public SceneTest, public testing::WithParamInterface<const char *> {};

TEST_P(DamagedImages, AreReadOrRefused)
{
    const std::string suffix = GetParam();
    const auto seed = static_cast<unsigned>(setting("VESK_DAMAGE_SEED", 5));
    const int files = setting("VESK_DAMAGE_FILES", 2000);
    std::vector<format_case> formats;
    for (format_case &c : all_formats())
        if (c.suffix == suffix && c.bytes.size() < 20000)
            formats.push_back(std::move(c));
    std::mt19937 random(seed);
    int whole = 0;
    for (int i = 0; i < files; ++i) {
        const format_case &c = formats[random() % formats.size()];
        std::string bytes = c.bytes;
        damage(bytes, random);
        const std::vector<char> exact(bytes.begin(), bytes.end());
        decoded_image image;
        if (!decode(c, {exact.data(), exact.size()}, &image))
            continue;
        ++whole;
        ASSERT_TRUE(image.width > 0 && image.height > 0 && image.depth >= 1 && image.depth <= 4);
        ASSERT_EQ(image.pixels.size(), static_cast<size_t>(image.width) *
                                           static_cast<size_t>(image.height) *
                                           static_cast<size_t>(image.depth));
    }
    EXPECT_GT(whole, 0) << "seed " << seed;
}
INSTANTIATE_TEST_SUITE_P(All, DamagedImages, testing::Values(".gif", ".rgb", ".bmp"));

// ---- sizes that nothing stands behind ----

struct lie_case {
    const char *name;
    const char *format; // of all_formats
    size_t at;          // where the bytes are replaced
    std::string bytes;
};
void PrintTo(const lie_case &c, std::ostream *out) { *out << c.name; }

std::vector<lie_case> lies()
{
    const std::string most(2, '\xFF');
    const std::string large_le = std::string("\xFF\xFF\0\0", 4);
    const std::string huge_le = std::string("\xFF\xFF\xFF\x7F", 4);
    // The GIF's image descriptor stands behind a map of 16 colours and its own four bytes of place.
    constexpr size_t gif_size = 13 + 3 * 16 + 5;
    return {
        {"gif", "gif_87a", gif_size, most + most},
        {"sgi", "sgi_rgb", 6, most + most},
        {"sgi_runs", "sgi_runs_rgb", 6, most + most},
        {"bmp", "bmp_24", 18, large_le + large_le},
        {"bmp_huge", "bmp_24", 18, huge_le + huge_le},
        {"bmp_runs", "bmp_runs_8", 18, std::string("\xFF\x3F\0\0\xFF\x3F\0\0", 8)},
        {"bmp_lowest_height", "bmp_24", 22, std::string("\0\0\0\x80", 4)},
    };
}

class LyingImages : public SceneTest, public testing::WithParamInterface<lie_case> {};

TEST_P(LyingImages, AreRefusedAtOnce)
{
    const lie_case &lie = GetParam();
    for (const format_case &c : all_formats()) {
        if (std::string(c.name) != lie.format)
            continue;
        std::string bytes = c.bytes;
        bytes.replace(lie.at, lie.bytes.size(), lie.bytes);
        decoded_image image;
        EXPECT_FALSE(decode(c, bytes, &image));
        EXPECT_LT(image.pixels.capacity(), 10u << 20);
    }
}
INSTANTIATE_TEST_SUITE_P(All, LyingImages, testing::ValuesIn(lies()));

// ---- what is told ----

struct told_case {
    const char *name;
    std::string bytes;
    const char *message;
};
void PrintTo(const told_case &c, std::ostream *out) { *out << c.name; }

std::vector<told_case> told_cases()
{
    const std::string good = write_gif(sample_picture(23, 19, 16), {});
    const size_t descriptor = 13 + 3 * 16;
    const std::string data = good.substr(0, descriptor + 11);
    std::string extra = good;
    extra.replace(descriptor + 5, 2, std::string("\x09\0", 2)); // narrower than its data
    // clang-format off
    return {
        {"magic",        "GI",                                   "divepic_read_gif: error reading magic number"},
        {"no_gif",       "PNG89a",                               "divepic_read_gif: not a GIF file "},
        {"version",      "GIF88a",                               "divepic_read_gif: bad version number, not '87a' or '89a'"},
        {"screen",       good.substr(0, 9),                      "divepic_read_gif: failed to read screen descriptor"},
        {"global_map",   good.substr(0, 20),                     "divepic_read_gif: error reading global colormap"},
        {"map",          good.substr(0, 20),                     "gif_ReadColorMap: bad colormap"},
        {"no_image",     good.substr(0, descriptor),             "divepic_read_gif: EOF on image data"},
        {"place",        good.substr(0, descriptor + 5),         "divepic_read_gif: couldn't read left/top/width/height"},
        {"code_size",    good.substr(0, descriptor + 10),        "gif_ReadImage: EOF on image data"},
        {"extension",    good.substr(0, descriptor) + "!",       "divepic_read_gif: EOF on extention function code"},
        {"bogus",        good.substr(0, descriptor) + "x",       "divepic_read_gif: bogus character 0x78, ignoring"},
        {"block_size",   data,                                   "gif_GetDataBlock: error in getting DataBlock size"},
        {"block",        data + "\x7F" "abc",                    "gif_GetDataBlock: error in reading DataBlock"},
        {"bits",         data + std::string(1, '\0'),            "gif_GetCode: ran off the end of my bits"},
        {"incomplete",   data + std::string(1, '\0'),            "gif_ReadImage: error reading image"},
        {"end",          good.substr(0, good.size() - 2),        "gif_LWZReadBytes: missing EOD in data stream (common occurence)"},
        {"extra",        extra,                                  "gif_ReadImage: too much input data, ignoring extra..."},
    };
    // clang-format on
}

class GifMessages : public SceneTest, public testing::WithParamInterface<told_case> {};

TEST_P(GifMessages, SayWhatIsWrong)
{
    set_debug_mode(true);
    decoded_image image;
    decode_gif(GetParam().bytes, "file.gif", &image);
    set_debug_mode(false);
    EXPECT_NE(recording().console.find(GetParam().message), std::string::npos)
        << recording().console;
}
INSTANTIATE_TEST_SUITE_P(All, GifMessages, testing::ValuesIn(told_cases()));

} // namespace
