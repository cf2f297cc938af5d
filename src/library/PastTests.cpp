#include "library/PastTests.h"

#include "store/plus_statements.h"
#include "store/statement.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace varnholt {

namespace sql = plus_statements;

namespace {

const QString topicLineKey = QStringLiteral("topicLine");
const QString answerKeyKey = QStringLiteral("answerKey");
const QString versionKey = QStringLiteral("version");
const QString versionOfKey = QStringLiteral("versionOf");
const QString unusedKey = QStringLiteral("unused");
const QString askedKey = QStringLiteral("asked");
const QString slidesKey = QStringLiteral("slides");

} // namespace

QString TestOptions::toJson() const
{
    QJsonObject object{{topicLineKey, topicLine ? 1 : 0}, {answerKeyKey, answerKey ? 1 : 0}};
    if (version > 0) {
        object.insert(versionKey, version);
        object.insert(versionOfKey, versionOf);
    }
    if (unused) {
        object.insert(unusedKey, 1);
    }
    if (asked > 0) {
        object.insert(askedKey, asked);
    }
    if (slides.any()) {
        object.insert(slidesKey, slides.toJson());
    }
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

TestOptions TestOptions::fromJson(const QString& text)
{
    const QJsonObject object = QJsonDocument::fromJson(text.toUtf8()).object();
    TestOptions options;
    options.topicLine = object.value(topicLineKey).toInt(1) != 0;
    options.answerKey = object.value(answerKeyKey).toInt(1) != 0;
    options.version = object.value(versionKey).toInt();
    options.versionOf = object.value(versionOfKey).toInt();
    options.unused = object.value(unusedKey).toInt() != 0;
    options.asked = object.value(askedKey).toInt();
    options.slides = SlideWishes::fromJson(object.value(slidesKey).toObject());
    return options;
}

std::vector<PastTest> PastTests::list(int most) const
{
    std::vector<PastTest> tests;
    if (!recorded_) {
        return tests;
    }
    Statement rows(connection_, sql::SelectTests);
    rows.bind(1, std::int64_t{most});
    const auto number = [&rows](int field) {
        return static_cast<std::int32_t>(rows.integer(field));
    };
    while (rows.next()) {
        tests.push_back({number(0), rows.text(1), number(2), number(3), rows.text(4),
                         rows.integer(5), static_cast<TestKind>(number(6)),
                         static_cast<std::uint64_t>(rows.integer(7)),
                         TestOptions::fromJson(rows.text(8)), number(9)});
    }
    return tests;
}

std::vector<TestItem> PastTests::items(std::int32_t testId) const
{
    std::vector<TestItem> items;
    if (!recorded_) {
        return items;
    }
    Statement rows(connection_, sql::SelectTestItems);
    rows.bind(1, std::int64_t{testId});
    while (rows.next()) {
        items.push_back({static_cast<std::int32_t>(rows.integer(0)),
                         static_cast<std::int32_t>(rows.integer(1)), rows.text(2), rows.text(3),
                         rows.bytes(4)});
    }
    return items;
}

std::map<std::int32_t, TestUse> PastTests::uses(std::int32_t testId) const
{
    std::map<std::int32_t, TestUse> uses;
    if (!recorded_) {
        return uses;
    }
    Statement rows(connection_, sql::SelectTestUses);
    rows.bind(1, std::int64_t{testId});
    while (rows.next()) {
        const auto key = static_cast<std::int32_t>(rows.integer(1));
        uses[key] = {rows.integer(0), key, static_cast<Outcome>(rows.integer(2))};
    }
    return uses;
}

std::int64_t PastTests::newestUse(std::int32_t solIndex, std::int32_t classId) const
{
    if (!recorded_) {
        return 0;
    }
    Statement row(connection_, sql::SelectNewestUse);
    row.bind(1, std::int64_t{solIndex}).bind(2, std::int64_t{classId});
    return row.next() ? row.integer(0) : 0;
}

std::vector<ClassRecord> PastTests::classes() const
{
    std::vector<ClassRecord> classes;
    if (!recorded_) {
        return classes;
    }
    Statement rows(connection_, sql::SelectClasses);
    while (rows.next()) {
        classes.push_back({static_cast<std::int32_t>(rows.integer(0)), rows.text(1)});
    }
    return classes;
}

std::int32_t PastTests::classNamed(const QString& name) const
{
    if (!recorded_ || name.trimmed().isEmpty()) {
        return 0;
    }
    Statement row(connection_, sql::SelectClassNamed);
    row.bind(1, name.trimmed());
    return row.next() ? static_cast<std::int32_t>(row.integer(0)) : 0;
}

QString VersionLetter(int version)
{
    return QChar(static_cast<char16_t>(u'A' + version));
}

} // namespace varnholt
