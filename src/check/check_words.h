#pragma once

#include "library/library_findings.h"

#include <QCoreApplication>

namespace varnholt {

/// What the window says of findings and remedies.
class CheckWords
{
    Q_DECLARE_TR_FUNCTIONS(CheckWords)

public:
    [[nodiscard]] static QString sentence(const Finding& finding);
    /// The caption of a remedy's button, with its mnemonic; empty when there is none.
    [[nodiscard]] static QString caption(Remedy remedy);
    /// What has been done to so many findings.
    [[nodiscard]] static QString done(Remedy remedy, int count);

private:
    [[nodiscard]] static QString largeKeys(ItemKind kind, int count);
};

} // namespace varnholt
