#include "fileio/import_lightwave.h"

#include "base/atomic_file.h"
#include "base/file_report.h"
#include "base/filename.h"
#include "base/numbers.h"
#include "fileio/foreign_scene.h"
#include "fileio/import_lwob.h"
#include "fileio/import_mesh.h"
#include "fileio/vrml_frame.h"
#include "model/angle.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/lights.h"
#include "model/normals.h"
#include "model/object_tree.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <map>
#include <strings.h>

namespace {

constexpr double degree = pi / 180;
constexpr long most_points = 1 << 24;

// Position, heading, pitch, bank, scale.
using motion_t = std::array<double, 9>;
constexpr motion_t at_rest = {0, 0, 0, 0, 0, 0, 1, 1, 1};

struct item_t {
    enum kind_t { OBJECT, NOTHING, LIGHT } kind;
    std::string name;
    motion_t motion = at_rest;
    std::array<double, 3> pivot = {0, 0, 0};
    int parent = -1; // place among the items of its kind
    kind_t parent_kind = OBJECT;
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

// Texts of version 1 and 2 have motions as tables of numbers in degrees, later ones as envelopes in
// radians; each tells which by its first words.
class scene_reader {
public:
    explicit scene_reader(const std::string &text) : lines_(split(text, "\r\n")) {}

    // "" or why the scene cannot be read.
    const char *run()
    {
        version_ = lines_.size() > 1 ? int_of(lines_[1]) : 0;
        if (version_ < 1 || version_ > 5)
            return "its version of the scene format is not known";
        for (at_ = 2; at_ < lines_.size() && !strange_; ++at_)
            line(split(lines_[at_], " \t"));
        if (strange_)
            return "its motions stand in a form that is not known";
        return items.empty() ? "there are no objects in it" : "";
    }

    std::vector<item_t> items;
    int moving = 0; // items with more keys than the first
    int pivots_turned = 0;
    std::map<std::string, int> others; // items that have no place in a scene here

private:
    void line(const std::vector<std::string> &words)
    {
        const std::string &key = words.empty() ? lines_[at_] : words[0];
        if (!begins_item(key, words) && !in_other_)
            of_item(key, words);
        else if (key.ends_with("Motion"))
            motion();
    }

    bool begins_item(const std::string &key, const std::vector<std::string> &words)
    {
        if (key == "LoadObject" || key == "LoadObjectLayer")
            items.push_back({item_t::OBJECT, last_of(words, key == "LoadObjectLayer" ? 2 : 1)});
        else if (key == "AddNullObject")
            items.push_back({item_t::NOTHING, last_of(words, 1)});
        else if (key == "AddLight")
            items.push_back({item_t::LIGHT, "light"});
        else if (key == "AddCamera" || key == "AddBone")
            ++others[key == "AddBone" ? "bones" : "cameras"];
        else if (key == "ShowCamera" || key == "CameraMotion")
            others.emplace("cameras", 1);
        else
            return false;
        in_other_ = key.find("Camera") != std::string::npos || key == "AddBone";
        return key != "CameraMotion";
    }

    // What follows an item says something of it.
    void of_item(const std::string &key, const std::vector<std::string> &words)
    {
        if (items.empty())
            return;
        item_t &item = items.back();
        if (key == "ObjectMotion" || key == "LightMotion") {
            item.motion = motion();
        } else if (key == "ParentObject" && words.size() > 1) {
            item.parent = int_of(words[1]) - 1;
        } else if (key == "ParentItem" && words.size() > 1) {
            const unsigned id = unsigned_of_hex(words[1]);
            item.parent = id >> 28 > 2 ? -1 : static_cast<int>(id & 0xFFFF);
            item.parent_kind = id >> 28 == 2 ? item_t::LIGHT : item_t::OBJECT;
        } else if (key == "LightName" && words.size() > 1) {
            item.name = name_from(words, 1);
        } else if ((key == "PivotPosition" || key == "PivotPoint") && words.size() > 3) {
            for (size_t i = 0; i < 3; ++i)
                item.pivot[i] = double_of(words[i + 1]);
        } else if (key == "PivotRotation") {
            pivots_turned += std::any_of(words.begin() + 1, words.end(),
                                         [](const std::string &w) { return double_of(w) != 0; })
                                 ? 1
                                 : 0;
        }
    }

    // The name after the numbers that newer versions put before it; it may hold blanks.
    [[nodiscard]] static std::string last_of(const std::vector<std::string> &words, size_t first)
    {
        const bool id =
            words.size() > first + 1 && words[first].size() == 8 &&
            words[first].find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
        return name_from(words, first + (id ? 1 : 0));
    }
    static std::string name_from(const std::vector<std::string> &words, size_t begin)
    {
        std::string name;
        for (size_t i = begin; i < words.size(); ++i)
            name += (name.empty() ? "" : " ") + words[i];
        return name;
    }

    motion_t motion()
    {
        motion_t motion = at_rest;
        if (at_ + 1 >= lines_.size())
            return motion;
        const std::vector<std::string> words = split(lines_[at_ + 1], " \t");
        if (!words.empty() && words[0] == "NumChannels")
            read_channels(&motion);
        else if (words.size() == 1 && int_of(words[0]) > 0 && int_of(words[0]) <= 9)
            read_keys(static_cast<size_t>(int_of(words[0])), &motion);
        else
            strange_ = true;
        return motion;
    }

    // "{ Envelope", the number of keys, "Key value time ..."; angles in radians.
    void read_channels(motion_t *motion)
    {
        size_t channel = 0;
        int keys = 0;
        bool moves = false;
        while (at_ + 1 < lines_.size()) {
            const std::vector<std::string> words = split(lines_[at_ + 1], " \t");
            const std::string key = words.empty() ? "" : words[0];
            const bool number = key.find_first_not_of("0123456789+-.eE") == std::string::npos;
            if (key == "Channel" && words.size() > 1) {
                channel = static_cast<size_t>(std::clamp(int_of(words[1]), 0, 9));
                keys = 0;
            } else if (key == "Key" && words.size() > 1) {
                moves = moves || keys > 0;
                if (keys++ == 0 && channel < motion->size())
                    (*motion)[channel] = double_of(words[1]);
            } else if (key != "NumChannels" && key != "{" && key != "}" && key != "Behaviors" &&
                       !number) {
                break;
            }
            ++at_;
        }
        moving += moves ? 1 : 0;
    }

    // After the number of channels: in version 1 the number of keys and the values of all channels
    // for each, in version 2 for each channel the number of its keys and one value in each. Angles
    // are in degrees.
    void read_keys(size_t channels, motion_t *motion)
    {
        ++at_;
        const auto words_at = [this](size_t line) {
            return line < lines_.size() ? split(lines_[line], " \t") : std::vector<std::string>();
        };
        const bool together =
            words_at(at_ + 2).size() == channels && (version_ < 2 || channels > 6);
        bool moves = false;
        for (size_t i = 0; i < channels; ++i) {
            const std::vector<std::string> count = words_at(at_ + 1);
            const std::vector<std::string> values = words_at(at_ + 2);
            const int keys = count.size() == 1 ? int_of(count[0]) : 0;
            if (keys < 1 || values.size() < (together ? channels : 2)) {
                strange_ = true;
                return;
            }
            moves = moves || keys > 1;
            (*motion)[i] = double_of(values[together ? i : 0]) * (i >= 3 && i < 6 ? degree : 1);
            if (!together)
                at_ = std::min(at_ + 1 + static_cast<size_t>(keys), lines_.size());
        }
        at_ += together ? 2 : 0;
        moving += moves ? 1 : 0;
    }

    std::vector<std::string> lines_;
    size_t at_ = 0;
    int version_ = 1;
    bool in_other_ = false; // the lines belong to an item that has no place here
    bool strange_ = false;
};

// ---- placing ----

// The frame of an item in its parent. The scene is left-handed, the objects read are not: z is turned
// round on the way in and out.
vrml_matrix frame_of(const item_t &item)
{
    const auto flat = [](double value) { return static_cast<float>(value); };
    const motion_t &m = item.motion;
    vrml_matrix frame = vrml_scaling({1, 1, -1});
    const auto then = [&frame](const vrml_matrix &next) { frame = vrml_product(frame, next); };
    then(vrml_translation({flat(-item.pivot[0]), flat(-item.pivot[1]), flat(-item.pivot[2])}));
    then(vrml_scaling({flat(m[6]), flat(m[7]), flat(m[8])}));
    then(vrml_rotation({0, 0, 1, flat(m[5])})); // bank about z, pitch about x, heading about y
    then(vrml_rotation({1, 0, 0, flat(m[4])}));
    then(vrml_rotation({0, 1, 0, flat(m[3])}));
    then(vrml_translation({flat(m[0]), flat(m[1]), flat(m[2])}));
    then(vrml_scaling({1, 1, -1}));
    return frame;
}

// The items with their parents' places among all, -1 for none and where items are their own
// ancestors; parents come before their children in `order`.
struct tree_t {
    std::vector<int> parents;
    std::vector<size_t> order;
};

tree_t tree_of(const std::vector<item_t> &items)
{
    std::vector<int> of_kind[2]; // objects, null objects among them, and lights
    for (size_t i = 0; i < items.size(); ++i)
        of_kind[items[i].kind == item_t::LIGHT ? 1 : 0].push_back(static_cast<int>(i));
    tree_t tree;
    for (const item_t &item : items) {
        const std::vector<int> &all = of_kind[item.parent_kind == item_t::LIGHT ? 1 : 0];
        const bool known = item.parent >= 0 && item.parent < static_cast<int>(all.size());
        tree.parents.push_back(known ? all[static_cast<size_t>(item.parent)] : -1);
    }
    enum { NEW, OPEN, DONE };
    std::vector<char> state(items.size(), NEW);
    std::vector<size_t> path;
    for (size_t i = 0; i < items.size(); ++i) {
        for (int at = static_cast<int>(i); at >= 0 && state[static_cast<size_t>(at)] != DONE;) {
            const auto place = static_cast<size_t>(at);
            state[place] = OPEN;
            path.push_back(place);
            int &parent = tree.parents[place];
            if (parent >= 0 && state[static_cast<size_t>(parent)] == OPEN)
                parent = -1;
            at = parent;
        }
        for (; !path.empty(); path.pop_back()) {
            state[path.back()] = DONE;
            tree.order.push_back(path.back());
        }
    }
    return tree;
}

object_t *import_object(const std::string &name)
{
    std::string bytes;
    if (!read_whole_file(name.c_str(), &bytes))
        return import_refused(name, strerror(errno));
    if (bytes.size() > 12 && bytes.compare(8, 4, "LWOB") == 0)
        return import_lwob(name.c_str(), bytes);
    return vesk_assimp_import(name.c_str(), "lwo");
}

class scene_maker {
public:
    scene_maker(const std::string &filename, std::vector<item_t> *items)
        : filename_(filename), items_(*items)
    {
    }
    ~scene_maker()
    {
        for (auto &[file, object] : loaded_)
            if (object != nullptr)
                object_free(object);
    }
    scene_maker(const scene_maker &) = delete;
    scene_maker &operator=(const scene_maker &) = delete;

    // Null when it grows beyond what can be held.
    object_t *run()
    {
        const tree_t tree = tree_of(items_);
        std::vector<vrml_matrix> frames(items_.size());
        object_t *top = new_group();
        object_set_name(top, import_base_name(filename_.c_str()).c_str());
        for (const size_t i : tree.order) {
            frames[i] = frame_of(items_[i]);
            const int parent = tree.parents[i];
            if (parent >= 0)
                frames[i] = vrml_product(frames[i], frames[static_cast<size_t>(parent)]);
            make(&items_[i], frames[i]);
            object_add_child(parent >= 0 ? items_[static_cast<size_t>(parent)].made : top,
                             items_[i].made);
            if (points_ > most_points) {
                object_free(top);
                return nullptr;
            }
        }
        object_calc_normals_force(top);
        return top;
    }

private:
    // Each file is read once, however often it stands in the scene.
    object_t *loaded(const std::string &name)
    {
        const auto [entry, fresh] = loaded_.try_emplace(name, nullptr);
        if (fresh)
            entry->second = load(name);
        if (entry->second == nullptr)
            return nullptr;
        for_each_object(entry->second,
                        [this](const object_t *object) { points_ += object->num_vertices; });
        return points_ > most_points ? nullptr : object_clone(entry->second);
    }

    // As it is named, and beside the scene.
    [[nodiscard]] object_t *load(const std::string &name) const
    {
        std::string found = name;
        std::replace(found.begin(), found.end(), '\\', '/');
        const std::string folder = vesk_filename_get_path(filename_.c_str());
        const std::string file = vesk_filename_get_file(found.c_str());
        for (const std::string &candidate : {found, folder + "/" + found, folder + "/../" + found,
                                             folder + "/" + file, folder + "/../Objects/" + file})
            if (vesk_file_exists(candidate.c_str()) != 0)
                return as_one(import_object(candidate), candidate);
        vesk_report_warning(0, "the object %s was not found", name.c_str());
        return nullptr;
    }

    // Of several layers, which stand beside each other, a group.
    static object_t *as_one(object_t *object, const std::string &file)
    {
        if (object != nullptr && object->type == OBJECT_WORLD) {
            object->type = OBJECT_GROUP;
            object_set_name(object, import_base_name(file.c_str()).c_str());
        }
        return object;
    }

    void make(item_t *item, const vrml_matrix &frame)
    {
        if (item->kind == item_t::OBJECT)
            item->made = loaded(item->name);
        if (item->made == nullptr) {
            item->made = item->kind == item_t::LIGHT ? new_light() : new_group();
            object_set_name(item->made, item->name.c_str());
        }
        for_each_object(item->made, [&frame](object_t *object) {
            for (vertex *point : each<vertex>(object->vertices))
                point->position =
                    vrml_place(frame, point->position.x, point->position.y, point->position.z);
            object->centre =
                vrml_place(frame, object->centre.x, object->centre.y, object->centre.z);
            object_mark(object, CHANGED_POSITIONS | CHANGED_NORMALS);
        });
    }

    const std::string &filename_;
    std::vector<item_t> &items_;
    std::map<std::string, object_t *> loaded_; // as they stand in their files
    long points_ = 0;
};

object_t *import_scene(const std::string &filename, const std::string &text)
{
    if (!text.starts_with("LWSC"))
        return import_refused(filename, "it is no Lightwave scene");
    scene_reader scene(text);
    if (const char *reason = scene.run(); *reason != '\0')
        return import_refused(filename, reason);
    object_t *top = scene_maker(filename, &scene.items).run();
    if (top == nullptr)
        return import_refused(filename, "its objects repeat each other beyond what can be held");
    for (const auto &[what, count] : scene.others)
        vesk_report_warning(0, "%d %s have no counterpart here and were left out", count,
                            what.c_str());
    if (scene.moving > 0)
        vesk_report_warning(0, "%d motions have more than one key; the first is taken",
                            scene.moving);
    if (scene.pivots_turned > 0)
        vesk_report_warning(0, "%d turns of pivots were left out", scene.pivots_turned);
    return top;
}

} // namespace

object_t *vesk_import_lightwave(const char *filename)
{
    const std::string name = filename;
    const char *suffix = string_get_suffix(name.c_str());
    if (suffix == nullptr || strcasecmp(suffix, ".lws") != 0)
        return import_object(name);
    std::string text;
    if (!read_whole_file(name.c_str(), &text))
        return import_refused(name, strerror(errno));
    return import_scene(name, text);
}
