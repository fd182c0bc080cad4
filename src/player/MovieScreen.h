#pragma once

#include "skin/Controls.h"

#include <QObject>

class QStackedLayout;

namespace flash
{
class FlashControl;
}

namespace player
{

class PageItems;
class WelcomePanel;

/// What fills the movie's place: the Flash control, or the panel that stands in where there is no welcome
/// page to show.
class MovieScreen : public QObject
{
    Q_OBJECT
public:
    /// @param client the window's inner area, which owns the widgets
    MovieScreen(QWidget& client, QWidget& window);

    /// The place itself; scripts know it as SWF.
    [[nodiscard]] skin::SkinControl& widget() { return *m_widget; }
    [[nodiscard]] flash::FlashControl& control() { return *m_control; }
    [[nodiscard]] const flash::FlashControl& control() const { return *m_control; }
    /// Made when it is first asked for: where the welcome page is there it never is.
    [[nodiscard]] WelcomePanel& welcome();
    /// What the page in the control shows, for those who do not see it.
    [[nodiscard]] PageItems& pageItems() { return *m_pageItems; }
    /// Whether the control is shown, be it with a movie or a page.
    [[nodiscard]] bool showsControl() const;

    /// @param url a path, maybe with a query behind it; a file whose own name holds a "?" is known as a file
    /// @throws base::Failure when the control refuses it; why stands in its errorText
    void LoadMovie(int layer, const QString& url);
    /// Unloads the movie and shows the panel.
    void showWelcome(const QString& message);
    void setFocus();

signals:
    /// The panel's button was pressed.
    void openWanted();

private:
    skin::SkinControl* m_widget;
    flash::FlashControl* m_control;
    PageItems* m_pageItems;
    WelcomePanel* m_welcome = nullptr;
    QStackedLayout* m_layout;
};

} // namespace player
