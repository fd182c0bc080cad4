#pragma once

#include <QString>

// media/: identifying, checking and loading movies, converting them between their plain and compressed forms,
// and taking a movie out of a projector. Nothing here draws or knows a widget; the window is asked through
// MediaHost.

namespace media
{

/// The movie that is loaded. Replaced as a whole when a file has been identified.
struct MediaInfo {
    bool Converted = false;  ///< the file given was a projector and the movie was extracted from it
    bool Compressed = false; ///< compressed, and of version 6 or later
    QString Signature;       ///< "FWS", "CWS" or "ZWS"
    quint8 Version = 0;
    quint32 FileLength = 0; ///< bytes, uncompressed, as the header states it
    qint32 Width = 0;       ///< pixels
    qint32 Height = 0;      ///< pixels
    float FrameRate = 0;    ///< frames a second, integer part only
    qint32 FrameCount = 0;
    QString BgColor;         ///< "RRGGBB" in upper case, read from wherever the first tag keeps its bytes
    bool HasBgColor = false; ///< the first tag is that of the background colour
    qint64 FileSize = 0;     ///< bytes on disk of the file given
    QString MoviePath;       ///< what the control plays: the file given or the one extracted
    QString OriginalPath;    ///< the file given
    QString HeaderPath;      ///< where the frame data were read: MoviePath or the header copy in the cache

    /// The colour to show the movie on, empty when only the movie itself knows it.
    [[nodiscard]] QString ground() const { return HasBgColor ? BgColor : QString(); }
};

} // namespace media
