#ifndef VESK_BASE_FILE_REPORT_H
#define VESK_BASE_FILE_REPORT_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* Remarks of importers and exporters about the file at hand, beside success and failure. They are kept
   until the next import, shown by "import_report" and written by -report. */

/* A complaint about the file that is being read: a part of it was left out or put right.
   `line` counts from 1; 0 stands for the whole file. Formats into 2048 bytes. */
VESK_API void vesk_report_warning(int line, const char *format, ...) VESK_PRINTF(2, 3);

/* An export begins, with no losses so far. */
VESK_API void vesk_report_export(const char *filename);

/* A loss: the number of things ("lines") that the written file cannot hold. Nothing for 0. */
VESK_API void vesk_report_loss(int count, const char *what);

/* The losses so far, for the end of a message: " - 12 lines were left out: STL has no lines",
   or "". In one buffer that each call overwrites. */
VESK_API const char *vesk_report_losses(const char *format);

/* Something that the written file holds in another form ("polygons cut into triangles"); the shape
   is as it was. Nothing for 0. */
VESK_API void vesk_report_note(int count, const char *what);

VESK_END_DECLS

#ifdef VESK_INTERNAL
#include <string>
#include <vector>

struct file_report {
    struct complaint {
        int line;
        std::string text;
    };
    struct count {
        int number;
        std::string what;
    };
    struct texture {
        std::string name;  // as the model gives it
        std::string found; // path, "" when there is none
    };
    std::string file;   // that was read
    std::string format; // of its importer
    std::string unit;   // of its numbers, which are taken as they are; "" when it says none
    bool read = false;
    std::string error; // why it was not
    int objects = 0, vertices = 0, surfaces = 0, lights = 0, materials = 0;
    double seconds = 0;
    std::vector<texture> textures;
    std::vector<std::string> images; // that lay within the file and were written beside it
    std::vector<complaint> warnings;
    size_t warnings_in_all = 0;                // more than are kept
    std::vector<std::string> merged_materials; // "name = name of the equal one"
    std::string written;                       // the export, "" for none
    std::vector<count> losses, notes;
};

// The report of the last import, and of the exports since.
file_report &last_file_report();
// Starts a new one.
void file_report_begin(const char *file);
// A message box while the file is read: the first one is the reason when nothing comes of it.
void file_report_box(const std::string &text);
void file_report_texture(const char *name, const char *found);
void file_report_merged(const char *name, const char *into);

// As a JSON text with a line for each field.
std::string file_report_json(const file_report &report);
#endif

#endif
