#ifndef VESK_BASE_CURRENT_FILE_H
#define VESK_BASE_CURRENT_FILE_H

#include <string>

// The file being read or written last: reader and writer record it, texture names are made
// relative to it. A plain value, so that autosave can keep it and put it back.
struct current_file_t {
    std::string name; // as given
    std::string path; // its directory
    std::string file; // its base name
};

current_file_t &current_file();
void current_file_set(const char *name);

#endif
