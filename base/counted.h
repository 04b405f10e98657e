#ifndef VESK_BASE_COUNTED_H
#define VESK_BASE_COUNTED_H

#include <string>
#include <string_view>

// A count with its word, of which the plural is given: "1 ring", "3 rings", "1 vertex".
std::string counted(int count, std::string_view plural);

#endif
