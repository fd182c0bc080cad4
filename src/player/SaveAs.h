#pragma once

#include "media/MediaInfo.h"

#include <string>

namespace player
{

/// What the save dialog offers for the movie that is loaded: its description and pattern.
QString saveFilter(const media::MediaInfo& info);

enum class SaveOutcome { Saved, CannotConvert, CannotWrite };
struct SaveResult {
    SaveOutcome outcome = SaveOutcome::Saved;
    std::string what; ///< for the log, when it was not saved
    QString reason{}; ///< for the user
};

/// Saves the movie as a plain one, whatever its form: a projector's movie without the projector, a compressed
/// one inflated, a plain one byte for byte. A target that exists is replaced whole or not at all, the loaded
/// file itself included; what a link leads to is replaced, not the link.
SaveResult saveMovie(const media::MediaInfo& info, const QString& target);

/// The diagnostic text of a movie that cannot be saved, one value a line.
QString saveDiagnosis(const media::MediaInfo& info, const QString& filter);

} // namespace player
