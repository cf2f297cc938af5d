// One whole run of the program as it has always been, through the real windows on the supplied
// library, held against records of what it sends to the library and to the presentation program,
// and of the package it writes. Whatever is built around it, these records stay.

#include "app/frmAssessment.h"
#include "classic/classic_records.h"
#include "support/fakes.h"
#include "support/gui.h"
#include "support/test_library.h"
#include "toolkit/ComboBox.h"
#include "toolkit/ListBox.h"
#include "toolkit/desktop_services.h"

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

#include <gtest/gtest.h>

namespace varnholt::test {
namespace {

using namespace Qt::StringLiterals;

/// Long rows of the same statement are kept as the first ones and a hash of the others.
QStringList folded(const QStringList& lines)
{
    constexpr qsizetype shown = 3;
    const auto kind = [](const QString& line) { return line.section(u'(', 0, 1).left(40); };
    QStringList result;
    for (qsizetype i = 0; i < lines.size();) {
        qsizetype end = i + 1;
        while (end < lines.size() && kind(lines[end]) == kind(lines[i])) {
            ++end;
        }
        const qsizetype kept = end - i > 2 * shown ? i + shown : end;
        result += lines.mid(i, kept - i);
        if (kept < end) {
            result.append(u"... and %1 more like it, sha256 %2"_s.arg(end - kept)
                              .arg(sha256(lines.mid(kept, end - kept).join(u'\n').toUtf8())));
        }
        i = end;
    }
    return result;
}

class ClassicRun : public testing::TestWithParam<bool>
{
protected:
    ClassicRun()
    {
        const QDir supplied(QStringLiteral(VARNHOLT_SUPPLIED_LIBRARY));
        QFile::remove(library.databasePath());
        QFile::copy(supplied.filePath(u"Varnholt.mdb"_s), library.databasePath());
        if (GetParam()) {
            QFile script(QStringLiteral(VARNHOLT_PLUS_SCRIPT));
            EXPECT_TRUE(script.open(QIODevice::ReadOnly));
            library.sql(QString::fromUtf8(script.readAll()));
        }
        // Pictures that are the same wherever this runs, and yet differ.
        for (const QString& key : library.sql(u"SELECT SOLIndex FROM Questions"_s)) {
            QFile picture(library.picturePath(key.toInt()));
            if (!picture.open(QIODevice::WriteOnly) ||
                picture.write(QByteArray::fromBase64(smallPicture) + key.toUtf8()) < 0) {
                ADD_FAILURE() << "cannot write a picture";
            }
        }
        presentations.programFolder = library.folder();
        services.messageBoxes = &messages;
        services.fileDialogs = &files;
        services.clipboard = &clipboard;
        services.clock = &clock;
        services.random = &random;
        services.presentationPrograms = &presentations;
        services.programFolder = library.folder();
        clipboard.picture = QImage(500, 300, QImage::Format_RGB32);
        clipboard.picture.fill(Qt::darkGreen);
    }

    void press(const char* button) { click(window(), button); }
    void type(const char* box, const QString& text)
    {
        control<QLineEdit>(window(), box)->setText(text);
    }
    void row(const char* list, int index) { control<ListBox>(window(), list)->setListIndex(index); }
    void entry(const char* combo, int index)
    {
        control<ComboBox>(window(), combo)->setListIndex(index);
    }
    void option(const char* name) { control<QRadioButton>(window(), name)->setChecked(true); }
    void menu(const char* name) { control<QAction>(frame.get(), name)->trigger(); }
    /// The window that takes the input: the modal dialog, or else the frame's child.
    QWidget* window()
    {
        QWidget* modal = QApplication::activeModalWidget();
        return modal ? modal : frame->childWindow();
    }
    /// Presses a button that opens a modal dialog, and deals with the dialog.
    void inDialog(const char* button, const std::function<void()>& deal)
    {
        QTimer::singleShot(0, frame.get(), deal);
        press(button);
    }
    void named(const char* button, const QString& name)
    {
        messages.names.push_back(name);
        press(button);
    }

    void slides()
    {
        menu("mnuCreate");
        press("cmdClearAllTopics");
        for (const int topic : {0, 2, 3}) {
            control<ListBox>(window(), "lstTopics")->setSelected(topic, true);
        }
        row("lstTopics", 2);
        row("lstSubTopics", 0);
        control<ListBox>(window(), "lstSubTopics")->setSelected(0, false);
        option("optSelectNo");
        type("txtQuestions", u"27"_s);
        press("cmdCreate");

        option("optTopicNo");
        option("optKeyNo");
        option("optSelectYes");
        type("txtQuestions", u"3"_s);
        press("cmdCreate");
        const QPointer<QWidget> review = control<QWidget>(frame.get(), "frmSelect");
        for (int i = 0; review && review->isVisible() && i < 20; ++i) {
            QApplication::processEvents(); // nothing is judged before it was painted
            click(review, i % 2 == 0 ? "cmdExclude" : "cmdInclude");
        }
    }

    void author()
    {
        press("cmdPaste");
        inDialog("cmdNewTopic", [this] {
            type("txtNewTopic", u"Heat"_s);
            type("txtNewSubtopic", u"Ice"_s);
            press("cmdSave");
        });
        inDialog("cmdNewSubtopic", [this] {
            type("txtNewSubtopic", u" Steam "_s);
            press("cmdSave");
        });
        type("txtAnswer", u" 42 "_s);
        press("cmdSave");
    }

    void manage()
    {
        menu("mnuManageAssessments");
        named("cmdAddAssessment", u"Classic"_s);
        named("cmdNewTopic", u" Waves "_s);
        row("lstTopics", 0);
        named("cmdNewSubtopic", u"Sound"_s);
        named("cmdNewSubtopic", u"Light"_s);
        inDialog("cmdAddNewQuestion", [this] { author(); });

        row("lstTopics", 1);
        row("lstSubtopics", 1);
        inDialog("cmdEditQuestion", [this] {
            entry("cboTopics", 0);
            entry("cboSubtopics", 1);
            type("txtAnswer", u" 43 kg "_s);
            press("cmdSave");
        });
        row("lstTopics", 0);
        row("lstSubtopics", 1);
        press("cmdDeleteSubtopic");
        press("cmdDeleteQuestion");
        for (const int topic : {1, 0}) {
            row("lstTopics", topic);
            press("cmdDeleteTopic");
            for (int i = 0; i < 2; ++i) {
                row("lstSubtopics", 0);
                press("cmdDeleteSubtopic");
            }
            row("lstTopics", topic);
            press("cmdDeleteTopic");
        }
        press("cmdDeleteAssessment");
    }

    void exchange()
    {
        const QString package = folder.filePath(u"classic.zip"_s);
        files.answers = {package, package};
        menu("mnuExport");
        press("cmdExport");
        archive = describeArchive(package);
        menu("mnuImport");
        named("cmdImport", u"Imported"_s);
    }

    void run()
    {
        const StatementLog statements(log);
        frame = std::make_unique<frmAssessment>(services, state, QString());
        frame->show();
        slides();
        manage();
        exchange();
        frame->close();
    }

    /// Holds what was seen against `golden/NAME`; it stands in the temporary folder afterwards
    /// when they differ.
    static void expectGolden(const QString& name, const QStringList& seen)
    {
        QFile golden(QStringLiteral(VARNHOLT_GOLDEN_FOLDER "/") + name);
        const QByteArray bytes = seen.join(u'\n').toUtf8() + '\n';
        QByteArray expected = golden.open(QIODevice::ReadOnly) ? golden.readAll() : QByteArray();
#ifdef Q_OS_WIN
        if (const auto ofAll = expected.indexOf("package sha256"); ofAll >= 0) {
            expected.truncate(ofAll);
        }
#endif
        if (expected == bytes) {
            return;
        }
        QFile copy(QDir::temp().filePath(u"varnholt-seen-"_s + name));
        EXPECT_TRUE(copy.open(QIODevice::WriteOnly) && copy.write(bytes) == bytes.size());
        ADD_FAILURE() << golden.fileName().toStdString() << " is not what was seen, which is in "
                      << copy.fileName().toStdString();
    }

    static constexpr char smallPicture[] =
        "/9j/4AAQSkZJRgABAQAAAQABAAD/2wBDABALDA4MChAODQ4SERATGCgaGBYWGDEjJR0oOjM9PDkzODdASFxOQERX"
        "RTc4UG1RV19iZ2hnPk1xeXBkeFxlZ2P/wAALCAAIAAgBAREA/8QAFAABAAAAAAAAAAAAAAAAAAAABv/EABQQAQAA"
        "AAAAAAAAAAAAAAAAAAD/2gAIAQEAAD8ATP/Z";

    TestLibrary library;
    QTemporaryDir folder;
    QStringList log;
    AgreeingMessageBoxes messages{log};
    ScriptedFileDialogs files;
    FakeClipboard clipboard;
    FakeClock clock;
    SplitMix64 random;
    ObjectModelLogs presentations;
    Services services;
    ProgramState state;
    std::unique_ptr<frmAssessment> frame;
    QStringList archive;
};

TEST_P(ClassicRun, SendsAndWritesWhatItAlwaysHas)
{
    run();
    expectGolden(u"statements.txt"_s, folded(log));
    expectGolden(u"slides.txt"_s, presentations.log);
    expectGolden(u"package.txt"_s, archive);
}

// On a library as supplied, and on one that has the program's own tables.
INSTANTIATE_TEST_SUITE_P(WithOwnTables, ClassicRun, testing::Bool());

} // namespace
} // namespace varnholt::test
