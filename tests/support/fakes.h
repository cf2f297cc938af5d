#pragma once

#include "store/services.h"

#include <QImage>
#include <QString>

#include <deque>
#include <functional>
#include <vector>

namespace varnholt::test {

/// Answers from a script and fails the test when asked anything else, or when something
/// expected was never asked. It never shows a box.
class ScriptedMessageBoxes : public MessageBoxes
{
public:
    ~ScriptedMessageBoxes() override;

    void expectInform(const QString& title, const QString& text);
    void expectYesNo(const QString& title, const QString& text, bool answer);
    void expectInput(const QString& title, const QString& prompt, const QString& answer,
                     const QString& defaultText = QString());

    /// Fails the test unless everything expected so far has been asked.
    void verify();

    /// Called before each answer, with the window as the user would see it then.
    std::function<void()> beforeAnswer;

    void inform(const QString& title, const QString& text) override;
    bool yesNo(const QString& title, const QString& text) override;
    QString inputText(const QString& title, const QString& prompt,
                      const QString& defaultText) override;

private:
    struct Entry
    {
        QString kind;
        QString title;
        QString text;
        QString defaultText;
        QString answer;
    };

    QString answerTo(const Entry& asked);

    std::deque<Entry> script_;
};

/// Gives out the paths it was told, in order; fails the test when asked more often.
class ScriptedFileDialogs : public FileDialogs
{
public:
    std::deque<std::optional<QString>> answers;
    /// "save filter|name" and "open filter" of every call.
    std::vector<QString> calls;

    std::optional<QString> saveFile(const QString& filter, const QString& initialName) override;
    std::optional<QString> openFile(const QString& filter) override;

private:
    std::optional<QString> next();
};

class FakeClipboard : public Clipboard
{
public:
    QImage picture;

    [[nodiscard]] bool hasImage() const override { return !picture.isNull(); }
    [[nodiscard]] QImage image() const override { return picture; }
};

class FakeClock : public Clock
{
public:
    std::int64_t now = 1'700'000'000'000;

    [[nodiscard]] std::int64_t millisecondsSinceEpoch() const override { return now; }
};

/// Repeats a list of numbers, or counts upwards by the golden ratio when it has none.
class FakeRandom : public RandomGenerator
{
public:
    std::vector<double> numbers;
    std::vector<std::uint64_t> seeds;

    void seed(std::uint64_t value) override { seeds.push_back(value); }
    [[nodiscard]] double next() override;

private:
    std::size_t position_ = 0;
    double golden_ = 0;
};

} // namespace varnholt::test
