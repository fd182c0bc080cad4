#include "PlayerWindow.h"
#include "flash/FlashControl.h"
#include "player/Shortcuts.h"

#include <QKeyEvent>
#include <QTest>

// Who gets a key: the program or the movie that plays.

namespace player
{
namespace
{

constexpr const char* kHead = "<movie version='6' width='200' height='100' rate='20' background='#4974BA'>";
constexpr const char* kField = "<font id='f' device='_sans'/><edit id='t' font='f' size='12' "
                               "width='190' height='90' input='yes'/>";

QByteArray movieWith(const QByteArray& definitions, const QByteArray& first, const QByteArray& script)
{
    return kHead + definitions + "<frame>" + first + "<script><![CDATA[" + script +
           "]]></script></frame><frame duration='60'/></movie>";
}

class Keyboard : public PlayerWindow
{
protected:
    void start(const QString& path)
    {
        player = std::make_unique<Player>(application, '"' + path + '"');
        player->Form_Load();
        player->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(player.get()));
        player->control().setFocus();
    }
    void click(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(&player->control(), key, modifiers);
    }
    [[nodiscard]] QString shortcut(const QString& item) const
    {
        player->menus().refreshShortcuts();
        return player->menus().item(item).shortcut().toString();
    }
    std::unique_ptr<Player> player;
};

TEST_F(Keyboard, KnowsWhichMoviesListen)
{
    const struct {
        const char* name;
        QByteArray definitions, placed, script;
        bool listens;
    } kCases[] = {
        {"a film", "", "", "var a = 1; onMouseDown = function () {};", false},
        {"looks at a key in every frame", "", "", "onEnterFrame = function () { Key.isDown(37); };", true},
        {"listens", "", "", "Key.addListener(new Object());", true},
        {"no longer listens", "", "", "var o = new Object(); Key.addListener(o); Key.removeListener(o);",
         false},
        {"a button waits for a key",
         "<shape id='s'><rect width='9' height='9' fill='#000000'/></shape>"
         "<button id='b'><state id='s'/><script>on (keyPress \"a\") { play(); }</script></button>"
         "<sprite id='in'><frame><place id='b'/></frame></sprite>",
         "<place id='in'/>", "", true},
        {"a button that is only clicked",
         "<shape id='s'><rect width='9' height='9' fill='#000000'/></shape>"
         "<button id='b'><state id='s'/><script>on (release) { play(); }</script></button>",
         "<place id='b'/>", "", false},
        {"a clip hears keys", "<sprite id='c'><frame/></sprite>",
         "<place id='c' name='c'><script>onClipEvent (keyDown) { play(); }</script></place>", "", true},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        flash::FlashControl control;
        EXPECT_FALSE(control.listensToKeys());
        const QString movie = compile("m", movieWith(c.definitions, c.placed, c.script));
        ASSERT_TRUE(control.LoadMovie(0, movie)) << control.errorText().toStdString();
        control.show();
        // A frame or two; beside other work they may be late.
        if (c.listens)
            EXPECT_TRUE(QTest::qWaitFor([&control] { return control.listensToKeys(); }));
        else
            QTest::qWait(150);
        EXPECT_EQ(control.listensToKeys(), c.listens);
    }
}

TEST_F(Keyboard, PlainKeysDriveThePlayerWhileTheMovieDoesNotListen)
{
    start(compile("film", movieWith({}, {}, {})));
    flash::FlashControl& movie = player->control();
    EXPECT_TRUE(movie.Playing());
    click(Qt::Key_Space);
    EXPECT_FALSE(movie.Playing());
    click(Qt::Key_Home);
    EXPECT_EQ(movie.FrameNum(), 0);
    click(Qt::Key_Right);
    click(Qt::Key_Right);
    EXPECT_EQ(movie.FrameNum(), 2);
    click(Qt::Key_Left);
    EXPECT_EQ(movie.FrameNum(), 1);
    player->SetSound(50, 30);
    click(Qt::Key_Up);
    EXPECT_EQ(player->Volume(), 60);
    click(Qt::Key_Minus);
    click(Qt::Key_Down);
    EXPECT_EQ(player->Volume(), 40);
    click(Qt::Key_M);
    EXPECT_TRUE(player->Muted());
    click(Qt::Key_L);
    EXPECT_FALSE(movie.Loop());
    click(Qt::Key_3, Qt::ControlModifier);
    EXPECT_EQ(movie.width(), 400);
    click(Qt::Key_5); // tenths
    EXPECT_EQ(movie.FrameNum(), movie.TotalFrames() / 2);
    click(Qt::Key_Period);
    EXPECT_EQ(movie.FrameNum(), movie.TotalFrames() / 2 + 1);
    click(Qt::Key_Comma);
    EXPECT_EQ(movie.FrameNum(), movie.TotalFrames() / 2);
    click(Qt::Key_0);
    EXPECT_EQ(movie.FrameNum(), 0);
    click(Qt::Key_BracketRight);
    EXPECT_EQ(movie.speed(), 1.25);
    click(Qt::Key_BracketLeft);
    click(Qt::Key_BracketLeft);
    EXPECT_EQ(movie.speed(), 0.75);
    click(Qt::Key_Backspace);
    EXPECT_EQ(movie.speed(), 1);
    click(Qt::Key_F);
    EXPECT_TRUE(player->isFullScreen());
    click(Qt::Key_Escape);
    EXPECT_FALSE(player->isFullScreen());
    EXPECT_EQ(shortcut("mnuPlay"), "Space");
    EXPECT_EQ(shortcut("mnuFullScreen"), "F11");
}

TEST_F(Keyboard, AMovieThatListensHasThePlainKeys)
{
    start(compile("game", movieWith({}, {},
                                    "var keys = ''; var o = new Object();"
                                    "o.onKeyDown = function () { _root.keys += Key.getCode() + ' '; };"
                                    "Key.addListener(o);")));
    flash::FlashControl& movie = player->control();
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Left, Qt::Key_M, Qt::Key_1}) click(key);
    EXPECT_TRUE(movie.Playing());
    EXPECT_FALSE(player->Muted());
    EXPECT_EQ(movie.GetVariable("keys"), "32 37 77 49 ");

    EXPECT_EQ(shortcut("mnuPlay"), "Ctrl+Space") << "menus show the key that works";
    click(Qt::Key_Space, Qt::ControlModifier);
    EXPECT_FALSE(movie.Playing());
    click(Qt::Key_M, Qt::ControlModifier);
    EXPECT_TRUE(player->Muted());
    click(Qt::Key_F11);
    EXPECT_TRUE(player->isFullScreen());
    click(Qt::Key_Escape);
    EXPECT_FALSE(player->isFullScreen());
    EXPECT_EQ(movie.GetVariable("keys"), "32 37 77 49 17 17 ") << "but for Ctrl, the player took them alone";

    player->setFocus(); // the movie has lost the keyboard
    EXPECT_EQ(shortcut("mnuPlay"), "Space");
}

TEST_F(Keyboard, TextThatIsTypedGoesToTheMovie)
{
    start(compile("form", movieWith(kField, "<place id='t' x='5' y='5' name='t'/>", {})));
    flash::FlashControl& movie = player->control();
    QTest::mouseClick(&movie, Qt::LeftButton, {}, movie.rect().center());
    ASSERT_TRUE(QTest::qWaitFor([&movie] { return movie.listensToKeys(); }));
    for (const char letter : {'m', ' ', '1'}) QTest::keyClick(&movie, letter);
    EXPECT_EQ(movie.GetVariable("t.text"), "m 1");
    EXPECT_FALSE(player->Muted());
    EXPECT_TRUE(movie.Playing());
}

TEST(Shortcuts, PlainKeysWorkWithCtrlAsWell)
{
    const auto names = [](const QList<QKeySequence>& keys) {
        QStringList list;
        for (const QKeySequence& key : keys) list += key.toString();
        return list.join(' ');
    };
    EXPECT_EQ(names(shortcutsOf("F11", "F", true)), "F11 F Ctrl+F");
    EXPECT_EQ(names(shortcutsOf("", "Up +", true)), "Up + Ctrl+Up Ctrl++");
    EXPECT_EQ(names(shortcutsOf("MediaStop", "Home", false)), "Ctrl+Home Home Media Stop");
    EXPECT_EQ(names(shortcutsOf("", "", true)), "");
}

TEST_F(Keyboard, LettersMeanTheirKeysInTheRussianLayout)
{
    start(compile("film", movieWith({}, {}, {})));
    const auto type = [this](Qt::Key letter, const QString& text, Qt::KeyboardModifiers held = {}) {
        QKeyEvent press(QEvent::KeyPress, letter, held, text);
        QApplication::sendEvent(&player->control(), &press);
    };
    type(static_cast<Qt::Key>(0x42C), "ь"); // where M is
    EXPECT_TRUE(player->Muted());
    player->control().GotoFrame(5);
    type(static_cast<Qt::Key>(0x42E), "ю"); // where the point is
    EXPECT_EQ(player->control().FrameNum(), 6);
    type(static_cast<Qt::Key>(0x415), "е", Qt::ControlModifier); // Ctrl+T
    EXPECT_TRUE(player->menus().isChecked("mnuTopMost"));
    type(static_cast<Qt::Key>(0x419), "й"); // where Q is, which is nothing without Ctrl
    EXPECT_FALSE(player->hasEnded());
}

TEST_F(Keyboard, MenusOpenWhileTheirBarIsHidden)
{
    start(compile("film", movieWith({}, {}, {})));
    if (player->menus().isChecked("mnuMenuBar")) player->ToggleMenu();
    click(Qt::Key_D, Qt::AltModifier); // where the letter of "Вид" is
    EXPECT_EQ(QApplication::activePopupWidget(), player->menus().item("MenuView").menu());
    if (QWidget* menu = QApplication::activePopupWidget()) menu->close();
    QApplication::processEvents();
    for (const auto modifiers : {Qt::NoModifier, Qt::ShiftModifier}) {
        click(Qt::Key_F10, modifiers);
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr);
        if (modifiers == Qt::ShiftModifier) {
            EXPECT_NE(menu->activeAction(), nullptr) << "the arrows go on from here";
        }
        EXPECT_EQ(player->menus().item("mnuPopOpen").shortcut().toString(), "Ctrl+O");
        while (QWidget* open = QApplication::activePopupWidget()) open->close();
        QApplication::processEvents();
    }
}

TEST_F(Keyboard, RepeatsASection)
{
    start(compile("film", movieWith({}, {}, {})));
    flash::FlashControl& movie = player->control();
    movie.GotoFrame(10);
    click(Qt::Key_A);
    movie.GotoFrame(14);
    click(Qt::Key_A);
    movie.Play();
    bool went = false;
    EXPECT_TRUE(waitFor([&] {
        went = went || movie.FrameNum() >= 12;
        return went && movie.FrameNum() < 12;
    }));
    EXPECT_GE(movie.FrameNum(), 10);
    click(Qt::Key_A);
    EXPECT_FALSE(player->menus().isChecked("mnuRepeatAB"));
    EXPECT_TRUE(waitFor([&] { return movie.FrameNum() > 16; })) << "no more";
}

TEST(Shortcuts, NoTwoItemsShareOne)
{
    QWidget window;
    const Menus menus(&window);
    QHash<QString, QString> owners;
    for (const QAction* action : window.actions())
        for (const QKeySequence& key : action->shortcuts()) {
            EXPECT_FALSE(owners.contains(key.toString())) << key.toString().toStdString();
            EXPECT_FALSE(key.isEmpty()) << action->objectName().toStdString();
            owners.insert(key.toString(), action->objectName());
        }
    EXPECT_GT(owners.size(), 20);
}

} // namespace
} // namespace player
