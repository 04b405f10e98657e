#include "base/utf8.h"

#include <algorithm>
#include <cstring>
#include <string>

size_t utf8_letter(const char *text)
{
    const auto byte = [text](size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned first = byte(0);
    if (first < 0x80)
        return first == 0 ? 0 : 1;
    const size_t length = first >= 0xC2 && first <= 0xDF   ? 2
                          : first >= 0xE0 && first <= 0xEF ? 3
                          : first >= 0xF0 && first <= 0xF4 ? 4
                                                           : 0;
    for (size_t i = 1; i < length; ++i)
        if (byte(i) < 0x80 || byte(i) > 0xBF) // the text's end, too
            return 0;
    if (length < 3)
        return length;
    const unsigned second = byte(1);
    const bool odd = (first == 0xE0 && second < 0xA0) || (first == 0xED && second > 0x9F) ||
                     (first == 0xF0 && second < 0x90) || (first == 0xF4 && second > 0x8F);
    return odd ? 0 : length;
}

size_t utf8_whole(const char *text, size_t most)
{
    size_t end = std::min(std::strlen(text), most);
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    return end;
}

const char *vesk_utf8(const char *text)
{
    static std::string out;
    std::string letters;
    for (const char *p = text == nullptr ? "" : text; *p != '\0';) {
        const auto byte = static_cast<unsigned char>(*p);
        const size_t length = utf8_letter(p);
        if (length > 1) {
            letters.append(p, length);
        } else if (byte >= 0x80) {
            letters += static_cast<char>(0xC0 | byte >> 6);
            letters += static_cast<char>(0x80 | (byte & 0x3F));
        } else {
            letters += byte < ' ' || byte == 0x7F ? ' ' : *p;
        }
        p += length > 0 ? length : 1;
    }
    out = letters; // the argument may be this very buffer
    return out.c_str();
}

const char *vesk_json_text(const char *text)
{
    static std::string out;
    std::string quoted = "\"";
    for (const char *p = vesk_utf8(text); *p != '\0'; ++p) {
        if (*p == '"' || *p == '\\')
            quoted += '\\';
        quoted += *p;
    }
    out = quoted + '"'; // the argument may be this very buffer
    return out.c_str();
}
