#include "exchange/raw_exchange.h"

#include <sqlite3.h>
#include <zip.h>

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace varnholt::bench {

namespace {

void require(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

void add(zip_t* archive, const std::string& folder, const std::string& name, zip_int32_t method)
{
    zip_source_t* source = zip_source_file(archive, (folder + "/" + name).c_str(), 0, -1);
    const zip_int64_t index = zip_file_add(archive, name.c_str(), source, 0);
    require(index >= 0);
    zip_set_file_compression(archive, static_cast<zip_uint64_t>(index), method, 0);
}

/// Runs a prepared insert for every line of a list; `order` gives the parameter (from 1) of
/// each field of the line.
void insertLines(sqlite3* database, const char* sql, const std::string& file,
                 const std::vector<int>& order)
{
    sqlite3_stmt* statement = nullptr;
    require(sqlite3_prepare_v2(database, sql, -1, &statement, nullptr) == SQLITE_OK);
    std::FILE* lines = std::fopen(file.c_str(), "r");
    require(lines != nullptr);
    char line[1000];
    while (std::fgets(line, sizeof line, lines)) {
        char* field = line;
        for (const int parameter : order) {
            if (*field == '"') {
                char* end = field + 1;
                while (*end != '"') {
                    ++end;
                }
                sqlite3_bind_text(statement, parameter, field + 1,
                                  static_cast<int>(end - field) - 1, SQLITE_TRANSIENT);
                field = end + 2;
            } else {
                sqlite3_bind_int64(statement, parameter, std::strtoll(field, &field, 10));
                ++field;
            }
        }
        require(sqlite3_step(statement) == SQLITE_DONE);
        sqlite3_reset(statement);
    }
    std::fclose(lines);
    sqlite3_finalize(statement);
}

} // namespace

void rawExport(const QString& textFolder, const QString& pictureFolder, int questions,
               const QString& archive)
{
    zip_t* zip = zip_open(archive.toUtf8().constData(), ZIP_CREATE | ZIP_TRUNCATE, nullptr);
    require(zip != nullptr);
    for (const char* name :
         {"topics.txt", "subtopics.txt", "questions.txt", "AssessmentInfo.txt"}) {
        add(zip, textFolder.toStdString(), name, ZIP_CM_DEFLATE);
    }
    for (int i = 1; i <= questions; ++i) {
        add(zip, pictureFolder.toStdString(), std::to_string(i) + ".jpg", ZIP_CM_STORE);
    }
    require(zip_close(zip) == 0);
}

void rawImport(const QString& archive, const QString& folder)
{
    const std::string files = folder.toStdString() + "/Files/";
    zip_t* zip = zip_open(archive.toUtf8().constData(), ZIP_RDONLY, nullptr);
    require(zip != nullptr);
    std::vector<char> buffer(256 * 1024);
    const zip_int64_t count = zip_get_num_entries(zip, 0);
    for (zip_uint64_t i = 0; i < static_cast<zip_uint64_t>(count); ++i) {
        zip_file_t* member = zip_fopen_index(zip, i, 0);
        const int file =
            ::open((files + zip_get_name(zip, i, 0)).c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        require(member != nullptr && file >= 0);
        zip_int64_t got = 0;
        while ((got = zip_fread(member, buffer.data(), buffer.size())) > 0) {
            require(::write(file, buffer.data(), static_cast<std::size_t>(got)) == got);
        }
        ::close(file);
        zip_fclose(member);
    }
    zip_discard(zip);

    sqlite3* database = nullptr;
    sqlite3_open((folder.toStdString() + "/Varnholt.mdb").c_str(), &database);
    sqlite3_exec(database,
                 "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL; BEGIN; INSERT INTO "
                 "Assessments(AssessmentName) VALUES('Copy')",
                 nullptr, nullptr, nullptr);
    insertLines(database, "INSERT INTO Topics(TopicID,Topic,AssessmentNum) VALUES(?,?,1)",
                files + "topics.txt", {1, 2});
    insertLines(database,
                "INSERT INTO SubTopics(TopicID,SubTopic,SubtopicNum,AssessmentNum) VALUES(?,?,?,1)",
                files + "subtopics.txt", {1, 2, 3});
    insertLines(database,
                "INSERT INTO Questions(SOLIndex,TopicID,Answer,SubTopicNum,AssessmentNum) "
                "VALUES(?,?,?,?,1)",
                files + "questions.txt", {1, 2, 3, 4});
    require(sqlite3_exec(database, "COMMIT", nullptr, nullptr, nullptr) == SQLITE_OK);
    sqlite3_close(database);
}

} // namespace varnholt::bench
