// The settings dialog: the lyric service, the language, the lyric font and
// colours, the window's translucency and whether it stays on top. It edits a
// copy of the settings; Accepted() hands it back.
#pragma once

#include <QDialog>
#include <array>

#include "config/cSettings.h"

class QCheckBox;
class QComboBox;
class QLineEdit;
class QPushButton;
class QSlider;

namespace toval {

class cSettingsDialog final : public QDialog {
    Q_OBJECT

  public:
    // languageFolder: where the language files are (with a trailing separator).
    cSettingsDialog(const cGlobals& globals, const std::u16string& languageFolder,
                    QWidget* parent = nullptr);
    // The settings as edited, and the language file chosen.
    cSettings Edited() const;
    std::u16string LanguageFile() const;

  private:
    void ShowColor(int slot);
    void ShowFont();

    cSettings settings_;
    std::u16string folder_;
    QLineEdit* server_ = nullptr;
    QComboBox* language_ = nullptr;
    QPushButton* font_ = nullptr;
    std::array<QPushButton*, 4> colors_{};
    QSlider* alpha_ = nullptr;
    QCheckBox* onTop_ = nullptr;
};

}  // namespace toval
