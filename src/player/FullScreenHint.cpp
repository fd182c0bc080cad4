#include "player/FullScreenHint.h"

#include "core/Look.h"
#include "player/Texts.h"

#include <QTimer>

namespace player
{

FullScreenHint::FullScreenHint(QWidget& window) : QLabel(texts::kHowToLeave, &window)
{
    setObjectName("lblHowToLeave");
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setStyleSheet(QString("background: %1; color: %2; border: 1px solid %3; border-radius: 6px;"
                          " padding: 8px 16px; font-size: 16px;")
                      .arg(QColor(core::look::kInk).name(), QColor(core::look::kPaper).name(),
                           QColor(core::look::kSteel).name()));
}

void FullScreenHint::show(QWidget& window)
{
    delete window.findChild<FullScreenHint*>();
    auto* hint = new FullScreenHint(window);
    const auto place = [hint, &window] {
        constexpr int kFromTop = 24;
        hint->adjustSize();
        hint->move((window.width() - hint->width()) / 2, kFromTop);
        hint->raise();
    };
    place();
    hint->QLabel::show();
    // The window has its new size only when the system has given it one.
    constexpr int kResizedAfterMs[] = {100, 400};
    for (const int after : kResizedAfterMs) QTimer::singleShot(after, hint, place);
    QTimer::singleShot(kShownMs, hint, &QObject::deleteLater);
}

} // namespace player
