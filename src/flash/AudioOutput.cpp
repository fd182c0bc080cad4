#include "flash/AudioOutput.h"

#include "flash/sound/Mixer.h"

#include <QAudioDevice>
#include <QAudioSink>
#include <QMediaDevices>

namespace flash
{

namespace
{

constexpr double kSilenceBeforeClosingMs = 3000;
constexpr double kRetryMs = 10000;
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

} // namespace

AudioOutput::AudioOutput(std::unique_ptr<SoundSource> source) : m_source(std::move(source))
{
    open(QIODevice::ReadOnly);
}
AudioOutput::~AudioOutput() { release(); }

void AudioOutput::follow(double elapsedMs)
{
    const bool silent = m_source->isSilent();
    m_silentMs = silent ? m_silentMs + elapsedMs : 0;
    if (m_sink) {
        const bool lost = m_sink->state() == QAudio::StoppedState;
        if (!lost && m_silentMs < kSilenceBeforeClosingMs) return;
        m_sink.reset();
        m_msToRetry = lost ? kRetryMs : 0;
        return;
    }
    m_msToRetry -= elapsedMs;
    if (!silent && m_msToRetry <= 0) openDevice();
}

void AudioOutput::openDevice()
{
    m_msToRetry = kRetryMs;
    const QAudioDevice device = QMediaDevices::defaultAudioOutput();
    if (device.isNull() || !device.isFormatSupported(mixFormat())) return;
    m_framesFed = 0;
    m_sink = std::make_unique<QAudioSink>(device, mixFormat());
    m_sink->setBufferSize(mixFormat().bytesForDuration(kBufferMs * 1000));
    m_sink->start(this);
    if (m_sink->error() != QAudio::NoError) m_sink.reset();
}

void AudioOutput::release() { m_sink.reset(); }

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
