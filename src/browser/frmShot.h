#pragma once

#include "platform/TaskbarProgress.h"

#include <QDialog>
#include <QImage>

#include <vector>

class QLabel;
class QPushButton;

namespace flash
{
class FlashControl;
}

namespace browser
{

/// The window that shows how thumbnails come along. Each movie plays in a place of its own over the area PIC,
/// silent and on simulated time, and what the place shows becomes the thumbnail; the user sees one of them.
/// The window draws and reports clicks; Thumbnails drives it.
class frmShot : public QDialog
{
    Q_OBJECT
public:
    /// @param shadowImage of the drop shadow around the picture
    frmShot(QWidget* parent, const QString& shadowImage);

    /// The movie of a place; places come into being as they are asked for, one after the other from 0.
    [[nodiscard]] flash::FlashControl& SWF(int place = 0);
    [[nodiscard]] int places() const { return static_cast<int>(m_places.size()); }
    /// What the user sees.
    void showPlace(int place);
    /// Shows the window: over its parent, or in the middle of the screen while that one is not shown.
    void present();
    /// Shows a movie's path, shortened to the width that there is.
    void setPath(const QString& path);
    /// Bar and count; for more than one thumbnail.
    void setProgress(int number, int count);
    /// Whether the sign for "no picture" covers the movie.
    void showMissing(int place, bool missing);
    /// @returns what the place shows, seen or not, in the screen's own pixels
    [[nodiscard]] QImage capture(int place);

signals:
    void cancelled();
    void movieSkipped();

protected:
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void reject() override;

private:
    void cbCancel_Click();

    struct Place {
        QWidget* area;
        flash::FlashControl* swf;
        QWidget* missing;
    };
    Place newPlace();

    QWidget* m_pic;
    std::vector<Place> m_places;
    platform::TaskbarProgress m_taskbar{"zorvex"};
    QLabel* m_path;
    QWidget* m_picStatus;
    QWidget* m_picProgress;
    QLabel* m_lblCountUnder;
    QLabel* m_lblCountOver;
    QPushButton* m_cbCancel;
};

} // namespace browser
