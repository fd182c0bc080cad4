#pragma once

#include <QObject>
#include <QTimer>

#include <functional>
#include <optional>

namespace flash
{
class FlashControl;
}

namespace player
{

class Menus;

/// Moving about in a movie: to a tenth of it, at another speed, a section over and over. Tells on screen what
/// came of it.
class Transport : public QObject
{
    Q_OBJECT
public:
    static constexpr int kSpeeds[] = {25, 50, 75, 100, 125, 150, 200, 400}; ///< percent

    struct Callbacks {
        std::function<void(const QString& text)> note;
        /// A number of frames as minutes and seconds.
        std::function<QString(int frames)> time;
    };
    /// Both outlive this object.
    Transport(flash::FlashControl& control, Menus& menus, Callbacks callbacks);

    /// To the first frame of a tenth, 0 to 9; the movie goes on if it played.
    void goToTenth(int tenth);
    void goTo(int frame);
    /// @param percent one of kSpeeds
    void setSpeed(int percent);
    void changeSpeed(int direction);
    /// First call: where the section begins; second: where it ends, and it is repeated; third: no more.
    void markSection();
    /// What held for the movie before holds no more, but for the speed.
    void movieOpened();
    /// Tells where the movie is.
    void tellPlace();

private:
    void showSection();
    void follow();

    flash::FlashControl& m_control;
    Menus& m_menus;
    const Callbacks m_callbacks;
    int m_speed = 100;
    std::optional<int> m_first, m_last; ///< frames of the section
    QTimer m_look;
};

} // namespace player
