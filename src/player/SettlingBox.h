#pragma once

#include <QElapsedTimer>
#include <QMessageBox>
#include <QTimer>

namespace player
{

/// A question that a movie has brought about. It comes at a moment of the movie's choosing, maybe under the
/// user's hand: for its first second on the screen it takes no click and no key, and later none that began
/// before.
class SettlingBox : public QMessageBox
{
    Q_OBJECT
public:
    static constexpr int kSettlingMs = 1000;

    SettlingBox(Icon icon, const QString& title, const QString& text, StandardButtons buttons,
                QWidget* parent);
    [[nodiscard]] bool hasSettled() const { return m_settled; }

protected:
    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void look();
    [[nodiscard]] bool isTooEarly(const QEvent& event) const;

    QTimer m_look;
    QElapsedTimer m_shown; ///< since it can be seen
    bool m_settled = false;
};

} // namespace player
