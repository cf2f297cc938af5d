#include "library/backup/BackupManifest.h"

#include "library/backup/backup_files.h"

#include <algorithm>
#include <charconv>

namespace varnholt {

namespace {

constexpr int ownFormat = 1;
constexpr std::string_view title = "Varnholt backup ";
constexpr std::string_view trailer = "checksum ";

/// Takes a text apart word by word; `good` falls at the first thing that is not as expected.
class Words
{
public:
    explicit Words(std::string_view text)
        : rest_(text)
    {}

    bool good = true;

    [[nodiscard]] bool atEnd() const { return rest_.empty(); }

    void expect(std::string_view text)
    {
        good = good && rest_.starts_with(text);
        rest_.remove_prefix(good ? text.size() : 0);
    }

    /// Everything before `end`, which is taken, too.
    std::string_view until(char end)
    {
        const std::size_t at = rest_.find(end);
        good = good && at != std::string_view::npos;
        const std::string_view word = good ? rest_.substr(0, at) : std::string_view();
        rest_.remove_prefix(good ? at + 1 : 0);
        return word;
    }

    template <typename Number>
    void number(Number& value, char end)
    {
        const std::string_view word = until(end);
        const char* last = word.data() + word.size();
        const auto [stopped, error] = std::from_chars(word.data(), last, value);
        good = good && error == std::errc() && stopped == last;
    }

    void sha(Sha& value, char end)
    {
        const std::string_view word = until(end);
        good = good && word.size() == value.size();
        std::copy_n(word.data(), good ? value.size() : 0, value.begin());
    }

private:
    std::string_view rest_;
};

} // namespace

const BackedPicture* BackupManifest::find(std::int32_t key) const
{
    const auto found = std::lower_bound(
        pictures.begin(), pictures.end(), key,
        [](const BackedPicture& picture, std::int32_t k) { return picture.key < k; });
    return found != pictures.end() && found->key == key ? &*found : nullptr;
}

QByteArray BackupManifest::text() const
{
    constexpr qsizetype perPicture = 112;
    QByteArray text;
    text.reserve(perPicture * static_cast<qsizetype>(pictures.size() + 4));
    const auto add = [&](std::string_view word) {
        text.append(word.data(), static_cast<qsizetype>(word.size()));
    };
    const auto addNumber = [&](std::int64_t value, char end) {
        std::array<char, 24> digits{};
        const char* last = std::to_chars(digits.begin(), digits.end(), value).ptr;
        text.append(digits.data(), last - digits.data());
        text.append(end);
    };
    add(title);
    addNumber(ownFormat, '\n');
    add("program ");
    text += program.toUtf8() + '\n';
    add("made ");
    addNumber(madeAt, ' ');
    addNumber(looked, '\n');
    add("library ");
    add(View(librarySha));
    add(" ");
    addNumber(librarySize, ' ');
    addNumber(questions, ' ');
    addNumber(tables, '\n');
    for (const BackedPicture& picture : pictures) {
        add("picture ");
        addNumber(picture.key, ' ');
        add(View(picture.sha));
        add(" ");
        addNumber(picture.size, ' ');
        addNumber(picture.modified, '\n');
    }
    const Sha own = ShaOf(text);
    add(trailer);
    add(View(own));
    add("\n");
    return text;
}

BackupManifest::State BackupManifest::read(const QByteArray& text, BackupManifest& manifest)
{
    // The last line is the same in every format to come.
    const qsizetype body = text.size() - qsizetype(trailer.size() + std::tuple_size_v<Sha> + 1);
    if (body < 0) {
        return State::Damaged;
    }
    const std::string_view all(text.constData(), static_cast<std::size_t>(text.size()));
    const std::string_view content = all.substr(0, static_cast<std::size_t>(body));
    Words end(all.substr(content.size()));
    Sha claimed{};
    end.expect(trailer);
    end.sha(claimed, '\n');
    if (!end.good || claimed != ShaOf(QByteArray::fromRawData(text.constData(), body))) {
        return State::Damaged;
    }

    Words words(content);
    int format = 0;
    words.expect(title);
    words.number(format, '\n');
    words.expect("program ");
    const std::string_view program = words.until('\n');
    manifest.program = QString::fromUtf8(program.data(), static_cast<qsizetype>(program.size()));
    if (words.good && format > ownFormat) {
        return State::Newer;
    }
    words.expect("made ");
    words.number(manifest.madeAt, ' ');
    words.number(manifest.looked, '\n');
    words.expect("library ");
    words.sha(manifest.librarySha, ' ');
    words.number(manifest.librarySize, ' ');
    words.number(manifest.questions, ' ');
    words.number(manifest.tables, '\n');
    manifest.pictures.clear();
    while (words.good && !words.atEnd()) {
        BackedPicture& picture = manifest.pictures.emplace_back();
        words.expect("picture ");
        words.number(picture.key, ' ');
        words.sha(picture.sha, ' ');
        words.number(picture.size, ' ');
        words.number(picture.modified, '\n');
    }
    return words.good ? State::Whole : State::Damaged;
}

} // namespace varnholt
