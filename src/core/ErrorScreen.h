#pragma once

#include <QDialog>

class QFrame;
class QLabel;
class QPlainTextEdit;
class QPushButton;
class QToolButton;

namespace core
{

struct ErrorTexts {
    int number;
    QString place;
    QString source;
    QString description;
    QString detail;
};

/// The modal window that shows a run-time error. Its user goes on, ends the program, or unfolds the detail
/// text.
class frmError : public QDialog
{
    Q_OBJECT
public:
    frmError(QWidget* parent, const ErrorTexts& texts);

signals:
    void exitRequested();

private:
    void cbRevive_Click();
    void cbExit_Click();
    void cbExtra_Click();
    QLabel* addField(const QString& title, const QString& value);

    QToolButton* m_extra;
    QPlainTextEdit* m_txtExtra;
    bool m_unfolded = false;
};

} // namespace core
