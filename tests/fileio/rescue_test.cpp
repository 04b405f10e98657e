#include "fileio/rescue.h"

#include "base/crash_guard.h"
#include "base/current_file.h"
#include "edit/document/journal.h"
#include "fileio/backup.h"
#include "fileio/state_writer.h"
#include "fileio/vesk_writer.h"
#include "model/matrix.h"
#include "model/object_tree.h"
#include "model/world.h"
#include "tests/support/scene_test.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

// The saved text of the whole scene.
std::string scene() { return vesk_object_text(vesk_get_world()); }

class Rescue : public SceneTest {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        folder_ = temporary_file("state");
        setenv("XDG_STATE_HOME", folder_.c_str(), 1);
        edited_file_set("");
        object_t *group = new_group();
        object_set_name(group, "a \"group\"");
        const float quarter_turn[9] = {0, 1, 0, -1, 0, 0, 0, 0, 1}; // exact in every number
        matrix_copy(quarter_turn, group->rotation);
        object_add_child(vesk_get_world(), group);
        object_t *cube = add_cube("turned");
        object_reparent(cube, group);
        vesk_object_set_centre(cube, 1, 2, 3);
        object_set_userdata(cube, "some\ndata");
        object_t *square = add_square(2);
        object_reparent(square, cube);
        for (object_t *turned : {cube, square})
            matrix_copy(quarter_turn, turned->rotation);
        surface_set_col(object_get_surface_at(cube, 0), 5);
        journal_begin();
    }
    void TearDown() override
    {
        rescue_reset_for_test();
        fs::remove_all(folder_);
        unsetenv("XDG_STATE_HOME");
        SceneTest::TearDown();
    }
    // Runs `work` in a process of its own; returns its status.
    template <class Work>
    int in_another_process(Work &&work)
    {
        const pid_t child = fork();
        if (child == 0) {
            if (freopen("/dev/null", "w", stderr) != nullptr)
                work();
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return status;
    }

    std::string folder_;
};

TEST_F(Rescue, CopiesReadBackAsTheModel)
{
    const std::string whole = scene();
    const std::string copy = temporary_file("copy.vesk");
    recording().scripts.clear();
    EXPECT_EQ(run("autosave", copy), "1");
    EXPECT_TRUE(rescue_wait());
    EXPECT_TRUE(recording().scripts.empty()); // says nothing
    const std::string other = temporary_file("other.vesk");
    ASSERT_TRUE(write_model_state(*model_state_capture(), other.c_str()));
    EXPECT_EQ(read_text(copy), read_text(other));
    run("clear_all");
    run("file_load", copy);
    EXPECT_EQ(scene(), whole);
}

TEST_F(Rescue, TheBareWriterWritesTheSame)
{
    const state_ptr state = model_state_capture();
    const std::string file = temporary_file("bare.vesk");
    ASSERT_TRUE(write_model_state_bare(*state, (file + ".part").c_str(), file.c_str()));
    const std::string other = temporary_file("other.vesk");
    ASSERT_TRUE(write_model_state(*state, other.c_str()));
    EXPECT_EQ(read_text(file), read_text(other));
    EXPECT_FALSE(fs::exists(file + ".part"));
    EXPECT_FALSE(write_model_state_bare(*state, "/nowhere/x", "/nowhere/y"));
}

struct end_case {
    const char *name;
    void (*end)();
    const char *kind; // of the copy that is offered; null for none
};
void PrintTo(const end_case &c, std::ostream *out) { *out << c.name; }
// clang-format off
const end_case end_cases[] = {
    {"killed",    [] { run("autosave", ""); rescue_wait(); raise(SIGKILL); }, "autosave"},
    {"aborted",   [] { abort(); },                                            "rescue"},
    {"asked",     [] { rescue_keep(); rescue_write_now(); rescue_end(); },    "rescue"},
    {"well",      [] { run("autosave", ""); rescue_write_now(); rescue_end(); }, nullptr},
    {"untouched", [] { raise(SIGKILL); },                                     nullptr},
};
// clang-format on
class SessionEnd : public Rescue, public testing::WithParamInterface<end_case> {};

TEST_P(SessionEnd, LeavesACopyOrNone)
{
    const std::string whole = scene();
    in_another_process([] {
        crash_guard::install();
        rescue_start();
        GetParam().end();
    });
    const std::vector<recovery_copy> copies = recovery_copies();
    if (!GetParam().kind) {
        EXPECT_TRUE(copies.empty());
        EXPECT_TRUE(fs::is_empty(fs::path(folder_) / "vesk")); // nothing is left lying about
        return;
    }
    ASSERT_EQ(copies.size(), 1u);
    EXPECT_EQ(copies[0].kind, GetParam().kind);
    EXPECT_EQ(copies[0].original, "");
    run("clear_all");
    run("file_load", copies[0].file);
    EXPECT_EQ(scene(), whole);
    EXPECT_EQ(run("recovery_drop", copies[0].file), "1");
    EXPECT_EQ(run("recovery_list"), "");
    EXPECT_TRUE(fs::is_empty(fs::path(folder_) / "vesk"));
}
INSTANTIATE_TEST_SUITE_P(Ways, SessionEnd, testing::ValuesIn(end_cases));

TEST_F(Rescue, ALivingSessionsCopiesAreNotOffered)
{
    rescue_start();
    run("autosave", "");
    ASSERT_TRUE(rescue_wait());
    EXPECT_TRUE(recovery_copies().empty());
}

TEST_F(Rescue, AnotherFolderIsUsedWhenThereIsNone)
{
    const std::string temporary = temporary_file("common");
    fs::create_directories(temporary);
    write_text(temporary_file("file"), "no folder");
    setenv("XDG_STATE_HOME", temporary_file("file").c_str(), 1);
    setenv("TMPDIR", temporary.c_str(), 1);
    const std::string own = temporary + "/vesk-" + std::to_string(getuid());
    in_another_process([] {
        rescue_start();
        run("autosave", "");
        rescue_wait();
        raise(SIGKILL);
    });
    ASSERT_EQ(recovery_copies().size(), 1u);
    EXPECT_TRUE(recovery_copies()[0].file.starts_with(own));
    EXPECT_EQ(fs::status(own).permissions(), fs::perms::owner_all);

    // Not through a link that another user could have put there.
    fs::rename(own, own + ".elsewhere");
    fs::create_directory_symlink(own + ".elsewhere", own);
    rescue_start();
    EXPECT_EQ(last_message(),
              "no copies of unsaved work are kept: no folder for them can be written");
    EXPECT_EQ(run("autosave", ""), "0");
    unsetenv("TMPDIR");
}

TEST_F(Rescue, TheResultOfACopyIsTold)
{
    rescue_start();
    EXPECT_EQ(run("autosave", ""), "1");
    rescue_wait();
    EXPECT_EQ(run("autosave_result"), "1");
    EXPECT_EQ(run("autosave", "/nowhere/x.vesk"), "1");
    rescue_wait();
    EXPECT_EQ(run("autosave_result"), "0");
}

TEST_F(Rescue, CopiesOlderThanTheirFileAreOfferedAsSuch)
{
    const std::string original = temporary_file("original.vesk");
    write_text(original, "VESKb\n");
    in_another_process([&] {
        edited_file_set(original);
        rescue_start();
        run("autosave", "");
        rescue_wait();
        raise(SIGKILL);
    });
    ASSERT_EQ(recovery_copies().size(), 1u);
    EXPECT_EQ(recovery_copies()[0].original, original);
    EXPECT_FALSE(recovery_copies()[0].original_is_newer);
    fs::last_write_time(original, fs::file_time_type::clock::now() + std::chrono::hours(1));
    ASSERT_EQ(recovery_copies().size(), 1u);
    EXPECT_TRUE(recovery_copies()[0].original_is_newer);
}

struct original_case {
    const char *name;
    std::vector<std::pair<const char *, const char *>> commands; // with a file or ""
    const char *original;
};
void PrintTo(const original_case &c, std::ostream *out) { *out << c.name; }
// clang-format off
const original_case original_cases[] = {
    {"import_into_a_model",   {{"file_load", "a.vesk"}, {"load_file", "b.vesk"}}, "a.vesk"},
    {"import_into_no_model",  {{"new_cube", ""}, {"load_file", "b.vesk"}}, ""},
    {"another_format",        {{"file_load", "c.tri"}}, ""},
    {"copies",                {{"file_load", "a.vesk"}, {"export_model", "c.vesk"},
                               {"save_selection_vesk", "c.vesk"}, {"write_vesk_old", "c.vesk"},
                               {"add_text", "x"}}, "a.vesk"},
    {"save_under_a_new_name", {{"file_load", "a.vesk"}, {"file_save", "c.vesk"}}, "c.vesk"},
    {"failed_save",           {{"file_load", "a.vesk"}, {"file_save", "no/folder/c.vesk"}}, "a.vesk"},
    {"emptied",               {{"file_load", "a.vesk"}, {"clear_all", ""}, {"new_cube", ""}}, ""},
};
// clang-format on
class Original : public Rescue, public testing::WithParamInterface<original_case> {};

TEST_P(Original, IsTheModelThatWasEdited)
{
    for (const char *name : {"a.vesk", "b.vesk"})
        ASSERT_EQ(run("export_model", temporary_file(name)), "1");
    write_text(temporary_file("c.tri"), "0 0 0 1 0 0 0 1 0\n");
    in_another_process([&] {
        run("clear_all");
        rescue_start();
        for (const auto &[command, file] : GetParam().commands) {
            if (*file == '\0')
                run(command);
            else
                run(command, temporary_file(file));
        }
        run("autosave", "");
        rescue_wait();
        raise(SIGKILL);
    });
    ASSERT_EQ(recovery_copies().size(), 1u);
    const std::string wanted = GetParam().original;
    EXPECT_EQ(recovery_copies()[0].original, wanted.empty() ? wanted : temporary_file(wanted));
}
INSTANTIATE_TEST_SUITE_P(Files, Original, testing::ValuesIn(original_cases));

TEST_F(Rescue, AFailureIsToldOnce)
{
    const auto times_told = [] {
        int told = 0;
        for (const std::string &script : recording().scripts)
            told += script.find("can't write the copy") != std::string::npos ? 1 : 0;
        return told;
    };
    for (int i = 0; i < 3; ++i) {
        run("autosave", "/nowhere/copy.vesk");
        EXPECT_FALSE(rescue_wait());
        run("get_counts");
    }
    EXPECT_EQ(times_told(), 1);
}

// ---- backups ----

class Backup : public SceneTest {
protected:
    void TearDown() override
    {
        set_backup_versions(1);
        SceneTest::TearDown();
    }
};

TEST_F(Backup, PreviousVersionsAreKept)
{
    const std::string file = temporary_file("backup.vesk");
    run("set_backup_versions", 2);
    std::vector<std::string> saved;
    for (int i = 0; i < 4; ++i) {
        add_cube(std::to_string(i).c_str());
        EXPECT_EQ(run("file_save", file), "1");
        saved.push_back(read_text(file));
    }
    EXPECT_EQ(read_text(file + ".bak1"), saved[2]);
    EXPECT_EQ(read_text(file + ".bak2"), saved[1]);
    EXPECT_FALSE(fs::exists(file + ".bak3"));
    EXPECT_FALSE(fs::exists(file + ".bak0"));
}

TEST_F(Backup, AVersionThatAKilledSaveLeftBehindIsKept)
{
    const std::string file = temporary_file("killed.vesk");
    run("set_backup_versions", 3);
    write_text(file, "new");
    write_text(file + ".bak0", "old");
    write_text(file + ".bak1", "older");
    EXPECT_EQ(run("file_save", file), "1");
    EXPECT_EQ(read_text(file + ".bak1"), "new");
    EXPECT_EQ(read_text(file + ".bak2"), "old");
    EXPECT_EQ(read_text(file + ".bak3"), "older");
    // Killed before the new file stood: the same file under two names.
    fs::create_hard_link(file, file + ".bak0");
    EXPECT_EQ(run("file_save", file), "1");
    EXPECT_EQ(read_text(file + ".bak2"), "new");
    EXPECT_FALSE(fs::exists(file + ".bak0"));
}

TEST_F(Backup, AFailedSaveLeavesThemAlone)
{
    const std::string file = temporary_file("kept.vesk");
    write_text(file, "old");
    write_text(file + ".bak1", "older");
    backup_end(file.c_str(), backup_begin(file.c_str()), false);
    EXPECT_EQ(read_text(file), "old");
    EXPECT_EQ(read_text(file + ".bak1"), "older");
    EXPECT_FALSE(fs::exists(file + ".bak0"));
}

} // namespace
