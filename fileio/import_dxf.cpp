#include "fileio/import_dxf.h"

#include "base/atomic_file.h"
#include "base/file_report.h"
#include "base/progress.h"
#include "fileio/dxf_nodes.h"
#include "fileio/import_mesh.h"

#include <cerrno>
#include <cstring>

object_t *vesk_import_dxf(const char *filename)
{
    const std::string name = filename;
    std::string text;
    if (!read_whole_file(name.c_str(), &text))
        return import_refused(name, strerror(errno));
    if (text.substr(0, 64).find("Binary DXF\r\n\x1a") != std::string::npos)
        return import_refused(name, "it is a binary DXF file; save it as a DXF text");
    const dxf_drawing drawing = dxf_read(text);
    progress_t progress(static_cast<double>(drawing.entities.size()));
    dxf_nodes nodes(drawing);
    for (std::size_t i = 0; i < drawing.entities.size() && !nodes.too_large(); ++i) {
        i = nodes.add(i);
        if (!progress.step(static_cast<double>(i)))
            return import_cancelled();
    }
    if (nodes.too_large())
        return import_refused(name, "its blocks repeat each other beyond what can be held");
    for (const auto &[type, count] : nodes.left_out())
        vesk_report_warning(0, "%d %s have no counterpart here and were left out", count,
                            type.c_str());
    if (!drawing.complete)
        vesk_report_warning(0, "the file ends too early");
    last_file_report().unit = dxf_unit_name(drawing.units);
    object_t *top = nodes.make_tree(import_base_name(name.c_str()));
    return top != nullptr ? top : import_refused(name, "there is nothing in it that can be shown");
}
