#pragma once

#include <QIODevice>

#include <memory>

class QAudioSink;

namespace flash
{

namespace sound
{
class Mixer;
}

/// Lets the machine's sound device pull from a mixer. The device is opened when there is something to hear
/// and let go after a while of silence. Where there is none, nothing is ever pulled and the owner moves the
/// sounds on itself.
class AudioOutput : public QIODevice
{
    Q_OBJECT

public:
    explicit AudioOutput(QObject* parent);
    ~AudioOutput() override;

    /// Opens or closes the device as the mixer's voices need. Call it now and then, at least once a frame.
    /// @param mixer must stay until the next call of follow() or release()
    void follow(sound::Mixer& mixer, double elapsedMs);
    /// Lets go of device and mixer.
    void release();
    /// Whether the device moves the mixer on.
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

    sound::Mixer* m_mixer = nullptr;
    std::unique_ptr<QAudioSink> m_sink;
    double m_silentMs = 0, m_msToRetry = 0;
    qint64 m_framesFed = 0;
};

} // namespace flash
