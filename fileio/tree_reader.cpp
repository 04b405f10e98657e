// Lines and nested blocks.

#include "fileio/tree_reader.h"

#include "model/object_tree.h"

#include <algorithm>
#include <utility>

namespace {
constexpr std::size_t deepest_nesting = 100000;
}

// ---- lines ----

bool tree_reader::next_line()
{
    if (p_ == end_)
        return false;
    const auto most = std::min<std::ptrdiff_t>(end_ - p_, line_length);
    const void *newline = std::memchr(p_, '\n', static_cast<std::size_t>(most));
    const auto length = newline ? static_cast<const char *>(newline) + 1 - p_ : most;
    std::memcpy(buffer_, p_, static_cast<std::size_t>(length));
    buffer_[length] = '\0';
    p_ += length;
    ++line_;
    if (verbose_)
        debugf("line %d %s", line_, buffer_);
    return true;
}

// The line's first word; false, with the word of an earlier line left in place, on a blank line.
bool tree_reader::line_word(std::string *word)
{
    const char *start = skip_space(buffer_, buffer_ + std::strlen(buffer_));
    const char *end = start;
    while (*end != '\0' && !is_blank(*end) && *end != '\v' && *end != '\f')
        ++end;
    values_ = end;
    if (end == start)
        return false;
    word->assign(start, end);
    return true;
}

int tree_reader::line_int() const
{
    int value = 0;
    scan_int(values_, values_ + std::strlen(values_), &value);
    return value;
}

void tree_reader::show_progress()
{
    if (line_ % 5 != 0)
        return;
    const double fraction = static_cast<double>(p_ - begin_) / static_cast<double>(end_ - begin_);
    if (fraction - shown_ > 0.1) {
        set_progress_bar(static_cast<int>(fraction * 100));
        shown_ = fraction;
    }
}

// ---- objects ----

// clang-format off
const tree_reader::keyword tree_reader::keywords[] = {
    {"MATERIAL", false, false, &tree_reader::read_material},
    {"MAT",      false, false, &tree_reader::read_mat_name},
    {"LIGHT",    false, false, &tree_reader::read_light},
    {"OBJECT",   false, true,  &tree_reader::read_object},
    {"data",     false, false, &tree_reader::read_data},
    {"name",     true,  false, &tree_reader::read_name},
    {"texture",  true,  false, &tree_reader::read_texture},
    {"texrep",   true,  false, &tree_reader::read_texrep},
    {"texoff",   true,  false, &tree_reader::read_texoff},
    {"rot",      true,  true,  &tree_reader::read_rot},
    {"loc",      true,  true,  &tree_reader::read_loc},
    {"url",      true,  false, &tree_reader::read_url},
    {"numvert",  true,  true,  &tree_reader::read_numvert},
    {"sphere",   true,  false, &tree_reader::read_sphere},
    {"cube",     true,  false, &tree_reader::read_cube},
    {"ellipse",  true,  false, &tree_reader::read_ellipse},
    {"cylinder", true,  false, &tree_reader::read_cylinder},
    {"scale",    true,  false, &tree_reader::read_scale},
    {"mat",      true,  true,  &tree_reader::read_mat},
};
// clang-format on

object_t *tree_reader::read()
{
    std::vector<block> stack(1);
    object_t *result = nullptr;
    bool returned = false; // a child block has come back with `result`
    while (!stack.empty()) {
        block &at = stack.back();
        bool complete = false;
        if (!returned) {
            const ending how = read_lines(at);
            complete = how != ending::KIDS;
            if (at.object && !at.parent && how == ending::FAILED)
                object_free(std::exchange(at.object, nullptr));
            result = how == ending::FAILED ? nullptr : at.object;
        } else if (!result) {
            complain("error reading expected child object %d of %d at line: %d\n", at.kid, at.kids,
                     line_);
            at.kid = at.kids;
        }
        returned = true;
        if (!complete && at.kid < at.kids) {
            ++at.kid;
            if (stack.size() == deepest_nesting) {
                result = nullptr;
                continue;
            }
            object_t *parent = at.object;
            stack.push_back({.parent = parent});
            returned = false;
            continue;
        }
        if (!complete)
            result = at.object;
        stack.pop_back();
    }
    return result;
}

// Up to the kids line, which ends the block's own lines, or the end of the file.
tree_reader::ending tree_reader::read_lines(block &at)
{
    word_.clear();
    while (next_line()) {
        show_progress();
        const bool blank = !line_word(&word_);
        const ending how = handle_line(at, blank);
        if (how != ending::END)
            return how;
    }
    apply_mat(at);
    return ending::END;
}

// END: the block goes on.
tree_reader::ending tree_reader::handle_line(block &at, bool blank)
{
    if (word_.empty())
        return ending::END;
    for (const keyword &row : keywords) {
        if (word_ != row.word)
            continue;
        if ((at.object || !row.needs_object) && !(blank && row.skips_blank_lines))
            (this->*row.handle)(at);
        return ending::END;
    }
    if (word_ == "numsurf") {
        if (blank || !at.object || read_surfaces(at))
            return ending::END;
        complain("error whilst reading surface at line: %d\n", line_);
        apply_mat(at);
        return ending::FAILED;
    }
    if (word_ == "kids") {
        if (blank)
            return ending::END;
        if (!at.object)
            return ending::FAILED;
        apply_mat(at);
        at.kids = std::max(line_int(), 0);
        at.kid = 0;
        if (at.parent)
            place_object(at.object, at.location);
        return ending::KIDS;
    }
    complain("ignoring %s\n", word_.c_str());
    return ending::END;
}
