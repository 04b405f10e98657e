#include "fileio/dxf_scan.h"

#include "base/numbers.h"
#include "base/utf8.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>

double dxf_number(std::string_view value)
{
    double number = 0;
    scan_double(value.data(), value.data() + value.size(), &number);
    return std::isfinite(number) ? number : 0;
}

int dxf_whole(std::string_view value)
{
    int number = 0;
    scan_int(value.data(), value.data() + value.size(), &number);
    return number;
}

// ---- records ----

std::string_view dxf_record::text(int code) const
{
    const auto found = std::find_if(pairs.begin(), pairs.end(),
                                    [code](const pair_t &pair) { return pair.code == code; });
    return found == pairs.end() ? std::string_view{} : found->value;
}

bool dxf_record::has(int code) const
{
    return std::any_of(pairs.begin(), pairs.end(),
                       [code](const pair_t &pair) { return pair.code == code; });
}

double dxf_record::number(int code, double fallback) const
{
    return has(code) ? dxf_number(text(code)) : fallback;
}

int dxf_record::whole(int code, int fallback) const
{
    return has(code) ? dxf_whole(text(code)) : fallback;
}

vec3d dxf_record::point(int code) const
{
    return {number(code), number(code + 10), number(code + 20)};
}

vec3d dxf_record::extrusion() const
{
    const vec3d direction = has(230) ? point(210) : vec3d{0, 0, 1};
    const double size = length(direction);
    return size > 0 ? direction / size : vec3d{0, 0, 1};
}

std::vector<vec3d> dxf_points(const dxf_record &record, int code)
{
    std::vector<vec3d> points;
    for (const dxf_record::pair_t &pair : record.pairs) {
        if (pair.code == code)
            points.push_back({dxf_number(pair.value), 0, 0});
        else if (pair.code == code + 10 && !points.empty())
            points.back().y = dxf_number(pair.value);
        else if (pair.code == code + 20 && !points.empty())
            points.back().z = dxf_number(pair.value);
    }
    return points;
}

// ---- the file ----

namespace {

class reader {
public:
    explicit reader(std::string_view text) : rest_(text) {}

    dxf_drawing run()
    {
        dxf_record record;
        while (next(&record))
            take(std::move(record));
        return std::move(drawing_);
    }

private:
    bool line(std::string_view *out)
    {
        if (rest_.empty())
            return false;
        const std::size_t end = std::min(rest_.find('\n'), rest_.size());
        *out = rest_.substr(0, end);
        rest_.remove_prefix(std::min(end + 1, rest_.size()));
        if (!out->empty() && out->back() == '\r')
            out->remove_suffix(1);
        return true;
    }

    // Texts keep their blanks; around everything else there may be some.
    static std::string_view trimmed(std::string_view value)
    {
        while (!value.empty() && is_blank(value.front()))
            value.remove_prefix(1);
        while (!value.empty() && is_blank(value.back()))
            value.remove_suffix(1);
        return value;
    }

    bool pair(dxf_record::pair_t *out)
    {
        std::string_view code;
        if (!line(&code) || !line(&out->value))
            return false;
        out->code = dxf_whole(code);
        if (out->code != 1 && out->code != 3)
            out->value = trimmed(out->value);
        return true;
    }

    // The pairs up to the next one of code 0, which is kept back.
    bool next(dxf_record *record)
    {
        dxf_record::pair_t one;
        while (!begun_ && pair(&one)) {
            if (one.code == 0)
                begun_ = one.value;
        }
        if (!begun_)
            return false;
        record->type = *begun_;
        record->pairs.clear();
        begun_.reset();
        while (pair(&one)) {
            if (one.code == 0) {
                begun_ = one.value;
                break;
            }
            if (one.code != 999) // a comment
                record->pairs.push_back(one);
        }
        return true;
    }

    void take(dxf_record &&record)
    {
        if (record.type == "SECTION")
            section(record);
        else if (record.type == "ENDSEC")
            section_ = {};
        else if (record.type == "EOF")
            drawing_.complete = true;
        else if (section_ == "TABLES" && record.type == "LAYER")
            layer(record);
        else if (section_ == "BLOCKS")
            of_block(std::move(record));
        else if (section_ == "ENTITIES")
            drawing_.entities.push_back(std::move(record));
    }

    // The variables of the head are no records, so all of them stand in the section's own.
    void section(const dxf_record &record)
    {
        section_ = record.text(2);
        for (std::size_t i = 0; section_ == "HEADER" && i + 1 < record.pairs.size(); ++i)
            if (record.pairs[i].code == 9 && record.pairs[i].value == "$INSUNITS")
                drawing_.units = dxf_whole(record.pairs[i + 1].value);
    }

    void layer(const dxf_record &record)
    {
        const int colour = std::clamp(record.whole(62, 7), -255, 255);
        dxf_layer &made = drawing_.layers[record.text(2)];
        made.colour = dxf_table_colour(std::abs(colour));
        if (record.has(420))
            made.colour = dxf_true_colour(record);
        made.hidden = colour < 0 || (record.whole(70) & 1) != 0;
    }

    void of_block(dxf_record &&record)
    {
        if (record.type == "BLOCK") {
            block_ = &drawing_.blocks[record.text(2)];
            block_->base = record.point(10);
        } else if (record.type == "ENDBLK") {
            block_ = nullptr;
        } else if (block_ != nullptr) {
            block_->records.push_back(std::move(record));
        }
    }

    std::string_view rest_, section_;
    std::optional<std::string_view> begun_; // the type of the next record
    dxf_block *block_ = nullptr;            // places in a map of nodes stay
    dxf_drawing drawing_;
};

} // namespace

dxf_drawing dxf_read(std::string_view text) { return reader(text).run(); }

// ---- colours ----

dxf_rgb dxf_true_colour(const dxf_record &record)
{
    const auto rgb = static_cast<unsigned>(record.whole(420));
    return {static_cast<std::uint8_t>(rgb >> 16 & 0xFF), static_cast<std::uint8_t>(rgb >> 8 & 0xFF),
            static_cast<std::uint8_t>(rgb & 0xFF)};
}

dxf_rgb dxf_table_colour(int index)
{
    static constexpr dxf_rgb first[10] = {
        {0, 0, 0},   {255, 0, 0},   {255, 255, 0},   {0, 255, 0},     {0, 255, 255},
        {0, 0, 255}, {255, 0, 255}, {255, 255, 255}, {128, 128, 128}, {192, 192, 192}};
    static constexpr std::uint8_t greys[6] = {51, 91, 132, 173, 214, 255};
    static constexpr double brightness[5] = {255, 165, 127, 76, 38};
    index = std::clamp(index, 0, 255);
    if (index < 10)
        return first[index];
    if (index >= 250)
        return {greys[index - 250], greys[index - 250], greys[index - 250]};
    const double hue = (index / 10 - 1) / 4.0; // of six
    const double bright = brightness[index % 10 / 2];
    const double least = index % 2 == 0 ? 0 : 0.5;
    const auto part = [&](double away) { // from the hue at which this colour is full
        const double near = std::fabs(std::remainder(hue - away, 6.0));
        const double share = std::clamp(2 - near, 0.0, 1.0);
        return static_cast<std::uint8_t>(bright * (least + (1 - least) * share));
    };
    return {part(0), part(2), part(4)};
}

int dxf_nearest_colour(const dxf_rgb &colour)
{
    int best = 7, least = INT_MAX;
    for (int i = 1; i < 256; ++i) {
        const dxf_rgb one = dxf_table_colour(i);
        const int r = one.r - colour.r, g = one.g - colour.g, b = one.b - colour.b;
        const int away = r * r + g * g + b * b;
        if (away < least) {
            least = away;
            best = i;
        }
    }
    return best;
}

const char *dxf_unit_name(int units)
{
    static constexpr const char *names[] = {"",
                                            "inches",
                                            "feet",
                                            "miles",
                                            "millimetres",
                                            "centimetres",
                                            "metres",
                                            "kilometres",
                                            "microinches",
                                            "mils",
                                            "yards",
                                            "angstroms",
                                            "nanometres",
                                            "microns",
                                            "decimetres",
                                            "decametres",
                                            "hectometres",
                                            "gigametres",
                                            "astronomical units",
                                            "light years",
                                            "parsecs",
                                            "survey feet"};
    return units > 0 && units < static_cast<int>(std::size(names)) ? names[units] : "";
}

// ---- texts ----

std::string dxf_decoded(std::string_view value)
{
    std::string text;
    for (std::size_t i = 0; i < value.size(); ++i) {
        const std::string_view rest = value.substr(i);
        if ((rest.starts_with("\\U+") || rest.starts_with("\\u+")) && rest.size() >= 7) {
            const unsigned code = unsigned_of_hex(rest.substr(3, 4));
            if (code < 0x80) {
                text += static_cast<char>(std::max(code, 0x20u));
            } else if (code < 0x800) {
                text +=
                    {static_cast<char>(0xC0 | code >> 6), static_cast<char>(0x80 | (code & 63))};
            } else {
                text += {static_cast<char>(0xE0 | code >> 12),
                         static_cast<char>(0x80 | (code >> 6 & 63)),
                         static_cast<char>(0x80 | (code & 63))};
            }
            i += 6;
        } else {
            text += value[i];
        }
    }
    return vesk_utf8(text.c_str());
}
