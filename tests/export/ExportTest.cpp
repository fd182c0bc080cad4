#include "DecodedFilm.h"
#include "Environment.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <QtEndian>

#include <gtest/gtest.h>

#include <cmath>
#include <csignal>

namespace
{

constexpr int kSoundRate = 44100;

/// zorvex-export on movies that are made for each test.
class Export : public ::testing::Test
{
protected:
    struct Run {
        int status = -1;
        QByteArray errors;
    };
    Run exportFilm(const QString& movie, const QString& out, const QStringList& options = {})
    {
        QProcess program;
        program.setWorkingDirectory(folder.path());
        program.start(ZORVEX_PROGRAM_DIR "/zorvex-export", QStringList{movie, out} + options);
        constexpr int kLongMs = 100'000;
        program.waitForFinished(kLongMs);
        return {program.exitStatus() == QProcess::NormalExit ? program.exitCode() : -1,
                program.readAllStandardError()};
    }
    DecodedFilm decoded(const QString& file) { return DecodedFilm::of(folder.filePath(file)); }

    void compile(const QString& name, const QByteArray& source)
    {
        write(name + ".xml", source);
        run(ZORVEX_TOOLS_DIR "/swfc", {name + ".xml", "-o", name + ".swf"});
    }
    void run(const QString& program, const QStringList& words)
    {
        QProcess process;
        process.setWorkingDirectory(folder.path());
        process.start(program, words);
        process.waitForFinished();
        ASSERT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
    }
    void write(const QString& name, const QByteArray& bytes)
    {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    QByteArray read(const QString& name)
    {
        QFile file(folder.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QStringList files() { return QDir(folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot); }

    /// Each second a white picture and, at the same moment, a click.
    void compileBeat()
    {
        constexpr int kClick = 220;
        QByteArray wave("RIFF----WAVEfmt \x10\0\0\0\x01\0\x01\0", 24);
        const auto add = [&wave](auto value) {
            value = qToLittleEndian(value);
            wave.append(reinterpret_cast<const char*>(&value), sizeof value);
        };
        add(quint32{kSoundRate});
        add(quint32{2 * kSoundRate});
        add(quint16{2});
        add(quint16{16});
        wave += "data";
        add(quint32{2 * kClick});
        for (int i = 0; i < kClick; ++i) add(static_cast<qint16>(i % 2 == 0 ? 30000 : -30000));
        write("click.wav", wave);
        compile("beat", R"(<movie version="6" width="160" height="120" rate="12" background="#000000">
  <sound id="click" file="click.wav" format="pcm"/>
  <shape id="white"><rect x="0" y="0" width="160" height="120" fill="#FFFFFF"/></shape>
  <frame><place id="white" depth="1"/><startSound sound="click"/></frame>
  <frame duration="11"><remove depth="1"/></frame>
</movie>)");
    }

    QTemporaryDir folder;
};

std::vector<double> flashes(const DecodedFilm& film)
{
    std::vector<double> moments;
    bool wasWhite = false;
    for (const auto& picture : film.pictures) {
        const bool isWhite = qGray(picture.image.pixel(80, 60)) > 128;
        if (isWhite && !wasWhite) moments.push_back(picture.seconds);
        wasWhite = isWhite;
    }
    return moments;
}

std::vector<double> clicks(const DecodedFilm& film)
{
    std::vector<double> moments;
    constexpr float kLoud = 0.25F; // one at the very beginning is softer after AAC
    const auto pause = static_cast<std::size_t>(film.soundRate / 2);
    for (std::size_t i = 0; i < film.left.size(); ++i) {
        if (std::abs(film.left[i]) < kLoud) continue;
        moments.push_back(film.soundStartsAt + static_cast<double>(i) / film.soundRate);
        i += pause;
    }
    return moments;
}

TEST_F(Export, PictureAndSoundStayTogether)
{
    compileBeat();
    // The sound's own codecs smear a click over some samples; what counts is that nothing adds up.
    constexpr double kWithin = 0.002;
    for (const char* file : {"film.mp4", "film.mkv", "film.webm"}) {
        SCOPED_TRACE(file);
        const Run run = exportFilm("beat.swf", file, {"--to", "20", "--fps", "30"});
        ASSERT_EQ(run.status, 0) << run.errors.toStdString();
        const DecodedFilm film = decoded(file);
        EXPECT_EQ(film.pictures.size(), 600U);
        const auto seen = flashes(film), heard = clicks(film);
        ASSERT_EQ(seen.size(), 20U);
        ASSERT_EQ(heard.size(), 20U);
        EXPECT_LT(seen[0], 0.03); // some files begin with what their sound's codec needs to start
        for (std::size_t i = 0; i < seen.size(); ++i) {
            EXPECT_NEAR(seen[i] - seen[0], static_cast<double>(i), kWithin);
            EXPECT_NEAR(heard[i] - seen[i], 0, kWithin);
        }
    }
}

TEST_F(Export, SoundIsWhatTheMoviePlays)
{
    compileBeat();
    ASSERT_EQ(exportFilm("beat.swf", "film.wav", {"--to", "3"}).status, 0);
    ASSERT_EQ(exportFilm("beat.swf", "film.flac", {"--to", "3"}).status, 0);
    run(ZORVEX_TOOLS_DIR "/flashrun", {"record", "beat.swf", "--out", "heard.wav", "--ms", "3000"});
    const DecodedFilm wave = decoded("film.wav"), flac = decoded("film.flac"), heard = decoded("heard.wav");
    EXPECT_EQ(wave.left.size(), 3U * kSoundRate);
    EXPECT_EQ(wave.left, flac.left);
    ASSERT_EQ(clicks(wave).size(), 3U);
    // Both begin to the sample where the frame does.
    EXPECT_EQ(wave.left, heard.left);
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_EQ(std::lround(clicks(wave)[i] * kSoundRate), static_cast<long>(i) * kSoundRate);
}

TEST_F(Export, ColoursAreThoseOfTheMovie)
{
    const std::vector<QColor> bars = {Qt::white,           Qt::black,          QColor(255, 0, 0),
                                      QColor(0, 255, 0),   QColor(0, 0, 255),  QColor(128, 128, 128),
                                      QColor(255, 255, 0), QColor(30, 90, 160)};
    QByteArray source =
        R"(<movie version="6" width="320" height="120" rate="10" background="#102030"><shape id="bars">)";
    for (std::size_t i = 0; i < bars.size(); ++i)
        source += QStringLiteral(R"(<rect x="%1" y="0" width="40" height="120" fill="%2"/>)")
                      .arg(40 * i)
                      .arg(bars[i].name())
                      .toUtf8();
    source += R"(</shape><frame duration="10"><place id="bars" depth="1"/></frame></movie>)";
    compile("bars", source);
    constexpr int kWithin = 2; // levels of 255
    for (const char* file : {"film.mp4", "film.webm", "film.gif"}) {
        SCOPED_TRACE(file);
        const Run run = exportFilm("bars.swf", file, {"--quality", "best"});
        ASSERT_EQ(run.status, 0) << run.errors.toStdString();
        const DecodedFilm film = decoded(file);
        ASSERT_FALSE(film.pictures.empty());
        for (std::size_t i = 0; i < bars.size(); ++i) {
            const QColor shown = film.pictures.back().image.pixelColor(static_cast<int>(40 * i + 20), 60);
            const int worst =
                std::max({std::abs(shown.red() - bars[i].red()), std::abs(shown.green() - bars[i].green()),
                          std::abs(shown.blue() - bars[i].blue())});
            EXPECT_LE(worst, kWithin) << bars[i].name().toStdString() << " is " << shown.name().toStdString();
        }
    }
}

TEST_F(Export, TheMovieKeepsItsShapeAndItsGround)
{
    compile("square", R"(<movie version="6" width="100" height="100" rate="10" background="#204060">
  <shape id="red"><rect x="0" y="0" width="100" height="100" fill="#FF0000"/></shape>
  <frame><place id="red" depth="1"/></frame></movie>)");
    ASSERT_EQ(exportFilm("square.swf", "one.png", {"--frame", "1f", "--size", "400x200"}).status, 0);
    const QImage wide(folder.filePath("one.png"));
    EXPECT_EQ(wide.size(), QSize(400, 200));
    EXPECT_EQ(wide.pixelColor(50, 100), QColor(0x20, 0x40, 0x60));
    EXPECT_EQ(wide.pixelColor(200, 100), QColor(Qt::red));
    EXPECT_EQ(wide.pixelColor(350, 100), QColor(0x20, 0x40, 0x60));
}

TEST_F(Export, AGroundMayBeLeftOut)
{
    compile("dot", R"(<movie version="6" width="64" height="64" rate="10" background="#204060">
  <shape id="red"><rect x="16" y="16" width="32" height="32" fill="#FF0000"/></shape>
  <frame duration="5"><place id="red" depth="1"/></frame></movie>)");
    for (const char* file : {"film.webm", "film.gif"}) {
        SCOPED_TRACE(file);
        ASSERT_EQ(exportFilm("dot.swf", file, {"--transparent"}).status, 0);
        const DecodedFilm film = decoded(file);
        ASSERT_FALSE(film.pictures.empty());
        const QImage& last = film.pictures.back().image;
        EXPECT_LT(last.pixelColor(4, 4).alpha(), 8);
        EXPECT_GT(last.pixelColor(32, 32).alpha(), 247);
    }
    ASSERT_EQ(exportFilm("dot.swf", "dots.png", {"--transparent"}).status, 0);
    EXPECT_EQ(QDir(folder.filePath("dots")).entryList(QDir::Files).size(), 5);
    const QImage first(folder.filePath("dots/000001.png"));
    EXPECT_EQ(first.pixelColor(4, 4).alpha(), 0);
    EXPECT_EQ(first.pixelColor(32, 32), QColor(Qt::red));
}

TEST_F(Export, AFilmEndsWhereTheMovieDoes)
{
    const auto count = [this](const char* movie, const QStringList& options = {}) {
        EXPECT_EQ(exportFilm(movie, "film.mp4", options).status, 0);
        return decoded("film.mp4").pictures.size();
    };
    // The main timeline once, whether it would begin again or stops.
    compile("loops", R"(<movie rate="20" width="40" height="40"><frame duration="30"/></movie>)");
    EXPECT_EQ(count("loops.swf"), 30U);
    compile(
        "stops",
        R"(<movie rate="20" width="40" height="40"><frame duration="14"/><frame><script>stop();</script></frame></movie>)");
    EXPECT_EQ(count("stops.swf"), 15U);
    // Stopped before its end: three seconds after the last motion.
    compile(
        "still",
        R"(<movie rate="20" width="40" height="40"><shape id="s"><rect width="9" height="9" fill="#000"/></shape>
  <sprite id="m"><frame><place id="s" depth="1"/></frame><frame duration="9"><move depth="1" x="20" over="9"/></frame><frame><script>stop();</script></frame></sprite>
  <frame><place id="m" depth="1"/><script>stop();</script></frame><frame/></movie>)");
    EXPECT_NEAR(static_cast<double>(count("still.swf")), 70, 2);
    EXPECT_EQ(count("loops.swf", {"--from", "11f", "--to", "20f"}), 10U);
    EXPECT_EQ(count("loops.swf", {"--to", "4"}), 80U);
}

TEST_F(Export, WhatIsDoneToTheMovieIsDoneInTheFilm)
{
    compile("press",
            R"(<movie version="6" width="100" height="100" rate="10" background="#000000"><frame><script>
  stop();
  onMouseDown = function () { beginFill(0xFFFFFF); lineTo(100, 0); lineTo(100, 100); lineTo(0, 100); endFill(); };
</script></frame></movie>)");
    write(
        "in.json",
        R"([{"type":"Wait"},{"type":"Wait"},{"type":"Wait"},{"type":"MouseMove","pos":[50,50]},{"type":"MouseDown","pos":[50,50],"btn":"Left"}])");
    ASSERT_EQ(exportFilm("press.swf", "film.mp4",
                         {"--to", "1", "--input", "in.json", "--fps", "10", "--size", "200x200"})
                  .status,
              0);
    const DecodedFilm film = decoded("film.mp4");
    ASSERT_EQ(film.pictures.size(), 10U);
    EXPECT_LT(qGray(film.pictures[2].image.pixel(100, 100)), 30);
    EXPECT_GT(qGray(film.pictures[4].image.pixel(190, 190)), 220);
}

TEST_F(Export, NothingHalfMadeIsLeft)
{
    compileBeat();
    write("damaged.swf", "FWS\x06 no movie");
    write("film.mp4", "what was there before");
    const QStringList before = files();

    EXPECT_EQ(exportFilm("absent.swf", "film.mp4").status, 1);
    EXPECT_EQ(exportFilm("damaged.swf", "film.mp4").status, 1);
    EXPECT_EQ(exportFilm("beat.swf", "absent/film.mp4").status, 3);
    EXPECT_EQ(exportFilm("beat.swf", "film.mp4", {"--to", "0"}).status, 0);
    write("film.mp4", "what was there before");

    // A file that may not grow stands for a disk that is full.
    QProcess limited;
    limited.setWorkingDirectory(folder.path());
    limited.start("/bin/sh", {"-c", "ulimit -f 64; exec \"$0\" beat.swf film.wav --to 60",
                              ZORVEX_PROGRAM_DIR "/zorvex-export"});
    limited.waitForFinished();
    EXPECT_EQ(limited.exitCode(), 3);
    EXPECT_TRUE(limited.readAllStandardError().contains("File too large"));

    QProcess cancelled;
    cancelled.setWorkingDirectory(folder.path());
    cancelled.start(ZORVEX_PROGRAM_DIR "/zorvex-export",
                    {"beat.swf", "film.mp4", "--to", "3600", "--size", "1920x1080"});
    ASSERT_TRUE(cancelled.waitForStarted());
    QThread::msleep(700);
    cancelled.terminate();
    ASSERT_TRUE(cancelled.waitForFinished(5000));
    EXPECT_EQ(cancelled.exitCode(), 4);

    EXPECT_EQ(files(), before);
    EXPECT_EQ(read("film.mp4"), "what was there before");
}

TEST_F(Export, IsTheSameWhereTheKernelConfinesNoFiles)
{
    compileBeat();
    ASSERT_EQ(exportFilm("beat.swf", "usual.wav", {"--to", "2"}).status, 0);
    const tests::Environment without({{"ZORVEX_WITHOUT_LANDLOCK", "1"}});
    ASSERT_EQ(exportFilm("beat.swf", "asked.wav", {"--to", "2"}).status, 0);
    EXPECT_EQ(read("asked.wav"), read("usual.wav"));
    EXPECT_EQ(exportFilm("beat.swf", "asked.png", {"--to", "1"}).status, 0) << "into a folder";
}

TEST_F(Export, EachPictureIsWhatTheMovieShowsThen)
{
    compile("moves", R"(<movie version="8" width="120" height="90" rate="12" background="#204060">
  <gradient id="glow" type="radial" r="30"><stop offset="0" color="#FFFFFF"/><stop offset="1" color="#FF000040"/></gradient>
  <shape id="ball"><circle r="30" fill="glow"/></shape>
  <shape id="bar"><rect x="0" y="0" width="120" height="12" fill="#30C060"/></shape>
  <frame><place id="bar" depth="1" y="70"/><place id="ball" depth="2" x="-10" y="30"/></frame>
  <frame duration="5"><move depth="2" x="110" y="60" over="5"/></frame>
  <frame><remove depth="1"/></frame>
  <frame duration="3"><move depth="2" x="60" y="40" rotate="40" alpha="0.5" over="3"><blur blur="6"/></move></frame></movie>)");
    // Of a series only what changes is drawn each time; a single picture is drawn whole.
    for (const QStringList& ground : {QStringList{}, QStringList{"--transparent"}}) {
        const QString series = ground.isEmpty() ? "opaque" : "clear";
        ASSERT_EQ(exportFilm("moves.swf", series + ".png", ground).status, 0);
        for (int frame = 1; frame <= 10; ++frame) {
            ASSERT_EQ(
                exportFilm("moves.swf", "one.png", QStringList{"--frame", QString("%1f").arg(frame)} + ground)
                    .status,
                0);
            const QImage one(folder.filePath("one.png"));
            EXPECT_EQ(QImage(folder.filePath(QString("%1/%2.png").arg(series).arg(frame, 6, 10, QChar('0')))),
                      one)
                << frame;
        }
    }
}

TEST_F(Export, FoldersOfOthersAreLeftAlone)
{
    compileBeat();
    ASSERT_TRUE(QDir(folder.path()).mkdir("series"));
    write("series/mine.txt", "mine");
    EXPECT_EQ(exportFilm("beat.swf", "series.png").status, 3);
    EXPECT_EQ(read("series/mine.txt"), "mine");
}

} // namespace
