#pragma once

#include "export/ExportDialog.h"

#include <QDialog>
#include <QElapsedTimer>

class QLabel;

namespace flash
{
class FlashControl;
class InputRecorder;
} // namespace flash

namespace exporter
{

/// Plays a movie from its start and notes what the user does in it.
class RecordDialog : public QDialog
{
    Q_OBJECT
public:
    RecordDialog(QWidget* parent, const MovieFacts& movie);
    ~RecordDialog() override;

    /// Of the time until the window was closed, for flash::InputScript.
    [[nodiscard]] const QByteArray& events() const { return m_events; }
    [[nodiscard]] double seconds() const { return m_seconds; }

private:
    void begin();
    void accept() override;

    const MovieFacts m_movie;
    flash::FlashControl* m_control = nullptr;
    std::unique_ptr<flash::InputRecorder> m_recorder;
    QElapsedTimer m_sinceStart;
    QTimer m_ticking;
    QLabel* m_clock = nullptr;
    QByteArray m_events;
    double m_seconds = 0;
};

} // namespace exporter
