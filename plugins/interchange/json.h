// JSON texts under construction. Of its own: the JSON library of the distribution has only its own
// layouts, all on one line or all apart, and writes 1 as 1.0; files would change.
#ifndef INTERCHANGE_JSON_H
#define INTERCHANGE_JSON_H

#include "text.h"

inline std::string json_text(const std::string &text) { return vesk_json_text(text.c_str()); }

// The elements of an array, or the fields of an object.
class json_list {
public:
    json_list() = default;
    // With `lines` each element begins a line.
    explicit json_list(bool lines) : lines_(lines) {}

    [[nodiscard]] int count() const { return count_; }

    // An element, in pieces of its text; a number is such a piece.
    template <class... A>
    void add(const A &...pieces)
    {
        if (count_++ > 0)
            out_.add(lines_ ? ",\n" : ", ");
        out_.add(pieces...);
    }
    template <class... A>
    void field(const char *name, const A &...pieces)
    {
        add('"', name, "\": ", pieces...);
    }
    // Nothing for an empty array.
    void field_of_array(const char *name, const json_list &elements)
    {
        if (elements.count_ > 0)
            field(name, elements.array());
    }

    [[nodiscard]] std::string array() const { return within("[", "]"); }
    [[nodiscard]] std::string object() const { return within("{", "}"); }

private:
    [[nodiscard]] std::string within(const char *open, const char *close) const
    {
        const char *end = lines_ ? "\n" : "";
        return open + (end + out_.text) + end + close;
    }

    bool lines_ = false;
    int count_ = 0;
    text_out out_;
};

#endif
