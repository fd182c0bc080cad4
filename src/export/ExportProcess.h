#pragma once

#include "export/Report.h"
#include "export/Settings.h"

#include <QObject>
#include <QProcess>
#include <QString>

#include <vector>

namespace exporter
{

/// Whether this machine can write a format.
struct Availability {
    Format format;
    QString lacks; ///< what is missing, in the program's words; empty when nothing is
};

/// A zorvex-export at work, seen from the window that asked for the film.
class ExportProcess : public QObject
{
    Q_OBJECT
public:
    explicit ExportProcess(QObject* parent = nullptr);
    /// Cancels what is not done.
    ~ExportProcess() override;

    /// The executable, beside the running program; empty when there is none. ZORVEX_EXPORT_PROGRAM names
    /// another.
    static QString program();
    /// Asks it; waits for the answer. Empty when there is none.
    static std::vector<Availability> availableFormats();

    /// Begins. What comes of it is told from the event loop, finished() last.
    void start(const Settings& settings);
    /// The same, once whatever is at work has been given up.
    void restart(const Settings& settings);
    /// At once: nothing of the film is left, and finished() comes with Exit::Cancelled.
    void cancel();

signals:
    void advanced(qint64 pictures, qint64 expected);
    void shown(const QImage& picture);
    /// @param error what zorvex-export said last, in English; empty when all went well
    void finished(exporter::Exit exit, const QString& error);

public:
    [[nodiscard]] qint64 processId() const { return m_process.processId(); }
    /// What the last film was, once it is finished.
    [[nodiscard]] const report::Done& done() const { return m_done; }

private:
    void readReport();
    void end(int code, QProcess::ExitStatus status);

    QProcess m_process;
    report::Done m_done;
    bool m_isCancelled = false;
    std::optional<Settings> m_next;
};

} // namespace exporter
