#pragma once

#include "flash/stage/Node.h"
#include "flash/stage/Services.h"
#include "flash/stage/Stage.h"

#include <functional>
#include <memory>
#include <string>

// Movies of ActionScript 1 and 2 that one of ActionScript 3 has loaded. Each lives in a world of its own,
// with its levels, its scripts and its clock, and is drawn as one object of the list of whoever loaded it.
namespace flash::avm2
{

class OldMovie
{
public:
    virtual ~OldMovie() = default;
    [[nodiscard]] virtual stage::Stage& stage() = 0;
    /// A sound that is none of the outer movie's has played to its end.
    virtual void soundEnded(stage::SoundId id) = 0;
};
/// @param outer what the movie tells and asks goes there, and requests to the host are that stage's
using OpenOldMovie = std::function<std::unique_ptr<OldMovie>(stage::Stage& outer, const stage::MoviePtr&,
                                                             const std::string& url)>;

/// Shows an old movie. Its stage's twips are the node's.
class OldMovieNode final : public stage::Node
{
public:
    OldMovieNode(stage::Stage& outer, std::unique_ptr<OldMovie> movie);
    /// A frame of the outer movie.
    void advance(double frameRate);
    void soundEnded(stage::SoundId id);
    /// It plays and shows nothing any more.
    void end();

    // ---- input, as the outer stage has it ----
    void movePointer(swf::Point stagePoint);
    void pressPointer(swf::Point stagePoint, stage::MouseButton button, int clicks);
    void releasePointer(swf::Point stagePoint, stage::MouseButton button);
    void turnWheel(int lines);
    void pressKey(int keyCode, char32_t charCode);
    void releaseKey(int keyCode, char32_t charCode);
    std::vector<stage::MenuItem> openMenu(swf::Point stagePoint);
    void chooseMenuItem(std::size_t item);

    [[nodiscard]] swf::Rect bounds(Extent extent = Extent::WithStrokes) override;
    [[nodiscard]] bool hitsShape(swf::Point stagePoint) override;
    void draw(render::Canvas& canvas, const swf::Matrix& toDevice, const swf::ColorTransform& color) override;
    [[nodiscard]] bool isExchangeable() const override { return false; }

private:
    /// Device pixels of the inner stage, which shows a movie at its own size.
    [[nodiscard]] swf::Point toInner(swf::Point stagePoint) const;
    template <class Work>
    void act(Work&& work);
    void noteChanges();

    std::unique_ptr<OldMovie> m_movie; ///< null once it has ended
    std::size_t m_instances = 0;       ///< at the last look
    bool m_isActing = false, m_ends = false;
};

} // namespace flash::avm2
