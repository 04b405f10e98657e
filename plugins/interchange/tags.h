// XML as far as 3MF needs it: tags and their attributes. Of its own, because expat, which copies
// each attribute, makes the import of a mesh of a million vertices take 1.5 times as long.
#ifndef INTERCHANGE_TAGS_H
#define INTERCHANGE_TAGS_H

#include <string>

class tag_reader {
public:
    explicit tag_reader(const std::string &text) : text_(text) {}

    std::string name; // without a prefix
    bool closes = false, empty = false;

    bool next();
    // Bytes that were read by now.
    [[nodiscard]] std::size_t place() const { return at_; }

    // Of an attribute; "" when there is none.
    [[nodiscard]] std::string text(const char *attribute) const;
    [[nodiscard]] float real(const char *attribute, float fallback) const;
    [[nodiscard]] int whole(const char *attribute, int fallback) const;

private:
    void take(std::size_t begin, std::size_t end);
    bool find(const char *attribute, std::size_t *begin, std::size_t *end) const;
    template <class N>
    N number(const char *attribute, N fallback) const;

    const std::string &text_;
    std::size_t at_ = 0, attributes_ = 0, end_ = 0;
};

#endif
