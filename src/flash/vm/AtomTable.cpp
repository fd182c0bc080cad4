#include "flash/vm/AtomTable.h"

#include <algorithm>
#include <utility>

namespace flash::vm
{

namespace
{

constexpr std::size_t kFewestSlots = 4096;

char16_t foldUnit(char16_t unit)
{
    if (unit < 0x80) return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit;
    if (unit >= 0xC0 && unit <= 0xDE && unit != 0xD7) return static_cast<char16_t>(unit + 32);
    if (unit >= 0x100 && unit <= 0x177 && unit != 0x130 && unit != 0x138) {
        // Pairs of capital and small letter; between 0x139 and 0x148 the capitals are the odd ones.
        const bool oddCapitals = unit >= 0x139 && unit <= 0x148;
        return (unit % 2 == 1) == oddCapitals ? static_cast<char16_t>(unit + 1) : unit;
    }
    if (unit >= 0x391 && unit <= 0x3A9 && unit != 0x3A2) return static_cast<char16_t>(unit + 32);
    if (unit >= 0x400 && unit <= 0x40F) return static_cast<char16_t>(unit + 80);
    if (unit >= 0x410 && unit <= 0x42F) return static_cast<char16_t>(unit + 32);
    return unit;
}

} // namespace

std::u16string AtomTable::fold(std::u16string_view text)
{
    std::u16string folded(text);
    for (char16_t& unit : folded) unit = foldUnit(unit);
    return folded;
}

AtomTable::AtomTable(Heap& heap) : m_heap(heap), m_slots(kFewestSlots), m_nodeNames(heap), m_units(heap)
{
    m_common = {
        .empty = intern(std::string_view("")),
        .proto = intern("__proto__"),
        .prototype = intern("prototype"),
        .constructor = intern("constructor"),
        .constructorInternal = intern("__constructor__"),
        .resolve = intern("__resolve"),
        .length = intern("length"),
        .toString = intern("toString"),
        .valueOf = intern("valueOf"),
        .callee = intern("callee"),
        .caller = intern("caller"),
        .arguments = intern("arguments"),
        .self = intern("this"),
        .super = intern("super"),
        .root = intern("_root"),
        .parent = intern("_parent"),
        .global = intern("_global"),
        .undefined = intern("undefined"),
        .null = intern("null"),
        .trueText = intern("true"),
        .falseText = intern("false"),
        .onUnload = intern("onUnload"),
        .name = intern("name"),
        .message = intern("message"),
        .string = intern("String"),
    };
    heap.addRootSource([this](Tracer& tracer) {
        const Common& c = m_common;
        for (const Name name : {c.empty,     c.proto,     c.prototype, c.constructor, c.constructorInternal,
                                c.resolve,   c.length,    c.toString,  c.valueOf,     c.callee,
                                c.caller,    c.arguments, c.self,      c.super,       c.root,
                                c.parent,    c.global,    c.undefined, c.null,        c.trueText,
                                c.falseText, c.onUnload,  c.name,      c.message,     c.string})
            tracer(name.cell());
    });
    heap.addSweepHook([this] { dropUnmarked(); });
    for (std::size_t unit = 0; unit < kKeptUnits; ++unit) {
        const auto text = static_cast<char16_t>(unit);
        m_units.push_back(intern(std::u16string_view(&text, 1)));
    }
}

const AtomTable::Slot& AtomTable::slotOf(std::u16string_view text, std::size_t hash) const
{
    const std::size_t last = m_slots.size() - 1;
    for (std::size_t at = hash & last;; at = (at + 1) & last) {
        const Slot& slot = m_slots[at];
        if (slot.atom == nullptr || (slot.hash == hash && slot.atom->m_text == text)) return slot;
    }
}

/// @param slot of a text that has none yet
void AtomTable::put(Slot slot)
{
    const std::size_t slots = m_slots.size();
    if (2 * (m_taken + 1) > slots)
        resize(2 * slots);
    else if (16 * m_taken < slots && slots > kFewestSlots)
        resize(slots / 4);
    ++m_taken;
    place(slot);
}

void AtomTable::place(Slot slot)
{
    const std::size_t last = m_slots.size() - 1;
    std::size_t at = slot.hash & last;
    while (m_slots[at].atom != nullptr) at = (at + 1) & last;
    m_slots[at] = slot;
}

void AtomTable::resize(std::size_t slots)
{
    const std::vector<Slot> before = std::exchange(m_slots, std::vector<Slot>(slots));
    for (const Slot& slot : before)
        if (slot.atom != nullptr) place(slot);
}

Name AtomTable::intern(std::u16string_view text)
{
    const std::size_t hash = hashOf(text);
    if (Atom* known = slotOf(text, hash).atom) return Name(known);
    auto* cell = m_heap.make<Atom>(std::u16string(text));
    m_heap.noteExternalBytes(text.size() * sizeof(char16_t));
    put({hash, cell});
    std::u16string folded = fold(text);
    if (folded != text) cell->m_folded = intern(folded).cell();
    return Name(cell);
}

Name AtomTable::intern(std::string_view latin1)
{
    std::u16string text(latin1.size(), u'\0');
    for (std::size_t i = 0; i < latin1.size(); ++i) text[i] = static_cast<unsigned char>(latin1[i]);
    return intern(text);
}

Name AtomTable::internNew(String* string)
{
    string->m_name = intern(string->view()).cell();
    return Name(string->m_name);
}

Name AtomTable::fromIndex(std::uint32_t index)
{
    char16_t digits[10];
    std::size_t at = std::size(digits);
    do {
        digits[--at] = static_cast<char16_t>(u'0' + index % 10);
        index /= 10;
    } while (index != 0);
    return intern(std::u16string_view(digits + at, std::size(digits) - at));
}

Name AtomTable::fromUnit(char16_t unit)
{
    return unit < kKeptUnits ? m_units[unit] : intern(std::u16string_view(&unit, 1));
}

bool AtomTable::noteNodeName(std::u16string_view text)
{
    if (m_anyMayBeNodeName || text.empty()) return false;
    const std::u16string folded = fold(text);
    Atom* cell = slotOf(folded, hashOf(folded)).atom;
    const bool wasKnown = cell != nullptr;
    if (!wasKnown) cell = intern(folded).cell();
    if (cell->m_isNodeName) return false;
    cell->m_isNodeName = true;
    m_nodeNames.push_back(Name(cell));
    if (m_nodeNames.size() < kMaxNodeNames) return wasKnown;
    m_anyMayBeNodeName = true;
    clearNodeNames();
    return true;
}

void AtomTable::clearNodeNames()
{
    for (const Name name : m_nodeNames) name.cell()->m_isNodeName = false;
    m_nodeNames->clear();
    m_nodeNames->shrink_to_fit();
}

void AtomTable::renewNodeNames(const std::function<void()>& noteAll)
{
    clearNodeNames();
    m_anyMayBeNodeName = false;
    noteAll();
    m_manyNodeNames = std::max(kFewNodeNames, 2 * m_nodeNames.size());
}

void AtomTable::dropUnmarked()
{
    // In place: there may be no memory left. From behind a free slot on, each name goes as far forward as it
    // can.
    const std::size_t last = m_slots.size() - 1;
    std::size_t start = 0;
    while (m_slots[start].atom != nullptr) ++start;
    for (std::size_t i = 1; i <= m_slots.size(); ++i) {
        const Slot slot = std::exchange(m_slots[(start + i) & last], {});
        if (slot.atom == nullptr) continue;
        if (Heap::isMarked(slot.atom))
            place(slot);
        else
            --m_taken;
    }
}

} // namespace flash::vm
