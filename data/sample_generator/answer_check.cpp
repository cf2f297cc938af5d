#include "answer_check.h"

#include "expression.h"

#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace varnholt {

namespace {

using namespace Qt::StringLiterals;

/// An interval's picture, a scatter graph, lamps that light up.
const QStringList judgedByEye{u"Charts and diagrams"_qs, u"Circuits"_qs, u"Inequalities"_qs};

/// What an answer says, without "x =", brackets and the dollar signs of a formula.
QString bare(QString answer)
{
    static const QRegularExpression bold(uR"(\\bold\{(.)\})"_qs);
    static const QRegularExpression column(uR"(\\col\{(.*?)\}\{(.*?)\})"_qs);
    static const QRegularExpression pair(uR"(^\((.*), (.*)\)$)"_qs);
    static const QRegularExpression name(u"^[a-z] = "_qs);
    answer.remove(u'$').replace(bold, u"\\1"_qs).replace(column, u"\\1; \\2"_qs);
    return answer.replace(pair, u"\\1; \\2"_qs).remove(name);
}

/// How much an answer may differ from its exact value: half of the last digit it gives where the
/// question wants it rounded.
double toleranceOf(const SampleQuestion& question, double exact)
{
    static const QRegularExpression rounded(u"correct to|to the nearest"_qs);
    static const QRegularExpression decimals(u"\\.(\\d+)"_qs);
    for (const ContentLine& line : question.lines)
        if (line.text.contains(rounded))
            return 0.5 * std::pow(10, -decimals.match(question.answer).capturedLength(1));
    return 1e-9 * std::max(1.0, std::abs(exact));
}

bool hasValue(const Expression& expression, const SampleQuestion& question, const QString& answer)
{
    const QStringList parts = bare(answer).split(u"; "_qs);
    bool right = parts.size() == question.value.size();
    for (const double seed : {0.7, 2.3}) {
        Variables variables; // Different values for all the letters that answers contain.
        for (const QChar letter : u"abnuvx"_qs)
            variables[letter] = seed * (letter.unicode() - u'Z');
        for (qsizetype part = 0; right && part < parts.size(); ++part) {
            const double given = expression.evaluate(parts.at(part), variables).value_or(NAN);
            const double exact =
                expression.evaluate(question.value.at(part), variables).value_or(NAN);
            right = std::abs(given - exact) <= toleranceOf(question, exact);
        }
    }
    return right;
}

bool solves(const Expression& expression, const SampleQuestion& question, QString answer)
{
    if (answer.contains(u'±'))
        answer =
            QString(answer).replace(u'±', u'+') + u" or "_qs + QString(answer).replace(u'±', u'-');
    for (const QString& solution : answer.remove(u'$').split(u" or "_qs)) {
        Variables variables;
        for (const QString& part : solution.split(u" and "_qs))
            variables[part.left(1)] = expression.evaluate(bare(part)).value_or(NAN);
        for (const QString& zero : question.zero)
            if (!(std::abs(expression.evaluate(zero, variables).value_or(NAN)) < 1e-9))
                return false;
    }
    return true;
}

bool isSound(const Expression& expression, const SampleQuestion& question)
{
    const bool computed = !question.value.isEmpty() || !question.zero.isEmpty();
    if (!computed && !judgedByEye.contains(question.subtopic))
        return false;
    const auto right = [&](const QString& answer) {
        return question.value.isEmpty() ? solves(expression, question, answer)
                                        : hasValue(expression, question, answer);
    };
    if (question.options.isEmpty())
        return computed && right(question.answer);
    const qsizetype chosen = question.answer.size() == 1 ? u"ABCD"_qs.indexOf(question.answer) : -1;
    if (chosen < 0 || QSet(question.options.begin(), question.options.end()).size() != 4)
        return false;
    for (qsizetype index = 0; computed && index < 4; ++index)
        if (right(question.options.at(index)) != (index == chosen))
            return false;
    return true;
}

} // namespace

void checkAnswers(const SampleContent& content)
{
    const Expression expression;
    QStringList wrong;
    for (const SampleQuestion& question : content.questions)
        if (!isSound(expression, question))
            wrong += u"%1: the answer \"%2\" is not right"_qs.arg(question.where, question.answer);
    if (!wrong.isEmpty())
        throw std::runtime_error(wrong.join(u'\n').toStdString());
}

} // namespace varnholt
