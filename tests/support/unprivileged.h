#pragma once

#include <QFile>
#include <QString>

#ifdef Q_OS_WIN
namespace varnholt::test {

/// For tests that Windows skips.
class Unprivileged
{
public:
    explicit Unprivileged(const QString&) {}
    ~Unprivileged() {}
};

} // namespace varnholt::test
#else
#include <unistd.h>

namespace varnholt::test {

/// While it lives the test has no rights beyond the permissions of files, also when it is run
/// by root. `folder` stays readable for everybody.
class Unprivileged
{
public:
    explicit Unprivileged(const QString& folder)
        : root_(geteuid() == 0)
    {
        if (root_) {
            QFile(folder).setPermissions(QFile::permissions(folder) | QFile::ReadGroup |
                                         QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther);
            constexpr uid_t nobody = 65534;
            root_ = seteuid(nobody) == 0;
        }
    }
    Unprivileged(const Unprivileged&) = delete;
    Unprivileged& operator=(const Unprivileged&) = delete;
    ~Unprivileged()
    {
        if (root_ && seteuid(0) != 0) {
            _exit(1);
        }
    }

private:
    bool root_;
};

} // namespace varnholt::test
#endif
