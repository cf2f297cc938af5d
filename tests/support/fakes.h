#pragma once

#include "store/services.h"

#include <QImage>
#include <QString>

#include <gtest/gtest.h>

#include <cmath>
#include <deque>
#include <functional>
#include <vector>

namespace varnholt::test {

/// Answers from a script and fails the test when asked anything else, or when something expected
/// was never asked. It never shows a box.
class ScriptedMessageBoxes : public MessageBoxes
{
public:
    ~ScriptedMessageBoxes() override { verify(); }

    void expectInform(const QString& title, const QString& text)
    {
        script_.emplace_back(described("inform", title, text), QString());
    }
    void expectYesNo(const QString& title, const QString& text, bool answer,
                     Answer preselected = Answer::No)
    {
        script_.emplace_back(described("yesNo", title, text, shown(preselected)),
                             answer ? QStringLiteral("yes") : QString());
    }
    void expectInput(const QString& title, const QString& prompt, const QString& answer,
                     const QString& defaultText = QString())
    {
        script_.emplace_back(described("input", title, prompt, defaultText), answer);
    }

    /// Fails the test unless everything expected so far has been asked.
    void verify()
    {
        for (const auto& [question, answer] : script_) {
            ADD_FAILURE() << "never shown: " << question;
        }
        script_.clear();
    }

    /// Called before each answer, with the window as the user would see it then.
    std::function<void()> beforeAnswer;

    void inform(const QString& title, const QString& text) override
    {
        answerTo(described("inform", title, text));
    }
    bool yesNo(const QString& title, const QString& text, Answer preselected) override
    {
        return !answerTo(described("yesNo", title, text, shown(preselected))).isEmpty();
    }
    QString inputText(const QString& title, const QString& prompt,
                      const QString& defaultText) override
    {
        return answerTo(described("input", title, prompt, defaultText));
    }

private:
    static QString shown(Answer preselected)
    {
        return preselected == Answer::Yes ? QStringLiteral("Enter for Yes")
                                          : QStringLiteral("Enter for No");
    }
    static std::string described(const char* kind, const QString& title, const QString& text,
                                 const QString& defaultText = QString())
    {
        return kind +
               QStringLiteral(" \"%1\" \"%2\" \"%3\"").arg(title, text, defaultText).toStdString();
    }
    QString answerTo(const std::string& asked)
    {
        if (beforeAnswer) {
            beforeAnswer();
        }
        if (script_.empty()) {
            ADD_FAILURE() << "unexpected: " << asked;
            return {};
        }
        const auto [expected, answer] = script_.front();
        script_.pop_front();
        EXPECT_EQ(expected, asked);
        return answer;
    }

    std::deque<std::pair<std::string, QString>> script_;
};

/// Gives out the paths it was told, in order; fails the test when asked more often.
class ScriptedFileDialogs : public FileDialogs
{
public:
    std::deque<std::optional<QString>> answers;
    /// "save filter|name" and "open filter" of every call.
    std::vector<QString> calls;

    std::optional<QString> saveFile(const QString& filter, const QString& initialName) override
    {
        return next(QStringLiteral("save ") + filter + u'|' + initialName);
    }
    std::optional<QString> openFile(const QString& filter) override
    {
        return next(QStringLiteral("open ") + filter);
    }
    std::optional<QString> openFolder(const QString& title, const QString& initialFolder) override
    {
        return next(QStringLiteral("folder ") + title + u'|' + initialFolder);
    }

private:
    std::optional<QString> next(const QString& call)
    {
        calls.push_back(call);
        if (answers.empty()) {
            ADD_FAILURE() << "unexpected file dialog: " << call.toStdString();
            return std::nullopt;
        }
        const std::optional<QString> answer = answers.front();
        answers.pop_front();
        return answer;
    }
};

class FakeClipboard : public Clipboard
{
public:
    QImage picture;
    bool hangs = false;

    [[nodiscard]] bool answers() const override { return !hangs; }
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
    [[nodiscard]] std::uint64_t state() const override { return seeds.empty() ? 0 : seeds.back(); }
    [[nodiscard]] double next() override
    {
        if (!numbers.empty()) {
            return numbers[position_++ % numbers.size()];
        }
        golden_ = std::fmod(golden_ + 0.6180339887498949, 1.0);
        return golden_;
    }

private:
    std::size_t position_ = 0;
    double golden_ = 0;
};

} // namespace varnholt::test
