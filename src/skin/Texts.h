#pragma once

// Every text of this folder that a user sees, in a window or in the journal.

namespace skin::texts
{

// clang-format off
inline constexpr const char* kBrokenStart    = "Файл описания шкурки содержит синтаксические ошибки. "
                                               "Попробуйте открыть файл ";
inline constexpr const char* kBrokenEnd      = " в браузере, чтобы узнать причину.";
inline constexpr const char* kBranchPlace    = "Обработка ветки описания шкурки";
inline constexpr const char* kBranchDetail   = "Исходный код текущей ветки:";
inline constexpr const char* kObjectPlace    = "Создание мета-объекта";
inline constexpr const char* kObjectDetail   = "Код объекта:";
inline constexpr const char* kNoView         = "В шкурке не найдено вида ";
inline constexpr const char* kSetViewPlace   = "Установка вида шкурки ";
inline constexpr const char* kScriptStart    = "Выполнение сценария '";
inline constexpr const char* kScriptLine     = "' (Строка: ";
inline constexpr const char* kOfLibrary      = ", библиотека сценариев";
inline constexpr const char* kTypeMismatch   = "Несоответствие типа: ";
inline constexpr const char* kInvalidProperty = "Недопустимое значение свойства: ";
inline constexpr const char* kNoTheme        = "В описании шкурки нет элемента THEME";
inline constexpr const char* kMaskTooLarge   = "Маска панели слишком велика";
inline constexpr const char* kTooMany        = "В шкурке слишком много элементов";
inline constexpr const char* kTooDeep        = "Элементы шкурки вложены слишком глубоко";
inline constexpr const char* kOverran        = "Шкурка «%1» слишком долго занимает программу и отключена.";
inline constexpr const char* kNoScriptFile   = "Файл сценария шкурки не прочитан: ";
// clang-format on

} // namespace skin::texts
