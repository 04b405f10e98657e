#include "base/atomic_file.h"

#include "base/unfinished_files.h"
#include "tests/support/scene_test.h"

#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace {

int files_in(const std::string &folder)
{
    int count = 0;
    for ([[maybe_unused]] const auto &entry : std::filesystem::directory_iterator(folder))
        ++count;
    return count;
}

class AtomicFile : public testing::Test {
protected:
    void SetUp() override
    {
        folder = temporary_file("atomic");
        std::filesystem::remove_all(folder);
        std::filesystem::create_directory(folder);
        file = folder + "/a";
    }
    std::string folder, file;
};

TEST_F(AtomicFile, ReplacesAndKeepsModeBitsAndLeavesNothingBeside)
{
    write_text(file, "old");
    chmod(file.c_str(), 0640);

    EXPECT_TRUE(atomic_file_write(file.c_str(), "new text"));

    EXPECT_EQ(read_text(file), "new text");
    struct stat info = {};
    stat(file.c_str(), &info);
    EXPECT_EQ(info.st_mode & 0777U, 0640U);
    EXPECT_EQ(files_in(folder), 1);
}

TEST_F(AtomicFile, FollowsALink)
{
    write_text(file, "old");
    const std::string link = folder + "/link";
    std::filesystem::create_symlink("a", link);

    EXPECT_TRUE(atomic_file_write(link.c_str(), "new"));

    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_EQ(read_text(file), "new");
}

TEST_F(AtomicFile, WritesToADeviceDirectly)
{
    EXPECT_TRUE(atomic_file_write("/dev/null", "text"));
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
    atomic_writer_t full("/dev/full");
    EXPECT_TRUE(full.opened());
    EXPECT_FALSE(full.write("text"));
    EXPECT_FALSE(full.commit());
}

TEST_F(AtomicFile, AnUnfinishedWriteLeavesTheOldFile)
{
    write_text(file, "old");
    {
        atomic_writer_t writer(file.c_str());
        EXPECT_TRUE(writer.write("half of it"));
    }
    EXPECT_EQ(read_text(file), "old");
    EXPECT_EQ(files_in(folder), 1);
}

// As a process that was killed leaves them: closed, and some time ago.
TEST_F(AtomicFile, WhatAKilledWriteLeftGoesAtTheNextWrite)
{
    folder += "/left"; // a folder is looked through once
    std::filesystem::create_directory(folder);
    file = folder + "/a";
    const auto made = [&](bool old, const char *name = "") {
        std::string file_name = folder + "/" + name;
        const int fd = *name == '\0' ? make_unfinished_file(file, &file_name)
                                     : open(file_name.c_str(), O_CREAT | O_WRONLY, 0600);
        const timespec times[] = {{time(nullptr) - 3600, 0}, {time(nullptr) - 3600, 0}};
        if (old)
            futimens(fd, times);
        return std::pair(file_name, fd);
    };
    const auto left = made(true), fresh = made(false), written = made(true);
    const auto own = made(true, "a.backup"), other = made(true, ".~vesk-");
    for (const auto &file_made : {left, fresh, own, other})
        close(file_made.second);

    EXPECT_TRUE(atomic_file_write(file.c_str(), "new"));

    EXPECT_FALSE(std::filesystem::exists(left.first));
    for (const auto &file_made : {fresh, written, own, other})
        EXPECT_TRUE(std::filesystem::exists(file_made.first)) << file_made.first;
    EXPECT_EQ(files_in(folder), 5);
    close(written.second);
}

TEST_F(AtomicFile, AMissingFolderIsAFailureToOpen)
{
    atomic_writer_t writer((folder + "/no/b").c_str());
    EXPECT_FALSE(writer.opened());
    EXPECT_FALSE(writer.commit());
    EXPECT_EQ(files_in(folder), 0);
}

} // namespace
