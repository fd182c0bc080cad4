#pragma once

#include <QDialog>

class QTextBrowser;

namespace ui
{

/// The help that ships with the program: pages of Markdown in one folder, that lead to one another. No page
/// leads elsewhere, and none is fetched.
class HelpWindow : public QDialog
{
    Q_OBJECT
public:
    /// @param folder of the pages, with its separator
    HelpWindow(QWidget* parent, const QString& folder);

    /// @param name of the page without the language: "help", "skins". One that is missing in the language
    ///             of the interface is shown in Russian.
    /// @returns false when there is no such page
    bool showPage(const QString& name);

private:
    bool load(const QString& file);

    QString m_folder;
    QTextBrowser* m_text;
};

} // namespace ui
