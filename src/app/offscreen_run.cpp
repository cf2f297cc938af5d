// The main job without a display: the real windows, driven by the names of their controls,
// from the supplied library to a finished .pptx.

#include "app/frmAssessment.h"
#include "presentation/default_programs.h"
#include "selection/frmSelect.h"
#include "store/library_file.h"
#include "store/services.h"
#include "toolkit/ComboBox.h"
#include "toolkit/ListBox.h"
#include "toolkit/desktop_services.h"
#include "words/words.h"

#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>

#include <cstdio>

namespace {

using namespace varnholt;

/// In a run nobody watches every message means that something has gone wrong.
class PrintedMessages : public MessageBoxes
{
public:
    void inform(const QString& title, const QString& text) override
    {
        throw Error(title + QStringLiteral(": ") + text);
    }
    bool yesNo(const QString& title, const QString& text, Answer) override
    {
        throw Error(title + QStringLiteral(": ") + text);
    }
    QString inputText(const QString& title, const QString& prompt, const QString&) override
    {
        throw Error(title + QStringLiteral(": ") + prompt);
    }
};

class Run
{
public:
    explicit Run(QString out)
        : out_(std::move(out))
    {}

    void operator()()
    {
        QDir().mkpath(out_);
        // As supplied; the library beside the program may have become somebody's own.
        const QString own = QApplication::applicationDirPath();
        const QString supplied = own + QStringLiteral("/../share/varnholt/library");
        const QString folder = ChooseProgramFolder({work_.filePath(QStringLiteral("bin")),
                                                    work_.filePath(QStringLiteral("library")),
                                                    QFileInfo::exists(supplied) ? supplied : own});

        PrintedMessages messages;
        SystemClock clock;
        SplitMix64 random;
        PresentationSettings settings;
        settings.program = QStringLiteral("pptx");
        settings.open = [this](const QString& path) {
            presentation_ = path;
            return true;
        };
        DefaultPresentationPrograms presentations(folder, settings);
        Services services;
        services.messageBoxes = &messages;
        services.clock = &clock;
        services.random = &random;
        services.presentationPrograms = &presentations;
        services.programFolder = folder;

        ProgramState state;
        frmAssessment frame(services, state, QString());
        window_ = &frame;
        frame.show();
        frame.mnuCreate_Click();
        QApplication::processEvents();
        keepPicture("1-all-topics");
        choose();
        keepPicture("2-topics-chosen");
        press("cmdCreate");
        review(frame);

        if (presentation_.isEmpty()) {
            throw Error(QStringLiteral("No presentation was made."));
        }
        const QString kept = out_ + u'/' + QFileInfo(presentation_).fileName();
        QFile::remove(kept);
        if (!QFile::copy(presentation_, kept)) {
            throw Error(QStringLiteral("The presentation could not be copied to %1.").arg(kept));
        }
        std::printf("The slides of %d questions: %s\n", questions, qPrintable(kept));
        frame.close();
    }

private:
    static constexpr int questions = 12;

    /// Three topics of the assessment without the first subtopic of the second.
    void choose()
    {
        control<ComboBox>("cboAssessment")->setListIndex(0);
        auto* topics = control<ListBox>("lstTopics");
        press("cmdClearAllTopics");
        for (int row = 0; row < topics->listCount() && row < 3; ++row) {
            topics->setSelected(row, true);
        }
        topics->setListIndex(1);
        auto* subTopics = control<ListBox>("lstSubTopics");
        subTopics->setListIndex(0);
        subTopics->setSelected(0, false);
        control<QLineEdit>("txtQuestions")->setText(QString::number(questions));
    }

    /// Leaves out every fourth drawn question until enough are in, which builds the slides.
    void review(QWidget& frame)
    {
        const QPointer<frmSelect> window = frame.findChild<frmSelect*>();
        window_ = window;
        for (int shown = 0; window; ++shown) {
            QApplication::processEvents();
            if (shown == 1) {
                keepPicture("3-review");
            }
            press(shown % 4 == 0 ? "cmdExclude" : "cmdInclude");
            QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
        window_ = &frame;
    }

    template <typename Control>
    Control* control(const char* name)
    {
        auto* found = window_->findChild<Control*>(QLatin1String(name));
        if (!found || !found->isEnabled()) {
            throw Error(QStringLiteral("The control %1 cannot be used.").arg(QLatin1String(name)));
        }
        return found;
    }

    void press(const char* name) { control<QPushButton>(name)->click(); }

    void keepPicture(const char* name)
    {
        const QString path = out_ + u'/' + QLatin1String(name) + QStringLiteral(".png");
        if (!window_->grab().save(path)) {
            throw Error(QStringLiteral("%1 could not be written.").arg(path));
        }
        std::printf("A picture of the window: %s\n", qPrintable(path));
    }

    QString out_;
    QTemporaryDir work_;
    QWidget* window_ = nullptr;
    QString presentation_;
};

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // The off-screen platform warns of all that it cannot do; a reader looks for the results.
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
        if (type == QtCriticalMsg || type == QtFatalMsg) {
            std::fprintf(stderr, "%s\n", qPrintable(text));
        }
    });
    const QTemporaryDir settings;
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
    QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Varnholt"));
    QApplication::setApplicationName(QStringLiteral("Varnholt"));
    varnholt::InstallWords(application);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() != 2) {
        std::fprintf(stderr, "Usage: varnholt-offscreen FOLDER\n");
        return 2;
    }
    try {
        Run(QDir(arguments.at(1)).absolutePath())();
    } catch (const Error& error) {
        std::fprintf(stderr, "%s\n", qPrintable(error.message()));
        return 1;
    }
    return 0;
}
