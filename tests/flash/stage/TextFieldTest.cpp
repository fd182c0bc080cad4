#include "MovieBuilder.h"

#include "flash/stage/Stage.h"
#include "flash/stage/TextField.h"

#include <gtest/gtest.h>

namespace flash::stage::test
{
namespace
{

class Clipboard : public HostEvents
{
public:
    void setClipboardText(std::string_view text) override { held = text; }
    std::string clipboardText() override { return held; }
    std::string held;
};

/// A script host that is nothing but the variables of its clips.
class Variables : public ScriptHost
{
public:
    std::optional<std::string> variable(Clip&, std::string_view path) override
    {
        const auto found = values.find(std::string(path));
        return found == values.end() ? std::nullopt : std::optional(found->second);
    }
    bool setVariable(Clip&, std::string_view path, std::string_view value) override
    {
        values[std::string(path)] = value;
        return true;
    }
    void textChanged(TextField&) override { ++changes; }
    void followLink(TextField&, std::u16string_view url, std::u16string_view) override { followed += url; }
    std::map<std::string, std::string> values;
    int changes = 0;
    std::u16string followed;
};

/// A script host that makes the pictures of texts itself, and holds on to them.
class Pictures : public ScriptHost
{
public:
    bool keepsClips() override { return true; }
    void renewPictures(TextField& field) override
    {
        while (Node* gone = field.surplusPicture()) field.dropPicture(*gone);
        field.settlePictures();
        while (const TextPicture* missing = field.missingPicture()) {
            Stage& stage = field.stage();
            made.push_back(std::make_shared<Clip>(stage, field.movie(), stage.displayList().emptyTimeline()));
            field.showPicture(*missing, made.back());
        }
    }
    std::vector<NodePtr> made;
};

/// The letters a to z, each half an em wide.
swf::Font monospaced()
{
    swf::Font font;
    font.name = "Mono";
    font.hasLayout = true;
    font.ascent = 768;
    font.descent = 256;
    for (char16_t c = u' '; c <= u'z'; ++c) {
        swf::Font::Glyph glyph;
        glyph.code = c;
        glyph.advance = 512;
        glyph.outline = std::make_shared<swf::Shape>();
        font.glyphByCode[c] = static_cast<std::uint16_t>(font.glyphs.size());
        font.glyphs.push_back(glyph);
    }
    return font;
}

// Letters of 20 pixels are 10 wide; a field of 104 pixels takes ten of them, one of 44 two lines.
swf::EditText input(std::string text = {})
{
    swf::EditText definition;
    definition.bounds = {0, 104 * 20, 0, 44 * 20};
    definition.fontId = 1;
    definition.hasFont = definition.useOutlines = true;
    definition.fontHeight = 400;
    definition.hasText = !text.empty();
    definition.initialText = std::move(text);
    return definition;
}

struct Fixture {
    explicit Fixture(swf::EditText definition)
    {
        MovieBuilder movie(1);
        movie.character(1, monospaced());
        movie.character(2, std::move(definition));
        movie.tag(0, MovieBuilder::placed(2, 1, 0, 0, "field"));
        stage.open(movie.take(), "m.swf");
    }
    TextField& field()
    {
        return static_cast<TextField&>(*stage.root()->childByName("field", Clip::Case::Sensitive));
    }
    void type(std::u16string_view text)
    {
        for (const char16_t c : text) stage.keyboard().type(c);
    }
    Clipboard clipboard;
    NullServices services;
    Variables script;
    Stage stage{{services.sound, services.loader, clipboard, services.sharedObjects}, &script};
};

TEST(TextField, TypesReplacesAndErases)
{
    Fixture f(input("abc"));
    f.stage.focus().set(&f.field());
    EXPECT_EQ(f.field().selectionEnd(), 3U) << "the focus selects everything";
    f.type(u"xyz");
    EXPECT_EQ(f.field().text(), u"xyz");
    f.stage.keyboard().command(TextCommand::MoveLeft);
    f.stage.keyboard().command(TextCommand::Backspace);
    EXPECT_EQ(f.field().text(), u"xz");
    f.stage.keyboard().command(TextCommand::SelectLineEnd);
    f.stage.keyboard().command(TextCommand::Cut);
    f.stage.keyboard().command(TextCommand::MoveDocumentStart);
    f.stage.keyboard().command(TextCommand::Paste);
    EXPECT_EQ(f.field().text(), u"zx");
    EXPECT_EQ(f.script.changes, 6);
    f.field().setText(u"a\U0001F600b");
    f.field().select(4, 4);
    f.stage.keyboard().command(TextCommand::MoveLeft);
    f.stage.keyboard().command(TextCommand::Backspace);
    EXPECT_EQ(f.field().text(), u"ab") << "a character of two units goes as one";
}

TEST(TextField, TakesOnlyWhatItIsToldTo)
{
    struct Case {
        std::u16string restrict, typed, taken;
        std::optional<int> most;
    };
    const Case kCases[] = {
        {u"a-c", u"abdc!", u"abc", {}},  {u"^a-c", u"abdc!", u"ABdC!", {}}, {u"A-Z^Q", u"aQqZ", u"AZ", {}},
        {u"\\^\\-", u"a^-b", u"^-", {}}, {u"a-z", u"abcdef", u"abc", 3},    {u"", u"abc", u"", {}},
    };
    for (const Case& c : kCases) {
        Fixture f(input());
        f.field().restrict = c.restrict;
        f.field().maxChars = c.most;
        f.stage.focus().set(&f.field());
        f.type(c.typed);
        EXPECT_EQ(f.field().text(), c.taken) << std::string(c.restrict.begin(), c.restrict.end());
    }
}

TEST(TextField, KeepsSecretsAndReadOnlyTexts)
{
    swf::EditText secret = input("word");
    secret.password = true;
    Fixture f(secret);
    f.stage.focus().set(&f.field());
    f.stage.keyboard().command(TextCommand::Copy);
    f.stage.keyboard().command(TextCommand::Cut);
    EXPECT_EQ(f.clipboard.held, "");
    EXPECT_EQ(f.field().text(), u"word");
    swf::EditText fixed = input("word");
    fixed.readOnly = true;
    Fixture g(fixed);
    g.stage.focus().set(&g.field());
    g.type(u"x");
    g.stage.keyboard().command(TextCommand::Delete);
    EXPECT_EQ(g.field().text(), u"word");
}

TEST(TextField, SelectsWithTheMouse)
{
    Fixture f(input("hello you"));
    f.stage.pointer().press(21, 10);
    f.stage.pointer().move(63, 10);
    f.stage.pointer().release(63, 10);
    EXPECT_EQ(f.field().selectionBegin(), 2U);
    EXPECT_EQ(f.field().selectionEnd(), 6U);
    f.stage.pointer().press(75, 10, MouseButton::Left, 2);
    EXPECT_EQ(f.field().selectionBegin(), 6U);
    EXPECT_EQ(f.field().selectionEnd(), 9U);
}

TEST(TextField, ShowsTheHandOverLinksOnly)
{
    swf::EditText definition = input("on <a href='there'>link</a> off");
    definition.html = definition.readOnly = true;
    Fixture f(std::move(definition));
    const auto cursorAt = [&f](double x) {
        f.stage.pointer().move(x, 10);
        return f.stage.pointer().cursor();
    };
    EXPECT_EQ(cursorAt(12), Cursor::Text);
    EXPECT_EQ(cursorAt(45), Cursor::Hand);
    EXPECT_EQ(cursorAt(85), Cursor::Text);
    // Where nothing can be selected, links still can be clicked, and nothing else takes the pointer.
    f.field().selectable = false;
    EXPECT_EQ(cursorAt(12), Cursor::Arrow);
    EXPECT_EQ(cursorAt(45), Cursor::Hand);
    f.stage.pointer().press(45, 10);
    f.stage.pointer().move(65, 10);
    EXPECT_EQ(f.script.followed, u"") << "a link is followed when the button is let go";
    f.stage.pointer().release(65, 10);
    EXPECT_EQ(f.script.followed, u"there");
    EXPECT_EQ(f.field().selectionBegin(), f.field().selectionEnd());
    EXPECT_EQ(f.stage.focus().node(), nullptr);
    f.field().readOnly = false;
    EXPECT_EQ(cursorAt(45), Cursor::Text) << "what is being edited";
    f.field().readOnly = f.field().selectable = true;
    f.stage.pointer().press(45, 10);
    EXPECT_EQ(f.stage.focus().node(), &f.field());
    EXPECT_EQ(f.field().selectionBegin(), f.field().selectionEnd()) << "the focus selects all but for a link";
}

TEST(TextField, ShowsLinksUnderThePointerInTheirStyle)
{
    swf::EditText definition = input("<a href='x'>one</a> <a href='x'>two</a>");
    definition.html = definition.readOnly = true;
    Fixture f(std::move(definition));
    auto sheet = std::make_shared<StyleSheet>();
    sheet->set(u"a:hover", {{u"color", u"#FF0000"}});
    sheet->set(u"a:active", {{u"color", u"#00FF00"}});
    f.field().setStyleSheet(sheet);
    const auto colors = [&f](double x) {
        f.stage.pointer().move(x, 10);
        const auto of = [&f](std::size_t index) {
            const swf::Rgba color = f.field().content().formatAt(index)->style.color;
            return color.r != 0 ? 'r' : color.g != 0 ? 'g' : '-';
        };
        return std::string{of(0), of(5)};
    };
    EXPECT_EQ(colors(14), "r-");
    EXPECT_EQ(colors(55), "-r") << "links are told apart, wherever they lead";
    f.stage.pointer().press(55, 10);
    EXPECT_EQ(colors(55), "-g");
    f.stage.pointer().release(55, 10);
    EXPECT_EQ(colors(55), "-r");
    EXPECT_EQ(colors(500), "--");
}

TEST(TextField, ShowsWhatAnInputMethodIsAboutToType)
{
    Fixture f(input("abcd"));
    f.stage.focus().set(&f.field());
    f.field().select(1, 3);
    const auto caret = [&f] { return (f.field().caretOnStage().xMin - f.field().caretOnStage().yMin) / 20; };
    const int before = caret();
    f.stage.keyboard().compose(u"xyz", 99);
    EXPECT_EQ(f.field().text(), u"abcd") << "scripts do not see it";
    EXPECT_NE(caret(), before);
    const int atEnd = caret();
    f.stage.keyboard().compose(u"xyz", 0);
    EXPECT_LT(caret(), atEnd);
    f.stage.keyboard().compose(u"", 0);
    EXPECT_EQ(caret(), before);
    EXPECT_EQ(f.script.changes, 0);
    f.stage.keyboard().type(U'x');
    EXPECT_EQ(f.field().text(), u"axd") << "it takes the place of what is selected";
    f.field().readOnly = true;
    f.stage.keyboard().compose(u"xyz", 3);
    const int untouched = caret();
    f.stage.keyboard().compose(u"", 0);
    EXPECT_EQ(caret(), untouched);
}

TEST(TextField, FollowsThePointerBeyondItsEdges)
{
    swf::EditText tall = input("a\nb\nc\nd\ne\nf");
    tall.multiline = true;
    Fixture f(tall);
    f.stage.pointer().press(2, 5);
    f.stage.pointer().move(2, 50);
    const int first = f.field().scroll();
    EXPECT_LT(first, f.field().maxScroll());
    for (int frame = 0; frame < 5; ++frame) f.stage.advanceFrame();
    EXPECT_EQ(f.field().scroll(), f.field().maxScroll()) << "held there, it goes on";
    EXPECT_EQ(f.field().selectionBegin(), 0U);
    EXPECT_EQ(f.field().selectionEnd(), 10U);
    f.stage.pointer().release(2, 50);
    f.field().setScroll(0);
    f.stage.advanceFrame();
    EXPECT_EQ(f.field().scroll(), 0) << "let go, it stays";
}

TEST(TextField, MovesByLinesAndPagesInOneColumn)
{
    swf::EditText tall = input("abcd\n\nefgh\nijkl\nmnop\nqrst");
    tall.multiline = true;
    Fixture f(tall);
    TextField& field = f.field();
    f.stage.focus().set(&field);
    field.select(3, 3);
    const auto caretAfter = [&](TextCommand command) {
        f.stage.keyboard().command(command);
        return field.caret();
    };
    EXPECT_EQ(caretAfter(TextCommand::MoveDown), 5U);
    EXPECT_EQ(caretAfter(TextCommand::MoveDown), 9U) << "an empty line between does not take the column away";
    EXPECT_EQ(caretAfter(TextCommand::MovePageDown), 19U) << "two lines are a page here";
    EXPECT_EQ(field.bottomScroll(), 4);
    EXPECT_EQ(caretAfter(TextCommand::SelectPageUp), 9U);
    EXPECT_EQ(field.selectionEnd(), 19U);
    EXPECT_EQ(caretAfter(TextCommand::MoveLineStart), 6U);
    EXPECT_EQ(caretAfter(TextCommand::MovePageUp), 0U);
}

TEST(TextField, ScrollsWithinItsText)
{
    swf::EditText tall = input("a\nb\nc\nd");
    tall.multiline = true;
    Fixture f(tall);
    TextField& field = f.field();
    EXPECT_EQ(field.maxScroll(), 2);
    EXPECT_EQ(field.bottomScroll(), 1);
    field.setScroll(100);
    EXPECT_EQ(field.scroll(), 2);
    field.setText(u"one line");
    EXPECT_EQ(field.scroll(), 0);
    field.setText(u"a line of twenty-two..");
    field.setHscroll(1e6);
    EXPECT_EQ(field.hscroll(), (220 - 100) * 20);
}

TEST(TextField, IsNotDrawnAgainForTheTextItShows)
{
    swf::EditText counter = input("7");
    counter.variableName = "v";
    Fixture f(counter);
    // Drawn, which lays it out.
    const auto draw = [&] {
        static_cast<void>(f.field().maxScroll());
        static_cast<void>(f.stage.view().dirtyBoxes());
    };
    draw();
    f.script.values["v"] = "elsewhere";
    f.field().setText(u"7");
    EXPECT_EQ(f.stage.view().notedChanges(), 0U);
    EXPECT_EQ(f.script.values["v"], "7") << "all the same";
    f.field().setText(u"8");
    EXPECT_EQ(f.stage.view().notedChanges(), 1U);
    draw();
    PartialTextFormat red;
    red.color = swf::Rgba{255, 0, 0, 255};
    f.field().setNewFormat(red);
    f.field().setText(u"8");
    EXPECT_EQ(f.stage.view().notedChanges(), 1U) << "in another colour";
}

TEST(TextField, FitsItselfToItsText)
{
    struct Case {
        TextField::AutoSize mode;
        double x, width;
    };
    constexpr Case kCases[] = {
        {TextField::AutoSize::Left, 0, 34},
        {TextField::AutoSize::Center, 35, 34},
        {TextField::AutoSize::Right, 70, 34},
        {TextField::AutoSize::None, 0, 104},
    };
    for (const Case& c : kCases) {
        Fixture f(input("abc"));
        f.field().setAutoSize(c.mode);
        EXPECT_EQ(f.field().x(), c.x);
        EXPECT_EQ(f.field().width(), c.width);
    }
}

TEST(TextField, FollowsItsVariableAndSetsIt)
{
    swf::EditText bound = input("first");
    bound.variableName = "v";
    Fixture f(bound);
    EXPECT_EQ(f.script.values["v"], "first") << "a variable that is not there gets the text";
    f.script.values["v"] = "second";
    f.stage.advanceFrame();
    EXPECT_EQ(f.field().text(), u"second");
    f.field().setText(u"third");
    EXPECT_EQ(f.script.values["v"], "third");
    f.stage.focus().set(&f.field());
    f.type(u"x");
    EXPECT_EQ(f.script.values["v"], "x");
}

TEST(TextField, KeepsThePicturesThatItsTextStillHas)
{
    NullServices services;
    Pictures script;
    Stage stage{{services.sound, services.loader, services.host, services.sharedObjects}, &script};
    MovieBuilder movie(1);
    stage.open(movie.take(), "m.swf");
    NodePtr node = TextField::makeDynamic(stage, stage.movie(), {0, 4000, 0, 4000});
    auto& field = static_cast<TextField&>(*node);
    field.setIsHtml(true);
    field.setEmbedsFonts(true);
    field.setHtml(u"<img src='a' id='one'>letters<img src='b' id='two'>");
    ASSERT_EQ(script.made.size(), 2U);
    const NodePtr one = script.made[0], two = script.made[1];
    EXPECT_EQ(one->parent(), &field);
    EXPECT_EQ(field.pictureNamed(u"two"), two.get());
    EXPECT_EQ(field.pictureNamed(u""), nullptr);

    field.setHtml(u"<img src='b' id='two'>others<img src='a' id='one'>");
    ASSERT_EQ(script.made.size(), 2U) << "they change places only";
    EXPECT_EQ(field.children()[0], two);
    EXPECT_EQ(field.layout().floats().size(), 2U);

    // One that is taken away is the text's no more, and is not made again for what is typed behind it.
    field.dropPicture(*two);
    EXPECT_EQ(two->parent(), nullptr);
    EXPECT_EQ(field.html().find(u"SRC=\"b\""), std::u16string::npos);
    field.replaceText(6, 6, u"!");
    EXPECT_EQ(script.made.size(), 2U);
    EXPECT_EQ(field.children().size(), 1U);

    node.reset();
    EXPECT_EQ(one->parent(), nullptr) << "it outlives its text";
}

} // namespace
} // namespace flash::stage::test
