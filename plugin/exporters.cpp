#include "plugin/exporters.h"

#include "base/crash_guard.h"
#include "base/file_report.h"
#include "base/filename.h"
#include "base/foreign.h"
#include "base/messages.h"
#include "base/progress.h"
#include "fileio/export_3ds.h"
#include "fileio/export_commands.h"
#include "fileio/vesk_writer.h"
#include "model/ear_cut.h"
#include "model/world.h"
#include "plugin/format_table.h"

#include <algorithm>
#include <string>
#include <strings.h>

namespace {

listitem *exporters = nullptr;

// A copy: the current file stays.
int write_copy(const char *filename)
{
    return vesk_write_model(filename, vesk_get_world(), filename);
}

} // namespace

vesk_exporter_t *vesk_register_file_exporter(const char *suffix, const char *description,
                                             vesk_export_func_t write, const char *info)
{
    return format_table_add<vesk_exporter_t>(&exporters, suffix, description, info, write);
}

vesk_exporter_t *vesk_get_file_exporter_by_suffix(const char *suffix)
{
    vesk_exporter_t *found = nullptr;
    for (vesk_exporter_t *exporter : each<vesk_exporter_t>(exporters))
        if (strcasecmp(exporter->suffix, suffix) == 0)
            found = exporter;
    return found;
}

int vesk_export_file(const char *filename)
{
    const std::string name = filename; // the messages let scripts run
    const char *suffix = string_get_suffix(name.c_str());
    if (suffix == nullptr) {
        windows_message_dialog(
            "export file: I need a filename with a suffix (e.g. file.vesk) - got '%s'",
            name.c_str());
        return 0;
    }
    const vesk_exporter_t *exporter = vesk_get_file_exporter_by_suffix(suffix);
    if (exporter == nullptr) {
        windows_message_dialog("Sorry, there is no geometry exporter for %s files\n%s", suffix,
                               format_table_text<vesk_exporter_t>(exporters, "export").c_str());
        return 0;
    }
    vesk_report_export(name.c_str());
    int written = 0;
    fault_t fault;
    const bool whole = guarded_with_recovery(
        [&] {
            const foreign_scope scope(code_of_function(exporter->write));
            written = exporter->write(name.c_str());
        },
        &fault);
    vesk_progress_end();
    if (!whole || written == 0)
        last_file_report().written.clear();
    if (whole)
        return written;
    windows_message_dialog(
        "The exporter for %s files failed on %s\n%s", exporter->suffix, name.c_str(),
        fault.kind == fault_t::CODE ? vesk_exception_get_message(fault.code) : fault.what.c_str());
    return 0;
}

int vesk_cut_polygon(const point3_t *corners, int count, int *out)
{
    if (count < 3)
        return 0;
    std::vector<int> ears;
    cut_ears(corners, count, ears);
    std::copy(ears.begin(), ears.end(), out);
    return static_cast<int>(ears.size() / 3);
}

void vesk_register_internal_file_exporters(void)
{
    const struct {
        const char *suffix, *description;
        vesk_export_func_t write;
    } rows[] = {
        {".vesk", "VESK files", write_copy},       {".3ds", "3D Studio files", write_3ds},
        {".dxf", "DXF files", write_dxf},          {".wrl", "VRML 2.0 files", write_vrml2_tree},
        {".iv", "Inventor files", write_inventor}, {".pov", "POV files", write_POV},
        {".rib", "RIB files", write_rib},          {".tri", "Alias/Triangle files", write_tri},
    };
    for (const auto &row : rows)
        vesk_register_file_exporter(row.suffix, row.description, row.write,
                                    "internal exporter, version 3.6");
}

const listitem *file_exporters() { return exporters; }

void exporters_reset_for_test() { format_table_free<vesk_exporter_t>(&exporters); }
