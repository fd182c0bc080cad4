#include "media/MediaFiles.h"

#include "MovieBytes.h"
#include "QtPrint.h"
#include "base/Files.h"
#include "core/RunTimeErrors.h"
#include "media/Backups.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <csignal>
#include <functional>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace media
{
namespace
{

/// Writes down what is asked of it.
struct Window : NoMediaHost {
    void SetStatus(const QString& text) override { calls += "status " + text; }
    void setUpdateTimerEnabled(bool enabled) override { calls += enabled ? "timer on" : "timer off"; }
    [[nodiscard]] bool isFullScreen() const override { return fullScreen; }
    void ZoomFlash(int percent, quint8 repeats) override
    {
        calls += QString("zoom %1 %2").arg(percent).arg(repeats);
    }
    void LoadMovie(int layer, const QString& url) override
    {
        if (failureNumber != 0) throw base::Failure(failureNumber, "control", "нет");
        calls += QString("movie %1 ").arg(layer) + url;
    }
    void setBackground(const QString& colour) override { calls += "background " + colour; }
    void setMediaInfoEnabled(bool enabled) override { calls += enabled ? "info on" : "info off"; }
    void reapplySound() override { calls += "sound"; }
    void SetCaption(const QString& caption) override { calls += "caption " + caption; }
    void setCompressCaption(const QString& caption) override { calls += "menu " + caption; }
    void setMediaTitle(const QString& title) override { calls += "title " + title; }
    void AddRecent(const QString& path) override { calls += "recent " + path; }
    void onMediaChange() override { calls += "changed"; }
    void CloseMedia(const QString& message) override { calls += "close " + message; }
    void ReportError(const base::Failure& error, const QString& place, const QString&) override
    {
        calls += QString("error %1 ").arg(error.number()) + place;
    }
    bool progress(double) override
    {
        if (duringWork) duringWork();
        return true;
    }
    QStringList calls;
    std::function<void()> duringWork;
    bool fullScreen = false;
    int failureNumber = 0;
};

class MediaFilesTest : public testing::Test
{
protected:
    MediaFilesTest() : media(application, window)
    {
        application.LogFile = path("log");
        application.CachePath = path("cache/");
        application.GadgetsPath = path("gadgets/");
        application.RunningCompiled = true;
        QDir(folder.path()).mkdir("cache");
        QDir(folder.path()).mkdir("gadgets");
    }
    [[nodiscard]] QString path(const QString& name) const { return folder.filePath(name); }
    [[nodiscard]] QString put(const QString& name, const ByteVector& bytes) const
    {
        EXPECT_TRUE(base::replaceFile(core::filePath(path(name)), bytes));
        return path(name);
    }
    [[nodiscard]] static ByteVector bytesOf(const QString& file)
    {
        return base::readFile(core::filePath(file), 1U << 30).value_or(ByteVector{});
    }
    [[nodiscard]] QString inCache(const QString& file, const QString& extension) const
    {
        return application.CachePath + QString(file).replace("/", "#") + extension;
    }
    /// Log entries since the last call, without the line-break marks.
    QStringList log()
    {
        QString text =
            QString::fromUtf8(QByteArray(reinterpret_cast<const char*>(bytesOf(application.LogFile).data()),
                                         static_cast<qsizetype>(bytesOf(application.LogFile).size())));
        QFile::remove(application.LogFile);
        QStringList lines = text.remove("<br>").split("\r\n");
        lines.removeLast();
        return lines;
    }
    QTemporaryDir folder;
    core::Application application;
    Window window;
    MediaFiles media;
};

/// Makes every write beyond two bytes fail, as a full disk does.
class FullDisk
{
public:
    FullDisk() : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit small{2, m_before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &small);
    }
    ~FullDisk()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    rlimit m_before{};
    sighandler_t m_handler;
};

TEST_F(MediaFilesTest, PlainMovieGoesTheWholeRoad)
{
    const QString movie = put("intro.swf", plainMovie());
    media.LoadFlash(movie + "?x=1", {});
    EXPECT_EQ(log(), (QStringList{"", " :: LoadFlash (", movie + ")... ", "Ordinary File", " ... ", "Ok"}));
    EXPECT_EQ(window.calls,
              (QStringList{"timer off", "status Открытие медиа...", "status Загрузка медиа...", "zoom 100 2",
                           "movie 0 " + movie + "?x=1", "background 0AB0FF", "info on", "sound",
                           "caption Zorvex - " + movie, "status Готово", "timer on", "menu Сжать...",
                           "title " + movie, "recent " + movie, "changed"}));
    const MediaInfo& info = media.mediaInfo();
    EXPECT_EQ(info.Width, 550);
    EXPECT_EQ(info.Height, 400);
    EXPECT_EQ(info.FrameRate, 24.0F);
    EXPECT_EQ(info.FrameCount, 300);
    EXPECT_EQ(info.Version, 6);
    EXPECT_EQ(info.FileSize, static_cast<qint64>(plainMovie().size()));
    EXPECT_EQ(info.HeaderPath, movie);

    window.calls.clear();
    window.fullScreen = true;
    application.RunningCompiled = false;
    (void)log();
    media.LoadFlash(movie + "?x=1", "Название");
    EXPECT_FALSE(window.calls.contains("zoom 100 2"));
    EXPECT_TRUE(window.calls.contains("caption Zorvex - Название"));
    EXPECT_TRUE(log().contains(movie + "?x=1)... ")) << "a development session logs the query as well";
}

TEST_F(MediaFilesTest, QuestionMarkInAFileNameIsNoQuery)
{
    const QString movie = put("what?.swf", plainMovie());
    media.LoadFlash(movie, {});
    EXPECT_TRUE(window.calls.contains("caption Zorvex - " + movie));
}

TEST_F(MediaFilesTest, CompressedMovieIsReadFromItsHeaderCopy)
{
    const QString movie = put("a.swf", compressedMovie());
    const QString copy = inCache(movie, ".tmp");
    media.LoadFlash(movie, {});
    EXPECT_EQ(log(), (QStringList{"", " :: LoadFlash (", movie + ")... ", "Compressed File", "",
                                  " :: DecompressFlash (Header Only)", "Target path: " + copy, "Reading data",
                                  "Decompression", "Writing new header", " ... ", "Ok"}));
    EXPECT_EQ(media.mediaInfo().Width, 550);
    EXPECT_EQ(media.mediaInfo().HeaderPath, copy);
    EXPECT_TRUE(window.calls.contains("movie 0 " + movie)) << "the control plays the file itself";
    EXPECT_TRUE(window.calls.contains("menu Снять сжатие"));
    const ByteVector plain = plainMovie();
    EXPECT_EQ(bytesOf(copy), ByteVector(plain.begin(), plain.begin() + 26));

    media.LoadFlash(movie, {});
    EXPECT_TRUE(log().contains("Header exists - skipping"));

    (void)put("a.swf", compressedMovie(7, 5));
    media.LoadFlash(movie, {});
    EXPECT_TRUE(log().contains("Writing new header")) << "a copy of what the file was before is no use";
    EXPECT_EQ(bytesOf(copy)[3], 7);

    const QString old = put("old.swf", compressedMovie(5));
    media.LoadFlash(old, {});
    EXPECT_FALSE(media.mediaInfo().Compressed) << "a version below 6 goes to the control as it is";
    EXPECT_EQ(media.mediaInfo().HeaderPath, old);
}

TEST_F(MediaFilesTest, ACacheThatTakesNothingKeepsNoMovieFromPlaying)
{
    application.CachePath = "/proc/self/absent/";
    const QString movie = put("a.swf", compressedMovie());
    media.LoadFlash(movie, {});
    EXPECT_TRUE(window.calls.contains("movie 0 " + movie));
    EXPECT_EQ(window.calls.last(), "changed");
    EXPECT_EQ(media.mediaInfo().Width, 550);
    EXPECT_EQ(media.mediaInfo().FrameCount, 300);
}

TEST_F(MediaFilesTest, ShortCompressedMovieIsReadWithinItsBounds)
{
    // A one-frame movie whose whole body is 9 bytes long.
    const ByteVector body{0x28, 0x50, 0x14, 0x00, 0x00, 0x0C, 0x01, 0x00, 0x00};
    const QString movie = put("s.swf", withHeader("CWS", 6, 17, CompressData(body, 9).value()));
    media.LoadFlash(movie, {});
    EXPECT_EQ(window.calls.last(), "changed");
    EXPECT_EQ(bytesOf(media.mediaInfo().HeaderPath).size(), 26U);
    EXPECT_EQ(media.mediaInfo().FrameRate, 12.0F);
}

TEST_F(MediaFilesTest, RefusalsShowTheirTextAndKeepTheLastMovie)
{
    ByteVector damaged = compressedMovie();
    damaged[8] = 0;
    const ByteVector unknown{'G', 'I', 'F', '8', '9', 'a', 0, 0, 0};
    struct Case {
        const char* name;
        ByteVector bytes;
        const char* logged;
        const char* status;
        const char* message;
    };
    const Case kCases[] = {
        {"7 bytes", ByteVector(7, 'F'), "File is too short!", nullptr, "Файл имеет незначительный размер"},
        {"8 bytes", ByteVector(8, 'x'), "Unknown signature (xxx)", "Формат файла не поддерживается",
         "Формат файла не поддерживается"},
        {"other file", unknown, "Unknown signature (GIF)", "Формат файла не поддерживается",
         "Формат файла не поддерживается"},
        {"damaged stream", damaged, "Decompression", "Ошибка при чтении сжатого фала",
         "Ошибка при чтении сжатого фала"},
        {"nothing behind the header", withHeader("FWS", 6, 8, {}), "Ordinary File",
         "Файл повреждён: заголовок обрывается", "Файл повреждён: заголовок обрывается"},
        {"projector without a movie", projector({}), "Executable", "Файл не содержит медиа",
         "Файл не содержит медиа"},
        {"short projector", projector({}, 1000), "Too short file", "Файл не содержит медиа",
         "Файл не содержит медиа"},
        {"false movie in a projector", projector(withHeader("FWS", 5, 8, {}), 2000, 0), "Executable",
         "Файл не содержит медиа", "Файл не содержит медиа"},
    };
    media.LoadFlash(put("good.swf", plainMovie()), {});
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        (void)log();
        window.calls.clear();
        QFile::remove(path("bad"));
        media.LoadFlash(put("bad", c.bytes), {});
        const QStringList lines = log();
        EXPECT_TRUE(lines.contains(c.logged)) << lines.join('|').toStdString();
        EXPECT_TRUE(lines.last().startsWith("Failed to load, since "));
        if (c.status != nullptr) {
            EXPECT_TRUE(window.calls.contains(QString("status ") + c.status));
        }
        EXPECT_EQ(window.calls.last(), QString("close ") + c.message);
        EXPECT_FALSE(window.calls.contains("timer on"));
        EXPECT_EQ(media.mediaInfo().OriginalPath, path("good.swf"));
    }
}

TEST_F(MediaFilesTest, MissingEmptyAndPagePathsEndAsTheyShould)
{
    media.LoadFlash(path("absent.swf"), {});
    EXPECT_EQ(window.calls, (QStringList{"timer off", "status Файл не найден", "close Файл не найден"}));
    EXPECT_EQ(log().mid(3, 1), QStringList("Not found"));

    window.calls.clear();
    media.LoadFlash({}, {});
    EXPECT_EQ(window.calls, QStringList("close "));
    EXPECT_EQ(log(), (QStringList{"", " :: LoadFlash ("}));

    window.calls.clear();
    media.LoadFlash(application.GadgetsPath.toUpper() + "welcome.swf?a=b", {});
    media.LoadFlash(application.GadgetsPath + "welcome.swf?a=b", {});
    EXPECT_FALSE(window.calls.last().startsWith("close")) << "a broken page must not load itself again";

    window.calls.clear();
    media.LoadFlash(folder.path(), {});
    EXPECT_EQ(window.calls.last(), "close Файл не найден") << "a folder is no file";
}

TEST_F(MediaFilesTest, FailingControlIsReportedAndOtherFailuresCloseTheMedia)
{
    const QString movie = put("a.swf", plainMovie());
    window.failureNumber = core::kFlashNotCreated;
    media.LoadFlash(movie, {});
    EXPECT_EQ(window.calls.last(), "error 339 Создание окна (проблема с Flash?)");
    window.failureNumber = 5;
    media.LoadFlash(movie, {});
    EXPECT_EQ(window.calls.last(), "close нет");
    application.RunningCompiled = false;
    EXPECT_THROW(media.LoadFlash(movie, {}), base::Failure) << "no handler is armed in a development session";
}

TEST_F(MediaFilesTest, ProjectorIsUnpackedOnceAndLeftAlone)
{
    const ByteVector movie = plainMovie();
    const ByteVector inner = projector(movie, 1500);
    const QString exe = put("game.exe", projector(inner, 3000));
    const QString extracted = inCache(exe, ".swf");
    media.LoadFlash(exe, {});
    EXPECT_EQ(log(), (QStringList{"", " :: LoadFlash (", exe + ")... ", "Executable", "",
                                  " :: ExtractEXE (" + exe + ")... ", "Writing data... ", "Ok",
                                  "File path changed to: " + extracted, "Ordinary File", " ... ", "Ok"}));
    EXPECT_EQ(bytesOf(extracted), movie);
    EXPECT_EQ(bytesOf(exe), projector(inner, 3000));
    EXPECT_TRUE(media.mediaInfo().Converted);
    EXPECT_EQ(media.mediaInfo().OriginalPath, exe);
    EXPECT_EQ(media.mediaInfo().FileSize, static_cast<qint64>(projector(inner, 3000).size()));
    EXPECT_TRUE(window.calls.contains("movie 0 " + extracted));
    EXPECT_TRUE(window.calls.contains("recent " + exe));
    media.LoadFlash(exe, {});
    EXPECT_TRUE(log().contains("File exists"));

    const ByteVector other = plainMovie(6, 77);
    (void)put("game.exe", projector(other));
    media.LoadFlash(exe, {});
    EXPECT_EQ(bytesOf(extracted), other) << "what came from the file of before is no use";

    const QString own = put("own.exe", inner);
    EXPECT_EQ(media.ExtractEXE(own, ExtractTo::ProjectorItself), own);
    EXPECT_EQ(bytesOf(own), movie);
    EXPECT_EQ(bytesOf(inCache(own, ".exe")), inner);
    // Once more, and the movie is what lies there: the backup stays the projector's.
    EXPECT_EQ(media.ExtractEXE(own, ExtractTo::ProjectorItself), own);
    EXPECT_EQ(log().last(), "File exists");
    EXPECT_EQ(bytesOf(own), movie);
    EXPECT_EQ(bytesOf(inCache(own, ".exe")), inner);
}

TEST_F(MediaFilesTest, ProjectorsOfEveryKindOpen)
{
    struct Case {
        const char* name;
        std::initializer_list<std::uint8_t> start;
        ByteVector movie;
    };
    const Case kCases[] = {
        {"Windows, version 9", {'M', 'Z'}, plainMovie(9)},
        {"Windows, compressed", {'M', 'Z'}, compressedMovie(8)},
        {"Linux", {0x7F, 'E', 'L', 'F'}, compressedMovie(10)},
        {"Mac, Intel", {0xCE, 0xFA, 0xED, 0xFE}, lzmaMovie()},
        {"Mac, several machines in one", {0xCA, 0xFE, 0xBA, 0xBE}, plainMovie(7)},
        {"Mac before X", {'J', 'o', 'y', '!'}, plainMovie(5)},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        ByteVector file = projector(c.movie);
        std::ranges::copy(c.start, file.begin());
        media.LoadFlash(put("game", file), {});
        EXPECT_EQ(window.calls.last(), "changed");
        EXPECT_EQ(bytesOf(media.mediaInfo().MoviePath), c.movie);
        EXPECT_EQ(media.mediaInfo().Width, 550);
    }
}

TEST_F(MediaFilesTest, LzmaMoviesAreCompressedMovies)
{
    const QString movie = put("z.swf", lzmaMovie());
    media.LoadFlash(movie, {});
    MediaInfo& info = media.mediaInfo();
    EXPECT_TRUE(info.Compressed);
    EXPECT_EQ(info.Signature, "ZWS");
    EXPECT_EQ(info.Width, 550);
    EXPECT_EQ(bytesOf(info.HeaderPath).size(), 26U);
    EXPECT_EQ(media.CompressFlash(info, 9), movie);
    EXPECT_EQ(bytesOf(movie), lzmaMovie()) << "compressed already";
    EXPECT_EQ(media.DecompressFlash(info, Extent::Full), movie);
    EXPECT_EQ(bytesOf(movie), plainMovie(13));
}

TEST_F(MediaFilesTest, WideMoviesAndThoseOfVersion8ShowTheirOwnSizeAndColour)
{
    ByteVector wide = frameHeader(17, 80000, 60000);
    wide.insert(wide.end(), {0x40, 0, 0, 0});
    const auto length = static_cast<std::uint32_t>(wide.size() + 8);
    for (const bool compressed : {false, true}) {
        const QString name = compressed ? "wide.cws" : "wide.fws";
        media.LoadFlash(put(name, compressed ? withHeader("CWS", 6, length, CompressData(wide, 9).value())
                                             : withHeader("FWS", 6, length, wide)),
                        {});
        const MediaInfo& info = media.mediaInfo();
        EXPECT_EQ(info.Width, 4000);
        EXPECT_EQ(info.Height, 3000);
        EXPECT_EQ(info.FrameRate, 24.0F);
        EXPECT_EQ(info.BgColor, "0AB0FF");
        EXPECT_TRUE(window.calls.contains("background 0AB0FF"));
        window.calls.clear();
    }
    ByteVector attributes = plainMovie(8);
    attributes[21] = 0x44; // the first tag is that of the file's attributes
    attributes[22] = 0x11;
    media.LoadFlash(put("8.swf", attributes), {});
    EXPECT_EQ(media.mediaInfo().BgColor, "0AB0FF") << "as it stands there";
    EXPECT_TRUE(window.calls.contains("background ")) << "but the movie knows better";
}

TEST_F(MediaFilesTest, ProjectorsMovieGetsItsMissingLastByte)
{
    ByteVector bytes = projector(plainMovie(), 2000, 0);
    bytes.pop_back();
    media.LoadFlash(put("cut.exe", bytes), {});
    EXPECT_EQ(bytesOf(media.mediaInfo().MoviePath), plainMovie());
}

TEST_F(MediaFilesTest, AConversionWritesItsOwnFileWhateverIsLoadedMeanwhile)
{
    const ByteVector plain = plainMovie(5, 5000);
    const QString movie = put("a.swf", plain), other = put("b.swf", plainMovie(6, 300));
    for (const bool compress : {true, false}) {
        SCOPED_TRACE(compress);
        window.duringWork = nullptr;
        media.LoadFlash(movie, {});
        // The window answers while it waits: its movie may end, or another be opened.
        window.duringWork = [&] { media.LoadFlash(other, {}); };
        const ByteVector before = bytesOf(movie);
        MediaInfo& info = media.mediaInfo();
        EXPECT_EQ(compress ? media.CompressFlash(info, 9) : media.DecompressFlash(info, Extent::Full), movie);
        EXPECT_EQ(bytesOf(movie)[0], compress ? 'C' : 'F');
        EXPECT_EQ(bytesOf(inCache(movie, ".swf")), before);
        EXPECT_EQ(bytesOf(other), plainMovie(6, 300));
        EXPECT_EQ(media.mediaInfo().MoviePath, other);
    }
    EXPECT_EQ(bytesOf(movie), plain);
}

TEST_F(MediaFilesTest, ConversionsRoundTripAndKeepABackup)
{
    const ByteVector plain = plainMovie(5, 5000);
    const QString movie = put("a.swf", plain);
    QFile::link(movie, path("link.swf"));
    media.LoadFlash(path("link.swf"), {});
    MediaInfo& info = media.mediaInfo();

    EXPECT_EQ(media.CompressFlash(info, 9), path("link.swf"));
    const ByteVector packed = bytesOf(movie);
    EXPECT_LT(packed.size(), plain.size());
    EXPECT_EQ(packed[0], 'C');
    EXPECT_TRUE(std::equal(packed.begin() + 1, packed.begin() + 8, plain.begin() + 1))
        << "version and length stay";
    EXPECT_EQ(bytesOf(inCache(path("link.swf"), ".swf")), plain);
    EXPECT_TRUE(
        backups(application.CachePath).contains(QFileInfo(inCache(path("link.swf"), ".swf")).fileName()));
    EXPECT_EQ(window.calls.last(), "menu Снять сжатие") << "the command follows the file";
    EXPECT_TRUE(QFileInfo(path("link.swf")).isSymLink());
    EXPECT_EQ(media.CompressFlash(info, 9), path("link.swf"));
    EXPECT_EQ(bytesOf(movie), packed) << "the command given twice compresses once";
    EXPECT_EQ(bytesOf(inCache(path("link.swf"), ".swf")), plain);

    (void)log();
    EXPECT_EQ(media.DecompressFlash(info, Extent::Full), path("link.swf"));
    EXPECT_EQ(bytesOf(movie), plain);
    EXPECT_EQ(bytesOf(inCache(path("link.swf"), ".swf")), packed);
    EXPECT_EQ(log(), (QStringList{"", " :: DecompressFlash (Full)", "Target path: " + path("link.swf"),
                                  "Reading data", "Decompression", "Backing up", "Removing persistent file",
                                  "Writing decompressed data", "Decompression succeeded"}));
    EXPECT_EQ(media.DecompressFlash(info, Extent::Full), path("link.swf"));
    EXPECT_EQ(bytesOf(movie), plain);
}

TEST_F(MediaFilesTest, NothingIsLostWhenAConversionFails)
{
    const ByteVector plain = plainMovie(6, 5000);
    const ByteVector packed = compressedMovie(6, 5000);
    ByteVector damaged = packed;
    damaged[damaged.size() - 2] ^= 0xFF; // the checksum: seen only at the very end

    const QString movie = put("a.swf", damaged);
    media.LoadFlash(movie, {});
    MediaInfo info = media.mediaInfo();
    EXPECT_TRUE(media.DecompressFlash(info, Extent::Full).isEmpty());
    EXPECT_EQ(bytesOf(movie), damaged);
    EXPECT_FALSE(QFile::exists(inCache(movie, ".swf"))) << "no backup of what was not converted";

    (void)put("a.swf", packed);
    application.LogFile.clear();
    {
        const FullDisk full;
        EXPECT_TRUE(media.DecompressFlash(info, Extent::Full).isEmpty());
    }
    EXPECT_EQ(bytesOf(movie), packed);

    (void)put("a.swf", plain);
    {
        const FullDisk full;
        EXPECT_TRUE(media.CompressFlash(info, 9).isEmpty());
    }
    EXPECT_EQ(bytesOf(movie), plain);

    QDir(application.CachePath).removeRecursively();
    (void)put("cache", {});
    EXPECT_TRUE(media.CompressFlash(info, 9).isEmpty()) << "without a backup there is no conversion";
    EXPECT_EQ(bytesOf(movie), plain);
    info.MoviePath = path("absent.swf");
    EXPECT_TRUE(media.CompressFlash(info, 9).isEmpty());
}

TEST_F(MediaFilesTest, UnusableCacheIsAMessageAndNotACrash)
{
    QDir(application.CachePath).removeRecursively();
    media.LoadFlash(put("a.exe", projector(plainMovie())), {});
    EXPECT_EQ(window.calls.last(), "changed") << "a missing one is made";
    QDir(application.CachePath).removeRecursively();
    (void)put("cache", {});
    media.LoadFlash(put("a.swf", compressedMovie()), {});
    EXPECT_EQ(window.calls.last(), "changed") << "a compressed movie needs none";
    media.LoadFlash(put("a.exe", projector(plainMovie())), {});
    EXPECT_TRUE(window.calls.last().startsWith("close ")) << window.calls.last().toStdString();
}

TEST_F(MediaFilesTest, ReportsAFullDiskWhenExtracting)
{
    const QString exe = put("a.exe", projector(plainMovie()));
    application.LogFile.clear();
    {
        const FullDisk full;
        media.LoadFlash(exe, {});
    }
    EXPECT_EQ(window.calls.last(), "close На диске недостаточно места");
    EXPECT_FALSE(QFile::exists(inCache(exe, ".swf"))) << "half a movie must not be used again";
}

} // namespace
} // namespace media
