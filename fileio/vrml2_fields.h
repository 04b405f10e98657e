#ifndef VESK_FILEIO_VRML2_FIELDS_H
#define VESK_FILEIO_VRML2_FIELDS_H

// Nodes of a VRML 2.0 world with the values that they have where they stand: within an instance of a
// PROTO some are those of the instance.

#include "fileio/vrml2_parse.h"

#include <deque>
#include <map>
#include <string>
#include <vector>

// A place in a PROTO's instance; null outside of any.
struct vrml2_scope {
    const vrml2_node *instance;
    const vrml2_scope *outer; // where the instance stands
};

// What is left out, by name, and what a small file may grow to: by USE and PROTO a few lines say as
// much as one likes.
struct vrml2_account {
    vrml2_account();
    // A file comes in.
    void grow(std::size_t size);
    void left_out(std::string_view what) { ++left_out_counts[std::string(what)]; }
    // Charges for nodes, characters that are read again, points that are made.
    bool take_node() { return --nodes >= 0 || fail(); }
    bool take_text(std::size_t size)
    {
        return (text -= static_cast<long long>(size)) >= 0 || fail();
    }
    bool take_points(long long count) { return (points -= count) >= 0 || fail(); }
    bool fail()
    {
        failed = true;
        return false;
    }

    std::map<std::string, int> left_out_counts; // types of nodes
    long long nodes, text, points;
    bool failed = false;
    std::deque<vrml2_scope> scopes; // of all instances
};

class vrml2_fields {
public:
    vrml2_fields() = default;
    // An instance of a PROTO is the first node of its body.
    vrml2_fields(const vrml2_node *node, const vrml2_scope *scope, vrml2_account *account);

    [[nodiscard]] bool none() const { return node_ == nullptr; }
    [[nodiscard]] std::string_view type() const
    {
        return none() ? std::string_view() : node_->type;
    }
    [[nodiscard]] const vrml2_node *node() const { return node_; }
    [[nodiscard]] std::string_view name() const { return name_; } // of the instance, or the node

    [[nodiscard]] bool has(const char *name) const { return find(name).value != nullptr; }
    [[nodiscard]] std::vector<float> numbers(const char *name) const;
    [[nodiscard]] std::vector<int> integers(const char *name) const;
    [[nodiscard]] float number(const char *name, float fallback) const;
    [[nodiscard]] bool flag(const char *name, bool fallback) const;
    [[nodiscard]] std::vector<std::string> texts(const char *name) const;
    // As it stands in the file: the same text gives the same values.
    [[nodiscard]] std::string_view raw(const char *name) const;
    // The first node of a field; none() without.
    [[nodiscard]] vrml2_fields child(const char *name) const;
    [[nodiscard]] std::vector<vrml2_fields> children(const char *name) const;

private:
    struct found_t {
        const vrml2_value *value;
        const vrml2_scope *scope;
    };
    [[nodiscard]] found_t find(std::string_view name) const;

    const vrml2_node *node_ = nullptr;
    const vrml2_scope *scope_ = nullptr;
    vrml2_account *account_ = nullptr;
    std::string_view name_;
};

#endif
