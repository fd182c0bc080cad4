#pragma once

#include "core/Text.h"
#include "flash/FlashControl.h"

#include <QAction>
#include <QMenu>
#include <QObject>
#include <QPointer>

#include <optional>

namespace player
{

/// What a movie adds to the pop-up menu: at its head, while it is open. The player's own items stay what they
/// are, whatever the movie wants hidden.
class MovieMenu : public QObject
{
    Q_OBJECT
public:
    /// @param control and popUp outlive this
    MovieMenu(flash::FlashControl& control, QMenu& popUp);
    /// Asks the movie, for the menu that is about to open.
    /// @param place where it opens, on the screen; nothing: it was opened by a key
    void fill(std::optional<QPoint> place);

private:
    void clear();
    void put(const flash::FlashControl::Menu& menu);
    [[nodiscard]] bool isUnderPointer(const QPoint& place) const;

    flash::FlashControl& m_control;
    QMenu& m_popUp;
    QList<QPointer<QAction>> m_shown;
};

} // namespace player
