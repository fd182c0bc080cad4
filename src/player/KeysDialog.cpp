#include "player/KeysDialog.h"

#include "player/MenuTree.h"
#include "player/Menus.h"
#include "player/Shortcuts.h"
#include "player/Texts.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace player
{
namespace
{

constexpr int kMargin = 16;
constexpr QSize kSize{560, 560};
constexpr int kRowHeight = 24;

/// One list of names, in the user's language; those with Ctrl that stand for a plain one are left out.
QString keysOf(const ItemInfo& info)
{
    QStringList names;
    const QString plain = QString(info.plainKeys).remove('!');
    for (const QKeySequence& keys : shortcutsOf(info.keys, plain, true)) {
        const QString name = keys.toString(QKeySequence::NativeText);
        const QString portable = keys.toString(QKeySequence::PortableText);
        // A media key is found by its picture; its name in words is as long as the rest of the line.
        if (portable.contains("Media") || names.contains(name)) continue;
        const bool isDouble =
            portable.startsWith("Ctrl+") &&
            plain.split(' ', Qt::SkipEmptyParts).contains(portable.mid(5), Qt::CaseInsensitive);
        if (!isDouble) names += name;
    }
    return names.join(texts::kKeysOr);
}

void addRow(QTreeWidgetItem& group, const QString& what, const QString& keys)
{
    auto* row = new QTreeWidgetItem(&group, {what, keys});
    for (int column = 0; column < 2; ++column) row->setSizeHint(column, {0, kRowHeight});
}

QTreeWidgetItem& addGroup(QTreeWidget& list, const QString& name)
{
    auto* group = new QTreeWidgetItem(&list, {name});
    QFont bold = list.font();
    bold.setBold(true);
    group->setFont(0, bold);
    group->setFirstColumnSpanned(true);
    group->setFlags(Qt::ItemIsEnabled);
    return *group;
}

int widestOf(QTreeWidget& list, int column)
{
    int widest = 0;
    for (QTreeWidgetItemIterator row(&list); *row; ++row)
        widest = std::max(widest, list.fontMetrics().horizontalAdvance((*row)->text(column)));
    return widest;
}

} // namespace

frmKeys::frmKeys(QWidget* parent, const Menus& menus) : QDialog(parent)
{
    setObjectName("frmKeys");
    setWindowTitle(texts::kKeysTitle);
    auto* list = new QTreeWidget(this);
    list->setObjectName("lstKeys");
    list->setAccessibleName(texts::kKeysTitle);
    list->setColumnCount(2);
    list->setHeaderLabels({texts::kKeysWhat, texts::kKeysWhich});
    list->setRootIsDecorated(false);
    list->setIndentation(kMargin / 2);
    list->setFrameShape(QFrame::NoFrame);

    QTreeWidgetItem* group = nullptr;
    QStringList path; // of the menus that are open
    for (const ItemInfo& info : kItems) {
        switch (info.kind) {
        case ItemKind::Menu:
            if (path.isEmpty()) group = &addGroup(*list, info.caption);
            path += info.caption;
            continue;
        case ItemKind::PopUp: path += info.caption; continue;
        case ItemKind::End: path.removeLast(); continue;
        case ItemKind::Separator: continue;
        case ItemKind::Command:
        case ItemKind::Check: break;
        }
        const QString keys = keysOf(info);
        if (keys.isEmpty()) continue;
        const QString caption = menus.item(info.name).text();
        addRow(*group, path.size() > 1 ? path.last() + ": " + caption : caption, keys);
    }
    QTreeWidgetItem& window = addGroup(*list, texts::kKeysWindow);
    for (const auto& [what, keys] : texts::kOtherKeys) addRow(window, what, keys);
    for (int i = list->topLevelItemCount() - 1; i >= 0; --i)
        if (list->topLevelItem(i)->childCount() == 0) delete list->takeTopLevelItem(i);
    list->expandAll();
    list->setItemsExpandable(false);
    list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    list->header()->setSectionResizeMode(1, QHeaderView::Fixed);
    list->header()->resizeSection(1, widestOf(*list, 1) + kMargin);
    list->header()->setStretchLastSection(false);

    auto* note = new QLabel(texts::kKeysNote, this);
    note->setWordWrap(true);
    auto* buttons = new QDialogButtonBox(this);
    QPushButton* close = buttons->addButton(texts::kKeysClose, QDialogButtonBox::RejectRole);
    close->setObjectName("cbClose");
    close->setDefault(true);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(kMargin / 2);
    column->addWidget(note);
    column->addWidget(list, 1);
    column->addWidget(buttons);
    resize(kSize);
    list->setFocus();
}

} // namespace player
