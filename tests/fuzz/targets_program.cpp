// The fuzzed readers that work elsewhere than in an importer: in the helper process, at the start, in
// the state folder.

#include "base/console.h"
#include "fileio/foreign_scene.h"
#include "fileio/rescue.h"
#include "fileio/scene_stream.h"
#include "modules/gltf_read.h"
#include "plugin/importers.h"
#include "program/startup.h"
#include "tests/fuzz/targets.h"
#include "tests/support/scene_test.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

namespace {

// A scene whose stream is whole has objects.
void take_scene(const plain_scene &scene)
{
    for (const plain_node &node : scene.nodes) {
        for (const int corner : node.corners) {
            if (static_cast<std::size_t>(corner) >= node.points.size() / 3)
                fuzz_fail("a corner outside of the node's points");
        }
    }
    if (!scene.nodes.empty())
        fuzz_take(object_of_scene(scene, "/nowhere/a.gltf"));
}

} // namespace

void fuzz_stream(const char *, std::string_view bytes)
{
    plain_scene scene;
    if (decode_scene(bytes, &scene))
        take_scene(scene);
}

void fuzz_gltf(const char *file, std::string_view bytes)
{
    fuzz_write(file, bytes);
    plain_scene read, received;
    try { // as the helper does
        gltf_file opened;
        if (!opened.open(file).empty() || opened.is_first_version() ||
            !gltf_read(opened, &read).empty())
            return;
    } catch (const std::exception &) {
        return; // its reason is told
    }
    if (!decode_scene(encode_scene(read), &received))
        fuzz_fail("the program would not take what the helper gives");
    take_scene(received);
}

// A word a line.
void fuzz_arguments(const char *, std::string_view bytes)
{
    std::vector<std::string> words = {"vesk"};
    for (std::size_t at = 0; at <= bytes.size();) {
        const std::size_t end = std::min(bytes.find('\n', at), bytes.size());
        words.emplace_back(std::string(bytes.substr(at, end - at)).c_str()); // no zeros
        at = end + 1;
    }
    std::vector<char *> pointers;
    for (std::string &word : words)
        pointers.push_back(word.data());
    const command_line_t line =
        parse_command_line(static_cast<int>(pointers.size()), pointers.data());
    set_debug_mode(false);
    if (line.files.size() + line.script_arguments.size() >= words.size())
        fuzz_fail("more words than there were");
    for (const std::string &name : line.files)
        absolute_from_start(directory_of_executable(name));
}

// What a session left behind: the first line is its note of the edited file, all else its copy.
void fuzz_recovery(const char *file, std::string_view bytes)
{
    const std::filesystem::path folder = std::filesystem::path(file) / "vesk";
    std::filesystem::create_directories(folder);
    setenv("XDG_STATE_HOME", file, 1);
    const std::string copy = folder / "session-1-1.autosave.vesk";
    const std::size_t end = std::min(bytes.find('\n'), bytes.size());
    fuzz_write(folder / "session-1-1.session", bytes.substr(0, end));
    fuzz_write(copy, bytes.substr(std::min(end + 1, bytes.size())));
    run("recovery_list");
    const std::vector<recovery_copy> copies = recovery_copies();
    if (copies.size() != 1 || copies[0].file != copy)
        fuzz_fail("the copy is not offered");
    if (object_t *top = vesk_import_file(copy.c_str()); top != nullptr)
        fuzz_take(top);
    if (run("recovery_drop", copy) != "1" || std::filesystem::exists(copy))
        fuzz_fail("the copy does not go");
}
