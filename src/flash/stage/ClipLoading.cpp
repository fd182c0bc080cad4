#include "flash/stage/Clip.h"
#include "flash/stage/Drawing.h"
#include "flash/stage/Stage.h"

#include <algorithm>

// A clip as the place of a loaded movie or picture, and how large what it holds is.
namespace flash::stage
{

double Clip::bytesTotal() const
{
    switch (m_content) {
    case Content::Made:
    case Content::Unloaded: return 0;
    case Content::Picture: return static_cast<double>(m_fileBytes);
    case Content::Missing: return -1;
    case Content::Timeline: break;
    }
    if (m_movieRoot && m_movie) {
        // Movies of the time before version 9 count as they are when unpacked.
        const bool packed = m_movie->header.version >= 9 && m_movie->fileLength > 0;
        return static_cast<double>(packed ? m_movie->fileLength : m_movie->bytes.size());
    }
    return m_timeline->frames.empty() ? 0 : static_cast<double>(m_timeline->frames.back().endOffset);
}
double Clip::bytesLoaded() const { return std::max(0.0, bytesTotal()); }

void Clip::becomeLevel(int number)
{
    m_level = number;
    m_depth = kTimelineDepth + number;
}

void Clip::becomeMovieRoot(std::string url)
{
    m_movieRoot = true;
    m_url = std::move(url);
}

void Clip::load(MoviePtr movie, std::string url)
{
    // What was here hears of its end before its variables go.
    if (hasClipEvent(Event::Unload) || m_stage.script().hasHandler(*this, Event::Unload))
        m_stage.queue().runEvent(*this, Event::Unload);
    invalidate();
    removeAllChildren();
    stopStream();
    m_drawing.reset();
    forgetBounds();
    if (!m_clipActionsMovie) m_clipActionsMovie = m_movie;
    if (movie) {
        m_stage.linkage().linkImports(*movie, url);
        m_timeline = std::shared_ptr<const swf::Timeline>(movie, &movie->timeline);
        m_movie = std::move(movie);
    } else {
        m_timeline = m_stage.displayList().emptyTimeline();
    }
    becomeMovieRoot(std::move(url));
    m_frame = -1;
    m_playing = true;
    m_begun = false;
    m_content = Content::Timeline;
    m_stage.script().clipReset(*this);
    // A loaded movie takes its turn as one that has just come.
    m_stage.displayList().enlistAnew(*this);
}

void Clip::showContent(Content content, std::size_t fileBytes)
{
    m_content = content;
    m_fileBytes = fileBytes;
    m_begun = true;
    m_frame = 0;
}

void Clip::unload()
{
    load(nullptr, parentClip() ? parentClip()->m_url : m_url);
    if (const Clip* parent = parentClip()) m_movie = parent->m_movie;
    showContent(Content::Unloaded);
}

} // namespace flash::stage
