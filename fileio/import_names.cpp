#include "fileio/import_names.h"

#include "app/file_report.h"
#include "fileio/tree_reader.h"
#include "fileio/vesk_format.h"
#include "model/alloc_internal.h"
#include "model/each.h"
#include "model/palette.h"

#include <algorithm>
#include <string>

namespace {

// Without control characters, which would end the line or the word.
std::string one_line(const char *text)
{
    std::string line = text;
    for (char &c : line)
        if (static_cast<unsigned char>(c) < ' ' || c == 0x7F)
            c = ' ';
    return line;
}

// Takes a whole character off the end.
void shorten(std::string &text)
{
    constexpr unsigned char further = 0x80; // what is not the first byte of a character
    while (text.size() > 1 && (static_cast<unsigned char>(text.back()) & 0xC0) == further)
        text.pop_back();
    text.pop_back();
}

// Puts a name whose line fits; `write` appends the line, its end included. Returns 1 when the name
// had to be shortened.
template <class Write>
int put(char **slot, std::string name, Write &&write)
{
    constexpr std::size_t most = line_length;
    const std::size_t before = name.size();
    name.resize(std::min(before, most)); // the rest is no more than a hundred steps
    std::string line;
    while (write(line, name), !name.empty() && line.size() > most) {
        shorten(name);
        line.clear();
    }
    if (*slot != name)
        text_set(slot, name.c_str());
    return name.size() < before ? 1 : 0;
}

} // namespace

void names_for_model_file(object_t *top, int first_material)
{
    int shortened = 0;
    for_each_object(top, [&](object_t *object) {
        if (object->name == nullptr)
            return;
        shortened += put(&object->name, one_line(object->name),
                         [](std::string &line, const std::string &name) {
                             line += "name ";
                             append_quoted(line, name.c_str());
                             line += '\n';
                         });
    });
    for (int i = first_material; i < vesk_get_num_palette(); ++i) {
        material *m = vesk_palette_get_material(i);
        if (m == nullptr || m->name == nullptr)
            continue;
        std::string plain = one_line(m->name);
        for (char &c : plain)
            c = c == '"' ? '\'' : c == '\\' ? '/' : c;
        shortened += put(&m->name, plain, [&](std::string &line, const std::string &name) {
            append_material(line, *m, name.c_str());
        });
    }
    if (shortened > 0)
        vesk_report_warning(0, "%d names are too long and were shortened", shortened);
}
