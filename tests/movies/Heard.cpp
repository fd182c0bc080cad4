#include "Heard.h"

#include <QList>
#include <QtEndian>

#include <cmath>

namespace
{

constexpr int kHeadBytes = 44, kFrameBytes = 4, kRate = 44100;

/// One channel over a stretch of time.
struct Channel {
    double level = 0, swingsPerSecond = 0;
};

Channel measure(const QByteArray& wave, qsizetype from, qsizetype to, int channel)
{
    Channel result;
    double squares = 0;
    int upwards = 0;
    bool below = false;
    for (qsizetype i = from; i < to; ++i) {
        const auto sample =
            qFromLittleEndian<qint16>(wave.constData() + kHeadBytes + i * kFrameBytes + channel * 2);
        squares += sample / 32768.0 * (sample / 32768.0);
        // A threshold, so that the noise of a coarse coding around zero does not count.
        constexpr int kThreshold = 300;
        if (sample < -kThreshold) below = true;
        if (sample > kThreshold && below) {
            ++upwards;
            below = false;
        }
    }
    const auto frames = static_cast<double>(to - from);
    result.level = std::sqrt(squares / frames);
    result.swingsPerSecond = upwards * kRate / frames;
    return result;
}

} // namespace

std::vector<std::string> checkHeard(const QByteArray& wave, const QByteArray& stated)
{
    std::vector<std::string> faults;
    const qsizetype frames = (wave.size() - kHeadBytes) / kFrameBytes;
    int number = 0;
    for (QByteArray line : stated.split('\n')) {
        ++number;
        line = line.left(line.indexOf('#') < 0 ? line.size() : line.indexOf('#')).simplified();
        if (line.isEmpty()) continue;
        const auto fault = [&](const std::string& what) {
            faults.push_back("heard, line " + std::to_string(number) + ": " + what);
        };
        const QList<QByteArray> words = line.split(' ');
        if (words.size() < 4 || words.size() > 5) {
            fault("needs from, to, left, right and maybe pitch");
            continue;
        }
        const auto from = static_cast<qsizetype>(words[0].toDouble() * kRate);
        const auto to = static_cast<qsizetype>(words[1].toDouble() * kRate);
        if (from < 0 || to <= from || to > frames) {
            fault("the recording lasts " + std::to_string(static_cast<double>(frames) / kRate) + " s");
            continue;
        }
        const Channel channels[] = {measure(wave, from, to, 0), measure(wave, from, to, 1)};
        const auto compare = [&](const char* name, const QByteArray& word, double heard, double share,
                                 double least) {
            bool isNumber = false;
            const double wanted = word.toDouble(&isNumber);
            if (word == "-") return;
            if (!isNumber) fault(std::string(name) + " is no number");
            if (std::abs(heard - wanted) > std::max(wanted * share, least))
                fault(std::string(name) + " should be " + word.toStdString() + ", is " +
                      std::to_string(heard));
        };
        compare("left", words[2], channels[0].level, 0.08, 0.002);
        compare("right", words[3], channels[1].level, 0.08, 0.002);
        const Channel& louder = channels[channels[1].level > channels[0].level ? 1 : 0];
        if (words.size() == 5) compare("pitch", words[4], louder.swingsPerSecond, 0.03, 0);
    }
    return faults;
}
