#pragma once

#include "flash/stage/Node.h"
#include "flash/stage/StyleSheet.h"
#include "flash/stage/TextContent.h"

#include <algorithm>
#include <memory>

namespace flash::stage
{

/// A text that scripts and users change.
///
/// Positions are places between characters and count UTF-16 units; lines count from 0. What depends on the
/// layout (lines, scrolling, the size of a field that fits itself to its text) is worked out when asked for.
class TextField final : public Node
{
public:
    /// Which edge stays when the field fits itself to its text.
    enum class AutoSize : std::uint8_t { None, Left, Center, Right };

    TextField(Stage& stage, MoviePtr movie, const swf::EditText& definition);
    /// @param boundsTwips of a negative size when the field lies to the left of its position, or above it
    ~TextField() override;
    static NodePtr makeDynamic(Stage& stage, const MoviePtr& movie, const swf::Rect& boundsTwips);

    [[nodiscard]] const swf::EditText& definition() const { return m_definition; }

    // ---- the text ----
    /// As scripts see it: breaks are carriage returns. Breaks that HTML or replaceText() wrote as such count
    /// in the length, and are missing here.
    [[nodiscard]] std::u16string text() const;
    [[nodiscard]] std::size_t length() const { return m_content.size(); }
    [[nodiscard]] const TextContent& content() const { return m_content; }
    /// In the format for new text. Line feeds become carriage returns.
    void setText(std::u16string text);
    [[nodiscard]] std::u16string html() const;
    /// Formats it when isHtml() says so, otherwise shows it as it is.
    void setHtml(std::u16string html);
    void replaceText(std::size_t begin, std::size_t end, std::u16string_view text);
    void setFormat(std::size_t begin, std::size_t end, const PartialTextFormat& format);
    /// What text that is set or typed looks like.
    [[nodiscard]] const TextFormat& newFormat() const { return m_newFormat; }
    void setNewFormat(const PartialTextFormat& format);
    [[nodiscard]] bool isHtml() const { return m_html; }
    void setIsHtml(bool on) { m_html = on; }
    [[nodiscard]] bool condensesWhite() const { return m_condenseWhite; }
    void setCondensesWhite(bool on) { m_condenseWhite = on; }
    /// Null: none. Applies to the text set as HTML, which is read again.
    void setStyleSheet(std::shared_ptr<const StyleSheet> sheet);

    /// The variable it shows and sets; empty when none.
    [[nodiscard]] const std::string& variable() const { return m_variable; }
    void setVariable(std::string path);
    /// Takes the variable's value, or gives it the present text when it has none.
    void syncVariable();

    // ---- look ----
    [[nodiscard]] bool hasBorder() const { return m_border; }
    void setBorder(bool on);
    [[nodiscard]] swf::Rgba borderColor() const { return m_borderColor; }
    void setBorderColor(swf::Rgba color);
    [[nodiscard]] bool hasBackground() const { return m_background; }
    void setBackground(bool on);
    [[nodiscard]] swf::Rgba backgroundColor() const { return m_backgroundColor; }
    void setBackgroundColor(swf::Rgba color);
    [[nodiscard]] bool isMultiline() const { return m_multiline; }
    void setMultiline(bool on);
    [[nodiscard]] bool wraps() const { return m_wordWrap; }
    void setWraps(bool on);
    [[nodiscard]] bool isPassword() const { return m_password; }
    void setPassword(bool on);
    [[nodiscard]] bool embedsFonts() const { return m_embedFonts; }
    void setEmbedsFonts(bool on);
    [[nodiscard]] AutoSize autoSize() const { return m_autoSize; }
    void setAutoSize(AutoSize mode);

    /// How glyphs are made into pixels. Only remembered: ours have one way, which is the finest.
    struct Rendering {
        enum class GridFit : std::uint8_t { None, Pixel, Subpixel };
        bool advanced = false;
        GridFit gridFit = GridFit::Pixel;
        double sharpness = 0, thickness = 0;
    };
    Rendering rendering;

    // ---- what the user may do ----
    bool readOnly = false, selectable = true, mouseWheelEnabled = true;
    [[nodiscard]] bool alwaysShowsSelection() const { return m_alwaysShowsSelection; }
    void setAlwaysShowsSelection(bool on);
    std::optional<int> maxChars;            ///< unlimited when none
    std::optional<std::u16string> restrict; ///< the characters that can be typed, as scripts write them
    [[nodiscard]] bool isInput() const { return !readOnly; }

    // ---- layout ----
    [[nodiscard]] const render::TextLayout& layout();
    /// Of a layout's text as scripts measure it, in twips.
    [[nodiscard]] static double textHeight(const render::TextLayout& layout);
    [[nodiscard]] int lineCount() { return static_cast<int>(layout().lines().size()); }
    /// The first line that is shown.
    [[nodiscard]] int scroll();
    void setScroll(int line);
    /// Scrolled so far, the last line stands at the bottom.
    [[nodiscard]] int maxScroll();
    /// The last line that is shown whole.
    [[nodiscard]] int bottomScroll();
    [[nodiscard]] double hscroll(); ///< twips
    void setHscroll(double twips);
    [[nodiscard]] double maxHscroll();

    // A field's position is that of its box, which need not stand at its origin; its size is the box's.
    [[nodiscard]] double x() override;
    [[nodiscard]] double y() override;
    void setX(double pixels) override;
    void setY(double pixels) override;
    void setWidth(double pixels) override;
    void setHeight(double pixels) override;

    [[nodiscard]] swf::Rect bounds(Extent extent = Extent::WithStrokes) override;
    [[nodiscard]] bool hitsShape(swf::Point stagePoint) override;
    void draw(render::Canvas& canvas, const swf::Matrix& toDevice, const swf::ColorTransform& color) override;

    // ---- the selection ----
    [[nodiscard]] std::size_t selectionBegin() const { return std::min(m_anchor, m_caret); }
    [[nodiscard]] std::size_t selectionEnd() const { return std::max(m_anchor, m_caret); }
    [[nodiscard]] std::size_t caret() const { return m_caret; }
    void select(std::size_t anchor, std::size_t caret);
    /// It has the focus, and something in it was selected since, be it only a place.
    [[nodiscard]] bool hasSelection() const { return m_hasSelection; }

    // ---- the user at work ----
    void focusGained() override;
    void focusLost() override;
    void input(char32_t character) override;
    void command(TextCommand command) override;
    /// See Keyboard::compose(). Scripts do not see it.
    void compose(std::u16string text, std::size_t caret);
    /// Where the caret stands, on the stage (twips): where an input method shows what it offers.
    [[nodiscard]] swf::Rect caretOnStage();
    void press(swf::Point stagePoint, int clicks = 1);
    void drag(swf::Point stagePoint);
    /// A step further where the pointer that was pressed here is held beyond an edge.
    void dragOn(swf::Point stagePoint);
    /// What is pressed from now on is something else.
    void endDrag() { m_isDragged = false; }
    /// Scrolls by the wheel. @returns whether there was anything to scroll
    bool wheel(int lines);
    /// The format of the link at the point; null when there is none. What is being edited has no links.
    [[nodiscard]] const TextFormat* linkAt(swf::Point stagePoint);
    /// The pointer is over a link (TextFormat::link), which a style sheet may show in another way; 0: over
    /// none.
    void hover(unsigned link, bool pressed);
    /// Lets the caret blink.
    void tick(double nowMs) override;
    [[nodiscard]] bool hearsInput() const override { return false; }
    [[nodiscard]] Cursor cursorAt(swf::Point stagePoint) override;
    [[nodiscard]] bool canTakeFocus() override { return true; }
    [[nodiscard]] bool isTabStop() override { return isInput(); }
    [[nodiscard]] bool usesKeys() const override { return isInput(); }

    [[nodiscard]] bool isScriptable() const override { return true; }
    [[nodiscard]] bool isExchangeable() const override { return false; }
    void begin() override;
    /// The pictures in its text.
    [[nodiscard]] std::span<const NodePtr> children() const override { return m_pictureNodes; }
    /// The size of a picture has become known.
    void pictureArrived() { relayout(); }

    // ---- its pictures, for scripts that keep the clips and make them themselves ----
    /// One that is shown and that the text has no more; null when there is none.
    [[nodiscard]] Node* surplusPicture() const;
    /// Those that stay take their places in the text as it is now.
    void settlePictures();
    /// The first one that the text has and that is not shown; null when there is none.
    [[nodiscard]] const TextPicture* missingPicture() const;
    /// @param picture a missing one. @param node stands nowhere yet
    void showPicture(const TextPicture& picture, const NodePtr& node);
    /// One that the text has cannot be shown, and is none of the text's any more.
    void refusePicture(const TextPicture& picture);
    /// It is none of the text's any more, whoever takes it.
    void dropPicture(Node& node);
    /// The first one of that name; null when there is none, and for an empty name.
    [[nodiscard]] Node* pictureNamed(std::u16string_view id) const;

protected:
    void leave() override;
    NodePtr ownPointerTarget(swf::Point stagePoint) override;

private:
    class Fonts;
    [[nodiscard]] bool isFocused() const;
    [[nodiscard]] render::TextLayout layoutOf(const TextContent& content);
    [[nodiscard]] const render::TextLayout& layoutFor(double pixelsPerTwip);
    void drawText(render::Canvas& canvas, const swf::Matrix& toDevice, const swf::ColorTransform& color);

    // ---- input methods ----
    static constexpr double kCaretWidth = 20; ///< twips
    /// The text with what is about to be typed in its place.
    struct Composed {
        render::TextLayout layout;
        std::size_t begin = 0, end = 0, caret = 0; ///< in the layout's text
        double shift = 0;                          ///< to the left, so that its caret is seen
    };
    [[nodiscard]] Composed composed();
    void underline(render::Canvas& canvas, const swf::Matrix& textToDevice, const swf::ColorTransform& color,
                   const Composed& composed);

    // ---- pictures ----
    /// Makes instances of the pictures that the text has now, and takes off those it has no more.
    void renewPictures();
    /// Of each picture that the text has: which of those shown stands for it, or kNone.
    [[nodiscard]] std::vector<std::size_t> pairPictures() const;
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    [[nodiscard]] NodePtr makePicture(const TextPicture& picture);
    void startPicture(const TextPicture& picture, Node& node);
    struct PictureSize {
        swf::Rect own;
        double width = 0, height = 0;
    };
    [[nodiscard]] static PictureSize sizeOf(const TextPicture& picture, Node& node);
    void placePictures();
    [[nodiscard]] std::vector<render::TextFloat> floats();
    void assign(TextContent content);
    void readHtml();
    void textChanged();   ///< by a script
    void outdateLayout(); ///< brings its pictures up to date as well, which may run scripts
    void relayout();
    void fitToText();
    void boundScroll();
    [[nodiscard]] swf::Point placedEdges();
    [[nodiscard]] swf::Point textOrigin();
    [[nodiscard]] double visibleWidth();
    [[nodiscard]] double visibleHeight();
    [[nodiscard]] swf::Point toText(swf::Point stagePoint);
    void publish();

    // ---- editing ----
    [[nodiscard]] bool accepts(char16_t character) const;
    /// Typed text looks like what stands before it.
    [[nodiscard]] const TextFormat& typingFormat() const;
    void type(std::u16string_view text);
    void erase(std::size_t begin, std::size_t end);
    void userChanged();
    void showCaret();
    [[nodiscard]] std::size_t verticalTarget(int lines);
    [[nodiscard]] std::pair<std::size_t, std::size_t> unitAround(std::size_t index, int clicks) const;
    [[nodiscard]] std::size_t wordStart(std::size_t index) const;
    [[nodiscard]] std::size_t wordEnd(std::size_t index) const;
    void copySelection();

    swf::EditText m_definition;
    TextContent m_content;
    TextFormat m_newFormat;
    TextFormat m_firstFormat; ///< as the field was defined
    std::u16string m_source;  ///< what was set as HTML, while a style sheet is in force
    std::shared_ptr<const StyleSheet> m_styleSheet;
    unsigned m_hoveredLink = 0;
    bool m_linkIsPressed = false;
    std::string m_variable;
    std::optional<std::string> m_lastValue; ///< of the variable, as last seen or set
    bool m_bound = false;                   ///< the stage looks after the variable
    bool m_variableIsFresh = true;          ///< it was not looked at since it was set
    swf::Rect m_bounds;
    bool m_placedByRight = false, m_placedByBottom = false; ///< which edges its position is that of
    AutoSize m_autoSize = AutoSize::None;
    bool m_html = false, m_condenseWhite = false, m_border = false, m_background = false;
    bool m_multiline = false, m_wordWrap = false, m_password = false, m_embedFonts = false;
    swf::Rgba m_borderColor{0, 0, 0, 255}, m_backgroundColor{255, 255, 255, 255};

    render::TextLayout m_layout;
    bool m_layoutValid = false;
    /// As it was drawn last on pixels that are not the stage's.
    struct Shaped {
        double pixelsPerTwip = 0;
        render::TextLayout layout;
    };
    std::optional<Shaped> m_shaped; ///< of m_layout
    bool m_scrollUnbounded = false; ///< the text changed: scrolling may reach beyond its end
    /// Frame in which word wrap was switched: lines are broken anew in the next one only, unless something
    /// else about the text changes before.
    std::optional<long long> m_wrapChangedFrame;
    int m_scroll = 0;
    double m_hscroll = 0;

    std::vector<TextPicture> m_pictures; ///< those there are instances of
    std::vector<NodePtr> m_pictureNodes; ///< of each; entries may be removed ones

    struct Composition {
        std::u16string text;
        std::size_t caret = 0;
    };
    Composition m_composition; ///< stands in the place of what is selected
    std::size_t m_anchor = 0, m_caret = 0;
    std::size_t m_pressIndex = 0;        ///< where the last press was
    int m_clicks = 1;                    ///< of that press
    bool m_alwaysShowsSelection = false; ///< without the focus, too
    bool m_isDragged = false;            ///< since that press
    bool m_caretShown = false, m_hasSelection = false;
    std::optional<double> m_caretColumn; ///< twips: where up and down go, however short the lines between
    double m_caretSinceMs = 0;
};

} // namespace flash::stage
