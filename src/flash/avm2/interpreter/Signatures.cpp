#include "flash/avm2/interpreter/Signatures.h"

#include <algorithm>

namespace flash::avm2
{

namespace
{

/// Takes the text up to a delimiter off the front of another.
std::string_view takeUntil(std::string_view& text, std::string_view delimiters)
{
    const std::size_t end = std::min(text.find_first_of(delimiters), text.size());
    const std::string_view taken = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return taken;
}

void readParameters(std::string_view list, Signature& signature)
{
    while (!list.empty()) {
        // A vector's type has a comma of no list in it: there is none of two types.
        std::string_view type = takeUntil(list, ",");
        if (type == "...") {
            signature.takesMore = true;
            continue;
        }
        const bool isOptional = type.ends_with('=');
        if (isOptional) type.remove_suffix(1);
        signature.parameters.push_back({type, isOptional});
    }
}

void readMember(std::string_view word, Signatures::Class& cls)
{
    Signature made;
    if (word.starts_with('^')) {
        made.isStatic = true;
        word.remove_prefix(1);
    }
    if (word.starts_with("*:")) {
        cls.numbers = word.substr(2);
        return;
    }
    if (word.starts_with('.')) {
        made.kind = Signature::Kind::Variable;
        word.remove_prefix(1);
    }
    const std::size_t open = word.find('(');
    const std::size_t colon = word.find(':', open == std::string_view::npos ? 0 : word.find(')'));
    if (colon != std::string_view::npos) made.type = word.substr(colon + 1);
    if (open != std::string_view::npos) {
        made.name = word.substr(0, open);
        made.kind = made.name.empty() ? Signature::Kind::Constructor : Signature::Kind::Method;
        readParameters(word.substr(open + 1, word.find(')') - open - 1), made);
    } else {
        made.name = word.substr(0, colon);
        if (made.kind != Signature::Kind::Variable) made.kind = Signature::Kind::Accessor;
        made.canRead = !made.name.ends_with('+');
        made.canWrite = !made.name.ends_with('-');
        if (!made.canRead || !made.canWrite) made.name.remove_suffix(1);
    }
    cls.members.push_back(std::move(made));
}

} // namespace

int Signature::required() const
{
    return static_cast<int>(
        std::ranges::count_if(parameters, [](const Parameter& one) { return !one.isOptional; }));
}

const Signature* Signatures::Class::find(std::string_view name, bool isStatic) const
{
    const auto found = std::ranges::find_if(members, [&](const Signature& one) {
        return one.name == name && one.isStatic == isStatic && one.kind != Signature::Kind::Constructor;
    });
    return found == members.end() ? nullptr : &*found;
}

const Signature* Signatures::Class::constructor() const
{
    const auto found = std::ranges::find(members, Signature::Kind::Constructor, &Signature::kind);
    return found == members.end() ? nullptr : &*found;
}

void Signatures::add(std::string_view text)
{
    Entry* last = nullptr;
    const char* begin = nullptr;
    while (!text.empty()) {
        const std::string_view line = takeUntil(text, "\n");
        if (line.empty()) continue;
        if (line.front() == ' ') {
            if (begin == nullptr) begin = line.data();
            if (last != nullptr)
                last->text = {begin, static_cast<std::size_t>(line.data() + line.size() - begin)};
            continue;
        }
        // The language's own are in no package.
        const std::string_view name = line.starts_with("::") ? line.substr(2) : line;
        last = &m_classes[name];
        begin = nullptr;
        const std::size_t colons = name.find("::");
        m_qualified.emplace(colons == std::string_view::npos ? name : name.substr(colons + 2), name);
    }
}

const Signatures::Class* Signatures::of(std::string_view name)
{
    const auto found = m_classes.find(name);
    if (found == m_classes.end()) return nullptr;
    Entry& entry = found->second;
    if (!entry.isRead) {
        entry.isRead = true;
        for (std::string_view text = entry.text; !text.empty();) {
            const std::string_view word = takeUntil(text, " \n");
            if (!word.empty()) readMember(word, entry.cls);
        }
    }
    return &entry.cls;
}

std::string_view Signatures::qualified(std::string_view plain) const
{
    const auto found = m_qualified.find(plain);
    return found == m_qualified.end() ? std::string_view() : found->second;
}

} // namespace flash::avm2
