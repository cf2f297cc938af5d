#include "words/words.h"

#include <QApplication>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

/// Every window test runs in a real application on the off-screen platform, and never reads
/// or writes the settings of the person who runs it.
int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QTemporaryDir settings;
    QStandardPaths::setTestModeEnabled(true);
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
    QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("VarnholtTest"));
    QApplication::setApplicationName(QStringLiteral("VarnholtTest"));
    varnholt::InstallWords(application);
    return RUN_ALL_TESTS();
}
