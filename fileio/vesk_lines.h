#ifndef VESK_FILEIO_VESK_LINES_H
#define VESK_FILEIO_VESK_LINES_H

// A model file's text as lines of words. Blocks of numbers are scanned across lines: whoever scans
// one moves `place` on and counts its lines.

#include "base/file_text.h"
#include "base/tokens.h"

#include <string>

constexpr int line_length = 254; // of a longer line the rest is the next line, see split

class vesk_lines {
public:
    // `first`: the place after the file's first word.
    vesk_lines(const file_text &text, const char *first);

    const char *place;
    int number = 0; // of the line, from 1

    [[nodiscard]] const char *end() const { return end_; }
    // Whether lines are echoed on the debug output.
    [[nodiscard]] bool echoed() const { return echoed_; }
    // Share of the file that was read by now.
    [[nodiscard]] double fraction() const;

    // The next line; false at the end of the file.
    bool next();
    // The line's first word; false, with the word of an earlier line left in place, on a blank
    // line.
    bool first_word(std::string *word);
    // The text after the first word, and the whole number there, 0 for none.
    [[nodiscard]] const char *values() const { return values_; }
    [[nodiscard]] int integer() const;

    // The real numbers after the first word; one that is missing leaves its place and those after
    // it as they are.
    void reals(float *out, int n) const;

    // Splits the line into words and returns how many there are. The rest of a longer line belongs to
    // it when it has a text in quotes: those may be of any length.
    int split();
    [[nodiscard]] const char *word(int i) const { return words_[i]; }
    // 0 when the word holds no number.
    [[nodiscard]] float real(int word) const;

private:
    const char *begin_;
    const char *end_;
    const bool echoed_;
    char buffer_[line_length + 2];
    const char *values_ = buffer_;
    std::string long_line_;
    char *words_[VESK_MAX_TOKENS]; // into the buffer, or the long line
};

#endif
