#pragma once

#include "export/ExportProcess.h"
#include "export/Settings.h"

#include <QDialog>
#include <QTemporaryDir>
#include <QTimer>

#include <memory>
#include <vector>

class QCheckBox;
class QComboBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;

namespace exporter
{

/// What the window is told of the movie.
struct MovieFacts {
    QString address; ///< as flash::Engine::open() takes it
    QSize size;
    double framesPerSecond = 0;
    int frames = 0;
};

/// Asks what film is wanted of a movie: all but the file's name.
class ExportDialog : public QDialog
{
    Q_OBJECT
public:
    /// @param last the choice of last time, as choice() gave it
    ExportDialog(QWidget* parent, const MovieFacts& movie, const std::vector<Availability>& formats,
                 const QString& last);

    /// With no name for the file yet. What the user did is in a file in folder().
    [[nodiscard]] Settings settings() const;
    [[nodiscard]] std::shared_ptr<QTemporaryDir> folder() const { return m_folder; }
    /// To be remembered: for the next movie as well, so without moments.
    [[nodiscard]] QString choice() const;

private:
    void build(const std::vector<Availability>& formats);
    void choose(const QString& last);
    void adapt();
    void accept() override;
    /// Seconds, as a user writes them.
    [[nodiscard]] QString timelineEnd() const;
    /// Nothing when what stands in the field is no moment.
    [[nodiscard]] static std::optional<double> momentIn(const QLineEdit& field);
    /// @returns what is wrong with the range; empty when nothing is
    [[nodiscard]] QString fault() const;
    QComboBox* addList(QGridLayout& grid, int row, const QString& label, const char* name);
    void record();
    void askForPictures();
    void showPicture(ExportProcess& process, QLabel& place, const QString& file,
                     std::optional<double> moment);

    const MovieFacts m_movie;
    std::shared_ptr<QTemporaryDir> m_folder = std::make_shared<QTemporaryDir>(); // pictures on their way, too
    QComboBox *m_format = nullptr, *m_range = nullptr, *m_size = nullptr, *m_rate = nullptr,
              *m_quality = nullptr;
    QLineEdit *m_from = nullptr, *m_to = nullptr;
    QSpinBox *m_width = nullptr, *m_height = nullptr;
    QCheckBox *m_sound = nullptr, *m_transparent = nullptr;
    QPushButton* m_record = nullptr;
    QLabel* m_recorded = nullptr;
    QString m_input; // the file of what the user did, in m_folder; empty: nothing
    QLabel *m_first = nullptr, *m_last = nullptr, *m_fault = nullptr;
    QPushButton* m_save = nullptr;
    QTimer m_settled; // of the range: pictures are asked for when it stays as it is
    ExportProcess m_firstPicture, m_lastPicture;
};

} // namespace exporter
