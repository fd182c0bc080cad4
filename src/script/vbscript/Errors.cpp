#include "script/vbscript/Errors.h"

#include <algorithm>
#include <iterator>

namespace script::vbscript
{

namespace
{

struct Entry {
    int number;
    std::u16string_view english;
    std::u16string_view russian;
};

// Sorted by number.
// clang-format off
constexpr Entry kTexts[] = {
    {-2147467260, u"Script execution was interrupted",
           u"Выполнение сценария прервано"},
    {5,     u"Invalid procedure call or argument",
           u"Недопустимый вызов или аргумент процедуры"},
    {6,     u"Overflow",
           u"Переполнение"},
    {7,     u"Out of memory",
           u"Недостаточно памяти"},
    {9,     u"Subscript out of range",
           u"Индекс выходит за пределы допустимого диапазона"},
    {10, u"This array is fixed or temporarily locked",
           u"Массив имеет фиксированную длину или временно блокирован"},
    {11, u"Division by zero",
           u"Деление на ноль"},
    {13, u"Type mismatch",
           u"Несоответствие типа"},
    {14, u"Out of string space",
           u"Недостаточно места для строки"},
    {17, u"Can't perform requested operation",
           u"Невозможно выполнить требуемую операцию"},
    {28, u"Out of stack space",
           u"Недостаточно места в стеке"},
    {35, u"Sub or Function not defined",
           u"Процедура Sub или Function не определена"},
    {48, u"Error in loading DLL",
           u"Ошибка при загрузке DLL"},
    {51, u"Internal error",
           u"Внутренняя ошибка"},
    {52, u"Bad file name or number",
           u"Неправильное имя или номер файла"},
    {53, u"File not found",
           u"Файл не найден"},
    {54, u"Bad file mode",
           u"Неправильный режим работы с файлом"},
    {55, u"File already open",
           u"Файл уже открыт"},
    {57, u"Device I/O error",
           u"Ошибка ввода/вывода"},
    {58, u"File already exists",
           u"Файл уже существует"},
    {61, u"Disk full",
           u"Диск переполнен"},
    {62, u"Input past end of file",
           u"Ввод за концом файла"},
    {67, u"Too many files",
           u"Слишком много файлов"},
    {68, u"Device unavailable",
           u"Устройство недоступно"},
    {70, u"Permission denied",
           u"Разрешение отклонено"},
    {71, u"Disk not ready",
           u"Диск не готов"},
    {74, u"Can't rename with different drive",
           u"Нельзя переименовать с указанием другого диска"},
    {75, u"Path/File access error",
           u"Ошибка доступа к пути или файлу"},
    {76, u"Path not found",
           u"Путь не найден"},
    {91, u"Object variable not set",
           u"Объектная переменная не задана"},
    {92, u"For loop not initialized",
           u"Цикл For не инициализирован"},
    {93, u"Invalid pattern string",
           u"Недопустимая строка шаблона"},
    {94, u"Invalid use of Null",
           u"Недопустимое использование Null"},
    {322, u"Can't create necessary temporary file",
           u"Невозможно создать необходимый временный файл"},
    {424, u"Object required",
           u"Требуется объект"},
    {429, u"ActiveX component can't create object",
           u"Невозможно создание объекта компонентом ActiveX"},
    {430, u"Class doesn't support Automation",
           u"Класс не поддерживает автоматизацию"},
    {432, u"File name or class name not found during Automation operation",
           u"Имя файла или класса не найдено при операции автоматизации"},
    {438, u"Object doesn't support this property or method",
           u"Объект не поддерживает это свойство или метод"},
    {440, u"Automation error",
           u"Ошибка автоматизации"},
    {445, u"Object doesn't support this action",
           u"Объект не поддерживает это действие"},
    {446, u"Object doesn't support named arguments",
           u"Объект не поддерживает именованные аргументы"},
    {447, u"Object doesn't support current locale setting",
           u"Объект не поддерживает текущую национальную настройку"},
    {448, u"Named argument not found",
           u"Именованный аргумент не найден"},
    {449, u"Argument not optional",
           u"Обязательный аргумент"},
    {450, u"Wrong number of arguments or invalid property assignment",
           u"Недопустимое число аргументов или присвоение значения свойству"},
    {451, u"Object not a collection",
           u"Объект не является семейством"},
    {453, u"Specified DLL function not found",
           u"Указанная функция DLL не найдена"},
    {455, u"Code resource lock error",
           u"Ошибка блокировки ресурса кода"},
    {457, u"This key is already associated with an element of this collection",
           u"Этот ключ уже связан с элементом данного семейства"},
    {458, u"Variable uses an Automation type not supported in VBScript",
           u"Переменная использует тип автоматизации, не поддерживаемый VBScript"},
    {462, u"The remote server machine does not exist or is unavailable",
           u"Удаленный сервер не существует или недоступен"},
    {481, u"Invalid picture",
           u"Недопустимый рисунок"},
    {500, u"Variable is undefined",
           u"Переменная не определена"},
    {501, u"Illegal assignment",
           u"Недопустимое присваивание"},
    {502, u"Object not safe for scripting",
           u"Объект не безопасен для использования в сценариях"},
    {503, u"Object not safe for initializing",
           u"Объект не безопасен для инициализации"},
    {504, u"Object not safe for creating",
           u"Объект не безопасен для создания"},
    {505, u"Invalid or unqualified reference",
           u"Недопустимая или неполная ссылка"},
    {506, u"Class not defined",
           u"Класс не определен"},
    {507, u"An exception occurred",
           u"Произошло исключение"},
    {1001, u"Out of memory",
           u"Недостаточно памяти"},
    {1002, u"Syntax error",
           u"Синтаксическая ошибка"},
    {1003, u"Expected ':'",
           u"Ожидается ':'"},
    {1005, u"Expected '('",
           u"Ожидается '('"},
    {1006, u"Expected ')'",
           u"Ожидается ')'"},
    {1007, u"Expected ']'",
           u"Ожидается ']'"},
    {1010, u"Expected identifier",
           u"Ожидается идентификатор"},
    {1011, u"Expected '='",
           u"Ожидается '='"},
    {1012, u"Expected 'If'",
           u"Ожидается 'If'"},
    {1013, u"Expected 'To'",
           u"Ожидается 'To'"},
    {1014, u"Expected 'End'",
           u"Ожидается 'End'"},
    {1015, u"Expected 'Function'",
           u"Ожидается 'Function'"},
    {1016, u"Expected 'Sub'",
           u"Ожидается 'Sub'"},
    {1017, u"Expected 'Then'",
           u"Ожидается 'Then'"},
    {1018, u"Expected 'Wend'",
           u"Ожидается 'Wend'"},
    {1019, u"Expected 'Loop'",
           u"Ожидается 'Loop'"},
    {1020, u"Expected 'Next'",
           u"Ожидается 'Next'"},
    {1021, u"Expected 'Case'",
           u"Ожидается 'Case'"},
    {1022, u"Expected 'Select'",
           u"Ожидается 'Select'"},
    {1023, u"Expected expression",
           u"Ожидается выражение"},
    {1024, u"Expected statement",
           u"Ожидается инструкция"},
    {1025, u"Expected end of statement",
           u"Ожидается конец инструкции"},
    {1026, u"Expected integer constant",
           u"Ожидается целочисленная константа"},
    {1027, u"Expected 'While' or 'Until'",
           u"Ожидается 'While' или 'Until'"},
    {1028, u"Expected 'While', 'Until' or end of statement",
           u"Ожидается 'While', 'Until' или конец инструкции"},
    {1029, u"Expected 'With'",
           u"Ожидается 'With'"},
    {1030, u"Identifier too long",
           u"Слишком длинный идентификатор"},
    {1031, u"Invalid number",
           u"Недопустимое число"},
    {1032, u"Invalid character",
           u"Недопустимый знак"},
    {1033, u"Unterminated string constant",
           u"Незавершенная строковая константа"},
    {1034, u"Unterminated comment",
           u"Незавершенный комментарий"},
    {1037, u"Invalid use of 'Me' keyword",
           u"Недопустимое использование ключевого слова 'Me'"},
    {1038, u"'loop' without 'do'",
           u"'loop' без 'do'"},
    {1039, u"Invalid 'exit' statement",
           u"Недопустимая инструкция 'exit'"},
    {1040, u"Invalid 'for' loop control variable",
           u"Недопустимая переменная цикла 'for'"},
    {1041, u"Name redefined",
           u"Переопределение имени"},
    {1042, u"Must be first statement on the line",
           u"Должна быть первой инструкцией в строке"},
    {1043, u"Cannot assign to non-ByVal argument",
           u"Нельзя присвоить значение аргументу, переданному не по значению"},
    {1044, u"Cannot use parentheses when calling a Sub",
           u"Нельзя использовать скобки при вызове процедуры Sub"},
    {1045, u"Expected literal constant",
           u"Ожидается литеральная константа"},
    {1046, u"Expected 'In'",
           u"Ожидается 'In'"},
    {1047, u"Expected 'Class'",
           u"Ожидается 'Class'"},
    {1048, u"Must be defined inside a Class",
           u"Должно быть определено внутри класса"},
    {1049, u"Expected Let or Set or Get in property declaration",
           u"В объявлении свойства ожидается Let, Set или Get"},
    {1050, u"Expected 'Property'",
           u"Ожидается 'Property'"},
    {1051, u"Number of arguments must be consistent across properties specification",
           u"Число аргументов в объявлениях свойства должно быть одинаковым"},
    {1052, u"Cannot have multiple default property/method in a Class",
           u"Класс может иметь только одно свойство или метод по умолчанию"},
    {1053, u"Class initialize or terminate do not have arguments",
           u"Процедуры инициализации и завершения класса не имеют аргументов"},
    {1054, u"Property set or let must have at least one argument",
           u"Свойство Set или Let должно иметь хотя бы один аргумент"},
    {1055, u"Unexpected 'Next'",
           u"Непредвиденный оператор 'Next'"},
    {1056, u"'Default' can be specified only on 'Property' or 'Function' or 'Sub'",
           u"'Default' указывается только для 'Property', 'Function' или 'Sub'"},
    {1057, u"'Default' specification must also specify 'Public'",
           u"При указании 'Default' следует указать и 'Public'"},
    {1058, u"'Default' specification can only be on Property Get",
           u"'Default' указывается только для Property Get"},
    {5008, u"Illegal assignment",
           u"Недопустимое присваивание"},
    {5016, u"Regular Expression object expected",
           u"Ожидается объект Regular Expression"},
    {5017, u"Syntax error in regular expression",
           u"Синтаксическая ошибка в регулярном выражении"},
    {5018, u"Unexpected quantifier in regular expression",
           u"Непредвиденный квантификатор в регулярном выражении"},
    {5019, u"Expected ']' in regular expression",
           u"Ожидается ']' в регулярном выражении"},
    {5020, u"Expected ')' in regular expression",
           u"Ожидается ')' в регулярном выражении"},
    {5021, u"Invalid range in character set",
           u"Недопустимый диапазон в наборе знаков"},
    {32811, u"Element not found",
           u"Элемент не найден"},
};
// clang-format on

static_assert(std::is_sorted(std::begin(kTexts), std::end(kTexts),
                             [](const Entry& a, const Entry& b) { return a.number < b.number; }));

} // namespace

std::u16string_view errorText(int number, Language language)
{
    const auto* const found =
        std::lower_bound(std::begin(kTexts), std::end(kTexts), number,
                         [](const Entry& entry, int key) { return entry.number < key; });
    const bool isRussian = language == Language::Russian;
    if (found == std::end(kTexts) || found->number != number)
        return isRussian ? u"Неизвестная ошибка выполнения" : u"Unknown runtime error";
    return isRussian ? found->russian : found->english;
}

std::u16string bareDescription(const Fault& fault, Language language)
{
    if (!fault.description.empty()) return fault.description;
    return std::u16string(errorText(fault.number, language));
}

std::u16string describe(const Fault& fault, Language language)
{
    std::u16string text = bareDescription(fault, language);
    if (!fault.description.empty() || fault.subject.empty()) return text;
    return text + u": '" + fault.subject + u"'";
}

std::u16string sourceOf(const Fault& fault, Language language)
{
    if (!fault.source.empty()) return fault.source;
    const bool isRussian = language == Language::Russian;
    if (isCompilationError(fault.number)) {
        return isRussian ? u"Ошибка компиляции Microsoft VBScript" : u"Microsoft VBScript compilation error";
    }
    return isRussian ? u"Ошибка выполнения Microsoft VBScript" : u"Microsoft VBScript runtime error";
}

int numberOfHresult(std::int32_t code)
{
    struct Mapped {
        std::uint32_t code;
        int number;
    };
    // clang-format off
    static constexpr Mapped kMapped[] = {
        {0x80004001, 445}, {0x80004002, 430}, {0x80004004, 287},
        {0x80020001, 438}, {0x80020003, 438}, {0x80020004, 448}, {0x80020005, 13},  {0x80020006, 438},
        {0x80020007, 446}, {0x80020008, 458}, {0x8002000A, 6},   {0x8002000B, 9},   {0x8002000C, 447},
        {0x8002000D, 10},  {0x8002000E, 450}, {0x8002000F, 449}, {0x80020011, 451}, {0x80020012, 11},
        {0x80028CA0, 13},  {0x80028CA1, 9},
        {0x80030002, 53},  {0x80030003, 76},  {0x80030004, 67},  {0x80030005, 70},  {0x80030008, 7},
        {0x80030013, 70},  {0x80030019, 57},  {0x8003001D, 57},  {0x8003001E, 57},  {0x80030020, 75},
        {0x80030021, 70},  {0x80030050, 58},  {0x80030070, 61},  {0x80030100, 7},   {0x80030102, 57},
        {0x80040154, 429}, {0x800401E3, 429}, {0x800401EA, 432}, {0x800401F3, 429}, {0x800401FE, 429},
        {0x80070005, 70},  {0x8007000E, 7},   {0x80070057, 5},   {0x800706BA, 462}, {0x80080005, 429},
    };
    // clang-format on
    constexpr std::uint32_t kControlFacility = 0x800A0000;
    const auto bits = static_cast<std::uint32_t>(code);
    if ((bits & 0xFFFF0000) == kControlFacility) return static_cast<int>(bits & 0xFFFF);
    for (const Mapped& one : kMapped) {
        if (one.code == bits) return one.number;
    }
    return code;
}

} // namespace script::vbscript
