#include "fileio/import_names.h"

#include "base/file_report.h"
#include "base/utf8.h"
#include "fileio/vesk_format.h"
#include "fileio/vesk_lines.h"
#include "model/alloc_internal.h"
#include "model/each.h"

#include <algorithm>
#include <string>

namespace {

bool fits(const std::string &name)
{
    std::string line = "name ";
    append_quoted(line, name.c_str());
    line += '\n';
    return line.size() <= std::size_t{line_length};
}

} // namespace

void names_for_model_file(object_t *top)
{
    int shortened = 0;
    for_each_object(top, [&](object_t *object) {
        if (object->name == nullptr)
            return;
        std::string name = object->name;
        for (char &c : name)
            if (static_cast<unsigned char>(c) < ' ' || c == 0x7F)
                c = ' ';
        const std::size_t whole = name.size();
        name.resize(std::min(whole, std::size_t{line_length}));
        while (!name.empty() && !fits(name))
            name.resize(utf8_whole(name.c_str(), name.size() - 1));
        if (object->name != name)
            text_set(&object->name, name.c_str());
        shortened += name.size() < whole ? 1 : 0;
    });
    if (shortened > 0)
        vesk_report_warning(0, "%d names are too long and were shortened", shortened);
}
