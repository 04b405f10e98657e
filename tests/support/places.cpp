#include "tests/support/places.h"

std::string source_file(const std::string &name) { return VESK_SOURCE_DIR "/" + name; }
std::string built_file(const std::string &name) { return VESK_BINARY_DIR "/" + name; }
