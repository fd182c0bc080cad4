#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QObject>
#include <QPointF>
#include <QSizeF>

namespace flash
{

class FlashControl;

/// Notes what a user does in a control, as InputScript reads it: in order, and each in the frame of the movie
/// in which it happened.
class InputRecorder : public QObject
{
    Q_OBJECT
public:
    /// Begins now: when the movie's first frame shows.
    /// @param control         outlives this object
    /// @param framesPerSecond of the movie
    /// @param stageSize       of the movie's frame; it is shown whole, in the middle of the control
    InputRecorder(FlashControl& control, double framesPerSecond, QSize stageSize);

    /// A JSON array, with the frames until now.
    [[nodiscard]] QByteArray events();

private:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void note(const QJsonObject& event);
    void waitUntilNow();
    [[nodiscard]] QJsonArray stagePosition(QPointF position) const;

    FlashControl& m_control;
    const double m_framesPerSecond;
    const QSizeF m_stageSize;
    QElapsedTimer m_sinceStart;
    QJsonArray m_events;
    qint64 m_frames = 0; // that were waited for
};

} // namespace flash
