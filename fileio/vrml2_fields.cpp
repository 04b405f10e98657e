#include "fileio/vrml2_fields.h"

namespace {

constexpr long long most_repeated_nodes = 1 << 18;
constexpr long long most_repeated_text = 1 << 27;
constexpr long long most_points = 1 << 24;

const vrml2_value *value_of(const vrml2_values &values, std::string_view name)
{
    const auto found = values.find(name);
    return found == values.end() ? nullptr : &found->second;
}

} // namespace

vrml2_account::vrml2_account()
    : nodes(most_repeated_nodes), text(most_repeated_text), points(most_points)
{
}

// Every node of the file takes some characters.
void vrml2_account::grow(std::size_t size)
{
    nodes += static_cast<long long>(size);
    text += static_cast<long long>(size);
}

vrml2_fields::vrml2_fields(const vrml2_node *node, const vrml2_scope *scope, vrml2_account *account)
    : node_(node), scope_(scope), account_(account), name_(node->name)
{
    // One without a body is of no type that is known.
    while (account->take_node() && node_->proto != nullptr && !node_->proto->body.empty()) {
        account->scopes.push_back({node_, scope_});
        scope_ = &account->scopes.back();
        node_ = node_->proto->body.front();
    }
    if (account->failed)
        node_ = nullptr;
}

vrml2_fields::found_t vrml2_fields::find(std::string_view name) const
{
    if (node_ == nullptr)
        return {nullptr, nullptr};
    found_t found = {value_of(node_->fields, name), scope_};
    while (found.value != nullptr && found.value->kind == vrml2_value::IS) {
        const vrml2_scope *scope = found.scope;
        if (scope == nullptr)
            return {nullptr, nullptr};
        const vrml2_value *value = value_of(scope->instance->fields, found.value->text);
        if (value == nullptr)
            value = value_of(scope->instance->proto->defaults, found.value->text);
        if (value == nullptr)
            return {nullptr, nullptr};
        found = {value, scope->outer};
    }
    return found;
}

std::string_view vrml2_fields::raw(const char *name) const
{
    const found_t found = find(name);
    return found.value == nullptr ? std::string_view() : found.value->text;
}

std::vector<float> vrml2_fields::numbers(const char *name) const
{
    std::vector<float> numbers;
    const std::string_view text = raw(name);
    if (!text.empty() && account_->take_text(text.size()))
        vrml2_numbers(text, &numbers);
    return numbers;
}

std::vector<int> vrml2_fields::integers(const char *name) const
{
    std::vector<int> numbers;
    const std::string_view text = raw(name);
    if (!text.empty() && account_->take_text(text.size()))
        vrml2_numbers(text, &numbers);
    return numbers;
}

float vrml2_fields::number(const char *name, float fallback) const
{
    const std::vector<float> all = numbers(name);
    return all.empty() ? fallback : all[0];
}

bool vrml2_fields::flag(const char *name, bool fallback) const
{
    const std::string_view word = raw(name);
    return word == "TRUE" || (word != "FALSE" && fallback);
}

std::vector<std::string> vrml2_fields::texts(const char *name) const
{
    const std::string_view text = raw(name);
    if (text.empty() || !account_->take_text(text.size()))
        return {};
    return vrml2_texts(text);
}

vrml2_fields vrml2_fields::child(const char *name) const
{
    const found_t found = find(name);
    if (found.value == nullptr || found.value->nodes.empty() || account_->failed)
        return {};
    return {found.value->nodes[0], found.scope, account_};
}

std::vector<vrml2_fields> vrml2_fields::children(const char *name) const
{
    std::vector<vrml2_fields> all;
    const found_t found = find(name);
    if (found.value == nullptr)
        return all;
    for (const vrml2_node *node : found.value->nodes) {
        vrml2_fields child(node, found.scope, account_);
        if (account_->failed)
            return all;
        if (!child.none())
            all.push_back(child);
    }
    return all;
}
