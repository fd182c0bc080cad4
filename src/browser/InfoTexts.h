#pragma once

#include "media/MediaInfo.h"

#include <QString>

namespace browser
{

/// What the information window says about a movie. An empty optional line keeps the label's own caption.
struct InfoTexts {
    enum class Found { Gone, TooShort, Movie } found = Found::Gone;
    QString name, path;
    // For a movie only.
    QString version, time, size, note, metrix;
};

/// @param playTime of the whole movie, as text
InfoTexts describeMovie(const media::MediaInfo& info, const QString& playTime);

} // namespace browser
