#include "content.h"

#include <QFile>
#include <QFileInfo>

#include <stdexcept>

namespace varnholt {

namespace {

using namespace Qt::StringLiterals;

QStringList linesOf(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error(
            u"%1 cannot be read: %2"_qs.arg(path, file.errorString()).toStdString());
    return QString::fromUtf8(file.readAll()).split(u'\n');
}

class TopicReader
{
public:
    TopicReader(SampleContent& content, const QString& path)
        : m_content(content)
        , m_path(path)
    {}

    void read()
    {
        const QStringList lines = linesOf(m_path);
        for (m_line = 1; m_line <= lines.size(); ++m_line) {
            const QString& line = lines.at(m_line - 1);
            if (line.trimmed().isEmpty() || line.startsWith(u'#'))
                continue;
            if (line.front() == u' ')
                continueLine(line.trimmed());
            else
                startLine(line.section(u' ', 0, 0), line.section(u' ', 1).trimmed());
        }
        finishQuestion();
    }

private:
    [[noreturn]] void fail(const QString& message) const
    {
        throw std::runtime_error(
            u"%1:%2: %3"_qs.arg(m_path).arg(m_line).arg(message).toStdString());
    }

    SampleQuestion& question()
    {
        if (!m_inQuestion)
            fail(u"this line belongs to a question"_qs);
        return m_content.questions.back();
    }

    void continueLine(const QString& text)
    {
        auto& lines = question().lines;
        if (lines.empty())
            fail(u"an indented line continues nothing"_qs);
        if (lines.back().keyword == u"text")
            lines.back().text += u' ' + text;
        else
            lines.back().body += text;
    }

    void startLine(const QString& keyword, const QString& text)
    {
        if (keyword == u"topic" || keyword == u"subtopic") {
            finishQuestion();
            (keyword == u"topic" ? m_topic : m_subtopic) = text;
        } else if (keyword == u"question") {
            finishQuestion();
            if (m_topic.isEmpty() || m_subtopic.isEmpty())
                fail(u"a question needs a topic and a subtopic before it"_qs);
            SampleQuestion fresh;
            fresh.key = static_cast<int>(m_content.questions.size()) + 1;
            fresh.topic = m_topic;
            fresh.subtopic = m_subtopic;
            fresh.where = u"%1:%2"_qs.arg(QFileInfo(m_path).fileName()).arg(m_line);
            m_content.questions.push_back(std::move(fresh));
            m_inQuestion = true;
        } else if (keyword == u"answer") {
            question().answer = text;
        } else if (keyword == u"value") {
            question().value += text;
        } else if (keyword == u"zero") {
            question().zero += text;
        } else if (keyword == u"options") {
            question().options = text.split(u" | "_qs);
            if (question().options.size() != 4)
                fail(u"four options are needed"_qs);
            question().lines.push_back({keyword, text, {}});
        } else if (keyword == u"text" || keyword == u"math" || keyword == u"table" ||
                   keyword == u"figure") {
            question().lines.push_back({keyword, text, {}});
        } else {
            fail(u"unknown keyword \"%1\""_qs.arg(keyword));
        }
    }

    void finishQuestion()
    {
        if (m_inQuestion && (question().answer.isEmpty() || question().lines.empty()))
            fail(u"the question before this line lacks a text or an answer"_qs);
        m_inQuestion = false;
    }

    SampleContent& m_content;
    QString m_path;
    QString m_topic;
    QString m_subtopic;
    qsizetype m_line = 0;
    bool m_inQuestion = false;
};

} // namespace

SampleContent readSampleContent(const QString& folder)
{
    SampleContent content;
    for (const QString& line : linesOf(folder + u"/assessment.txt"_qs)) {
        const QString word = line.section(u' ', 0, 0);
        const QString rest = line.section(u' ', 1).trimmed();
        if (word == u"assessment")
            content.assessment = rest;
        else if (word == u"file")
            TopicReader(content, folder + u'/' + rest).read();
    }
    if (content.assessment.isEmpty() || content.questions.empty())
        throw std::runtime_error("assessment.txt names no assessment or no questions");
    return content;
}

} // namespace varnholt
