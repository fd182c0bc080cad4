#include "export/ExportProcess.h"

#include "export/CommandLine.h"
#include "export/Formats.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace exporter
{

namespace
{

constexpr int kAnswerMs = 5000;
// A cancelled one removes what it has begun; longer than this it does not take.
constexpr int kEndMs = 1000;

QStringList wordList(const Settings& settings)
{
    QStringList list{"--report"};
    for (const std::string& word : wordsOf(settings)) list += QString::fromStdString(word);
    return list;
}

} // namespace

QString ExportProcess::program()
{
    if (const QString given = qEnvironmentVariable("ZORVEX_EXPORT_PROGRAM"); !given.isEmpty()) return given;
    const QDir folder = QFileInfo(QFile::symLinkTarget(QStringLiteral("/proc/self/exe"))).dir();
    for (const char* place :
         {"zorvex-export", "../libexec/zorvex/zorvex-export", "../lib/zorvex/zorvex-export"}) {
        const QString path = folder.filePath(QLatin1String(place));
        if (QFileInfo(path).isExecutable()) return QDir::cleanPath(path);
    }
    return {};
}

std::vector<Availability> ExportProcess::availableFormats()
{
    std::vector<Availability> found;
    QProcess process;
    process.start(program(), {"--formats"});
    if (!process.waitForFinished(kAnswerMs)) return found;
    for (const QByteArray& line : process.readAllStandardOutput().split('\n')) {
        const QList<QByteArray> field = line.split('\t');
        if (field.size() != 3) continue;
        const auto format = formatOf("x." + field[0].toStdString());
        if (format) found.push_back({*format, field[2] == "yes" ? QString() : QString::fromUtf8(field[2])});
    }
    return found;
}

ExportProcess::ExportProcess(QObject* parent) : QObject(parent)
{
    connect(&m_process, &QProcess::readyReadStandardOutput, this, [this] { readReport(); });
    connect(&m_process, &QProcess::finished, this,
            [this](int code, QProcess::ExitStatus status) { end(code, status); });
    connect(&m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) emit finished(Exit::CannotPlay, m_process.errorString());
    });
}

ExportProcess::~ExportProcess()
{
    m_process.disconnect(this);
    if (m_process.state() == QProcess::NotRunning) return;
    m_process.terminate();
    m_process.waitForFinished(kEndMs);
}

void ExportProcess::start(const Settings& settings)
{
    m_isCancelled = false;
    m_done = {};
    m_process.start(program(), wordList(settings));
}

void ExportProcess::restart(const Settings& settings)
{
    if (m_process.state() == QProcess::NotRunning) return start(settings);
    m_next = settings;
    cancel();
}

void ExportProcess::cancel()
{
    m_isCancelled = true;
    m_process.terminate();
}

void ExportProcess::readReport()
{
    while (m_process.canReadLine()) {
        const auto line = report::read(m_process.readLine(report::kMaxLineBytes));
        if (!line || m_isCancelled) continue;
        if (const auto* advance = std::get_if<report::Advanced>(&*line))
            emit advanced(advance->pictures, advance->expected);
        else if (const auto* show = std::get_if<report::Shown>(&*line))
            emit shown(show->picture);
        else
            m_done = std::get<report::Done>(*line);
    }
    // No report: whoever writes so has been taken over by its movie.
    if (m_process.bytesAvailable() > report::kMaxLineBytes) m_process.kill();
}

void ExportProcess::end(int code, QProcess::ExitStatus status)
{
    readReport();
    if (m_next) return start(*std::exchange(m_next, std::nullopt));
    // The last line it wrote; its own name in front says nothing new.
    QStringList said = QString::fromUtf8(m_process.readAllStandardError()).split('\n', Qt::SkipEmptyParts);
    QString error = said.isEmpty() ? QString() : said.last().trimmed();
    if (const QString name = "zorvex-export: "; error.startsWith(name)) error.remove(0, name.size());
    if (error.isEmpty() && status != QProcess::NormalExit) error = "it was ended from outside";
    const Exit exit = m_isCancelled                    ? Exit::Cancelled
                      : status != QProcess::NormalExit ? Exit::CannotPlay
                                                       : static_cast<Exit>(std::clamp(code, 0, 4));
    emit finished(exit, exit == Exit::Done ? QString() : error);
}

} // namespace exporter
