#include "flash/AudioOutput.h"

#include "flash/ServerOutput.h"
#include "flash/sound/Mixer.h"

#include <QAudioDevice>
#include <QAudioSink>
#include <QCoreApplication>
#include <QMediaDevices>

#include <algorithm>
#include <utility>

namespace flash
{

namespace
{

constexpr double kSilenceBeforeClosingMs = 3000;
constexpr double kFirstRetryMs = 1000, kLongestRetryMs = 10000;
// An open device reads some ten times a second. One that has not for so long hangs; a pause of this process
// counts for little, whatever the clock says.
constexpr double kStalledMs = 1500, kMaxCountedMs = 250;
// A device that hangs still fills its buffer when it is opened.
constexpr double kSteadyMs = 800;
// Long enough to bridge a slow frame, short enough for a click to sound with its button.
constexpr int kBufferMs = 90;

QAudioFormat mixFormat()
{
    QAudioFormat format;
    format.setSampleRate(sound::kMixRate);
    format.setChannelCount(2);
    format.setSampleFormat(QAudioFormat::Int16);
    return format;
}

OpenOutput g_standIn;

class SinkDevice : public OutputDevice
{
public:
    SinkDevice(const QAudioDevice& device, QIODevice& from) : m_sink(device, mixFormat())
    {
        m_sink.setBufferSize(mixFormat().bytesForDuration(kBufferMs * 1000));
        m_sink.start(&from);
    }
    [[nodiscard]] bool hasStarted() const { return m_sink.error() == QAudio::NoError; }
    [[nodiscard]] bool isLost() const override { return m_sink.state() == QAudio::StoppedState; }

private:
    QAudioSink m_sink;
};

} // namespace

void setStandInOutput(OpenOutput standIn) { g_standIn = std::move(standIn); }

namespace
{

std::unique_ptr<OutputDevice> openSink(QIODevice& from)
{
    const QAudioDevice device = QMediaDevices::defaultAudioOutput();
    if (device.isNull() || !device.isFormatSupported(mixFormat())) return nullptr;
    auto sink = std::make_unique<SinkDevice>(device, from);
    return sink->hasStarted() ? std::move(sink) : nullptr;
}

} // namespace

std::unique_ptr<OutputDevice> openDefaultOutput(QIODevice& from)
{
    if (g_standIn) return g_standIn(from);
    if (auto sink = openSink(from)) return sink;
    // Qt gives up on a PulseAudio server that has stayed away for some seconds.
    static ServerOutput server(pulseStreams(QCoreApplication::applicationName().toStdString()));
    return server.open(from);
}

AudioOutput::AudioOutput(std::unique_ptr<SoundSource> source, OpenOutput open)
    : m_source(std::move(source)), m_open(std::move(open))
{
    // As much as the device asks for and no more: what a buffer between took ahead is not there yet, and
    // would come out as silence.
    QIODevice::open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}
AudioOutput::~AudioOutput() { release(); }

void AudioOutput::follow(double elapsedMs)
{
    const bool silent = m_source->isSilent();
    m_silentMs = silent ? m_silentMs + elapsedMs : 0;
    if (m_device) {
        const bool isGone = isDeviceLost(elapsedMs);
        if (!isGone && m_silentMs < kSilenceBeforeClosingMs) return;
        m_device.reset();
        m_msToRetry = 0;
        if (!isGone) return;
        retryLater();
        if (!std::exchange(m_isLost, true)) emit lost();
        return;
    }
    m_msToRetry -= elapsedMs;
    if (!silent && m_msToRetry <= 0) openDevice();
}

bool AudioOutput::isDeviceLost(double elapsedMs)
{
    m_stalledMs = m_framesFed != m_framesSeen ? 0 : m_stalledMs + std::min(elapsedMs, kMaxCountedMs);
    m_framesSeen = m_framesFed;
    if (fedMs() > kSteadyMs) {
        m_retryMs = 0;
        if (std::exchange(m_isLost, false)) emit foundAgain();
    }
    return m_device->isLost() || m_stalledMs > kStalledMs;
}

void AudioOutput::openDevice()
{
    m_framesFed = m_framesSeen = 0;
    m_stalledMs = 0;
    m_device = m_open(*this);
    if (m_device) return;
    retryLater();
}

void AudioOutput::retryLater()
{
    m_msToRetry = m_retryMs = std::clamp(2 * m_retryMs, kFirstRetryMs, kLongestRetryMs);
    watchForDevices();
}

/// Whoever plugs a device in hears it at once.
void AudioOutput::watchForDevices()
{
    if (m_devices) return;
    m_devices = std::make_unique<QMediaDevices>();
    connect(m_devices.get(), &QMediaDevices::audioOutputsChanged, this, [this] { m_msToRetry = 0; });
}

void AudioOutput::release() { m_device.reset(); }

double AudioOutput::fedMs() const { return static_cast<double>(m_framesFed) * 1000 / sound::kMixRate; }

qint64 AudioOutput::readData(char* data, qint64 maxSize)
{
    const auto frames = static_cast<std::size_t>(maxSize) / sizeof(sound::StereoFrame);
    const auto bytes = static_cast<qint64>(frames * sizeof(sound::StereoFrame));
    std::vector<sound::StereoFrame> mixed(frames);
    m_source->mix(mixed);
    std::copy_n(reinterpret_cast<const char*>(mixed.data()), bytes, data);
    m_framesFed += static_cast<qint64>(frames);
    return bytes;
}

qint64 AudioOutput::bytesAvailable() const
{
    return mixFormat().bytesForDuration(kBufferMs * 1000) + QIODevice::bytesAvailable();
}

} // namespace flash
