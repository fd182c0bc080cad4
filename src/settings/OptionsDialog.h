#pragma once

#include "core/Text.h"
#include "settings/Options.h"

#include <QDialog>

#include <span>

class QCheckBox;
class QComboBox;
class QVBoxLayout;

namespace settings
{

/// The options window. Edits the seven options of the groups GADGETS and SYSTEM; what else is in `options` is
/// not touched.
class frmOptions : public QDialog
{
    Q_OBJECT
public:
    /// @param options outlives the window; changed when the user accepts, and only then
    frmOptions(QWidget* parent, Options& options);

private:
    void cbOk_Click();
    QComboBox* addList(QVBoxLayout& column, const char* labelName, core::Text label, const char* name,
                       core::Text tip, std::span<const core::Text> items, int chosen);
    QCheckBox* addBox(QVBoxLayout& column, const char* name, core::Text caption, core::Text tip,
                      bool checked);

    Options& m_options;
    QComboBox* m_startUp;
    QComboBox* m_cache;
    QComboBox* m_codepage;
    QComboBox* m_language;
    QCheckBox* m_animation;
    QCheckBox* m_specialEffects;
    QCheckBox* m_hqShots;
    QCheckBox* m_secondThread;
    QCheckBox* m_associate;
};

} // namespace settings
