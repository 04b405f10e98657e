// A small world with everything that formats differ in, through each of them and back: what a
// format can hold is as it was, and what it cannot is told.

#include "base/file_report.h"
#include "edit/document/selection.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/flat_mesh.h"
#include "model/lights.h"
#include "model/palette.h"
#include "model/world.h"
#include "tests/plugin/interchange_fixture.h"
#include "tests/support/damage.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <map>
#include <random>
#include <set>
#include <sstream>

namespace {

struct abilities {
    const char *suffix;
    const char *command; // "" for the one of the suffix
    bool polygons, objects, groups, names, lines, smooth, colours, textures, lights, sides;
    bool tints = true; // a colour under a texture
};
void PrintTo(const abilities &a, std::ostream *out) { *out << a.suffix << a.command; }

// clang-format off
const abilities formats[] = {
    //  suffix  command            polygons obj   group  names  lines  smooth colour text   lights sides
    {".obj",   "",                 true,  true,  false, true,  true,  true,  true,  true,  false, false},
    {".ply",   "",                 true,  false, false, false, true,  false, true,  true,  false, false},
    {".ply",   "write_ply_text",   true,  false, false, false, true,  false, true,  true,  false, false},
    {".stl",   "",                 false, false, false, false, false, false, false, false, false, false},
    {".stl",   "write_stl_text",   false, true,  false, true,  false, false, false, false, false, false},
    {".gltf",  "",                 true,  true,  true,  true,  true,  true,  true,  true,  true,  true},
    {".glb",   "",                 true,  true,  true,  true,  true,  true,  true,  true,  true,  true},
    {".dae",   "",                 true,  true,  true,  true,  true,  true,  true,  true,  true,  false, false},
    {".fbx",   "",                 true,  true,  true,  true,  false, true,  true,  true,  true,  false},
    {".3mf",  "",                 false, true,  true,  true,  false, false, true,  true,  false, false, false},
};
// clang-format on

// ---- the world in words ----

std::string number(float value)
{
    const long rounded = std::lround(static_cast<double>(value) * 1000);
    return std::to_string(rounded);
}

std::string place(const point3_t &p) { return number(p.x) + "," + number(p.y) + "," + number(p.z); }

std::string path_of(const object_t *object, bool groups)
{
    std::string path = object->name;
    for (const object_t *up = object->parent; groups && up != nullptr && up->type != OBJECT_WORLD;
         up = up->parent)
        path = std::string(up->name) + "/" + path;
    return path;
}

std::string look_of(const object_t *object, const surface_t *surface, const abilities &a)
{
    const material *m = vesk_palette_get_material(surface->material);
    std::string look = std::to_string(surface->type);
    if (a.colours && (a.tints || object->has_texture == 0))
        look += " #" + number(std::round(m->diffuse[0] * 255)) +
                number(std::round(m->diffuse[1] * 255)) + number(std::round(m->diffuse[2] * 255));
    if (a.smooth && surface->type == SURFACE_POLYGON)
        look += surface->shading != 0 ? " smooth" : " flat";
    if (a.sides)
        look += surface->twosided != 0 ? " both" : " front";
    return look;
}

std::string outline_of(const object_t *object, const surface_t *surface, bool textures)
{
    std::vector<std::string> corners;
    for (const svertex *corner : each<svertex>(surface->refs)) {
        corners.push_back(place(corner->vertex->position));
        if (textures && surface->type == SURFACE_POLYGON)
            corners.back() +=
                ":" + number(corner->u * object->texture_repeat_x + object->texture_offset_x) +
                "," + number(corner->v * object->texture_repeat_y + object->texture_offset_y);
    }
    if (surface->type != SURFACE_LINE)
        std::rotate(corners.begin(), std::min_element(corners.begin(), corners.end()),
                    corners.end());
    std::string text;
    for (const std::string &corner : corners)
        text += " " + corner;
    return text;
}

double area_of(const surface_t *surface)
{
    double sum[3] = {};
    const auto *first = item_of<svertex>(surface->refs);
    for (const listitem *at = surface->refs; at != nullptr; at = at->next) {
        const point3_t &p = item_of<svertex>(at)->vertex->position;
        const auto *next = at->next != nullptr ? item_of<svertex>(at->next) : first;
        const point3_t &q = next->vertex->position;
        sum[0] += static_cast<double>((p.y - q.y) * (p.z + q.z));
        sum[1] += static_cast<double>((p.z - q.z) * (p.x + q.x));
        sum[2] += static_cast<double>((p.x - q.x) * (p.y + q.y));
    }
    return std::sqrt(sum[0] * sum[0] + sum[1] * sum[1] + sum[2] * sum[2]) / 2;
}

// One line for each fact, in order of the alphabet.
std::string facts_of_world(const abilities &a)
{
    std::multiset<std::string> facts;
    std::map<std::string, double> areas;
    std::set<std::string> places;
    for_each_object(vesk_get_world(), [&](object_t *object) {
        if (object->type == OBJECT_LIGHT && a.lights)
            facts.insert("light at " + place(object->centre));
        bool shown = false;
        for (const surface_t *surface : each<surface_t>(object->surfaces))
            shown = shown || a.lines || surface->type == SURFACE_POLYGON;
        if (!shown)
            return;
        const std::string name = !a.objects ? "all"
                                 : a.names  ? path_of(object, a.groups)
                                            : "object";
        const std::string own = name + ": ";
        if (a.textures && a.objects)
            facts.insert(own + (object->has_texture != 0 ? "textured" : "plain"));
        if (a.groups) {
            std::string frame = own + "frame " + place(object->centre);
            for (const float value : object->rotation)
                frame += " " + number(std::round(value * 100));
            facts.insert(frame);
        }
        for (const surface_t *surface : each<surface_t>(object->surfaces)) {
            const bool line = surface->type != SURFACE_POLYGON;
            if (line && !a.lines)
                continue;
            const std::string look = own + look_of(object, surface, a);
            for (const svertex *corner : each<svertex>(surface->refs))
                places.insert(own + place(corner->vertex->position));
            if (line || a.polygons)
                facts.insert(look + outline_of(object, surface, a.textures && a.objects));
            else
                areas[look] += area_of(surface);
        }
    });
    std::string text;
    for (const std::string &fact : facts)
        text += fact + "\n";
    for (const auto &[look, area] : areas)
        text += look + " area " + number(static_cast<float>(area)) + "\n";
    for (const std::string &at : places)
        text += at + "\n";
    return text;
}

// The lines that only one of two texts has.
std::string difference(const std::string &before, const std::string &after)
{
    std::multiset<std::string> lines[2];
    for (int i = 0; i < 2; ++i) {
        std::istringstream text(i == 0 ? before : after);
        for (std::string line; std::getline(text, line);)
            lines[i].insert(line);
    }
    std::string out;
    for (int i = 0; i < 2; ++i)
        for (const std::string &line : lines[i])
            if (lines[i].count(line) != lines[1 - i].count(line))
                out += (i == 0 ? "\nlost  " : "\nnew   ") + line;
    return out;
}

int number_of_objects()
{
    int count = 0;
    for_each_object(vesk_get_world(), [&count](const object_t *) { ++count; });
    return count;
}

// ---- the corpus ----

object_t *add_part(object_t *parent, const char *name, std::vector<point3_t> points,
                   std::vector<std::vector<int>> outlines, int colour)
{
    object_t *object = new_object(OBJECT_POLY);
    object_set_name(object, name);
    std::vector<float> xyz;
    for (const point3_t &p : points)
        xyz.insert(xyz.end(), {p.x, p.y, p.z});
    std::vector<int> offsets = {0};
    std::vector<int> corners;
    std::vector<float> uv;
    for (const std::vector<int> &outline : outlines) {
        corners.insert(corners.end(), outline.begin(), outline.end());
        offsets.push_back(static_cast<int>(corners.size()));
    }
    for (const int corner : corners) {
        uv.push_back(static_cast<float>(corner) / 8);
        uv.push_back(static_cast<float>(corner % 3) / 4);
    }
    vesk_object_add_vertices_from_float_array(object, xyz.data(), static_cast<int>(points.size()));
    vesk_object_add_surfaces_from_arrays(object, static_cast<int>(outlines.size()), offsets.data(),
                                         corners.data(), uv.data(), colour);
    object_add_child(parent, object);
    return object;
}

int colour(float r, float g, float b, const char *name, float transparency)
{
    material m;
    material_init(&m);
    std::string text = name;
    m.name = text.data();
    m.diffuse[0] = r;
    m.diffuse[1] = g;
    m.diffuse[2] = b;
    m.specular[0] = 1;
    m.emissive[1] = 0.25f;
    m.shininess = 64;
    m.transparency = transparency;
    return vesk_palette_get_new_material_index(&m);
}

void make_world(const std::string &picture)
{
    const int red = colour(0.8f, 0.2f, 0, "br\xC3\xA4unlich red", 0);
    const int glass = colour(0, 0.4f, 1, "glass \"<&>\"", 0.5f);
    object_t *group = new_group();
    object_set_name(group, "gr\xC3\xBC"
                           "ppe \"q\" <&> 'b'");
    vesk_object_set_centre(group, 1, 2, 3);
    const float turn[9] = {0.6f, 0.8f, 0, -0.8f, 0.6f, 0, 0, 0, 1};
    std::copy_n(turn, 9, group->rotation);
    object_add_child(vesk_get_world(), group);

    object_t *box = add_part(
        group, "a box",
        {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}},
        {{3, 2, 1, 0}, {4, 5, 6, 7}, {0, 1, 5, 4}, {1, 2, 6, 5}, {2, 3, 7, 6}, {3, 0, 4, 7}}, red);
    surface_set_col(item_of<surface_t>(box->surfaces), glass);
    surface_set_shading(object_get_surface_at(box, 1), 1);
    surface_set_shading(object_get_surface_at(box, 2), 1);
    object_set_init_texture(box, picture.c_str(), "wood.bmp");
    object_set_texture_repeat(box, 2, 3);
    object_set_texture_offset(box, 0.25f, 0.5f);
    vesk_object_set_centre(box, 4, 5, 6);
    const float tilt[9] = {1, 0, 0, 0, 0, 1, 0, -1, 0};
    std::copy_n(tilt, 9, box->rotation);

    object_t *corner = add_part(box, "L (concave)",
                                {{0, 0, 2}, {2, 0, 2}, {2, 1, 2}, {1, 1, 2}, {1, 2, 2}, {0, 2, 2}},
                                {{0, 1, 2, 3, 4, 5}}, glass);
    object_set_twosided_faces(corner, 0);
    add_part(vesk_get_world(), "seven corners",
             {{4, 0, 0}, {5, 0, 1}, {6, 1, 2}, {6, 2, 2}, {5, 3, 1}, {4, 3, 0}, {3.5f, 1, -0.5f}},
             {{0, 1, 2, 3, 4, 5, 6}}, red);
    object_t *lines = add_part(vesk_get_world(), "lines",
                               {{0, 0, 9}, {1, 0, 9}, {1, 1, 9}, {0, 1, 8}, {5, 5, 5}, {6, 6, 7}},
                               {{0, 1, 2, 3}, {3, 4, 5}}, glass);
    surface_set_type(item_of<surface_t>(lines->surfaces), SURFACE_CLOSED_LINE);
    surface_set_type(object_get_surface_at(lines, 1), SURFACE_LINE);
    object_t *lamp = new_light();
    vesk_object_set_centre(lamp, 7, 8, 9);
    object_add_child(vesk_get_world(), lamp);
    object_mark_tree(vesk_get_world(), CHANGED_ALL);
    run("recalc_normals_all");
}

class RoundTrip : public Interchange, public testing::WithParamInterface<abilities> {
protected:
    void SetUp() override
    {
        Interchange::SetUp();
        ASSERT_EQ(plugin_load(bundled_plugin("images").c_str()), 1);
        run("set_images_folder", temporary_file("."));
    }
    void TearDown() override
    {
        run("set_images_folder", "");
        Interchange::TearDown();
    }
    // By a reader of the plug-in's own, not in the process for the others.
    static bool read_here()
    {
        const std::string suffix = GetParam().suffix;
        return suffix == ".obj" || suffix == ".ply" || suffix == ".stl" || suffix == ".3mf";
    }
};

size_t files_beside(const std::string &file)
{
    const std::filesystem::path path = file;
    size_t count = 0;
    for (const auto &entry : std::filesystem::directory_iterator(path.parent_path()))
        count += entry.path().filename().string().starts_with(path.stem().string()) ? 1 : 0;
    return count;
}

TEST_P(RoundTrip, KeepsWhatTheFormatHolds)
{
    const abilities &a = GetParam();
    make_world(temporary_file("wood.bmp"));
    const std::string before = facts_of_world(a);
    const int objects = number_of_objects();
    const std::string file = temporary_file(std::string("r\xC3\xBC ck") + a.suffix);
    ASSERT_EQ(run(*a.command != '\0' ? a.command : "export_model", file), "1");
    const file_report told = last_file_report();
    run("clear_all");
    ASSERT_EQ(run("file_load", file), "1");
    EXPECT_EQ(last_file_report().warnings_in_all, 0U) << run("report_json");
    EXPECT_EQ(difference(before, facts_of_world(a)), "");
    if (a.groups && a.lights) {
        EXPECT_EQ(number_of_objects(), objects);
    }

    const auto was_told = [&](const char *what) {
        return std::any_of(told.losses.begin(), told.losses.end(),
                           [&](const auto &loss) { return loss.what == what; });
    };
    EXPECT_NE(was_told("lines"), a.lines);
    EXPECT_NE(was_told("lights"), a.lights);
    EXPECT_NE(was_told("textures"), a.textures);
    EXPECT_NE(
        std::any_of(told.notes.begin(), told.notes.end(),
                    [](const auto &note) { return note.what == "polygons cut into triangles"; }),
        a.polygons);
}

TEST_P(RoundTrip, AnEmptyWorldAndAFullDiskAreTold)
{
    const abilities &a = GetParam();
    if (*a.command != '\0')
        return;
    EXPECT_EQ(run("export_model", std::string("/nowhere/x") + a.suffix), "0");
    EXPECT_EQ(last_file_report().written, "");
    const std::string folder = temporary_file(std::string("folder ") + (a.suffix + 1) + a.suffix);
    std::filesystem::create_directory(folder);
    EXPECT_EQ(run("export_model", folder), "0");
    EXPECT_EQ(files_beside(folder), 1U); // nothing that belongs to a file that is not there
    const std::string file = temporary_file(std::string("empty") + a.suffix);
    ASSERT_EQ(run("export_model", file), "1");
    run("file_load", file); // may be refused, as there is nothing in it
    for (const std::string &box : recording().boxes)
        EXPECT_TRUE(box.starts_with("can't ")) << box;
}
// Coordinates for each corner, several pictures and materials in one object: what the archive says, by
// hand.
TEST_F(Interchange, ThreeMFHasPicturesCornerByCorner)
{
    ASSERT_EQ(plugin_load(bundled_plugin("images").c_str()), 1);
    object_t *square = add_part(vesk_get_world(), "square",
                                {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}}, {{0, 1, 2, 3}}, 4);
    const flat_uv uv[] = {{0, 0}, {1.5f, 0}, {1.5f, -1}, {0.25f, 1}};
    int corner = 0;
    for (svertex *reference : each<svertex>(item_of<surface_t>(square->surfaces)->refs)) {
        reference->u = uv[corner].u;
        reference->v = uv[corner++].v;
    }
    object_set_init_texture(square, temporary_file("wood.bmp").c_str(), "wood.bmp");
    object_mark_tree(vesk_get_world(), CHANGED_ALL);
    const std::string file = temporary_file("pictured.3mf");
    ASSERT_EQ(run("export_model", file), "1");
    EXPECT_TRUE(last_file_report().losses.empty());
    const std::string bytes = read_text(file);
    EXPECT_NE(bytes.find("3D/Textures/wood.png"), std::string::npos);
    EXPECT_NE(bytes.find("contenttype=\"image/png\""), std::string::npos);

    run("clear_all");
    std::filesystem::create_directory(temporary_file("pictures"));
    run("set_images_folder", temporary_file("pictures"));
    ASSERT_EQ(run("file_load", file), "1");
    run("set_images_folder", "");
    EXPECT_EQ(last_file_report().images, std::vector{temporary_file("pictures/wood.png")});
    ASSERT_EQ(parts().size(), 1U);
    object_t *read = parts()[0];
    ASSERT_EQ(read->has_texture, 1);
    const VESKImage *before =
        texture_id_to_image(texture_find_by_name(temporary_file("wood.bmp").c_str()));
    const VESKImage *after = texture_id_to_image(read->texture);
    ASSERT_TRUE(before != nullptr && after != nullptr);
    ASSERT_EQ(after->width, before->width);
    ASSERT_EQ(after->depth, before->depth);
    EXPECT_TRUE(std::equal(before->data, before->data + 16 * before->depth, after->data));
    for (const surface_t *surface : each<surface_t>(read->surfaces)) {
        EXPECT_EQ(surface->num_refs, 3);
        for (const svertex *reference : each<svertex>(surface->refs)) {
            const point3_t &p = reference->vertex->position;
            const int place = p.y < 1 ? (p.x < 1 ? 0 : 1) : (p.x < 1 ? 3 : 2);
            EXPECT_EQ(reference->u, uv[place].u);
            EXPECT_EQ(reference->v, uv[place].v);
        }
    }
}

// A terrain of quads large enough for the bar and the cancel button.
void make_terrain(int side)
{
    std::vector<point3_t> points;
    std::vector<std::vector<int>> quads;
    for (int y = 0; y <= side; ++y)
        for (int x = 0; x <= side; ++x)
            points.push_back({static_cast<float>(x), static_cast<float>(y), 0.5f});
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            const int at = y * (side + 1) + x;
            quads.push_back({at, at + 1, at + side + 2, at + side + 1});
        }
    add_part(vesk_get_world(), "terrain", points, quads, 3);
    run("recalc_normals_all");
}

TEST_P(RoundTrip, CancelLeavesTheFormerFileAndTheScene)
{
    const abilities &a = GetParam();
    const std::string command = *a.command != '\0' ? a.command : "export_model";
    const std::string file = temporary_file(std::string("cancelled") + a.suffix);
    make_terrain(80);
    ASSERT_EQ(run(command.c_str(), file), "1");
    const std::string before = read_text(file);
    const size_t files = files_beside(file);
    const std::string facts = facts_of_world(a);

    // At the first look at the clock, and later; one that comes too late does not count.
    int cancelled = 0;
    for (const int patience : {1, 2, 20}) {
        cancel_at_look(patience);
        if (run(command.c_str(), file) == "0") {
            EXPECT_NE(last_message().find(" - cancelled"), std::string::npos) << last_message();
            ++cancelled;
        }
        EXPECT_EQ(read_text(file), before);
        EXPECT_EQ(files_beside(file), files);
    }
    EXPECT_GE(cancelled, 2);

    cancelled = 0;
    for (const int patience : {1, 2, 20}) {
        run("clear_all");
        const int materials = vesk_get_num_palette();
        cancel_at_look(patience);
        if (run("file_load", file) == "0") {
            EXPECT_EQ(last_message(), "import - cancelled");
            EXPECT_EQ(vesk_get_world()->num_children, 0);
            EXPECT_EQ(vesk_get_num_palette(), materials);
            ++cancelled;
        }
    }
    EXPECT_GE(cancelled, read_here() ? 1 : 0); // the others' may be done before anybody looks
    EXPECT_TRUE(recording().boxes.empty());

    cancel_at_look(0);
    run("clear_all");
    ASSERT_EQ(run("file_load", file), "1");
    EXPECT_EQ(difference(facts, facts_of_world(a)), "");
}

INSTANTIATE_TEST_SUITE_P(Formats, RoundTrip, testing::ValuesIn(formats));

// ---- damage ----

TEST_P(RoundTrip, DamagedFilesAreReadOrRefused)
{
    const abilities &a = GetParam();
    make_world(temporary_file("wood.bmp"));
    const std::string file = temporary_file(std::string("damaged") + a.suffix);
    ASSERT_EQ(run(*a.command != '\0' ? a.command : "export_model", file), "1");
    std::vector<std::pair<std::string, std::string>> good = {{file, read_text(file)}};
    for (const char *suffix : {".mtl", ".bin"}) // what may lie beside it
        if (const std::string other = temporary_file(std::string("damaged") + suffix);
            std::filesystem::exists(other))
            good.emplace_back(other, read_text(other));
    std::mt19937 random(static_cast<unsigned>(damage_setting("VESK_DAMAGE_SEED", 5)));
    const int files = damage_setting("VESK_DAMAGE_FILES", 300) / (read_here() ? 1 : 10);
    for (int i = 0; i < files; ++i) {
        const auto &[name, bytes] = good[static_cast<size_t>(i) % good.size()];
        write_text(name, damaged(bytes, random));
        run("file_load", file);
        write_text(name, bytes);
        if (i % 20 == 0)
            run("clear_all");
    }
    expect_refusals_only();
    std::filesystem::remove(temporary_file("damaged.mtl"));
    std::filesystem::remove(temporary_file("damaged.bin"));
}

TEST_F(Interchange, MaterialsComeBackWithAllTheirColours)
{
    for (const char *suffix : {".obj", ".gltf", ".glb", ".dae", ".fbx"}) {
        run("clear_all");
        make_world(temporary_file("wood.bmp"));
        const std::string file = temporary_file(std::string("paint") + suffix);
        ASSERT_EQ(run("export_model", file), "1");
        run("clear_all");
        create_palette();
        ASSERT_EQ(run("file_load", file), "1");
        const material *glass = nullptr;
        for (int i = 0; i < vesk_get_num_palette(); ++i)
            if (std::string(vesk_material_get_name_index(i)).starts_with("glass"))
                glass = vesk_palette_get_material(i);
        ASSERT_NE(glass, nullptr) << suffix;
        EXPECT_NEAR(glass->diffuse[1], 0.4f, 1e-3) << suffix;
        EXPECT_NEAR(glass->specular[0], 1, 1e-3) << suffix;
        EXPECT_NEAR(glass->emissive[1], 0.25f, 1e-3) << suffix;
        EXPECT_NEAR(glass->shininess, 64, 0.01) << suffix;
        EXPECT_NEAR(glass->transparency, 0.5f, 1e-3) << suffix;
    }
}

} // namespace
