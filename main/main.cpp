// orvbrowser - opens the one window, and in it the recording of an ROI file when one is named.
#include "orvbrowser.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFile>

#include <algorithm>
#include <iostream>
#include <string_view>

namespace {

// What the command line asks for.
struct request {
    std::string roi_file;    // to open at start; may be empty
    int status = 0;          // not 0 when the command line is wrong
};

// One plain line, and the status of a program that was called wrongly.
request refuse(const QString& line)
{
    std::cerr << "orvbrowser: " << line.toStdString() << std::endl;
    return {.roi_file = {}, .status = 2};
}

// Ends the program itself for --help and --version.
request parse_arguments(const QStringList& words)
{
    QCommandLineParser parser;
    parser.setApplicationDescription("Check and correct detected cell nuclei in a 4D recording.");
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption image_root(
        "image-root", "The folder that holds one folder of images per recording (default: /image/).", "DIR");
    parser.addOption(image_root);
    parser.addPositionalArgument("file", "An ROI file to open.", "[file.roi]");
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
    return {.roi_file = QFile::encodeName(parser.positionalArguments().value(0)).toStdString(), .status = 0};
}

// Help and version are to be had without a display.
bool asks_for_text(int argc, char* argv[])
{
    return std::any_of(argv + 1, argv + argc, [](std::string_view word) {
        return word == "--help" || word == "-h" || word == "--version" || word == "-v";
    });
}

void name_the_program()
{
    QCoreApplication::setApplicationName("orvbrowser");
    QCoreApplication::setApplicationVersion(ORV_VERSION);
}

}    // namespace

int main(int argc, char* argv[])
{
    name_the_program();
    if (asks_for_text(argc, argv)) {
        const QCoreApplication application(argc, argv);
        return parse_arguments(QCoreApplication::arguments()).status;
    }
    QApplication application(argc, argv);
    const request wanted = parse_arguments(QApplication::arguments());
    if (wanted.status != 0)
        return wanted.status;

    ORVBrowser window;
    window.setApplication(&application);
    if (!wanted.roi_file.empty() && !window.openRoiFile(wanted.roi_file))
        return 1;
    window.show();
    QObject::connect(&application, &QApplication::lastWindowClosed, &application, &QApplication::quit);
    return QApplication::exec();
}
