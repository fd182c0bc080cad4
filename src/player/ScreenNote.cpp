#include "player/ScreenNote.h"

#include "core/Look.h"

#include <QTimer>

namespace player
{

ScreenNote::ScreenNote(QWidget& window, const QString& text) : QLabel(text, &window)
{
    setObjectName("lblNote");
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setStyleSheet(QString("background: %1; color: %2; border: 1px solid %3; border-radius: 6px;"
                          " padding: 8px 16px; font-size: 16px;")
                      .arg(QColor(core::look::kInk).name(), QColor(core::look::kPaper).name(),
                           QColor(core::look::kSteel).name()));
}

void ScreenNote::show(QWidget& window, const QString& text, int shownMs)
{
    delete window.findChild<ScreenNote*>();
    auto* note = new ScreenNote(window, text);
    const auto place = [note, &window] {
        constexpr int kFromTop = 24, kFromSide = 8;
        // A narrow window has it in several lines.
        note->setWordWrap(false);
        const int room = window.width() - 2 * kFromSide;
        if (note->sizeHint().width() > room) {
            note->setWordWrap(true);
            note->setAlignment(Qt::AlignCenter);
            note->resize(room, note->heightForWidth(room));
        } else {
            note->adjustSize();
        }
        note->move((window.width() - note->width()) / 2, kFromTop);
        note->raise();
    };
    place();
    note->QLabel::show();
    // The window has its new size only when the system has given it one.
    constexpr int kResizedAfterMs[] = {100, 400};
    for (const int after : kResizedAfterMs) QTimer::singleShot(after, note, place);
    QTimer::singleShot(shownMs, note, &QObject::deleteLater);
}

} // namespace player
