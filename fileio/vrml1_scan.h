#ifndef VESK_FILEIO_VRML1_SCAN_H
#define VESK_FILEIO_VRML1_SCAN_H

// VRML 1.0 texts as words, and a node's fields as ranges of them.

#include "base/progress.h"

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct vrml_word {
    enum kind_t : std::uint8_t { NAME, NUMBER, TEXT, SIGN } kind;
    std::string_view text; // of a TEXT without its quotes
};

// With progress; when the user cancels, the words found by then.
std::vector<vrml_word> vrml_words(std::string_view text, progress_t &progress);

// A range of words.
struct vrml_range {
    std::size_t begin = 0, end = 0;
};

// The fields of a node that has no children, by name.
class vrml_fields {
public:
    explicit vrml_fields(const std::vector<vrml_word> &words) : words_(words) {}
    void add(std::string_view name, vrml_range range) { fields_[name] = range; }

    [[nodiscard]] bool has(std::string_view name) const { return fields_.contains(name); }
    // All numbers of a field.
    [[nodiscard]] std::vector<float> numbers(std::string_view name) const;
    [[nodiscard]] std::vector<int> integers(std::string_view name) const;
    [[nodiscard]] float number(std::string_view name, float fallback) const;
    // The first word that is a name or a text; "" for none.
    [[nodiscard]] std::string_view word(std::string_view name) const;
    // Whether a name stands in the field, among others ("(SIDES | TOP)").
    [[nodiscard]] bool mentions(std::string_view name, std::string_view word) const;

private:
    [[nodiscard]] std::span<const vrml_word> values(std::string_view name) const;

    const std::vector<vrml_word> &words_;
    std::map<std::string_view, vrml_range> fields_;
};

#endif
