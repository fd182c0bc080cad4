#include "skin/Skin.h"

#include "QtPrint.h"
#include "base/Failure.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest/QTest>
#include <gtest/gtest.h>

namespace skin
{
namespace
{

/// What a skin's script knows as Player, with no player behind it.
class TestWindow : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(int ScaleWidth READ ScaleWidth)
    Q_PROPERTY(int ScaleHeight READ ScaleHeight)
    Q_PROPERTY(QString StatusText MEMBER statusText)
public:
    [[nodiscard]] int ScaleWidth() const { return client->width(); }
    [[nodiscard]] int ScaleHeight() const { return client->height(); }
    Q_INVOKABLE void MoveWindow() { ++moves; }
    Q_INVOKABLE void Report(const QVariant& value) { reports += value.toString(); }
    Q_INVOKABLE void Fail() { throw base::Failure(53, "Test", "gone"); }

    QWidget* client = new QWidget(this);
    QString statusText = "Готово";
    int moves = 0;
    QStringList reports;
};

class TestHost : public SkinHost
{
public:
    TestHost() : movieFrame(new SkinControl("SWF", 0, form.client, &form)) { movieFrame->show(); }
    QWidget& window() override { return form; }
    QWidget& clientArea() override { return *form.client; }
    QWidget& movie() override { return *movieFrame; }
    [[nodiscard]] bool isFullScreen() const override { return fullScreen; }
    void setMinimumWindowSize(QSize pixels) override { minimum = pixels; }
    void UpdateRegion(bool) override { ++regions; }
    void ShowPopUp() override { ++popUps; }
    void activateProgram() override { ++activations; }
    [[nodiscard]] bool isDeveloperMode() const override { return false; }
    void log(const QString& text) override { lines += text; }
    void logError(const base::Failure& error, const QString& place, const QString& detail) override
    {
        errors += place;
        details += detail;
        descriptions += QString::fromStdString(error.description());
    }
    TestWindow form;
    SkinControl* movieFrame;
    bool fullScreen = false;
    QSize minimum;
    int regions = 0, popUps = 0, activations = 0;
    QStringList lines, errors, details, descriptions;
};

class SkinTest : public testing::Test
{
protected:
    SkinTest() : skin(host, nullptr)
    {
        host.form.resize(400, 300);
        host.clientArea().resize(400, 300);
        host.form.show();
        ScriptObjects& objects = skin.bridge().objects();
        skin.bridge().setPlayerObject(objects.add(
            &host.form, nullptr,
            [this](const QString& name) -> QObject* { return name == "swf" ? host.movieFrame : nullptr; },
            "Player"));
    }
    static void write(const QString& path, const QByteArray& bytes)
    {
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        ASSERT_TRUE(file.open(QFile::WriteOnly));
        file.write(bytes);
    }
    void picture(const QString& name, const QColor& colour, QSize size = {28, 28})
    {
        const QString path = folder.filePath(name);
        QDir().mkpath(QFileInfo(path).path());
        QImage image(size, QImage::Format_RGB32);
        image.fill(colour);
        ASSERT_TRUE(image.save(path));
    }
    bool load(const QByteArray& xml, const QByteArray& script = {})
    {
        write(folder.filePath("skin.xml"), xml);
        write(folder.filePath("s.vbs"), script);
        return skin.LoadSkin(folder.filePath("skin.xml"));
    }
    bool loadTiny()
    {
        for (const char* name : {"skin.xml", "script.vbs"})
            QFile::copy(QString(TEST_SOURCE_DIR "/tiny/") + name, folder.filePath(name));
        picture("Base/BAR.bmp", Qt::darkBlue);
        picture("up/Sub/Play.bmp", Qt::green);
        picture("down/Sub/Play.bmp", Qt::red);
        picture("over/Sub/Play.bmp", Qt::yellow);
        picture("disabled/Sub/Play.bmp", Qt::gray);
        return skin.LoadSkin(folder.filePath("skin.xml"));
    }
    [[nodiscard]] const SkinObject& record(const QString& name) const
    {
        for (const SkinObject& object : skin.objects())
            if (object.name == name) return object;
        return skin.objects()[0];
    }
    double number(const QString& expression) { return skin.bridge().EvalScript(expression).value_or(-1); }

    QTemporaryDir folder;
    TestHost host;
    Skin skin;
};

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

TEST_F(SkinTest, GoesOnAfterEveryMistake)
{
    struct Case {
        const char* name;
        const char* xml;
        const char* script;
        QStringList errors;
        std::size_t objects;
    };
    const QString branch = "Обработка ветки описания шкурки";
    const QString onLoad = "Выполнение сценария 'onLoad' (Строка: 1)";
    const QString noView = "Установка вида шкурки viewNormal";
    const Case kCases[] = {
        {"no theme", "<SKIN><VIEW name='viewNormal'/></SKIN>", "", {branch, onLoad, noView}, 1},
        {"no onLoad", "<THEME><VIEW name='viewNormal'/></THEME>", "", {onLoad}, 2},
        {"no views", "<THEME scriptFile='s.vbs'/>", "Sub onLoad : End Sub", {noView}, 1},
        {"other language",
         "<THEME scriptLanguage='jscript'><VIEW name='viewNormal'/></THEME>",
         "",
         {branch, onLoad},
         2},
        {"no script file",
         "<THEME scriptFile='none.vbs'><VIEW name='viewNormal'/></THEME>",
         "",
         {branch, onLoad},
         2},
        {"script with a mistake",
         "<THEME scriptFile='s.vbs'><VIEW name='viewNormal'/></THEME>",
         "Sub onLoad :",
         {branch, onLoad},
         2},
        {"a value that cannot be converted",
         "<THEME scriptFile='s.vbs'><VIEW name='viewNormal'><SUBVIEW name='p' visible='maybe'>"
         "<LABEL name='l' foreColor='red'/><BUTTON name='b'/></SUBVIEW></VIEW></THEME>",
         "Sub onLoad : End Sub",
         {branch, branch},
         5},
        {"failing expressions",
         "<THEME scriptFile='s.vbs'><VIEW name='viewNormal'><BUTTON name='b' left='1/0' top='nothing.x' "
         "width='(' "
         "height='\"12\"'/></VIEW></THEME>",
         "Sub onLoad : End Sub",
         {},
         3},
        {"a missing image",
         "<THEME scriptFile='s.vbs'><VIEW name='viewNormal'><BUTTON name='b' image='x.bmp'/></VIEW></THEME>",
         "Sub onLoad : End Sub",
         {},
         3},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        host.errors.clear();
        host.details.clear();
        EXPECT_TRUE(load(c.xml, c.script));
        EXPECT_EQ(host.errors.join('|'), c.errors.join('|'));
        EXPECT_EQ(skin.objects().size(), c.objects);
        if (QString(c.name) == "failing expressions") {
            EXPECT_EQ(record("b").object->geometry(), QRect(0, 0, 0, 12));
        }
        if (QString(c.name) == "a value that cannot be converted") {
            EXPECT_EQ(skin.objects()[2].object, nullptr) << "a failed element's record is empty";
            EXPECT_EQ(skin.objects()[4].name, "b") << "and those after it keep their places";
            EXPECT_TRUE(host.details[1].startsWith("Исходный код текущей ветки:\r\n\r\n<SUBVIEW") ||
                        host.details[0].contains("<SUBVIEW"));
        }
        skin.UnloadSkin();
    }
    EXPECT_FALSE(load("<THEME><VIEW></THEME>"));
    EXPECT_FALSE(skin.LoadSkin(folder.filePath("none/skin.xml")));
    EXPECT_EQ(skin.objects().size(), 1U);
    EXPECT_EQ(host.movieFrame->parentWidget(), host.form.client);
}

TEST_F(SkinTest, StopsAStatementThatNeverEnds)
{
    ASSERT_TRUE(load("<THEME scriptFile='s.vbs'><VIEW name='viewNormal' onInfoUpdate='Hang'/></THEME>",
                     "Sub onLoad : End Sub\r\nSub Hang\r\nDo : Loop\r\nEnd Sub"));
    skin.runInfoUpdate();
    EXPECT_EQ(host.errors.size(), 1);
    QElapsedTimer time;
    time.start();
    skin.runInfoUpdate();
    EXPECT_LT(time.elapsed(), 500) << "it is not tried again";
}

TEST_F(SkinTest, LogsAFailingInfoUpdateOnce)
{
    ASSERT_TRUE(load("<THEME scriptFile='s.vbs'><VIEW name='viewNormal' onInfoUpdate='x = 1/0'/></THEME>",
                     "Sub onLoad : End Sub"));
    for (int i = 0; i < 5; ++i) skin.runInfoUpdate();
    EXPECT_EQ(host.errors, QStringList{"Выполнение сценария 'x = 1/0' (Строка: 1)"});
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

} // namespace
} // namespace skin

#include "SkinTest.moc"
