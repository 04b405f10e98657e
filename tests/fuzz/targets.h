#ifndef VESK_TESTS_FUZZ_TARGETS_H
#define VESK_TESTS_FUZZ_TARGETS_H

// What the fuzzers feed: every reader of bytes that may come from elsewhere.

#include <string>
#include <string_view>
#include <vector>

struct fuzz_target {
    const char *name;   // VESK_FUZZ_TARGET
    const char *file;   // of the input, for readers of files; null for others
    const char *before; // comes before each input: what a mutation would only destroy
    void (*run)(const char *file, std::string_view bytes);
};

const std::vector<fuzz_target> &fuzz_targets();

// Small inputs that the reader takes, one a text.
std::vector<std::string> fuzz_seeds(const fuzz_target &target);

// Ends the program with a finding.
[[noreturn]] void fuzz_fail(const std::string &text);
// A tree that a reader gave: sound, and freed.
void fuzz_take(struct object *top);
void fuzz_write(const std::string &file, std::string_view bytes);

// What is no file of a model or a picture; see targets_program.cpp.
void fuzz_gltf(const char *file, std::string_view bytes);
void fuzz_stream(const char *file, std::string_view bytes);
void fuzz_arguments(const char *file, std::string_view bytes);
void fuzz_recovery(const char *file, std::string_view bytes);

// An archive of one file, not compressed.
std::string zip_of(const std::string &name, std::string_view content);

#endif
