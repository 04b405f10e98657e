#include "text.h"

#include <algorithm>
#include <cctype>
#include <cstring>

std::string xml_text(const std::string &text)
{
    std::string out;
    for (const char *p = vesk_utf8(text.c_str()); *p != '\0'; ++p) {
        switch (*p) {
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '&':
            out += "&amp;";
            break;
        case '"':
            out += "&quot;";
            break;
        default:
            out += *p;
        }
    }
    return out;
}

std::string url_text(const std::string &text)
{
    static const char digits[] = "0123456789ABCDEF";
    std::string out;
    for (const char *p = vesk_utf8(text.c_str()); *p != '\0'; ++p) {
        const auto byte = static_cast<unsigned char>(*p);
        if (std::isalnum(byte) != 0 || std::strchr("-_.~/", *p) != nullptr) {
            out += *p;
        } else {
            out += '%';
            out += digits[byte >> 4];
            out += digits[byte & 15];
        }
    }
    return out;
}

void plain_lines(std::string &text)
{
    if (text.compare(0, 3, "\xEF\xBB\xBF") == 0)
        text.erase(0, 3);
    if (text.find('\n') == std::string::npos)
        std::replace(text.begin(), text.end(), '\r', '\n');
}

std::string base_name(const std::string &filename)
{
    const std::string name = vesk_filename_get_file(filename.c_str());
    return name.substr(0, name.rfind('.'));
}
