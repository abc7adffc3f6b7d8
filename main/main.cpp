// orvbrowser - opens the one window, and in it the recording of an ROI file when one is named.
#include "MimeSourceFactory_ORVBrowser.h"
#include "error_line.h"
#include "orvbrowser.h"
#include "pages.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFile>
#include <QIcon>
#include <QScreen>
#include <QWindow>

#include <csignal>

namespace {

// What the command line asks for.
struct request {
    std::string roi_file;    // to open at start; may be empty
    bool take_up = false;    // what was not saved of it
    int status = 0;          // not 0 when the command line is wrong
};

// One plain line, and the status of a program that was called wrongly.
request refuse(const QString& line)
{
    error_line("orvbrowser: ", line.toStdString());
    return {.roi_file = {}, .status = 2};
}

// The toolkit's own options, which it reads when the application is made.
void add_toolkit_options(QCommandLineParser& parser)
{
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    for (const char* name :
         {"platform", "platformpluginpath", "platformtheme", "plugin", "style", "stylesheet", "display",
          "geometry", "qwindowgeometry", "qwindowicon", "qwindowtitle", "session"}) {
        QCommandLineOption option(name, {}, "VALUE");
        option.setFlags(QCommandLineOption::HiddenFromHelp);
        parser.addOption(option);
    }
}

// Ends the program itself for --help and --version. Needs no display.
request parse_arguments(const QStringList& words)
{
    QCommandLineParser parser;
    parser.setApplicationDescription("Check and correct detected cell nuclei in a 4D recording.");
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption image_root(
        "image-root", "The folder that holds one folder of images per recording (default: /image/).", "DIR");
    parser.addOption(image_root);
    const QCommandLineOption take_up("take-up", "Take up the edits of the recording that were not saved.");
    parser.addOption(take_up);
    parser.addPositionalArgument("file", "An ROI file to open.", "[file.roi]");
    add_toolkit_options(parser);
    if (!parser.parse(words))
        return refuse(parser.errorText());
    if (parser.isSet("version"))
        parser.showVersion();
    if (parser.isSet("help"))
        parser.showHelp();
    if (parser.positionalArguments().size() > 1)
        return refuse("One ROI file at most can be opened.");
    if (parser.isSet(image_root))
        qputenv("ORVBROWSER_IMAGE_ROOT", QFile::encodeName(parser.value(image_root)));
    return {.roi_file = QFile::encodeName(parser.positionalArguments().value(0)).toStdString(),
            .take_up = parser.isSet(take_up),
            .status = 0};
}

request read_command_line(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    return parse_arguments(QCoreApplication::arguments());
}

// Makes the window no larger than the screen, with its frame, whose size the window system tells once the
// window is shown.
class ScreenBound : public QObject {
public:
    explicit ScreenBound(QWidget& window) : _window(window)
    {
        keep();
        window.createWinId();
        window.windowHandle()->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* e) override
    {
        if (e->type() == QEvent::Expose) {
            watched->removeEventFilter(this);
            keep();
        }
        return false;
    }

private:
    void keep()
    {
        const QSize frame = _window.frameGeometry().size() - _window.size();
        _window.resize(_window.size().boundedTo(_window.screen()->availableSize() - frame));
    }

    QWidget& _window;
};

}    // namespace

int main(int argc, char* argv[])
{
    QCoreApplication::setOrganizationName("orvbrowser");
    QCoreApplication::setApplicationName("orvbrowser");
    QCoreApplication::setApplicationVersion(ORV_VERSION);
    const request wanted = read_command_line(argc, argv);
    if (wanted.status != 0)
        return wanted.status;

    // Who reads the trace lines may stop reading; that must not cost anybody's work.
    std::signal(SIGPIPE, SIG_IGN);
    QApplication application(argc, argv);
    QGuiApplication::setDesktopFileName("orvbrowser");
    QApplication::setWindowIcon(QIcon(MimeSourceFactory_ORVBrowser::application_icon()));
    ORVBrowser window;
    window.setApplication(&application);
    add_pages(window);
    const bool is_open = !wanted.roi_file.empty() && window.openRoiFile(wanted.roi_file);    // says why not
    if (is_open && wanted.take_up)
        (void)window.take_up_work();
    const ScreenBound bound(window);
    window.show();
    QObject::connect(&application, &QApplication::lastWindowClosed, &application, &QApplication::quit);
    return QApplication::exec();
}
