#include "flash/InnerMovie.h"

#include "base/TextCodes.h"
#include "flash/stage/Stage.h"

#include <set>

namespace flash
{

namespace
{

/// The host as an inner movie has it. How far the whole movie has come, how it is shown and whether it ends
/// is not the inner one's to say.
class InnerHost final : public stage::HostEvents
{
public:
    explicit InnerHost(stage::Stage& outer) : m_outer(outer), m_host(outer.services().host) {}
    // With the outer movie's requests, between two frames: the host may close the movie, and this may be
    // gone.
    void fsCommand(std::string_view command, std::string_view arguments) override
    {
        m_outer.queue().addRequest([&host = m_host, name = std::string(command),
                                    text = std::string(arguments)] { host.fsCommand(name, text); },
                                   command.size() + arguments.size());
    }
    void openUrl(std::string_view url, std::string_view window) override
    {
        m_outer.queue().addRequest([&host = m_host, address = std::string(url),
                                    target = std::string(window)] { host.openUrl(address, target); },
                                   url.size() + window.size());
    }
    void traceLine(std::string_view utf8) override { m_host.traceLine(utf8); }
    void logLine(std::string_view utf8) override { m_host.logLine(utf8); }
    void cursorVisible(bool visible) override { m_host.cursorVisible(visible); }
    void setClipboardText(std::string_view utf8) override { m_host.setClipboardText(utf8); }
    std::string clipboardText() override { return m_host.clipboardText(); }
    bool abortSlowScript() override { return m_host.abortSlowScript(); }
    bool endsScripts() override { return m_host.endsScripts(); }
    void limitReached(std::string_view what) override { m_host.limitReached(what); }

private:
    stage::Stage& m_outer; ///< may be gone when the inner movie ends
    stage::HostEvents& m_host;
};

/// The sounds of an inner movie: when it goes, those of others play on.
class InnerSound final : public stage::SoundSystem
{
public:
    explicit InnerSound(stage::SoundSystem& outer) : m_outer(outer) {}
    /// Whether stopping everything is what a script wants; a stage that opens or closes means its own.
    void setForAll(bool on) { m_isForAll = on; }
    void ended(stage::SoundId id)
    {
        if (m_started.erase(id) > 0) m_finished.push_back(id);
    }

    void startEvent(const stage::MoviePtr& movie, std::uint16_t id, const swf::Sound& sound,
                    const swf::SoundInfo& info) override
    {
        if (!info.stop) m_events.emplace(movie, id);
        m_outer.startEvent(movie, id, sound, info);
    }
    void streamFrame(stage::SoundOwner owner, const stage::MoviePtr& movie, const swf::Timeline& timeline,
                     std::size_t frame) override
    {
        m_streams.insert(owner);
        m_outer.streamFrame(owner, movie, timeline, frame);
    }
    void stopStream(stage::SoundOwner owner) override
    {
        m_streams.erase(owner);
        m_outer.stopStream(owner);
    }
    void stopAll() override
    {
        if (m_isForAll) return m_outer.stopAll();
        for (const stage::SoundId id : m_started) m_outer.stopSound(id);
        for (const stage::SoundOwner owner : m_streams) m_outer.stopStream(owner);
        for (const auto& [movie, id] : m_events) m_outer.stopSymbol(nullptr, movie, id);
        m_started.clear();
        m_streams.clear();
        m_events.clear();
    }
    stage::SoundId playSound(stage::SoundOwner owner, const stage::MoviePtr& movie, std::uint16_t id,
                             const swf::Sound& sound, const swf::SoundInfo& info) override
    {
        return started(m_outer.playSound(owner, movie, id, sound, info));
    }
    stage::SoundId playFile(stage::SoundOwner owner,
                            const std::shared_ptr<const std::vector<std::uint8_t>>& file,
                            const swf::SoundInfo& info) override
    {
        return started(m_outer.playFile(owner, file, info));
    }
    void stopSound(stage::SoundId id) override { m_outer.stopSound(id); }
    void setSoundTransform(stage::SoundId id, const stage::SoundTransform& transform) override
    {
        m_outer.setSoundTransform(id, transform);
    }
    void stopOwner(stage::SoundOwner owner) override { m_outer.stopOwner(owner); }
    void stopSymbol(stage::SoundOwner owner, const stage::MoviePtr& movie, std::uint16_t id) override
    {
        m_outer.stopSymbol(owner, movie, id);
    }
    double positionMs(stage::SoundId id) override { return m_outer.positionMs(id); }
    double durationMs(const swf::Sound& sound) override { return m_outer.durationMs(sound); }
    double fileDurationMs(base::Bytes mp3) override { return m_outer.fileDurationMs(mp3); }
    std::vector<stage::SoundId> takeFinished() override { return std::exchange(m_finished, {}); }
    stage::SoundTransform transform(stage::SoundOwner owner) override { return m_outer.transform(owner); }
    void setTransform(stage::SoundOwner owner, const stage::SoundTransform& transform) override
    {
        m_outer.setTransform(owner, transform);
    }
    void ownerRemoved(stage::SoundOwner owner) override { m_outer.ownerRemoved(owner); }

private:
    stage::SoundId started(stage::SoundId id)
    {
        if (id != 0) m_started.insert(id);
        return id;
    }
    stage::SoundSystem& m_outer;
    std::set<stage::SoundId> m_started;
    std::set<stage::SoundOwner> m_streams;
    std::set<std::pair<stage::MoviePtr, std::uint16_t>> m_events; ///< that its timelines have begun
    std::vector<stage::SoundId> m_finished;
    bool m_isForAll = false;
};

class InnerMovie final : public avm2::OldMovie
{
public:
    InnerMovie(stage::Stage& outer, avm1::BindingInputs inputs)
        : m_host(outer), m_sound(outer.services().sound), m_script(services(outer), std::move(inputs)),
          m_stage(services(outer), &m_script.events())
    {
        m_script.attach(m_stage);
    }
    ~InnerMovie() override
    {
        m_script.vm().disable();
        m_script.saveSharedObjects();
        m_sound.setForAll(false);
        m_stage.close();
    }
    void open(const stage::MoviePtr& movie, const std::string& url)
    {
        const swf::Rect& frame = movie->header.frameSize;
        m_stage.view().setSize(std::max(1, frame.width() / swf::kTwipsPerPixel),
                               std::max(1, frame.height() / swf::kTwipsPerPixel));
        m_stage.open(movie, url);
        m_sound.setForAll(true);
    }
    stage::Stage& stage() override { return m_stage; }
    avm1::StageBinding& script() { return m_script; }
    void soundEnded(stage::SoundId id) override { m_sound.ended(id); }

private:
    stage::Services services(stage::Stage& outer)
    {
        return {m_sound, outer.services().loader, m_host, outer.services().sharedObjects};
    }
    InnerHost m_host;
    InnerSound m_sound;
    avm1::StageBinding m_script;
    stage::Stage m_stage;
};

} // namespace

std::unique_ptr<avm2::OldMovie> openInnerMovie(stage::Stage& outer, const stage::MoviePtr& movie,
                                               const std::string& url, avm1::BindingInputs inputs,
                                               const std::string& textCode)
{
    constexpr double kMsPerSecond = 1000;
    auto made = std::make_unique<InnerMovie>(outer, std::move(inputs));
    made->stage().linkage().setTextCode(base::TextCode::named(textCode));
    made->script().vm().setLimits(movie->scriptMaxRecursion, movie->scriptTimeoutSeconds * kMsPerSecond);
    made->open(movie, url);
    return made;
}

} // namespace flash
