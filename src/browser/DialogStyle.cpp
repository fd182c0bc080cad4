#include "browser/DialogStyle.h"

#include "core/Look.h"

#include <QColor>

namespace browser
{

QString dialogStyle()
{
    using namespace core;
    const auto colour = [](QRgb value) { return QColor(value).name(); };
    return QString("QDialog { background: %1; } QLabel { color: %2; }"
                   "QLabel#lblName { font-size: 20px; }"
                   "QLabel#lblFileName, QLabel#lblPath { color: %3; }"
                   "QPushButton { background: %4; color: white; border: 1px solid %4; border-radius: 6px;"
                   " padding: 0 20px; }"
                   "QPushButton:hover { background: #3F67A8; } QPushButton:pressed { background: #37598F; }"
                   "QPushButton:focus { border: 2px solid %5; }"
                   "QPushButton:disabled { background: #A9BBD8; border-color: #A9BBD8; }")
        .arg(colour(look::kPaper), colour(look::kInk), colour(look::kSteel), colour(look::kBlue),
             colour(look::kSky));
}

} // namespace browser
