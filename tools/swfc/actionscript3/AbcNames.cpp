#include "swfc/actionscript3/AbcNames.h"

namespace swfc::actionscript3
{
namespace
{

using abc::MultinameKind;
using abc::NamespaceKind;

constexpr int kDeepestName = 8; ///< generics of generics

struct KindWord {
    std::string_view word;
    NamespaceKind kind;
};
constexpr KindWord kKindWords[] = {
    {"private", NamespaceKind::Private},     {"internal", NamespaceKind::PackageInternal},
    {"protected", NamespaceKind::Protected}, {"static", NamespaceKind::StaticProtected},
    {"namespace", NamespaceKind::Namespace}, {"explicit", NamespaceKind::Explicit},
    {"package", NamespaceKind::Package},
};

} // namespace

std::optional<std::uint32_t> assembleNamespace(AbcFile& abc, std::string_view text)
{
    if (text == "*") return 0;
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"')
        return abc.ns(NamespaceKind::Namespace, std::string(text.substr(1, text.size() - 2)));
    for (const KindWord& entry : kKindWords) {
        if (text.starts_with(entry.word) && text.ends_with(')') && text.size() > entry.word.size() + 1 &&
            text[entry.word.size()] == '(')
            return abc.ns(entry.kind, std::string(text.substr(entry.word.size() + 1,
                                                              text.size() - entry.word.size() - 2)));
    }
    // Addresses are those of namespaces, everything else is a package.
    const bool isAddress = text.find(':') != std::string_view::npos;
    return abc.ns(isAddress ? NamespaceKind::Namespace : NamespaceKind::Package, std::string(text));
}

std::vector<std::string_view> splitNames(std::string_view text)
{
    std::vector<std::string_view> parts;
    int open = 0;
    std::size_t start = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '{' || c == '(' || c == '<') ++open;
        if (c == '}' || c == ')' || c == '>') --open;
        if (c != ',' || open > 0) continue;
        parts.push_back(text.substr(start, i - start));
        start = i + 1;
    }
    parts.push_back(text.substr(start));
    return parts;
}

std::optional<std::uint32_t> assembleName(AbcFile& abc, std::string_view text, int depth)
{
    if (text == "*") return 0;
    if (text.empty() || depth > kDeepestName) return std::nullopt;
    const bool isAttribute = text.starts_with('@');
    if (isAttribute) text.remove_prefix(1);
    const auto pick = [&](MultinameKind plain, MultinameKind attribute) {
        return isAttribute ? attribute : plain;
    };
    if (const auto angle = text.find(".<"); angle != std::string_view::npos && text.ends_with('>')) {
        const auto base = assembleName(abc, text.substr(0, angle), depth + 1);
        const auto parameter = assembleName(abc, text.substr(angle + 2, text.size() - angle - 3), depth + 1);
        if (!base || *base == 0 || !parameter) return std::nullopt;
        if (abc.data.multinames[*base].kind == MultinameKind::TypeName) return std::nullopt;
        return abc.typeName(*base, {*parameter});
    }
    const auto colons = text.rfind("::");
    const std::string_view qualifier = colons == std::string_view::npos ? "" : text.substr(0, colons);
    const std::string_view plain = colons == std::string_view::npos ? text : text.substr(colons + 2);
    const bool isRuntime = plain == "[]";
    const std::uint32_t name = plain == "*" ? 0 : abc.string(std::string(plain));
    if (qualifier == "[]")
        return isRuntime ? abc.multiname(pick(MultinameKind::RtqNameL, MultinameKind::RtqNameLA), 0, 0)
                         : abc.multiname(pick(MultinameKind::RtqName, MultinameKind::RtqNameA), name, 0);
    if (qualifier.starts_with('{') && qualifier.ends_with('}')) {
        std::vector<std::uint32_t> set;
        for (const std::string_view part : splitNames(qualifier.substr(1, qualifier.size() - 2)))
            set.push_back(assembleNamespace(abc, part).value_or(0));
        const std::uint32_t index = abc.nsSet(set);
        return isRuntime
                   ? abc.multiname(pick(MultinameKind::MultinameL, MultinameKind::MultinameLA), 0, index)
                   : abc.multiname(pick(MultinameKind::Multiname, MultinameKind::MultinameA), name, index);
    }
    const auto ns = assembleNamespace(abc, qualifier);
    if (!ns || isRuntime) return std::nullopt;
    return abc.multiname(pick(MultinameKind::QName, MultinameKind::QNameA), name, *ns);
}

} // namespace swfc::actionscript3
