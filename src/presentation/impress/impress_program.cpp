#include "presentation/impress/impress_program.h"

#include "presentation/impress/impress_file.h"
#include "store/errors.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QScopeGuard>

#include <com/sun/star/lang/DisposedException.hpp>

#include <cmath>

namespace varnholt {

namespace {

/// For the translator.
class Words
{
    Q_DECLARE_TR_FUNCTIONS(Presentation)
};

constexpr int farewellMs = 3000;

sal_Int32 hundredthMm(double points)
{
    return sal_Int32(std::lround(points * 2540 / 72));
}

} // namespace

template <typename Task>
void ImpressProgram::call(Task task)
{
    worker_.run([document = document_, gone = gone_, task = std::move(task)] {
        try {
            task(*document);
        } catch (const css::lang::DisposedException&) {
            *gone = true;
            throw ProgramGone(Words::tr("Impress, or the presentation in it, was closed."));
        } catch (const css::uno::Exception& exception) {
            throw Error(Words::tr("Impress reported: %1").arg(fromUno(exception.Message)));
        }
    });
}

ImpressProgram::ImpressProgram(const ImpressSettings& settings)
    : document_(std::make_shared<ImpressDocument>())
    , manySlides_(settings.manySlides)
    , keepGoing_(settings.keepGoing)
    , worker_(
          [this] { return (!whileLoading_ || whileLoading_()) && (!keepGoing_ || keepGoing_()); },
          [document = document_] { document->breakOff(); })
{
    ImpressSettings own = settings;
    // The worker must not call back into windows.
    own.keepGoing = nullptr;
    call([own](ImpressDocument& document) { document.open(own); });
}

ImpressProgram::~ImpressProgram()
{
    worker_.runLast([document = document_] { document->close(); }, farewellMs);
}

PresentationProgram& ImpressProgram::forSlides(int slides)
{
    if (slides < manySlides_) {
        return *this;
    }
    file_ = std::make_unique<ImpressFile>(*this);
    return *file_;
}

void ImpressProgram::open(const QString& path, const DeckFacts& facts,
                          const std::vector<TextPlace>& texts, int shownSlide)
{
    // How far it is the office tells only what it can call back, and one that lost what it was to
    // call back was seen to hang, with all that was open in it. So it is guessed.
    constexpr double slideMs = 6;
    const double usual = slideMs * facts.slides;
    QElapsedTimer timer;
    timer.start();
    int reported = 0;
    whileLoading_ = [&] {
        const auto elapsed = static_cast<double>(timer.elapsed());
        const int slide = static_cast<int>(facts.slides * elapsed / (elapsed + usual));
        if (slide > reported) {
            reported = slide;
            try {
                facts.report(slide);
            } catch (const Cancelled&) {
                return false;
            }
        }
        return true;
    };
    const auto done = qScopeGuard([this] { whileLoading_ = nullptr; });
    call([path, titled = !facts.language.isEmpty(), texts, shownSlide](ImpressDocument& document) {
        document.load(path);
        if (titled) {
            document.nameSlides();
        }
        document.setTexts(texts);
        document.show();
        document.choose(shownSlide);
    });
}

void ImpressProgram::addPresentation()
{
    call([facts = facts_](ImpressDocument& document) {
        document.create(facts.name, facts.language);
    });
}

void ImpressProgram::setVisible()
{
    call([](ImpressDocument& document) { document.show(); });
}

void ImpressProgram::appendBlankSlide()
{
    call([](ImpressDocument& document) { document.appendBlankSlide(); });
}

void ImpressProgram::addTextBox(double left, double top, double width, double height,
                                LongLines longLines)
{
    const HundredthMm box{hundredthMm(left), hundredthMm(top), hundredthMm(width),
                          hundredthMm(height)};
    call([box, longLines](ImpressDocument& document) { document.addTextBox(box, longLines); });
}

void ImpressProgram::setShapeText(int shape, const QString& text)
{
    call([shape, text](ImpressDocument& document) { document.setText(shape, text); });
}

QSizeF ImpressProgram::pictureSize(const QString& path)
{
    return pictures_.of(path).points;
}

void ImpressProgram::addTitle(double left, double top, double width, double height, double textSize,
                              const QString& text)
{
    const HundredthMm box{hundredthMm(left), hundredthMm(top), hundredthMm(width),
                          hundredthMm(height)};
    call([box, textSize, text](ImpressDocument& document) {
        document.addTitle(box, textSize, text);
    });
}

void ImpressProgram::emphasise(int shape, double textSize)
{
    call([shape, textSize](ImpressDocument& document) { document.emphasise(shape, textSize); });
}

void ImpressProgram::setNotes(const QString& text)
{
    call([text](ImpressDocument& document) { document.setNotes(text); });
}

void ImpressProgram::setAdvance(int seconds)
{
    call([seconds](ImpressDocument& document) { document.setAdvance(seconds); });
}

void ImpressProgram::addPicture(const QString& path, double left, double top, double width,
                                double height, const QString& description)
{
    const auto& [file, points] = pictures_.of(path);
    const HundredthMm box{hundredthMm(left), hundredthMm(top),
                          hundredthMm(width == ownSize ? points.width() : width),
                          hundredthMm(height == ownSize ? points.height() : height)};
    call([file = file, box, description](ImpressDocument& document) {
        document.addPicture(file, box, description);
    });
}

void ImpressProgram::scaleHeight(int shape, double factor)
{
    call([shape, factor](ImpressDocument& document) { document.scaleHeight(shape, factor); });
}

void ImpressProgram::scaleWidth(int shape, double factor)
{
    call([shape, factor](ImpressDocument& document) { document.scaleWidth(shape, factor); });
}

void ImpressProgram::showSlide(int index)
{
    call([index](ImpressDocument& document) { document.choose(index); });
}

void ImpressProgram::finish()
{
    // The call that noticed it has told already.
    if (*gone_) {
        return;
    }
    call([](ImpressDocument& document) { document.showCurrentSlide(); });
}

} // namespace varnholt

extern "C" Q_DECL_EXPORT varnholt::PresentationProgram*
varnholt_start_impress(const varnholt::ImpressSettings& settings)
{
    return new varnholt::ImpressProgram(settings);
}
