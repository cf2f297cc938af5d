#pragma once

#include "presentation/impress/impress_document.h"
#include "presentation/office_worker.h"
#include "presentation/presentation_extras.h"
#include "presentation/presentation_program.h"
#include "presentation/upright_pictures.h"

#include <atomic>
#include <memory>

namespace varnholt {

/// The presentation port on top of Impress. The document is in Impress from the first call
/// on; it stays open, unsaved and visible when this object goes.
class ImpressProgram final : public PresentationProgram, private PresentationExtras
{
public:
    /// Starts or finds the office. Throws `Error` when it cannot be reached, `Cancelled` when
    /// the user stops waiting.
    explicit ImpressProgram(const ImpressSettings& settings);
    ~ImpressProgram() override;

    [[nodiscard]] PresentationProgram& forSlides(int slides) override;
    [[nodiscard]] PresentationExtras* extras() override { return this; }
    void addPresentation() override;
    void setVisible() override;
    void appendBlankSlide() override;
    void addTextBox(double left, double top, double width, double height,
                    LongLines longLines) override;
    void setShapeText(int shape, const QString& text) override;
    void addPicture(const QString& path, double left, double top, double width, double height,
                    const QString& description) override;
    void scaleHeight(int shape, double factor) override;
    void scaleWidth(int shape, double factor) override;
    void showSlide(int index) override;
    void finish() override;

    /// A new presentation with the slides of a .pptx file, as if they had been made by calls: one
    /// without a file, changed. `texts` are all of them. Reports its progress as
    /// announced.
    void open(const QString& path, const DeckFacts& facts, const std::vector<TextPlace>& texts,
              int shownSlide);
    [[nodiscard]] const KeepGoing& keepGoing() const { return keepGoing_; }

private:
    void announce(const DeckFacts& facts) override { facts_ = facts; }
    void addTitle(double left, double top, double width, double height, double textSize,
                  const QString& text) override;
    void emphasise(int shape, double textSize) override;
    void setNotes(const QString& text) override;
    void setAdvance(int seconds) override;
    [[nodiscard]] QSizeF pictureSize(const QString& path) override;

    /// Runs on the worker with what UNO throws made an `Error`.
    template <typename Task>
    void call(Task task);

    /// Shared with the worker, which may outlive this object when the office hangs.
    std::shared_ptr<ImpressDocument> document_;
    /// Whether a call found the presentation closed; shared like the document.
    std::shared_ptr<std::atomic<bool>> gone_ = std::make_shared<std::atomic<bool>>(false);
    const int manySlides_;
    KeepGoing keepGoing_;
    /// Asked while a call is waited for, if there is anything to ask; as `keepGoing_`.
    KeepGoing whileLoading_;
    OfficeWorker worker_;
    std::unique_ptr<PresentationProgram> file_;
    UprightPictures pictures_;
    DeckFacts facts_;
};

} // namespace varnholt
