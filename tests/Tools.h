#pragma once

// What tests share that run the project's own tools on movies.

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QProcess>

#include <algorithm>
#include <string>

namespace tools
{

struct Outcome {
    int status = -1;
    QByteArray out, err;
};

inline Outcome run(const QString& program, const QStringList& arguments, const QString& folder)
{
    QProcess process;
    process.setWorkingDirectory(folder);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("TZ", "UTC0");
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    Outcome outcome;
    constexpr int kTimeoutMs = 100'000;
    if (!process.waitForFinished(kTimeoutMs)) {
        process.kill();
        outcome.err = "did not finish: " + process.errorString().toUtf8();
        return outcome;
    }
    outcome.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    outcome.out = process.readAllStandardOutput();
    outcome.err = process.readAllStandardError();
    return outcome;
}

inline QByteArray fileBytes(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return {};
    return file.readAll();
}

/// A program of this build, or the one that ZORVEX_TEST_NAME names instead.
inline QString tool(const char* name)
{
    const QByteArray variable = "ZORVEX_TEST_" + QByteArray(name).toUpper();
    return qEnvironmentVariable(variable.constData(), QString(ZORVEX_TOOLS_DIR) + "/" + name);
}

/// Line ends and the very end of the text do not count.
inline QByteArray comparable(QByteArray text)
{
    text.replace("\r\n", "\n");
    text.replace('\r', '\n');
    while (text.endsWith('\n')) text.chop(1);
    return text;
}

/// @param tolerance levels of a channel
/// @returns what is wrong, or "" when at most `allowed` pixels differ by more. The picture found is kept
/// then.
inline std::string differenceOf(const QString& foundFile, const QString& expectedFile, int tolerance,
                                int allowed)
{
    const QImage expected = QImage(expectedFile).convertToFormat(QImage::Format_RGB32);
    const QImage found = QImage(foundFile).convertToFormat(QImage::Format_RGB32);
    const QString kept =
        QDir::temp().filePath("movie-test-" + QFileInfo(expectedFile).completeBaseName() + ".png");
    if (expected.isNull() || found.size() != expected.size()) {
        found.save(kept);
        return "the picture's size is " + std::to_string(found.width()) + "x" +
               std::to_string(found.height()) + "; see " + kept.toStdString();
    }
    int outliers = 0, worst = 0;
    QPoint where;
    for (int y = 0; y < found.height(); ++y) {
        for (int x = 0; x < found.width(); ++x) {
            const QRgb a = expected.pixel(x, y), b = found.pixel(x, y);
            const int difference = std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                                             std::abs(qBlue(a) - qBlue(b))});
            if (difference > tolerance) ++outliers;
            if (difference > worst) {
                worst = difference;
                where = {x, y};
            }
        }
    }
    if (outliers <= allowed) return {};
    found.save(kept);
    return std::to_string(outliers) + " pixels differ by more than " + std::to_string(tolerance) +
           ", the most at " + std::to_string(where.x()) + "," + std::to_string(where.y()) + " by " +
           std::to_string(worst) + "; see " + kept.toStdString();
}

} // namespace tools
