#include "flash/vm/String.h"

namespace flash::vm
{

String::String(String* left, String* right)
    : m_length(left->length() + right->length()), m_left(left), m_right(right)
{
    // A short text costs less than a tree.
    constexpr std::size_t kShort = 24;
    if (m_length <= kShort) {
        flatten();
        return;
    }
    // A text that grows at its end by little things would be a tree of as many parts, which every collection
    // walks. A few of them become one piece, and that one with those before it that are not longer: few stay,
    // and each character is copied a few times at most.
    constexpr std::size_t kSmall = 24, kFew = 12, kLongestPiece = 4096;
    std::size_t length = m_right->m_length, few = 0;
    if (m_right->m_left != nullptr || length > kSmall) return;
    String* rest = m_left;
    const auto endsWithPieceOf = [&](std::size_t longest) {
        return rest->m_left != nullptr && rest->m_right->m_left == nullptr &&
               rest->m_right->m_length <= longest;
    };
    for (; few < kFew && endsWithPieceOf(kSmall); ++few) {
        length += rest->m_right->m_length;
        rest = rest->m_left;
    }
    if (few < kFew) return;
    while (length <= kLongestPiece && endsWithPieceOf(length)) {
        length += rest->m_right->m_length;
        rest = rest->m_left;
    }
    std::u16string text(length, u'\0');
    std::size_t end = length - m_right->m_length;
    m_right->m_text.copy(text.data() + end, m_right->m_length);
    for (const String* at = m_left; at != rest; at = at->m_left) {
        end -= at->m_right->m_length;
        at->m_right->m_text.copy(text.data() + end, at->m_right->m_length);
    }
    Heap& heap = Heap::of(*this);
    heap.noteExternalBytes(length * sizeof(char16_t));
    m_right = heap.make<String>(std::move(text));
    m_left = rest;
}

void String::flatten()
{
    Heap::of(*this).noteExternalBytes(m_length * sizeof(char16_t));
    std::u16string text;
    text.reserve(m_length);
    if (m_left->m_left == nullptr && m_right->m_left == nullptr) {
        m_text = std::move(text.append(m_left->m_text).append(m_right->m_text));
        m_left = m_right = nullptr;
        return;
    }
    text.resize(m_length);
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
