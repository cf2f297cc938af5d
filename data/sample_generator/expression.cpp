#include "expression.h"

#include <QRegularExpression>

#include <sqlite3.h>

#include <array>
#include <stdexcept>
#include <utility>

namespace varnholt {

namespace {

using namespace Qt::StringLiterals;
using Rule = std::pair<QRegularExpression, QString>;

void rewrite(QString& text, const Rule& rule)
{
    for (QString before; before != text;) {
        before = text;
        text.replace(rule.first, rule.second);
    }
}

QString toSql(QString text)
{
    // "12 cm" and "16π cm^2": a unit is what follows a number and a blank.
    static const Rule unit{
        QRegularExpression(uR"(^([-−£\d.×^() π]*[\dπ)])[ ~]+[A-Za-z][A-Za-z²³^2/]*$)"_qs),
        u"\\1"_qs};
    static const std::array<Rule, 5> notation{{
        {QRegularExpression(uR"(\^\{([^{}]*)\})"_qs), u"^(\\1)"_qs},
        {QRegularExpression(uR"(\\sqrt\[(\d)\]\{([^{}]*)\})"_qs), u"pow(\\2,1/\\1)"_qs},
        {QRegularExpression(uR"(\\sqrt\{([^{}]*)\})"_qs), u"sqrt(\\1)"_qs},
        {QRegularExpression(uR"(\\frac\{([^{}]*)\}\{([^{}]*)\})"_qs), u"((\\1)/(\\2))"_qs},
        {QRegularExpression(uR"(\\text\{([^{}]*)\})"_qs), u" \\1"_qs},
    }};
    static const std::array<Rule, 5> arithmetic{{
        {QRegularExpression(uR"((?<![a-z])([a-z])([a-z])(?![a-z(]))"_qs), u"\\1*\\2"_qs},
        {QRegularExpression(uR"((\d|\)) *(?=[a-z]))"_qs), u"\\1*"_qs},
        {QRegularExpression(uR"((\d|\)|(?<![a-z])[a-z])\()"_qs), u"\\1*("_qs},
        {QRegularExpression(
             uR"(((?:[a-z]+)?\([^()]*\)|[\d.]+|(?<![a-z])[a-z])\^(\([^()]*\)|-?[\d.]+|[a-z]))"_qs),
         u"pow(\\1,\\2)"_qs},
        {QRegularExpression(uR"((?<![\d.\w])(\d+)(?![\d.]))"_qs), u"\\1.0"_qs},
    }};
    rewrite(text.remove(u'$'), unit);
    for (const auto& [from, to] : {std::pair{u"\\left"_qs, u""_qs},
                                   {u"\\right"_qs, u""_qs},
                                   {u"\\,"_qs, u""_qs},
                                   {u"%"_qs, u""_qs},
                                   {u"°"_qs, u""_qs},
                                   {u"²"_qs, u"^2"_qs},
                                   {u"³"_qs, u"^3"_qs},
                                   {u"π"_qs, u"(pi())"_qs}})
        text.replace(from, to);
    for (QString before; before != text;) {
        before = text;
        for (const Rule& rule : notation)
            text.replace(rule.first, rule.second);
    }
    text = text.trimmed();
    for (const Rule& rule : arithmetic)
        rewrite(text, rule);
    for (const auto& [from, to] :
         {std::pair{u'×', u'*'}, {u'÷', u'/'}, {u'−', u'-'}, {u':', u'/'}, {u'£', u' '}})
        text.replace(from, to);
    return text;
}

} // namespace

void Expression::Close::operator()(sqlite3* database) const
{
    sqlite3_close(database);
}

Expression::Expression()
{
    sqlite3* database = nullptr;
    if (sqlite3_open(":memory:", &database) != SQLITE_OK)
        throw std::runtime_error("SQLite cannot be started");
    m_database.reset(database);
}

Expression::~Expression() = default;

std::optional<double> Expression::evaluate(const QString& text, const Variables& variables) const
{
    QString columns = u"1 as one_"_qs;
    for (auto entry = variables.cbegin(); entry != variables.cend(); ++entry)
        columns += u", %1 as %2"_qs.arg(entry.value(), 0, 'f', 12).arg(entry.key());
    const QByteArray sql = u"select %1 from (select %2)"_qs.arg(toSql(text), columns).toUtf8();
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(m_database.get(), sql, -1, &statement, nullptr) != SQLITE_OK)
        return {};
    std::optional<double> result;
    if (sqlite3_step(statement) == SQLITE_ROW && sqlite3_column_type(statement, 0) != SQLITE_NULL)
        result = sqlite3_column_double(statement, 0);
    sqlite3_finalize(statement);
    return result;
}

} // namespace varnholt
