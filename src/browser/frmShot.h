#pragma once

#include <QDialog>
#include <QImage>

class QLabel;
class QPushButton;

namespace flash
{
class FlashControl;
}

namespace browser
{

/// The window that shows how thumbnails come along. The movie plays in its control SWF, silent and on
/// simulated time, and what its area PIC shows becomes the thumbnail. The window draws and reports clicks;
/// Thumbnails drives it.
class frmShot : public QDialog
{
    Q_OBJECT
public:
    /// @param shadowImage of the drop shadow around the picture
    frmShot(QWidget* parent, const QString& shadowImage);

    [[nodiscard]] flash::FlashControl& SWF() { return *m_swf; }
    /// Shows the window: over its parent, or in the middle of the screen while that one is not shown.
    void present();
    /// Shows a movie's path, shortened to the width that there is.
    void setPath(const QString& path);
    /// Bar and count; for more than one thumbnail.
    void setProgress(int number, int count);
    /// Whether the sign for "no picture" covers the movie.
    void showMissing(bool missing);
    /// @returns what the picture area shows, in the screen's own pixels
    [[nodiscard]] QImage capture();

signals:
    void cancelled();
    void movieSkipped();

protected:
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void reject() override;

private:
    void cbCancel_Click();

    QWidget* m_pic;
    flash::FlashControl* m_swf;
    QWidget* m_missing;
    QLabel* m_path;
    QWidget* m_picStatus;
    QWidget* m_picProgress;
    QLabel* m_lblCountUnder;
    QLabel* m_lblCountOver;
    QPushButton* m_cbCancel;
};

} // namespace browser
