#include "library/backup/wanted_library.h"

#include "library/PlusTables.h"
#include "store/connection.h"
#include "store/plus_statements.h"
#include "store/statement.h"

#include <QCryptographicHash>

#include <array>

namespace varnholt {

namespace sql = plus_statements;

namespace {

struct ClassicTable
{
    ItemKind kind;
    const char* name;
    const char* key;
    /// All fields.
    const char* fields;
};

constexpr std::array<ClassicTable, 4> classicTables{{
    {ItemKind::Assessment, "Assessments", "AssessmentNum",
     "AssessmentNum, AssessmentName, Available"},
    {ItemKind::Topic, "Topics", "TopicID", "TopicID, Topic, AssessmentNum, Available"},
    {ItemKind::Subtopic, "SubTopics", "SubtopicNum",
     "SubtopicNum, TopicID, SubTopic, AssessmentNum, Available"},
    {ItemKind::Question, "Questions", "SOLIndex",
     "SOLIndex, TopicID, SubTopicNum, Answer, AssessmentNum, Available"},
}};

constexpr std::array recordTables{"PlusClasses", "PlusTests", "PlusTestItems", "PlusUses",
                                  "PlusChanges"};

bool has(Connection& library, const char* database, const QString& table)
{
    return library
        .read(QStringLiteral("SELECT 1 FROM %1.sqlite_master WHERE type = 'table' AND name = '%2'")
                  .arg(QLatin1String(database), table))
        .next();
}

std::vector<std::int32_t> keys(Connection& library, const QString& select)
{
    std::vector<std::int32_t> result;
    Recordset rows = library.read(select);
    while (rows.next()) {
        result.push_back(rows.integer(0));
    }
    return result;
}

/// Takes over today's rows whose keys the backup does not have.
void addNewerRows(Connection& wanted, const QString& table)
{
    if (!has(wanted, "today", table)) {
        return;
    }
    QStringList fields;
    QStringList values;
    Recordset common =
        wanted.read(QStringLiteral("SELECT name FROM pragma_table_info('%1', 'main') WHERE name "
                                   "IN (SELECT name FROM pragma_table_info('%1', 'today'))")
                        .arg(table));
    while (common.next()) {
        const QString field = common.text(0);
        const bool withdrawn =
            field == QStringLiteral("Available") ||
            (table == QStringLiteral("PlusChanges") && field == QStringLiteral("Step"));
        fields << field;
        values << (withdrawn ? QStringLiteral("0") : field);
    }
    wanted.execute(QStringLiteral("INSERT OR IGNORE INTO main.%1 (%2) SELECT %3 FROM today.%1")
                       .arg(table, fields.join(u','), values.join(u',')));
}

void keepKeysGoing(Connection& wanted)
{
    const QString table = QStringLiteral("sqlite_sequence");
    if (!has(wanted, "main", table) || !has(wanted, "today", table)) {
        return;
    }
    wanted.execute(QStringLiteral(
        "UPDATE main.sqlite_sequence SET seq = max(seq, coalesce((SELECT t.seq FROM "
        "today.sqlite_sequence t WHERE t.name = main.sqlite_sequence.name), 0));"
        "INSERT INTO main.sqlite_sequence (name, seq) SELECT name, seq FROM today.sqlite_sequence "
        "WHERE name NOT IN (SELECT name FROM main.sqlite_sequence) AND name IN (SELECT name FROM "
        "main.sqlite_master WHERE type = 'table')"));
}

/// Keys of today's available rows that the backup does not have.
std::vector<Item> newerRows(Connection& wanted)
{
    std::vector<Item> result;
    for (const ClassicTable& table : classicTables) {
        for (const std::int32_t key :
             keys(wanted, QStringLiteral("SELECT %2 FROM today.%1 WHERE Available = 1 AND %2 NOT "
                                         "IN (SELECT %2 FROM main.%1)")
                              .arg(QLatin1String(table.name), QLatin1String(table.key)))) {
            result.push_back({table.kind, key});
        }
    }
    return result;
}

/// True when there are tables beside the classic ones, which are then those of this program.
bool prepareRecords(Connection& wanted)
{
    const QString info = QStringLiteral("PlusInfo");
    if (!has(wanted, "main", info) && !has(wanted, "today", info)) {
        return false;
    }
    PlusTables tables(wanted, PlusTables::ownScripts());
    tables.refresh();
    (void)tables.bringUpToDate();
    if (has(wanted, "today", info)) {
        wanted.execute(QStringLiteral(
            "UPDATE main.PlusInfo SET LibraryID = (SELECT LibraryID FROM today.PlusInfo)"));
    }
    return true;
}

void plan(Connection& wanted, WantedLibrary& result)
{
    const QString questions = QStringLiteral(
        "(SELECT q.*, q.Available = 1 AND a.Available = 1 AS Live FROM %1.Questions q LEFT JOIN "
        "%1.Assessments a USING (AssessmentNum))");
    Recordset counts = wanted.read(
        QStringLiteral("SELECT total(n.Live AND t.Live IS NOT 1), total(n.Live AND t.Live AND "
                       "n.Answer IS NOT t.Answer), total(n.Live AND t.Live AND (n.TopicID, "
                       "n.SubTopicNum, n.AssessmentNum) IS NOT (t.TopicID, t.SubTopicNum, "
                       "t.AssessmentNum)), total(n.Live IS NOT 1 AND t.Live) FROM %1 n LEFT JOIN "
                       "%2 t ON t.SOLIndex = n.SOLIndex")
            .arg(questions.arg(QStringLiteral("main")), questions.arg(QStringLiteral("today"))));
    counts.next();
    BackupPlan& numbers = result.plan;
    numbers.questionsBack = counts.integer(0);
    numbers.answersChange = counts.integer(1);
    numbers.filingsChange = counts.integer(2);
    numbers.questionsToTrash = counts.integer(3);
    for (const ClassicTable& table : classicTables) {
        for (const std::int32_t key :
             keys(wanted, QStringLiteral("SELECT %1 FROM main.%2 EXCEPT SELECT %1 FROM today.%2")
                              .arg(QLatin1String(table.fields), QLatin1String(table.name)))) {
            numbers.placesChange += table.kind == ItemKind::Question ? 0 : 1;
            result.changed.push_back({table.kind, key});
        }
    }
}

void run(Connection& wanted, const QString& today, std::int64_t now, WantedLibrary& result)
{
    Statement(wanted, "ATTACH ?1 AS today").bind(1, today).run();
    Transaction transaction(wanted);
    const std::vector<Item> newer = newerRows(wanted);
    const bool records = prepareRecords(wanted);
    for (const ClassicTable& table : classicTables) {
        addNewerRows(wanted, QLatin1String(table.name));
    }
    for (const char* table : recordTables) {
        if (records) {
            addNewerRows(wanted, QLatin1String(table));
        }
    }
    keepKeysGoing(wanted);
    for (const Item& item : newer) {
        result.plan.newerQuestionsToTrash += item.kind == ItemKind::Question ? 1 : 0;
        if (records) {
            Statement(wanted, sql::InsertChange(static_cast<int>(item.kind)))
                .bind(1, now)
                .bind(2, std::int64_t{0})
                .bind(3, std::int64_t{item.key})
                .bind(4, QByteArray())
                .run();
        }
    }
    transaction.commit();
    plan(wanted, result);
    result.fingerprint = FingerprintOf(wanted);

    // Only pages of one size can take each other's place.
    const auto pageSize = [&](const char* database) {
        return keys(wanted, QStringLiteral("PRAGMA %1.page_size").arg(QLatin1String(database)))
            .at(0);
    };
    const std::int32_t own = pageSize("main");
    const std::int32_t needed = pageSize("today");
    wanted.execute(QStringLiteral("DETACH today"));
    if (own != needed) {
        wanted.execute(QStringLiteral("PRAGMA journal_mode = DELETE; PRAGMA page_size = %1; VACUUM")
                           .arg(needed));
    }
}

} // namespace

QByteArray FingerprintOf(Connection& library)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (const ClassicTable& table : classicTables) {
        Recordset rows =
            library.read(QStringLiteral("SELECT json_array(%1) FROM main.%2 ORDER BY %3")
                             .arg(QLatin1String(table.fields), QLatin1String(table.name),
                                  QLatin1String(table.key)));
        while (rows.next()) {
            hash.addData(rows.text(0).toUtf8() + '\n');
        }
        hash.addData("\n");
    }
    return hash.result().toHex();
}

QByteArray PrepareReplacement(const QString& file, std::int32_t largestKey)
{
    Connection wanted;
    wanted.open(file);
    if (has(wanted, "main", QStringLiteral("sqlite_sequence"))) {
        wanted.execute(QStringLiteral("UPDATE sqlite_sequence SET seq = max(seq, %1) WHERE name = "
                                      "'Questions'")
                           .arg(largestKey));
    }
    const QByteArray fingerprint = FingerprintOf(wanted);
    wanted.close();
    return fingerprint;
}

WantedLibrary BuildWantedLibrary(const QString& file, const QString& today, std::int64_t now)
{
    WantedLibrary result;
    Connection wanted;
    wanted.open(file);
    run(wanted, today, now, result);
    wanted.close();
    return result;
}

} // namespace varnholt
