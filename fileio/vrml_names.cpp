#include "fileio/vrml_names.h"

#include <string_view>

std::string vrml1_node_name(const std::string &name)
{
    std::string out;
    for (const char c : name) {
        const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        const bool digit = c >= '0' && c <= '9';
        out += letter || (digit && !out.empty()) ? c : '_';
    }
    return out;
}

std::string vrml2_node_name(const std::string &name)
{
    constexpr std::string_view never = "\"#',.[\\]{}\x7F";
    constexpr std::string_view not_first = "+-0123456789";
    constexpr std::string_view words[] = {"DEF",   "EXTERNPROTO", "FALSE", "IS",   "NULL",
                                          "PROTO", "ROUTE",       "TO",    "TRUE", "USE"};
    std::string out;
    for (const char c : name) {
        const bool plain = static_cast<unsigned char>(c) > ' ' && never.find(c) == never.npos;
        out += plain && (!out.empty() || not_first.find(c) == not_first.npos) ? c : '_';
    }
    for (const std::string_view word : words)
        if (out == word)
            out += '_';
    return out;
}
