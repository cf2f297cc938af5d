#include "support/fakes.h"

#include <gtest/gtest.h>

#include <cmath>

namespace varnholt::test {

ScriptedMessageBoxes::~ScriptedMessageBoxes()
{
    verify();
}

void ScriptedMessageBoxes::expectInform(const QString& title, const QString& text)
{
    script_.push_back({QStringLiteral("inform"), title, text, {}, {}});
}

void ScriptedMessageBoxes::expectYesNo(const QString& title, const QString& text, bool answer)
{
    script_.push_back({QStringLiteral("yesNo"),
                       title,
                       text,
                       {},
                       answer ? QStringLiteral("yes") : QStringLiteral("no")});
}

void ScriptedMessageBoxes::expectInput(const QString& title, const QString& prompt,
                                       const QString& answer, const QString& defaultText)
{
    script_.push_back({QStringLiteral("input"), title, prompt, defaultText, answer});
}

void ScriptedMessageBoxes::verify()
{
    for (const Entry& entry : script_) {
        ADD_FAILURE() << "never shown: " << entry.kind.toStdString() << " \""
                      << entry.title.toStdString() << "\" \"" << entry.text.toStdString() << '"';
    }
    script_.clear();
}

QString ScriptedMessageBoxes::answerTo(const Entry& asked)
{
    if (beforeAnswer) {
        beforeAnswer();
    }
    if (script_.empty()) {
        ADD_FAILURE() << "unexpected: " << asked.kind.toStdString() << " \""
                      << asked.title.toStdString() << "\" \"" << asked.text.toStdString() << '"';
        return {};
    }
    const Entry expected = script_.front();
    script_.pop_front();
    EXPECT_EQ(expected.kind.toStdString(), asked.kind.toStdString());
    EXPECT_EQ(expected.title.toStdString(), asked.title.toStdString());
    EXPECT_EQ(expected.text.toStdString(), asked.text.toStdString());
    EXPECT_EQ(expected.defaultText.toStdString(), asked.defaultText.toStdString());
    return expected.answer;
}

void ScriptedMessageBoxes::inform(const QString& title, const QString& text)
{
    answerTo({QStringLiteral("inform"), title, text, {}, {}});
}

bool ScriptedMessageBoxes::yesNo(const QString& title, const QString& text)
{
    return answerTo({QStringLiteral("yesNo"), title, text, {}, {}}) == QStringLiteral("yes");
}

QString ScriptedMessageBoxes::inputText(const QString& title, const QString& prompt,
                                        const QString& defaultText)
{
    return answerTo({QStringLiteral("input"), title, prompt, defaultText, {}});
}

std::optional<QString> ScriptedFileDialogs::saveFile(const QString& filter,
                                                     const QString& initialName)
{
    calls.push_back(QStringLiteral("save ") + filter + u'|' + initialName);
    return next();
}

std::optional<QString> ScriptedFileDialogs::openFile(const QString& filter)
{
    calls.push_back(QStringLiteral("open ") + filter);
    return next();
}

std::optional<QString> ScriptedFileDialogs::next()
{
    if (answers.empty()) {
        ADD_FAILURE() << "unexpected file dialog: " << calls.back().toStdString();
        return std::nullopt;
    }
    const std::optional<QString> answer = answers.front();
    answers.pop_front();
    return answer;
}

double FakeRandom::next()
{
    if (!numbers.empty()) {
        return numbers[position_++ % numbers.size()];
    }
    golden_ = std::fmod(golden_ + 0.6180339887498949, 1.0);
    return golden_;
}

} // namespace varnholt::test
