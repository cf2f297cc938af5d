#pragma once

#include "manage/frmManage.h"
#include "store/catalogue.h"
#include "support/gui.h"
#include "support/test_services.h"
#include "toolkit/ComboBox.h"
#include "toolkit/ListBox.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <memory>

/// Failures show texts, not bytes.
inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

namespace varnholt::test {

/// A library and the library manager on it.
class ManageTest : public testing::Test, protected TestWorld
{
protected:
    ManageTest() { connection.open(library.databasePath()); }

    void open()
    {
        window.reset();
        window = std::make_unique<frmManage>(services, state, connection,
                                             [this](QWidget*, const FilingPreselection& rows) {
                                                 ++authoringOpened;
                                                 preselection = rows;
                                                 if (authoring) {
                                                     authoring();
                                                 }
                                             });
        window->show();
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        window->setFocus();
    }

    void press(const char* button) { click(window.get(), button); }
    ListBox& topics() { return *control<ListBox>(window.get(), "lstTopics"); }
    ListBox& subtopics() { return *control<ListBox>(window.get(), "lstSubtopics"); }
    ComboBox& assessments() { return *control<ComboBox>(window.get(), "cboAssessment"); }
    QString text(const char* label) { return control<QLabel>(window.get(), label)->text(); }
    bool enabled(const char* name) { return control<QWidget>(window.get(), name)->isEnabled(); }
    bool shown(const char* name) { return control<QWidget>(window.get(), name)->isVisible(); }
    /// The control that has the focus whenever the window is active.
    QString focus() { return window->focusWidget()->objectName(); }

    QStringList rows(const ListBox& list)
    {
        QStringList texts;
        for (const ListBox::Row& row : list.rows()) {
            texts.append(row.text);
        }
        return texts;
    }

    /// The enabled ones of the seven buttons that the selection governs, by their initials:
    /// (A)dd and (D)elete assessment, add (Q)uestion, (t)opic and subtopic (s), new in lower
    /// case and delete in upper case.
    QString enabledButtons()
    {
        QString letters;
        for (const auto& [name, letter] : {std::pair("cmdAddAssessment", u'A'),
                                           {"cmdDeleteAssessment", u'D'},
                                           {"cmdAddNewQuestion", u'Q'},
                                           {"cmdNewTopic", u't'},
                                           {"cmdDeleteTopic", u'T'},
                                           {"cmdNewSubtopic", u's'},
                                           {"cmdDeleteSubtopic", u'S'}}) {
            if (enabled(name)) {
                letters.append(QChar(letter));
            }
        }
        return letters;
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

    std::unique_ptr<frmManage> window;
    int authoringOpened = 0;
    FilingPreselection preselection;
    /// What the authoring window does when it is opened.
    std::function<void()> authoring;
};

} // namespace varnholt::test
