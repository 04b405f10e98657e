#ifndef VESK_BASE_FILE_TEXT_H
#define VESK_BASE_FILE_TEXT_H

#include <cstddef>
#include <cstdlib>
#include <memory>

// The bytes of a file, read whole (not mapped: another program may cut a mapped file short).
struct file_text {
    struct release {
        void operator()(char *block) const { std::free(block); }
    };
    std::unique_ptr<char[], release> bytes;
    std::size_t size = 0;

    [[nodiscard]] const char *begin() const { return bytes.get(); }
    [[nodiscard]] const char *end() const { return bytes.get() + size; }
};

// False when the file cannot be opened; errno tells why. Where reading fails the text ends.
bool file_text_read(const char *filename, file_text *text);

#endif
