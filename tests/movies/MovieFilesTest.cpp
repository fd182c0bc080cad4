// Each file NAME.xml or NAME.as below this folder (and below the sample movies' folder) with something
// expected beside it is a test: it is compiled with swfc, checked, and run with flashrun.
//   NAME.expected  what the movie traces
//   NAME.png       the picture of a frame
//   NAME.heard     how loud and how high it sounds over stretches of its time
//   NAME.errors    what the compiler says; the movie must not compile
//   NAME.json      how to run it: frames, ms, frame (of the picture), tolerance and outliers (of the
//   picture),
//                  quality, date (of the movie's clock), codepage, runs (how often it is played, keeping its
//                  shared objects; the last one is compared), files (what it loads: descriptions and scripts
//                  are compiled to NAME.swf, others copied), knownFailure (a reason; passing is then a
//                  failure) commands (whether the movie's commands and addresses to its host are compared,
//                  too)
//   NAME.input     events for the movie, as flashrun's --input takes them

#include "Heard.h"
#include "MovieChecker.h"
#include "Tools.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace
{

using namespace tools;

// The system's own interpreter: the reader is one of its packages.
constexpr const char* kPython = "/usr/bin/python3";

class MovieFile : public testing::Test
{
public:
    explicit MovieFile(QString source) : m_source(std::move(source)) {}
    void TestBody() override;

private:
    [[nodiscard]] QString beside(const char* suffix) const
    {
        const QFileInfo info(m_source);
        return info.path() + "/" + info.completeBaseName() + suffix;
    }
    void checkErrors(const Outcome& compiled) const;
    void provide(const QJsonArray& files) const;
    [[nodiscard]] QStringList runArguments(const QJsonObject& options) const;
    void check(const QString& movie, const QJsonObject& options, std::vector<std::string>& faults) const;
    void checkPicture(const QString& movie, const QJsonObject& options,
                      std::vector<std::string>& faults) const;
    void checkSound(const QString& movie, const QJsonObject& options, std::vector<std::string>& faults) const;
    [[nodiscard]] static QStringList duration(const QJsonObject& options);

    QString m_source;
    QTemporaryDir m_folder;
};

void MovieFile::checkErrors(const Outcome& compiled) const
{
    EXPECT_EQ(compiled.status, 1);
    QByteArray said = compiled.err;
    said.replace(QFileInfo(m_source).path().toUtf8() + "/", "");
    EXPECT_EQ(comparable(said).toStdString(), comparable(fileBytes(beside(".errors"))).toStdString());
}

void MovieFile::provide(const QJsonArray& files) const
{
    for (const QJsonValue& value : files) {
        const QFileInfo file(QFileInfo(m_source).path() + "/" + value.toString());
        if (file.suffix() == "xml" || file.suffix() == "as") {
            const QString movie = m_folder.filePath(file.completeBaseName() + ".swf");
            const Outcome compiled = run(tool("swfc"), {file.filePath(), "-o", movie}, file.path());
            ASSERT_EQ(compiled.status, 0) << compiled.err.toStdString();
        } else {
            ASSERT_TRUE(QFile::copy(file.filePath(), m_folder.filePath(file.fileName())))
                << file.filePath().toStdString();
        }
    }
}

/// What trace and render have in common. A movie that brings files has them beside it, in the folder of the
/// run.
QStringList MovieFile::runArguments(const QJsonObject& options) const
{
    QStringList arguments{"--base-dir",
                          options.contains("files") ? m_folder.path() : QFileInfo(m_source).path()};
    if (QFile::exists(beside(".input"))) arguments << "--input" << beside(".input");
    if (options.contains("runs")) arguments << "--storage" << m_folder.filePath("storage");
    if (options.contains("codepage")) arguments << "--codepage" << options["codepage"].toString();
    if (options.contains("date")) arguments << "--date" << options["date"].toString();
    if (qEnvironmentVariableIsSet("MOVIE_TESTS_COLLECT_ALWAYS")) arguments << "--collect-always";
    return arguments;
}

void MovieFile::TestBody()
{
    const QString movie = m_folder.filePath("movie.swf");
    const Outcome compiled = run(tool("swfc"), {m_source, "-o", movie}, QFileInfo(m_source).path());
    if (QFile::exists(beside(".errors"))) {
        checkErrors(compiled);
        return;
    }
    ASSERT_EQ(compiled.status, 0) << compiled.err.toStdString();
    const QByteArray bytes = fileBytes(movie);
    for (const std::string& fault : checkMovie({bytes.begin(), bytes.end()})) ADD_FAILURE() << fault;

    const QJsonObject options = QJsonDocument::fromJson(fileBytes(beside(".json"))).object();
    if (QFile::exists(beside(".json"))) {
        ASSERT_FALSE(options.isEmpty()) << "damaged " << beside(".json").toStdString();
    }
    ASSERT_NO_FATAL_FAILURE(provide(options["files"].toArray()));
    std::vector<std::string> faults;
    check(movie, options, faults);
    if (QFile::exists(beside(".png"))) checkPicture(movie, options, faults);
    if (QFile::exists(beside(".heard"))) checkSound(movie, options, faults);
    const std::string known = options["knownFailure"].toString().toStdString();
    if (known.empty()) {
        for (const std::string& fault : faults) ADD_FAILURE() << fault;
    } else {
        EXPECT_FALSE(faults.empty()) << "passes; take knownFailure away: " << known;
    }
}

QStringList MovieFile::duration(const QJsonObject& options)
{
    if (options.contains("ms")) return {"--ms", QString::number(options["ms"].toInt())};
    return {"--frames", QString::number(options["frames"].toInt(3))};
}

void MovieFile::check(const QString& movie, const QJsonObject& options,
                      std::vector<std::string>& faults) const
{
    if (!QFile::exists(beside(".expected"))) return;
    const QStringList shown =
        options["commands"].toBool() ? QStringList{"--fscommands", "show"} : QStringList();
    Outcome played;
    for (int i = 0; i < options["runs"].toInt(1); ++i)
        played = run(tool("flashrun"),
                     QStringList{"trace", movie} + duration(options) + runArguments(options) + shown,
                     m_folder.path());
    if (played.status != 0)
        faults.push_back("flashrun ended with " + std::to_string(played.status) + ": " +
                         played.err.toStdString());
    const QByteArray expected = comparable(fileBytes(beside(".expected"))), found = comparable(played.out);
    if (expected == found) return;
    // The first line that differs says most.
    const auto want = expected.split('\n'), have = found.split('\n');
    qsizetype line = 0;
    while (line < want.size() && line < have.size() && want[line] == have[line]) ++line;
    const auto at = [&](const QList<QByteArray>& lines) {
        return line < lines.size() ? lines[line].toStdString() : "(end)";
    };
    faults.push_back("line " + std::to_string(line + 1) + "\n  expected: " + at(want) +
                     "\n  traced:   " + at(have) + "\nwhole trace:\n" + found.toStdString());
}

void MovieFile::checkSound(const QString& movie, const QJsonObject& options,
                           std::vector<std::string>& faults) const
{
    const QString file = m_folder.filePath("heard.wav");
    const Outcome played =
        run(tool("flashrun"),
            QStringList{"record", movie, "--out", file} + duration(options) + runArguments(options),
            m_folder.path());
    if (played.status != 0)
        faults.push_back("flashrun ended with " + std::to_string(played.status) + ": " +
                         played.err.toStdString());
    for (std::string& fault : checkHeard(fileBytes(file), fileBytes(beside(".heard"))))
        faults.push_back(std::move(fault));
}

void MovieFile::checkPicture(const QString& movie, const QJsonObject& options,
                             std::vector<std::string>& faults) const
{
    const QString picture = m_folder.filePath("picture.png");
    const Outcome drawn =
        run(tool("flashrun"),
            QStringList{"render", movie, "--frame", QString::number(options["frame"].toInt(1)), "--out",
                        picture, "--quality", options["quality"].toString("high")} +
                runArguments(options),
            m_folder.path());
    if (drawn.status != 0)
        faults.push_back("flashrun ended with " + std::to_string(drawn.status) + ": " +
                         drawn.err.toStdString());
    const std::string difference =
        differenceOf(picture, beside(".png"), options["tolerance"].toInt(3), options["outliers"].toInt(0));
    if (!difference.empty()) faults.push_back(difference);
}

QStringList sources()
{
    QStringList found;
    for (const QString& root : {QString(TEST_SOURCE_DIR), QString(PROJECT_SOURCE_DIR) + "/assets/samples"}) {
        QDirIterator walk(root, {"*.xml", "*.as"}, QDir::Files, QDirIterator::Subdirectories);
        while (walk.hasNext()) found << walk.next();
    }
    found.sort();
    return found;
}

bool hasExpectation(const QString& source)
{
    const QFileInfo info(source);
    // A script beside a description of the same name belongs to it.
    const bool isPart =
        info.suffix() == "as" && QFile::exists(info.path() + "/" + info.completeBaseName() + ".xml");
    if (isPart) return false;
    for (const char* suffix : {".expected", ".png", ".heard", ".errors"}) {
        if (QFile::exists(info.path() + "/" + info.completeBaseName() + suffix)) return true;
    }
    return false;
}

/// A sample movie of the program, left alone for half a minute of its own time.
class SampleMovie : public testing::Test
{
public:
    explicit SampleMovie(QString source) : m_source(std::move(source)) {}
    void TestBody() override
    {
        QTemporaryDir folder;
        const QString movie = folder.filePath("movie.swf");
        const Outcome compiled = run(tool("swfc"), {m_source, "-o", movie}, QFileInfo(m_source).path());
        ASSERT_EQ(compiled.status, 0) << compiled.err.toStdString();
        const Outcome played = run(tool("flashrun"), {"trace", movie, "--ms", "30000"}, folder.path());
        EXPECT_EQ(played.status, 0) << played.err.toStdString();
        EXPECT_TRUE(played.err.isEmpty()) << played.err.toStdString();
        EXPECT_FALSE(played.out.contains("undefined")) << played.out.toStdString();
    }

private:
    QString m_source;
};

/// A reader of another make must be able to parse everything that the compiler writes.
class AnotherReader : public testing::Test
{
public:
    void TestBody() override
    {
        if (run(kPython, {"-c", "import yaswfp.swfparser"}, ".").status != 0)
            GTEST_SKIP() << "python3-yaswfp is not installed";
        QTemporaryDir folder;
        QStringList movies;
        for (const QString& source : sources()) {
            const QFileInfo info(source);
            if (!hasExpectation(source) ||
                QFile::exists(info.path() + "/" + info.completeBaseName() + ".errors"))
                continue;
            const QString movie =
                folder.filePath(QString::number(movies.size()) + "-" + info.completeBaseName() + ".swf");
            if (run(tool("swfc"), {source, "-o", movie}, info.path()).status == 0) movies << movie;
        }
        ASSERT_FALSE(movies.isEmpty());
        const Outcome parsed =
            run(kPython, QStringList{QString(TEST_SOURCE_DIR) + "/parse_with_yaswfp.py"} + movies, ".");
        EXPECT_EQ(parsed.status, 0) << parsed.out.toStdString() << parsed.err.toStdString();
    }
};

} // namespace

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    for (const QString& source : sources()) {
        if (!hasExpectation(source)) continue;
        const bool sample = source.contains("/assets/samples/");
        const QString area =
            sample ? "samples" : QDir(TEST_SOURCE_DIR).relativeFilePath(QFileInfo(source).path());
        QString suite = "Movies_" + area;
        suite.replace('/', '_').replace('-', '_');
        QString name = QFileInfo(source).completeBaseName();
        name.replace('-', '_');
        testing::RegisterTest(suite.toUtf8().constData(), name.toUtf8().constData(), nullptr, nullptr,
                              __FILE__, __LINE__, [source]() -> MovieFile* { return new MovieFile(source); });
    }
    for (const char* sample : {"bricks", "film", "game", "testcard"}) {
        const QString source = QString(PROJECT_SOURCE_DIR) + "/assets/samples/" + sample + ".xml";
        testing::RegisterTest("Samples", (std::string(sample) + "_plays").c_str(), nullptr, nullptr, __FILE__,
                              __LINE__, [source]() -> SampleMovie* { return new SampleMovie(source); });
    }
    testing::RegisterTest("AnotherReader", "ParsesEveryMovie", nullptr, nullptr, __FILE__, __LINE__,
                          []() -> AnotherReader* { return new AnotherReader; });
    return RUN_ALL_TESTS();
}
