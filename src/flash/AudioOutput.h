#pragma once

#include "flash/sound/Samples.h"

#include <QIODevice>

#include <memory>
#include <span>

class QAudioSink;

namespace flash
{

/// Where a sound device takes what it plays from.
class SoundSource
{
public:
    virtual ~SoundSource() = default;
    /// Fills all of `frames`.
    virtual void mix(std::span<sound::StereoFrame> frames) = 0;
    /// Whether there is nothing to hear now.
    [[nodiscard]] virtual bool isSilent() = 0;
};

/// Lets the machine's sound device pull from a source. The device is opened when there is something to hear
/// and let go after a while of silence. Where there is none, nothing is ever pulled and the owner moves the
/// sounds on itself.
class AudioOutput : public QIODevice
{
    Q_OBJECT

public:
    explicit AudioOutput(std::unique_ptr<SoundSource> source);
    ~AudioOutput() override;

    /// Opens or closes the device as the source needs. Call it now and then, at least once a frame.
    void follow(double elapsedMs);
    /// Lets go of the device.
    void release();
    /// Whether the device moves the source on.
    [[nodiscard]] bool isPulling() const { return m_sink != nullptr; }
    /// How long the device has been fed, milliseconds, since it was opened.
    [[nodiscard]] double fedMs() const;

protected:
    qint64 readData(char* data, qint64 maxSize) override;
    qint64 writeData(const char*, qint64) override { return -1; }
    [[nodiscard]] qint64 bytesAvailable() const override;
    [[nodiscard]] bool isSequential() const override { return true; }

private:
    void openDevice();

    std::unique_ptr<SoundSource> m_source;
    std::unique_ptr<QAudioSink> m_sink;
    double m_silentMs = 0, m_msToRetry = 0;
    qint64 m_framesFed = 0;
};

} // namespace flash
