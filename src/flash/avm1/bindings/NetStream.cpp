#include "flash/avm1/bindings/NetStream.h"

#include "flash/avm1/bindings/AmfValues.h"
#include "flash/guard/Holding.h"

#include <algorithm>
#include <limits>

namespace flash::avm1
{
namespace
{

constexpr double kMsPerSecond = 1000, kSamplesPerMs = 44.1;

} // namespace

NetStream::NetStream(StageBinding& binding, Object& self, int version)
    : m_binding(binding), m_self(&self), m_version(version)
{
}

NetStream::~NetStream() = default;

void NetStream::trace(Tracer& tracer)
{
    tracer(m_self);
    tracer(m_soundTarget);
}

void NetStream::play(const std::string& url, const std::string& baseUrl)
{
    close();
    stage::LoadRequest request;
    request.url = url;
    request.baseUrl = baseUrl;
    m_binding.watchStream(shared_from_this());
    // The object is part of what waits: it stays while its file is on the way.
    auto self = std::make_shared<Root<Object>>(m_binding.vm().heap(), m_self);
    m_binding.stage().loads().fetch(std::move(request),
                                    [stream = shared_from_this(), self,
                                     wanted = m_request](const base::Result<stage::LoadAnswer>& answer) {
                                        if (stream->m_request == wanted) stream->begin(answer);
                                    });
}

void NetStream::begin(const base::Result<stage::LoadAnswer>& answer)
{
    const Vm::VersionScope scope(m_binding.vm(), m_version);
    if (!answer) {
        tellStatus("NetStream.Play.StreamNotFound", "error");
        return;
    }
    auto file = guard::hold(answer->bytes);
    if (!file) {
        tellStatus("NetStream.Play.StreamNotFound", "error");
        return;
    }
    auto opened = video::FlvPlayer::open(std::move(file));
    if (!opened) {
        m_binding.host().log(answer->url + ": " + opened.error().what);
        tellStatus("NetStream.Play.FileStructureInvalid", "error");
        return;
    }
    m_player = std::move(*opened);
    m_ended = false;
    m_followedMs = m_binding.host().timeMs();
    if (!m_paused) startSound();
    // A handler may close the stream.
    const unsigned request = m_request;
    tellStatus("NetStream.Play.Start", "status");
    if (m_request == request) tellStatus("NetStream.Buffer.Full", "status");
    if (m_request == request) tellMessages();
    showPicture();
}

void NetStream::setPaused(bool paused)
{
    if (paused == m_paused) return;
    follow();
    m_paused = paused;
    m_followedMs = m_binding.host().timeMs();
    if (paused)
        stopSound();
    else if (isPlaying())
        startSound();
}

void NetStream::seek(double seconds)
{
    if (!m_player) return;
    if (!m_player->seek(seconds * kMsPerSecond)) {
        tellStatus("NetStream.Seek.InvalidTime", "error");
        return;
    }
    m_ended = false;
    m_followedMs = m_binding.host().timeMs();
    stopSound();
    if (isPlaying()) startSound();
    showPicture();
    tellStatus("NetStream.Seek.Notify", "status");
}

void NetStream::close()
{
    ++m_request;
    stopSound();
    m_player.reset();
    m_shown.reset();
    m_paused = m_ended = false;
    m_binding.unwatchStream(*this);
}

void NetStream::addScreen(const std::shared_ptr<stage::VideoNode>& screen)
{
    removeScreen(*screen);
    m_screens.push_back(screen);
    screen->setPicture(m_shown);
}

void NetStream::removeScreen(const stage::VideoNode& screen)
{
    std::erase_if(m_screens, [&](const std::weak_ptr<stage::VideoNode>& entry) {
        const auto known = entry.lock();
        return !known || known.get() == &screen;
    });
}

void NetStream::setSoundTarget(Object* clip)
{
    m_soundTarget = clip;
    if (m_sound == 0) return;
    stopSound();
    startSound();
}

std::optional<double> NetStream::msToNext() const
{
    if (!isPlaying()) return {};
    const std::optional<double> next = m_player->msToNext();
    return next ? std::max(0.0, m_followedMs + *next - m_binding.host().timeMs()) : 0;
}

void NetStream::follow()
{
    if (!isPlaying()) return;
    const Vm::VersionScope scope(m_binding.vm(), m_version);
    const double now = m_binding.host().timeMs();
    m_player->advance(now - m_followedMs);
    m_followedMs = now;
    showPicture();
    const unsigned request = m_request;
    tellMessages();
    if (m_request == request && m_player && m_player->atEnd()) end();
}

void NetStream::end()
{
    m_ended = true;
    const unsigned request = m_request;
    for (const char* code : {"NetStream.Buffer.Flush", "NetStream.Play.Stop", "NetStream.Buffer.Empty"})
        if (m_request == request) tellStatus(code, "status");
}

void NetStream::showPicture()
{
    if (!m_player) return;
    const auto first = m_screens.empty() ? nullptr : m_screens.front().lock();
    auto picture = m_player->picture(video::deblockingOf(first ? first->deblocking() : 0));
    if (picture == m_shown) return;
    m_shown = std::move(picture);
    for (const auto& entry : m_screens)
        if (const auto screen = entry.lock()) screen->setPicture(m_shown);
}

void NetStream::startSound()
{
    const auto file = m_player->soundFile();
    if (!file) return;
    swf::SoundInfo info;
    constexpr double kLast = std::numeric_limits<std::uint32_t>::max();
    info.inPoint = static_cast<std::uint32_t>(std::min(m_player->timeMs() * kSamplesPerMs, kLast));
    m_sound = m_binding.services().sound.playFile(m_binding.nodeOf(m_soundTarget), file, info);
}

void NetStream::stopSound()
{
    if (m_sound != 0) m_binding.services().sound.stopSound(m_sound);
    m_sound = 0;
}

void NetStream::tellStatus(std::string_view code, std::string_view level)
{
    Vm& vm = m_binding.vm();
    Object* info = vm.newObject();
    info->put(vm, vm.name(std::string_view("code")), Value(vm.string(code)));
    info->put(vm, vm.name(std::string_view("level")), Value(vm.string(level)));
    const Name handler = vm.name(std::string_view("onStatus"));
    const auto hears = [&](Object* object) {
        return object != nullptr && object->get(vm, handler).asObject() != nullptr;
    };
    Object* system = vm.global()->get(vm, vm.name(std::string_view("System"))).asObject();
    if (hears(m_self))
        vm.callMethod(m_self, "onStatus", {Value(info)});
    else if (hears(system))
        vm.callMethod(system, "onStatus", {Value(info)});
    m_binding.stage().queue().run();
}

void NetStream::tellMessages()
{
    Vm& vm = m_binding.vm();
    for (const base::Bytes message : m_player->takeMessages()) {
        net::AmfBytes source(message);
        net::AmfReader reader(source, net::AmfVersion::Amf0);
        AmfValueReader values(vm, reader);
        const auto name = values.value();
        const auto value = name ? values.value() : name;
        if (!value || !name->isString()) continue;
        const unsigned request = m_request;
        vm.callMethod(m_self, StageBinding::toUtf8(toText(vm, *name)), {*value});
        if (m_request != request) return; // closed by the handler, and the messages with it
    }
    m_binding.stage().queue().run();
}

} // namespace flash::avm1
