#include "text.h"

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sys/stat.h>

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

std::string json_text(const std::string &text)
{
    std::string out = "\"";
    for (const char *p = vesk_utf8(text.c_str()); *p != '\0'; ++p) {
        if (*p == '"' || *p == '\\')
            out += '\\';
        out += *p;
    }
    return out + '"';
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

std::string base_name(const std::string &filename)
{
    const std::string name = vesk_filename_get_file(filename.c_str());
    return name.substr(0, name.rfind('.'));
}

bool read_file(const std::string &name, std::string *bytes)
{
    std::FILE *file = std::fopen(name.c_str(), "rb");
    if (file == nullptr)
        return false;
    struct stat about = {};
    if (fstat(fileno(file), &about) == 0 && S_ISREG(about.st_mode)) // a folder has no size
        bytes->reserve(static_cast<std::size_t>(about.st_size));
    char buffer[65536];
    while (const std::size_t count = std::fread(buffer, 1, sizeof buffer, file))
        bytes->append(buffer, count);
    const bool whole = std::ferror(file) == 0;
    std::fclose(file);
    return whole;
}

bool write_file(const std::string &filename, const std::string &bytes)
{
    const std::string fresh = filename + ".new";
    std::FILE *file = std::fopen(fresh.c_str(), "wb");
    if (file == nullptr)
        return false;
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    if (std::fclose(file) == 0 && written && std::rename(fresh.c_str(), filename.c_str()) == 0)
        return true;
    std::remove(fresh.c_str());
    return false;
}

int finish_export(const std::string &filename, const std::string &bytes, const char *format)
{
    if (!write_file(filename, bytes)) {
        display_message("can't open file '%s' for writing", filename.c_str());
        return 0;
    }
    display_message("written file %s%s", filename.c_str(), vesk_report_losses(format));
    return 1;
}

object_t *refuse(const std::string &filename, const std::string &reason)
{
    windows_message_dialog("can't read %s\n%s", filename.c_str(), reason.c_str());
    return nullptr;
}
