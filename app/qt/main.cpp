// toval: shows the lyric of the track an MPRIS player plays, word by word.
#include <QApplication>
#include <QCommandLineParser>
#include <QFontDatabase>
#include <thread>

#include "cQtProgram.h"

int main(int argc, char* argv[]) {
    // The lyric window repaints a few words at a time. Through shared memory
    // every such paint waits for the X server to finish reading the last one
    // (a round trip, two threads woken); sending the few pixels does not.
    if (!qEnvironmentVariableIsSet("QT_XCB_NO_MITSHM")) qputenv("QT_XCB_NO_MITSHM", "1");
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("toval"));
    QApplication::setApplicationVersion(QStringLiteral("1.3.1"));
    QApplication::setQuitOnLastWindowClosed(false);

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Shows the lyric of the playing track."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption player(
        QStringLiteral("player"),
        QStringLiteral("Follow only the MPRIS player NAME (e.g. mpv, vlc)."),
        QStringLiteral("NAME"));
    parser.addOption(player);
    parser.process(app);

    // Reading the system's font set takes a good part of the start-up; a
    // helper thread does it while the program finds its player and lyric.
    std::thread fonts([] { QFontDatabase::families(); });

    toval::cQtProgram::Options options;
    options.player = parser.value(player);
    options.tracePath = qEnvironmentVariable("TOVAL_TRACE");
    toval::cQtProgram program(options);
    const bool started = program.Start();
    const int code = started ? QApplication::exec() : 0;
    fonts.join();
    return code;
}
