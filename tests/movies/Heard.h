#pragma once

#include <QByteArray>

#include <string>
#include <vector>

/// Compares a recording with what should be heard.
/// @param wave   a WAV file of 16 bits, two channels, as flashrun writes it
/// @param stated lines of `from to left right [pitch]`: a stretch of time in seconds, the level in each
/// channel
///               (root mean square, 1 is full scale) within 8 % or 0.002, and how often the louder channel
///               swings per second, within 3 %. `-` states nothing; what follows # is a remark.
/// @returns faults, a line each
std::vector<std::string> checkHeard(const QByteArray& wave, const QByteArray& stated);
