#pragma once

#include "core/Text.h"

// Every text of this folder that a user sees, in a window or in the journal.

namespace skin::texts
{

// clang-format off
inline constexpr core::Text kBrokenStart    = QT_TRANSLATE_NOOP("zorvex", "Файл описания шкурки содержит синтаксические ошибки. "
                                               "Попробуйте открыть файл ");
inline constexpr core::Text kBrokenEnd      = QT_TRANSLATE_NOOP("zorvex", " в браузере, чтобы узнать причину.");
inline constexpr core::Text kBranchPlace    = QT_TRANSLATE_NOOP("zorvex", "Обработка ветки описания шкурки");
inline constexpr core::Text kBranchDetail   = QT_TRANSLATE_NOOP("zorvex", "Исходный код текущей ветки:");
inline constexpr core::Text kObjectPlace    = QT_TRANSLATE_NOOP("zorvex", "Создание мета-объекта");
inline constexpr core::Text kObjectDetail   = QT_TRANSLATE_NOOP("zorvex", "Код объекта:");
inline constexpr core::Text kNoView         = QT_TRANSLATE_NOOP("zorvex", "В шкурке не найдено вида ");
inline constexpr core::Text kSetViewPlace   = QT_TRANSLATE_NOOP("zorvex", "Установка вида шкурки ");
inline constexpr core::Text kScriptStart    = QT_TRANSLATE_NOOP("zorvex", "Выполнение сценария '");
inline constexpr core::Text kScriptLine     = QT_TRANSLATE_NOOP("zorvex", "' (Строка: ");
inline constexpr core::Text kOfLibrary      = QT_TRANSLATE_NOOP("zorvex", ", библиотека сценариев");
inline constexpr core::Text kTypeMismatch   = QT_TRANSLATE_NOOP("zorvex", "Несоответствие типа: ");
inline constexpr core::Text kInvalidProperty = QT_TRANSLATE_NOOP("zorvex", "Недопустимое значение свойства: ");
inline constexpr core::Text kNoTheme        = QT_TRANSLATE_NOOP("zorvex", "В описании шкурки нет элемента THEME");
inline constexpr core::Text kMaskTooLarge   = QT_TRANSLATE_NOOP("zorvex", "Маска панели слишком велика");
inline constexpr core::Text kTooMany        = QT_TRANSLATE_NOOP("zorvex", "В шкурке слишком много элементов");
inline constexpr core::Text kTooDeep        = QT_TRANSLATE_NOOP("zorvex", "Элементы шкурки вложены слишком глубоко");
inline constexpr core::Text kOverran        = QT_TRANSLATE_NOOP("zorvex", "Шкурка «%1» слишком долго занимает программу и отключена.");
inline constexpr core::Text kNoScriptFile   = QT_TRANSLATE_NOOP("zorvex", "Файл сценария шкурки не прочитан: ");
// clang-format on

} // namespace skin::texts
