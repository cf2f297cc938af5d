#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <utility>

class QImage;

namespace varnholt {

class PresentationProgram;

/// Questions and messages to the user. All of them are modal: they return once answered.
class MessageBoxes
{
public:
    virtual ~MessageBoxes() = default;

    /// A message with an OK button.
    virtual void inform(const QString& title, const QString& text) = 0;

    /// One such message for each text.
    void informEach(const QString& title, const QStringList& texts)
    {
        for (const QString& text : texts) {
            inform(title, text);
        }
    }

    /// The same with what explains it in the same box, below the text.
    virtual void explain(const QString& title, const QString& text, const QString& explanation)
    {
        inform(title, text + QStringLiteral("\n\n") + explanation);
    }

    enum class Answer
    {
        No,
        Yes
    };
    /// A question with Yes and No buttons; true for Yes. Enter gives the preselected answer: the
    /// one she came for, but never one that takes something away. Closing the box answers No.
    virtual bool yesNo(const QString& title, const QString& text,
                       Answer preselected = Answer::No) = 0;

    /// A one-line text prompt; the empty string when the user cancels.
    virtual QString inputText(const QString& title, const QString& prompt,
                              const QString& defaultText = QString()) = 0;
};

/// The file choosers; no value when the user cancels. `filter` is in the notation
/// "Zip Files (*.zip)".
class FileDialogs
{
public:
    virtual ~FileDialogs() = default;

    virtual std::optional<QString> saveFile(const QString& filter, const QString& initialName) = 0;
    virtual std::optional<QString> openFile(const QString& filter) = 0;
    /// One or several files; none when the user cancels.
    virtual QStringList openFiles(const QString& filter)
    {
        const std::optional<QString> file = openFile(filter);
        return file ? QStringList(*file) : QStringList();
    }
    /// A folder that is there; it starts at `initialFolder`.
    virtual std::optional<QString> openFolder(const QString& title,
                                              const QString& initialFolder) = 0;
};

/// The desktop's clipboard, read only.
class Clipboard
{
public:
    virtual ~Clipboard() = default;

    /// Whether the program that holds it answers at all; the rest is asked only then. May take
    /// a second or two.
    [[nodiscard]] virtual bool answers() const = 0;
    [[nodiscard]] virtual bool hasImage() const = 0;
    /// The picture on the clipboard at one image pixel per device-independent unit; null
    /// when there is none or it cannot be decoded. Throws `Error` for one too large to handle.
    [[nodiscard]] virtual QImage image() const = 0;
};

/// Time of day, used to seed the generator.
class Clock
{
public:
    virtual ~Clock() = default;

    [[nodiscard]] virtual std::int64_t millisecondsSinceEpoch() const = 0;
};

/// The program's one random generator.
class RandomGenerator
{
public:
    virtual ~RandomGenerator() = default;

    virtual void seed(std::uint64_t value) = 0;
    /// What to seed it with to get the numbers that are going to come once more.
    [[nodiscard]] virtual std::uint64_t state() const = 0;
    /// Seeds it unless that has been done before.
    void seedOnce(std::uint64_t value)
    {
        if (!std::exchange(RandomSeeded_, true)) {
            seed(value);
        }
    }
    /// Uniform in [0, 1).
    [[nodiscard]] virtual double next() = 0;
    /// The next numbers of the same sequence, for who needs very many.
    virtual void fill(std::span<double> numbers)
    {
        for (double& number : numbers) {
            number = next();
        }
    }

private:
    bool RandomSeeded_ = false;
};

/// Called several times a second while something outside is waited for; false when the user has
/// asked to stop. Must not throw.
using KeepGoing = std::function<bool()>;

enum class SlidesInto
{
    /// The presentation program of choice, which may be another program that does not answer.
    Program,
    /// A file, which needs no other program.
    File
};

/// Gives out a fresh object of the presentation port for each build.
class PresentationPrograms
{
public:
    virtual ~PresentationPrograms() = default;

    /// Never null. Starting the program may throw `Error`, and `Cancelled` when `keepGoing` says
    /// so; it serves the program for all of its life and may be empty.
    [[nodiscard]] virtual std::unique_ptr<PresentationProgram>
    start(SlidesInto into, const KeepGoing& keepGoing) = 0;
    /// Slides are likely to be wanted soon. Starts the program in the background, unseen, where
    /// that can be done, and returns at once; as long as the result lives it is kept ready. One
    /// that was started so and that nobody uses is ended after that. May be null.
    [[nodiscard]] virtual std::shared_ptr<void> prepare() { return nullptr; }
    /// Whether a file would be something else than what is chosen.
    [[nodiscard]] virtual bool canWriteFileInstead() const { return false; }
};

/// The outside world as the windows see it. `RunProgram` fills it with the real ones, tests with
/// recording fakes. The pointers are never null and outlive every window; nothing here is
/// owned.
struct Services
{
    MessageBoxes* messageBoxes = nullptr;
    FileDialogs* fileDialogs = nullptr;
    Clipboard* clipboard = nullptr;
    Clock* clock = nullptr;
    RandomGenerator* random = nullptr;
    PresentationPrograms* presentationPrograms = nullptr;

    /// Absolute path, without a trailing slash, of the folder with the library file and
    /// `Files`.
    QString programFolder;
};

} // namespace varnholt
