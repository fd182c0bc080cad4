#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Sounds.h"
#include "flash/avm2/classes/ByteArray.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

// What sounds are made of: given to scripts, and taken from them.
namespace flash::avm2
{

using classes::selfAs;
using Kind = NativeMember::Kind;

namespace
{

constexpr double kMixRate = 44100;

SoundObject& self(Call& call) { return selfAs<SoundObject>(call, "flash.media.Sound"); }
classes::ByteArrayObject& bytesArg(Call& call, std::uint32_t i, std::string_view parameter)
{
    auto* bytes = as<classes::ByteArrayObject>(Value(objectArg(call, i, "flash.utils::ByteArray")));
    if (bytes == nullptr) throwNullParameter(call.vm, parameter);
    return *bytes;
}
void refuseSecond(Vm& vm, const SoundObject& sound)
{
    if (!sound.isEmpty())
        vm.throwError(ErrorClass::Io, 2037,
                      "Functions called in incorrect sequence, or earlier call was unsuccessful.");
}

/// What reads a sound from its beginning; none for what cannot be read.
SoundReader readerOf(Vm& vm, const SoundObject& sound)
{
    if (sound.samples == nullptr) {
        const auto& open = Player::of(vm).inputs().readSound;
        return open ? open(sound.movie, sound.symbolSound(), sound.file) : SoundReader();
    }
    return [samples = sound.samples, at = std::size_t{0}](
               std::optional<std::uint64_t> from, std::span<std::array<std::int16_t, 2>> out) mutable {
        if (from) at = static_cast<std::size_t>(std::min<std::uint64_t>(*from, samples->size()));
        const std::size_t count = std::min(out.size(), samples->size() - at);
        std::copy_n(samples->begin() + static_cast<std::ptrdiff_t>(at), count, out.begin());
        at += count;
        return count;
    };
}

void putFloat(std::vector<std::uint8_t>& bytes, float value, bool isLittle)
{
    const auto bits = std::bit_cast<std::uint32_t>(value);
    for (std::size_t i = 0; i < sizeof bits; ++i) {
        const std::size_t shift = 8 * (isLittle ? i : sizeof bits - 1 - i);
        bytes.push_back(static_cast<std::uint8_t>(bits >> shift));
    }
}

/// Two numbers for each moment, at the rate of the player.
Value extract(Call& call)
{
    Vm& vm = call.vm;
    auto& target = bytesArg(call, 0, "target");
    double wanted = vm.toNumber(call.arg(1));
    const double start = call.has(2) ? vm.toNumber(call.arg(2)) : -1;
    auto& sound = self(call);
    if (sound.isEmpty() || sound.isLoading) return 0;
    const bool isFirst = !sound.reader;
    if (isFirst) sound.reader = readerOf(vm, sound);
    if (!sound.reader || !(wanted > 0)) return 0;
    constexpr double kMaxFrames = 1e9;
    wanted = std::min(std::trunc(wanted), kMaxFrames);
    std::optional<std::uint64_t> from;
    if (start >= 0) from = static_cast<std::uint64_t>(std::min(start, kMaxFrames));
    constexpr std::size_t kPortion = 4096;
    constexpr float kFull = 32768;
    std::array<std::array<std::int16_t, 2>, kPortion> frames;
    std::vector<std::uint8_t> bytes;
    double given = 0;
    while (given < wanted) {
        const auto count = std::min<std::size_t>(kPortion, static_cast<std::size_t>(wanted - given));
        const std::size_t got = sound.reader(from, std::span(frames).first(count));
        from.reset();
        bytes.clear();
        for (std::size_t i = 0; i < got; ++i) {
            for (const std::int16_t side : frames[i])
                putFloat(bytes, static_cast<float>(side) / kFull, target.isLittle);
        }
        target.write(vm, bytes);
        given += static_cast<double>(got);
        if (got < count) break;
        vm.check();
    }
    return given;
}

Value loadCompressed(Call& call)
{
    auto& bytes = bytesArg(call, 0, "bytes");
    const std::uint32_t count = call.vm.toUint(call.arg(1));
    auto& sound = self(call);
    refuseSecond(call.vm, sound);
    const auto taken = bytes.read(call.vm, count);
    sound.file = std::make_shared<const std::vector<std::uint8_t>>(taken.begin(), taken.end());
    return {};
}

/// One number of what a script gives; it counts from -1 to 1.
double sampleAt(std::span<const std::uint8_t> bytes, bool isFloat, bool isLittle)
{
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const std::size_t shift = 8 * (isLittle ? i : bytes.size() - 1 - i);
        bits |= static_cast<std::uint32_t>(bytes[i]) << shift;
    }
    if (isFloat) return std::bit_cast<float>(bits);
    return static_cast<std::int16_t>(bits) / 32768.0;
}

Value loadPcm(Call& call)
{
    Vm& vm = call.vm;
    auto& bytes = bytesArg(call, 0, "bytes");
    const std::uint32_t count = vm.toUint(call.arg(1));
    const std::u16string format = call.has(2) ? textArg(call, 2, "format") : u"float";
    const bool isStereo = !call.has(3) || vm.toBoolean(call.arg(3));
    const double rate = call.has(4) ? vm.toNumber(call.arg(4)) : kMixRate;
    auto& sound = self(call);
    if (format != u"float" && format != u"short") throwNotAccepted(vm, "format");
    constexpr double kRates[] = {44100, 22050, 11025, 5512.5, 5512};
    if (std::ranges::find(kRates, rate) == std::end(kRates)) throwNotAccepted(vm, "sampleRate");
    refuseSecond(vm, sound);
    const bool isFloat = format == u"float";
    const std::size_t size = isFloat ? sizeof(float) : sizeof(std::int16_t);
    const std::size_t frameBytes = size * (isStereo ? 2 : 1);
    constexpr std::size_t kMaxFrames = std::size_t{1} << 24U;
    // As many as are asked for must be there.
    const auto given = bytes.read(vm, std::size_t{count} * frameBytes);
    const double step = rate / kMixRate;
    const auto length = static_cast<std::size_t>(std::min(std::floor(count / step), double{kMaxFrames}));
    const auto at = [&](std::size_t frame, std::size_t side) {
        const std::size_t from =
            std::min<std::size_t>(frame, count - 1) * frameBytes + (isStereo ? side * size : 0);
        const double value = sampleAt(given.subspan(from, size), isFloat, bytes.isLittle);
        return std::isnan(value) ? 0 : std::clamp(value, -1.0, 1.0);
    };
    auto samples = std::make_shared<SoundObject::Samples>(length);
    constexpr double kFull = 32767;
    for (std::size_t i = 0; i < length; ++i) {
        const double place = static_cast<double>(i) * step;
        const auto before = static_cast<std::size_t>(place);
        const double share = place - static_cast<double>(before);
        for (std::size_t side = 0; side < 2; ++side) {
            const double value =
                at(before, side) * (1 - share) + (share > 0 ? at(before + 1, side) * share : 0);
            (*samples)[i][side] = static_cast<std::int16_t>(std::lrint(value * kFull));
        }
    }
    sound.samples = std::move(samples);
    return {};
}

constexpr NativeMember kMembers[] = {
    {"extract", Kind::Method, &extract, 2, 3, nullptr, "Number"},
    {"loadCompressedDataFromByteArray", Kind::Method, &loadCompressed, 2, 2, nullptr, "void"},
    {"loadPCMFromByteArray", Kind::Method, &loadPcm, 2, 5, nullptr, "void"},
};

} // namespace

std::span<const NativeMember> soundSampleMembers() { return kMembers; }

} // namespace flash::avm2
