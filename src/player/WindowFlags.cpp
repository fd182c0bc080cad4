#include "player/WindowFlags.h"

#include <QWindow>

namespace player
{

void setWindowFlagInPlace(QWidget& window, Qt::WindowType flag, bool on)
{
    QWindow* const handle = window.windowHandle();
    if (handle == nullptr) {
        window.setWindowFlag(flag, on);
        return;
    }
    window.overrideWindowFlags(window.windowFlags().setFlag(flag, on));
    handle->setFlags(window.windowFlags());
}

} // namespace player
