#pragma once

#include <QString>

#include <memory>

namespace varnholt {

/// While it lives the desktop neither blanks the screens nor locks them, where it can be asked.
class KeepAwake
{
public:
    /// `reason` is a sentence for people who look what keeps their screen on.
    explicit KeepAwake(const QString& reason);
    KeepAwake(const KeepAwake&) = delete;
    KeepAwake& operator=(const KeepAwake&) = delete;
    ~KeepAwake();

private:
    struct Request;
    std::unique_ptr<Request> request_;
};

} // namespace varnholt
