#pragma once

#include <QString>

#include <functional>
#include <vector>

namespace varnholt {

class Connection;

/// Whether what goes beyond the classic program can be used with a library, and if not why.
struct FeatureState
{
    bool on = true;
    /// A whole sentence for the user; empty when `on`.
    QString reason;
};

/// The tables that the program adds to a library: the journal and what later features keep. They
/// are made by the first change that needs them, and never by opening or reading. While there are
/// none, everything that would stand in them is empty.
class PlusTables
{
public:
    /// `scripts` bring the tables from version 0 (none) to 1, from 1 to 2, and so on.
    PlusTables(Connection& connection, std::vector<QString> scripts);

    /// The scripts that belong to this program.
    [[nodiscard]] static std::vector<QString> ownScripts();

    /// Called before tables of an older version are changed, outside of any transaction: the place
    /// for a backup. What it throws stops the change that wanted the tables.
    std::function<void()> beforeUpgrade;

    /// Looks at the library anew: after opening, and after its file has been replaced.
    void refresh();
    /// Forgets what it knows of the library.
    void clear() { version_ = 0; }

    /// Off for a library that can only be read and for one with the tables of a newer program,
    /// which this one would damage.
    [[nodiscard]] FeatureState state() const;
    /// Whether there are tables that can be read.
    [[nodiscard]] bool exist() const;
    /// The number of scripts that the library has been through.
    [[nodiscard]] int version() const { return version_; }

    /// To be called before the transaction of a change: the backup, where an upgrade is due.
    void prepare();
    /// Makes or upgrades the tables inside the caller's transaction, when that is due; true when it
    /// was. They count from `refresh` on. Throws `DatabaseError`.
    bool bringUpToDate();

private:
    Connection& connection_;
    std::vector<QString> scripts_;
    int version_ = 0;
};

} // namespace varnholt
