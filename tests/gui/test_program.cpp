// The built program, started as a person starts it.
#include "../support/temp_folder.h"

#include <QFile>
#include <QProcess>
#include <QTest>

class TestProgram : public QObject {
    Q_OBJECT
private slots:
    void itsCommandLineIsAnsweredInOneLine()
    {
        const temp_folder folder;
        qputenv("XDG_RUNTIME_DIR", folder.path("").c_str());    // else the toolkit adds a line
        const QString version = QStringLiteral("orvbrowser " ORV_VERSION "\n");
        const std::tuple<QStringList, int, QString, QString> cases[] = {
            {{"--version"}, 0, version, {}},
            {{"--no-such-option"}, 2, {}, "orvbrowser: Unknown option 'no-such-option'.\n"},
            {{"--image-root"}, 2, {}, "orvbrowser: Missing value after '--image-root'.\n"},
            {{"a.roi", "b.roi"}, 2, {}, "orvbrowser: One ROI file at most can be opened.\n"},
        };
        for (const auto& [words, status, out, err] : cases) {
            QProcess program;
            program.start(ORVBROWSER, words);
            QVERIFY(program.waitForFinished());
            QCOMPARE(QString(program.readAllStandardError()), err);
            QCOMPARE(QString(program.readAllStandardOutput()), out);
            QVERIFY(program.exitStatus() == QProcess::NormalExit && program.exitCode() == status);
        }
    }

    void aFileThatCannotBeOpenedLeavesTheWindow()
    {
        const temp_folder folder;
        qputenv("XDG_RUNTIME_DIR", folder.path("").c_str());
        const QString unreadable = QString::fromStdString(folder.path(""));
        for (const auto& [file, line] :
             {std::pair(QString("missing.roi"), QString("No such file or directory: missing.roi\n")),
              {unreadable, "roidb: Cannot open " + unreadable + "\n"}}) {
            QProcess program;
            program.start(ORVBROWSER, {file});
            QString err;
            QTRY_COMPARE(err += program.readAllStandardError(), line);
            QVERIFY2(!program.waitForFinished(200), "the window stays");
            program.kill();
            QVERIFY(program.waitForFinished());
        }
    }
};

QTEST_GUILESS_MAIN(TestProgram)
#include "test_program.moc"
