// Pictures that must lie beside the written file.
#include "model.h"
#include "picture_file.h"

#include <algorithm>
#include <map>
#include <set>

namespace {

bool is_absolute(const std::string &name)
{
    return !name.empty() && (name[0] == '/' || name[0] == '\\' || name.find(':') == 1);
}

bool is_web_picture(const std::string &bytes)
{
    return bytes.compare(0, 3, "\xFF\xD8\xFF") == 0 ||
           bytes.compare(0, 8, "\x89PNG\r\n\x1a\n") == 0;
}

std::string file_part(const std::string &name) { return name.substr(name.find_last_of("/\\") + 1); }

class placer {
public:
    placer(export_files &files, const std::string &filename)
        : files_(files), folder_(vesk_filename_get_path(filename.c_str()))
    {
    }

    // The name of a new file beside the written one.
    std::string add(const std::string &wanted, const std::string &bytes)
    {
        const std::size_t dot = std::min(wanted.rfind('.'), wanted.size());
        for (int number = 0;; ++number) {
            std::string name = number == 0 ? wanted
                                           : wanted.substr(0, dot) + "_" + std::to_string(number) +
                                                 wanted.substr(dot);
            const std::string path = vesk_filename_concat_path_file(folder_.c_str(), name.c_str());
            std::string there;
            const bool taken =
                names_.count(name) != 0 || (read_file(path, &there) && there != bytes);
            if (taken)
                continue;
            names_.insert(name);
            if (there.empty()) {
                files_.begin(path);
                files_.write(bytes);
            }
            return name;
        }
    }

private:
    export_files &files_;
    const std::string folder_;
    std::set<std::string> names_;
};

} // namespace

void place_pictures(model &scene, export_files &files, const std::string &filename,
                    const model_wishes &wishes)
{
    placer beside(files, filename);
    std::map<int, std::string> placed; // by texture
    int missing = 0;
    for (model_material &m : scene.materials) {
        if (m.picture.empty())
            continue;
        if (m.texture < 0) {
            m.picture = is_absolute(m.picture) ? file_part(m.picture) : m.picture;
            continue;
        }
        const auto [entry, fresh] = placed.emplace(m.texture, m.picture);
        if (fresh) {
            const std::string bytes = picture_bytes_of(m.texture);
            const bool fits =
                wishes.keeping != model_wishes::NAMED_FOR_WEB || is_web_picture(bytes);
            if (fits && is_absolute(m.picture) && !bytes.empty()) {
                entry->second = beside.add(file_part(m.picture), bytes);
            } else if (const std::string png = fits ? "" : picture_file_of(m.texture).bytes;
                       !png.empty()) {
                entry->second = beside.add(base_name(file_part(m.picture)) + ".png", png);
            } else if (is_absolute(m.picture) || !fits) {
                entry->second = file_part(m.picture);
                ++missing;
            }
        }
        m.picture = entry->second;
    }
    vesk_report_loss(missing, "textures");
}
