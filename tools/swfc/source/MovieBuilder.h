#pragma once

#include "swfc/SourceFiles.h"
#include "swfc/actionscript/Script.h"
#include "swfc/actionscript3/Program.h"
#include "swfc/output/MovieFile.h"
#include "swfc/output/Shape.h"
#include "swfc/output/SoundData.h"
#include "swfc/source/Attributes.h"

#include <map>
#include <memory>
#include <optional>

namespace swfc::source
{

enum class CharacterKind : std::uint8_t {
    Shape,
    Morph,
    Bitmap,
    Font,
    Text,
    Edit,
    Sound,
    Sprite,
    Button,
    Video,
    Imported
};

struct Character {
    std::uint16_t id = 0;
    CharacterKind kind = CharacterKind::Shape;
};

/// An embedded font, as texts need it. Lengths are parts of the em.
struct EmbeddedFont {
    std::uint16_t id = 0;
    struct Glyph {
        std::size_t index = 0;
        double advance = 0;
    };
    std::map<char32_t, Glyph> glyphs;
    double ascent = 0, descent = 0;
    bool device = false; ///< named only, no outlines
};

struct BitmapSize {
    int width = 0, height = 0;
};

/// What stands at one depth of a timeline, as far as later moves need to know it.
struct Placement {
    double x = 0, y = 0, scaleX = 1, scaleY = 1, rotate = 0, skewX = 0, skewY = 0;
    std::optional<output::Matrix> matrix; ///< instead of all of the above
    output::ColorTransform color;
    double ratio = 0; ///< 0 to 1
    std::vector<output::Filter> filters;
    [[nodiscard]] output::Matrix toMatrix() const;
};

/// A movie or a sprite while its frames are written.
struct Timeline {
    output::TagList tags;
    std::uint32_t frames = 0;
    std::map<int, Placement> depths;
    struct Moving {
        int depth = 0, left = 0, total = 0;
        int ease = 0;
        Placement from, to;
        bool filters = false; ///< the filters move too
    };
    std::vector<Moving> moving;
    struct Stream {
        bool isMp3 = false;
        output::WaveSound wave;
        output::Mp3Sound mp3;
        int bits = 4;               ///< 16: PCM
        std::size_t framesDone = 0; ///< movie frames that carry a block
        std::size_t samplesDone = 0;
        std::size_t mp3Done = 0;
    };
    std::optional<Stream> stream;
    bool isMain = false;
    std::vector<actionscript3::Program::FrameScript> scripts; ///< in ActionScript 3
};

/// Walks a description and writes tags as it goes: definitions and frames come in the order they stand in.
class MovieBuilder
{
public:
    MovieBuilder(SourceFiles& files, Diagnostics& diagnostics) : m_files(files), m_diagnostics(diagnostics) {}

    std::vector<std::uint8_t> build(const Element& root, const std::string& path);
    /// Instead of frame scripts: the file that the whole description was made for.
    void setOnlySource(actionscript::SourceText source) { m_onlySource = std::move(source); }

private:
    // general
    void error(const Element& element, const std::string& message)
    {
        m_diagnostics.error(element.where, message);
    }
    bool need(int version, const Element& element, const std::string& what);
    std::optional<std::vector<std::uint8_t>> readFile(Attributes& attributes, const std::string& attribute);
    std::string encoded(const std::string& utf8, const Element& element);
    void movieElement(const Element& element);
    bool definition(const Element& element);
    void include(const Element& element, Timeline* timeline);
    void children(const Element& element, Timeline& timeline);
    std::optional<std::uint16_t> define(Attributes& attributes, CharacterKind kind);
    const Character* lookUp(const Element& element, const std::string& name);
    const Character* lookUp(const Element& element, const std::string& name, CharacterKind kind);
    void exportElement(const Element& element);
    void importElement(const Element& element);
    actionscript::SourceText scriptText(const Element& element);
    void scriptElement(const Element& element, Timeline& timeline);
    std::optional<actionscript::SourceText> scriptSource(const Element& element, Attributes& attributes);
    /// What only ActionScript 1 and 2 have. @returns whether the movie is in one of them
    bool needOlderScript(const Element& element, const std::string& what);
    actionscript::ScriptContext scriptContext();

    // ActionScript 3
    void sourceElement(const Element& element);
    void abcElement(const Element& element);
    void link(std::uint16_t id, CharacterKind kind, const std::string& className, Position where,
              std::vector<actionscript3::Program::FrameScript> scripts);
    bool provideClass(const std::string& name, CharacterKind kind);
    void writeScripts();

    // shapes
    void gradientElement(const Element& element);
    void patternElement(const Element& element);
    std::vector<std::unique_ptr<Element>> svgDrawing(Attributes& attributes);
    void shapeElement(const Element& element);
    void morphElement(const Element& element);
    void shapePath(const Element& element, output::ShapeLayer& layer);
    std::optional<output::Fill> paint(Attributes& attributes, const std::string& attribute);
    std::optional<output::Line> line(Attributes& attributes, const std::string& prefix);
    std::optional<output::PathData> path(Attributes& attributes, const std::string& attribute);

    // bitmaps, videos, fonts, texts
    void bitmapElement(const Element& element);
    void videoElement(const Element& element);
    void fontElement(const Element& element);
    void textElement(const Element& element);
    void editElement(const Element& element);

    // sounds
    void soundElement(const Element& element);
    void streamElement(const Element& element, Timeline& timeline);
    void streamBlock(Timeline& timeline);
    output::SoundCue soundCue(Attributes& attributes);
    void startElement(const Element& element, Timeline& timeline);

    // timelines
    void spriteElement(const Element& element);
    void buttonElement(const Element& element);
    void buttonState(const Element& element, output::BitWriter& out);
    void buttonSound(const Element& element, std::map<int, std::vector<std::uint8_t>>& sounds);
    void frameElement(const Element& element, Timeline& timeline);
    void showFrame(Timeline& timeline);
    void frameChild(const Element& element, Timeline& timeline);
    void placeElement(const Element& element, Timeline& timeline);
    void moveElement(const Element& element, Timeline& timeline);
    void removeElement(const Element& element, Timeline& timeline);
    void initElement(const Element& element, Timeline& timeline);
    bool placement(Attributes& attributes, Placement& placement);
    std::vector<output::Filter> filters(const Element& element);
    std::optional<output::Filter> filter(const Element& element);
    std::optional<std::vector<std::uint8_t>> clipActions(const Element& element);
    void scale9(Attributes& attributes, std::uint16_t id);

    output::TagList& definitions() { return m_main.tags; }

    SourceFiles& m_files;
    Diagnostics& m_diagnostics;
    std::vector<std::string> m_paths; // of the file being read and those that include it
    int m_includes = 0;
    int m_version = 6;
    double m_rate = 12;
    Timeline m_main;
    std::uint16_t m_nextId = 1;
    std::map<std::string, Character> m_characters;
    std::map<std::string, output::Fill> m_paints;
    std::map<std::uint16_t, BitmapSize> m_bitmaps;
    std::map<std::uint16_t, EmbeddedFont> m_fonts;
    std::vector<std::pair<std::uint16_t, std::string>> m_exports; // not written yet
    actionscript::ClassTable m_classes;

    struct LinkedClass {
        std::uint16_t id = 0;
        CharacterKind kind = CharacterKind::Sprite;
        std::string name;
        Position where;
        std::vector<actionscript3::Program::FrameScript> scripts = {};
    };
    bool m_isActionScript3 = false;
    bool m_hasBlocks = false;                          // assembled ones, whose classes are not looked at
    std::unique_ptr<actionscript3::Program> m_program; // ActionScript 3
    std::vector<LinkedClass> m_links;
    std::optional<actionscript::SourceText> m_onlySource;
    std::string m_document;      // class of the main timeline
    std::size_t m_scriptsAt = 0; // where in the main timeline the classes belong
};

} // namespace swfc::source
