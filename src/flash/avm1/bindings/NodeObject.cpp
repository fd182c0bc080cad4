#include "flash/avm1/bindings/NodeObject.h"

#include "base/TextCodes.h"
#include "flash/avm1/bindings/StageBinding.h"
#include "flash/stage/Button.h"
#include "flash/swf/LevelName.h"

#include <algorithm>
#include <optional>

namespace flash::avm1
{

NodeObject::NodeObject(StageBinding& binding, stage::NodePtr node, Object& self)
    : Peer(&kTag), m_binding(binding), m_node(std::move(node)), m_self(&self)
{
    m_node->peer = this;
}

NodeObject::~NodeObject() { detached(); }

void NodeObject::detached()
{
    // By then it may have another one.
    if (m_node->peer == this) m_node->peer = nullptr;
}

void NodeObject::keepPath()
{
    // The path of the first time counts: a later name is not one that scripts' references know.
    if (m_path.empty()) m_path = m_node->dotPath();
}

Object* NodeObject::successor() { return isGone() ? m_binding.objectOf(live()) : nullptr; }

void NodeObject::leave(Vm& vm)
{
    keepPath();
    // A change of its layout, so that caches ask caching() again.
    m_self->define(vm, vm.name(std::string_view()), Value(), kBuiltIn);
}

stage::Node* NodeObject::atItsPath()
{
    if (m_path.empty()) return nullptr;
    // A script's reference to a thing of the stage is by its path: another one of that name takes the place
    // of one that has gone.
    return m_binding.nodeAt(m_path);
}

std::string_view NodeObject::typeOf() const
{
    // What is gone is taken for a clip, until something else stands at its path.
    const stage::Node* node = const_cast<NodeObject*>(this)->live();
    return !node || node->kind() == stage::NodeKind::Clip ? "movieclip" : "object";
}

namespace
{

/// Some properties are plain values to scripts that the stage has to know of.
bool isSetting(std::u16string_view name)
{
    constexpr std::u16string_view kSettings[] = {u"tabEnabled",   u"useHandCursor", u"trackAsMenu",
                                                 u"focusEnabled", u"tabChildren",   u"hitArea"};
    return std::ranges::find(kSettings, name) != std::end(kSettings);
}

/// "_level12" and "_flash12" name levels, digits read as far as they go, in 32 bits: "_level" is that of 0.
std::optional<int> levelNumber(std::u16string_view name, bool caseSensitive)
{
    constexpr std::size_t kPrefix = 6;
    if (name.size() < kPrefix || name[0] != u'_') return {};
    const std::u16string prefix =
        caseSensitive ? std::u16string(name.substr(0, kPrefix)) : AtomTable::fold(name.substr(0, kPrefix));
    if (prefix != swf::kLevelPrefix && prefix != u"_flash") return {};
    name.remove_prefix(kPrefix);
    const bool negative = !name.empty() && name[0] == u'-';
    if (negative) name.remove_prefix(1);
    std::uint32_t number = 0;
    for (const char16_t c : name) {
        if (c < u'0' || c > u'9') break;
        number = number * 10 + (c - u'0');
    }
    return static_cast<int>(negative ? 0U - number : number);
}

} // namespace

Caching NodeObject::caching(Vm& vm, Name name) const
{
    if (isGone()) return {};
    const std::u16string_view text = name.view();
    const bool plain = !text.empty() && text[0] != u'_';
    // Variables come before children, and those before what the class has.
    return {true, plain && !isSetting(text), plain && !vm.names().mayBeNodeName(name)};
}

/// In this order: levels, children, properties.
bool NodeObject::lookUp(Vm& vm, Name name, Value& result)
{
    stage::Node* node = live();
    if (!node) return false;
    const std::u16string_view text = name.view();
    if (text.empty()) return false;
    const bool sensitive = vm.isCaseSensitive();
    if (const std::optional<int> number = levelNumber(text, sensitive)) {
        Object* level = m_binding.host().level(*number);
        result = level ? Value(level) : Value();
        return true;
    }
    if (stage::Clip* clip = vm.names().mayBeNodeName(name) ? stage::asClip(node) : nullptr) {
        const auto sensitivity = sensitive ? stage::Clip::Case::Sensitive : stage::Clip::Case::Insensitive;
        if (!clip->children().empty()) {
            if (stage::Node* child = clip->childByName(base::utf8FromUtf16(text), sensitivity)) {
                result = m_binding.scriptedChild(*clip, child);
                return true;
            }
        }
    }
    const bool holdsOthers =
        node->kind() == stage::NodeKind::Button || node->kind() == stage::NodeKind::TextField;
    if (holdsOthers && vm.names().mayBeNodeName(name)) {
        for (const stage::NodePtr& child : node->children()) {
            const std::u16string own = base::utf16FromUtf8(child->name());
            const bool same = sensitive ? own == text : AtomTable::fold(own) == AtomTable::fold(text);
            Object* object = same ? m_binding.objectOf(child.get()) : nullptr;
            if (!object) continue;
            result = object;
            return true;
        }
    }
    if (text[0] != u'_') return false;
    if (const std::optional<int> index = m_binding.propertyIndex(name)) {
        result = m_binding.host().propertyOf(*node, *index);
        return true;
    }
    Object* self = m_binding.objectOf(node);
    const std::u16string folded = AtomTable::fold(text);
    if (folded == u"_root") {
        result = m_binding.host().root(self);
        return true;
    }
    if (folded == u"_parent") {
        // A root has none, whatever its class says.
        Object* parent = m_binding.host().parent(self);
        result = parent ? Value(parent) : Value();
        return true;
    }
    if (folded == u"_global" && vm.version() >= 6) {
        result = vm.global();
        return true;
    }
    if (folded == u"_lockroot" && vm.version() >= 7) {
        stage::Clip* clip = stage::asClip(node);
        if (!clip) return false;
        result = clip->lockRoot;
        return true;
    }
    return false;
}

// Once its instance is gone, an object answers for the one that stands at its path now.

bool NodeObject::getOwn(Vm& vm, Object& self, Name name, Value receiver, Value& result)
{
    if (isGone()) {
        Object* const other = successor();
        return other && other->find(vm, name, result, receiver.asObject() == &self ? Value(other) : receiver);
    }
    if (self.getPlain(vm, name, receiver, result)) return true;
    return lookUp(vm, name, result);
}

void NodeObject::noteScriptSetting(Vm& vm, Name name, Value value)
{
    const std::u16string_view text = name.view();
    stage::Node* node = isSetting(text) ? live() : nullptr;
    if (!node) return;
    stage::Clip* clip = stage::asClip(node);
    const auto flag = [&] { return toBoolean(vm, value); };
    if (text == u"tabEnabled") {
        node->tabEnabled = value.isUndefined() ? std::optional<bool>() : flag();
    } else if (text == u"useHandCursor") {
        if (clip) clip->useHandCursor = flag();
        if (node->kind() == stage::NodeKind::Button)
            static_cast<stage::Button*>(node)->useHandCursor = flag();
    } else if (text == u"trackAsMenu") {
        if (clip) clip->trackAsMenu = flag();
        if (node->kind() == stage::NodeKind::Button) static_cast<stage::Button*>(node)->trackAsMenu = flag();
    } else if (clip && text == u"focusEnabled") {
        clip->focusEnabled = value.isUndefined() ? std::optional<bool>() : flag();
    } else if (clip && text == u"tabChildren") {
        clip->tabChildren = value.isUndefined() ? std::optional<bool>() : flag();
    } else if (clip && text == u"hitArea") {
        clip->setHitArea(m_binding.nodeOf(value.asObject()));
    }
}

void NodeObject::putOwn(Vm& vm, Object& self, Name name, Value value)
{
    if (isGone()) {
        if (Object* const other = successor()) other->put(vm, name, value);
        return;
    }
    const std::u16string_view text = name.view();
    if (!text.empty() && text[0] == u'_') {
        stage::Node* node = live();
        if (const std::optional<int> index = m_binding.propertyIndex(name)) {
            if (node) m_binding.host().setPropertyOf(*node, *index, value);
            return;
        }
        if (stage::Clip* clip = stage::asClip(node);
            clip && vm.version() >= 7 && AtomTable::fold(text) == u"_lockroot") {
            clip->lockRoot = toBoolean(vm, value);
            return;
        }
    }
    self.putPlain(vm, name, value);
    noteScriptSetting(vm, name, value);
}

bool NodeObject::hasOwn(Vm& vm, Object& self, Name name)
{
    if (isGone()) {
        Object* const other = successor();
        return other && other->has(vm, name);
    }
    Value ignored;
    return self.hasPlain(vm, name) || lookUp(vm, name, ignored);
}

bool NodeObject::deleteOwn(Vm& vm, Object& self, Name name)
{
    if (!isGone()) return self.deletePlain(vm, name);
    Object* const other = successor();
    return other && other->remove(vm, name);
}

void NodeObject::enumerateOwn(Vm& vm, Object& self, NameCollector& names)
{
    if (isGone()) {
        Object* const other = successor();
        if (other) other->nativeBase()->enumerateOwn(vm, *other, names);
        return;
    }
    self.enumeratePlain(vm, names);
    stage::Clip* clip = stage::asClip(live());
    if (!clip) return;
    // The topmost child first.
    const std::span<const stage::NodePtr> children = clip->children();
    for (auto child = children.rbegin(); child != children.rend(); ++child)
        if (!(*child)->name().empty() && m_binding.objectOf(child->get()))
            names.add(vm.name(std::u16string_view(base::utf16FromUtf8((*child)->name()))));
}

Value NodeObject::primitive(Vm&, Object&)
{
    stage::Node* node = live();
    return m_binding.utf8(node ? node->dotPath() : std::string());
}

} // namespace flash::avm1
