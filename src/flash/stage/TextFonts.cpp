#include "flash/stage/TextFonts.h"

#include "base/Ascii.h"
#include "flash/stage/Stage.h"

#include <QFontDatabase>
#include <QGuiApplication>

namespace flash::stage
{

namespace
{

// Names do not tell cases apart.
std::string keyOf(const std::string& name, bool bold, bool italic)
{
    std::string key = name;
    for (char& c : key) c = base::asciiLower(c);
    key += bold ? "\nb" : "\n";
    if (italic) key += 'i';
    return key;
}

} // namespace

TextFonts::PerMovie& TextFonts::of(const MoviePtr& movie)
{
    PerMovie& known = m_movies[movie.get()];
    if (known.movie.lock() == movie) return known;
    // A first look, or another movie at the address of one that is gone.
    known = {};
    known.movie = movie;
    for (const auto& [id, character] : movie->characters) {
        const auto* font = std::get_if<swf::Font>(&character->data);
        if (!font || font->glyphs.empty()) continue;
        known.fontByKey.emplace(keyOf(m_stage.linkage().textOf(movie, font->name), font->bold, font->italic),
                                id);
    }
    return known;
}

render::FontFacePtr TextFonts::embedded(const MoviePtr& movie, const std::string& name, bool bold,
                                        bool italic)
{
    if (!movie) return nullptr;
    const PerMovie& known = of(movie);
    const auto found = known.fontByKey.find(keyOf(name, bold, italic));
    return found == known.fontByKey.end() ? nullptr : embedded(movie, found->second);
}

render::FontFacePtr TextFonts::shared(const std::string& name, bool bold, bool italic)
{
    const std::string wanted = keyOf(name, bold, italic);
    for (const auto& [from, id] : m_shared) {
        const MoviePtr movie = from.lock();
        const swf::Character* character = movie ? movie->character(id) : nullptr;
        const auto* font = character != nullptr ? std::get_if<swf::Font>(&character->data) : nullptr;
        if (font == nullptr) continue;
        if (keyOf(m_stage.linkage().textOf(movie, font->name), font->bold, font->italic) == wanted)
            return embedded(movie, id);
    }
    return nullptr;
}

render::FontFacePtr TextFonts::embedded(const MoviePtr& movie, std::uint16_t fontId)
{
    if (!movie) return nullptr;
    render::FontFacePtr& face = of(movie).faces[fontId];
    if (face) return face;
    const auto found = movie->characters.find(fontId);
    if (found == movie->characters.end()) return nullptr;
    const auto* font = std::get_if<swf::Font>(&found->second->data);
    if (!font || font->glyphs.empty()) return nullptr;
    face = render::makeEmbeddedFace(std::shared_ptr<const swf::Font>(found->second, font));
    return face;
}

std::vector<std::string> TextFonts::installed()
{
    std::vector<std::string> names;
    if (!qGuiApp) return names;
    for (const QString& family : QFontDatabase::families()) names.push_back(family.toStdString());
    return names;
}

render::FontFacePtr TextFonts::device(const std::string& name, bool bold, bool italic)
{
    return m_device.face(name, bold, italic);
}

render::FontFacePtr TextFonts::device(const MoviePtr& movie, const std::string& name, bool bold, bool italic)
{
    if (!movie) return device(name, bold, italic);
    const std::string key = keyOf(name, bold, italic);
    if (const auto known = of(movie).inPlaceOfDevice.find(key); known != of(movie).inPlaceOfDevice.end())
        return known->second;
    render::FontFacePtr face = device(name, bold, italic);
    if (!render::DeviceFonts::has(name))
        face = render::completedBy(embedded(movie, name, bold, italic), face);
    // Without an application there are no fonts, but later there may be one.
    if (qGuiApp) of(movie).inPlaceOfDevice.emplace(key, face);
    return face;
}

} // namespace flash::stage
