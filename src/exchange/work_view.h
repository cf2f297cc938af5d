#pragma once

#include <QString>

#include <cstdint>

namespace varnholt {

class ProgressLabel;

/// What a running export or import shows of itself. Its window is one.
class WorkView
{
public:
    virtual ~WorkView() = default;

    /// From here to `endWork` the pointer is busy and the program's windows take no input.
    virtual void beginWork() = 0;
    virtual void endWork() = 0;

    virtual void showBar() = 0;
    virtual void hideBar() = 0;
    virtual ProgressLabel& backLabel() = 0;
    virtual ProgressLabel& faceLabel() = 0;

    /// `done` of `all` of the work called `what`. Work that takes longer than half a second
    /// gets the bar on show. Cheap enough for every file or record.
    virtual void progress(const QString& what, std::int64_t done, std::int64_t all) = 0;

    /// Keeps on show why the work failed, beside the message, which does not say it; nothing
    /// when `reason` is empty.
    virtual void explain(const QString& reason) = 0;
};

/// One stretch of busy work, ended on every way out.
class BusyStretch
{
public:
    explicit BusyStretch(WorkView& view)
        : view_(view)
    {
        view_.beginWork();
    }
    BusyStretch(const BusyStretch&) = delete;
    BusyStretch& operator=(const BusyStretch&) = delete;
    ~BusyStretch() { view_.endWork(); }

private:
    WorkView& view_;
};

} // namespace varnholt
