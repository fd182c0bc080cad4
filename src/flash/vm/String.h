#pragma once

#include "flash/vm/Heap.h"

#include <string>
#include <string_view>

namespace flash::vm
{

class Atom;

/// A script string: immutable UTF-16 text. Long concatenations stay a tree of their parts until someone looks
/// at the text, so that building a string piece by piece costs time linear in its length.
class String : public Cell
{
public:
    explicit String(std::u16string text) : m_length(text.size()), m_text(std::move(text)) {}
    String(String* left, String* right);

    /// @returns the text; valid as long as this string lives.
    [[nodiscard]] std::u16string_view view()
    {
        if (m_left != nullptr) flatten();
        return m_text;
    }
    /// UTF-16 units.
    [[nodiscard]] std::size_t length() const { return m_length; }
    [[nodiscard]] bool isEmpty() const { return m_length == 0; }
    /// @returns the interned twin; null when it was not asked for yet (AtomTable::intern()).
    [[nodiscard]] Atom* atom() const { return m_name; }

    void trace(Tracer& tracer) override;

protected:
    friend class AtomTable;
    std::size_t m_length;
    std::u16string m_text;
    // Both set while this is an unflattened concatenation.
    String* m_left = nullptr;
    String* m_right = nullptr;
    Atom* m_name = nullptr; // the interned twin once it was asked for; itself when interned

private:
    void flatten();
};

/// An interned string: one cell for each text.
class Atom final : public String
{
public:
    static constexpr std::uint32_t kNotIndex = 0xFFFF'FFFF;
    explicit Atom(std::u16string text);

    void trace(Tracer& tracer) override;

private:
    friend class Name;
    friend class AtomTable;
    Atom* m_folded = this;     // the lower-case spelling; itself when it is one
    bool m_isNodeName = false; // in the folded spelling only, as is the next
    std::int8_t m_displayProperty = -1;
    std::uint32_t m_index = kNotIndex; // the array index that this text spells in canonical form
    bool m_isPath;
};

/// A property or variable name, interned: two names are the same when their pointers are, and the same but
/// for case when their folded pointers are. Being pointers to cells, names are kept alive like values: by
/// shapes, code, the C++ stack.
class Name
{
public:
    Name() = default;
    explicit Name(Atom* text) : m_text(text) {}

    [[nodiscard]] bool isNull() const { return m_text == nullptr; }
    [[nodiscard]] std::u16string_view view() const { return m_text->view(); }
    [[nodiscard]] String* string() const { return m_text; }
    [[nodiscard]] Atom* cell() const { return m_text; }
    [[nodiscard]] Name folded() const { return Name(m_text->m_folded); }
    /// @returns the array index this name spells ("0", "17", not "017"), or Atom::kNotIndex.
    [[nodiscard]] std::uint32_t arrayIndex() const { return m_text->m_index; }
    /// @returns the number of the display property of that name (`_x` is 0), or -1. Case does not count.
    [[nodiscard]] int displayProperty() const { return m_text->m_folded->m_displayProperty; }
    void setDisplayProperty(int number) const
    {
        m_text->m_folded->m_displayProperty = static_cast<std::int8_t>(number);
    }
    /// @returns whether the text holds a character that separates the steps of a path.
    [[nodiscard]] bool isPath() const { return m_text->m_isPath; }
    /// @returns whether the two are the same name to a movie that does, or does not, tell cases apart.
    [[nodiscard]] bool matches(Name other, bool caseSensitive) const
    {
        return m_text == other.m_text || (!caseSensitive && m_text->m_folded == other.m_text->m_folded);
    }
    friend bool operator==(Name a, Name b) { return a.m_text == b.m_text; }

private:
    Atom* m_text = nullptr;
};

} // namespace flash::vm

// As for values (Value.h): use a RootedList or a TracedList.
template <>
class std::allocator<flash::vm::Name>;
