#pragma once

#include "base/Failure.h"

#include <QString>

namespace media
{

/// What loading a movie asks of the main window. The player implements it.
class MediaHost
{
public:
    virtual ~MediaHost() = default;

    /// Shows a word on what the player is doing.
    virtual void SetStatus(const QString& text) = 0;
    virtual void setUpdateTimerEnabled(bool enabled) = 0;
    [[nodiscard]] virtual bool isFullScreen() const = 0;
    virtual void ZoomFlash(int percent, quint8 repeats) = 0;

    /// Hands a movie to the Flash control.
    /// @throws base::Failure with number 339 when there is no control
    virtual void LoadMovie(int layer, const QString& url) = 0;
    /// @param colour "RRGGBB"; empty: the movie's own
    virtual void setBackground(const QString& colour) = 0;

    virtual void setMediaInfoEnabled(bool enabled) = 0;
    /// Gives the volume and mute state in force to the movie just loaded.
    virtual void reapplySound() = 0;
    virtual void SetCaption(const QString& caption) = 0;
    virtual void setCompressCaption(const QString& caption) = 0;
    virtual void setMediaTitle(const QString& title) = 0;
    virtual void AddRecent(const QString& path) = 0;
    /// How much of a long work is done, 0 to 1. @returns false when the user wants it ended
    virtual bool progress(double) { return true; }
    /// Runs the view's statement for a changed movie.
    virtual void onMediaChange() = 0;

    /// Comes before CloseMedia() when that has a reason: which file it is about.
    virtual void setFailedFile(const QString&) {}
    /// Shows the welcome page, with the reason when a movie could not be loaded.
    virtual void CloseMedia(const QString& message) = 0;
    virtual void ReportError(const base::Failure& error, const QString& place, const QString& detail) = 0;
};

/// For code that runs without a window.
class NoMediaHost : public MediaHost
{
public:
    void SetStatus(const QString&) override {}
    void setUpdateTimerEnabled(bool) override {}
    [[nodiscard]] bool isFullScreen() const override { return false; }
    void ZoomFlash(int, quint8) override {}
    void LoadMovie(int, const QString&) override {}
    void setBackground(const QString&) override {}
    void setMediaInfoEnabled(bool) override {}
    void reapplySound() override {}
    void SetCaption(const QString&) override {}
    void setCompressCaption(const QString&) override {}
    void setMediaTitle(const QString&) override {}
    void AddRecent(const QString&) override {}
    void onMediaChange() override {}
    void CloseMedia(const QString&) override {}
    void ReportError(const base::Failure&, const QString&, const QString&) override {}
};

} // namespace media
