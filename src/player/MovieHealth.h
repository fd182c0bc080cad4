#pragma once

#include <QElapsedTimer>
#include <QHash>
#include <QObject>
#include <QString>

#include <functional>

class QFrame;

namespace flash
{
class FlashControl;
}

namespace player
{

/// What the user hears of a movie whose process fails: one that does not answer gets a notice over its
/// picture, one that has ended is closed with a word, and one that ends again and again is not opened
/// unasked.
class MovieHealth : public QObject
{
    Q_OBJECT
public:
    /// How the player does what is decided here.
    struct Callbacks {
        std::function<void(const QString& message)> close;
        std::function<void(const QString& line)> log;
        std::function<bool(const QString& path)> isToOpenAgain; ///< asks the user
    };
    /// @param control outlives this
    MovieHealth(flash::FlashControl& control, Callbacks callbacks);

    /// @returns false when the movie has ended twice within a minute and the user does not want it again.
    [[nodiscard]] bool mayOpen(const QString& path);
    void noteEnd(const QString& path);

    static constexpr qint64 kForgivenMs = 60'000; ///< an end is forgotten after so long
    static constexpr int kMaxEnds = 2;

private:
    void showNotice(bool frozen);
    void closeFrozen();

    flash::FlashControl& m_control;
    Callbacks m_callbacks;
    QFrame* m_notice = nullptr; // owned by the control's parent
    QElapsedTimer m_clock;
    QHash<QString, QList<qint64>> m_ends; // by path, times of m_clock
};

} // namespace player
