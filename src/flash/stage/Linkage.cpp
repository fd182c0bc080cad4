#include "flash/stage/Linkage.h"

#include "base/Ascii.h"
#include "base/TextCodes.h"
#include "flash/stage/Stage.h"

namespace flash::stage
{

const base::TextCode& Linkage::textCode() const
{
    return m_textCode != nullptr ? *m_textCode : base::TextCode::ansi();
}

std::string Linkage::textOf(const MoviePtr& movie, std::string_view bytes) const
{
    if (movie && movie->header.version >= 6) return std::string(bytes);
    return textCode().utf8From(bytes);
}

std::string Linkage::linkageName(const MoviePtr& movie, std::uint16_t characterId)
{
    if (!movie || movie->exports.empty()) return {};
    auto [entry, fresh] = m_linkageNames.try_emplace(movie);
    if (fresh)
        for (const auto& [name, id] : movie->exports) entry->second.emplace(id, textOf(movie, name));
    const auto found = entry->second.find(characterId);
    return found == entry->second.end() ? std::string() : found->second;
}

std::optional<std::uint16_t> Linkage::exportedCharacter(const MoviePtr& movie, std::string_view name) const
{
    if (!movie) return {};
    const auto passed = m_passed.find(movie);
    const Exports& exports = passed == m_passed.end() ? movie->exports : passed->second;
    std::string key(name);
    auto found = exports.find(key);
    if (found == exports.end() && movie->header.version < 6) {
        key = textCode().fromUtf8(key);
        found = exports.find(key);
    }
    if (found != exports.end()) return found->second;
    // Linkage names do not tell cases apart.
    for (const auto& [exported, id] : exports)
        if (base::equalIgnoringAsciiCase(exported, key)) return id;
    return {};
}

void Linkage::passFrame(const MoviePtr& movie, const swf::Frame& frame)
{
    const bool isFirst = &frame == &movie->timeline.frames.front();
    Exports* exports = isFirst ? &m_passed[movie] : nullptr;
    for (const swf::ControlTag& tag : frame.tags) {
        const auto* exported = std::get_if<swf::ExportAssets>(&tag);
        if (exported == nullptr) continue;
        if (exports == nullptr) exports = &m_passed[movie];
        for (const auto& [id, name] : exported->names) exports->insert_or_assign(name, id);
    }
}

void Linkage::linkImports(const swf::Movie& movie, const std::string& url)
{
    constexpr int kMaxLibraries = 32;
    int librariesLeft = kMaxLibraries;
    linkImports(movie, url, librariesLeft);
}

void Linkage::linkImports(const swf::Movie& movie, const std::string& url, int& librariesLeft)
{
    if (movie.importsKnown) return;
    movie.importsKnown = true;
    for (const swf::Frame& frame : movie.timeline.frames) {
        for (const swf::ControlTag& tag : frame.tags) {
            const auto* wanted = std::get_if<swf::ImportAssets>(&tag);
            // Movies that import from each other in a circle, or from themselves many times over, end here.
            if (!wanted || librariesLeft-- <= 0) continue;
            LoadRequest request;
            request.url = textOf(MoviePtr(MoviePtr(), &movie), wanted->url);
            request.baseUrl = url;
            const auto answer = m_stage.services().loader.load(request);
            if (!answer) {
                m_stage.services().host.logLine(answer.error().what);
                continue;
            }
            const auto library = swf::parseMovie(answer->bytes);
            if (!library) {
                m_stage.services().host.logLine(answer->url + ": " + library.error().what);
                continue;
            }
            linkImports(**library, answer->url, librariesLeft);
            for (const auto& [id, name] : wanted->names) {
                const auto found = (*library)->exports.find(name);
                if (found == (*library)->exports.end())
                    m_stage.services().host.logLine(answer->url + ": exports no " + name);
                else
                    movie.imports[id] = {*library, found->second};
            }
        }
    }
}

} // namespace flash::stage
