#ifndef VESK_FILEIO_TREE_READER_H
#define VESK_FILEIO_TREE_READER_H

// The reader of one model file's objects: line-oriented, with blocks of numbers that are scanned
// across lines. It keeps the nested object blocks on a stack of its own, so that any depth up to
// the limit loads, and takes every count in the file as a claim: nothing is allocated by it.

#include "base/file_text.h"
#include "base/messages_internal.h"
#include "base/numbers.h"
#include "base/tokens.h"
#include "fileio/vesk_reader_internal.h"
#include "fileio/vesk_scan.h"
#include "model/palette_internal.h"

#include <cstring>
#include <string>
#include <vector>

constexpr int line_length = 254; // of a longer line the rest is the next line
// One object block that is being read.
struct block {
    object_t *parent = nullptr;
    object_t *object = nullptr; // null before the first OBJECT line
    point3_t location = {};
    float rotation[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    // `mat` sets the surfaces that the object has by then: done once, at the end.
    int mat_surfaces = 0;
    int mat = 0;
    int kids = 0; // claimed
    int kid = -1; // being read, from 1; -1 before the kids line
};

class tree_reader {
public:
    tree_reader(const file_text &text, const char *first, const char *filename)
        : begin_(text.begin()), p_(first), end_(text.end()), filename_(filename),
          scanner_(first, text.end()), budget_(text.size), verbose_(debug_mode())
    {
    }

    object_t *read();
    [[nodiscard]] bool moved_progress_bar() const { return shown_ > 0; }

private:
    enum class ending { KIDS, END, FAILED };
    struct keyword {
        const char *word;
        bool needs_object;
        bool skips_blank_lines; // its values are scanned, not counted
        void (tree_reader::*handle)(block &);
    };
    static const keyword keywords[];

    bool next_line();
    bool line_word(std::string *word);
    int tokens() { return vesk_get_tokens(buffer_, nullptr, tokens_); }
    int line_int() const;
    void show_progress();
    ending read_lines(block &at);
    ending handle_line(block &at, bool blank);

    void read_material(block &);
    void read_mat_name(block &);
    void read_light(block &) { debugf("Light\n"); }
    void read_object(block &at);
    void read_data(block &at);
    void read_name(block &at);
    void read_texture(block &at);
    void read_texrep(block &at);
    void read_texoff(block &at);
    void read_rot(block &at);
    void read_loc(block &at);
    void read_url(block &at);
    void read_numvert(block &at);
    void read_sphere(block &at);
    void read_cube(block &at);
    void read_ellipse(block &at);
    void read_cylinder(block &at);
    void read_scale(block &at);
    void read_mat(block &at);

    bool read_surfaces(block &at);
    bool read_surface(object_t *object);
    void read_references(surface_t *surface, int claimed);
    void build_surfaces(object_t *object, const scan_piece &piece);
    void add_reference(surface_t *surface, listitem **last, const scanned_ref &ref);
    void set_material(surface_t *surface, int number);
    void know_vertices(const object_t *object);
    void apply_mat(block &at);
    template <class Fill>
    void add_shape(block &at, int segments, Fill fill);

    [[nodiscard]] float number(int token) const
    {
        float value = 0;
        scan_float(tokens_[token], tokens_[token] + std::strlen(tokens_[token]), &value);
        return value;
    }
    [[nodiscard]] int last_material() const { return static_cast<int>(materials_.size()) - 1; }
    [[nodiscard]] int palette_index(int number) const
    {
        return number < 0 ? 0 : materials_[static_cast<std::size_t>(number)];
    }

    const char *begin_;
    const char *p_;
    const char *end_;
    const char *filename_;
    block_scanner scanner_;
    load_budget budget_;
    palette_table palette_;
    bool verbose_;

    int line_ = 0;
    double shown_ = 0;              // fraction of the progress bar
    char buffer_[line_length + 2];  // the current line
    const char *values_ = buffer_;  // what follows its first word
    char *tokens_[VESK_MAX_TOKENS]; // into the buffer
    std::string word_;              // not cleared by a blank line
    std::vector<int> materials_;    // palette index of each material of the file
    const object_t *known_ = nullptr;
    std::vector<vertex *> points_; // of `known_`, by index
};

#endif
