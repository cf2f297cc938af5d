#include "selection/test_record.h"

#include "library/Library.h"
#include "library/test_pictures.h"
#include "pictures/picture_files.h"
#include "store/catalogue.h"

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>
#include <utility>

namespace varnholt {

namespace {

struct Words
{
    Q_DECLARE_TR_FUNCTIONS(TestRecord)
};

} // namespace

std::vector<TestItem> ItemsOf(const ProgramState& state, const Draw& draw)
{
    std::vector<TestItem> items;
    for (int i = 1; i <= draw.DrawPool.upperBound(); ++i) {
        const DrawnQuestion& question = draw.DrawPool(i);
        if (question.Selected) {
            items.push_back(
                {i, question.SOLIndex, question.Answer, GetTopicText(state, question), {}});
        }
    }
    return items;
}

QString NameOfTest(const ProgramState& state, const Draw& draw)
{
    constexpr qsizetype mostTopics = 3;
    QStringList topics;
    int questions = 0;
    for (const DrawnQuestion& question : draw.DrawPool) {
        questions += question.Selected ? 1 : 0;
    }
    // In the order that the window shows them in.
    for (const TopicRecord& topic : state.TopicList) {
        if (std::any_of(draw.DrawPool.begin(), draw.DrawPool.end(), [&](const DrawnQuestion& q) {
                return q.Selected && q.TopicID == topic.TopicID;
            })) {
            topics.append(topic.Topic);
        }
    }
    if (topics.size() > mostTopics) {
        topics = topics.mid(0, mostTopics);
        topics.last() += QStringLiteral("…");
    }
    return Words::tr("%1 – %n question(s)", nullptr, questions)
        .arg(topics.join(QStringLiteral(", ")));
}

Draw DrawOf(const std::vector<TestItem>& items)
{
    Draw draw;
    for (const TestItem& item : items) {
        while (draw.DrawPool.upperBound() < item.position - 1) {
            draw.DrawPool.append({});
        }
        draw.DrawPool.append({{item.SOLIndex, item.SOLIndex, 0, 0, item.answer}, true});
    }
    draw.RequestedQuestionCount = static_cast<std::int32_t>(items.size());
    return draw;
}

void KeepTest(Library& library, NewTest test)
{
    for (TestItem& item : test.items) {
        item.pictureSha = PictureSha(FindPictureFile(library.programFolder(), item.SOLIndex));
    }
    library.keepTest(test);
}

TestRecord::TestRecord(Library& library, NewTest test, std::int32_t keptTestId)
    : library_(library)
    , test_(std::move(test))
    , keptTestId_(keptTestId)
    , open_(!test_.items.empty() && library.features().on)
{
    if (open_ && std::any_of(test_.items.begin(), test_.items.end(),
                             [](const TestItem& item) { return item.pictureSha.isNull(); })) {
        // As many bytes as the slides take: while they are made, not before.
        const auto read = [folder = library_.programFolder(), items = test_.items]() mutable {
            for (TestItem& item : items) {
                if (item.pictureSha.isNull()) {
                    item.pictureSha = PictureSha(FindPictureFile(folder, item.SOLIndex));
                }
            }
            return std::move(items);
        };
        items_ = std::async(std::launch::async, read);
    }
}

void TestRecord::complete(TestKind kind)
{
    if (!std::exchange(open_, false)) {
        return;
    }
    if (items_.valid()) {
        test_.items = items_.get();
    }
    try {
        if (keptTestId_ != 0) {
            library_.recordTest(keptTestId_, kind, test_.items);
        } else {
            library_.recordTest(test_, kind);
        }
    } catch (const Error& error) {
        failure_ = error.message();
    }
}

} // namespace varnholt
