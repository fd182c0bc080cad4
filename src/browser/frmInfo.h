#pragma once

#include "browser/BrowserHost.h"
#include "browser/Thumbnails.h"
#include "core/Application.h"
#include "media/MediaInfo.h"

class QLabel;

namespace browser
{

/// Shows what is known about the movie that is open, with its thumbnail, which is made when it is missing.
class frmInfo : public QDialog
{
    Q_OBJECT
public:
    /// The texts are those of now; the thumbnail comes when the window is first shown.
    frmInfo(BrowserHost& host, core::Application& application, Thumbnails& thumbnails,
            const media::MediaInfo& info);

    void setVisible(bool visible) override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void fillTexts(const media::MediaInfo& info, const QString& playTime);
    void showThumbnail();
    void PIC_DblClick();
    void lblFileName_DblClick();

    Thumbnails& m_thumbnails;
    const QString m_path, m_thumbnail;
    QLabel* m_pic;
    QLabel* m_noPicture;
    QLabel* m_lblName;
    QLabel* m_lblFileName;
    QLabel* m_lblVersion;
    QLabel* m_lblTime;
    QLabel* m_lblSize;
    QLabel* m_lblNote;
    QLabel* m_lblMetrix;
    bool m_loaded = false;
};

} // namespace browser
