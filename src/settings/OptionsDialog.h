#pragma once

#include "settings/Options.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QVBoxLayout;

namespace settings
{

/// What the program can do. Options of a feature that is not there are not shown and keep their values.
struct Features {
    bool mediaBrowser = false;
    bool skins = false;
    bool thumbnails = false;
    bool pages = false; ///< the program's own Flash pages
    bool association = false;
};

/// The options window. Edits the six options of the groups GADGETS and SYSTEM; what else is in `options` is
/// not touched.
class frmOptions : public QDialog
{
    Q_OBJECT
public:
    /// @param options outlives the window; changed when the user accepts, and only then
    frmOptions(QWidget* parent, Options& options, const Features& features);

private:
    void cbOk_Click();
    QComboBox* addList(QVBoxLayout& column, const char* labelName, const char* label, const char* name,
                       const char* tip);
    QCheckBox* addBox(QVBoxLayout& column, const char* name, const char* caption, const char* tip,
                      bool checked, bool shown);

    Options& m_options;
    QComboBox* m_startUp;
    QComboBox* m_cache;
    QCheckBox* m_animation;
    QCheckBox* m_specialEffects;
    QCheckBox* m_hqShots;
    QCheckBox* m_associate;
};

} // namespace settings
