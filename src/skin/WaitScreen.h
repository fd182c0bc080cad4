#pragma once

#include <QImage>
#include <QWidget>

namespace skin
{

/// A picture made paler and almost grey: colourfulness taken back by 60 %, brightness raised by 25 %.
QImage paled(QImage picture);

/// Covers a window's inner area with its own snapshot while what lies under it is rebuilt.
class WaitScreen : public QWidget
{
    Q_OBJECT
public:
    explicit WaitScreen(QWidget* area);
    enum class Look {
        Paled, ///< which is seen as a short flash
        Still, ///< as it was
    };
    void ShowWaitScreen(Look look = Look::Paled);
    void HideWaitScreen();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QImage m_picture;
};

} // namespace skin
