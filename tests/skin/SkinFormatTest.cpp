#include "skin/SkinFixture.h"

#include <QElapsedTimer>
#include <QtTest/QTest>

// What a description may hold, and what becomes of one that holds something else.

namespace skin
{
namespace
{

using SkinFormat = SkinTest;

TEST_F(SkinFormat, GoesOnAfterEveryMistake)
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

TEST_F(SkinFormat, StopsAStatementThatNeverEnds)
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

TEST_F(SkinFormat, LogsAFailingInfoUpdateOnce)
{
    ASSERT_TRUE(load("<THEME scriptFile='s.vbs'><VIEW name='viewNormal' onInfoUpdate='x = 1/0'/></THEME>",
                     "Sub onLoad : End Sub"));
    for (int i = 0; i < 5; ++i) skin.runInfoUpdate();
    EXPECT_EQ(host.errors, QStringList{"Выполнение сценария 'x = 1/0' (Строка: 1)"});
}

TEST_F(SkinFormat, ReadsNamesAndValuesAsWritten)
{
    ASSERT_TRUE(load("<theme scriptFile='s.vbs'><View name='viewNormal'>"
                     "<Button name='a' Left='9' left=' 2 ' toolTip='| no |' onDrag='| no |'/>"
                     "<LABEL name='l' foreColor='#FF0000' fontSize='12'/>"
                     "<label name='m' fontSize='12' height='30' onClick='x = 1'/>"
                     "<LABEL name='auto' autoSize='True' caption='wider than one pixel' left='5'/>"
                     "<LABEL name='wrong' alignment='3'/>"
                     "<BUTTON/><BUTTON name='a' left='3 : Fail' width='7 ' height='2 + \"3\"'/>"
                     "</View></theme>",
                     "Sub onLoad : End Sub"));
    EXPECT_EQ(host.errors, QStringList{"Обработка ветки описания шкурки"})
        << "the alignment that there is not";
    EXPECT_EQ(skin.objects()[2].object->geometry(), QRect(2, 0, 1, 1)) << "attribute names keep their case";
    EXPECT_EQ(skin.objects()[2].object->toolTip(), "");
    EXPECT_EQ(dynamic_cast<SkinLabel&>(*record("l").object).ForeColor(), 0xFF0000) << "which is blue";
    EXPECT_EQ(record("l").object->height(), 24);
    EXPECT_EQ(record("m").object->height(), 30);
    EXPECT_GT(record("auto").object->width(), 60) << "the layout does not take its size away";
    EXPECT_EQ(record("auto").object->x(), 5);
    EXPECT_EQ(record("| no |").kind, Kind::Button);
    EXPECT_EQ(number("a.Width"), 7) << "of two of one name, scripts see the later";
    EXPECT_EQ(skin.objects()[8].object->geometry(), QRect(0, 0, 7, 5)) << "two statements are no expression";
    EXPECT_EQ(host.form.reports.size(), 0);
}

TEST_F(SkinFormat, ReadsDescriptionsOfEveryEncoding)
{
    const auto captionOf = [this](const QByteArray& xml) {
        EXPECT_TRUE(load(xml, "Sub onLoad : End Sub"));
        const QString caption = dynamic_cast<SkinLabel&>(*record("l").object).Caption();
        skin.UnloadSkin();
        return caption;
    };
    const auto body = [](const QByteArray& text) {
        return "<THEME scriptFile='s.vbs'><VIEW name='viewNormal'><LABEL name='l' caption='" + text +
               "'/></VIEW></THEME>";
    };
    const QByteArray ansi = "\xCF\xF3\xF1\xEA";
    EXPECT_EQ(captionOf("<?xml version='1.0' encoding='windows-1251'?>" + body(ansi)), "Пуск");
    EXPECT_EQ(captionOf(body("Пуск")), "Пуск");
    EXPECT_EQ(captionOf("\xEF\xBB\xBF" + body("Пуск")), "Пуск");
    EXPECT_EQ(captionOf("\xEF\xBB\xBF<?xml version='1.0' encoding='utf-8'?>" + body("Пуск")), "Пуск");
}

TEST_F(SkinFormat, NamesTheElementToItsDeveloper)
{
    host.developerMode = true;
    ASSERT_TRUE(load("<THEME scriptFile='s.vbs' minWidth='wide'><VIEW name='viewNormal'>"
                     "<BUTTON name='b' visible='maybe'/><BUTTON name='c'/></VIEW></THEME>",
                     "Sub onLoad : End Sub"));
    EXPECT_EQ(host.errors, (QStringList{"Обработка ветки описания шкурки", "Создание мета-объекта"}));
    EXPECT_TRUE(host.details[1].startsWith("Код объекта:\r\n\r\n<BUTTON")) << host.details[1].toStdString();
    EXPECT_EQ(record("c").object->toolTip(), "c (3)");
}

TEST_F(SkinFormat, RefusesAHugeImageAndGoesOn)
{
    QDir().mkpath(folder.filePath("up"));
    QFile large(folder.filePath("up/large.bmp"));
    ASSERT_TRUE(large.open(QFile::WriteOnly));
    ASSERT_TRUE(large.resize(100LL << 20));
    ASSERT_TRUE(load("<THEME scriptFile='s.vbs'><VIEW name='viewNormal'><BUTTON name='b' image='large.bmp'/>"
                     "</VIEW></THEME>",
                     "Sub onLoad : End Sub"));
    EXPECT_FALSE(record("b").hasImage(ImageState::Normal));
    EXPECT_TRUE(host.lines.join('|').contains("large.bmp: image file larger than 64 MiB"));
}

TEST_F(SkinFormat, TakesPicturesOfTheFourKindsFromItsOwnFolder)
{
    const QTemporaryDir elsewhere;
    QImage secret(8, 8, QImage::Format_RGB32);
    ASSERT_TRUE(secret.save(elsewhere.filePath("secret.png")));
    QDir().mkpath(folder.filePath("up"));
    QFile::link(elsewhere.filePath("secret.png"), folder.filePath("up/link.png"));
    QFile::link(elsewhere.path(), folder.filePath("up/there"));
    picture("up/own.png", Qt::red);
    QFile::link(folder.filePath("up/own.png"), folder.filePath("up/alias.png"));
    ASSERT_TRUE(secret.save(folder.filePath("up/named.png"), "PPM"));
    write(folder.filePath("up/drawing.png"),
          "<svg xmlns='http://www.w3.org/2000/svg' width='8' height='8'><rect width='8' height='8'/></svg>");
    QByteArray buttons;
    for (const char* name : {"own", "alias", "link", "there/secret", "named", "drawing", "../up/own"})
        buttons += "<BUTTON name='" + QByteArray(name) + "' image='" + name + ".png'/>";
    ASSERT_TRUE(load("<THEME scriptFile='s.vbs'><VIEW name='viewNormal'>" + buttons + "</VIEW></THEME>",
                     "Sub onLoad : End Sub"));
    for (const char* name : {"own", "alias"}) EXPECT_TRUE(record(name).hasImage(ImageState::Normal)) << name;
    for (const char* name : {"link", "there/secret", "named", "drawing", "../up/own"})
        EXPECT_FALSE(record(name).hasImage(ImageState::Normal)) << name;
}

TEST_F(SkinFormat, BoundsWhatADescriptionAsksFor)
{
    picture("base/large.png", Qt::red, {6000, 5000});
    QByteArray panels;
    for (int i = 0; i < 6; ++i) {
        picture("base/p" + QString::number(i) + ".png", Qt::red, {6000, 5000});
        panels +=
            "<SUBVIEW name='p" + QByteArray::number(i) + "' image='p" + QByteArray::number(i) + ".png'/>";
    }
    QByteArray nested, many;
    for (int i = 0; i < 200; ++i) nested += "<SUBVIEW name='n" + QByteArray::number(i) + "'>";
    for (int i = 0; i < 200; ++i) nested += "</SUBVIEW>";
    for (int i = 0; i < 6000; ++i) many += "<LABEL name='m'/>";
    ASSERT_TRUE(load("<THEME scriptFile='s.vbs'><VIEW name='viewNormal'>" + panels + nested + many +
                         "</VIEW></THEME>",
                     "Sub onLoad : End Sub"));
    EXPECT_TRUE(record("p3").hasImage(ImageState::Normal));
    EXPECT_FALSE(record("p4").hasImage(ImageState::Normal)) << "all pictures together have a limit";
    EXPECT_EQ(record("n199").name, QString());
    EXPECT_LE(skin.objects().size(), 5001U);
    EXPECT_EQ(host.overruns, 0);
}

TEST_F(SkinFormat, MovesTheMovieIntoNoLabel)
{
    ASSERT_TRUE(load("<THEME scriptFile='s.vbs'><VIEW name='viewNormal'><LABEL name='viewFullScreen'/></VIEW>"
                     "<VIEW name='VIEWFULLSCREEN'/></THEME>",
                     "Sub onLoad : End Sub"));
    EXPECT_TRUE(skin.SetSkinView("viewFullScreen"));
    EXPECT_EQ(host.movieFrame->parentWidget(), record("VIEWFULLSCREEN").object);
}

} // namespace
} // namespace skin
