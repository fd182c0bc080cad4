#pragma once

#include <QObject>
#include <QPointer>
#include <QRegion>

#include <optional>
#include <vector>

class QWidget;
class QWindow;

namespace flash::control
{

/// What of a widget may be shown past its window's store. What was shown so is not in the store, and must be
/// painted again before the store is what is seen: when the window is uncovered, or the widget moved in it.
class DirectPainting : public QObject
{
public:
    /// @param widget opaque
    explicit DirectPainting(QWidget& widget) : m_widget(widget) {}

    struct Place {
        QWindow* window = nullptr; ///< exposed
        QPoint origin;             ///< of the widget in it, device pixels
        QRegion free;              ///< of the widget, device pixels: what no other widget shares
    };
    /// @param parts of the widget
    /// @returns nothing where the widget can only be painted
    [[nodiscard]] std::optional<Place> placeOf(const QRegion& parts);
    /// These parts of the widget were shown.
    void note(const QRegion& parts);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void follow(std::size_t index, QObject* object);

    QWidget& m_widget;
    std::vector<QPointer<QObject>> m_followed; ///< the widget, what it is in, and the window
    QRegion m_missing;                         ///< from the store; parts of the widget
};

} // namespace flash::control
