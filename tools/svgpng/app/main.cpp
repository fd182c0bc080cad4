// svgpng: draws the pictures of a recipe.

#include "svgpng/Recipe.h"

#include <QCoreApplication>
#include <QFile>

#include <cstdio>

namespace
{

constexpr int kFailed = 1, kUsageError = 2;

int usage()
{
    std::fputs("usage: svgpng RECIPE -o FOLDER [-I FOLDER]... [--deps FILE --target NAME]\n"
               "  -I FOLDER    where SVG files are looked for, behind the recipe's own folder\n"
               "  --deps FILE  write the files that were read, as a rule for make about NAME\n",
               stderr);
    return kUsageError;
}

int failed(const QString& recipe, const std::string& what)
{
    std::fprintf(stderr, "%s: %s\n", qPrintable(recipe), what.c_str());
    return kFailed;
}

QByteArray escaped(const QString& path) { return QString(path).replace(' ', "\\ ").toUtf8(); }

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QString recipe, output, dependencies, target;
    QStringList folders;
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& option = arguments[i];
        const bool hasValue = i + 1 < arguments.size();
        if (option == "-o" && hasValue)
            output = arguments[++i];
        else if (option == "-I" && hasValue)
            folders += arguments[++i];
        else if (option == "--deps" && hasValue)
            dependencies = arguments[++i];
        else if (option == "--target" && hasValue)
            target = arguments[++i];
        else if (option.startsWith('-') || !recipe.isEmpty())
            return usage();
        else
            recipe = option;
    }
    if (recipe.isEmpty() || output.isEmpty()) return usage();
    folders.prepend(recipe.contains('/') ? recipe.section('/', 0, -2) : ".");

    QFile file(recipe);
    if (!file.open(QIODevice::ReadOnly)) return failed(recipe, file.errorString().toStdString());
    const auto pictures = svgpng::readRecipe(QString::fromUtf8(file.readAll()));
    if (!pictures) return failed(recipe, pictures.error().what);
    QStringList used{recipe};
    for (const svgpng::Picture& picture : *pictures)
        if (const auto drawn = svgpng::draw(picture, output, folders, used); !drawn)
            return failed(recipe, drawn.error().what);
    if (dependencies.isEmpty()) return 0;
    QFile rule(dependencies);
    if (!rule.open(QIODevice::WriteOnly)) return failed(dependencies, rule.errorString().toStdString());
    QByteArray text = escaped(target) + ':';
    for (const QString& path : used) text += ' ' + escaped(path);
    rule.write(text + '\n');
    return rule.flush() ? 0 : failed(dependencies, rule.errorString().toStdString());
}
