#ifndef VESK_TESTS_SUPPORT_SCENE_TEST_H
#define VESK_TESTS_SUPPORT_SCENE_TEST_H

#include "base/command_registry.h"
#include "model/object.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <string_view>
#include <vector>

// What the program told the toolkit since the test began.
struct recording_t {
    std::vector<std::string> scripts; // every evaluated script
    std::vector<std::string> boxes;   // texts of message boxes
    std::string console;
    std::map<std::string, std::string> variables;
    std::map<std::string, std::string> answers; // result of scripts that begin so
    void (*while_pumping)() = nullptr;
    std::string_view (*offered)() = nullptr; // on the clipboard, by the program
    const char *others_clipboard = nullptr;  // what another program has there
    std::string picture;                     // on the clipboard
    std::vector<std::string> programs;       // that were started, and addresses that were opened
    void (*program_ended)(const char *line, int status) = nullptr;
    double clock = 0; // now_seconds; each look adds clock_step
    double clock_step = 0;
};
recording_t &recording();

// Calls what a worker has asked for since the last call, as the event loop would; false for nothing.
bool run_woken();

// Long work is cancelled when it lets events in for that time; 0: no more.
void cancel_at_look(int number);

// An empty world, default preferences, the standard palette, all commands, and a port that records.
// In any order and in one process.
class SceneTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;
};

// Runs a command with its arguments as text and returns the result text ("" for none).
template <class... A>
std::string run(const char *name, A... arguments);
std::string run_words(const std::vector<std::string> &words);

// The text of the newest script that begins with `procedure`, its quotes taken off; "" for none.
std::string last_call(const std::string &procedure);
std::string last_message(); // of the status area
std::string last_undo();    // label of the newest undo record

object_t *add_square(float half_size); // under the world, in z = 0, facing +z
object_t *add_cube(const char *name);  // unit cube at the origin, under the world
// After a test wrote into records itself: the object and all below it have changed.
void object_mark_tree(object_t *top, unsigned aspects);

// A file in a folder of its own that goes when the test program ends.
std::string temporary_file(const std::string &name);
void write_text(const std::string &file, const std::string &text);
std::string read_text(const std::string &file);

// ---- details ----

inline std::string word_text(const char *text) { return text; }
inline std::string word_text(const std::string &text) { return text; }
template <class Number>
std::string word_text(Number number)
{
    return std::to_string(number);
}

template <class... A>
std::string run(const char *name, A... arguments)
{
    return run_words({name, word_text(arguments)...});
}

#endif
