#pragma once

#include "flash/control/MoviePort.h"
#include "flash/control/MovieRunner.h"

#include <QImage>
#include <QObject>
#include <QTimer>

namespace flash
{
class AudioOutput;
}

namespace flash::control
{

/// A movie in this process: for systems that cannot confine one, and for pages and tests.
class LocalMovie : public QObject, public MoviePort, private MovieOutput
{
public:
    /// @param listener borrowed
    explicit LocalMovie(MovieListener& listener);
    ~LocalMovie() override;

    Loading load(const Load& load, int patienceMs) override;
    void command(const ToMovie& message) override;
    void pass(const ToMovie& message) override { command(message); }
    std::optional<std::string> variable(const std::string& name) override;
    std::vector<MenuEntry> menu(const OpenMenu& open) override;
    void advance(double ms) override { command(Advance{ms}); }
    [[nodiscard]] const State& state() const override { return m_runner.state(); }
    [[nodiscard]] bool isBusy() const override { return m_runner.isBusy(); }
    [[nodiscard]] qint64 busyForMs() const override { return m_runner.busyForMs(); }
    void setView(int width, int height, double deviceScale) override;
    void paint(QPainter& painter, const QRegion& region, double deviceScale) override;
    void releaseSound() override;
    void interrupt() override { m_runner.interrupt(); }

private:
    void say(FromMovie message) override;
    bool showsFrame(int) override { return true; } // state() is the runner's
    Answer ask(Ask::What what) override { return m_listener.asked(what); }
    bool endsScripts() override { return m_listener.endsScripts(); }

    void tick();
    void finish();
    void refresh();

    MovieListener& m_listener;
    MovieRunner m_runner;
    std::unique_ptr<AudioOutput> m_audio;
    QTimer m_timer;
    QElapsedTimer m_sinceSound;
    QImage m_image; // device pixels
    QRect m_unpainted;
    std::optional<View> m_wantedView; // came while scripts ran
    Loaded m_loaded;
    Value m_value;
    Menu m_menu;
};

} // namespace flash::control
