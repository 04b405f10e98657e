#include "tests/fuzz/targets.h"

#include "base/prefs.h"
#include "base/prefs_file.h"
#include "base/tokens.h"
#include "fileio/vesk_reader.h"
#include "model/object_tree.h"
#include "model/palette.h"
#include "model/textures/textures.h"
#include "model/world.h"
#include "model/world_check.h"
#include "plugin/importers.h"
#include "plugin/loader.h"
#include "tests/support/places.h"
#include "tests/support/scene_test.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

// ---- what a target does with an input ----

void check_tree(object_t *top)
{
    const std::vector<world_fault> faults = world_check(top);
    if (!faults.empty())
        fuzz_fail(faults[0].text);
}

// A file that is read into a tree of its own, or refused with a word.
void load_tree(const char *file, std::string_view bytes)
{
    fuzz_write(file, bytes);
    recording().boxes.clear();
    object_t *top = vesk_import_file(file);
    for (const std::string &box : recording().boxes) {
        if (box.find("EXCEPTION_") != std::string::npos)
            fuzz_fail(box);
    }
    if (top != nullptr) {
        fuzz_take(top);
    } else if (recording().boxes.empty() && !std::string_view(file).ends_with(".vesk")) {
        fuzz_fail("refused without a word"); // a model file may hold nothing
    }
}

void load_material_file(const char *file, std::string_view bytes)
{
    fuzz_write(std::string(file) + ".mtl", bytes);
    load_tree(file, "mtllib " + std::filesystem::path(file).filename().string() +
                        ".mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl a\nf 1 2 3\n");
}

void load_model_part(const char *file, std::string_view bytes)
{
    load_tree(file, zip_of("3D/3dmodel.model", bytes));
}

void load_picture(const char *file, std::string_view bytes)
{
    fuzz_write(file, bytes);
    if (VESKImage *image = texture_read(file, file); image != nullptr) {
        unsigned sum = 0; // all of the pixels are there
        const std::size_t size =
            static_cast<std::size_t>(image->width) * image->height * image->depth;
        for (std::size_t i = 0; i < size; ++i)
            sum += image->data[i];
        [[maybe_unused]] static volatile unsigned used;
        used = sum;
        free_veskimage(image);
    }
}

void load_settings(const char *file, std::string_view bytes)
{
    fuzz_write(file, bytes);
    prefs_set_defaults();
    init_prefs();
}

void read_clipboard(const char *, std::string_view bytes)
{
    if (object_t *top = vesk_object_of_text(bytes); top != nullptr)
        fuzz_take(top);
}

void read_words(const char *, std::string_view bytes)
{
    std::string line(bytes);
    char *words[VESK_MAX_TOKENS];
    int count = 0;
    vesk_get_tokens(line.data(), &count, words);
    std::size_t all = 0;
    for (int i = 0; i < std::min<int>(count, VESK_MAX_TOKENS); ++i)
        all += std::string_view(words[i]).size();
    if (all > line.size())
        fuzz_fail("words longer than their line");
}

// The notes of an object: selection sets and kept dimensions.
void read_notes(const char *, std::string_view bytes)
{
    static object_t *const cube = add_cube("noted");
    object_set_userdata(cube, std::string(bytes).c_str());
    run("selection_set_list");
    run("selection_set_load", "a");
    run("get_dimensions");
    check_tree(vesk_get_world());
}

// ---- the world that they need ----

class bare_world : public SceneTest {
public:
    void begin()
    {
        SetUp();
        for (const char *name : {"interchange", "images"})
            plugin_load((built_file("home/plugins/") + name + ".p").c_str());
    }
    void TestBody() override {}
};

const fuzz_target *chosen = nullptr;
std::string input_file;

void choose()
{
    const char *name = std::getenv("VESK_FUZZ_TARGET");
    for (const fuzz_target &target : fuzz_targets()) {
        if (name != nullptr && std::string(name) == target.name)
            chosen = &target;
    }
    if (chosen != nullptr)
        return;
    for (const fuzz_target &target : fuzz_targets())
        std::puts(target.name);
    std::exit(name == nullptr ? 0 : 1);
}

void write_seeds(const std::filesystem::path &folder)
{
    int number = 0;
    for (const std::string &seed : fuzz_seeds(*chosen)) {
        std::ofstream out(folder / ("seed" + std::to_string(number++)), std::ios::binary);
        out << seed.substr(std::string_view(chosen->before).size());
    }
    std::exit(number > 0 ? 0 : 1);
}

} // namespace

void fuzz_fail(const std::string &text)
{
    std::fprintf(stderr, "fuzz: %s\n", text.c_str());
    std::abort();
}

void fuzz_take(object_t *top)
{
    check_tree(top);
    object_free(top);
}

void fuzz_write(const std::string &file, std::string_view bytes)
{
    FILE *out = std::fopen(file.c_str(), "wb");
    if (out == nullptr || std::fwrite(bytes.data(), 1, bytes.size(), out) != bytes.size() ||
        std::fclose(out) != 0)
        fuzz_fail("cannot write " + file);
}

const std::vector<fuzz_target> &fuzz_targets()
{
    static const std::vector<fuzz_target> targets = {
        {"vesk", "a.vesk", "VESKb\n", load_tree},
        {"vesk_old", "a.vesk", "VESKa\n", load_tree},
        {"vesk_header", "a.vesk", "", load_tree},
        {"obj", "a.obj", "", load_tree},
        {"mtl", "a.obj", "", load_material_file},
        {"ply", "a.ply", "ply\n", load_tree},
        {"stl", "a.stl", "", load_tree},
        {"threemf", "a.3mf", "", load_tree},
        {"threemf_model", "a.3mf", "", load_model_part},
        {"lwob", "a.lwo", "FORM", load_tree},
        {"lws", "a.lws", "", load_tree},
        {"tri", "a.tri", "", load_tree},
        {"vrml1", "a.wrl", "#VRML V1.0 ascii\n", load_tree},
        {"vrml2", "a.wrl", "#VRML V2.0 utf8\n", load_tree},
        {"vec", "a.vec", "", load_tree},
        {"vrml_packed", "a.wrl", "\x1f\x8b", load_tree},
        {"3ds", "a.3ds", "MM", load_tree},
        {"gltf", "a.gltf", "{", fuzz_gltf},
        {"glb", "a.glb", "glTF", fuzz_gltf},
        {"bsp", "a.bsp", "IBSP", load_tree},
        {"dxf", "a.dxf", "", load_tree},
        {"gif", "a.gif", "GIF8", load_picture},
        {"bmp", "a.bmp", "BM", load_picture},
        {"sgi", "a.rgb", "", load_picture},
        {"png", "a.png", "\x89PNG\r\n\x1a\n", load_picture},
        {"jpeg", "a.jpg", "\xff\xd8\xff", load_picture},
        {"tga", "a.tga", "", load_picture},
        {"stream", nullptr, "", fuzz_stream},
        {"settings", "veskprefs.txt", "", load_settings},
        {"clipboard", nullptr, "", read_clipboard},
        {"arguments", nullptr, "", fuzz_arguments},
        {"recovery", "state", "", fuzz_recovery},
        {"words", nullptr, "", read_words},
        {"notes", nullptr, "", read_notes},
    };
    return targets;
}

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    choose();
    const std::string scratch = std::filesystem::temp_directory_path() / "vesk-fuzz-XXXXXX";
    std::string folder = scratch;
    if (mkdtemp(folder.data()) == nullptr)
        fuzz_fail("no folder for the input");
    setenv("HOME", folder.c_str(), 1);
    setenv("USERPROFILE", folder.c_str(), 1); // the settings
    setenv("VESK_FUZZ_FOLDER", folder.c_str(), 1);
    std::atexit([] { std::filesystem::remove_all(std::getenv("VESK_FUZZ_FOLDER")); });
    input_file = chosen->file == nullptr ? "" : folder + "/" + chosen->file;
    static bare_world world;
    world.begin();
    if (const char *seeds = std::getenv("VESK_FUZZ_SEEDS"))
        write_seeds(seeds);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    static int inputs = 0;
    if (++inputs % 256 == 0) { // what readers leave behind on purpose
        create_palette();
        recording() = {};
    }
    std::string bytes = chosen->before;
    bytes.append(reinterpret_cast<const char *>(data), size);
    chosen->run(input_file.c_str(), bytes);
    return 0;
}
