#pragma once

#include "flash/stage/Stage.h"

#include <optional>

class QKeyEvent;

namespace flash
{

/// The player's code of a key (what Key.getCode() answers); 0 for keys it does not know. Letters give their
/// upper-case ASCII code, whatever the layout prints.
int keyCodeOf(const QKeyEvent& event);

/// The character the key types; 0 for none. Control keys that have an ASCII code give it.
char32_t characterOf(const QKeyEvent& event);

/// What the key means to a text field, by the conventions of the platform.
std::optional<stage::TextCommand> textCommandOf(const QKeyEvent& event);

} // namespace flash
