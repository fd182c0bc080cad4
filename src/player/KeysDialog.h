#pragma once

#include <QDialog>

namespace player
{

class Menus;

/// Lists every key of the program beside what it does.
class frmKeys : public QDialog
{
    Q_OBJECT
public:
    frmKeys(QWidget* parent, const Menus& menus);
};

} // namespace player
