#include "swfc/source/Movie.h"
#include "swfc/source/MovieBuilder.h"

#include "base/TextCodes.h"

#include <algorithm>
#include <filesystem>

namespace swfc::source
{

namespace
{

/// Where a script goes on behind blanks and comments.
std::size_t skipComments(std::string_view text, std::size_t at)
{
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    if (at == 0 && text.starts_with(kMark)) at = kMark.size();
    while (true) {
        at = std::min(text.find_first_not_of(" \t\r\n", at), text.size());
        const std::string_view rest = text.substr(at);
        if (rest.starts_with("//"))
            at = std::min(text.find('\n', at), text.size());
        else if (rest.starts_with("/*"))
            at = std::min(text.find("*/", at + 2), text.size() - 2) + 2;
        else
            return at;
    }
}

/// @returns the package, maybe of no name, that a script in ActionScript 3 begins with
std::optional<std::string> leadingPackage(std::string_view text)
{
    constexpr std::string_view kPackage = "package";
    const std::size_t at = skipComments(text, 0);
    if (!text.substr(at).starts_with(kPackage)) return {};
    const std::size_t name = skipComments(text, at + kPackage.size());
    const std::size_t end = std::min(text.find_first_of(" \t\r\n/{", name), text.size());
    if (end > name && name == at + kPackage.size()) return {}; // a longer word
    return std::string(text.substr(name, end - name));
}

/// The stage of a class that stands alone: it is the movie's, and its folder that of its package.
/// @param root in: the class's file; out: the same as if it lay beside the outermost package
void setStageOfClass(std::string& stage, const std::string& package, std::string& root)
{
    if (stage.find("version=") == std::string::npos) stage += " version=\"10\"";
    if (stage.find("document=") != std::string::npos) return;
    const std::filesystem::path file(root);
    stage += " document=\"" + (package.empty() ? "" : package + '.') + file.stem().string() + '"';
    std::filesystem::path folder = file.parent_path();
    for (std::size_t from = 0; from < package.size();
         from = std::min(package.find('.', from), package.size()) + 1)
        folder = folder.has_filename() ? folder.parent_path() : folder / "..";
    root = (folder / file.filename()).string();
}

} // namespace

std::vector<std::uint8_t> compileMovie(const std::string& path, SourceFiles& files, Diagnostics& diagnostics)
{
    const int file = diagnostics.addFile(path);
    const auto content = files.read(path);
    if (!content) {
        diagnostics.error({file, 1, 1}, "expected a readable file: " + content.error().what);
        return {};
    }
    std::string text(content->begin(), content->end());
    std::unique_ptr<Element> root;
    MovieBuilder builder(files, diagnostics);
    std::string rootPath = path;
    if (path.ends_with(".as")) {
        // The script alone: a stage is put around it. Its first line may say which.
        constexpr std::string_view kStage = "// movie:";
        std::string stage;
        if (text.starts_with(kStage)) stage = text.substr(kStage.size(), text.find('\n') - kStage.size());
        if (const auto package = leadingPackage(text)) setStageOfClass(stage, *package, rootPath);
        root = parseXml("<movie " + stage + "><frame><script/></frame></movie>", file, diagnostics);
        if (root == nullptr) return {};
        Element& script = *root->children[0]->children[0];
        script.text = base::isUtf8(text) ? text : base::utf8FromAnsi(text);
        script.textStart = {file, 1, 1};
        builder.setOnlySource({script.text, path, script.textStart});
    } else {
        root = parseXml(text, file, diagnostics);
        if (root == nullptr) return {};
    }
    auto movie = builder.build(*root, rootPath);
    if (diagnostics.hasErrors()) return {};
    return movie;
}

} // namespace swfc::source
