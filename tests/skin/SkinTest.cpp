#include "skin/SkinFixture.h"

#include <QElapsedTimer>
#include <QtTest/QTest>
#include <gtest/gtest.h>

namespace skin
{
namespace
{

TEST_F(SkinTest, BuildsTheObjectTable)
{
    ASSERT_TRUE(loadTiny());
    EXPECT_TRUE(host.errors.isEmpty())
        << host.errors.join('\n').toStdString() << host.descriptions.join('\n').toStdString();
    struct Case {
        const char* name;
        Kind kind;
        int view;
        const char* container;
        QRect place;
    };
    const Case kCases[] = {
        {"viewNormal", Kind::View, 1, "", {0, 0, 400, 300}},
        {"bar", Kind::Panel, 1, "viewNormal", {0, 260, 400, 40}},
        {"play", Kind::Button, 1, "bar", {8, 6, 28, 28}},
        {"inner", Kind::Panel, 1, "bar", {100, 4, 50, 20}},
        {"deep", Kind::Label, 1, "inner", {1, 2, 40, 24}},
        {"info", Kind::Label, 1, "bar", {40, 10, 100, 20}},
        {"zoom", Kind::Button, 1, "viewNormal", {0, 0, 20, 20}},
        {"VIEWFULLSCREEN", Kind::View, 8, "", {0, 0, 1, 1}},
        {"still", Kind::Label, 8, "VIEWFULLSCREEN", {0, 0, 50, 20}},
    };
    ASSERT_EQ(skin.objects().size(), std::size(kCases) + 1) << "what is unknown or below a button is ignored";
    for (std::size_t i = 0; i < std::size(kCases); ++i) {
        SCOPED_TRACE(kCases[i].name);
        const SkinObject& object = skin.objects()[i + 1];
        ASSERT_NE(object.object, nullptr);
        EXPECT_EQ(object.name, kCases[i].name);
        EXPECT_EQ(object.kind, kCases[i].kind);
        EXPECT_EQ(object.viewIndex, kCases[i].view);
        EXPECT_EQ(object.object->Tag(), QString::number(i + 1));
        EXPECT_EQ(object.object->geometry(), kCases[i].place);
        const QString container = kCases[i].container;
        EXPECT_EQ(object.object->Container(),
                  container.isEmpty() ? &host.form : static_cast<QObject*>(record(container).object));
    }
    EXPECT_EQ(host.minimum, QSize(300, 200));
    EXPECT_EQ(record("play").object->toolTip(), "Пуск");
    EXPECT_EQ(record("bar").onDrag, "MoveWindow");
    EXPECT_EQ(record("play").onDrag, "");
    EXPECT_EQ(record("still").onDrag, "") << "nothing drags by itself on the full screen";
    EXPECT_TRUE(record("play").hasImage(ImageState::Down)) << "names have any case, and backslashes";
    EXPECT_EQ(number("Loads"), 1);
    EXPECT_EQ(skin.GetAbsTop(*record("deep").object), 260 + 4 + 2);
    EXPECT_EQ(skin.GetAbsLeft(*record("deep").object), 1) << "the containers do not count to the left";
    EXPECT_EQ(skin.control("PIC", 2), record("bar").object);
    EXPECT_EQ(skin.control("LBL", 1), record("deep").object);
}

TEST_F(SkinTest, LaysOutAgainAndPlacesTheMovie)
{
    ASSERT_TRUE(loadTiny());
    EXPECT_EQ(host.movieFrame->parentWidget(), record("viewNormal").object);
    EXPECT_EQ(host.movieFrame->geometry(), QRect(0, 0, 400, 260));
    host.clientArea().resize(500, 200);
    const int regions = host.regions;
    skin.UpdateSkin();
    EXPECT_EQ(record("bar").object->geometry(), QRect(0, 160, 500, 40));
    EXPECT_EQ(host.movieFrame->geometry(), QRect(0, 0, 500, 160));
    EXPECT_EQ(host.regions, regions + 1);
    // The movie lies under the view's elements.
    EXPECT_EQ(record("viewNormal").object->children().first(), host.movieFrame);

    EXPECT_TRUE(skin.SetSkinView("viewfullscreen"));
    EXPECT_FALSE(record("viewNormal").object->Visible());
    EXPECT_TRUE(record("VIEWFULLSCREEN").object->Visible());
    EXPECT_EQ(host.movieFrame->parentWidget(), record("VIEWFULLSCREEN").object);
    EXPECT_FALSE(skin.SetSkinView("viewNone"));
    EXPECT_TRUE(record("VIEWFULLSCREEN").object->Visible()) << "an unknown view changes nothing";
    EXPECT_EQ(host.errors, QStringList{"Установка вида шкурки viewNone"});
    EXPECT_EQ(host.descriptions, QStringList{"В шкурке не найдено вида \"viewNone\""});
}

TEST_F(SkinTest, FillsTheViewWithAMovieThatNobodyPlaces)
{
    ASSERT_TRUE(load("<THEME><VIEW name='viewNormal'/></THEME>"));
    EXPECT_EQ(host.movieFrame->geometry(), QRect(0, 0, 400, 300));
    host.clientArea().resize(200, 100);
    skin.UpdateSkin();
    EXPECT_EQ(host.movieFrame->geometry(), QRect(0, 0, 200, 100));
}

TEST_F(SkinTest, ScriptsSeeTheElementsByTheirProperties)
{
    ASSERT_TRUE(loadTiny());
    const auto run = [this](const char* statement) {
        EXPECT_EQ(skin.bridge().RunScript(statement), Bridge::Outcome::Done)
            << statement << ": " << host.descriptions.join(' ').toStdString();
    };
    run("info.Caption = \"a\" : info.ForeColor = RGB(1, 2, 3) : info.FontBold = True : info.FontSize = 12");
    auto& info = dynamic_cast<SkinLabel&>(*record("info").object);
    EXPECT_EQ(info.Caption(), "a");
    EXPECT_EQ(info.ForeColor(), 0x030201);
    EXPECT_TRUE(info.FontBold());
    EXPECT_EQ(info.FontSize(), 12);
    run("info.Alignment = 2 : info.FontItalic = 1 : info.AutoSize = True : info.Caption = \"much longer "
        "text\"");
    EXPECT_GT(info.width(), 60);
    run("play.Move 3, 4 : play.Height = 7.5 : play.Visible = 0");
    EXPECT_EQ(record("play").object->geometry(), QRect(3, 4, 28, 8));
    EXPECT_FALSE(record("play").object->Visible());
    run("Set play.Container = inner");
    EXPECT_EQ(record("play").object->Container(), record("inner").object);
    run("If Not play.Container Is inner Then Err.Raise 1");
    run("If Not play.Parent Is Player Then Err.Raise 1");
    run("If play.Index <> 3 Or play.Tag <> \"3\" Or TypeName(Player) <> \"Player\" Then Err.Raise 1");
    run("If Left(\"abc\", 2) <> \"ab\" Then Err.Raise 1");
    run("MoveWindow : Player.MoveWindow");
    EXPECT_EQ(host.form.moves, 2) << "with and without the name";
    run("FullScreen True");
    EXPECT_TRUE(host.form.isFull);
    host.movieFrame->setShown(false);
    run("SWF.Visible = True");
    EXPECT_TRUE(host.movieFrame->Visible());

    // What is not made for scripts is out of their reach, and a failing procedure is a script's error.
    for (const char* statement :
         {"play.deleteLater", "Player.close", "Player.setEnabled False", "Player.Parent.close"})
        EXPECT_EQ(skin.bridge().RunScript(statement), Bridge::Outcome::Failed) << statement;
    run("On Error Resume Next : Player.Fail : Report Err.Number");
    EXPECT_EQ(host.form.reports, QStringList{"53"});
}

TEST_F(SkinTest, AnswersThePointer)
{
    ASSERT_TRUE(loadTiny());
    SkinPicture& play = *record("play").picture();
    QTest::mousePress(&play, Qt::LeftButton);
    EXPECT_EQ(play.shownState(), ImageState::Down);
    QTest::mouseRelease(&play, Qt::LeftButton);
    EXPECT_EQ(play.shownState(), ImageState::Normal);
    EXPECT_EQ(number("Pressed"), 1);
    QTest::mousePress(&play, Qt::LeftButton);
    QTest::mouseRelease(&play, Qt::LeftButton, {}, {-5, -5});
    EXPECT_EQ(number("Pressed"), 1) << "let go beside it";

    SkinPicture& zoom = *record("zoom").picture();
    QTest::mousePress(&zoom, Qt::LeftButton, {}, {3, 4});
    EXPECT_EQ(number("DragX"), 3);
    QTest::mouseRelease(&zoom, Qt::LeftButton, {}, {15, 16});
    EXPECT_EQ(number("DragY"), 16);

    QTest::mousePress(record("info").object, Qt::LeftButton);
    QTest::mouseRelease(record("info").object, Qt::LeftButton);
    EXPECT_EQ(host.form.moves, 2) << "press and release of a label move the window";
    QTest::mousePress(record("info").object, Qt::RightButton);
    EXPECT_EQ(host.popUps, 1);
    EXPECT_TRUE(host.errors.isEmpty()) << host.descriptions.join('\n').toStdString();
}

TEST_F(SkinTest, RestsWhileTheProgramIsNotActive)
{
    ASSERT_TRUE(loadTiny());
    SkinPicture& play = *record("play").picture();
    skin.setActive(false);
    EXPECT_EQ(play.shownState(), ImageState::Disabled);
    EXPECT_FALSE(play.isEnabled());
    EXPECT_TRUE(host.movieFrame->isEnabled());
    QTest::mouseClick(&play, Qt::LeftButton);
    EXPECT_EQ(host.activations, 1);
    EXPECT_EQ(number("Pressed"), 1) << "the press that activates is not lost";
    EXPECT_EQ(play.shownState(), ImageState::Normal);
    EXPECT_TRUE(play.isEnabled());
}

TEST_F(SkinTest, KeepsItsDisabledLookUnderThePointer)
{
    ASSERT_TRUE(loadTiny());
    SkinPicture& play = *record("play").picture();
    QEnterEvent enter({3, 3}, {3, 3}, {3, 3});
    QApplication::sendEvent(&play, &enter);
    EXPECT_EQ(play.shownState(), ImageState::Over);
    skin.setActive(false);
    QApplication::sendEvent(&play, &enter);
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&play, &leave);
    EXPECT_EQ(play.shownState(), ImageState::Disabled);

    // The other view is chosen meanwhile, and this one is come back to in the active program.
    skin.SetSkinView("viewFullScreen");
    skin.setActive(true);
    skin.SetSkinView("viewNormal");
    EXPECT_EQ(play.shownState(), ImageState::Normal);
    EXPECT_TRUE(play.isEnabled());
}

TEST_F(SkinTest, CutsElementsAndWindow)
{
    QImage image(20, 10, QImage::Format_RGB32);
    image.fill(Qt::blue);
    for (int x = 0; x < 5; ++x) image.setPixel(x, 0, qRgb(255, 0, 255));
    QDir().mkpath(folder.filePath("base"));
    QDir().mkpath(folder.filePath("up"));
    ASSERT_TRUE(image.save(folder.filePath("base/m.bmp")));
    ASSERT_TRUE(image.save(folder.filePath("up/m.bmp")));
    picture("up/key.bmp", QColor(255, 0, 255), {4, 4});
    ASSERT_TRUE(load(
        "<THEME><VIEW name='viewNormal'><SUBVIEW name='outer' left='30' top='7' width='99' height='99'>"
        "<SUBVIEW name='shaped' left='2' top='3' width='20' height='10' image='m.bmp' windowMask='#FF00FF'/>"
        "<BUTTON name='cut' width='20' height='10' image='m.bmp' maskColor='#FF00FF'/>"
        "<BUTTON name='gone' width='4' height='4' image='key.bmp' maskColor='#FF00FF'/>"
        "</SUBVIEW></VIEW></THEME>"));
    const QRegion solid = QRegion(0, 0, 20, 10) - QRegion(0, 0, 5, 1);
    EXPECT_EQ(record("shaped").object->mask(), solid);
    EXPECT_EQ(record("cut").object->mask(), solid);
    EXPECT_FALSE(record("gone").object->mask().intersects(QRect(0, 0, 4, 4)));
    EXPECT_FALSE(record("gone").object->mask().isEmpty()) << "an empty mask would be none";
    const auto masks = skin.masks();
    ASSERT_EQ(masks.size(), 1U);
    EXPECT_EQ(masks[0].holes, QRegion(0, 0, 5, 1));
    EXPECT_EQ(QPoint(masks[0].absoluteLeft, masks[0].absoluteTop), QPoint(2, 10));
}

TEST_F(SkinTest, ForgetsOneSkinBeforeTheNext)
{
    ASSERT_TRUE(load("<THEME scriptFile='s.vbs'><VIEW name='viewNormal'><LABEL name='old'/></VIEW></THEME>",
                     "Sub onLoad : End Sub\r\nSub Foo : End Sub"));
    EXPECT_EQ(skin.bridge().RunScript("Foo : old.Left = 1"), Bridge::Outcome::Done);
    skin.UnloadSkin();
    skin.UnloadSkin();
    ASSERT_TRUE(load("<THEME scriptFile='s.vbs'><VIEW name='viewNormal'/></THEME>", "Sub onLoad : End Sub"));
    EXPECT_EQ(skin.bridge().RunScript("Foo"), Bridge::Outcome::Failed);
    EXPECT_EQ(skin.bridge().RunScript("old.Left = 1"), Bridge::Outcome::Failed);
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(host.clientArea().findChildren<SkinLabel*>().size(), 0);
}

// Every mistake is told with the line that the author's editor shows, whenever it comes to light.
TEST_F(SkinTest, TellsLinesAsTheAuthorsEditorShowsThem)
{
    const QByteArray theme = "<THEME scriptFile='s.vbs'><VIEW name='viewNormal'/></THEME>";
    struct Case {
        const char* name;
        QByteArray script;
        const char* statement;
        const char* line; // of the first error
    };
    const Case kCases[] = {
        {"a run-time error in the file's first line", "x = 1 / 0", "", "(1:"},
        {"one further down", "Option Explicit\r\n\r\n' note\r\nDim a\r\na = b", "", "(5:"},
        {"a text that does not compile", "Sub onLoad\r\nx = (1\r\nEnd Sub", "", "(2:7)"},
        {"lines of other systems", "Sub onLoad\nEnd Sub\n\nx = = 1", "", "(4:5)"},
        {"a procedure that fails when it is called",
         "Sub onLoad\r\nEnd Sub\r\nSub Foo\r\n' note\r\nx = _\r\n  1 / 0\r\nEnd Sub", "Foo", "Строка: 5)"},
        {"one that another one calls",
         "Sub onLoad\r\nEnd Sub\r\nSub Foo\r\nBar\r\nEnd Sub\r\nSub Bar\r\nErr.Raise 5\r\nEnd Sub", "Foo",
         "Строка: 7)"},
        {"the statement itself", "Sub onLoad\r\nEnd Sub", "x = 1 / 0", "Строка: 1)"},
        {"a statement that does not compile", "Sub onLoad\r\nEnd Sub", "x = (", "Строка: 1)"},
        {"onLoad", "\r\nSub onLoad\r\nx = 1 / 0\r\nEnd Sub", "", "Строка: 3)"},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        host.errors.clear();
        host.descriptions.clear();
        skin.UnloadSkin();
        ASSERT_TRUE(load(theme, c.script));
        skin.bridge().RunScript(c.statement);
        ASSERT_FALSE(host.errors.isEmpty());
        const QString told = host.errors.first() + host.descriptions.first();
        EXPECT_TRUE(told.contains(c.line)) << told.toStdString();
    }
}

TEST_F(SkinTest, RunsALibraryBeforeItsOwnScript)
{
    const QByteArray theme =
        "<THEME scriptLibrary='Lib.vbs' scriptFile='s.vbs'><VIEW name='viewNormal'/></THEME>";
    const QByteArray script = "Const Factor = 3\r\nSub onLoad\r\nReport Twice(Factor)\r\nEnd Sub\r\n"
                              "Function Name\r\nName = \"skin\"\r\nEnd Function";
    const QString own = folder.filePath("media/skins/mine/");
    const auto loadAgain = [&] {
        skin.UnloadSkin();
        write(own + "skin.xml", theme);
        write(own + "s.vbs", script);
        return skin.LoadSkin(own + "skin.xml");
    };
    const QString shared = folder.filePath("media/scripts/lib.vbs");
    write(shared, "Function Twice(n)\r\nTwice = 2 * n\r\nEnd Function\r\nFunction Name\r\nEnd Function\r\n"
                  "Sub Fail\r\nx = 1 / 0\r\nEnd Sub");
    ASSERT_TRUE(loadAgain());
    skin.bridge().RunScript("Report Name");
    EXPECT_EQ(host.form.reports, QStringList({"6", "skin"})) << "what the skin declares again is the skin's";
    skin.bridge().RunScript("Fail");
    ASSERT_EQ(host.errors.size(), 1);
    EXPECT_TRUE(host.errors[0].endsWith("(Строка: 7, библиотека сценариев)")) << host.errors[0].toStdString();

    // A copy of the skin's own comes first.
    write(own + "LIB.VBS", "Function Twice(n)\r\nTwice = 20 * n\r\nEnd Function");
    ASSERT_TRUE(loadAgain());
    EXPECT_EQ(host.form.reports.last(), "60");
    QFile::remove(own + "LIB.VBS");
    QFile::remove(shared);
    ASSERT_TRUE(loadAgain());
    EXPECT_TRUE(host.descriptions.join('|').contains("Lib.vbs")) << "a library that is nowhere is told";
}

TEST_F(SkinTest, LaysOutAThousandElementsInAnInstant)
{
    QByteArray xml =
        "<THEME scriptFile='s.vbs'><VIEW name='viewNormal'><SUBVIEW name='base' width='Player.ScaleWidth'/>";
    for (int i = 0; i < 1000; ++i)
        xml += "<LABEL name='l" + QByteArray::number(i) + "' left='base.Width - " +
               QByteArray::number(i % 300) + "' top='Player.ScaleHeight / 2 + " + QByteArray::number(i) +
               "' width='Gap * 3' height='20'/>";
    ASSERT_TRUE(load(xml + "</VIEW></THEME>", "Dim Gap\r\nGap = 4\r\nSub onLoad : End Sub"));
    EXPECT_EQ(record("l7").object->geometry(), QRect(393, 157, 12, 20));
    skin.bridge().RunScript("Gap = 5");
    host.clientArea().resize(500, 400);
    skin.UpdateSkin();
    EXPECT_EQ(record("l7").object->geometry(), QRect(493, 207, 15, 20)) << "a variable's new value counts";
    QElapsedTimer time;
    time.start();
    constexpr int kPasses = 20;
    for (int i = 0; i < kPasses; ++i) {
        host.clientArea().resize(500 + i, 400);
        skin.UpdateSkin();
    }
    const double ms = static_cast<double>(time.nsecsElapsed()) / 1e6 / kPasses;
    RecordProperty("layoutMs", std::to_string(ms));
    std::printf("a pass over 1000 elements: %.2f ms\n", ms);
}

TEST_F(SkinTest, AllThatALayoutRunsHasOneLimitOfTime)
{
    QByteArray labels;
    for (int i = 0; i < 200; ++i)
        labels += "<LABEL name='l" + QByteArray::number(i) + "' left='Slow(" + QByteArray::number(i) + ")'/>";
    // A tenth of a second and more each: none of them hangs by itself.
    QElapsedTimer taken;
    taken.start();
    ASSERT_TRUE(load("<THEME scriptFile='s.vbs'><VIEW name='viewNormal' onResize='Endless'>" + labels +
                         "</VIEW></THEME>",
                     "Sub onLoad : End Sub\r\nFunction Slow(n)\r\nDim t : t = Timer\r\n"
                     "Do While Timer < t + 0.1 : Loop\r\nSlow = n\r\nEnd Function\r\n"
                     "Sub Endless\r\nDo : Loop\r\nEnd Sub"));
    EXPECT_EQ(host.overruns, 1) << "building and layout are one pass";
    EXPECT_LT(taken.elapsed(), 4000);
    skin.UpdateSkin();
    EXPECT_EQ(host.overruns, 2) << "and every later layout is held to it";
    EXPECT_LT(taken.elapsed(), 8000);
}

TEST_F(SkinTest, NothingRunsOnceTheProgramHasEnded)
{
    ASSERT_TRUE(load("<THEME scriptFile='s.vbs'><VIEW name='viewNormal'/></THEME>",
                     "Sub onLoad : End Sub\r\nSub Tell : Report 1 : End Sub"));
    skin.bridge().RunScript("Tell");
    ASSERT_EQ(host.form.reports.size(), 1);
    host.ended = true;
    skin.bridge().RunScript("Tell");
    skin.bridge().ExecuteStatement("Tell");
    EXPECT_EQ(number("1 + 1"), 0);
    EXPECT_EQ(host.form.reports.size(), 1);
}

} // namespace
} // namespace skin
