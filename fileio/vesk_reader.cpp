#include "fileio/vesk_reader.h"

#include "base/current_file.h"
#include "base/messages.h"
#include "fileio/tree_reader.h"
#include "fileio/vesk_messages.h"
#include "fileio/vesk_old.h"
#include "fileio/vesk_place.h"
#include "model/normals.h"
#include "model/textures/textures.h"

#include <algorithm>
#include <string_view>

namespace {

std::optional<unsigned> revision_of(const file_text &text, const char **rest)
{
    return vesk_revision_of(std::string_view(text.begin(), text.size), rest);
}

} // namespace

object_t *readfile_vesk2(const char *filename)
{
    const std::string name = filename; // may be a text that the current file holds
    current_file_set(name.c_str());
    return vesk_read_model(name);
}

object_t *vesk_read_model(const std::string &filename)
{
    const std::string name = filename; // the messages let scripts run
    complaints_clear();
    file_text text;
    if (!file_text_read(name.c_str(), &text)) {
        windows_message_dialog("Load VESK file:\n\ncan't open file %s for reading\n", name.c_str());
        return nullptr;
    }
    const char *first = nullptr;
    const std::optional<unsigned> revision = revision_of(text, &first);
    if (!revision) {
        tell_not_valid(name.c_str());
        return nullptr;
    }
    if (*revision > vesk_revision) {
        tell_newer_version(name.c_str());
        return nullptr;
    }
    if (*revision < vesk_revision) {
        text = {};
        return readfile_vesk_old2(name.c_str());
    }

    display_message("Loading VESK file...");
    const texture_load_scope one_box;
    bool moved_bar = false;
    object_t *top = read_tree(text, first, name.c_str(), &moved_bar);
    text = {};
    if (!top) {
        if (moved_bar)
            set_progress_bar(0);
        display_message("no objects loaded");
        return nullptr;
    }
    display_message("calculating normals...");
    complain_of_numbers(top);
    object_calc_normals_force(top);
    tell_load_done();
    return top;
}

object_t *vesk_import_vesk(const char *filename) { return readfile_vesk2(filename); }

object_t *vesk_object_of_text(std::string_view text)
{
    complaints_clear();
    file_text copy;
    copy.size = text.size();
    copy.bytes.reset(static_cast<char *>(std::malloc(text.size() + 1)));
    if (!copy.bytes)
        return nullptr;
    std::copy(text.begin(), text.end(), copy.bytes.get());
    const char *first = nullptr;
    if (revision_of(copy, &first) != vesk_revision)
        return nullptr;
    const texture_load_scope one_box;
    bool moved_bar = false;
    object_t *top = read_tree(copy, first, "", &moved_bar);
    if (moved_bar)
        set_progress_bar(0);
    if (top) {
        complain_of_numbers(top);
        object_calc_normals_force(top);
    }
    return top;
}
