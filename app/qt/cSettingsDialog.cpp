#include "cSettingsDialog.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QFontDialog>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <algorithm>

#include "cQtPicture.h"
#include "config/cIniEngine.h"

namespace toval {

namespace {

cColor RefOf(const QColor& c) {
    return static_cast<cColor>(static_cast<uint32_t>(c.red()) |
                               (static_cast<uint32_t>(c.green()) << 8) |
                               (static_cast<uint32_t>(c.blue()) << 16));
}

int32_t& SlotOf(cSettings& s, int slot) {
    switch (slot) {
        case 0:
            return s.color_Backround;
        case 1:
            return s.color_BackText;
        case 2:
            return s.color_NormalText;
        default:
            return s.color_HighlighText;
    }
}

}  // namespace

cSettingsDialog::cSettingsDialog(const cGlobals& globals, const std::u16string& languageFolder,
                                 QWidget* parent)
    : QDialog(parent), settings_(globals.Settings), folder_(languageFolder) {
    setWindowTitle(tr("Toval settings"));
    setLayoutDirection(globals.RightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
    auto* form = new QFormLayout(this);

    server_ = new QLineEdit(QString::fromStdU16String(settings_.conn_Server), this);
    form->addRow(tr("Lyric service"), server_);

    // Every language file in the folder, by the name it gives itself.
    language_ = new QComboBox(this);
    cIniEngine ini;
    const QDir dir(QString::fromStdU16String(folder_));
    for (const QString& file : dir.entryList({QStringLiteral("*.ini")}, QDir::Files, QDir::Name)) {
        const std::u16string path = (dir.filePath(file)).toStdU16String();
        const std::string name = ini.ReadString(path, "info", "name", "", 1024);
        const QString base = QFileInfo(file).completeBaseName();
        language_->addItem(name.empty() ? base : QString::fromLatin1(name.c_str()), base);
        if (base.toStdU16String() == settings_.language_name)
            language_->setCurrentIndex(language_->count() - 1);
    }
    form->addRow(tr("Language"), language_);

    font_ = new QPushButton(this);
    form->addRow(tr("Font"), font_);

    const char* names[] = {QT_TR_NOOP("Background"), QT_TR_NOOP("Other lines"),
                           QT_TR_NOOP("Current line"), QT_TR_NOOP("Current word")};
    for (int slot = 0; slot < 4; ++slot) {
        colors_[static_cast<size_t>(slot)] = new QPushButton(this);
        connect(colors_[static_cast<size_t>(slot)], &QPushButton::clicked, this, [this, slot] {
            const QColor chosen = QColorDialog::getColor(ColorOf(SlotOf(settings_, slot)), this);
            if (chosen.isValid()) SlotOf(settings_, slot) = RefOf(chosen);
            ShowColor(slot);
        });
        form->addRow(tr(names[slot]), colors_[static_cast<size_t>(slot)]);
        ShowColor(slot);
    }

    alpha_ = new QSlider(Qt::Horizontal, this);
    alpha_->setRange(40, 255);
    alpha_->setValue(settings_.effect_Alpha);
    form->addRow(tr("Opacity"), alpha_);
    onTop_ = new QCheckBox(tr("Always on top"), this);
    onTop_->setChecked(settings_.effect_AlwaysOnTop);
    form->addRow(QString(), onTop_);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    form->addRow(buttons);
    ShowFont();
    connect(font_, &QPushButton::clicked, this, [this] {
        QFont current(QString::fromStdU16String(settings_.font_Name), settings_.font_Size);
        current.setBold(settings_.font_Bold);
        current.setItalic(settings_.font_Italic);
        bool ok = false;
        const QFont chosen = QFontDialog::getFont(&ok, current, this);
        if (ok) {
            settings_.font_Name = chosen.family().toStdU16String();
            settings_.font_Size = static_cast<int16_t>(std::clamp(chosen.pointSize(), 4, 200));
            settings_.font_Bold = chosen.bold();
            settings_.font_Italic = chosen.italic();
        }
        ShowFont();
    });
}

void cSettingsDialog::ShowColor(int slot) {
    QPushButton* button = colors_[static_cast<size_t>(slot)];
    const QColor color = ColorOf(SlotOf(settings_, slot));
    button->setText(color.name());
    button->setStyleSheet(QStringLiteral("background:%1; color:%2")
                              .arg(color.name(), color.lightness() > 128 ? "black" : "white"));
}

void cSettingsDialog::ShowFont() {
    font_->setText(QStringLiteral("%1, %2 pt%3")
                       .arg(QString::fromStdU16String(settings_.font_Name))
                       .arg(settings_.font_Size)
                       .arg(settings_.font_Bold ? tr(", bold") : QString()));
}

cSettings cSettingsDialog::Edited() const {
    cSettings s = settings_;
    s.conn_Server = server_->text().trimmed().toStdU16String();
    if (s.conn_Server.empty()) s.conn_Server = kDefaultServer;
    s.effect_Alpha = static_cast<uint8_t>(alpha_->value());
    s.effect_AlwaysOnTop = onTop_->isChecked();
    return s;
}

std::u16string cSettingsDialog::LanguageFile() const {
    return folder_ + language_->currentData().toString().toStdU16String() + u".ini";
}

}  // namespace toval
