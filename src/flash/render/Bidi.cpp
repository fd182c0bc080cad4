#include "flash/render/Bidi.h"

#include <QChar>

#include <algorithm>
#include <array>
#include <limits>
#include <optional>

namespace flash::render
{
namespace
{

using Class = QChar::Direction;

constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();
constexpr std::uint8_t kDeepest = 125;

bool isInitiator(Class c) { return c == QChar::DirLRI || c == QChar::DirRLI || c == QChar::DirFSI; }
bool isIsolate(Class c) { return isInitiator(c) || c == QChar::DirPDI; }
/// What has no place of its own in the order.
bool isRemoved(Class c)
{
    switch (c) {
    case QChar::DirLRE:
    case QChar::DirRLE:
    case QChar::DirLRO:
    case QChar::DirRLO:
    case QChar::DirPDF:
    case QChar::DirBN: return true;
    default: return false;
    }
}
bool isNeutral(Class c)
{
    return c == QChar::DirB || c == QChar::DirS || c == QChar::DirWS || c == QChar::DirON || isIsolate(c);
}
bool isNumber(Class c) { return c == QChar::DirEN || c == QChar::DirAN; }
Class directionOf(std::uint8_t level) { return level % 2 != 0 ? QChar::DirR : QChar::DirL; }

/// One paragraph.
class Resolver
{
public:
    Resolver(std::u16string_view text, std::span<std::uint8_t> levels, std::uint8_t base)
        : m_text(text), m_levels(levels), m_base(base)
    {
    }
    void run();

private:
    struct Sequence {
        std::vector<std::size_t> places; ///< in the text
        std::vector<Class> classes;      ///< of these; what is to become of them
        std::uint8_t level = 0;
        Class before = QChar::DirL, after = QChar::DirL;
    };
    void readClasses();
    void matchIsolates();
    [[nodiscard]] bool isolatedToTheLeft(std::size_t initiator) const;
    void findExplicitLevels();
    void findSequences();
    void resolve(Sequence& sequence);
    static void resolveWeak(Sequence& sequence);
    void resolveBrackets(Sequence& sequence) const;
    static void resolveNeutral(Sequence& sequence);
    void finish();

    std::u16string_view m_text;
    std::span<std::uint8_t> m_levels;
    std::uint8_t m_base;
    std::vector<Class> m_classes, m_original;
    std::vector<std::size_t> m_match; ///< the end of an isolate for its beginning and the other way round
};

void Resolver::readClasses()
{
    for (std::size_t i = 0; i < m_text.size(); ++i) {
        const bool isPair = QChar::isHighSurrogate(m_text[i]) && i + 1 < m_text.size() &&
                            QChar::isLowSurrogate(m_text[i + 1]);
        const char32_t character = isPair ? QChar::surrogateToUcs4(m_text[i], m_text[i + 1]) : m_text[i];
        m_classes.push_back(QChar::direction(character));
        if (!isPair) continue;
        m_classes.push_back(m_classes.back() == QChar::DirNSM ? QChar::DirNSM : m_classes.back());
        ++i;
    }
    m_original = m_classes;
}

void Resolver::matchIsolates()
{
    m_match.assign(m_text.size(), kNone);
    std::vector<std::size_t> open;
    for (std::size_t i = 0; i < m_text.size(); ++i) {
        if (isInitiator(m_classes[i])) {
            open.push_back(i);
        } else if (m_classes[i] == QChar::DirPDI && !open.empty()) {
            m_match[i] = open.back();
            m_match[open.back()] = i;
            open.pop_back();
        }
    }
}

bool Resolver::isolatedToTheLeft(std::size_t initiator) const
{
    const std::size_t end = std::min(m_match[initiator], m_text.size());
    for (std::size_t i = initiator + 1; i < end; ++i) {
        if (isInitiator(m_classes[i])) {
            if (m_match[i] == kNone) return false;
            i = m_match[i];
        } else if (m_classes[i] == QChar::DirL) {
            return false;
        } else if (m_classes[i] == QChar::DirR || m_classes[i] == QChar::DirAL) {
            return true;
        }
    }
    return false;
}

void Resolver::findExplicitLevels()
{
    struct Status {
        std::uint8_t level;
        std::optional<Class> override;
        bool isIsolate;
    };
    std::vector<Status> stack{{m_base, {}, false}};
    std::size_t overflowIsolates = 0, overflowEmbeddings = 0, validIsolates = 0;
    const auto next = [&](bool toLeft) -> std::uint8_t {
        const int level = stack.back().level;
        return static_cast<std::uint8_t>(toLeft ? (level + 1) | 1 : (level + 2) & ~1);
    };
    for (std::size_t i = 0; i < m_text.size(); ++i) {
        Class& own = m_classes[i];
        m_levels[i] = stack.back().level;
        switch (own) {
        case QChar::DirLRE:
        case QChar::DirRLE:
        case QChar::DirLRO:
        case QChar::DirRLO: {
            const bool toLeft = own == QChar::DirRLE || own == QChar::DirRLO;
            const std::uint8_t level = next(toLeft);
            std::optional<Class> override;
            if (own == QChar::DirLRO || own == QChar::DirRLO) override = directionOf(toLeft ? 1 : 0);
            if (level <= kDeepest && overflowIsolates == 0 && overflowEmbeddings == 0)
                stack.push_back({level, override, false});
            else if (overflowIsolates == 0)
                ++overflowEmbeddings;
            break;
        }
        case QChar::DirLRI:
        case QChar::DirRLI:
        case QChar::DirFSI: {
            const bool toLeft = own == QChar::DirRLI || (own == QChar::DirFSI && isolatedToTheLeft(i));
            if (stack.back().override) own = *stack.back().override;
            const std::uint8_t level = next(toLeft);
            if (level <= kDeepest && overflowIsolates == 0 && overflowEmbeddings == 0) {
                ++validIsolates;
                stack.push_back({level, {}, true});
            } else {
                ++overflowIsolates;
            }
            break;
        }
        case QChar::DirPDI:
            if (overflowIsolates > 0) {
                --overflowIsolates;
            } else if (validIsolates > 0) {
                overflowEmbeddings = 0;
                while (!stack.back().isIsolate) stack.pop_back();
                stack.pop_back();
                --validIsolates;
            }
            m_levels[i] = stack.back().level;
            if (stack.back().override) own = *stack.back().override;
            break;
        case QChar::DirPDF:
            if (overflowIsolates > 0) break;
            if (overflowEmbeddings > 0)
                --overflowEmbeddings;
            else if (!stack.back().isIsolate && stack.size() > 1)
                stack.pop_back();
            break;
        case QChar::DirB: m_levels[i] = m_base; break;
        case QChar::DirBN: break;
        default:
            if (stack.back().override) own = *stack.back().override;
            break;
        }
    }
}

/// Stretches of one level, joined across the isolates between them.
void Resolver::findSequences()
{
    struct Run {
        std::vector<std::size_t> places;
        bool isTaken = false;
    };
    std::vector<Run> runs;
    std::vector<std::size_t> kept, runAt(m_text.size(), kNone), keptAt(m_text.size(), kNone);
    for (std::size_t i = 0; i < m_text.size(); ++i) {
        if (isRemoved(m_original[i])) continue;
        if (kept.empty() || m_levels[kept.back()] != m_levels[i]) runs.emplace_back();
        runs.back().places.push_back(i);
        runAt[i] = runs.size() - 1;
        keptAt[i] = kept.size();
        kept.push_back(i);
    }
    const auto opensAt = [&](std::size_t place) { return m_match[place] != kNone && m_match[place] > place; };
    for (Run& first : runs) {
        const std::size_t head = first.places.front();
        if (first.isTaken || (m_match[head] != kNone && m_match[head] < head)) continue;
        Sequence sequence;
        sequence.level = m_levels[head];
        for (Run* run = &first;;) {
            run->isTaken = true;
            sequence.places.insert(sequence.places.end(), run->places.begin(), run->places.end());
            const std::size_t last = run->places.back();
            if (!opensAt(last)) break;
            Run& next = runs[runAt[m_match[last]]];
            if (next.isTaken || next.places.front() != m_match[last]) break;
            run = &next;
        }
        const std::size_t tail = sequence.places.back();
        const std::uint8_t left = keptAt[head] > 0 ? m_levels[kept[keptAt[head] - 1]] : m_base;
        const bool isOpen = isInitiator(m_original[tail]) && m_match[tail] == kNone;
        const std::uint8_t right =
            !isOpen && keptAt[tail] + 1 < kept.size() ? m_levels[kept[keptAt[tail] + 1]] : m_base;
        sequence.before = directionOf(std::max(sequence.level, left));
        sequence.after = directionOf(std::max(sequence.level, right));
        resolve(sequence);
    }
}

void Resolver::resolve(Sequence& sequence)
{
    for (const std::size_t place : sequence.places) sequence.classes.push_back(m_classes[place]);
    resolveWeak(sequence);
    resolveBrackets(sequence);
    resolveNeutral(sequence);
    for (std::size_t i = 0; i < sequence.places.size(); ++i) {
        std::uint8_t& level = m_levels[sequence.places[i]];
        const Class to = sequence.classes[i];
        if (sequence.level % 2 == 0)
            level = static_cast<std::uint8_t>(level + (to == QChar::DirR ? 1 : isNumber(to) ? 2 : 0));
        else if (to != QChar::DirR)
            ++level;
    }
}

// Rules W1 to W7.
void Resolver::resolveWeak(Sequence& sequence)
{
    auto& classes = sequence.classes;
    Class previous = sequence.before, strong = sequence.before;
    for (Class& own : classes) {
        if (own == QChar::DirNSM) own = isIsolate(previous) ? QChar::DirON : previous;
        if (own == QChar::DirL || own == QChar::DirR || own == QChar::DirAL) strong = own;
        if (own == QChar::DirEN && strong == QChar::DirAL) own = QChar::DirAN;
        previous = own;
    }
    std::ranges::replace(classes, QChar::DirAL, QChar::DirR);
    for (std::size_t i = 1; i + 1 < classes.size(); ++i) {
        const Class left = classes[i - 1];
        if (left != classes[i + 1] || !isNumber(left)) continue;
        if (classes[i] == QChar::DirCS || (classes[i] == QChar::DirES && left == QChar::DirEN))
            classes[i] = left;
    }
    for (std::size_t i = 0; i < classes.size();) {
        std::size_t end = i;
        while (end < classes.size() && classes[end] == QChar::DirET) ++end;
        const bool beside = (i > 0 && classes[i - 1] == QChar::DirEN) ||
                            (end < classes.size() && classes[end] == QChar::DirEN);
        for (std::size_t at = i; at < end; ++at) classes[at] = beside ? QChar::DirEN : QChar::DirON;
        i = end + 1;
    }
    strong = sequence.before;
    for (Class& own : classes) {
        if (own == QChar::DirES || own == QChar::DirCS) own = QChar::DirON;
        if (own == QChar::DirL || own == QChar::DirR) strong = own;
        if (own == QChar::DirEN && strong == QChar::DirL) own = QChar::DirL;
    }
}

// Rule N0: both of a pair of brackets go the way of what they are about.
void Resolver::resolveBrackets(Sequence& sequence) const
{
    struct Pair {
        std::size_t open, close;
    };
    constexpr std::size_t kMostOpen = 63;
    struct Open {
        char32_t closedBy;
        std::size_t at;
    };
    std::vector<Open> open;
    std::vector<Pair> pairs;
    auto& classes = sequence.classes;
    for (std::size_t i = 0; i < classes.size(); ++i) {
        const char32_t character = m_text[sequence.places[i]];
        if (classes[i] != QChar::DirON || !QChar::hasMirrored(character)) continue;
        const QChar::Category category = QChar::category(character);
        if (category == QChar::Punctuation_Open) {
            if (open.size() == kMostOpen) break;
            open.push_back({QChar::mirroredChar(character), i});
        } else if (category == QChar::Punctuation_Close) {
            for (std::size_t n = open.size(); n-- > 0;) {
                if (open[n].closedBy != character) continue;
                pairs.push_back({open[n].at, i});
                open.resize(n);
                break;
            }
        }
    }
    std::ranges::sort(pairs, {}, &Pair::open);
    const Class along = directionOf(sequence.level);
    const auto strongOf = [](Class c) { return isNumber(c) ? QChar::DirR : c; };
    // The strong one before each place changes with what is decided on the way.
    Class before = sequence.before;
    std::size_t read = 0;
    for (const Pair& pair : pairs) {
        for (; read < pair.open; ++read) {
            const Class strong = strongOf(classes[read]);
            if (strong == QChar::DirL || strong == QChar::DirR) before = strong;
        }
        bool hasAlong = false, hasOther = false;
        for (std::size_t i = pair.open + 1; i < pair.close && !hasAlong; ++i) {
            const Class strong = strongOf(classes[i]);
            if (strong != QChar::DirL && strong != QChar::DirR) continue;
            (strong == along ? hasAlong : hasOther) = true;
        }
        if (!hasAlong && !hasOther) continue;
        const Class to = hasAlong ? along : before;
        for (const std::size_t bracket : {pair.open, pair.close}) {
            classes[bracket] = to;
            for (std::size_t i = bracket + 1;
                 i < classes.size() && m_original[sequence.places[i]] == QChar::DirNSM; ++i)
                classes[i] = to;
        }
    }
}

// Rules N1 and N2.
void Resolver::resolveNeutral(Sequence& sequence)
{
    auto& classes = sequence.classes;
    const auto strongOf = [](Class c) { return isNumber(c) ? QChar::DirR : c; };
    for (std::size_t i = 0; i < classes.size();) {
        if (!isNeutral(classes[i])) {
            ++i;
            continue;
        }
        std::size_t end = i;
        while (end < classes.size() && isNeutral(classes[end])) ++end;
        const Class left = i > 0 ? strongOf(classes[i - 1]) : sequence.before;
        const Class right = end < classes.size() ? strongOf(classes[end]) : sequence.after;
        const Class to = left == right ? left : directionOf(sequence.level);
        std::fill(classes.begin() + static_cast<std::ptrdiff_t>(i),
                  classes.begin() + static_cast<std::ptrdiff_t>(end), to);
        i = end;
    }
}

// What has been left out goes with what is before it; separators and the blanks before them stand as the
// paragraph does.
void Resolver::finish()
{
    for (std::size_t i = 0; i < m_text.size(); ++i)
        if (isRemoved(m_original[i])) m_levels[i] = i > 0 ? m_levels[i - 1] : m_base;
    bool endsHere = false;
    for (std::size_t i = m_text.size(); i-- > 0;) {
        const Class own = QChar::direction(m_text[i]);
        if (own == QChar::DirS || own == QChar::DirB)
            endsHere = true;
        else if (own != QChar::DirWS && !isIsolate(own) && !isRemoved(own))
            endsHere = false;
        if (endsHere) m_levels[i] = m_base;
    }
}

void Resolver::run()
{
    readClasses();
    matchIsolates();
    findExplicitLevels();
    findSequences();
    finish();
}

bool runsToTheLeft(char16_t unit)
{
    switch (QChar::direction(unit)) {
    case QChar::DirR:
    case QChar::DirAL:
    case QChar::DirAN:
    case QChar::DirRLE:
    case QChar::DirRLO:
    case QChar::DirRLI: return true;
    default: return QChar::isSurrogate(unit);
    }
}

} // namespace

std::vector<std::uint8_t> bidiLevels(std::u16string_view text, std::uint8_t base)
{
    base = std::min(base, kDeepest);
    std::vector<std::uint8_t> levels(text.size(), base);
    if (base % 2 == 0 && std::ranges::none_of(text, runsToTheLeft)) return levels;
    for (std::size_t begin = 0; begin < text.size();) {
        std::size_t end = begin;
        while (end < text.size() && QChar::direction(text[end]) != QChar::DirB) ++end;
        end = std::min(end + 1, text.size());
        Resolver(text.substr(begin, end - begin), std::span(levels).subspan(begin, end - begin), base).run();
        begin = end;
    }
    return levels;
}

std::vector<std::size_t> visualOrder(std::span<const std::uint8_t> levels)
{
    std::vector<std::size_t> order(levels.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
    if (levels.empty()) return order;
    const std::uint8_t highest = *std::ranges::max_element(levels);
    for (int level = highest; level > 0; --level) {
        for (std::size_t i = 0; i < order.size();) {
            std::size_t end = i;
            while (end < order.size() && levels[order[end]] >= level) ++end;
            std::reverse(order.begin() + static_cast<std::ptrdiff_t>(i),
                         order.begin() + static_cast<std::ptrdiff_t>(end));
            i = std::max(end, i + 1);
        }
    }
    return order;
}

} // namespace flash::render
