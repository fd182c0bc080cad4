#include "flash/avm2/bindings/NetStreams.h"

#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/classes/ByteArray.h"
#include "flash/guard/Holding.h"

#include <algorithm>
#include <array>
#include <cmath>

// Streams whose bytes a script makes or fetches by itself: appendBytes, and what is seen of any stream.
namespace flash::avm2
{

namespace
{

constexpr std::size_t kMostFedBytes = std::size_t{256} << 20U;
constexpr double kSoonMs = 500; // before the end of what is known, more is looked at
constexpr std::array<std::uint8_t, 13> kFileHead = {'F', 'L', 'V', 1, 5, 0, 0, 0, 9, 0, 0, 0, 0};

NetStreamObject& self(Call& call) { return classes::selfAs<NetStreamObject>(call, "flash.net.NetStream"); }

void requireFeeding(Call& call, const NetStreamObject& stream)
{
    if (!stream.isFed)
        call.vm.throwError(ErrorClass::Error, 2154,
                           "The NetStream Object is invalid. This may be due to a failed NetConnection.");
}

} // namespace

Value appendBytes(Call& call)
{
    auto& stream = self(call);
    auto* bytes = as<classes::ByteArrayObject>(call.arg(0));
    if (bytes == nullptr) throwNullParameter(call.vm, "bytes");
    requireFeeding(call, stream);
    // All that it holds, wherever its position is.
    if (bytes->content.size() > kMostFedBytes - std::min(stream.fed.size(), kMostFedBytes)) {
        Player::of(call.vm).log("NetStream.appendBytes: more than is taken");
        return {};
    }
    stream.fed.insert(stream.fed.end(), bytes->content.begin(), bytes->content.end());
    stream.hasNews = stream.hasNews || !bytes->content.empty();
    if (stream.hasNews) Player::of(call.vm).watchStream(stream);
    return {};
}

Value appendBytesAction(Call& call)
{
    auto& stream = self(call);
    const std::u16string action = textArg(call, 0, "netStreamAppendBytesAction");
    requireFeeding(call, stream);
    if (action == u"endSequence") {
        stream.feedEnds = true;
        stream.hasNews = true;
        return {};
    }
    if (action != u"resetBegin" && action != u"resetSeek")
        throwNotAccepted(call.vm, "netStreamAppendBytesAction");
    stream.stopSound(call.vm);
    stream.player.reset();
    ++stream.turn; // nothing that is being told goes on
    stream.hasEnded = stream.feedEnds = stream.hasNews = false;
    // After a seek come tags without the file's head.
    stream.startsAtTag = action == u"resetSeek";
    if (stream.startsAtTag)
        stream.fed.assign(kFileHead.begin(), kFileHead.end());
    else
        stream.fed.clear();
    return {};
}

void NetStreamObject::takeFed(Vm& vm)
{
    if (!hasNews) return;
    // Not at every piece that comes: the rest of what is known is played first.
    if (player && !feedEnds && player->endMs() - player->timeMs() > kSoonMs) return;
    hasNews = false;
    auto held = guard::hold(fed);
    if (!held) return;
    auto opened = video::FlvPlayer::open(held);
    if (!opened) return; // the head has not come as a whole, or is none
    video::FlvPlayer& next = **opened;
    const bool isFirst = player == nullptr;
    const auto& file = next.file();
    if (isFirst && file.video.empty() && file.sound.empty() && file.scripts.empty()) return;
    if (!isFirst) {
        const double now = player->timeMs();
        if (next.seek(now) && next.timeMs() < now) next.advance(now - next.timeMs());
        next.takeMessages(); // they were told of
    } else if (startsAtTag) {
        double first = next.endMs();
        for (const auto& video : file.video) first = std::min(first, video.timeMs);
        for (const auto& sound : file.sound) first = std::min(first, sound.timeMs);
        for (const auto& script : file.scripts) first = std::min(first, script.timeMs);
        next.seek(std::max(first - 1, 0.0)); // what is due at that very time is still to be told
    }
    // A picture that shows stays until the next one is there.
    player = std::move(*opened);
    hasEnded = false;
    openedMs = vm.host().timeMs();
    if (isFirst) followedMs = vm.host().timeMs();
    // What sounds goes on by itself, unless it has come to the end before.
    if (sound == 0 || !soundGrowth || !soundGrowth->offer(std::move(held))) {
        stopSound(vm);
        if (!isPaused) startSound(vm);
    }
    if (!isFirst) return;
    const std::uint32_t before = turn;
    tellStream(vm, *this, "NetStream.Play.Start", "status");
    if (turn == before) tellStream(vm, *this, "NetStream.Buffer.Full", "status");
}

// ---- what is seen of any stream ----

/// Pictures further on, or back, while it is paused.
Value stepStream(Call& call)
{
    auto& stream = self(call);
    const std::int32_t pictures = call.vm.toInt(call.arg(0));
    if (!stream.player || !stream.isPaused) return {};
    if (!stream.player->step(pictures)) return {};
    stream.showPicture();
    tellStream(call.vm, stream, "NetStream.Step.Notify", "status");
    return {};
}

// By the numbers that the file format gives them.
Value streamVideoCodec(Call& call)
{
    const auto& stream = self(call);
    if (!stream.player || stream.player->file().video.empty()) return 0;
    return static_cast<int>(stream.player->file().video.front().codec);
}
Value streamAudioCodec(Call& call)
{
    const auto& stream = self(call);
    if (!stream.player || stream.player->file().sound.empty()) return 0;
    return static_cast<int>(stream.player->file().sound.front().codec);
}
Value streamDecodedFrames(Call& call)
{
    auto& stream = self(call);
    stream.follow(call.vm);
    return stream.player ? static_cast<double>(stream.player->duePictures()) : 0.0;
}

} // namespace flash::avm2
