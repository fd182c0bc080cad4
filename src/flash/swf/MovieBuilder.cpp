#include "flash/swf/MovieBuilder.h"

namespace flash::swf
{
namespace
{

enum : std::uint16_t { kTagSetBackgroundColor = 9, kTagFileAttributes = 69 };

constexpr std::size_t kMaxWarnings = 500;
// Roughly what an entry of the dictionary and its empty definition take.
constexpr std::uint64_t kCharacterBytes = sizeof(Character) + 128;

} // namespace

MovieBuilder::MovieBuilder(std::shared_ptr<Movie> movie, const ParseLimits& limits)
    : m_movie(std::move(movie)), m_limits(limits), m_definitions(limits.definitionBytes),
      m_bitmaps(limits.bitmapBytes)
{
}

void MovieBuilder::define(std::uint16_t id, CharacterData data)
{
    if (!m_definitions.take(kCharacterBytes)) return;
    auto& slot = m_characters[id];
    if (slot) {
        if (m_movie->warnings.size() < kMaxWarnings)
            m_movie->warnings.push_back("character " + std::to_string(id) +
                                        " is defined again; the first definition stays");
        return;
    }
    slot = std::make_shared<Character>();
    slot->id = id;
    slot->data = std::move(data);
    m_movie->characters.emplace(id, slot);
}

void MovieBuilder::defineShape(std::uint16_t id, std::shared_ptr<Shape> shape)
{
    define(id, ShapeCharacter{shape});
    m_shapes.push_back(std::move(shape));
}

void MovieBuilder::defineMorph(std::uint16_t id, std::shared_ptr<MorphShape> morph)
{
    define(id, MorphCharacter{morph});
    m_morphs.push_back(std::move(morph));
}

Character* MovieBuilder::character(std::uint16_t id)
{
    const auto found = m_characters.find(id);
    return found == m_characters.end() ? nullptr : found->second.get();
}

void MovieBuilder::warn(std::string_view tag, std::size_t offset, std::string_view what)
{
    if (m_movie->warnings.size() > kMaxWarnings) return;
    if (m_movie->warnings.size() == kMaxWarnings) {
        m_movie->warnings.emplace_back("more warnings are not listed");
        return;
    }
    std::string line(tag);
    line += " at byte " + std::to_string(offset) + ": ";
    line += what;
    m_movie->warnings.push_back(std::move(line));
}

void MovieBuilder::count(std::uint16_t tagCode, std::uint64_t bytes)
{
    TagCount& entry = m_counts[tagCode];
    entry.code = tagCode;
    ++entry.count;
    entry.bytes += bytes;
    if (m_tags < m_firstTags.size()) m_firstTags[m_tags] = tagCode;
    ++m_tags;
}

void MovieBuilder::link(std::vector<ShapeLayer>& layers) const
{
    const auto resolve = [this](FillStyle& fill) {
        if (fill.kind != FillStyle::Kind::Bitmap) return;
        const auto found = m_characters.find(fill.bitmapId);
        if (found == m_characters.end()) return;
        if (const auto* bitmap = std::get_if<BitmapCharacter>(&found->second->data))
            fill.bitmap = bitmap->bitmap;
    };
    for (ShapeLayer& layer : layers) {
        for (FillStyle& fill : layer.fills) resolve(fill);
        for (LineStyle& line : layer.lines)
            if (line.fill) resolve(*line.fill);
    }
}

void MovieBuilder::finish()
{
    for (const auto& shape : m_shapes) link(shape->layers);
    for (const auto& morph : m_morphs) {
        link(morph->start.layers);
        link(morph->end.layers);
    }
    for (const auto& [code, count] : m_counts) m_movie->tagCounts.push_back(count);
    m_movie->startsWithBackground = m_firstTags[0] == kTagSetBackgroundColor;
    m_movie->startsWithAttributesAndBackground =
        m_firstTags[0] == kTagFileAttributes && m_firstTags[1] == kTagSetBackgroundColor;
}

} // namespace flash::swf
