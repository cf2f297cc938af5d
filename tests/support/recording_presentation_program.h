#pragma once

#include "presentation/presentation_program.h"
#include "store/errors.h"
#include "store/services.h"

#include <QRegularExpression>
#include <QStringList>
#include <QTextStream>

#include <functional>

namespace varnholt::test {

/// A presentation program that only writes down what it is asked, one line a call, for example
/// "addTextBox 0 40 100 100" or "setShapeText 2 #1", and fails where it is told to.
class RecordingPresentationProgram : public PresentationProgram
{
public:
    QStringList calls;
    /// Told of each call, while it is being made.
    std::function<void(const QString& call)> onCall;

    /// The call whose line starts with `what` fails the `nth` time, after being recorded.
    void failAt(const QString& what, int nth = 1)
    {
        failing_ = what;
        untilFailure_ = nth;
    }

    /// The recorded calls that start with `what`.
    [[nodiscard]] QStringList callsOf(const QString& what) const
    {
        return calls.filter(QRegularExpression(u'^' + what));
    }

    void addPresentation() override { record("addPresentation"); }
    void setVisible() override { record("setVisible"); }
    void appendBlankSlide() override
    {
        record("appendBlankSlide");
        ++slides_;
    }
    void showSlide(int index) override
    {
        record("showSlide", index);
        if (index < 1 || index > slides_) {
            throw Error(QStringLiteral("no such slide"));
        }
    }
    void addTextBox(double left, double top, double width, double height, LongLines) override
    {
        record("addTextBox", left, top, width, height);
    }
    void setShapeText(int shape, const QString& text) override
    {
        record("setShapeText", shape, text);
    }
    void addPicture(const QString& path, double left, double top, double width, double height,
                    const QString&) override
    {
        record("addPicture", path, left, top, width, height);
    }
    void scaleHeight(int shape, double factor) override { record("scaleHeight", shape, factor); }
    void scaleWidth(int shape, double factor) override { record("scaleWidth", shape, factor); }
    void finish() override { record("finish"); }

private:
    template <typename... Arguments>
    void record(const char* call, const Arguments&... arguments)
    {
        QString line;
        QTextStream text(&line);
        text << call;
        ((text << ' ' << arguments), ...);
        calls.append(line);
        if (onCall) {
            onCall(line);
        }
        if (untilFailure_ > 0 && line.startsWith(failing_) && --untilFailure_ == 0) {
            throw Error(QStringLiteral("told to fail"));
        }
    }

    QString failing_;
    int untilFailure_ = 0;
    int slides_ = 0;
};

/// Gives out recording programs; the last one's calls stay readable after its build.
class RecordingPresentations : public PresentationPrograms
{
public:
    /// Set up the next program here.
    RecordingPresentationProgram next;
    /// Throws this instead of starting, unless it is empty.
    QString startFailure;
    /// Does not start because the user has enough of waiting.
    bool cancelled = false;
    /// What the last program was asked; empty when none was started.
    QStringList calls;
    int started = 0;
    /// What `prepare` gave out last.
    std::weak_ptr<void> prepared;

    [[nodiscard]] std::shared_ptr<void> prepare() override
    {
        auto ready = std::make_shared<int>();
        prepared = ready;
        return ready;
    }
    [[nodiscard]] std::unique_ptr<PresentationProgram> start(SlidesInto, const KeepGoing&) override
    {
        if (!startFailure.isEmpty()) {
            throw Error(startFailure);
        }
        if (cancelled) {
            throw Cancelled();
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
