#ifndef VESK_BASE_CURRENT_FILE_H
#define VESK_BASE_CURRENT_FILE_H

#include <string>

// The model file that was read or written last: the exported reader and writer record it, and
// write_vesk_object makes texture names relative to it.
struct current_file_t {
    std::string name; // as given
    std::string path; // its directory
    std::string file; // its base name
};

const current_file_t &current_file();
void current_file_set(const char *name); // "" for none

// The model file that the scene is edited under: saved as, or read into an empty world; "" for none.
// Unlike the file above it stays when another one is imported.
const std::string &edited_file();
void edited_file_set(const std::string &name);

#endif
