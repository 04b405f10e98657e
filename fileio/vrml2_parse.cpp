#include "fileio/vrml2_parse.h"

#include "base/numbers.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

constexpr int most_levels = 1000; // of nodes in nodes

bool is_space(char c) { return is_blank(c) || c == ','; }
bool ends_word(char c)
{
    return is_space(c) || (c != '\0' && std::strchr("{}[]\"#", c) != nullptr);
}
bool begins_number(char c) { return c != '\0' && std::strchr("0123456789+-.", c) != nullptr; }

std::size_t end_of_comment(std::string_view text, std::size_t at)
{
    return std::min(text.find_first_of("\r\n", at), text.size());
}

// The place after the closing quote of a text that begins at `at`.
std::size_t end_of_text(std::string_view text, std::size_t at)
{
    for (++at; at < text.size() && text[at] != '"'; ++at)
        at += text[at] == '\\' ? 1 : 0;
    return std::min(at + 1, text.size());
}

class parser {
public:
    parser(vrml2_file *file, progress_t &progress)
        : file_(*file), text_(file->text), progress_(progress)
    {
    }

    std::string run()
    {
        names_.emplace_back();
        protos_.emplace_back();
        while (failed_ == nullptr && !at_end())
            statement(&file_.top);
        if (failed_ == nullptr || progress_.cancelled())
            return "";
        const auto line = std::count(
            text_.begin(), text_.begin() + static_cast<std::ptrdiff_t>(std::min(at_, text_.size())),
            '\n');
        return std::string(failed_) + " (line " + std::to_string(line + 1) + ")";
    }

private:
    using node_list = std::vector<const vrml2_node *>;

    void fail(const char *why)
    {
        if (failed_ == nullptr)
            failed_ = why;
        at_ = std::min(at_, text_.size());
    }
    void expect(char sign)
    {
        if (peek() == sign)
            ++at_;
        else
            fail("its nodes are damaged");
    }

    // Over a closing sign.
    void step() { at_ = std::min(at_ + 1, text_.size()); }

    // ---- words ----

    void skip()
    {
        while (at_ < text_.size() && (is_space(text_[at_]) || text_[at_] == '#')) {
            if (text_[at_] != '#') {
                ++at_;
                continue;
            }
            const std::size_t end = end_of_comment(text_, at_);
            comment(text_.substr(at_, end - at_));
            at_ = end;
        }
    }

    // The names in the comments of this program's worlds, which have no other place for them.
    void comment(std::string_view text)
    {
        constexpr std::string_view object = "# Object \"";
        constexpr std::string_view light = "# Light ";
        if (text.starts_with(object)) {
            const std::size_t end = text.rfind('"');
            told_ = text.substr(object.size(), std::max(end, object.size()) - object.size());
        } else if (text.starts_with(light)) {
            told_ = text.substr(light.size());
        }
    }

    bool at_end()
    {
        skip();
        return at_ >= text_.size();
    }
    char peek() { return at_end() ? '\0' : text_[at_]; }
    std::string_view word()
    {
        skip();
        const std::size_t begin = at_;
        while (at_ < text_.size() && !ends_word(text_[at_]))
            ++at_;
        if (at_ == begin)
            fail("its nodes are damaged");
        return text_.substr(begin, at_ - begin);
    }

    // ---- statements ----

    void statement(node_list *out)
    {
        const std::string_view first = word();
        if (first == "PROTO")
            proto();
        else if (first == "EXTERNPROTO")
            extern_proto();
        else if (first == "ROUTE")
            route();
        else
            node(first, out);
    }

    // "a.b TO c.d", with blanks between anything.
    void route()
    {
        ++file_.routes;
        while (failed_ == nullptr && word() != "TO") {
        }
        std::string_view last = failed_ == nullptr ? word() : "";
        while (failed_ == nullptr && (last.ends_with('.') || peek() == '.'))
            last = word();
    }

    void proto()
    {
        const std::string_view name = proto_name();
        vrml2_proto made;
        if (!enter())
            return;
        names_.emplace_back();
        protos_.emplace_back();
        interface(&made, true);
        expect('{');
        while (failed_ == nullptr && peek() != '}')
            at_end() ? fail("its nodes are damaged") : statement(&made.body);
        step();
        names_.pop_back();
        protos_.pop_back();
        --levels_;
        keep(name, std::move(made));
    }

    // Some have blanks in it.
    std::string_view proto_name()
    {
        const std::string_view first = word();
        std::size_t end = at_;
        for (char c = peek(); failed_ == nullptr && c != '[' && c != '\0'; c = peek()) {
            word();
            end = at_;
        }
        return text_.substr(static_cast<std::size_t>(first.data() - text_.data()),
                            end - static_cast<std::size_t>(first.data() - text_.data()));
    }

    void extern_proto()
    {
        const std::string_view name = word();
        vrml2_proto made;
        interface(&made, false);
        value(); // its addresses
        keep(name, std::move(made));
    }

    void keep(std::string_view name, vrml2_proto &&made)
    {
        file_.protos.push_back(std::move(made));
        protos_.back()[name] = &file_.protos.back();
        if (protos_.size() == 1)
            file_.library.emplace_back(name, &file_.protos.back());
    }

    void interface(vrml2_proto *made, bool with_values)
    {
        expect('[');
        while (failed_ == nullptr && peek() != ']') {
            const std::string_view kind = word();
            word(); // type
            const std::string_view name = word();
            if (failed_ == nullptr && with_values && !kind.starts_with("event"))
                made->defaults[name] = value();
        }
        step();
    }

    bool enter()
    {
        if (++levels_ > most_levels)
            fail("its nodes lie in more than 1000 others");
        if (!progress_.step(static_cast<double>(at_)))
            fail("");
        return failed_ == nullptr;
    }

    // A node whose first word was read.
    void node(std::string_view first, node_list *out)
    {
        std::string_view name;
        if (first == "USE") {
            use(out);
            return;
        }
        if (first == "DEF") {
            name = word();
            first = word();
        }
        if (first == "NULL")
            return;
        vrml2_node made;
        made.type = first;
        made.name = name;
        made.proto = find_proto(first);
        expect('{');
        const bool named =
            first == "Shape" || first == "Transform"; // what a comment may tell about
        made.told = named ? std::exchange(told_, {}) : std::string_view();
        if (!enter())
            return;
        while (failed_ == nullptr && peek() != '}')
            at_end() ? fail("its nodes are damaged") : field(&made);
        step();
        --levels_;
        file_.nodes.push_back(std::move(made));
        out->push_back(&file_.nodes.back());
        if (!name.empty())
            names_.back()[name] = out->back();
    }

    void use(node_list *out)
    {
        const auto found = names_.back().find(word());
        if (found != names_.back().end())
            out->push_back(found->second);
        else
            ++file_.unknown_uses;
    }

    [[nodiscard]] const vrml2_proto *find_proto(std::string_view type) const
    {
        for (auto scope = protos_.rbegin(); scope != protos_.rend(); ++scope)
            if (const auto found = scope->find(type); found != scope->end())
                return found->second;
        return nullptr;
    }

    // ---- fields ----

    void field(vrml2_node *made)
    {
        const std::string_view name = word();
        if (failed_ != nullptr)
            return;
        if (name == "PROTO")
            proto();
        else if (name == "EXTERNPROTO")
            extern_proto();
        else if (name == "ROUTE")
            route();
        else if (name == "eventIn" || name == "eventOut" || name == "field" ||
                 name == "exposedField")
            declared(name);
        else
            made->fields[name] = value();
    }

    // A script's own field.
    void declared(std::string_view kind)
    {
        word(); // type
        word(); // name
        if (!kind.starts_with("event")) {
            value();
            return;
        }
        const std::size_t back = at_;
        if (failed_ == nullptr && peek() == 'I' && word() == "IS")
            word();
        else
            at_ = back;
    }

    vrml2_value value()
    {
        vrml2_value out;
        const char c = peek();
        if (c == '[') {
            ++at_;
            list(&out);
        } else if (c == '"') {
            const std::size_t begin = at_;
            at_ = end_of_text(text_, at_);
            out = {vrml2_value::TEXTS, text_.substr(begin, at_ - begin), {}};
        } else if (begins_number(c)) {
            const std::size_t begin = at_;
            while (begins_number(peek()))
                word();
            out = {vrml2_value::NUMBERS, text_.substr(begin, at_ - begin), {}};
        } else {
            one_word(&out);
        }
        return out;
    }

    void one_word(vrml2_value *out)
    {
        const std::string_view first = word();
        if (first == "TRUE" || first == "FALSE") {
            *out = {vrml2_value::WORD, first, {}};
        } else if (first == "IS") {
            *out = {vrml2_value::IS, word(), {}};
        } else if (failed_ == nullptr) {
            out->kind = vrml2_value::NODES;
            node(first, &out->nodes);
        }
    }

    // After its bracket.
    void list(vrml2_value *out)
    {
        const char c = peek();
        if (c == '"' || begins_number(c) || c == ']') {
            const std::size_t begin = at_;
            flat_list();
            out->kind = c == '"' ? vrml2_value::TEXTS : vrml2_value::NUMBERS;
            out->text = text_.substr(begin, at_ - begin);
        } else {
            out->kind = vrml2_value::NODES;
            while (failed_ == nullptr && peek() != ']')
                at_end() ? fail("its nodes are damaged") : list_item(out);
        }
        step();
        progress_.step(static_cast<double>(at_));
    }

    void list_item(vrml2_value *out)
    {
        const std::size_t back = at_;
        const std::string_view first = word();
        if (first == "TRUE" || first == "FALSE")
            return;
        at_ = back;
        statement(&out->nodes);
    }

    // To the closing bracket of a list of numbers or texts.
    void flat_list()
    {
        while (at_ < text_.size()) {
            const std::size_t next = text_.find_first_of("]\"#{}[", at_);
            at_ = std::min(next, text_.size());
            const char c = at_ < text_.size() ? text_[at_] : '\0';
            if (c == ']')
                return;
            if (c == '"')
                at_ = end_of_text(text_, at_);
            else if (c == '#')
                at_ = end_of_comment(text_, at_);
            else
                break;
        }
        fail("a list in it has no end");
    }

    vrml2_file &file_;
    const std::string_view text_;
    progress_t &progress_;
    std::size_t at_ = 0;
    int levels_ = 0;
    const char *failed_ = nullptr;
    std::string_view told_;
    // Names are known within their file, or their PROTO's body; types in all that lies below.
    std::vector<std::map<std::string_view, const vrml2_node *>> names_;
    std::vector<std::map<std::string_view, const vrml2_proto *>> protos_;
};

template <class Number, class Scan>
void numbers_of(std::string_view text, std::vector<Number> *numbers, Scan &&scan)
{
    const char *p = text.data();
    const char *const end = p + text.size();
    while (p != end) {
        if (*p == '#') {
            p = text.data() + end_of_comment(text, static_cast<std::size_t>(p - text.data()));
            continue;
        }
        if (!begins_number(*p)) {
            ++p;
            continue;
        }
        Number value = 0;
        const char *after = scan(p, end, &value);
        numbers->push_back(value);
        p = after == nullptr ? p + 1 : after;
        while (p != end && !ends_word(*p))
            ++p;
    }
}

} // namespace

std::string vrml2_parse(vrml2_file *file, progress_t &progress)
{
    return parser(file, progress).run();
}

void vrml2_numbers(std::string_view text, std::vector<float> *numbers)
{
    numbers_of(text, numbers, scan_float);
}

void vrml2_numbers(std::string_view text, std::vector<int> *numbers)
{
    numbers_of(text, numbers, scan_int);
}

std::vector<std::string> vrml2_texts(std::string_view text)
{
    std::vector<std::string> texts;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '#') {
            at = end_of_comment(text, at);
        } else if (text[at] == '"') {
            const std::size_t end = end_of_text(text, at);
            std::string one;
            for (++at; at < end && text[at] != '"'; ++at) {
                at += text[at] == '\\' && at + 1 < end ? 1 : 0;
                one += text[at];
            }
            texts.push_back(std::move(one));
        }
    }
    return texts;
}
