#include "text.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <map>

std::string xml_text(const std::string &text)
{
    static const std::map<char, const char *> entities = {
        {'<', "&lt;"}, {'>', "&gt;"}, {'&', "&amp;"}, {'"', "&quot;"}};
    std::string out;
    for (const char *p = vesk_utf8(text.c_str()); *p != '\0'; ++p) {
        const auto found = entities.find(*p);
        if (found == entities.end())
            out += *p;
        else
            out += found->second;
    }
    return out;
}

std::vector<std::string> words_of(const std::string &line)
{
    std::vector<std::string> words;
    std::size_t at = 0;
    while ((at = line.find_first_not_of(" \t\r", at)) != std::string::npos) {
        const std::size_t end = std::min(line.find_first_of(" \t\r", at), line.size());
        words.push_back(line.substr(at, end - at));
        at = end;
    }
    return words;
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
