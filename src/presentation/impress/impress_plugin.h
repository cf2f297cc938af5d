#pragma once

#include "presentation/impress/impress_settings.h"

#include <memory>

namespace varnholt {

/// The place of the plug-in that drives Impress: the folder `plugins` beside the program, or
/// `../lib/varnholt/plugins` from there in an installed one. The program starts without it,
/// and without an office suite, which the plug-in needs in order to load.
class ImpressPlugin
{
public:
    /// Looks for the plug-in once and keeps it loaded to the end of the program.
    static ImpressPlugin& instance();

    /// Null when there is no plug-in or no office suite; `reason` says which.
    [[nodiscard]] ImpressEntry entry() const { return entry_; }
    [[nodiscard]] const QString& reason() const { return reason_; }

    /// Throws `Error` with the reason when Impress is not available, and what the plug-in throws.
    [[nodiscard]] std::unique_ptr<PresentationProgram> start(const ImpressSettings& settings) const;

private:
    ImpressPlugin();

    ImpressEntry entry_ = nullptr;
    QString reason_;
};

} // namespace varnholt
