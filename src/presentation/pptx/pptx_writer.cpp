#include "presentation/pptx/pptx_writer.h"

#include "presentation/pptx/pptx_parts.h"
#include "store/errors.h"

#include <QDir>
#include <QFile>

#include <zip.h>

#include <cstdlib>
#include <cstring>
#include <memory>

namespace varnholt {

namespace {

struct ZipDiscard
{
    void operator()(zip_t* archive) const { zip_discard(archive); }
};

[[noreturn]] void fail(const QString& path, const char* why)
{
    throw Error(QStringLiteral("The presentation could not be written to \"%1\": %2.")
                    .arg(QDir::toNativeSeparators(path), QString::fromLocal8Bit(why)));
}

class Archive
{
public:
    explicit Archive(const QString& path)
        : path_(path)
    {
        int code = 0;
        archive_.reset(zip_open(QFile::encodeName(path).constData(), ZIP_CREATE | ZIP_EXCL, &code));
        if (!archive_) {
            zip_error_t error;
            zip_error_init_with_code(&error, code);
            const QByteArray why = zip_error_strerror(&error);
            zip_error_fini(&error);
            fail(path, why.constData());
        }
    }

    /// Stored as well: compressing two kilobytes a slide takes as long as storing the pictures,
    /// and saves a few hundredths of the file.
    void addBytes(const QByteArray& name, const QByteArray& bytes) { add(name, copyOf(bytes)); }

    void addFile(const QByteArray& name, const QString& path)
    {
        add(name, zip_source_file(archive_.get(), QFile::encodeName(path).constData(), 0, -1));
    }

    /// Everything is read and written here.
    void close(const std::function<void()>& alive)
    {
        zip_register_progress_callback_with_state(
            archive_.get(), 0.002,
            [](zip_t*, double, void* state) {
                const auto& call = *static_cast<const std::function<void()>*>(state);
                if (call) {
                    call();
                }
            },
            nullptr, const_cast<std::function<void()>*>(&alive));
        if (zip_close(archive_.get()) != 0) {
            fail(path_, zip_strerror(archive_.get()));
        }
        static_cast<void>(archive_.release());
    }

private:
    /// libzip reads a buffer when the archive is closed and frees it with free().
    zip_source_t* copyOf(const QByteArray& bytes)
    {
        const auto size = size_t(bytes.size());
        void* copy = std::malloc(size);
        if (copy == nullptr) {
            throw std::bad_alloc();
        }
        std::memcpy(copy, bytes.constData(), size);
        zip_source_t* source = zip_source_buffer(archive_.get(), copy, size, 1);
        if (source == nullptr) {
            std::free(copy);
        }
        return source;
    }

    void add(const QByteArray& name, zip_source_t* source)
    {
        const zip_int64_t index = source == nullptr ? -1
                                                    : zip_file_add(archive_.get(), name.constData(),
                                                                   source, ZIP_FL_ENC_UTF_8);
        if (index < 0) {
            zip_source_free(source);
            fail(path_, zip_strerror(archive_.get()));
        }
        zip_set_file_compression(archive_.get(), zip_uint64_t(index), ZIP_CM_STORE, 0);
    }

    QString path_;
    std::unique_ptr<zip_t, ZipDiscard> archive_;
};

} // namespace

void writePptx(const QString& path, const PptxDocument& document, const QDateTime& now,
               const std::function<void()>& alive)
{
    Archive archive(path);
    // Readers that recognise a file by its beginning expect this part first.
    archive.addBytes("[Content_Types].xml", pptxContentTypes(document));
    archive.addBytes("_rels/.rels", pptxRootRelations());
    archive.addBytes("docProps/core.xml", pptxCoreProperties(document, now));
    archive.addBytes("docProps/app.xml", pptxAppProperties(document));
    archive.addBytes("ppt/presentation.xml", pptxPresentation(document));
    archive.addBytes("ppt/_rels/presentation.xml.rels", pptxPresentationRelations(document));
    archive.addBytes("ppt/slideMasters/slideMaster1.xml", pptxMaster());
    archive.addBytes("ppt/slideMasters/_rels/slideMaster1.xml.rels", pptxMasterRelations());
    archive.addBytes("ppt/slideLayouts/slideLayout1.xml", pptxBlankLayout());
    archive.addBytes("ppt/slideLayouts/_rels/slideLayout1.xml.rels", pptxBlankLayoutRelations());
    archive.addBytes("ppt/theme/theme1.xml", pptxTheme());
    int number = 0;
    for (const PptxSlide& slide : document.slides) {
        const QByteArray name = "slide" + QByteArray::number(++number) + ".xml";
        archive.addBytes("ppt/slides/" + name, pptxSlide(slide));
        archive.addBytes("ppt/slides/_rels/" + name + ".rels", pptxSlideRelations(document, slide));
    }
    for (int media = 1; media <= int(document.media.size()); ++media) {
        const PptxMedia& picture = document.media[size_t(media) - 1];
        const QByteArray name = pptxMediaName(document, media);
        if (picture.bytes.isEmpty()) {
            archive.addFile(name, picture.path);
        } else {
            archive.addBytes(name, picture.bytes);
        }
    }
    archive.close(alive);
}

} // namespace varnholt
