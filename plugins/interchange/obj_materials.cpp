#include "obj_materials.h"

#include "text.h"
#include "work.h"

#include <algorithm>
#include <set>
#include <sys/stat.h>

namespace {

void take_colour(const std::vector<std::string> &words, float *colour)
{
    for (std::size_t i = 0; i < 3 && words.size() > 3; ++i)
        colour[i] = obj_number(words[i + 1]);
}

// "map_Kd [-s u v w] [-o u v w] [other options] name": names may hold blanks.
void take_picture(const std::vector<std::string> &words, obj_material *m)
{
    std::size_t at = 1;
    while (at < words.size() && words[at][0] == '-') {
        float *target = words[at] == "-s" ? m->repeat : words[at] == "-o" ? m->offset : nullptr;
        const std::size_t first = ++at;
        while (at < words.size() && at - first < 3 &&
               words[at].find_first_not_of("0123456789+-.eE") == std::string::npos) {
            if (target != nullptr && at - first < 2)
                target[at - first] = obj_number(words[at]);
            ++at;
        }
        if (at == first) // "-clamp on" and the like
            ++at;
    }
    m->picture.clear();
    for (; at < words.size(); ++at)
        m->picture += (m->picture.empty() ? "" : " ") + words[at];
}

class material_reader {
public:
    explicit material_reader(std::map<std::string, obj_material> &materials) : all_(materials) {}
    std::set<std::string> unread; // keywords of pictures for bumps, shine and the like
    ~material_reader() { finish(); }

    void line(const std::vector<std::string> &words)
    {
        const std::string &key = words[0];
        if (key == "newmtl") {
            finish();
            name_.clear();
            for (std::size_t i = 1; i < words.size(); ++i)
                name_ += (i > 1 ? " " : "") + words[i];
            values_ = material_values();
            current_ = obj_material();
            open_ = true;
        } else if (key == "Kd") {
            take_colour(words, values_.diffuse);
        } else if (key == "Ka") {
            take_colour(words, values_.ambient);
        } else if (key == "Ks") {
            take_colour(words, values_.specular);
        } else if (key == "Ke") {
            take_colour(words, values_.emissive);
        } else if (key == "map_Kd") {
            take_picture(words, &current_);
        } else if (key.compare(0, 4, "map_") == 0 || key == "bump" || key == "disp" ||
                   key == "decal" || key == "refl") {
            unread.insert(key);
        } else if (words.size() > 1) {
            const float value = obj_number(words[1]);
            if (key == "Ns")
                values_.shininess = value < 0 ? 0 : value > 128 ? 128 : value;
            else if (key == "d")
                values_.transparency = 1 - value;
            else if (key == "Tr")
                values_.transparency = value;
        }
    }

private:
    void finish()
    {
        if (!open_)
            return;
        vesk_material_set_name(&values_, name_.c_str());
        current_.palette_index = vesk_palette_get_new_material_index(&values_);
        all_[name_] = current_;
        open_ = false;
    }

    std::map<std::string, obj_material> &all_;
    std::string name_;
    material_values values_;
    obj_material current_;
    bool open_ = false;
};

// `line` of the OBJ file names the library.
void read_materials(std::string &text, const std::string &name, int line,
                    std::map<std::string, obj_material> &materials)
{
    plain_lines(text);
    material_reader reader(materials);
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        const std::vector<std::string> words = words_of(text.substr(at, end - at));
        if (!words.empty() && words[0][0] != '#')
            reader.line(words);
        at = end + 1;
    }
    for (const std::string &key : reader.unread)
        vesk_report_warning(line, "pictures by %s in %s are not read", key.c_str(), name.c_str());
}

constexpr off_t most_bytes = off_t{1} << 30; // a library has a few thousand

// Only a file: a device or a pipe might never end.
bool read_library(const std::string &obj_file, std::string name, std::string *text)
{
    std::replace(name.begin(), name.end(), '\\', '/');
    const std::string folder = vesk_filename_get_path(obj_file.c_str());
    const std::string path =
        name[0] == '/' ? name : vesk_filename_concat_path_file(folder.c_str(), name.c_str());
    struct stat about = {};
    return stat(path.c_str(), &about) == 0 && S_ISREG(about.st_mode) &&
           about.st_size < most_bytes && read_file(path, text);
}

} // namespace

void obj_read_materials(const std::string &obj_file, const std::string &name, int line,
                        std::map<std::string, obj_material> &materials)
{
    std::string text;
    if (name.empty() || read_library(obj_file, name, &text)) {
        read_materials(text, name, line, materials);
        return;
    }
    // A name may hold blanks; else they part several.
    std::vector<std::string> missing;
    const std::vector<std::string> words = words_of(name);
    for (const std::string &word : words) {
        text.clear();
        if (words.size() > 1 && read_library(obj_file, word, &text))
            read_materials(text, word, line, materials);
        else
            missing.push_back(word);
    }
    if (missing.size() == words.size())
        missing.assign(1, name);
    for (const std::string &word : missing)
        vesk_report_warning(line, "the materials %s were not found", word.c_str());
}
