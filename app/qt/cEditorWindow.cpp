#include "cEditorWindow.h"

#include <QBoxLayout>
#include <QCloseEvent>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QGridLayout>
#include <QGroupBox>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QPainterPath>
#include <QRadioButton>
#include <QScreen>
#include <QScrollBar>
#include <QTextOption>
#include <algorithm>
#include <utility>
#include <vector>

#include "cQtSocket.h"
#include "editor/cEditAdvTime.h"
#include "editor/cEditTime.h"
#include "lyric/cLyric.h"
#include "lyric/cLyricLine.h"
#include "lyric/cLyricWord.h"
#include "net/cTovalSite.h"
#include "platform/Shell.h"

namespace toval {

namespace {

constexpr int kMargin = 10;  // around the lyric in its picture
constexpr int kTwips = 15;   // per pixel

QString QtText(const std::u16string& text) {
    return QString::fromStdU16String(text);
}

// The window's text box ends lines with LF; the editor's text with CR LF.
std::u16string EditorText(const QString& text) {
    QString crlf = text;
    crlf.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    crlf.replace(QLatin1Char('\n'), QStringLiteral("\r\n"));
    return crlf.toStdU16String();
}

// A layout box in the picture, the lyric's top left corner at origin.
QRect BoxOf(const std::shared_ptr<cDelta>& delta, const QPoint& origin) {
    if (!delta || !delta->Initial() || !delta->Final()) return {};
    const int32_t left = delta->Initial()->X(), top = delta->Initial()->Y();
    const int32_t right = delta->Final()->X(), bottom = delta->Final()->Y();
    if (left == kUnset || top == kUnset || right == kUnset || bottom == kUnset) return {};
    return QRect(QPoint(left, top), QPoint(right, bottom)).translated(origin);
}

int32_t ShiftOf(Qt::KeyboardModifiers modifiers) {
    int32_t shift = 0;
    if (modifiers & Qt::ShiftModifier) shift |= kShiftMask;
    if (modifiers & Qt::ControlModifier) shift |= kCtrlMask;
    return shift;
}

// The timing help's picture: the keyboard's arrow keys, the three used ones
// in the highlight colour, drawn for the screen's pixel ratio.
QPixmap ArrowKeys(const QPalette& palette, qreal ratio) {
    constexpr int kKey = 44, kGap = 6;
    const QSize size(3 * kKey + 2 * kGap + 2, 2 * kKey + kGap + 2);
    QPixmap pixmap(size * ratio);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    // Up, left, down, right: the direction each arrow points to, as a turn.
    const struct {
        int column, row, degrees;
        bool used;
    } keys[] = {{1, 0, -90, false}, {0, 1, 180, true}, {1, 1, 90, true}, {2, 1, 0, true}};
    for (const auto& key : keys) {
        const QRectF cap(1 + key.column * (kKey + kGap), 1 + key.row * (kKey + kGap), kKey, kKey);
        p.setPen(QPen(palette.color(QPalette::Mid), 1.5));
        p.setBrush(key.used ? palette.color(QPalette::Highlight) : palette.color(QPalette::Button));
        p.drawRoundedRect(cap, 7, 7);
        p.save();
        p.translate(cap.center());
        p.rotate(key.degrees);
        QPainterPath arrow;
        arrow.moveTo(12, 0);
        arrow.lineTo(0, -10);
        arrow.lineTo(0, -4);
        arrow.lineTo(-12, -4);
        arrow.lineTo(-12, 4);
        arrow.lineTo(0, 4);
        arrow.lineTo(0, 10);
        arrow.closeSubpath();
        p.setPen(Qt::NoPen);
        p.setBrush(key.used ? palette.color(QPalette::HighlightedText)
                            : palette.color(QPalette::Mid));
        p.drawPath(arrow);
        p.restore();
    }
    return pixmap;
}

}  // namespace

// --- The lyric picture ---

cEditorPicture::cEditorPicture(cEditor& editor, const cQtPicture& measure,
                               const cSettings& settings)
    : editor_(editor), measure_(measure), settings_(settings) {
    setObjectName(QStringLiteral("pb_Main"));
    setFocusPolicy(Qt::StrongFocus);
    // Painted whole by paintEvent: no background erase, so nothing flickers.
    setAttribute(Qt::WA_OpaquePaintEvent);
}

QRect cEditorPicture::Box(int32_t line, int32_t word) const {
    const auto lyric = editor_.Lyric();
    const auto l = lyric ? lyric->GetLine(line) : nullptr;
    if (!l) return {};
    if (word == kUnset) return BoxOf(l->Delta(), Origin());
    const auto w = l->GetWord(word);
    return w ? BoxOf(w->Delta(), Origin()) : QRect();
}

QPoint cEditorPicture::Origin() const {
    const auto lyric = editor_.Lyric();
    const QRect all = lyric ? BoxOf(lyric->Delta(), QPoint()) : QRect();
    // A right-to-left lyric stands at the right edge.
    if (lyric && lyric->RightToLeft())
        return QPoint(std::max(kMargin, width() - kMargin - all.right() - 1), kMargin);
    return QPoint(kMargin, kMargin);
}

void cEditorPicture::Fit() {
    const auto lyric = editor_.Lyric();
    const QRect all = lyric ? BoxOf(lyric->Delta(), QPoint(kMargin, kMargin)) : QRect();
    // At least the lyric's size; the scroll area stretches it to its view.
    setMinimumSize(std::max(all.right() + kMargin, 1), std::max(all.bottom() + kMargin, 1));
    update();
}

void cEditorPicture::paintEvent(QPaintEvent* event) {
    QPainter p(this);
    p.fillRect(event->rect(), ColorOf(settings_.color_Backround));
    const auto lyric = editor_.Lyric();
    if (!lyric) return;
    p.setFont(measure_.Font());
    const QPoint origin = Origin();
    const auto draw = [&](const std::u16string& text, const QRect& box, cColor color) {
        if (box.isEmpty() || !box.intersects(event->rect())) return;
        p.setPen(ColorOf(color));
        p.drawText(box, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, QtText(text));
    };
    for (int32_t i = 0; i < lyric->GetLineSize(); ++i) {
        const auto line = lyric->GetLine(i);
        if (!line || !BoxOf(line->Delta(), origin).intersects(event->rect())) continue;
        const bool current = i == editor_.curLine();
        const cColor color = current ? settings_.color_NormalText : settings_.color_BackText;
        if (line->GetWordSize() == 0) draw(line->Text(), BoxOf(line->Delta(), origin), color);
        for (int32_t j = 0; j < line->GetWordSize(); ++j) {
            const auto word = line->GetWord(j);
            if (!word) continue;
            const bool highlighted = current && j == editor_.curWord();
            draw(word->Text(), BoxOf(word->Delta(), origin),
                 highlighted ? settings_.color_HighlighText : color);
        }
    }
}

void cEditorPicture::keyPressEvent(QKeyEvent* event) {
    int32_t code = 0;
    switch (event->key()) {
        case Qt::Key_Left:
            code = kKeyLeft;
            break;
        case Qt::Key_Up:
            code = kKeyUp;
            break;
        case Qt::Key_Right:
            code = kKeyRight;
            break;
        case Qt::Key_Down:
            code = kKeyDown;
            break;
        case Qt::Key_Z:
            code = kKeyZ;
            break;
        case Qt::Key_Y:
            code = kKeyY;
            break;
        default:
            QWidget::keyPressEvent(event);
            return;
    }
    // The arrows time the lyric; they never scroll the picture.
    if (onKey) onKey(code, ShiftOf(event->modifiers()));
}

void cEditorPicture::mousePressEvent(QMouseEvent* event) {
    setFocus();
    const int32_t button = event->button() == Qt::RightButton  ? kButtonRight
                           : event->button() == Qt::LeftButton ? kButtonLeft
                                                               : 4;
    if (onMouse)
        onMouse(button, ShiftOf(event->modifiers()), event->position().x() - Origin().x(),
                event->position().y() - Origin().y());
}

// --- The window ---

cEditorWindow::cEditorWindow(Links links)
    : QWidget(nullptr, Qt::Window),
      links_(std::move(links)),
      editor_(links_.globals, links_.random, links_.texts) {
    setObjectName(QStringLiteral("fEdit"));
    setAttribute(Qt::WA_DeleteOnClose, false);
    setLayoutDirection(links_.globals.RightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
    // The lyric font, at a size that is comfortable to read while timing.
    cSettings font = links_.globals.Settings;
    font.font_Size = std::max<int16_t>(font.font_Size, 13);
    measure_.setFont(font);

    text_ = new QPlainTextEdit(this);
    text_->setObjectName(QStringLiteral("txtEdit"));
    connect(text_, &QPlainTextEdit::textChanged, this,
            [this] { editor_.txtEdit_Change(EditorText(text_->toPlainText())); });
    picture_ = new cEditorPicture(editor_, measure_, links_.globals.Settings);
    picture_->onKey = [this](int32_t code, int32_t shift) {
        if (links_.refreshPosition) links_.refreshPosition();
        editor_.pb_Main_KeyDown(code, shift);
    };
    picture_->onMouse = [this](int32_t button, int32_t shift, double x, double y) {
        if (links_.refreshPosition) links_.refreshPosition();
        editor_.pb_Main_MouseDown(button, shift, x, y);
    };
    scroll_ = new QScrollArea(this);
    scroll_->setWidget(picture_);
    scroll_->setWidgetResizable(true);
    scroll_->setBackgroundRole(QPalette::Base);

    const auto button = [this](std::u16string_view object, const char* english, auto click) {
        auto* b = Labelled(new QPushButton(this), object, english);
        connect(b, &QPushButton::clicked, this, click);
        return b;
    };
    cmdLoad_ = button(u"cmdLoad", "&Load file", [this] { editor_.cmdLoad_Click(); });
    cmdSave_ = button(u"cmdSave", "&Save as", [this] { editor_.cmdSave_Click(); });
    cmdInternet_ = button(u"cmdInternet", "&Internet", [this] { editor_.cmdInternet_Click(); });
    cmdReset_ = button(u"cmdReset", "&Reset", [this] { editor_.cmdReset_Click(); });
    cmdBack_ = button(u"cmdBack", "&Back", [this] { editor_.cmdBack_Click(); });
    cmdNext_ = button(u"cmdNext", "&Next", [this] {
        editor_.cmdNext_Click();
        if (editor_.Step() != 1) picture_->setFocus();
    });
    chkAutoImplode_ = Labelled(new QCheckBox(this), u"chkAutoImplode", "Auto Implode");
    connect(chkAutoImplode_, &QCheckBox::clicked, this,
            [this](bool on) { editor_.chkAutoImplode_Click(on); });
    chkRighttoleft_ = Labelled(new QCheckBox(this), u"chkRighttoleft", "Right to left");
    connect(chkRighttoleft_, &QCheckBox::clicked, this,
            [this](bool on) { editor_.chkRighttoleft_Click(on); });

    // The layout mirrors itself in a right-to-left language.
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(chkRighttoleft_);
    buttons->addWidget(chkAutoImplode_);
    buttons->addStretch();
    for (QPushButton* b : {cmdLoad_, cmdSave_, cmdInternet_, cmdReset_, cmdBack_, cmdNext_})
        buttons->addWidget(b);
    // The preview's explanation, above its lyric picture.
    const std::u16string preview =
        links_.texts ? links_.texts(u"TovalEditPreviewText") : std::u16string();
    preview_ = new QLabel(QtText(preview).remove(QLatin1Char('\r')), this);
    preview_->setObjectName(QStringLiteral("lblPreview"));
    preview_->setWordWrap(true);
    preview_->setAlignment(Qt::AlignLeading | Qt::AlignVCenter);
    preview_->hide();
    auto* main = new QVBoxLayout(this);
    main->addWidget(text_, 1);
    main->addWidget(preview_);
    main->addWidget(scroll_, 1);
    main->addLayout(buttons);

    editor_.setAuxPictureBox(&measure_);
    editor_.setView(this);
    editor_.setStreamTimer(&stream_);
    // The preview reads the play position on every tick.
    stream_.onTimer = [this] {
        if (links_.refreshPosition) links_.refreshPosition();
        editor_.tmr_Stream_Timer();
    };
    editor_.setSenderFactory([this] {
        auto site = std::make_shared<cTovalSite>(links_.globals);
        site->setSocket(std::make_shared<cQtSocket>());
        site->setTime(std::make_shared<cQtTimer>());
        return site;
    });
}

cEditorWindow::~cEditorWindow() {
    editor_.setView(nullptr);
}

QString cEditorWindow::Caption(std::u16string_view object, const char* english) const {
    const std::u16string text =
        links_.objects ? links_.objects(std::u16string(object) + u".caption") : std::u16string();
    return text.empty() ? QString::fromUtf8(english) : QtText(text);
}

template <class W>
W* cEditorWindow::Labelled(W* widget, std::u16string_view object, const char* english) {
    widget->setObjectName(QString::fromStdU16String(std::u16string(object)));
    const std::u16string path = u".fEdit." + std::u16string(object);
    widget->setText(Caption(path, english));
    if (links_.objects) widget->setToolTip(QtText(links_.objects(path + u".tooltiptext")));
    return widget;
}

QWidget* cEditorWindow::Control(eEditorControl control) const {
    switch (control) {
        case eEditorControl::fraText:
            return text_;
        case eEditorControl::pb_Main:
            return scroll_;
        case eEditorControl::cmdLoad:
            return cmdLoad_;
        case eEditorControl::cmdSave:
            return cmdSave_;
        case eEditorControl::cmdInternet:
            return cmdInternet_;
        case eEditorControl::cmdBack:
            return cmdBack_;
        case eEditorControl::cmdNext:
            return cmdNext_;
        case eEditorControl::cmdReset:
            return cmdReset_;
        case eEditorControl::chkAutoImplode:
            return chkAutoImplode_;
        case eEditorControl::chkRighttoleft:
            return chkRighttoleft_;
    }
    return nullptr;
}

void cEditorWindow::setCaption(const std::u16string& text) {
    setWindowTitle(QtText(text));
    // The caption changes with the step: the preview's explanation shows in its own.
    preview_->setVisible(editor_.Step() == 3 && !preview_->text().isEmpty());
}

void cEditorWindow::setEnabled(eEditorControl control, bool enabled) {
    if (QWidget* w = Control(control)) w->setEnabled(enabled);
}

void cEditorWindow::setVisible(eEditorControl control, bool visible) {
    if (QWidget* w = Control(control)) w->setVisible(visible);
}

void cEditorWindow::setChecked(eEditorControl control, bool checked) {
    if (auto* box = qobject_cast<QCheckBox*>(Control(control))) box->setChecked(checked);
}

void cEditorWindow::setEditText(const std::u16string& text) {
    // The editor knows its text already: no change goes back to it.
    const QSignalBlocker quiet(text_);
    text_->setPlainText(QtText(text).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
}

void cEditorWindow::setEditRightToLeft(bool rightToLeft) {
    QTextOption option = text_->document()->defaultTextOption();
    option.setTextDirection(rightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
    option.setAlignment(rightToLeft ? Qt::AlignRight : Qt::AlignLeft);
    text_->document()->setDefaultTextOption(option);
}

bool cEditorWindow::FileDialog(cFileDialog& dialog, bool save) {
    // "name|pattern|name|pattern": the names carry their patterns already.
    const QStringList pieces = QtText(dialog.Filter).split(QLatin1Char('|'));
    QStringList names;
    for (qsizetype i = 0; i + 1 < pieces.size(); i += 2)
        names << pieces[i];
    QFileDialog box(this, windowTitle(), QtText(dialog.InitDir));
    box.setObjectName(QStringLiteral("cd_Dialog"));
    box.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    box.setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    box.setNameFilters(names);
    if (dialog.FilterIndex >= 1 && dialog.FilterIndex <= names.size())
        box.selectNameFilter(names[dialog.FilterIndex - 1]);
    if (!dialog.FileName.empty()) box.selectFile(QtText(dialog.FileName));
    if (box.exec() != QDialog::Accepted || box.selectedFiles().isEmpty()) return false;
    dialog.FilterIndex = static_cast<int32_t>(names.indexOf(box.selectedNameFilter()) + 1);
    dialog.FileName = box.selectedFiles().first().toStdU16String();
    return true;
}

bool cEditorWindow::ShowOpen(cFileDialog& dialog) {
    return FileDialog(dialog, false);
}

bool cEditorWindow::ShowSave(cFileDialog& dialog) {
    return FileDialog(dialog, true);
}

int32_t cEditorWindow::ShowMessage(const std::u16string& text, const std::u16string& title,
                                   int32_t flags) {
    return links_.shell.ShowMessage(text, title, flags);
}

cMenuChoice cEditorWindow::PopupMenu(const cEditorMenu& m) {
    QMenu menu(this);
    std::vector<std::pair<QAction*, cMenuChoice>> choices;
    const auto list = [&](const char16_t* object, const char* english,
                          const std::vector<std::u16string>& times, bool enabled,
                          cMenuChoice::Kind kind) {
        QMenu* sub = menu.addMenu(Caption(std::u16string(u".fEdit.") + object, english));
        sub->setEnabled(enabled);
        for (size_t i = 0; i < times.size(); ++i)
            choices.push_back(
                {sub->addAction(QtText(times[i])), cMenuChoice{kind, static_cast<int32_t>(i + 1)}});
    };
    list(u"mnuEditTimes", "&Edit time", m.EditTimes, m.EditTimesEnabled, cMenuChoice::EditTime);
    list(u"mnuDelFrom", "&Delete from", m.DelTimes, m.DelFromEnabled, cMenuChoice::DelTime);
    choices.push_back({menu.addAction(Caption(u".fEdit.mnuDelTimes", "Delete &all times")),
                       cMenuChoice{cMenuChoice::DelTimes, 0}});
    menu.addSeparator();
    choices.push_back({menu.addAction(Caption(u".fEdit.mnuAdv", "Ad&vanced editing...")),
                       cMenuChoice{cMenuChoice::Adv, 0}});
    const QAction* chosen = menu.exec(QCursor::pos());
    for (const auto& [action, choice] : choices)
        if (action == chosen) return choice;
    return {};
}

bool cEditorWindow::OpenAdvTime(cEditAdvTime& d) {
    QDialog box(this);
    box.setObjectName(QStringLiteral("fEditAdvTime"));
    const auto caption = [this](const char16_t* object, const char* english) {
        return Caption(std::u16string(u".fEditAdvTime") + object, english);
    };
    box.setWindowTitle(caption(u"", "Advanced time editing"));
    QLineEdit* fields[cEditAdvTime::kFieldCount];
    for (int i = 0; i < cEditAdvTime::kFieldCount; ++i) {
        fields[i] = new QLineEdit(QtText(d.txtEdit(i)), &box);
        fields[i]->setObjectName(QStringLiteral("txtEdit%1").arg(i));
    }
    const auto option = [&](const char16_t* object, const char* english) {
        auto* o = new QRadioButton(caption(object, english), &box);
        o->setObjectName(QString::fromStdU16String(std::u16string(object).substr(1)));
        return o;
    };
    QRadioButton* optDelete = option(u".optDelete", "Delete");
    QRadioButton* optDelay = option(u".optDelay", "Delay by");
    QRadioButton* optAdjust = option(u".optAdjust", "Adjust");
    QRadioButton* optAll = option(u".optAll", "All");
    QRadioButton* optFrom = option(u".optFrom", "From");
    auto* action = new QGroupBox(caption(u".fmrAction", "Action"), &box);
    auto* a = new QGridLayout(action);
    a->addWidget(optDelete, 0, 0);
    a->addWidget(optDelay, 1, 0);
    a->addWidget(fields[cEditAdvTime::kDelayBy], 1, 1);
    a->addWidget(optAdjust, 2, 0);
    a->addWidget(fields[cEditAdvTime::kNewStart], 2, 1);
    a->addWidget(new QLabel(caption(u".lblSep", "to"), &box), 2, 2);
    a->addWidget(fields[cEditAdvTime::kNewEnd], 2, 3);
    auto* select = new QGroupBox(caption(u".fmrSelect", "Select"), &box);
    auto* s = new QGridLayout(select);
    s->addWidget(optAll, 0, 0);
    s->addWidget(optFrom, 1, 0);
    s->addWidget(fields[cEditAdvTime::kFrom], 1, 1);
    s->addWidget(new QLabel(caption(u".lblTo", "to"), &box), 1, 2);
    s->addWidget(fields[cEditAdvTime::kTo], 1, 3);
    auto* buttons = new QDialogButtonBox(&box);
    QPushButton* ok = buttons->addButton(caption(u".cmdOk", "OK"), QDialogButtonBox::AcceptRole);
    ok->setObjectName(QStringLiteral("cmdOk"));
    buttons->addButton(caption(u".cmdCancel", "Cancel"), QDialogButtonBox::RejectRole);
    auto* layout = new QVBoxLayout(&box);
    layout->addWidget(action);
    layout->addWidget(select);
    layout->addWidget(buttons);

    (d.optFrom() ? optFrom : optAll)->setChecked(true);
    (d.Action() == cEditAdvTime::kDelete   ? optDelete
     : d.Action() == cEditAdvTime::kAdjust ? optAdjust
                                           : optDelay)
        ->setChecked(true);
    const auto sync = [&] {
        for (int i = 0; i < cEditAdvTime::kFieldCount; ++i)
            fields[i]->setEnabled(d.FieldEnabled(i));
    };
    sync();
    const std::pair<QRadioButton*, void (cEditAdvTime::*)()> clicks[] = {
        {optDelete, &cEditAdvTime::optDelete_Click},
        {optDelay, &cEditAdvTime::optDelay_Click},
        {optAdjust, &cEditAdvTime::optAdjust_Click},
        {optAll, &cEditAdvTime::optAll_Click},
        {optFrom, &cEditAdvTime::optFrom_Click}};
    for (const auto& [o, click] : clicks)
        connect(o, &QRadioButton::clicked, &box, [&d, &sync, click = click] {
            (d.*click)();
            sync();
        });
    connect(buttons, &QDialogButtonBox::rejected, &box, &QDialog::reject);
    connect(buttons, &QDialogButtonBox::accepted, &box, [&] {
        for (int i = 0; i < cEditAdvTime::kFieldCount; ++i)
            d.setTxtEdit(i, fields[i]->text().toStdU16String());
        const int32_t refused = d.cmdOk();
        if (refused < 0) {
            box.accept();
            return;
        }
        fields[refused]->setFocus();
        fields[refused]->selectAll();
    });
    return box.exec() == QDialog::Accepted;
}

void cEditorWindow::OpenEditTime(cEditTime& d) {
    QDialog box(this);
    box.setObjectName(QStringLiteral("fEditTime"));
    box.setWindowTitle(Caption(u".fEditTime", "Edit time"));
    auto* field = new QLineEdit(QtText(d.txtEdit()), &box);
    field->setObjectName(QStringLiteral("txtEdit"));
    if (links_.objects)
        field->setToolTip(QtText(links_.objects(u".fEditTime.txtEdit.tooltiptext")));
    field->setMinimumWidth(field->fontMetrics().horizontalAdvance(QStringLiteral("000:00.000")) *
                           2);
    (new QVBoxLayout(&box))->addWidget(field);
    connect(field, &QLineEdit::returnPressed, &box, [&] {
        d.setTxtEdit(field->text().toStdU16String());
        if (d.txtEdit_KeyPress(kKeyEnter)) box.accept();
    });
    if (box.exec() != QDialog::Accepted) d.txtEdit_KeyPress(kKeyEscape);
}

void cEditorWindow::ShowEditInfo(const std::u16string& text) {
    QDialog box(this);
    box.setObjectName(QStringLiteral("fEditInfo"));
    box.setWindowTitle(Caption(u".fEditInfo", "How to time a lyric"));
    // The language's fuller help, else the editor's own sentence.
    const std::u16string help = links_.texts ? links_.texts(u"TovalEditHelp") : std::u16string();
    auto* label = new QLabel(QtText(help.empty() ? text : help).remove(QLatin1Char('\r')), &box);
    label->setWordWrap(true);
    label->setMinimumWidth(360);
    auto* keys = new QLabel(&box);
    keys->setPixmap(ArrowKeys(palette(), devicePixelRatioF()));
    keys->setAlignment(Qt::AlignCenter);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, &box);
    connect(buttons, &QDialogButtonBox::accepted, &box, &QDialog::accept);
    auto* layout = new QVBoxLayout(&box);
    layout->addWidget(keys);
    layout->addWidget(label);
    layout->addWidget(buttons);
    box.exec();
    picture_->setFocus();
}

void cEditorWindow::Redraw() {
    picture_->Fit();
}

void cEditorWindow::RedrawElement(int32_t line, int32_t word, bool highlighted) {
    const QRect box = picture_->Box(line, word);
    if (box.isEmpty()) return;
    picture_->update(box);
    // The cursor's line stays in view.
    if (highlighted && word == kUnset)
        scroll_->ensureVisible(box.center().x(), box.center().y(), kMargin, box.height() * 2);
}

cWindowRect cEditorWindow::WindowRect() {
    const QRect r = geometry();
    return {r.y() * kTwips, r.x() * kTwips, r.width() * kTwips, r.height() * kTwips};
}

void cEditorWindow::setWindowRect(const cWindowRect& rect) {
    const QScreen* screen = QGuiApplication::primaryScreen();
    const QRect area = screen ? screen->availableGeometry() : QRect(0, 0, 1024, 768);
    QRect r(rect.Left / kTwips, rect.Top / kTwips, rect.Width / kTwips, rect.Height / kTwips);
    r.setWidth(std::clamp(r.width(), 320, std::max(320, area.width())));
    r.setHeight(std::clamp(r.height(), 240, std::max(240, area.height())));
    // A window stored on a screen that is gone comes back into view.
    if (!area.contains(r.topLeft())) r.moveCenter(area.center());
    setGeometry(r);
}

void cEditorWindow::closeEvent(QCloseEvent* event) {
    bool cancel = false;
    editor_.Form_Unload(cancel);
    if (cancel) event->ignore();
}

}  // namespace toval
