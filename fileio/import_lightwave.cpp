#include "fileio/import_lightwave.h"

#include "base/atomic_file.h"
#include "base/filename.h"
#include "base/numbers.h"
#include "fileio/foreign_scene.h"
#include "fileio/import_lwob.h"
#include "fileio/import_mesh.h"
#include "model/angle.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/lights.h"
#include "model/normals.h"
#include "model/object_tree.h"

#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <strings.h>

namespace {

constexpr double degree = pi / 180;

// Position, heading, pitch, bank, scale.
using motion_t = std::array<double, 9>;
constexpr motion_t at_rest = {0, 0, 0, 0, 0, 0, 1, 1, 1};

struct item_t {
    enum kind_t { OBJECT, NOTHING, LIGHT } kind;
    std::string name;
    motion_t motion = at_rest;
    std::array<double, 3> pivot = {0, 0, 0};
    int parent = -1; // place among the objects
    object_t *made = nullptr;
};

std::vector<std::string> split(const std::string &text, const char *separators)
{
    std::vector<std::string> parts;
    for (size_t at = 0; (at = text.find_first_not_of(separators, at)) != std::string::npos;) {
        const size_t end = std::min(text.find_first_of(separators, at), text.size());
        parts.push_back(text.substr(at, end - at));
        at = end;
    }
    return parts;
}

// ---- the scene's text ----

class scene_reader {
public:
    explicit scene_reader(const std::string &text) : lines_(split(text, "\r\n")) {}

    std::vector<item_t> run()
    {
        version_ = lines_.size() > 1 ? int_of(lines_[1]) : 1;
        for (at_ = 2; at_ < lines_.size(); ++at_)
            line(split(lines_[at_], " \t"));
        return items_;
    }

private:
    void line(const std::vector<std::string> &words)
    {
        const std::string &key = words.empty() ? lines_[at_] : words[0];
        if (key == "LoadObject" || key == "LoadObjectLayer")
            items_.push_back({item_t::OBJECT, last_of(words, key == "LoadObjectLayer" ? 2 : 1)});
        else if (key == "AddNullObject")
            items_.push_back({item_t::NOTHING, last_of(words, 1)});
        else if (key == "AddLight")
            items_.push_back({item_t::LIGHT, "light"});
        else if (key == "AddCamera" || key == "AddBone" || key == "ShowCamera")
            other_ = true;
        else if (key == "ObjectMotion" || key == "LightMotion")
            motion();
        else if (key == "ParentObject" && words.size() > 1 && !items_.empty())
            items_.back().parent = int_of(words[1]) - 1;
        else if (key == "ParentItem" && words.size() > 1 && !items_.empty())
            items_.back().parent = static_cast<int>(unsigned_of_hex(words[1]) & 0xFFFF);
        else if (key == "LightName" && words.size() > 1 && !items_.empty())
            items_.back().name = name_from(words, 1);
        else if ((key == "PivotPosition" || key == "PivotPoint") && words.size() > 3 &&
                 !items_.empty())
            for (size_t i = 0; i < 3; ++i)
                items_.back().pivot[i] = double_of(words[i + 1]);
        if (key == "LoadObject" || key == "LoadObjectLayer" || key == "AddNullObject" ||
            key == "AddLight")
            other_ = false;
    }

    // The name after the numbers that newer versions put before it; it may hold blanks.
    [[nodiscard]] std::string last_of(const std::vector<std::string> &words, size_t first) const
    {
        return name_from(words, first + (version_ >= 4 ? 1 : 0));
    }
    static std::string name_from(const std::vector<std::string> &words, size_t begin)
    {
        std::string name;
        for (size_t i = begin; i < words.size(); ++i)
            name += (name.empty() ? "" : " ") + words[i];
        return name;
    }

    void motion()
    {
        motion_t motion = at_rest;
        if (version_ >= 3)
            read_channels(&motion);
        else
            read_keys(&motion);
        if (!other_ && !items_.empty())
            items_.back().motion = motion;
    }

    // "{ Envelope", the number of keys, "Key value time ..."; angles in radians.
    void read_channels(motion_t *motion)
    {
        size_t channel = 0;
        bool first = false;
        while (at_ + 1 < lines_.size()) {
            const std::vector<std::string> words = split(lines_[at_ + 1], " \t");
            const std::string key = words.empty() ? "" : words[0];
            const bool number = key.find_first_not_of("0123456789+-.eE") == std::string::npos;
            if (key == "Channel" && words.size() > 1) {
                channel = static_cast<size_t>(std::max(0, int_of(words[1])));
                first = true;
            } else if (key == "Key" && words.size() > 1) {
                if (std::exchange(first, false) && channel < motion->size())
                    (*motion)[channel] = double_of(words[1]);
            } else if (key != "NumChannels" && key != "{" && key != "}" && key != "Behaviors" &&
                       !number) {
                return;
            }
            ++at_;
        }
    }

    // The number of channels, of keys, and the first key's values; angles in degrees.
    void read_keys(motion_t *motion)
    {
        if (at_ + 3 >= lines_.size())
            return;
        const std::vector<std::string> values = split(lines_[at_ + 3], " \t");
        for (size_t i = 0; i < values.size() && i < motion->size(); ++i)
            (*motion)[i] = double_of(values[i]) * (i >= 3 && i < 6 ? degree : 1);
        at_ += 3;
    }

    std::vector<std::string> lines_;
    size_t at_ = 0;
    int version_ = 1;
    bool other_ = false; // the item in hand has no place in the scene
    std::vector<item_t> items_;
};

// ---- placing ----

// A place of an item in its parent's space. The scene is left-handed, the objects read are not: z
// is turned round on the way in and out.
point3_t through(const item_t &item, const point3_t &p)
{
    const motion_t &m = item.motion;
    double x = (p.x - item.pivot[0]) * m[6];
    double y = (p.y - item.pivot[1]) * m[7];
    double z = (-p.z - item.pivot[2]) * m[8];
    const auto turn = [](double &a, double &b, double angle) {
        const double c = std::cos(angle);
        const double s = std::sin(angle);
        const double old = a;
        a = c * old - s * b;
        b = s * old + c * b;
    };
    turn(x, y, m[5]); // bank about z, pitch about x, heading about y
    turn(y, z, m[4]);
    turn(z, x, m[3]);
    return {static_cast<float>(x + m[0]), static_cast<float>(y + m[1]),
            static_cast<float>(-(z + m[2]))};
}

point3_t to_world(const std::vector<item_t> &items, size_t place, point3_t p)
{
    size_t steps = 0;
    for (int at = static_cast<int>(place);
         at >= 0 && at < static_cast<int>(items.size()) && steps <= items.size(); ++steps) {
        p = through(items[static_cast<size_t>(at)], p);
        at = items[static_cast<size_t>(at)].parent;
    }
    return p;
}

object_t *load_part(const std::string &scene, const std::string &name)
{
    std::string found = name;
    for (char &c : found)
        if (c == '\\')
            c = '/';
    const std::string folder = vesk_filename_get_path(scene.c_str());
    const std::string file = vesk_filename_get_file(found.c_str());
    for (const std::string &candidate : {found, folder + "/" + found, folder + "/../" + found,
                                         folder + "/" + file, folder + "/../Objects/" + file})
        if (vesk_file_exists(candidate.c_str()) != 0)
            return vesk_import_lightwave(candidate.c_str());
    return nullptr;
}

void make_item(std::vector<item_t> &items, size_t place, const std::string &scene)
{
    item_t &item = items[place];
    if (item.kind == item_t::LIGHT) {
        item.made = new_light();
    } else if (item.kind == item_t::OBJECT) {
        item.made = load_part(scene, item.name);
    }
    if (item.made == nullptr) {
        item.made = new_group();
        object_set_name(item.made, item.name.c_str());
    }
    for_each_object(item.made, [&](object_t *object) {
        for (vertex *point : each<vertex>(object->vertices))
            point->position = to_world(items, place, point->position);
        object->centre = to_world(items, place, object->centre);
        object_mark(object, CHANGED_POSITIONS | CHANGED_NORMALS);
    });
}

// Below its parent, unless it would be its own ancestor.
void link_item(std::vector<item_t> &items, size_t place, object_t *top)
{
    const item_t &item = items[place];
    const bool has_parent = item.parent >= 0 && item.parent < static_cast<int>(place);
    object_add_child(has_parent ? items[static_cast<size_t>(item.parent)].made : top, item.made);
}

object_t *import_scene(const std::string &filename, const std::string &text)
{
    if (!text.starts_with("LWSC"))
        return import_refused(filename, "it is no Lightwave scene");
    std::vector<item_t> items = scene_reader(text).run();
    if (items.empty())
        return import_refused(filename, "there are no objects in it");
    object_t *top = new_group();
    object_set_name(top, import_base_name(filename.c_str()).c_str());
    for (size_t i = 0; i < items.size(); ++i) {
        make_item(items, i, filename);
        link_item(items, i, top);
    }
    object_calc_normals_force(top);
    return top;
}

} // namespace

object_t *vesk_import_lightwave(const char *filename)
{
    const std::string name = filename;
    std::string bytes;
    if (!read_whole_file(name.c_str(), &bytes))
        return import_refused(name, strerror(errno));
    const char *suffix = string_get_suffix(name.c_str());
    if (suffix != nullptr && strcasecmp(suffix, ".lws") == 0)
        return import_scene(name, bytes);
    if (bytes.size() > 12 && bytes.compare(8, 4, "LWOB") == 0)
        return import_lwob(name.c_str(), bytes);
    return vesk_assimp_import(name.c_str(), "lwo");
}
