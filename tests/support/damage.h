#ifndef VESK_TESTS_SUPPORT_DAMAGE_H
#define VESK_TESTS_SUPPORT_DAMAGE_H

#include <random>
#include <string>

// A number from the environment: how many files, which seed.
int damage_setting(const char *name, int fallback);

// A third of a number of cases where sanitizers look on: they see in those what they see in all.
int fewer_when_checked(int all);

// The bytes of a file after one to four accidents: bytes changed, lost, doubled, or the end cut off.
std::string damaged(std::string bytes, std::mt19937 &random);

#endif
