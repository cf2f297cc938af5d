#pragma once

#include "presentation/impress/impress_settings.h"

#include <QList>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

namespace varnholt::test {

/// A place for an office suite of our own: an off-screen display, a fresh profile and a few
/// macros in the office's own language, with which it tells what it holds. Whatever runs on
/// that profile is killed at the end.
class OfficeHost
{
public:
    /// `moreMacros` are functions that `runMacro` can call; "%1" in them becomes this host's
    /// folder.
    explicit OfficeHost(const QString& moreMacros = QString());
    ~OfficeHost();
    OfficeHost(const OfficeHost&) = delete;
    OfficeHost& operator=(const OfficeHost&) = delete;

    /// Empty when everything is there, else what is missing.
    [[nodiscard]] const QString& problem() const { return problem_; }

    /// For the plug-in: this profile on this display.
    [[nodiscard]] ImpressSettings settings() const;

    [[nodiscard]] QString filePath(const QString& name) const { return folder_.filePath(name); }

    /// Runs one of the macros in the office, which is started when there is none.
    QString runMacro(const QString& name, const QStringList& arguments = {});

    /// Sends a signal to the office's processes.
    void signalOffice(int signal) const;

    /// What runs on this profile: the office, and programs that start it.
    [[nodiscard]] QList<qint64> processes(const QString& program = QString()) const;
    /// Whether within a minute or two there are none.
    [[nodiscard]] bool ends(const QString& program = QString()) const;

private:
    void startDisplay();
    void writeMacros(QString source);

    QTemporaryDir folder_;
    QProcess display_;
    QString displayName_;
    QString problem_;
};

} // namespace varnholt::test
