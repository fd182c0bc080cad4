#pragma once

#include <QImage>
#include <QString>

#include <vector>

/// What a player would show and let hear of a file.
struct DecodedFilm {
    struct Picture {
        double seconds = 0;
        QImage image; // RGBA8888
    };
    std::vector<Picture> pictures;
    std::vector<float> left; // of the sound's left channel, from its first moment on
    int soundRate = 0;
    double soundStartsAt = 0; // seconds

    /// @returns nothing in it when the file cannot be read
    static DecodedFilm of(const QString& file);
};
