#pragma once

#include "skin/Controls.h"

#include <QAbstractButton>
#include <QComboBox>

class QLabel;

namespace skin
{
class Bridge;
}

namespace player
{

class Menus;
class MovieScreen;
class PlayerHost;
class WindowDrag;

/// What a statement that ran adds to the history: itself, unless it is empty or known already, in any case.
/// @returns whether it is new
bool belongsInHistory(const QStringList& history, const QString& statement);

/// The console's input line; its list is the history, most recent first, and is kept between runs.
class ConsoleLine : public QComboBox
{
    Q_OBJECT
    Q_PROPERTY(QString Text READ currentText WRITE setEditText)
    Q_PROPERTY(int ListCount READ count)
public:
    explicit ConsoleLine(QWidget* parent);
    /// At the top; what stands in the line stays.
    void remember(const QString& statement);
    [[nodiscard]] QStringList history() const;

signals:
    void entered(const QString& statement);
    void completionWanted();
    void left();

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};

/// The console's close button. The panel can be dragged by it, which is no click then.
class ConsoleCloseButton : public QAbstractButton
{
    Q_OBJECT
public:
    explicit ConsoleCloseButton(QWidget* parent);

signals:
    void movedWhileHeld();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    QPoint m_pressedAt;
    bool m_dragging = false;
};

/// A panel inside the window that runs one statement at a time in the skin's engine. Shown exactly while
/// mnuConsole is checked; lies above every view of a skin.
class Console : public skin::SkinControl
{
    Q_OBJECT
public:
    /// All outlive the panel.
    /// @param client the window's inner area, which owns the panel
    /// @param bridge what runs the statements
    Console(PlayerHost& host, QWidget& window, QWidget& client, Menus& menus, MovieScreen& movieScreen,
            WindowDrag& windowDrag, skin::Bridge& bridge);

    void ShowConsole();
    void HideConsole();
    /// Gives the close button its tooltip.
    void SetVisual();
    /// Takes its texts anew.
    void translate();
    [[nodiscard]] ConsoleLine& line() { return *m_cmbConsole; }

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void run(const QString& statement);
    void drag();
    void completeLine();
    /// Below the line: what went wrong, or what a name may be meant for. Empty takes it away.
    void answer(const QString& text);
    /// Fits the panel into the area, and back into it after the window has shrunk.
    void fit();

    PlayerHost& m_host;
    QWidget& m_client;
    Menus& m_menus;
    MovieScreen& m_movieScreen;
    WindowDrag& m_drag;
    skin::Bridge& m_bridge;
    QLabel* m_lblConsole;
    ConsoleLine* m_cmbConsole;
    ConsoleCloseButton* m_chkCloseConsole;
    QLabel* m_lblAnswer;
};

} // namespace player
