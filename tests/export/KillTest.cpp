#include "export/ExportProcess.h"

#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

#include <csignal>
#include <random>

namespace
{

using exporter::Exit;

/// The processes that a process has started.
QList<pid_t> childrenOf(qint64 process)
{
    QFile file(QString("/proc/%1/task/%1/children").arg(process));
    QList<pid_t> children;
    if (!file.open(QIODevice::ReadOnly)) return children;
    for (const QByteArray& word : file.readAll().split(' '))
        if (const int child = word.toInt(); child > 0) children += child;
    return children;
}

TEST(ExportProcess, TellsOfAnEndAtAnyMomentAndLeavesNothing)
{
    qputenv("ZORVEX_EXPORT_PROGRAM", ZORVEX_PROGRAM_DIR "/zorvex-export");
    QTemporaryDir folder;
    QFile source(folder.filePath("film.xml"));
    ASSERT_TRUE(source.open(QIODevice::WriteOnly));
    source.write(
        R"(<movie version="6" width="320" height="240" rate="30" background="#104080"><frame duration="900"/></movie>)");
    source.close();
    ASSERT_EQ(
        QProcess::execute(ZORVEX_TOOLS_DIR "/swfc", {source.fileName(), "-o", folder.filePath("film.swf")}),
        0);
    const QStringList before = QDir(folder.path()).entryList(QDir::Files);

    bool isNumber = false;
    const int asked = qEnvironmentVariableIntValue("ZORVEX_TEST_KILLS", &isNumber);
    const int kills = isNumber ? asked : 12;
    std::mt19937 random(1);
    std::uniform_int_distribution<int> moment(0, 250);
    int struck = 0;
    for (int i = 0; i < kills; ++i) {
        exporter::Settings settings;
        settings.movie = folder.filePath("film.swf").toStdString();
        settings.out = folder.filePath("film.mp4").toStdString();
        settings.end = exporter::End::Given;
        settings.toMs = 600'000;
        settings.size = {1280, 720};
        exporter::ExportProcess process;
        std::optional<Exit> ended;
        QEventLoop loop;
        QObject::connect(&process, &exporter::ExportProcess::finished, &loop,
                         [&](Exit exit, const QString& error) {
                             ended = exit;
                             EXPECT_FALSE(error.isEmpty());
                             loop.quit();
                         });
        process.start(settings);
        QTimer::singleShot(moment(random), &loop, [&] {
            const auto workers = childrenOf(process.processId());
            // Before there is a worker, whoever was to start it.
            const pid_t victim =
                workers.isEmpty() ? static_cast<pid_t>(process.processId()) : workers.first();
            if (::kill(victim, i % 2 == 0 ? SIGKILL : SIGSEGV) == 0) ++struck;
        });
        QTimer::singleShot(20'000, &loop, &QEventLoop::quit);
        loop.exec();
        ASSERT_TRUE(ended) << "kill " << i;
        EXPECT_NE(*ended, Exit::Done);
        EXPECT_FALSE(QFile::exists(folder.filePath("film.mp4")));
    }
    EXPECT_EQ(struck, kills);
    // What a killed one left has its own name for the time being, and goes with the next film of that name.
    QProcess next;
    next.start(ZORVEX_PROGRAM_DIR "/zorvex-export",
               {folder.filePath("film.swf"), folder.filePath("one.png"), "--frame", "1f"});
    next.waitForFinished();
    EXPECT_EQ(next.exitCode(), 0);
    QStringList after = QDir(folder.path()).entryList(QDir::Files);
    after.removeIf([](const QString& name) { return name == "one.png" || name.contains(".mp4.~"); });
    EXPECT_EQ(after, before);
}

} // namespace
