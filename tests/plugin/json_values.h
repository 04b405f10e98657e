#ifndef VESK_TESTS_PLUGIN_JSON_VALUES_H
#define VESK_TESTS_PLUGIN_JSON_VALUES_H

#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

// Enough of JSON for well-formed texts: values by their paths ("nodes.0.name"); false when the text
// is no JSON.
class json_values {
public:
    std::map<std::string, std::string> values;
    bool read(const std::string &text)
    {
        at_ = text.c_str();
        return value("") && (blank(), *at_ == '\0');
    }
    [[nodiscard]] long number(const std::string &path, long fallback = -1) const
    {
        const auto found = values.find(path);
        return found == values.end() ? fallback : std::atol(found->second.c_str());
    }
    [[nodiscard]] bool has(const std::string &path) const { return values.count(path) != 0; }

private:
    void blank()
    {
        while (*at_ == ' ' || *at_ == '\n')
            ++at_;
    }
    bool text(std::string *out)
    {
        if (*at_ != '"')
            return false;
        for (++at_; *at_ != '"' && *at_ != '\0'; ++at_) {
            if (static_cast<unsigned char>(*at_) < ' ')
                return false;
            at_ += *at_ == '\\' ? 1 : 0;
            *out += *at_;
        }
        return *at_ == '"' && (++at_, true);
    }
    bool members(const std::string &path, char end)
    {
        ++at_;
        blank();
        for (int i = 0; *at_ != end; ++i) {
            if (i > 0 && (*at_ != ',' || (++at_, blank(), *at_ == end)))
                return false;
            std::string name = std::to_string(i);
            if (end == '}') {
                name.clear();
                if (!text(&name) || (blank(), *at_ != ':'))
                    return false;
                ++at_;
            }
            if (!value(path.empty() ? name : path + "." + name))
                return false;
            blank();
        }
        ++at_;
        return true;
    }
    bool value(const std::string &path)
    {
        blank();
        std::string &kept = values[path];
        if (*at_ == '{' || *at_ == '[')
            return members(path, *at_ == '{' ? '}' : ']');
        if (*at_ == '"')
            return text(&kept);
        const size_t length = std::strcspn(at_, ",]} \n");
        kept.assign(at_, length);
        at_ += length;
        char *end = nullptr;
        std::strtod(kept.c_str(), &end);
        return !kept.empty() && (*end == '\0' || kept == "true" || kept == "false");
    }
    const char *at_ = nullptr;
};

#endif
