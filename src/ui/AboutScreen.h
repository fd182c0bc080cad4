#pragma once

#include <QDialog>

namespace flash
{
class FlashControl;
}

namespace ui
{

/// The window that shows the about page in a Flash control of its own, known as "SWF". When the page cannot
/// be shown, its text stands in the window instead.
class frmAbout : public QDialog
{
    Q_OBJECT
public:
    /// @param address the page's, with its query
    /// @param quality the number of the player's own control's quality
    frmAbout(QWidget* parent, const QString& address, int quality);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void showText();

    flash::FlashControl* m_SWF;
};

} // namespace ui
