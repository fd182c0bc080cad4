#include "swfc/source/MovieBuilder.h"

#include "swfc/actionscript3/AbcAssembler.h"

#include <algorithm>

namespace swfc::source
{
namespace
{

using output::Tag;

/// What the class of a character has to be, when the sources do not say more of it.
struct BaseClass {
    CharacterKind kind;
    const char* name;
    const char* constructor; ///< its parameters and what the base class gets of them
};
constexpr BaseClass kBaseClasses[] = {
    {CharacterKind::Sprite, "flash.display.MovieClip", nullptr},
    {CharacterKind::Button, "flash.display.SimpleButton", nullptr},
    {CharacterKind::Bitmap, "flash.display.BitmapData",
     "(width:int = 0, height:int = 0) { super(width, height); }"},
    {CharacterKind::Sound, "flash.media.Sound", nullptr},
    {CharacterKind::Font, "flash.text.Font", nullptr},
};

const BaseClass* baseOf(CharacterKind kind)
{
    const auto* found = std::ranges::find(kBaseClasses, kind, &BaseClass::kind);
    return found == std::end(kBaseClasses) ? nullptr : found;
}

std::string identifierOf(const std::string& text)
{
    std::string name;
    for (const char c : text) name += actionscript3::isNamePart(c) ? c : '_';
    return name;
}

} // namespace

/// A file of classes.
void MovieBuilder::sourceElement(const Element& element)
{
    Attributes attributes(element, m_diagnostics);
    const auto source = scriptSource(element, attributes);
    if (!m_isActionScript3)
        error(element, "expected actionscript=\"3\" of the movie for <actionscript>");
    else if (source)
        m_program->addFile(*source);
}

/// A block as the assembler makes it, which stands where it is written.
void MovieBuilder::abcElement(const Element& element)
{
    Attributes attributes(element, m_diagnostics);
    const auto source = scriptSource(element, attributes);
    const bool isLazy = attributes.flag("lazy");
    if (!m_isActionScript3) {
        error(element, "expected actionscript=\"3\" of the movie for <abc>");
        return;
    }
    if (!source) return;
    output::BitWriter out;
    out.u32(isLazy ? 1 : 0);
    out.text(attributes.text("name", ""));
    out.append(actionscript3::assemble(*source, m_diagnostics));
    definitions().add(Tag::DoAbc, out);
    m_hasBlocks = true;
}

/// Notes the class of a character. Which classes there are is known when all sources have been read.
void MovieBuilder::link(std::uint16_t id, CharacterKind kind, const std::string& className, Position where,
                        std::vector<actionscript3::Program::FrameScript> scripts)
{
    m_links.push_back({id, kind, className, where, std::move(scripts)});
}

/// A class for a character of which the sources have none. @returns false when it cannot be made
bool MovieBuilder::provideClass(const std::string& name, CharacterKind kind)
{
    const BaseClass* base = baseOf(kind);
    const auto dot = name.rfind('.');
    const std::string package = dot == std::string::npos ? "" : name.substr(0, dot);
    const std::string plain = dot == std::string::npos ? name : name.substr(dot + 1);
    if (base == nullptr || plain.empty() || identifierOf(plain) != plain) return false;
    std::string text = "package " + package + " { import " + base->name + "; public dynamic class " + plain +
                       " extends " + base->name + " {";
    if (base->constructor != nullptr) text += " public function " + plain + base->constructor;
    m_program->addFile({text + " } }", plain, {m_diagnostics.addFile(plain), 1, 1}});
    return true;
}

/// Compiles everything in ActionScript 3 and writes it before the first frame's contents.
void MovieBuilder::writeScripts()
{
    if (m_onlySource) {
        m_main.scripts.clear();
        m_program->addFile(*m_onlySource);
    }
    if (!m_main.scripts.empty() || !m_document.empty())
        link(0, CharacterKind::Sprite, m_document, {}, std::move(m_main.scripts));
    output::BitWriter symbols;
    symbols.u16(static_cast<std::uint32_t>(m_links.size()));
    int made = 0;
    for (LinkedClass& linked : m_links) {
        std::string name = linked.name;
        const bool isKnown = !name.empty() && m_program->findClass(name) != nullptr;
        if (!linked.scripts.empty()) {
            const std::string base = isKnown ? name : baseOf(CharacterKind::Sprite)->name;
            if (isKnown || name.empty())
                name = linked.id == 0 ? "MainTimeline" : "Timeline" + std::to_string(++made);
            m_program->addTimeline(name, base, linked.scripts);
        } else if (!isKnown && !m_diagnostics.hasErrors() &&
                   (linked.id == 0 || !provideClass(name, linked.kind))) {
            m_diagnostics.error(linked.where, "expected a class of the sources, found '" + name + "'");
        }
        symbols.u16(linked.id);
        symbols.text(name);
    }
    output::TagList tags;
    const std::vector<std::uint8_t> block = m_program->compile();
    if (!block.empty()) {
        output::BitWriter out;
        out.u32(0); // run at once
        out.text("");
        out.append(block);
        tags.add(Tag::DoAbc, out);
    }
    if (!m_links.empty()) tags.add(Tag::SymbolClass, symbols);
    m_main.tags.insert(m_scriptsAt, tags);
}

} // namespace swfc::source
