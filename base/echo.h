#ifndef VESK_BASE_ECHO_H
#define VESK_BASE_ECHO_H

#include "base/types.h"

#include <string>
#include <vector>

// The console line that repeats a gesture of the mouse: the result of a drag or a click,
// as a command and its arguments. The scripts write it ("echo_command").
void echo_command(const std::vector<std::string> &words);

// A console line about a gesture that no command repeats.
void echo_note(const std::string &text);

// As few digits as give the very same number back.
std::string echo_number(float value);
std::string echo_number(double value);
// The three of a point, as words.
std::vector<std::string> echo_point(const point3_t &p);

#endif
