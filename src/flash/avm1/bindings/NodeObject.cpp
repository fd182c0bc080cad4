#include "flash/avm1/bindings/NodeObject.h"

#include "base/TextCodes.h"
#include "flash/avm1/bindings/StageBinding.h"
#include "flash/stage/Button.h"

#include <algorithm>

namespace flash::avm1
{

NodeObject::NodeObject(StageBinding& binding, stage::NodePtr node, Object& self)
    : m_binding(binding), m_node(std::move(node)), m_self(&self)
{
    m_node->peer = &self;
}

NodeObject::~NodeObject() { detached(); }

void NodeObject::detached()
{
    // By then it may have another one.
    if (m_node->peer == m_self) m_node->peer = nullptr;
}

void NodeObject::keepPath() { m_path = m_node->dotPath(); }

stage::Node* NodeObject::live()
{
    if (!m_node->isRemoved()) return m_node.get();
    if (m_path.empty() || m_node->kind() != stage::NodeKind::Clip) return nullptr;
    // A script's reference to a clip is by its path: another clip of that name takes the place of one that
    // has gone.
    stage::Stage& stage = m_binding.stage();
    std::string_view rest = m_path;
    constexpr std::string_view kLevel = "_level";
    rest.remove_prefix(kLevel.size());
    const std::size_t dot = std::min(rest.find('.'), rest.size());
    stage::Clip* clip = stage.level(std::atoi(std::string(rest.substr(0, dot)).c_str()));
    rest.remove_prefix(dot);
    while (clip && !rest.empty()) {
        rest.remove_prefix(1);
        const std::size_t end = std::min(rest.find('.'), rest.size());
        clip = stage::asClip(clip->childByName(rest.substr(0, end), stage::Clip::Case::Sensitive));
        rest.remove_prefix(end);
    }
    return clip;
}

std::string_view NodeObject::typeOf() const
{
    return m_node->kind() == stage::NodeKind::Clip ? "movieclip" : "object";
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

} // namespace

Caching NodeObject::caching(Vm& vm, Name name) const
{
    const std::u16string_view text = name.view();
    const bool plain = !text.empty() && text[0] != u'_';
    // Variables come before children, and those before what the class has.
    return {true, plain && !isSetting(text), plain && !vm.names().mayBeNodeName(name)};
}

bool NodeObject::lookUp(Vm& vm, Name name, Value& result)
{
    stage::Node* node = live();
    if (!node) return false;
    const std::u16string_view text = name.view();
    if (text.empty()) return false;
    if (stage::Clip* clip = vm.names().mayBeNodeName(name) ? stage::asClip(node) : nullptr) {
        const auto sensitivity =
            vm.isCaseSensitive() ? stage::Clip::Case::Sensitive : stage::Clip::Case::Insensitive;
        if (!clip->children().empty()) {
            if (stage::Node* child = clip->childByName(base::utf8FromUtf16(text), sensitivity)) {
                // Scripts cannot name what is only drawn; they get the clip it lies in.
                Object* object = m_binding.objectOf(child);
                result = object ? Value(object) : Value(m_binding.objectOf(clip));
                return true;
            }
        }
    }
    if (text[0] != u'_') return false;
    if (const std::optional<int> index = m_binding.propertyIndex(name)) {
        result = m_binding.propertyOf(*node, *index);
        return true;
    }
    Object* self = m_binding.objectOf(node);
    const std::u16string folded = AtomTable::fold(text);
    if (folded == u"_root") {
        result = m_binding.root(self);
        return true;
    }
    if (folded == u"_parent") {
        Object* parent = m_binding.parent(self);
        if (!parent) return false;
        result = parent;
        return true;
    }
    if (folded == u"_lockroot") {
        stage::Clip* clip = stage::asClip(node);
        if (!clip) return false;
        result = clip->lockRoot;
        return true;
    }
    if (folded.starts_with(u"_level") || folded.starts_with(u"_flash")) {
        const std::u16string_view digits = std::u16string_view(folded).substr(6);
        int number = 0;
        for (const char16_t c : digits) {
            if (c < u'0' || c > u'9' || number > 100'000'000) return false;
            number = number * 10 + (c - u'0');
        }
        if (digits.empty()) return false;
        Object* level = m_binding.level(number);
        if (!level) return false;
        result = level;
        return true;
    }
    return false;
}

bool NodeObject::getOwn(Vm& vm, Object& self, Name name, Value receiver, Value& result)
{
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
    const std::u16string_view text = name.view();
    if (!text.empty() && text[0] == u'_') {
        stage::Node* node = live();
        if (const std::optional<int> index = m_binding.propertyIndex(name)) {
            if (node) m_binding.setPropertyOf(*node, *index, value);
            return;
        }
        if (stage::Clip* clip = stage::asClip(node); clip && AtomTable::fold(text) == u"_lockroot") {
            clip->lockRoot = toBoolean(vm, value);
            return;
        }
    }
    self.putPlain(vm, name, value);
    noteScriptSetting(vm, name, value);
}

bool NodeObject::hasOwn(Vm& vm, Object& self, Name name)
{
    Value ignored;
    return self.hasPlain(vm, name) || lookUp(vm, name, ignored);
}

bool NodeObject::deleteOwn(Vm& vm, Object& self, Name name) { return self.deletePlain(vm, name); }

void NodeObject::enumerateOwn(Vm& vm, Object& self, NameCollector& names)
{
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
