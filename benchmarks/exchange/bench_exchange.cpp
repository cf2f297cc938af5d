// Exporting and importing 5,000 questions with 305 MB of pictures, through the windows,
// against the bare libraries doing the same; and the memory of both.

#include "exchange/frmExport.h"
#include "exchange/frmImport.h"
#include "exchange/package_export.h"
#include "exchange/raw_exchange.h"
#include "library/Library.h"
#include "store/modMain.h"
#include "store/services.h"
#include "support/big_library.h"
#include "support/report.h"

#include <QApplication>
#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdlib>
#include <random>
#include <string>

namespace {

using namespace varnholt;

constexpr int pictureBytes = 61'000;

class Agreeing : public MessageBoxes, public FileDialogs
{
public:
    QString path;
    QString last;

    void inform(const QString& title, const QString&) override { last = title; }
    bool yesNo(const QString&, const QString&, Answer) override { return true; }
    QString inputText(const QString&, const QString&, const QString& text) override { return text; }
    std::optional<QString> saveFile(const QString&, const QString&) override { return path; }
    std::optional<QString> openFile(const QString&) override { return path; }
    std::optional<QString> openFolder(const QString&, const QString&) override { return path; }
};

class NoClock : public Clock
{
public:
    [[nodiscard]] std::int64_t millisecondsSinceEpoch() const override { return 0; }
};

/// A program folder and a window of it, ready to be pressed.
template <typename Window>
class Ready
{
public:
    Ready(const QString& folder, const QString& package)
    {
        answers_.path = package;
        services_.messageBoxes = &answers_;
        services_.fileDialogs = &answers_;
        services_.programFolder = folder;
        library_ = std::make_unique<Library>(folder, clock_);
        library_->open();
        if constexpr (std::is_same_v<Window, frmExport>) {
            window_ = std::make_unique<Window>(services_, state_, *library_);
        } else {
            window_ = std::make_unique<Window>(services_, *library_);
        }
        window_->show();
        QApplication::processEvents();
    }

    void press()
    {
        if constexpr (std::is_same_v<Window, frmExport>) {
            window_->cmdExport_Click();
        } else {
            window_->cmdImport_Click();
        }
        if (!answers_.last.endsWith(QStringLiteral("Complete"))) {
            std::abort();
        }
    }

    void writeTexts(const QString& subfolder)
    {
        const PackageExport texts(services_.programFolder, state_, QStringLiteral("Big"), {});
        texts.WriteTopicsFile(subfolder);
        texts.WriteSubTopicsFile(subfolder);
        texts.WriteQuestionsFile(subfolder);
        texts.WriteAssessmentInfoFile(subfolder);
    }

private:
    Agreeing answers_;
    Services services_;
    ProgramState state_;
    NoClock clock_;
    std::unique_ptr<Library> library_;
    std::unique_ptr<Window> window_;
};

/// A library to export: in its folder, beside it, the package and the peer's text files.
struct Source
{
    QString folder;
    int questions = 0;

    [[nodiscard]] QString package() const { return folder + QStringLiteral("/package.zip"); }

    void make() const
    {
        bench::makeBigLibrary(folder + QStringLiteral("/Varnholt.mdb"), questions);
        QDir(folder).mkdir(QStringLiteral("Files"));
        QDir(folder).mkdir(QStringLiteral("Texts"));
        std::minstd_rand noise;
        QByteArray picture(pictureBytes, 0);
        for (int i = 1; i <= questions; ++i) {
            for (char& byte : picture) {
                byte = static_cast<char>(noise() >> 8);
            }
            QFile file(folder + QStringLiteral("/Files/%1.jpg").arg(i));
            if (!file.open(QIODevice::WriteOnly) || file.write(picture) != picture.size()) {
                std::abort();
            }
        }
        Ready<frmExport> window(folder, package());
        window.press();
        window.writeTexts(QStringLiteral("Texts"));
    }

    void exportRaw() const
    {
        bench::rawExport(folder + QStringLiteral("/Texts"), folder + QStringLiteral("/Files"),
                         questions, folder + QStringLiteral("/raw.zip"));
    }
};

/// An empty library to import into.
class Target
{
public:
    Target()
    {
        bench::makeBigLibrary(folder() + QStringLiteral("/Varnholt.mdb"), 100);
        sqlite3* database = nullptr;
        sqlite3_open((folder() + QStringLiteral("/Varnholt.mdb")).toUtf8().constData(), &database);
        for (const char* table : {"Assessments", "Topics", "SubTopics", "Questions"}) {
            sqlite3_exec(database, (std::string("DELETE FROM ") + table).c_str(), nullptr, nullptr,
                         nullptr);
        }
        sqlite3_close(database);
        QDir(folder()).mkdir(QStringLiteral("Files"));
    }
    [[nodiscard]] QString folder() const { return folder_.path(); }

private:
    QTemporaryDir folder_;
};

double exportRatio(const Source& source, int rounds)
{
    Ready<frmExport> window(source.folder, source.package());
    return bench::ratio(
        rounds, [&] { window.press(); }, [&] { source.exportRaw(); });
}

double importRatio(const Source& source, int rounds)
{
    std::vector<double> ratios;
    // None goes before the end: some file systems are slow to make files for a while after
    // many were deleted. Whoever is first in a round is hit hardest, so they take turns.
    std::vector<std::unique_ptr<Target>> targets;
    const auto target = [&] { return targets.emplace_back(std::make_unique<Target>())->folder(); };
    for (int i = 0; i < rounds; ++i) {
        Ready<frmImport> window(target(), source.package());
        const QString peerFolder = target();
        const auto own = [&] { return bench::cpuOf([&] { window.press(); }); };
        const auto peer = [&] {
            return bench::cpuOf([&] { bench::rawImport(source.package(), peerFolder); });
        };
        const double before = i % 2 == 0 ? own() : peer();
        const double after = i % 2 == 0 ? peer() : own();
        ratios.push_back(i % 2 == 0 ? before / after : after / before);
    }
    return bench::median(ratios);
}

long statusKb(const char* key)
{
    QFile status(QStringLiteral("/proc/self/status"));
    status.open(QIODevice::ReadOnly);
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith(key)) {
            return line.mid(static_cast<qsizetype>(std::strlen(key)) + 1)
                .trimmed()
                .split(' ')
                .first()
                .toLong();
        }
    }
    return 0;
}

/// In a process of its own: how far resident memory rises while `what` works on `source`, in
/// kB. The same work on `small` comes first, so that code and buffers are there already.
long risingKb(const QString& what, const Source& source, const Source& small)
{
    const Target target;
    const Target warm;
    std::function<void()> work;
    std::shared_ptr<Ready<frmExport>> exporting;
    std::shared_ptr<Ready<frmImport>> importing;
    if (what == QStringLiteral("export")) {
        Ready<frmExport>(small.folder, small.package()).press();
        exporting = std::make_shared<Ready<frmExport>>(source.folder, source.package());
        work = [&] { exporting->press(); };
    } else if (what == QStringLiteral("import")) {
        Ready<frmImport>(warm.folder(), small.package()).press();
        importing = std::make_shared<Ready<frmImport>>(target.folder(), source.package());
        work = [&] { importing->press(); };
    } else if (what == QStringLiteral("raw-export")) {
        small.exportRaw();
        work = [&] { source.exportRaw(); };
    } else {
        bench::rawImport(small.package(), warm.folder());
        work = [&] { bench::rawImport(source.package(), target.folder()); };
    }
    QFile reset(QStringLiteral("/proc/self/clear_refs"));
    if (!reset.open(QIODevice::WriteOnly | QIODevice::Unbuffered) || reset.write("5") != 1) {
        std::abort();
    }
    const long before = statusKb("VmRSS:");
    work();
    return statusKb("VmHWM:") - before;
}

double memoryRatio(const QString& what, const Source& source, const Source& small)
{
    const auto rise = [&](const QString& which) {
        QProcess apart;
        apart.start(QApplication::applicationFilePath(),
                    {QStringLiteral("--memory"), which, source.folder,
                     QString::number(source.questions), small.folder,
                     QString::number(small.questions)});
        apart.waitForFinished(-1);
        const double kilobytes = apart.readAllStandardOutput().toDouble();
        if (kilobytes <= 0) {
            std::abort();
        }
        return kilobytes;
    };
    const double own = rise(what);
    const double raw = rise(QStringLiteral("raw-") + what);
    std::printf("memory of %s, %d questions: %.0f kB, libzip %.0f kB\n", qPrintable(what),
                source.questions, own, raw);
    return own / raw;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.value(1) == QStringLiteral("--memory")) {
        std::printf("%ld", risingKb(arguments.at(2), {arguments.at(3), arguments.at(4).toInt()},
                                    {arguments.at(5), arguments.at(6).toInt()}));
        return 0;
    }
    const QTemporaryDir folders;
    const auto make = [&](int questions) {
        Source source{folders.filePath(QString::number(questions)), questions};
        QDir().mkpath(source.folder);
        source.make();
        return source;
    };
    const Source small = make(100);
    const Source middle = make(1000);
    const Source large = make(5000);
    // First, while nothing was deleted yet.
    const double importing = importRatio(large, 7);
    double memory = 0;
    for (const char* what : {"export", "import"}) {
        memoryRatio(QLatin1String(what), middle, small);
        memory = std::max(memory, memoryRatio(QLatin1String(what), large, small));
    }
    return bench::report(
        {{"export.5000", exportRatio(large, 7), 2, 1.2, "ratio", "libzip storing the files"},
         {"import.5000", importing, 1.5, 1.1, "ratio", "libzip extracting, SQLite inserting"},
         {"exchange.memory", memory, 1.5, -1, "ratio", "libzip; the larger of both ways"}},
        argc, argv);
}
