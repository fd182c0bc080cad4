#include "flash/vm/String.h"

namespace flash::vm
{

String::String(String* left, String* right)
    : m_length(left->length() + right->length()), m_left(left), m_right(right)
{
    // A short text costs less than a tree.
    constexpr std::size_t kShort = 24;
    if (m_length <= kShort) flatten();
}

void String::flatten()
{
    Heap::of(*this).noteExternalBytes(m_length * sizeof(char16_t));
    std::u16string text(m_length, u'\0');
    std::size_t end = m_length;
    std::vector<String*> pending{m_left, m_right};
    while (!pending.empty()) {
        String* part = pending.back();
        pending.pop_back();
        if (part->m_left != nullptr) {
            pending.push_back(part->m_left);
            pending.push_back(part->m_right);
            continue;
        }
        end -= part->m_text.size();
        part->m_text.copy(text.data() + end, part->m_text.size());
    }
    m_text = std::move(text);
    m_left = m_right = nullptr;
}

void String::trace(Tracer& tracer)
{
    tracer(m_left);
    tracer(m_right);
    tracer(m_name);
    tracer.outside(m_text.capacity() * sizeof(char16_t));
}

Atom::Atom(std::u16string text) : String(std::move(text))
{
    m_name = this;
    m_isPath = m_text.find_first_of(u"/:.") != std::u16string::npos;
    constexpr std::size_t kMaxDigits = 9; // more could be beyond 32 bits; such names are ordinary ones
    if (m_text.empty() || m_text.size() > kMaxDigits || (m_text[0] == u'0' && m_text.size() > 1)) return;
    std::uint32_t index = 0;
    for (const char16_t unit : m_text) {
        if (unit < u'0' || unit > u'9') return;
        index = index * 10 + static_cast<std::uint32_t>(unit - u'0');
    }
    m_index = index;
}

void Atom::trace(Tracer& tracer)
{
    tracer(m_folded);
    tracer.outside(m_text.capacity() * sizeof(char16_t));
}

} // namespace flash::vm
