#include "selection/test_record.h"

#include "library/Library.h"
#include "library/test_pictures.h"
#include "pictures/picture_files.h"
#include "store/catalogue.h"

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>

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

TestRecord::TestRecord(Library& library, const NewTest& test)
    : library_(library)
{
    if (test.items.empty() || !library_.features().on) {
        return;
    }
    try {
        testId_ = library_.beginTest(test);
    } catch (const Error& error) {
        failure_ = error.message();
        return;
    }
    if (std::any_of(test.items.begin(), test.items.end(),
                    [](const TestItem& item) { return item.pictureSha.isNull(); })) {
        // As many bytes as the slides take: while they are made, not before.
        const auto read = [folder = library_.programFolder(), items = test.items] {
            std::vector<QByteArray> pictures;
            for (const TestItem& item : items) {
                pictures.push_back(item.pictureSha.isNull()
                                       ? PictureSha(FindPictureFile(folder, item.SOLIndex))
                                       : item.pictureSha);
            }
            return pictures;
        };
        pictures_ = std::async(std::launch::async, read);
    }
}

TestRecord::TestRecord(Library& library, std::int32_t testId)
    : library_(library)
    , testId_(library.features().on ? testId : 0)
{}

void TestRecord::complete(TestKind kind)
{
    if (testId_ == 0) {
        return;
    }
    try {
        library_.completeTest(testId_, kind,
                              pictures_.valid() ? pictures_.get() : std::vector<QByteArray>());
    } catch (const Error& error) {
        failure_ = error.message();
    }
}

} // namespace varnholt
