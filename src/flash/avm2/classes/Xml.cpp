#include "flash/avm2/classes/Xml.h"

#include <algorithm>

namespace flash::avm2::classes
{

namespace
{

/// The nodes that a method works on: of an XML itself, of a list all.
TracedList<XmlNode*> nodesOf(Call& call)
{
    TracedList<XmlNode*> nodes;
    if (auto* xml = as<XmlObject>(call.self))
        nodes.push_back(xml->node);
    else if (auto* list = as<XmlListObject>(call.self))
        nodes = list->nodes;
    else
        call.vm.throwError(ErrorClass::Type, 1004, "Method XML was invoked on an incompatible object.");
    return nodes;
}

XmlNode& one(Call& call)
{
    auto nodes = nodesOf(call);
    if (nodes.size() != 1)
        call.vm.throwError(ErrorClass::Type, 1086, "The method only works on lists containing one item.");
    return *nodes[0];
}

Multiname nameArg(Call& call, std::uint32_t i, bool attribute = false)
{
    Multiname base = Multiname::of({}, call.vm.defaultXmlNs);
    base.attribute = attribute;
    Multiname name = call.vm.runtimeName(base, call.arg(i));
    if (!name.name.isNull() && name.name.view() == u"*") {
        name.name = {};
        name.anyNamespace = true;
    }
    return name;
}

Value constructXml(Call& call)
{
    auto& made = selfAs<XmlObject>(call, "XML");
    Vm& vm = call.vm;
    const Value given = call.arg(0);
    if (XmlNode* node = nodeOf(given)) {
        made.node = copyOf(vm, *node);
        made.node->value = &made;
        return {};
    }
    if (auto* list = as<XmlListObject>(given); list != nullptr && list->nodes.size() > 1)
        vm.throwError(ErrorClass::Type, 1088,
                      "The markup in the document following the root element must be well-formed.");
    const std::u16string text(given.isNullish() ? std::u16string_view() : vm.text(given));
    TracedList<XmlNode*> nodes;
    parseXml(vm, text, nodes);
    XmlNode* found = nullptr;
    for (XmlNode* node : nodes) {
        if (node->kind != XmlNode::Kind::Element) continue;
        if (found != nullptr)
            vm.throwError(ErrorClass::Type, 1088,
                          "The markup in the document following the root element must be well-formed.");
        found = node;
    }
    if (found == nullptr && !nodes.empty()) found = nodes[0];
    if (found == nullptr) found = vm.heap().make<XmlNode>(XmlNode::Kind::Text);
    made.node = found;
    found->value = &made;
    return {};
}

Object* allocateXml(Vm& vm, ClassObject& cls)
{
    auto* made = vm.heap().make<XmlObject>(cls.instances, cls.prototype);
    made->node = vm.heap().make<XmlNode>(XmlNode::Kind::Text);
    made->node->value = made;
    return made;
}

Value convertXml(Call& call)
{
    if (as<XmlObject>(call.arg(0)) != nullptr) return call.arg(0);
    if (XmlNode* node = nodeOf(call.arg(0))) return xmlValue(call.vm, node);
    return call.callee->construct(call.vm, call.rest(0));
}

Value constructList(Call& call)
{
    auto& made = selfAs<XmlListObject>(call, "XMLList");
    const Value given = call.arg(0);
    if (auto* list = as<XmlListObject>(given))
        made.nodes = list->nodes;
    else if (XmlNode* node = nodeOf(given))
        made.nodes.push_back(node);
    else if (!given.isNullish()) {
        const std::u16string text(call.vm.text(given));
        parseXml(call.vm, text, made.nodes);
    }
    return {};
}

Value convertList(Call& call)
{
    if (as<XmlListObject>(call.arg(0)) != nullptr) return call.arg(0);
    return call.callee->construct(call.vm, call.rest(0));
}

std::u16string markup(Vm& vm, const TracedList<XmlNode*>& nodes)
{
    std::u16string text;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (i > 0) text += u'\n';
        text += toMarkup(vm, *nodes[i], xmlSettings(vm).prettyPrinting);
    }
    return text;
}

bool isSimple(const TracedList<XmlNode*>& nodes)
{
    if (nodes.size() == 1) return hasSimpleContent(*nodes[0]);
    return std::ranges::none_of(nodes,
                                [](const XmlNode* node) { return node->kind == XmlNode::Kind::Element; });
}

Value toString(Call& call)
{
    if (!call.self.isObject() || !call.self.object()->isXml()) return call.vm.common().empty.string();
    const auto nodes = nodesOf(call);
    if (nodes.size() == 1) return call.vm.string(contentText(call.vm, *nodes[0]));
    if (!isSimple(nodes)) return call.vm.string(markup(call.vm, nodes));
    std::u16string text;
    for (const XmlNode* node : nodes) {
        if (node->kind != XmlNode::Kind::Comment && node->kind != XmlNode::Kind::Instruction)
            text += contentText(call.vm, *node);
    }
    return call.vm.string(std::move(text));
}
Value toXmlString(Call& call) { return call.vm.string(markup(call.vm, nodesOf(call))); }
Value valueOf(Call& call) { return call.self; }

template <class Use>
Value gather(Call& call, Use&& use)
{
    auto* list = newXmlList(call.vm);
    for (XmlNode* node : nodesOf(call)) use(*node, list->nodes);
    return Value(list);
}

Value child(Call& call)
{
    const Multiname name = nameArg(call, 0);
    return gather(call, [&](XmlNode& node, TracedList<XmlNode*>& out) {
        if (name.index != Atom::kNotIndex) {
            if (name.index < node.children.size()) out.push_back(node.children[name.index]);
        } else
            collect(name, node, out);
    });
}
Value children(Call& call)
{
    return gather(call, [](XmlNode& node, TracedList<XmlNode*>& out) {
        out.insert(out.end(), node.children.begin(), node.children.end());
    });
}
Value attribute(Call& call)
{
    const Multiname name = nameArg(call, 0, true);
    return gather(call, [&](XmlNode& node, TracedList<XmlNode*>& out) { collect(name, node, out); });
}
Value attributes(Call& call)
{
    return gather(call, [](XmlNode& node, TracedList<XmlNode*>& out) {
        out.insert(out.end(), node.attributes.begin(), node.attributes.end());
    });
}
template <XmlNode::Kind kind>
Value ofKind(Call& call)
{
    const bool all = !call.has(0) || call.arg(0).isUndefined() ||
                     (call.arg(0).isString() && call.arg(0).string()->view() == u"*");
    const Multiname name = all ? Multiname() : nameArg(call, 0);
    return gather(call, [&](XmlNode& node, TracedList<XmlNode*>& out) {
        for (XmlNode* inner : node.children) {
            if (inner->kind != kind) continue;
            if (kind == XmlNode::Kind::Element && !all && !matches(name, *inner)) continue;
            if (kind == XmlNode::Kind::Instruction && !all && !(name.name == inner->name)) continue;
            out.push_back(inner);
        }
    });
}
Value descendants(Call& call)
{
    const Multiname any = [] {
        Multiname name;
        name.anyNamespace = true;
        return name;
    }();
    return call.self.object()->descendants(call.vm, call.has(0) ? nameArg(call, 0) : any);
}
Value length(Call& call) { return static_cast<double>(nodesOf(call).size()); }
Value nodeKind(Call& call)
{
    static constexpr const char* kKinds[] = {"element", "text", "comment", "processing-instruction",
                                             "attribute"};
    return call.vm.name(kKinds[static_cast<int>(one(call).kind)]).string();
}
bool hasName(const XmlNode& node)
{
    return node.kind != XmlNode::Kind::Text && node.kind != XmlNode::Kind::Comment;
}
Value localName(Call& call)
{
    const XmlNode& node = one(call);
    return hasName(node) ? Value(node.name.string()) : Value::null();
}
Value name(Call& call)
{
    const XmlNode& node = one(call);
    return hasName(node)
               ? Value(newQName(call.vm, node.ns != nullptr ? node.ns : call.vm.publicNs(), node.name))
               : Value::null();
}
Value setName(Call& call)
{
    XmlNode& node = one(call);
    if (!hasName(node)) return {};
    if (auto* qname = as<QNameObject>(call.arg(0))) {
        node.name = qname->name;
        if (qname->ns != nullptr && !qname->ns->uri.view().empty()) node.ns = qname->ns;
    } else {
        node.name = call.vm.names().intern(call.vm.toString(call.arg(0)));
        if (node.kind == XmlNode::Kind::Element && !call.vm.defaultXmlNs->uri.view().empty())
            node.ns = call.vm.defaultXmlNs;
    }
    return {};
}
Value setLocalName(Call& call)
{
    XmlNode& node = one(call);
    if (!hasName(node)) return {};
    auto* qname = as<QNameObject>(call.arg(0));
    node.name = qname != nullptr ? qname->name : call.vm.names().intern(call.vm.toString(call.arg(0)));
    return {};
}
Value parent(Call& call)
{
    const auto nodes = nodesOf(call);
    if (nodes.empty()) return {};
    for (const XmlNode* node : nodes) {
        if (node->parent != nodes[0]->parent) return {};
    }
    return nodes[0]->parent != nullptr ? xmlValue(call.vm, nodes[0]->parent) : Value();
}
Value childIndex(Call& call)
{
    XmlNode& node = one(call);
    if (node.parent == nullptr || node.kind == XmlNode::Kind::Attribute) return -1;
    return static_cast<double>(std::ranges::find(node.parent->children, &node) -
                               node.parent->children.begin());
}
Value copy(Call& call)
{
    if (as<XmlObject>(call.self) != nullptr) return xmlValue(call.vm, copyOf(call.vm, one(call)));
    auto* list = newXmlList(call.vm);
    for (const XmlNode* node : nodesOf(call)) list->nodes.push_back(copyOf(call.vm, *node));
    return Value(list);
}
Value contains(Call& call)
{
    XmlNode* wanted = nodeOf(call.arg(0));
    for (const XmlNode* node : nodesOf(call)) {
        if (wanted != nullptr && xmlEquals(*node, *wanted)) return true;
        // What is no markup is compared by the content.
        if (wanted == nullptr && !call.arg(0).isNullish() && !as<XmlListObject>(call.arg(0)) &&
            hasSimpleContent(*node) && contentText(call.vm, *node) == call.vm.text(call.arg(0)))
            return true;
    }
    return false;
}
Value hasSimple(Call& call) { return isSimple(nodesOf(call)); }
Value hasComplex(Call& call)
{
    const auto nodes = nodesOf(call);
    if (nodes.size() == 1 && nodes[0]->kind != XmlNode::Kind::Element) return false;
    return !nodes.empty() && !isSimple(nodes);
}

void insertAt(Call& call, XmlNode& parent, std::size_t index, Value value)
{
    TracedList<XmlNode*> added;
    if (auto* list = as<XmlListObject>(value))
        added = list->nodes;
    else
        added.push_back(contentNode(call.vm, value));
    for (XmlNode* node : added) {
        if (isWithin(&parent, node))
            call.vm.throwError(ErrorClass::Type, 1118, "Illegal cyclical loop between nodes.");
        if (node->parent != nullptr && node->kind != XmlNode::Kind::Attribute) {
            const auto at = std::ranges::find(node->parent->children, node);
            if (node->parent == &parent && at - parent.children.begin() < static_cast<std::ptrdiff_t>(index))
                --index;
            if (at != node->parent->children.end()) node->parent->children.erase(at);
        }
        node->parent = &parent;
    }
    parent.children.insert(parent.children.begin() +
                               static_cast<std::ptrdiff_t>(std::min(index, parent.children.size())),
                           added.begin(), added.end());
}

Value appendChild(Call& call)
{
    XmlNode& node = one(call);
    if (node.kind != XmlNode::Kind::Element) return call.self;
    constexpr int kKeepsTexts = 21; // version
    const bool isMarkup = call.arg(0).isObject() && call.arg(0).object()->isXml();
    if (!isMarkup && call.vm.version < kKeepsTexts && !node.children.empty() &&
        node.children.back()->kind == XmlNode::Kind::Element) {
        // In old movies a text behind an element becomes one more such element.
        const XmlNode& last = *node.children.back();
        auto* made = call.vm.heap().make<XmlNode>(XmlNode::Kind::Element);
        made->name = last.name;
        made->ns = last.ns;
        made->prefix = last.prefix;
        XmlNode* content = contentNode(call.vm, call.arg(0));
        content->parent = made;
        made->children.push_back(content);
        insertAt(call, node, node.children.size(), xmlValue(call.vm, made));
    } else {
        insertAt(call, node, node.children.size(), call.arg(0));
    }
    return call.self;
}
Value prependChild(Call& call)
{
    XmlNode& node = one(call);
    if (node.kind == XmlNode::Kind::Element) insertAt(call, node, 0, call.arg(0));
    return call.self;
}
template <int offset>
Value insertChild(Call& call)
{
    XmlNode& node = one(call);
    if (node.kind != XmlNode::Kind::Element) return {};
    if (call.arg(0).isNull()) {
        insertAt(call, node, offset == 0 ? node.children.size() : 0, call.arg(1));
        return call.self;
    }
    XmlNode* mark = nodeOf(call.arg(0));
    const auto at = std::ranges::find(node.children, mark);
    if (mark == nullptr || at == node.children.end()) return {};
    insertAt(call, node, static_cast<std::size_t>(at - node.children.begin()) + offset, call.arg(1));
    return call.self;
}
Value setChildren(Call& call)
{
    XmlNode& node = one(call);
    for (XmlNode* old : node.children) old->parent = nullptr;
    node.children.clear();
    insertAt(call, node, 0, call.arg(0));
    return call.self;
}
Value replace(Call& call)
{
    XmlNode& node = one(call);
    const Multiname name = nameArg(call, 0);
    std::size_t first = node.children.size();
    for (std::size_t i = node.children.size(); i-- > 0;) {
        if (name.index != Atom::kNotIndex ? i != name.index : !matches(name, *node.children[i])) continue;
        node.children[i]->parent = nullptr;
        node.children.erase(node.children.begin() + static_cast<std::ptrdiff_t>(i));
        first = i;
    }
    if (first <= node.children.size()) insertAt(call, node, first, call.arg(1));
    return call.self;
}

void normalizeNode(XmlNode& node)
{
    for (std::size_t i = 0; i < node.children.size();) {
        XmlNode* at = node.children[i];
        if (at->kind == XmlNode::Kind::Text) {
            while (i + 1 < node.children.size() && node.children[i + 1]->kind == XmlNode::Kind::Text) {
                at->text += node.children[i + 1]->text;
                node.children.erase(node.children.begin() + static_cast<std::ptrdiff_t>(i) + 1);
            }
            if (at->text.empty()) {
                node.children.erase(node.children.begin() + static_cast<std::ptrdiff_t>(i));
                continue;
            }
        } else {
            normalizeNode(*at);
        }
        ++i;
    }
}
Value normalize(Call& call)
{
    for (XmlNode* node : nodesOf(call)) normalizeNode(*node);
    return call.self;
}

Value namespaceValue(Vm& vm, const XmlNode::Declaration& declaration)
{
    auto* made = static_cast<NamespaceObject*>(vm.newNamespace(declaration.ns));
    made->prefix = declaration.prefix;
    return Value(made);
}
Value xmlNamespace(Call& call)
{
    XmlNode& node = one(call);
    if (!call.has(0)) {
        if (!hasName(node)) return Value::null();
        for (XmlNode* at = &node; at != nullptr; at = at->parent) {
            for (const auto& declaration : at->declarations) {
                if (declaration.ns == node.ns) return namespaceValue(call.vm, declaration);
            }
        }
        const bool isPlain = node.ns == nullptr || node.ns->uri.view().empty();
        return namespaceValue(call.vm, {isPlain ? Value(call.vm.common().empty.string()) : node.prefix,
                                        node.ns != nullptr ? node.ns : call.vm.publicNs()});
    }
    const auto wanted = call.vm.text(call.arg(0));
    for (XmlNode* at = &node; at != nullptr; at = at->parent) {
        for (const auto& declaration : at->declarations) {
            if (declaration.prefix.isString() && declaration.prefix.string()->view() == wanted)
                return namespaceValue(call.vm, declaration);
        }
    }
    return {};
}
Value inScopeNamespaces(Call& call)
{
    auto* list = static_cast<ArrayObject*>(call.vm.newArray());
    TracedList<Namespace*> seen;
    for (XmlNode* at = &one(call); at != nullptr; at = at->parent) {
        for (const auto& declaration : at->declarations) {
            if (std::ranges::find(seen, declaration.ns) != seen.end()) continue;
            seen.push_back(declaration.ns);
            list->push(call.vm, namespaceValue(call.vm, declaration));
        }
    }
    if (list->length() == 0)
        list->push(call.vm,
                   namespaceValue(call.vm, {Value(call.vm.common().empty.string()), call.vm.publicNs()}));
    return Value(list);
}
Value namespaceDeclarations(Call& call)
{
    auto* list = static_cast<ArrayObject*>(call.vm.newArray());
    for (const auto& declaration : one(call).declarations)
        list->push(call.vm, namespaceValue(call.vm, declaration));
    return Value(list);
}
XmlNode::Declaration declarationArg(Call& call)
{
    if (auto* given = as<NamespaceObject>(call.arg(0))) return {given->prefix, given->ns};
    return {Value(),
            call.vm.ns(Namespace::Kind::Public, call.vm.names().intern(call.vm.toString(call.arg(0))))};
}
Value addNamespace(Call& call)
{
    XmlNode& node = one(call);
    const auto declaration = declarationArg(call);
    for (auto& known : node.declarations) {
        if (known.prefix.isString() && declaration.prefix.isString() &&
            known.prefix.string()->view() == declaration.prefix.string()->view()) {
            known.ns = declaration.ns;
            return call.self;
        }
    }
    if (node.kind == XmlNode::Kind::Element) node.declarations.push_back(declaration);
    return call.self;
}
Value removeNamespace(Call& call)
{
    XmlNode& node = one(call);
    const auto declaration = declarationArg(call);
    std::erase_if(node.declarations, [&](const auto& known) { return known.ns == declaration.ns; });
    return call.self;
}
Value setNamespace(Call& call)
{
    XmlNode& node = one(call);
    if (!hasName(node)) return {};
    const auto declaration = declarationArg(call);
    node.ns = declaration.ns;
    node.prefix = declaration.prefix;
    XmlNode* element = node.kind == XmlNode::Kind::Attribute ? node.parent : &node;
    if (element != nullptr && declaration.prefix.isString() && !declaration.ns->uri.view().empty())
        element->declarations.push_back(declaration);
    return {};
}
Value hasOwnProperty(Call& call)
{
    return call.self.isObject() &&
           call.vm.hasOwn(call.self, call.vm.runtimeName(Multiname::of({}, call.vm.publicNs()), call.arg(0)));
}
Value toJson(Call& call)
{
    return call.vm.string(std::string_view(as<XmlObject>(call.self) != nullptr ? "XML" : "XMLList"));
}

template <bool XmlSettings::*flag>
Value getFlag(Call& call)
{
    return xmlSettings(call.vm).*flag;
}
template <bool XmlSettings::*flag>
Value setFlag(Call& call)
{
    xmlSettings(call.vm).*flag = call.vm.toBoolean(call.arg(0));
    return {};
}
Value prettyIndent(Call& call) { return xmlSettings(call.vm).prettyIndent; }
Value setPrettyIndent(Call& call)
{
    xmlSettings(call.vm).prettyIndent = std::clamp(call.vm.toInt(call.arg(0)), 0, 100);
    return {};
}
constexpr std::string_view kFlagNames[] = {"ignoreComments", "ignoreProcessingInstructions",
                                           "ignoreWhitespace", "prettyPrinting"};
Value settingsOf(Call& call, const XmlSettings& settings)
{
    Object* made = call.vm.newObject();
    const bool flags[] = {settings.ignoreComments, settings.ignoreProcessingInstructions,
                          settings.ignoreWhitespace, settings.prettyPrinting};
    for (std::size_t i = 0; i < 4; ++i) call.vm.setPublic(Value(made), kFlagNames[i], flags[i]);
    call.vm.setPublic(Value(made), "prettyIndent", settings.prettyIndent);
    return Value(made);
}
Value settings(Call& call) { return settingsOf(call, xmlSettings(call.vm)); }
Value defaultSettings(Call& call) { return settingsOf(call, XmlSettings{}); }
Value setSettings(Call& call)
{
    if (call.arg(0).isNullish()) {
        xmlSettings(call.vm) = XmlSettings{};
        return {};
    }
    bool XmlSettings::*const flags[] = {&XmlSettings::ignoreComments,
                                        &XmlSettings::ignoreProcessingInstructions,
                                        &XmlSettings::ignoreWhitespace, &XmlSettings::prettyPrinting};
    for (std::size_t i = 0; i < 4; ++i) {
        const Value value = call.vm.getPublic(call.arg(0), kFlagNames[i]);
        if (value.isBoolean()) xmlSettings(call.vm).*flags[i] = value.boolean();
    }
    const Value indent = call.vm.getPublic(call.arg(0), "prettyIndent");
    if (indent.isNumber()) xmlSettings(call.vm).prettyIndent = std::clamp(call.vm.toInt(indent), 0, 100);
    return {};
}

Value addHook(Vm& vm, Value a, Value b)
{
    auto* list = newXmlList(vm);
    for (const Value value : {a, b}) {
        if (auto* from = as<XmlListObject>(value))
            list->nodes.insert(list->nodes.end(), from->nodes.begin(), from->nodes.end());
        else if (XmlNode* node = nodeOf(value))
            list->nodes.push_back(node);
    }
    return Value(list);
}

bool equalsHook(Vm& vm, Value a, Value b)
{
    auto* left = as<XmlListObject>(a);
    auto* right = as<XmlListObject>(b);
    if (left != nullptr && right != nullptr) {
        if (left->nodes.size() != right->nodes.size()) return false;
        for (std::size_t i = 0; i < left->nodes.size(); ++i) {
            if (!xmlEquals(*left->nodes[i], *right->nodes[i])) return false;
        }
        return true;
    }
    if ((left != nullptr && left->nodes.empty() && b.isUndefined()) ||
        (right != nullptr && right->nodes.empty() && a.isUndefined()))
        return true;
    XmlNode* first = nodeOf(a);
    XmlNode* second = nodeOf(b);
    if (first != nullptr && second != nullptr) {
        const auto isText = [](const XmlNode* node) {
            return node->kind == XmlNode::Kind::Text || node->kind == XmlNode::Kind::Attribute;
        };
        if ((isText(first) && hasSimpleContent(*second)) || (isText(second) && hasSimpleContent(*first)))
            return contentText(vm, *first) == contentText(vm, *second);
        return xmlEquals(*first, *second);
    }
    const XmlNode* node = first != nullptr ? first : second;
    const Value other = first != nullptr ? b : a;
    if (node == nullptr || other.isNullish() || !hasSimpleContent(*node)) return false;
    return contentText(vm, *node) == vm.text(other);
}

void setUp(Vm& vm, ClassObject&) { vm.xml = {&addHook, &equalsHook, &escapeXml}; }

#define XML_SHARED                                                                                           \
    {"toString", Kind::As3, &toString, 0, -1}, {"toXMLString", Kind::As3, &toXmlString, 0, 0},               \
        {"valueOf", Kind::As3, &valueOf, 0, 0}, {"child", Kind::As3, &child, 1, 1},                          \
        {"children", Kind::As3, &children, 0, 0}, {"attribute", Kind::As3, &attribute, 1, 1},                \
        {"attributes", Kind::As3, &attributes, 0, 0},                                                        \
        {"elements", Kind::As3, &ofKind<XmlNode::Kind::Element>, 0, 1},                                      \
        {"comments", Kind::As3, &ofKind<XmlNode::Kind::Comment>, 0, 0},                                      \
        {"text", Kind::As3, &ofKind<XmlNode::Kind::Text>, 0, 0},                                             \
        {"processingInstructions", Kind::As3, &ofKind<XmlNode::Kind::Instruction>, 0, 1},                    \
        {"descendants", Kind::As3, &descendants, 0, 1}, {"length", Kind::As3, &length, 0, 0},                \
        {"nodeKind", Kind::As3, &nodeKind, 0, 0}, {"localName", Kind::As3, &localName, 0, 0},                \
        {"name", Kind::As3, &name, 0, 0}, {"setName", Kind::As3, &setName, 1, 1},                            \
        {"setLocalName", Kind::As3, &setLocalName, 1, 1}, {"parent", Kind::As3, &parent, 0, 0},              \
        {"childIndex", Kind::As3, &childIndex, 0, 0}, {"copy", Kind::As3, &copy, 0, 0},                      \
        {"contains", Kind::As3, &contains, 1, 1}, {"hasSimpleContent", Kind::As3, &hasSimple, 0, 0},         \
        {"hasComplexContent", Kind::As3, &hasComplex, 0, 0}, {"appendChild", Kind::As3, &appendChild, 1, 1}, \
        {"prependChild", Kind::As3, &prependChild, 1, 1},                                                    \
        {"insertChildBefore", Kind::As3, &insertChild<0>, 2, 2},                                             \
        {"insertChildAfter", Kind::As3, &insertChild<1>, 2, 2},                                              \
        {"setChildren", Kind::As3, &setChildren, 1, 1}, {"replace", Kind::As3, &replace, 2, 2},              \
        {"normalize", Kind::As3, &normalize, 0, 0}, {"namespace", Kind::As3, &xmlNamespace, 0, 1},           \
        {"inScopeNamespaces", Kind::As3, &inScopeNamespaces, 0, 0},                                          \
        {"namespaceDeclarations", Kind::As3, &namespaceDeclarations, 0, 0},                                  \
        {"addNamespace", Kind::As3, &addNamespace, 1, 1},                                                    \
        {"removeNamespace", Kind::As3, &removeNamespace, 1, 1},                                              \
        {"setNamespace", Kind::As3, &setNamespace, 1, 1},                                                    \
        {"hasOwnProperty", Kind::As3, &hasOwnProperty, 0, 1},                                                \
    {                                                                                                        \
        "toJSON", Kind::Prototype, &toJson, 0, -1                                                            \
    }

constexpr NativeMember kXmlMembers[] = {
    XML_SHARED,
    {"ignoreComments", Kind::StaticGetter, &getFlag<&XmlSettings::ignoreComments>, 0, 0,
     &setFlag<&XmlSettings::ignoreComments>},
    {"ignoreProcessingInstructions", Kind::StaticGetter, &getFlag<&XmlSettings::ignoreProcessingInstructions>,
     0, 0, &setFlag<&XmlSettings::ignoreProcessingInstructions>},
    {"ignoreWhitespace", Kind::StaticGetter, &getFlag<&XmlSettings::ignoreWhitespace>, 0, 0,
     &setFlag<&XmlSettings::ignoreWhitespace>},
    {"prettyPrinting", Kind::StaticGetter, &getFlag<&XmlSettings::prettyPrinting>, 0, 0,
     &setFlag<&XmlSettings::prettyPrinting>},
    {"prettyIndent", Kind::StaticGetter, &prettyIndent, 0, 0, &setPrettyIndent},
    {"settings", Kind::Static, &settings, 0, 0},
    {"defaultSettings", Kind::Static, &defaultSettings, 0, 0},
    {"setSettings", Kind::Static, &setSettings, 0, 1},
};
constexpr NativeMember kListMembers[] = {XML_SHARED};
#undef XML_SHARED
constexpr NativeConstant kLengthOne[] = {{"length", 1}};

} // namespace

constinit const NativeClass kXml{.package = {},
                                 .name = "XML",
                                 .base = {},
                                 .flags = NativeClass::Final,
                                 .constructor = &constructXml,
                                 .minArguments = 0,
                                 .maxArguments = 1,
                                 .allocate = &allocateXml,
                                 .conversion = &convertXml,
                                 .members = kXmlMembers,
                                 .constants = kLengthOne,
                                 .setUp = &setUp};
constinit const NativeClass kXmlList{.package = {},
                                     .name = "XMLList",
                                     .base = {},
                                     .flags = NativeClass::Final,
                                     .constructor = &constructList,
                                     .minArguments = 0,
                                     .maxArguments = 1,
                                     .allocate = &allocateNative<XmlListObject>,
                                     .conversion = &convertList,
                                     .members = kListMembers,
                                     .constants = kLengthOne};

} // namespace flash::avm2::classes
