#include "fileio/embedded_images.h"

#include "tests/support/scene_test.h"

#include <filesystem>

namespace fs = std::filesystem;

namespace {

class EmbeddedImages : public SceneTest {};

TEST_F(EmbeddedImages, AreWrittenBesideOthersAndNeverThroughLinks)
{
    const std::string folder = temporary_file("pictures");
    fs::create_directories(folder);
    const auto write = [&](const std::string &bytes) {
        return fs::path(
                   vesk_embedded_image_write(folder.c_str(), "../a", bytes.data(), bytes.size()))
            .filename()
            .string();
    };
    EXPECT_EQ(write("one"), "a.img");
    EXPECT_EQ(write("one"), "a.img");
    EXPECT_EQ(write("two"), "a_1.img");

    const std::string outside = temporary_file("outside.bmp");
    fs::create_symlink(outside, folder + "/a_2.img"); // leads nowhere yet
    EXPECT_EQ(write("three"), "a_3.img");
    EXPECT_FALSE(fs::exists(outside));
    write_text(outside, "four");
    EXPECT_EQ(write("four"), "a_4.img");
}

} // namespace
