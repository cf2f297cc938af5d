#pragma once

#include "presentation/impress/impress_settings.h"
#include "presentation/impress/office_process.h"
#include "presentation/impress/uno_values.h"

#include <QElapsedTimer>

#include <com/sun/star/bridge/XBridge.hpp>
#include <com/sun/star/connection/XConnection.hpp>
#include <com/sun/star/uno/XComponentContext.hpp>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>

namespace varnholt {

/// A bridge to the office suite that runs on this desktop, started when there is none. Its
/// calls block, so they belong on a thread of their own; only `breakOff` may come from
/// another one.
class OfficeConnection
{
public:
    OfficeConnection() = default;
    ~OfficeConnection();
    OfficeConnection(const OfficeConnection&) = delete;
    OfficeConnection& operator=(const OfficeConnection&) = delete;

    /// Waits for a start or an end of the office that is under way, in this program or another.
    /// Throws `Error` when the office does not answer within the limit.
    void open(const ImpressSettings& settings);

    /// A bridge to the office behind the pipe of `settings`; false when there is none. Starts
    /// nothing and waits for nobody.
    [[nodiscard]] bool reopen(const ImpressSettings& settings);

    /// The office's own component context.
    [[nodiscard]] const css::uno::Reference<css::uno::XComponentContext>& context() const
    {
        return context_;
    }

    /// What `open` started, or what handed over to an office that ran; null when neither was
    /// needed.
    [[nodiscard]] OfficeProcess* process() const { return process_.get(); }

    void close();

    /// Makes a hanging call return with an exception, and `open` fail.
    void breakOff();

private:
    bool tryOpen();
    void openOnce();
    void waitFor(const ImpressSettings& settings, const QElapsedTimer& waiting);

    QString pipe_;
    std::unique_ptr<OfficeProcess> process_;
    std::mutex mutex_;
    std::atomic<bool> broken_ = false;
    css::uno::Reference<css::connection::XConnection> connection_;
    css::uno::Reference<css::bridge::XBridge> bridge_;
    css::uno::Reference<css::uno::XComponentContext> context_;
};

} // namespace varnholt
