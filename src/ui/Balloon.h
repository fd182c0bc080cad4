#pragma once

#include <QPointer>
#include <QTimer>
#include <QWidget>

namespace ui
{

/// The tooltip of one control: a balloon whose arrow points at the pointer. Stays for five seconds, or until
/// the pointer leaves the control, a key or button is pressed or the control goes away.
class Balloon : public QWidget
{
    Q_OBJECT
public:
    static constexpr int kInitialDelayMs = 1000;
    static constexpr int kDisplayMs = 5000;
    static constexpr int kTextWidth = 300; ///< texts wrap here; longer words break

    /// Shows the tooltips of all widgets as balloons from now on. Needs the QApplication; calls after the
    /// first do nothing. The time that the pointer has to rest is the style's, SH_ToolTip_WakeUpDelay.
    static void install();

    /// @param at what the arrow points at, global; the balloon lies above it, or below where there is no room
    /// @returns the balloon; it deletes itself when it closes
    static Balloon* show(QWidget& control, const QString& text, const QPoint& at);

    [[nodiscard]] const QString& text() const { return m_text; }

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    Balloon(QWidget& control, const QString& text, const QPoint& at);
    void place(const QPoint& at);
    [[nodiscard]] QPainterPath outline() const;

    QPointer<QWidget> m_control;
    const QString m_text;
    QRect m_box;     ///< the balloon without its arrow
    int m_arrow = 0; ///< where the arrow's point is, from the left
    bool m_above = true;
    QTimer m_time;
};

/// Gives a control a tooltip; an empty text takes it away. It shows by itself when the pointer rests over the
/// control. Texts are shown as they are: no mark-up, no letters underlined.
/// @throws base::Failure 438 for what has no window handle: labels, and objects that are no widgets
void SetToolTip(QObject* control, const QString& text);

} // namespace ui
