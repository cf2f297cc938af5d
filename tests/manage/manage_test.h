#pragma once

#include "store/catalogue.h"
#include "store/services.h"
#include "support/fakes.h"
#include "support/gui.h"
#include "support/test_library.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

/// Failures show texts, not bytes.
inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

namespace varnholt::test {

/// A library, what the windows share, and services whose questions are answered by a script.
class ManageTest : public testing::Test
{
protected:
    ManageTest()
    {
        services.messageBoxes = &messages;
        services.programFolder = library.folder();
        connection.open(library.databasePath());
    }

    /// Makes an assessment current and loads its catalogue.
    void load(std::int32_t assessment)
    {
        state.CurrentAssessmentNum = assessment;
        LoadCurrentAssessment(state, connection, messages);
    }

    /// From now on every insert or update of a table fails.
    void breakTable(const QString& table)
    {
        for (const char* event : {"INSERT", "UPDATE"}) {
            library.sql(QStringLiteral("CREATE TRIGGER Break%1%2 BEFORE %2 ON %1 BEGIN "
                                       "SELECT RAISE(ABORT, 'broken'); END")
                            .arg(table, QLatin1String(event)));
        }
    }

    TestLibrary library;
    Connection connection;
    ProgramState state;
    ScriptedMessageBoxes messages;
    Services services;
};

} // namespace varnholt::test
