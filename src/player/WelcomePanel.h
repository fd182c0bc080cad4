#pragma once

#include <QWidget>

class QLabel;

namespace player
{

/// What the window shows when there is no movie and no welcome page either: the product's name, the reason
/// why a movie could not be shown, and a button that opens a file.
class WelcomePanel : public QWidget
{
    Q_OBJECT
public:
    explicit WelcomePanel(QWidget* parent);
    /// @param message why the last movie was closed; may be empty
    void setMessage(const QString& message);
    [[nodiscard]] QString message() const;

signals:
    void openClicked();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QLabel* m_message;
};

} // namespace player
