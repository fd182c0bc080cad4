#pragma once

#include "flash/sound/Samples.h"

#include <QIODevice>

#include <functional>
#include <memory>
#include <span>

class QMediaDevices;

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

/// A sound device that is open: it reads by itself, sound::kMixRate stereo frames of 16 bits a second.
class OutputDevice
{
public:
    virtual ~OutputDevice() = default;
    /// Whether it has stopped of itself and will not read any more.
    [[nodiscard]] virtual bool isLost() const = 0;
};
/// @param from  where the device is to read; open, and outlives the device
/// @returns null where there is no device to be had now
using OpenOutput = std::function<std::unique_ptr<OutputDevice>(QIODevice& from)>;
/// The one that the system prefers at the moment, or what takes its place.
std::unique_ptr<OutputDevice> openDefaultOutput(QIODevice& from);
/// Takes the place of the machine's devices, to measure what one would play; null: nothing does.
void setStandInOutput(OpenOutput standIn);

/// Lets the machine's sound device pull from a source. The device is opened when there is something to hear
/// and let go after a while of silence. Where there is none, nothing is ever pulled and the owner moves the
/// sounds on itself. A device that goes away, or stops to read, is let go of; it, or another, is taken again
/// as soon as there is one.
class AudioOutput : public QIODevice
{
    Q_OBJECT

public:
    explicit AudioOutput(std::unique_ptr<SoundSource> source, OpenOutput open = openDefaultOutput);
    ~AudioOutput() override;

    /// Opens or closes the device as the source needs. Call it now and then, at least once a frame.
    void follow(double elapsedMs);
    /// Lets go of the device.
    void release();
    /// Whether the device moves the source on.
    [[nodiscard]] bool isPulling() const { return m_device != nullptr; }
    /// How long the device has been fed, milliseconds, since it was opened.
    [[nodiscard]] double fedMs() const;

signals:
    void lost();
    void foundAgain();

protected:
    qint64 readData(char* data, qint64 maxSize) override;
    qint64 writeData(const char*, qint64) override { return -1; }
    [[nodiscard]] qint64 bytesAvailable() const override;
    [[nodiscard]] bool isSequential() const override { return true; }

private:
    void openDevice();
    [[nodiscard]] bool isDeviceLost(double elapsedMs);
    void retryLater();
    void watchForDevices();

    std::unique_ptr<SoundSource> m_source;
    OpenOutput m_open;
    std::unique_ptr<OutputDevice> m_device;
    std::unique_ptr<QMediaDevices> m_devices; // once there was a need to wait for one
    double m_silentMs = 0, m_msToRetry = 0, m_retryMs = 0, m_stalledMs = 0;
    qint64 m_framesFed = 0, m_framesSeen = 0;
    bool m_isLost = false; // and not found again
};

} // namespace flash
