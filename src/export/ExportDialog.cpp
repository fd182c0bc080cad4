#include "export/ExportDialog.h"

#include "export/CommandLine.h"
#include "export/Formats.h"
#include "export/RecordDialog.h"
#include "export/Texts.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QStandardItemModel>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace exporter
{

namespace
{

constexpr int kMargin = 16, kControlHeight = 28, kRowHeight = 24;
constexpr QSize kPictureSize(200, 150);
constexpr int kMaxSide = 8192;
constexpr int kSettledMs = 400;

enum class Size { Own, Double, P720, P1080, P2160, Given };
constexpr QSize kNamedSizes[] = {{1280, 720}, {1920, 1080}, {3840, 2160}};
constexpr int kRates[] = {24, 25, 30, 50, 60};

/// A list of which an entry is chosen on purpose only: a wheel that scrolls past must not change it.
class List : public QComboBox
{
public:
    using QComboBox::QComboBox;

protected:
    void wheelEvent(QWheelEvent* event) override { event->ignore(); }
};

QString shortNumber(double value) { return QString::number(value, 'g', 5); }

QLabel* addPicture(QGridLayout& grid, int column, const QString& caption, const char* name)
{
    auto* picture = new QLabel(grid.parentWidget());
    picture->setObjectName(name);
    picture->setFixedSize(kPictureSize);
    picture->setAlignment(Qt::AlignCenter);
    picture->setAutoFillBackground(true);
    QPalette palette = picture->palette();
    palette.setColor(QPalette::Window, QColor(0x16, 0x20, 0x2E));
    palette.setColor(QPalette::WindowText, QColor(0xEE, 0xEE, 0xFF));
    picture->setPalette(palette);
    grid.addWidget(picture, 0, column);
    grid.addWidget(new QLabel(caption, grid.parentWidget()), 1, column, Qt::AlignHCenter);
    return picture;
}

} // namespace

ExportDialog::ExportDialog(QWidget* parent, const MovieFacts& movie, const std::vector<Availability>& formats,
                           const QString& last)
    : QDialog(parent), m_movie(movie)
{
    setObjectName("frmExport");
    setWindowTitle(texts::kVideoTitle);
    setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint |
                   Qt::MSWindowsFixedSizeDialogHint);
    build(formats);
    choose(last);
    for (QComboBox* list : {m_format, m_range, m_size, m_rate, m_quality})
        connect(list, &QComboBox::currentIndexChanged, this, [this] { adapt(); });
    for (QLineEdit* field : {m_from, m_to})
        connect(field, &QLineEdit::textChanged, this, [this] { adapt(); });
    m_settled.setSingleShot(true);
    m_settled.setInterval(kSettledMs);
    connect(&m_settled, &QTimer::timeout, this, [this] { askForPictures(); });
    adapt();
    m_format->setFocus();
}

QComboBox* ExportDialog::addList(QGridLayout& grid, int row, const QString& label, const char* name)
{
    auto* text = new QLabel(label, this);
    auto* list = new List(this);
    text->setBuddy(list);
    list->setObjectName(name);
    list->setAccessibleName(label);
    list->setFixedHeight(kControlHeight);
    grid.addWidget(text, row, 0);
    grid.addWidget(list, row, 1, 1, 4);
    return list;
}

void ExportDialog::build(const std::vector<Availability>& formats)
{
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(12);

    auto* pictures = new QGridLayout;
    column->addLayout(pictures);
    pictures->setHorizontalSpacing(kMargin);
    m_first = addPicture(*pictures, 0, texts::kFirstPicture, "picFirst");
    m_last = addPicture(*pictures, 1, texts::kLastPicture, "picLast");

    auto* grid = new QGridLayout;
    column->addLayout(grid);
    grid->setSpacing(8);
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(3, 1);
    m_format = addList(*grid, 0, texts::kFormat, "cmbFormat");
    for (const Availability& known : formats) {
        const QString name = infoOf(known.format).name;
        m_format->addItem(known.lacks.isEmpty() ? name : QString(texts::kLacks).arg(name, known.lacks),
                          static_cast<int>(known.format));
        if (known.lacks.isEmpty()) continue;
        auto* model = qobject_cast<QStandardItemModel*>(m_format->model());
        model->item(m_format->count() - 1)->setEnabled(false);
    }
    m_range = addList(*grid, 1, texts::kRange, "cmbRange");
    for (const auto& [text, end] :
         {std::pair(texts::kRangeTimeline, End::Timeline), std::pair(texts::kRangeStill, End::Still),
          std::pair(texts::kRangeGiven, End::Given)})
        m_range->addItem(text, static_cast<int>(end));
    const auto addMoment = [&](int place, const QString& label, const char* name, const QString& shown) {
        auto* field = new QLineEdit(this);
        field->setObjectName(name);
        field->setToolTip(texts::kMomentTip);
        field->setAccessibleName(label);
        field->setFixedHeight(kControlHeight);
        field->setPlaceholderText(shown);
        grid->addWidget(field, 2, place);
        return field;
    };
    m_from = addMoment(1, texts::kFrom, "txtFrom", "0");
    grid->addWidget(new QLabel(texts::kTo, this), 2, 2);
    m_to = addMoment(3, texts::kTo, "txtTo", timelineEnd());
    auto* from = new QLabel(texts::kFrom, this);
    grid->addWidget(from, 2, 0, Qt::AlignRight);

    m_size = addList(*grid, 3, texts::kSize, "cmbSize");
    const QSize own = m_movie.size;
    m_size->addItem(QString(texts::kSizeOwn).arg(own.width()).arg(own.height()), static_cast<int>(Size::Own));
    m_size->addItem(QString(texts::kSizeDouble).arg(2 * own.width()).arg(2 * own.height()),
                    static_cast<int>(Size::Double));
    for (std::size_t i = 0; i < std::size(kNamedSizes); ++i)
        m_size->addItem(QString("%1 x %2").arg(kNamedSizes[i].width()).arg(kNamedSizes[i].height()),
                        static_cast<int>(Size::P720) + static_cast<int>(i));
    m_size->addItem(texts::kSizeGiven, static_cast<int>(Size::Given));
    const auto addSide = [&](int place, const char* name, int value) {
        auto* side = new QSpinBox(this);
        side->setObjectName(name);
        side->setRange(16, kMaxSide);
        side->setValue(value);
        side->setFixedHeight(kControlHeight);
        grid->addWidget(side, 4, place);
        return side;
    };
    m_width = addSide(1, "spnWidth", own.width());
    grid->addWidget(new QLabel("x", this), 4, 2, Qt::AlignHCenter);
    m_height = addSide(3, "spnHeight", own.height());

    m_rate = addList(*grid, 5, texts::kRate, "cmbRate");
    m_rate->addItem(QString(texts::kRateOwn).arg(shortNumber(m_movie.framesPerSecond)), 0);
    for (const int rate : kRates) m_rate->addItem(QString::number(rate), rate);
    m_quality = addList(*grid, 6, texts::kQuality, "cmbQuality");
    for (const core::Text& quality : texts::kQualities) m_quality->addItem(quality);
    m_quality->setCurrentIndex(1);

    const auto addBox = [&](int row, const QString& caption, const char* name) {
        auto* box = new QCheckBox(caption, this);
        box->setObjectName(name);
        grid->addWidget(box, row, 1, 1, 4);
        return box;
    };
    m_sound = addBox(7, texts::kSound, "chkSound");
    m_sound->setChecked(true);
    m_transparent = addBox(8, texts::kTransparent, "chkTransparent");

    auto* actions = new QHBoxLayout;
    grid->addLayout(actions, 9, 1, 1, 4);
    m_record = new QPushButton(texts::kRecord, this);
    m_record->setObjectName("cbRecord");
    m_record->setAutoDefault(false);
    m_record->setFixedHeight(kControlHeight);
    m_recorded = new QLabel(this);
    m_recorded->setObjectName("lblRecorded");
    actions->addWidget(m_record);
    actions->addWidget(m_recorded, 1);
    connect(m_record, &QPushButton::clicked, this, [this] { record(); });

    m_fault = new QLabel(this);
    m_fault->setObjectName("lblFault");
    QPalette red = m_fault->palette();
    red.setColor(QPalette::WindowText, QColor(0xB0, 0x2A, 0x26)); // the look's red, dark enough on paper
    m_fault->setPalette(red);
    column->addWidget(m_fault);

    auto* buttons = new QHBoxLayout;
    column->addLayout(buttons);
    buttons->setSpacing(8);
    buttons->addStretch(1);
    m_save = new QPushButton(texts::kSave, this);
    m_save->setObjectName("cbOk");
    m_save->setDefault(true);
    auto* cancel = new QPushButton(texts::kCancel, this);
    cancel->setObjectName("cbCancel");
    cancel->setAutoDefault(false);
    for (QPushButton* button : {m_save, cancel}) {
        button->setFixedHeight(kControlHeight);
        buttons->addWidget(button);
    }
    column->setSizeConstraint(QLayout::SetFixedSize);
    connect(m_save, &QPushButton::clicked, this, [this] { accept(); });
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    for (QComboBox* list : {m_format, m_range, m_size, m_rate, m_quality})
        for (int i = 0; i < list->count(); ++i) list->setItemData(i, QSize(0, kRowHeight), Qt::SizeHintRole);
}

QString ExportDialog::timelineEnd() const
{
    const double rate = std::max(m_movie.framesPerSecond, 1.0);
    return QString::number(std::max(m_movie.frames, 1) / rate, 'f', 2);
}

std::optional<double> ExportDialog::momentIn(const QLineEdit& field)
{
    const QString text = field.text().trimmed().isEmpty() ? field.placeholderText() : field.text().trimmed();
    const auto line = parse(
        std::vector<std::string>{"a.swf", "a.png", "--frame", QString(text).replace(',', '.').toStdString()});
    if (!line) return std::nullopt;
    return line->settings.fromMs;
}

QString ExportDialog::fault() const
{
    if (m_range->currentData().toInt() != static_cast<int>(End::Given)) return {};
    const auto from = momentIn(*m_from), to = momentIn(*m_to);
    if (!from || !to) return texts::kBadMoment;
    const double rate = std::max(m_movie.framesPerSecond, 1.0);
    const auto seconds = [rate](double moment, bool isEnd) {
        return moment < 0 ? (-moment - (isEnd ? 0 : 1)) / rate : moment / 1000;
    };
    return seconds(*to, true) > seconds(*from, false) ? QString() : QString(texts::kBadOrder);
}

void ExportDialog::adapt()
{
    const FormatInfo& format = infoOf(static_cast<Format>(m_format->currentData().toInt()));
    const bool isGiven = m_range->currentData().toInt() == static_cast<int>(End::Given);
    for (QLineEdit* field : {m_from, m_to}) field->setEnabled(isGiven);
    const bool hasGivenSize = m_size->currentData().toInt() == static_cast<int>(Size::Given);
    for (QSpinBox* side : {m_width, m_height}) side->setEnabled(format.hasPictures && hasGivenSize);
    m_size->setEnabled(format.hasPictures);
    m_rate->setEnabled(format.hasPictures);
    m_quality->setEnabled(format.format != Format::Gif && format.format != Format::Png && format.hasPictures);
    m_sound->setEnabled(format.hasPictures && format.hasSound);
    m_transparent->setEnabled(format.canBeTransparent);
    m_fault->setText(fault());
    m_save->setEnabled(m_format->currentIndex() >= 0 && m_fault->text().isEmpty());
    m_settled.start();
}

Settings ExportDialog::settings() const
{
    Settings settings;
    settings.movie = m_movie.address.toStdString();
    settings.format = static_cast<Format>(m_format->currentData().toInt());
    const FormatInfo& format = infoOf(settings.format);
    settings.end = static_cast<End>(m_range->currentData().toInt());
    if (settings.end == End::Given) {
        settings.fromMs = momentIn(*m_from).value_or(0);
        settings.toMs = momentIn(*m_to).value_or(0);
    }
    switch (const auto size = static_cast<Size>(m_size->currentData().toInt())) {
    case Size::Own: break;
    case Size::Double: settings.scale = 2; break;
    case Size::Given: settings.size = {m_width->value(), m_height->value()}; break;
    default:
        settings.size = kNamedSizes[static_cast<std::size_t>(size) - static_cast<std::size_t>(Size::P720)];
        break;
    }
    settings.rate = {m_rate->currentData().toInt(), 1};
    settings.quality = static_cast<Quality>(m_quality->currentIndex());
    settings.hasSound = m_sound->isChecked();
    settings.input = m_input.toStdString();
    settings.isGroundTransparent = format.canBeTransparent && m_transparent->isChecked();
    return settings;
}

QString ExportDialog::choice() const
{
    Settings general = settings();
    general.movie = std::string("m");
    general.out = std::string("o.") + infoOf(general.format).extension;
    if (general.end == End::Given) general.end = End::Timeline;
    general.fromMs = general.toMs = 0;
    general.input.clear();
    QStringList words;
    for (const std::string& word : wordsOf(general)) words += QString::fromStdString(word);
    return words.mid(1).join(' ');
}

void ExportDialog::choose(const QString& last)
{
    std::vector<std::string> words{"m"};
    for (const QString& word : last.split(' ', Qt::SkipEmptyParts)) words.push_back(word.toStdString());
    const auto line = parse(words);
    if (!line || line->what != CommandLine::What::Export) return;
    const Settings& settings = line->settings;
    const auto select = [](QComboBox& list, int value) {
        const int found = list.findData(value);
        const auto* model = qobject_cast<const QStandardItemModel*>(list.model());
        if (found >= 0 && model->item(found)->isEnabled()) list.setCurrentIndex(found);
    };
    select(*m_format, static_cast<int>(settings.format));
    select(*m_range, static_cast<int>(settings.end));
    select(*m_rate, settings.rate.isMovies() ? 0 : settings.rate.numerator);
    if (settings.size.isEmpty()) {
        select(*m_size, static_cast<int>(settings.scale == 2 ? Size::Double : Size::Own));
    } else {
        const auto* named = std::ranges::find(kNamedSizes, settings.size);
        select(*m_size, static_cast<int>(named == std::end(kNamedSizes) ? Size::Given : Size::P720) +
                            (named == std::end(kNamedSizes) ? 0 : static_cast<int>(named - kNamedSizes)));
        m_width->setValue(settings.size.width());
        m_height->setValue(settings.size.height());
    }
    m_quality->setCurrentIndex(static_cast<int>(settings.quality));
    m_sound->setChecked(settings.hasSound);
    m_transparent->setChecked(settings.isGroundTransparent);
}

void ExportDialog::accept()
{
    if (!m_save->isEnabled()) return;
    QDialog::accept();
}

void ExportDialog::record()
{
    RecordDialog dialog(this, m_movie);
    if (dialog.exec() != QDialog::Accepted || !m_folder->isValid()) return;
    QFile file(m_folder->filePath("input.json"));
    if (!file.open(QIODevice::WriteOnly) || file.write(dialog.events()) != dialog.events().size()) return;
    m_input = file.fileName();
    m_recorded->setText(QString(texts::kRecorded).arg(dialog.seconds(), 0, 'f', 1));
    // As long as was played, unless something else is said.
    m_range->setCurrentIndex(m_range->findData(static_cast<int>(End::Given)));
    m_from->clear();
    m_to->setText(QString::number(dialog.seconds(), 'f', 1));
}

void ExportDialog::askForPictures()
{
    if (!fault().isEmpty()) return;
    const Settings wanted = settings();
    showPicture(m_firstPicture, *m_first, "first.png", wanted.fromMs);
    std::optional<double> last;
    if (wanted.end == End::Given)
        last = wanted.toMs < 0 ? wanted.toMs : std::max(0.0, wanted.toMs - 1);
    else if (wanted.end == End::Timeline && m_movie.frames > 1)
        last = -m_movie.frames;
    if (!last) m_last->setText(texts::kUnknownPicture);
    showPicture(m_lastPicture, *m_last, "last.png", last);
}

void ExportDialog::showPicture(ExportProcess& process, QLabel& place, const QString& file,
                               std::optional<double> moment)
{
    process.disconnect(this);
    if (!moment || !m_folder->isValid()) return;
    Settings picture;
    picture.movie = m_movie.address.toStdString();
    picture.format = Format::Png;
    picture.isOnePicture = true;
    picture.fromMs = *moment;
    picture.input = m_input.toStdString();
    picture.size = m_movie.size.scaled(kPictureSize, Qt::KeepAspectRatio).expandedTo({1, 1});
    const QString path = m_folder->filePath(file);
    picture.out = path.toStdString();
    // A start while the one before still works is put off until it is done.
    connect(&process, &ExportProcess::finished, this, [&place, path](Exit exit, const QString&) {
        if (exit == Exit::Done) place.setPixmap(QPixmap(path));
    });
    process.restart(picture);
}

} // namespace exporter
