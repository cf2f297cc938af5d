#pragma once

#include "store/services.h"
#include "support/recording_presentation_program.h"

#include <memory>

namespace varnholt::test {

/// Gives out recording programs; the last one's calls stay readable after its build.
class RecordingPresentations : public PresentationPrograms
{
public:
    /// Set up the next program here.
    RecordingPresentationProgram next;
    /// Throws this instead of starting, unless it is empty.
    QString startFailure;
    /// What the last program was asked; empty when none was started.
    QStringList calls;
    int started = 0;

    [[nodiscard]] std::unique_ptr<PresentationProgram> start() override
    {
        if (!startFailure.isEmpty()) {
            throw Error(startFailure);
        }
        ++started;
        calls.clear();
        return std::make_unique<Reporting>(next, calls);
    }

private:
    class Reporting : public RecordingPresentationProgram
    {
    public:
        Reporting(const RecordingPresentationProgram& program, QStringList& target)
            : RecordingPresentationProgram(program)
            , target_(target)
        {}
        ~Reporting() override { target_ = calls; }

    private:
        QStringList& target_;
    };
};

} // namespace varnholt::test
