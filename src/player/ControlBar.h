#pragma once

#include <QWidget>

namespace player
{

class GlyphButton;

/// The bar below the movie while no skin draws one: buttons, the status word, the information line and how
/// far the movie has come.
class ControlBar : public QWidget
{
    Q_OBJECT
public:
    static constexpr int kHeight = 40;

    explicit ControlBar(QWidget* parent);
    /// Takes its texts anew.
    void translate();

    struct Shown {
        QString status;
        QString information;
        bool hasMovie = false;
        bool playing = false;
        bool muted = false;
        int frame = 0;
        int totalFrames = 0;
        bool operator==(const Shown&) const = default;
    };
    void show(const Shown& shown);

signals:
    void openClicked();
    void playPauseClicked();
    void stopClicked();
    void backClicked();
    void forwardClicked();
    void muteClicked();
    void fullScreenClicked();
    void timeClicked();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* event) override;

private:
    [[nodiscard]] QRect informationRect() const;
    [[nodiscard]] QRect textRect() const;
    void placeButtons();

    GlyphButton* m_open;
    GlyphButton* m_playPause;
    GlyphButton* m_stop;
    GlyphButton* m_back;
    GlyphButton* m_forward;
    GlyphButton* m_mute;
    GlyphButton* m_fullScreen;
    Shown m_shown;
};

} // namespace player
