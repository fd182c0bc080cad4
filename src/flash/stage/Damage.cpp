#include "flash/stage/Damage.h"

#include <algorithm>
#include <limits>

namespace flash::stage
{

namespace
{

long long areaOf(const render::IntRect& box) { return 1LL * box.width() * box.height(); }

/// Pixels that one box around both has and they together do not.
long long wasteOf(const render::IntRect& a, const render::IntRect& b)
{
    return areaOf(render::unite(a, b)) - areaOf(a) - areaOf(b);
}

} // namespace

void Damage::add(const render::IntRect& box)
{
    const render::IntRect within = render::intersect(box, m_area);
    if (within.isEmpty() || contains(within)) return;
    put(within);
    if (m_count <= kMaxBoxes) return;
    std::size_t first = 0, second = 1;
    long long least = std::numeric_limits<long long>::max();
    for (std::size_t a = 0; a < m_count; ++a)
        for (std::size_t b = a + 1; b < m_count; ++b)
            if (const long long waste = wasteOf(m_boxes[a], m_boxes[b]); waste < least) {
                least = waste;
                first = a;
                second = b;
            }
    const render::IntRect both = render::unite(m_boxes[first], m_boxes[second]);
    remove(second); // the later one first: it is replaced by the last
    remove(first);
    put(both);
}

/// Each round takes up at least one box, so that it comes to an end.
void Damage::put(render::IntRect box)
{
    for (std::size_t i = 0; i < m_count;) {
        if (!box.contains(m_boxes[i]) && wasteOf(box, m_boxes[i]) > m_boxCost) {
            ++i;
            continue;
        }
        box = render::unite(box, m_boxes[i]);
        remove(i);
        i = 0;
    }
    m_boxes[m_count++] = box;
}

render::IntRect Damage::bounds() const
{
    render::IntRect all;
    for (const render::IntRect& box : boxes()) all = render::unite(all, box);
    return all;
}

bool Damage::contains(const render::IntRect& box) const
{
    return std::ranges::any_of(boxes(), [&](const render::IntRect& one) { return one.contains(box); });
}

void Damage::setArea(const render::IntRect& area)
{
    m_area = area;
    for (std::size_t i = 0; i < m_count;) {
        m_boxes[i] = render::intersect(m_boxes[i], area);
        m_boxes[i].isEmpty() ? remove(i) : static_cast<void>(++i);
    }
}

void Damage::settle()
{
    long long sum = 0;
    for (const render::IntRect& box : boxes()) sum += areaOf(box);
    const render::IntRect all = bounds();
    if (m_count < 2 || 4 * sum < 3 * areaOf(all)) return;
    m_boxes[0] = all;
    m_count = 1;
}

} // namespace flash::stage
