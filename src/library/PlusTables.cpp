#include "library/PlusTables.h"

#include "store/connection.h"
#include "store/plus_statements.h"
#include "store/statement.h"

#include <QCoreApplication>
#include <QFile>

namespace varnholt {

namespace sql = plus_statements;

PlusTables::PlusTables(Connection& connection, std::vector<QString> scripts)
    : connection_(connection)
    , scripts_(std::move(scripts))
{}

std::vector<QString> PlusTables::ownScripts()
{
    std::vector<QString> scripts;
    for (int version = 1;; ++version) {
        QFile script(QStringLiteral(":/plus/%1.sql").arg(version));
        if (!script.open(QIODevice::ReadOnly)) {
            return scripts;
        }
        scripts.push_back(QString::fromUtf8(script.readAll()));
    }
}

void PlusTables::refresh()
{
    version_ = 0;
    if (!Statement(connection_, sql::FindTables).next()) {
        return;
    }
    Statement info(connection_, sql::SelectInfo);
    if (info.next()) {
        version_ = static_cast<int>(info.integer(0));
    }
}

FeatureState PlusTables::state() const
{
    if (!connection_.isOpen()) {
        return {false, QCoreApplication::translate("PlusTables", "No question library is open.")};
    }
    if (connection_.isReadOnly()) {
        return {false, QCoreApplication::translate(
                           "PlusTables",
                           "The question library can only be read: changes cannot be saved.")};
    }
    if (version_ > static_cast<int>(scripts_.size())) {
        return {false,
                QCoreApplication::translate(
                    "PlusTables",
                    "A newer version of Varnholt has worked with this question library. Undo, the "
                    "trash and the other new features need that version; everything else works as "
                    "always.")};
    }
    return {};
}

bool PlusTables::exist() const
{
    return connection_.isOpen() && version_ > 0 && version_ <= static_cast<int>(scripts_.size());
}

void PlusTables::prepare()
{
    if (version_ > 0 && version_ < static_cast<int>(scripts_.size()) && beforeUpgrade) {
        beforeUpgrade();
    }
}

bool PlusTables::bringUpToDate()
{
    const int newest = static_cast<int>(scripts_.size());
    for (int version = version_; version < newest; ++version) {
        connection_.execute(scripts_[static_cast<std::size_t>(version)]);
        Statement(connection_, sql::UpdateVersion).bind(1, std::int64_t{version + 1}).run();
    }
    return version_ < newest;
}

} // namespace varnholt
