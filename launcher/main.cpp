#include "common/session/session.h"
#include "common/session/settings/configuration.h"
#include "common/session/settings/serverports.h"
#include "common/ui/diagnostics/librarylogs.h"
#include "common/ui/diagnostics/logmanager.h"
#include "common/ui/gallery/gallerywindow.h"
#include "common/ui/shell/mainwindow.h"
#include "common/ui/style/stylesheet.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QEvent>
#include <QSettings>
#include <QSocketNotifier>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <memory>
#include <string_view>
#include <unistd.h>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

struct Options
{
    QString host;
    vantrel::ServerPorts ports;
    bool uiTest = false;
    QString screenshot;
    int seconds = 0;
    bool gallery = false;
};

/// The number of an option, if it lies within the range; ends the program with a message if it does not.
int number(const QCommandLineParser& parser, const QString& name, int minimum, int maximum)
{
    bool ok = false;
    const int value = parser.value(name).toInt(&ok);
    if (!ok || value < minimum || value > maximum) {
        fprintf(stderr, "halcyra: --%s takes a number from %d to %d\n", qPrintable(name), minimum, maximum);
        exit(2);
    }
    return value;
}

Options parse(const QCoreApplication& application)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Operates a media server: library, preview, program."));
    parser.addHelpOption();
    parser.addVersionOption();
    const vantrel::ServerPorts defaults;
    const auto add = [&parser](const char* name, const char* text, const char* value, const QString& preset) {
        parser.addOption(QCommandLineOption(QString::fromLatin1(name), QString::fromLatin1(text),
                                            QString::fromLatin1(value), preset));
    };
    add("connect", "Connect to this server at once.", "host", {});
    add("http-port", "The server's HTTP port.", "port", QString::number(defaults.http));
    add("link-port", "The server's scene link port.", "port", QString::number(defaults.link));
    add("preview-port", "The server's preview port.", "port", QString::number(defaults.preview));
    add("ftp-port", "The server's FTP port.", "port", QString::number(defaults.ftp));
    add("ui-test", "Let a robot on this machine drive the window.", "", {});
    add("ui-test-port", "Port of the UI test server; 0 picks a free one.", "port",
        QString::number(defaults.uiTest));
    add("gallery", "Show every widget in all its states instead of the application.", "", {});
    add("screenshot", "Save a picture of the window to this file, then quit.", "file", {});
    add("seconds", "Seconds until the picture is taken.", "seconds", QStringLiteral("5"));
    parser.process(application);

    Options options;
    options.host = parser.value(QStringLiteral("connect"));
    const auto port = [&parser](const char* name, int minimum) {
        return static_cast<quint16>(number(parser, QString::fromLatin1(name), minimum, 65535));
    };
    options.ports = {port("http-port", 1), port("link-port", 1), port("preview-port", 1), port("ftp-port", 1),
                     port("ui-test-port", 0)};
    options.uiTest = parser.isSet(QStringLiteral("ui-test"));
    options.gallery = parser.isSet(QStringLiteral("gallery"));
    options.screenshot = parser.value(QStringLiteral("screenshot"));
    options.seconds = number(parser, QStringLiteral("seconds"), 0, 24 * 60 * 60);
    return options;
}

/// Keeps the main thread from paying for the memory of others. What is freed of a large library would else
/// lie in small pieces until it frees anything large itself, and be put together then, for tens of
/// milliseconds; this way whoever frees a piece does it. And no thread is to share an arena, whose lock a
/// thread that gives way may hold for long.
void arrangeMemory()
{
#ifdef __GLIBC__
    mallopt(M_MXFAST, 0);
    mallopt(M_ARENA_MAX, 64);
#endif
}

/// --help and --version are answered without a display.
bool asksForText(int argc, char** argv)
{
    return std::any_of(argv + 1, argv + argc, [](const char* argument) {
        const std::string_view text(argument);
        return text == "-h" || text == "--help" || text == "-v" || text == "--version";
    });
}

/// Says once that the window is on the screen, so that a robot can tell how long that took.
class FirstPaint : public QObject
{
public:
    explicit FirstPaint(QWidget* window)
    {
        if (window)
            window->installEventFilter(this);
    }

private:
    bool eventFilter(QObject* window, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) {
            window->removeEventFilter(this);
            QTimer::singleShot(0, window, [] {
                puts("ui-test painted");
                fflush(stdout);
            });
        }
        return false;
    }
};

/// Ends the event loop when the system or a terminal asks the process to end, so that everything closes in
/// order; a loop that does not come back in time is ended with the process.
class EndSignals
{
public:
    EndSignals()
        : m_notifier(ends()[0], QSocketNotifier::Read)
    {
        QObject::connect(&m_notifier, &QSocketNotifier::activated, qApp, [] { QCoreApplication::quit(); });
        for (const int signal : {SIGTERM, SIGINT, SIGHUP})
            std::signal(signal, [](int) {
                alarm(endSeconds);
                const char byte = 0;
                [[maybe_unused]] const auto written = write(ends()[1], &byte, 1);
            });
    }

private:
    static constexpr unsigned endSeconds = 5;

    /// A pipe: a signal's handler may do little more than write to it.
    static const int* ends()
    {
        static const std::array<int, 2> pair = [] {
            std::array<int, 2> made{-1, -1};
            if (pipe(made.data()) != 0)
                qWarning() << "no pipe for signals: the process will end on them at once";
            return made;
        }();
        return pair.data();
    }

    QSocketNotifier m_notifier;
};

void scheduleScreenshot(vantrel::MainWindow& window, const Options& options)
{
    QTimer::singleShot(options.seconds * 1000, &window, [&window, file = options.screenshot] {
        const bool saved = window.grab().save(file);
        if (!saved)
            fprintf(stderr, "halcyra: cannot save a picture to %s\n", qPrintable(file));
        QCoreApplication::exit(saved ? 0 : 1);
    });
}

/// The page that shows the toolkit; its settings go with it.
int runGallery(QApplication& application, const Options& options)
{
    const QTemporaryDir settings;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
    vantrel::Configuration configuration;
    vantrel::StyleSheet::apply(application);
    vantrel::GalleryWindow window;
    window.show();
    if (!options.screenshot.isEmpty()) {
        QTimer::singleShot(options.seconds * 1000, &window, [&window, &options] {
            const bool saved = window.sheet().save(options.screenshot);
            if (!saved)
                fprintf(stderr, "halcyra: cannot save a picture to %s\n", qPrintable(options.screenshot));
            QCoreApplication::exit(saved ? 0 : 1);
        });
    }
    return QApplication::exec();
}

} // namespace

int main(int argc, char** argv)
{
    arrangeMemory();
    QCoreApplication::setOrganizationName(QStringLiteral("Halcyra"));
    QCoreApplication::setApplicationName(QStringLiteral("halcyra"));
    QCoreApplication::setApplicationVersion(QStringLiteral(HALCYRA_VERSION));
    if (asksForText(argc, argv)) {
        const QCoreApplication console(argc, argv);
        parse(console);
        return 0;
    }
    QApplication application(argc, argv);
    const Options options = parse(application);
    const EndSignals endSignals;

    vantrel::LogManager::instance().install();
    vantrel::routeLibraryLogs();
    if (options.gallery)
        return runGallery(application, options);
    vantrel::Session::initialize(options.ports);
    // Outlives the window, and ends the link's thread.
    const std::unique_ptr<vantrel::Session> session(vantrel::Session::instance());
    vantrel::StyleSheet::apply(application);
    vantrel::MainWindow window(session.get());
    const FirstPaint firstPaint(options.uiTest ? &window : nullptr);
    window.show();
    if (options.uiTest) {
        const quint16 port = window.startClickTestServer(options.ports.uiTest);
        if (port == 0)
            return 1;
        printf("ui-test ready port=%d\n", port);
        fflush(stdout);
    }
    if (options.host.isEmpty())
        window.showConnectDialog();
    else
        window.autoConnect(options.host);
    if (!options.screenshot.isEmpty())
        scheduleScreenshot(window, options);
    return QApplication::exec();
}
