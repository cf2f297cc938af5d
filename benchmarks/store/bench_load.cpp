// Loading a catalogue against the raw database interface filling vectors of structs.

#include "store/catalogue.h"
#include "store/connection.h"
#include "support/big_library.h"
#include "support/report.h"

#include <QTemporaryDir>

#include <cstdlib>

namespace {

using namespace varnholt;

struct RawTopic
{
    int topicId;
    std::string topic;
};

struct RawSubTopic
{
    int topicId;
    int subtopicNum;
    std::string subTopic;
};

struct RawQuestion
{
    int solIndex;
    int pictureIndex;
    int topicId;
    int subtopicNum;
    std::string answer;
};

std::string textOf(sqlite3_stmt* row, int column)
{
    return {reinterpret_cast<const char*>(sqlite3_column_text(row, column)),
            static_cast<std::size_t>(sqlite3_column_bytes(row, column))};
}

template <typename Record, typename Read>
std::vector<Record> readAll(sqlite3* database, const char* sql, Read read)
{
    std::vector<Record> records;
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(database, sql, -1, &statement, nullptr) != SQLITE_OK) {
        std::abort();
    }
    while (sqlite3_step(statement) == SQLITE_ROW) {
        records.push_back(read(statement));
    }
    sqlite3_finalize(statement);
    return records;
}

std::size_t rawLoad(sqlite3* database)
{
    const auto topics = readAll<RawTopic>(
        database, "Select * from Topics Where Available = true and AssessmentNum = 1",
        [](sqlite3_stmt* row) {
            return RawTopic{sqlite3_column_int(row, 0), textOf(row, 1)};
        });
    const auto subTopics = readAll<RawSubTopic>(
        database, "Select * from SubTopics where Available = true and AssessmentNum = 1",
        [](sqlite3_stmt* row) {
            return RawSubTopic{sqlite3_column_int(row, 1), sqlite3_column_int(row, 0),
                               textOf(row, 2)};
        });
    const auto questions = readAll<RawQuestion>(
        database, "Select * from Questions where Available = true and AssessmentNum = 1",
        [](sqlite3_stmt* row) {
            const int key = sqlite3_column_int(row, 0);
            return RawQuestion{key, key, sqlite3_column_int(row, 1), sqlite3_column_int(row, 2),
                               textOf(row, 3)};
        });
    return topics.size() + subTopics.size() + questions.size();
}

double loadRatio(int questions, int rounds)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("Varnholt.mdb"));
    bench::makeBigLibrary(path, questions);

    Connection connection;
    connection.open(path);
    sqlite3* raw = nullptr;
    sqlite3_open_v2(path.toUtf8().constData(), &raw, SQLITE_OPEN_READONLY, nullptr);
    const std::size_t rows = static_cast<std::size_t>(questions) * 111 / 100;

    const double value = bench::ratio(
        rounds,
        [&] {
            ProgramState state;
            state.CurrentAssessmentNum = 1;
            if (!LoadStructure(state, connection).isEmpty()) {
                std::abort();
            }
            LoadQuestions(state, connection);
            if (state.QuestionList.upperBound() != questions) {
                std::abort();
            }
        },
        [&] {
            if (rawLoad(raw) != rows) {
                std::abort();
            }
        });
    sqlite3_close(raw);
    return value;
}

} // namespace

int main(int argc, char** argv)
{
    const std::string peer = "raw SQLite interface into vectors of structs";
    return bench::report({{"load.100k", loadRatio(100'000, 15), 1.5, 1.3, "ratio", peer},
                          {"load.1m", loadRatio(1'000'000, 5), 1.5, 1.3, "ratio", peer}},
                         argc, argv);
}
