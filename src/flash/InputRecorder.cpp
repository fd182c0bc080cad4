#include "flash/InputRecorder.h"

#include "flash/FlashControl.h"
#include "flash/InputScript.h"
#include "flash/KeyCodes.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>

#include <algorithm>

namespace flash
{

namespace
{

constexpr double kMsPerSecond = 1000;

const char* nameOf(Qt::MouseButton button)
{
    if (button == Qt::MiddleButton) return "Middle";
    return button == Qt::RightButton ? "Right" : "Left";
}

} // namespace

InputRecorder::InputRecorder(FlashControl& control, double framesPerSecond, QSize stageSize)
    : m_control(control), m_framesPerSecond(framesPerSecond), m_stageSize(stageSize)
{
    m_sinceStart.start();
    control.installEventFilter(this);
}

QByteArray InputRecorder::events()
{
    waitUntilNow();
    return QJsonDocument(m_events).toJson(QJsonDocument::Compact);
}

void InputRecorder::waitUntilNow()
{
    const auto frames =
        static_cast<qint64>(static_cast<double>(m_sinceStart.elapsed()) * m_framesPerSecond / kMsPerSecond);
    for (; m_frames < frames; ++m_frames) m_events.append(QJsonObject{{"type", "Wait"}});
}

void InputRecorder::note(const QJsonObject& event)
{
    waitUntilNow();
    // Of many moves within a frame the movie sees what the last one leaves.
    const QJsonValue last = m_events.isEmpty() ? QJsonValue() : m_events.last();
    const bool isMove = event["type"] == "MouseMove" && last.toObject()["type"] == "MouseMove";
    if (isMove)
        m_events[m_events.size() - 1] = event;
    else
        m_events.append(event);
}

QJsonArray InputRecorder::stagePosition(QPointF position) const
{
    const double scale =
        std::min(m_control.width() / m_stageSize.width(), m_control.height() / m_stageSize.height());
    const double left = (m_control.width() - m_stageSize.width() * scale) / 2;
    const double top = (m_control.height() - m_stageSize.height() * scale) / 2;
    return {(position.x() - left) / scale, (position.y() - top) / scale};
}

bool InputRecorder::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseMove:
        note({{"type", "MouseMove"}, {"pos", stagePosition(static_cast<QMouseEvent*>(event)->position())}});
        break;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonRelease: {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        const bool isUp = event->type() == QEvent::MouseButtonRelease;
        QJsonObject noted{{"type", isUp ? "MouseUp" : "MouseDown"},
                          {"pos", stagePosition(mouse->position())},
                          {"btn", nameOf(mouse->button())}};
        if (event->type() == QEvent::MouseButtonDblClick) noted["index"] = 1;
        note(noted);
        break;
    }
    case QEvent::Wheel: {
        constexpr int kNotch = 120; // eighths of a degree
        constexpr int kLinesPerNotch = 3;
        const int turned = static_cast<QWheelEvent*>(event)->angleDelta().y();
        note({{"type", "MouseWheel"}, {"lines", turned * kLinesPerNotch / kNotch}});
        break;
    }
    case QEvent::KeyPress: {
        const auto& key = *static_cast<QKeyEvent*>(event);
        if (const int code = keyCodeOf(key); code != 0) note({{"type", "KeyDown"}, {"key_code", code}});
        if (const auto command = textCommandOf(key)) {
            note({{"type", "TextControl"}, {"code", InputScript::nameOf(*command)}});
            break;
        }
        for (const uint letter : key.text().toUcs4())
            if (letter >= ' ' && letter != 127)
                note({{"type", "TextInput"}, {"codepoint", static_cast<int>(letter)}});
        break;
    }
    case QEvent::KeyRelease: {
        const auto& key = *static_cast<QKeyEvent*>(event);
        const int code = keyCodeOf(key);
        if (code != 0 && !key.isAutoRepeat()) note({{"type", "KeyUp"}, {"key_code", code}});
        break;
    }
    default: break;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace flash
