#include "swfc/source/MovieBuilder.h"

#include "base/TextCodes.h"

#include <algorithm>

namespace swfc::source
{
namespace
{

using output::Tag;

constexpr std::size_t kDeepestInclude = 16;
constexpr int kMaxIncludes = 256;
constexpr int kOldestVersion = 4, kNewestVersion = 50;
/// From this one on scripts are ActionScript 3 unless the description says otherwise.
constexpr int kActionScript3Version = 9;

} // namespace

bool MovieBuilder::need(int version, const Element& element, const std::string& what)
{
    if (m_version >= version) return true;
    error(element, "expected version " + std::to_string(version) + " or later for " + what +
                       ", found version " + std::to_string(m_version));
    return false;
}

/// Texts of movies before version 6 are in the system's ANSI code page.
std::string MovieBuilder::encoded(const std::string& utf8, const Element& element)
{
    if (m_version >= 6) return utf8;
    const std::string ansi = base::ansiFromUtf8(utf8, '\x01');
    if (ansi.find('\x01') != std::string::npos) {
        error(element, "expected characters of windows-1251 before version 6");
    }
    return ansi;
}

std::optional<std::vector<std::uint8_t>> MovieBuilder::readFile(Attributes& attributes,
                                                                const std::string& attribute)
{
    const std::string name = attributes.required(attribute);
    if (name.empty()) return {};
    auto content = m_files.read(besideFile(m_paths.back(), name));
    if (content) return std::move(*content);
    attributes.error("expected a readable file '" + name + "': " + content.error().what);
    return {};
}

/// Gives the element's character an id and notes its name.
std::optional<std::uint16_t> MovieBuilder::define(Attributes& attributes, CharacterKind kind)
{
    const std::string name = attributes.required("id");
    const auto exported = attributes.text("export");
    if (name.empty()) return {};
    if (m_characters.contains(name)) {
        attributes.error("expected a new id, found '" + name + "' a second time");
        return {};
    }
    if (m_nextId == 0xFFFF) {
        attributes.error("expected at most 65534 characters");
        return {};
    }
    const std::uint16_t id = m_nextId++;
    m_characters[name] = {id, kind};
    if (exported) m_exports.emplace_back(id, *exported);
    if (m_isActionScript3 && kind != CharacterKind::Sprite) {
        const auto linked = attributes.text("class");
        if (linked) link(id, kind, *linked, attributes.element().where, {});
    }
    return id;
}

const Character* MovieBuilder::lookUp(const Element& element, const std::string& name)
{
    const auto found = m_characters.find(name);
    if (found != m_characters.end()) return &found->second;
    if (!name.empty()) error(element, "expected the id of a character defined above, found '" + name + "'");
    return nullptr;
}

const Character* MovieBuilder::lookUp(const Element& element, const std::string& name, CharacterKind kind)
{
    const Character* found = lookUp(element, name);
    if (found == nullptr || found->kind == kind) return found;
    error(element, "expected another kind of character in <" + element.name + ">, found '" + name + "'");
    return nullptr;
}

actionscript::SourceText MovieBuilder::scriptText(const Element& element)
{
    return {element.text, m_paths.back(), element.textStart};
}

/// The script in an element, or in the file that the element names.
std::optional<actionscript::SourceText> MovieBuilder::scriptSource(const Element& element,
                                                                   Attributes& attributes)
{
    actionscript::SourceText source = scriptText(element);
    if (!attributes.has("file")) return source;
    const auto content = readFile(attributes, "file");
    if (!content) return std::nullopt;
    source.path = besideFile(m_paths.back(), attributes.required("file"));
    source.text.assign(content->begin(), content->end());
    source.start = {m_diagnostics.addFile(source.path), 1, 1};
    return source;
}

actionscript::ScriptContext MovieBuilder::scriptContext()
{
    // Nothing of the older languages came after version 8.
    constexpr int kNewestOfOlderScripts = 8;
    return {std::min(m_version, kNewestOfOlderScripts), m_files, m_diagnostics, m_classes};
}

bool MovieBuilder::needOlderScript(const Element& element, const std::string& what)
{
    if (!m_isActionScript3) return true;
    error(element, "expected actionscript=\"2\" for " + what + ", found ActionScript 3");
    return false;
}

void MovieBuilder::scriptElement(const Element& element, Timeline& timeline)
{
    Attributes attributes(element, m_diagnostics);
    const auto source = scriptSource(element, attributes);
    if (!source) return;
    if (m_isActionScript3) {
        timeline.scripts.push_back({timeline.frames, *source});
        return;
    }
    actionscript::ScriptContext context = scriptContext();
    timeline.tags.add(Tag::DoAction, actionscript::compileScript(*source, context));
}

void MovieBuilder::exportElement(const Element& element)
{
    Attributes attributes(element, m_diagnostics);
    const Character* character = lookUp(element, attributes.required("id"));
    const std::string name = attributes.required("name");
    if (character != nullptr) m_exports.emplace_back(character->id, name);
}

void MovieBuilder::importElement(const Element& element)
{
    Attributes attributes(element, m_diagnostics);
    output::BitWriter out;
    out.text(encoded(attributes.required("url"), element));
    if (m_version >= 8) {
        out.u8(1);
        out.u8(0);
    }
    out.u16(static_cast<std::uint32_t>(element.children.size()));
    for (const auto& child : element.children) {
        Attributes asset(*child, m_diagnostics);
        if (child->name != "asset")
            error(*child, "expected <asset> in <import>, found <" + child->name + ">");
        const auto id = define(asset, CharacterKind::Imported);
        out.u16(id.value_or(0));
        out.text(encoded(asset.required("name"), *child));
    }
    definitions().add(m_version >= 8 ? Tag::ImportAssets2 : Tag::ImportAssets, out);
}

/// Elements that define something. @returns false for other elements.
bool MovieBuilder::definition(const Element& element)
{
    struct Entry {
        const char* name;
        void (MovieBuilder::*build)(const Element&);
    };
    static constexpr Entry kEntries[] = {
        {"gradient", &MovieBuilder::gradientElement}, {"pattern", &MovieBuilder::patternElement},
        {"shape", &MovieBuilder::shapeElement},       {"morph", &MovieBuilder::morphElement},
        {"bitmap", &MovieBuilder::bitmapElement},     {"font", &MovieBuilder::fontElement},
        {"text", &MovieBuilder::textElement},         {"edit", &MovieBuilder::editElement},
        {"sound", &MovieBuilder::soundElement},       {"sprite", &MovieBuilder::spriteElement},
        {"button", &MovieBuilder::buttonElement},     {"export", &MovieBuilder::exportElement},
        {"import", &MovieBuilder::importElement},     {"video", &MovieBuilder::videoElement},
    };
    for (const Entry& entry : kEntries) {
        if (element.name != entry.name) continue;
        (this->*entry.build)(element);
        return true;
    }
    return false;
}

/// Puts the children of the named file's root in the place of the element.
void MovieBuilder::include(const Element& element, Timeline* timeline)
{
    Attributes attributes(element, m_diagnostics);
    const std::string name = attributes.required("href");
    if (name.empty()) return;
    const std::string path = besideFile(m_paths.back(), name);
    if (std::find(m_paths.begin(), m_paths.end(), path) != m_paths.end()) {
        error(element, "expected a file that does not include itself, found '" + name + "'");
        return;
    }
    if (m_paths.size() > kDeepestInclude || ++m_includes > kMaxIncludes) {
        error(element, "expected at most 16 nested and 256 inclusions");
        return;
    }
    const auto content = readFile(attributes, "href");
    if (!content) return;
    const std::string_view bytes(reinterpret_cast<const char*>(content->data()), content->size());
    const auto root = parseXml(bytes, m_diagnostics.addFile(path), m_diagnostics);
    if (root == nullptr) return;
    if (root->name != "parts")
        error(*root, "expected <parts> as the root of an included file, found <" + root->name + ">");
    m_paths.push_back(path);
    if (timeline != nullptr) children(*root, *timeline);
    m_paths.pop_back();
}

void MovieBuilder::children(const Element& element, Timeline& timeline)
{
    for (const auto& child : element.children) {
        if (child->name == "include")
            include(*child, &timeline);
        else if (child->name == "frame")
            frameElement(*child, timeline);
        else if (child->name == "init")
            initElement(*child, timeline);
        else if (timeline.isMain && definition(*child))
            continue;
        else if (timeline.isMain && child->name == "actionscript")
            sourceElement(*child);
        else if (timeline.isMain && child->name == "abc")
            abcElement(*child);
        else if (timeline.isMain &&
                 (child->name == "metadata" || child->name == "scriptLimits" || child->name == "raw"))
            movieElement(*child);
        else
            error(*child, "expected " + std::string(timeline.isMain ? "a definition or <frame>" : "<frame>") +
                              ", found <" + child->name + ">");
    }
}

/// Elements that say something of the movie as a whole.
void MovieBuilder::movieElement(const Element& element)
{
    Attributes attributes(element, m_diagnostics);
    output::BitWriter out;
    if (element.name == "metadata") {
        if (!need(8, element, "metadata")) return;
        out.text(trimmed(element.text));
        definitions().add(Tag::Metadata, out);
    } else if (element.name == "scriptLimits") {
        if (!need(7, element, "script limits")) return;
        out.u16(static_cast<std::uint32_t>(attributes.integer("recursion", 256, 1, 65535)));
        out.u16(static_cast<std::uint32_t>(attributes.integer("timeout", 15, 0, 65535)));
        definitions().add(Tag::ScriptLimits, out);
    } else {
        // A tag given as bytes: how tests make what no description should be able to say.
        const int code = attributes.integer("code", 0, 0, 1023);
        const std::string hex = attributes.text("hex", "");
        for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
            while (i + 1 < hex.size() && hex[i] == ' ') ++i;
            const auto byte = parseColor("#0000" + hex.substr(i, 2));
            if (!byte) {
                error(element, "expected pairs of hexadecimal digits in hex of <raw>");
                return;
            }
            out.u8(byte->b);
        }
        definitions().add(static_cast<std::uint16_t>(code), out.bytes());
    }
}

std::vector<std::uint8_t> MovieBuilder::build(const Element& root, const std::string& path)
{
    m_paths = {path};
    m_main.isMain = true;
    output::MovieHeader header;
    if (root.name != "movie") {
        error(root, "expected <movie> as the root, found <" + root.name + ">");
        return {};
    }
    {
        Attributes attributes(root, m_diagnostics);
        header.version = m_version = attributes.integer("version", 8, kOldestVersion, kNewestVersion);
        header.width = attributes.number("width", 550);
        header.height = attributes.number("height", 400);
        header.frameRate = m_rate = attributes.number("rate", 25);
        m_isActionScript3 =
            attributes.choice("actionscript", {"2", "3"}, m_version >= kActionScript3Version ? 1 : 0) == 1;
        if (m_isActionScript3) {
            need(kActionScript3Version, root, "ActionScript 3");
            m_document = attributes.text("document", "");
            m_program = std::make_unique<actionscript3::Program>(m_files, m_diagnostics);
            m_program->setRoot(path);
        }
        header.compressed = attributes.flag("compressed", m_version >= 6);
        const auto background = attributes.color("background");
        const bool network = attributes.flag("network");
        if (header.compressed && m_version < 6) need(6, root, "compression");
        const bool sizeFits =
            header.width > 0 && header.height > 0 && header.width <= 8192 && header.height <= 8192;
        if (!sizeFits) error(root, "expected a stage of 1 to 8192 pixels");
        if (!(m_rate > 0 && m_rate <= 255)) {
            error(root, "expected a rate of more than 0 and at most 255 frames a second");
            return {};
        }
        if (m_version >= 8) {
            const bool metadata = std::any_of(root.children.begin(), root.children.end(),
                                              [](const auto& c) { return c->name == "metadata"; });
            output::BitWriter out;
            out.u32((metadata ? 0x10U : 0U) | (m_isActionScript3 ? 8U : 0U) | (network ? 1U : 0U));
            m_main.tags.add(Tag::FileAttributes, out);
        }
        if (background) {
            output::BitWriter out;
            output::writeRgb(out, *background);
            m_main.tags.add(Tag::SetBackgroundColor, out);
        }
    }
    children(root, m_main);
    if (m_main.frames == 0) {
        m_scriptsAt = m_main.tags.bytes().size();
        showFrame(m_main);
    }
    if (m_isActionScript3) writeScripts();
    if (m_diagnostics.hasErrors()) return {};
    header.frameCount = m_main.frames;
    return output::assembleMovie(header, m_main.tags);
}

} // namespace swfc::source
