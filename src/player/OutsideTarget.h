#pragma once

#include <QString>
#include <QUrl>

namespace player
{

/// What a movie asks to be opened, taken apart. Whoever wrote the movie is not to be trusted.
struct OutsideTarget {
    enum class Kind {
        Page,    ///< http or https
        Letter,  ///< mailto
        File,    ///< a document or a folder
        Refused, ///< never opened, whoever asks
    };
    enum class Refusal { None, Invalid, Missing, Program, OtherMachine, Misleading };
    Kind kind = Kind::Refused;
    Refusal refusal = Refusal::None;
    QUrl url;       ///< what is opened: the file itself, no link to it
    QString shown;  ///< for the user: the whole address or path
    QString reason; ///< for the log, when refused
    friend bool operator==(const OutsideTarget&, const OutsideTarget&) = default;
};

/// Decides by an allowed list of schemes; a text without one is a path, absolute or relative to the movie.
/// Programs, scripts, shortcuts, packages and disk images are refused, as are files of other machines and
/// what does not exist.
/// @param folder where the movie lies
OutsideTarget examineTarget(const QString& text, const QString& folder);

} // namespace player
