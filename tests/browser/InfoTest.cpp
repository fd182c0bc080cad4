#include "browser/ConvertSize.h"
#include "browser/InfoTexts.h"
#include "browser/SaveJpg.h"
#include "browser/Thumbnails.h"
#include "browser/frmInfo.h"

#include "Host.h"
#include "QtPrint.h"
#include "media/MediaFiles.h"
#include "media/MovieBytes.h"

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QLocale>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

namespace browser
{
namespace
{

TEST(ConvertSize, TurnsAtItsTwoUnlikeLimits)
{
    struct Case {
        double bytes;
        const char* russian;
    };
    constexpr Case kCases[] = {
        {0, "0 байт"},        {1536, "1536 байт"}, {1537, "1,5 Кб"},          {10000, "9,77 Кб"},
        {1572863, "1536 Кб"}, {1572864, "1,5 Мб"}, {4294967295.0, "4096 Мб"}, {2048, "2 Кб"},
    };
    QLocale::setDefault(QLocale(QLocale::Russian));
    for (const Case& c : kCases) EXPECT_EQ(ConvertSize(c.bytes), c.russian) << c.bytes;
    QLocale::setDefault(QLocale::c());
    EXPECT_EQ(ConvertSize(1537), "1.5 Кб") << "the locale's own separator";
    QLocale::setDefault(QLocale(QLocale::Russian));
    EXPECT_EQ(roundedText(0.25, 1), "0,2") << "halves to even";
    EXPECT_EQ(roundedText(0.75, 1), "0,8");
}

class Info : public BrowserTest
{
protected:
    Info() : thumbnails(application, host, state)
    {
        QLocale::setDefault(QLocale(QLocale::Russian));
        thumbnails.seed = 1;
    }
    media::MediaInfo load(const QString& name, const media::ByteVector& bytes)
    {
        write(name,
              QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size())));
        media::NoMediaHost quiet;
        media::MediaFiles files(application, quiet);
        QString file = path(name);
        EXPECT_EQ(files.GetFlashInfo(file), QString());
        return files.mediaInfo();
    }
    static QString text(QDialog& window, const char* label)
    {
        return window.findChild<QLabel*>(label)->text();
    }
    static bool shows(QDialog& window, const char* label)
    {
        return window.findChild<QLabel*>(label)->isVisibleTo(&window);
    }
    BrowserState state;
    Thumbnails thumbnails;
};

TEST_F(Info, SaysWhatIsKnownOfEachKindOfFile)
{
    const auto line = [](const media::MediaInfo& info) { return describeMovie(info, "0:12"); };
    InfoTexts plain = line(load("dir.name.swf", media::plainMovie(7)));
    EXPECT_EQ(plain.name, "dir.name.swf");
    EXPECT_EQ(plain.path, path("dir.name.swf"));
    EXPECT_EQ(plain.version, "Версия: 7");
    EXPECT_TRUE(plain.time.endsWith("0:12 (300)")) << plain.time.toStdString();
    EXPECT_EQ(plain.note, "Файл не сжат");
    EXPECT_TRUE(plain.size.startsWith("Размер файла: ") && !plain.size.contains('('))
        << plain.size.toStdString();
    EXPECT_TRUE(plain.metrix.endsWith("550 x 400 @ 24 fps"));

    media::MediaInfo info = load("compressed.swf", media::compressedMovie(6));
    info.FileSize = 50000;
    info.FileLength = 200000;
    EXPECT_EQ(line(info).note, "Сжатие: 25% от оригинала");
    EXPECT_EQ(line(info).size, "Размер файла: 48,83 Кб (195,31 Кб)");
    info.FileSize = 66667;
    EXPECT_EQ(line(info).note, "Сжатие: 33,3% от оригинала");

    media::ByteVector cut = media::plainMovie(6, 994);
    ASSERT_EQ(cut.size() % 5, 0U);
    cut.resize(cut.size() * 2 / 5);
    EXPECT_EQ(line(load("cut.swf", cut)).note, "Лишь 40% файла загружено");

    const InfoTexts projector = line(load("game.exe", media::projector(media::plainMovie(7))));
    EXPECT_EQ(projector.note, "Автономный проектор (EXE)");
    EXPECT_TRUE(projector.size.contains('('));

    info = load("gone.swf", media::plainMovie());
    QFile::remove(path("gone.swf"));
    EXPECT_EQ(line(info).found, InfoTexts::Found::Gone);
    EXPECT_EQ(line(info).name, "gone.swf");
    write("gone.swf", "FWS");
    info.FileSize = 3;
    EXPECT_EQ(line(info).found, InfoTexts::Found::TooShort);
    info.FileSize = 8;
    info.FileLength = 0; // nothing is divided by it
    EXPECT_EQ(line(info).found, InfoTexts::Found::Movie);
}

TEST_F(Info, TheWindowMakesAndShowsTheThumbnail)
{
    const media::MediaInfo info = load("a.swf", media::plainMovie());
    const QString shot = application.CachePath + media::CacheName(path("a.swf"), ".jpg");
    frmInfo window(host, application, thumbnails, info);
    window.show();
    EXPECT_FALSE(loadThumbnail(shot).isNull());
    EXPECT_EQ(thumbnails.window(), nullptr);
    auto* pic = window.findChild<QLabel*>("PIC");
    EXPECT_TRUE(pic->isVisible());
    EXPECT_EQ(text(window, "lblVersion"), "Версия: 6");
    EXPECT_TRUE(text(window, "lblTime").contains("time of 300 (300)"));
    EXPECT_EQ(window.findChild<QLabel*>("lblFileName")->toolTip(), path("a.swf"));

    write("cache/" + media::CacheName(path("a.swf"), ".jpg"), "damaged");
    QTest::mouseDClick(pic, Qt::LeftButton);
    EXPECT_FALSE(loadThumbnail(shot).isNull()) << "a double click makes it again";
    EXPECT_TRUE(window.isVisible());

    QString boxText;
    QTimer::singleShot(0, &window, [&boxText] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        boxText = box->text();
        box->accept();
    });
    QTest::mouseDClick(window.findChild<QLabel*>("lblFileName"), Qt::LeftButton);
    EXPECT_EQ(QApplication::clipboard()->text(), path("a.swf"));
    EXPECT_EQ(boxText, path("a.swf"));
    QTest::mouseClick(window.findChild<QPushButton*>("cbClose"), Qt::LeftButton);
    EXPECT_FALSE(window.isVisible());
}

TEST_F(Info, SaysLittleOfFilesThatAreGoneOrShort)
{
    media::MediaInfo info = load("a.swf", media::plainMovie());
    QFile::remove(path("a.swf"));
    {
        frmInfo window(host, application, thumbnails, info);
        window.show();
        EXPECT_EQ(text(window, "lblName"), "a.swf");
        EXPECT_EQ(text(window, "lblVersion"), "");
        for (const char* label : {"lblTime", "lblSize", "lblNote", "lblMetrix"})
            EXPECT_FALSE(shows(window, label)) << label;
        EXPECT_FALSE(shows(window, "PIC"));
    }
    const QString name = media::CacheName(path("a.swf"), ".jpg");
    write("cache/" + name, "damaged");
    write("a.swf", "FWS\x06");
    info.FileSize = 4;
    frmInfo window(host, application, thumbnails, info);
    window.show();
    EXPECT_FALSE(shows(window, "lblVersion"));
    EXPECT_FALSE(shows(window, "PIC")) << "a damaged thumbnail is a missing one";
    EXPECT_TRUE(shows(window, "lblNoPicture"));
}

} // namespace
} // namespace browser
