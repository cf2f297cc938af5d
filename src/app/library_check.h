#pragma once

#include <QObject>
#include <QString>

#include <atomic>
#include <thread>

namespace varnholt {

class Connection;

/// Looks after a library on a thread of its own while the user works: reads the whole file for
/// damage that would otherwise only make questions disappear, and clears away what a killed
/// program left.
class LibraryCheck : public QObject
{
    Q_OBJECT

public:
    LibraryCheck() = default;
    /// Stops what is not finished.
    ~LibraryCheck() override;

    /// Begins; call it once. `mayTidy` when this program has the library to itself.
    void start(const QString& programFolder, bool mayTidy);

Q_SIGNALS:
    /// The file is damaged. Sent on the check's thread.
    void damaged();

private:
    void run(const QString& programFolder, bool mayTidy);

    std::atomic<bool> stop_ = false;
    std::thread thread_;
};

/// Clears away what a program left that was killed: temporary files of its own names, in `Files`
/// and beside the library, and pictures set aside for a question that was never added (they get
/// their name back) or that stand under their name as well.
void TidyLibraryFolder(const QString& programFolder, Connection& connection);

} // namespace varnholt
