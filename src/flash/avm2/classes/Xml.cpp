#include "flash/avm2/classes/XmlMethods.h"

#include <algorithm>

namespace flash::avm2::classes
{

namespace
{

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
    // Texts beside one element do not count; without one, there is to be one node.
    if (found == nullptr && nodes.size() > 1)
        vm.throwError(ErrorClass::Type, 1088,
                      "The markup in the document following the root element must be well-formed.");
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

/// As the operator == sees two nodes: texts and attributes are the same as what holds the same text.
bool sameContent(Vm& vm, const XmlNode& a, const XmlNode& b)
{
    const auto isText = [](const XmlNode& node) {
        return node.kind == XmlNode::Kind::Text || node.kind == XmlNode::Kind::Attribute;
    };
    if ((isText(a) && hasSimpleContent(b)) || (isText(b) && hasSimpleContent(a)))
        return contentText(vm, a) == contentText(vm, b);
    return xmlEquals(a, b);
}

bool equalsHook(Vm& vm, Value a, Value b)
{
    auto* left = as<XmlListObject>(a);
    auto* right = as<XmlListObject>(b);
    if (left != nullptr && right != nullptr) {
        if (left->nodes.size() != right->nodes.size()) return false;
        for (std::size_t i = 0; i < left->nodes.size(); ++i) {
            if (!sameContent(vm, *left->nodes[i], *right->nodes[i])) return false;
        }
        return true;
    }
    if ((left != nullptr && left->nodes.empty() && b.isUndefined()) ||
        (right != nullptr && right->nodes.empty() && a.isUndefined()))
        return true;
    XmlNode* first = nodeOf(a);
    XmlNode* second = nodeOf(b);
    if (first != nullptr && second != nullptr) {
        return sameContent(vm, *first, *second);
    }
    const XmlNode* node = first != nullptr ? first : second;
    const Value other = first != nullptr ? b : a;
    if (node == nullptr || other.isNullish() || !hasSimpleContent(*node)) return false;
    return contentText(vm, *node) == vm.text(other);
}

void setUp(Vm& vm, ClassObject&) { vm.xml = {&addHook, &equalsHook, &escapeXml, false}; }

#define XML_SHARED                                                                                           \
    {"toString", Kind::As3, &xml::toString, 0, -1}, {"toXMLString", Kind::As3, &xml::toXmlString, 0, 0},     \
        {"valueOf", Kind::As3, &xml::valueOf, 0, 0}, {"child", Kind::As3, &xml::child, 1, 1},                \
        {"children", Kind::As3, &xml::children, 0, 0}, {"attribute", Kind::As3, &xml::attribute, 1, 1},      \
        {"attributes", Kind::As3, &xml::attributes, 0, 0}, {"elements", Kind::As3, &xml::elements, 0, 1},    \
        {"comments", Kind::As3, &xml::comments, 0, 0}, {"text", Kind::As3, &xml::text, 0, 0},                \
        {"processingInstructions", Kind::As3, &xml::processingInstructions, 0, 1},                           \
        {"descendants", Kind::As3, &xml::descendants, 0, 1}, {"length", Kind::As3, &xml::length, 0, 0},      \
        {"nodeKind", Kind::As3, &xml::nodeKind, 0, 0}, {"localName", Kind::As3, &xml::localName, 0, 0},      \
        {"name", Kind::As3, &xml::name, 0, 0}, {"setName", Kind::As3, &xml::setName, 1, 1},                  \
        {"setLocalName", Kind::As3, &xml::setLocalName, 1, 1}, {"parent", Kind::As3, &xml::parent, 0, 0},    \
        {"childIndex", Kind::As3, &xml::childIndex, 0, 0}, {"copy", Kind::As3, &xml::copy, 0, 0},            \
        {"contains", Kind::As3, &xml::contains, 1, 1},                                                       \
        {"hasSimpleContent", Kind::As3, &xml::hasSimple, 0, 0},                                              \
        {"hasComplexContent", Kind::As3, &xml::hasComplex, 0, 0},                                            \
        {"appendChild", Kind::As3, &xml::appendChild, 1, 1},                                                 \
        {"prependChild", Kind::As3, &xml::prependChild, 1, 1},                                               \
        {"insertChildBefore", Kind::As3, &xml::insertChildBefore, 2, 2},                                     \
        {"insertChildAfter", Kind::As3, &xml::insertChildAfter, 2, 2},                                       \
        {"setChildren", Kind::As3, &xml::setChildren, 1, 1}, {"replace", Kind::As3, &xml::replace, 2, 2},    \
        {"normalize", Kind::As3, &xml::normalize, 0, 0}, {"namespace", Kind::As3, &xml::xmlNamespace, 0, 1}, \
        {"inScopeNamespaces", Kind::As3, &xml::inScopeNamespaces, 0, 0},                                     \
        {"namespaceDeclarations", Kind::As3, &xml::namespaceDeclarations, 0, 0},                             \
        {"addNamespace", Kind::As3, &xml::addNamespace, 1, 1},                                               \
        {"removeNamespace", Kind::As3, &xml::removeNamespace, 1, 1},                                         \
        {"setNamespace", Kind::As3, &xml::setNamespace, 1, 1},                                               \
        {"hasOwnProperty", Kind::As3, &xml::hasOwnProperty, 0, 1},                                           \
        {"propertyIsEnumerable", Kind::As3, &xml::propertyIsEnumerable, 0, 1},                               \
    {                                                                                                        \
        "toJSON", Kind::Prototype, &xml::toJson, 0, -1                                                       \
    }

constexpr NativeMember kXmlMembers[] = {
    XML_SHARED,
    {"notification", Kind::As3, &xml::notification, 0, 0},
    {"setNotification", Kind::As3, &xml::setNotification, 1, 1},
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
