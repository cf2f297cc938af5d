#include "show/ShowMemory.h"

#include "library/Library.h"
#include "library/test_pictures.h"
#include "pictures/picture_files.h"
#include "show/Show.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace varnholt {

ShowMemory::ShowMemory(Library& library, NewTest test, std::int32_t keptTestId)
    : library_(library)
    , test_(std::move(test))
    , keptTestId_(keptTestId)
{
    for (const TestItem& item : test_.items) {
        rows_.push_back({item.SOLIndex, 0, Outcome::Unknown});
    }
    if (const FeatureState features = library_.features(); !features.on) {
        failure_ = features.reason;
    } else if (std::any_of(test_.items.begin(), test_.items.end(),
                           [](const TestItem& item) { return item.pictureSha.isNull(); })) {
        pictures_ = std::async(
            std::launch::async, [folder = library_.programFolder(), items = test_.items] {
                std::map<std::int32_t, QByteArray> pictures;
                for (const TestItem& item : items) {
                    pictures[item.SOLIndex] = PictureSha(FindPictureFile(folder, item.SOLIndex));
                }
                return pictures;
            });
    }
}

ShowMemory::~ShowMemory()
{
    try {
        takePictures();
    } catch (const Error&) {
        // The pictures are those that the questions have, then.
    }
}

void ShowMemory::follow(const Show& show, bool seen)
{
    if (!failure_.isEmpty()) {
        return;
    }
    try {
        write(show, seen);
    } catch (const Error& error) {
        failure_ = error.message();
    }
}

void ShowMemory::write(const Show& show, bool seen)
{
    for (int position = 1; position <= show.questions(); ++position) {
        const auto i = static_cast<std::size_t>(position) - 1;
        Row& row = rows_.at(i);
        const ShowItem& item = show.item(position);
        if (row.key != item.question.SOLIndex) {
            row = {item.question.SOLIndex, 0, Outcome::Unknown};
            TestItem& kept = test_.items[i];
            kept = {kept.position, row.key, item.question.Answer, item.topicText,
                    PictureSha(item.picture)};
            if (testId_ != 0) {
                library_.setTestItems(testId_, {kept});
            }
        }
        const Outcome outcome = show.outcome(position);
        if (row.useId == 0 &&
            (outcome != Outcome::Unknown || (seen && show.position() == position))) {
            begin();
            row.useId = library_.recordUse(testId_, row.key);
        }
        if (row.outcome != outcome) {
            library_.recordOutcome({row.useId}, outcome);
            row.outcome = outcome;
        }
    }
    if (pictures_.valid() &&
        pictures_.wait_for(std::chrono::seconds(0)) == std::future_status::ready) {
        takePictures();
    }
}

void ShowMemory::begin()
{
    if (testId_ == 0 && keptTestId_ != 0) {
        library_.beginShow(keptTestId_, test_.items);
        testId_ = keptTestId_;
    } else if (testId_ == 0) {
        testId_ = library_.beginShow(test_);
    }
}

void ShowMemory::takePictures()
{
    if (testId_ == 0 || !pictures_.valid()) {
        return;
    }
    const std::map<std::int32_t, QByteArray> pictures = pictures_.get();
    for (TestItem& item : test_.items) {
        if (const auto found = pictures.find(item.SOLIndex);
            found != pictures.end() && item.pictureSha.isNull()) {
            item.pictureSha = found->second;
        }
    }
    library_.setTestItems(testId_, test_.items);
}

} // namespace varnholt
