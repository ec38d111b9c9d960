#include "cQtShell.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMessageBox>
#include <QScreen>
#include <QStandardPaths>
#include <QThread>
#include <QUrl>

#include "editor/iEditorView.h"

namespace toval {

namespace {

QString QtText(const std::u16string& text) {
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

std::u16string Folder(const QString& path) {
    QString folder = QDir::cleanPath(path);
    if (!folder.endsWith(QLatin1Char('/'))) folder += QLatin1Char('/');
    return folder.toStdU16String();
}

// An XDG base folder: the variable when it holds an absolute path, else the default under home.
QString XdgHome(const char* variable, const QString& fallback) {
    const QString value = qEnvironmentVariable(variable);
    if (!value.isEmpty() && QDir::isAbsolutePath(value)) return value;
    return QDir::homePath() + QLatin1Char('/') + fallback;
}

}  // namespace

cQtShell::cQtShell(std::u16string dataFolder) : dataFolder_(std::move(dataFolder)) {}

int32_t cQtShell::ShowMessage(const std::u16string& text, const std::u16string& title,
                              int32_t flags) {
    QMessageBox box;
    box.setWindowTitle(QtText(title));
    box.setText(QtText(text));
    if (rightToLeft_) box.setLayoutDirection(Qt::RightToLeft);
    switch (flags & 0x70) {
        case kMbIconError:
            box.setIcon(QMessageBox::Critical);
            break;
        case kMbIconQuestion:
            box.setIcon(QMessageBox::Question);
            break;
        case kMbIconExclamation:
            box.setIcon(QMessageBox::Warning);
            break;
        case kMbIconInformation:
            box.setIcon(QMessageBox::Information);
            break;
        default:
            break;
    }
    switch (flags & 0x0F) {
        case kMbOkCancel:
            box.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel);
            break;
        case kMbYesNo:
            box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
            break;
        case kMbYesNoCancel:
            box.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
            break;
        default:
            box.setStandardButtons(QMessageBox::Ok);
            break;
    }
    switch (box.exec()) {
        case QMessageBox::Cancel:
            return kIdCancel;
        case QMessageBox::Yes:
            return kIdYes;
        case QMessageBox::No:
            return kIdNo;
        default:
            return kIdOk;
    }
}

void cQtShell::OpenLink(const std::u16string& url) {
    QDesktopServices::openUrl(QUrl(QtText(url)));
}

void cQtShell::Sleep(int32_t ms) {
    if (ms > 0) QThread::msleep(static_cast<unsigned long>(ms));
}

cQtShell::~cQtShell() {
    if (lock_ >= 0) ::close(lock_);
}

bool cQtShell::PrevInstance() {
    // One lock per user: the runtime folder is the user's own. The kernel
    // drops the lock when the process ends, however it ends, so a crashed
    // instance leaves nothing stale behind and nothing is written to disk.
    QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (folder.isEmpty()) folder = QDir::tempPath();
    if (lock_ >= 0) return false;
    const QByteArray path = QFile::encodeName(folder + QStringLiteral("/toval.lock"));
    lock_ = ::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (lock_ < 0) return false;  // no lock to be had: run rather than refuse
    if (::flock(lock_, LOCK_EX | LOCK_NB) == 0) return false;
    ::close(lock_);
    lock_ = -1;
    return true;
}

std::u16string cQtShell::SpecialFolder(int32_t id) {
    QString folder;
    if (id == kFolderAppData)
        folder = XdgHome("XDG_CONFIG_HOME", QStringLiteral(".config"));
    else if (id == kFolderLocalAppData)
        folder = XdgHome("XDG_CACHE_HOME", QStringLiteral(".cache"));
    else
        return {};
    // A fresh account may not have it yet; the XDG rules say to make it.
    QDir().mkpath(folder);
    return Folder(folder);
}

std::u16string cQtShell::StateFolder() {
    const QString folder =
        XdgHome("XDG_STATE_HOME", QStringLiteral(".local/state")) + QStringLiteral("/toval");
    QDir().mkpath(folder);
    return Folder(folder);
}

std::u16string cQtShell::DefaultDataFolder() {
    const QString installed =
        QCoreApplication::applicationDirPath() + QStringLiteral("/../share/toval");
    if (QFileInfo::exists(installed + QStringLiteral("/enus.ini"))) return Folder(installed);
    return Folder(QStringLiteral(TOVAL_SOURCE_LANG));
}

int32_t cQtShell::ScreenWidthTwips() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen ? screen->geometry().width() * 15 : 0;
}

int32_t cQtShell::ScreenHeightTwips() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen ? screen->geometry().height() * 15 : 0;
}

void cQtShell::DoEvents() {
    QCoreApplication::processEvents();
}

}  // namespace toval
