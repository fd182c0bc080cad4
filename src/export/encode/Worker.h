#pragma once

#include "base/Result.h"
#include "export/Settings.h"

#include <cstdint>

class QImage;

namespace exporter
{

/// Who hears how the work goes on.
class Progress
{
public:
    virtual ~Progress() = default;
    /// The movie is open: what fails from now on is not its fault.
    virtual void opened() {}
    /// @param pictures so far @param expected as far as can be told: it may end earlier
    virtual void advanced(std::int64_t /*pictures*/, std::int64_t /*expected*/) {}
    /// The last one written. Called for each.
    virtual void shown(const QImage& /*picture*/) {}
};

/// What was written.
struct Written {
    std::int64_t pictures = 0;
    double ms = 0;
    bool isCutShort = false;  ///< it would have gone on after kLongestMs
    std::string endedBecause; ///< the movie was closed before its time; empty otherwise
};

/// Plays a movie and writes it as a film, all in this process; the progress is told in this thread.
/// @param descriptor of the file, open for reading and writing, at its start
/// @param folder     instead of it, for pictures one by one: exists and is empty
/// @errors those of flash::Film::open(); Unsupported when the machine's FFmpeg lacks an encoder; IoFailure
base::Result<Written> writeFilm(const Settings& settings, int descriptor, Progress& progress);
base::Result<Written> writePictures(const Settings& settings, const std::filesystem::path& folder,
                                    Progress& progress);
/// The one picture at settings.fromMs.
base::Result<Written> writePicture(const Settings& settings, int descriptor, Progress& progress);

/// Opens whatever libraries the encoders bring, before files are out of reach.
void prepareEncoders();

} // namespace exporter
