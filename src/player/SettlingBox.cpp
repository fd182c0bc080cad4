#include "player/SettlingBox.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QKeyEvent>
#include <QPushButton>
#include <QWindow>

namespace player
{

SettlingBox::SettlingBox(Icon icon, const QString& title, const QString& text, StandardButtons buttons,
                         QWidget* parent)
    : QMessageBox(icon, title, text, buttons, parent)
{
    constexpr int kLookEveryMs = 50;
    m_look.setInterval(kLookEveryMs);
    connect(&m_look, &QTimer::timeout, this, &SettlingBox::look);
}

void SettlingBox::showEvent(QShowEvent* event)
{
    QMessageBox::showEvent(event);
    if (m_settled || m_look.isActive()) return;
    for (QAbstractButton* button : findChildren<QAbstractButton*>()) {
        button->setEnabled(false);
        button->installEventFilter(this);
    }
    m_look.start();
}

void SettlingBox::look()
{
    // What is covered or not yet drawn has not been seen.
    if (windowHandle() == nullptr || !windowHandle()->isExposed()) return;
    if (!m_shown.isValid()) m_shown.start();
    if (m_shown.elapsed() < kSettlingMs) return;
    m_look.stop();
    m_settled = true;
    for (QAbstractButton* button : findChildren<QAbstractButton*>()) button->setEnabled(true);
    if (defaultButton() != nullptr) defaultButton()->setFocus();
}

bool SettlingBox::isTooEarly(const QEvent& event) const
{
    // A key that repeats was pressed before, whenever that was.
    return !m_settled || static_cast<const QKeyEvent&>(event).isAutoRepeat();
}

void SettlingBox::keyPressEvent(QKeyEvent* event)
{
    if (isTooEarly(*event)) return event->accept();
    QMessageBox::keyPressEvent(event);
}

bool SettlingBox::eventFilter(QObject* watched, QEvent* event)
{
    const bool isKey = event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride;
    return (isKey && isTooEarly(*event)) || QMessageBox::eventFilter(watched, event);
}

} // namespace player
