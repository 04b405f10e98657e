#ifndef VESK_TESTS_SUPPORT_PLACES_H
#define VESK_TESTS_SUPPORT_PLACES_H

#include <string>

// Files of the source tree and of the build tree, by their names in it. Only places.cpp is compiled
// with the folders' names, so that a compiler cache serves every clone.
std::string source_file(const std::string &name);
std::string built_file(const std::string &name);

#endif
