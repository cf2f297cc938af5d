#include "toolkit/accessible_picture.h"

#include <QAccessibleWidget>
#include <QCoreApplication>
#include <QStringList>
#include <QWidget>

#include <mutex>

namespace varnholt {

namespace {

class AccessiblePicture : public QAccessibleWidget, public QAccessibleImageInterface
{
public:
    AccessiblePicture(QWidget* widget, const DescribedPicture& picture)
        : QAccessibleWidget(widget, QAccessible::Graphic)
        , picture_(picture)
    {}

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ImageInterface ? static_cast<QAccessibleImageInterface*>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }
    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Description ? imageDescription()
                                                : QAccessibleWidget::text(kind);
    }
    QString imageDescription() const override
    {
        // The widget's own is what a hint beside it says.
        return QStringList{picture_.pictureDescription(), widget()->accessibleDescription()}
            .join(u' ')
            .trimmed();
    }
    QSize imageSize() const override { return picture_.pictureSize(); }
    QPoint imagePosition() const override { return rect().topLeft(); }

private:
    const DescribedPicture& picture_;
};

QAccessibleInterface* makeInterface(const QString&, QObject* object)
{
    auto* const widget = qobject_cast<QWidget*>(object);
    const auto* const picture = dynamic_cast<DescribedPicture*>(object);
    return widget && picture ? new AccessiblePicture(widget, *picture) : nullptr;
}

} // namespace

void announcePictures()
{
    static std::once_flag done;
    std::call_once(done, [] { QAccessible::installFactory(makeInterface); });
}

QString pictureSizeSentence(QSize size)
{
    return size.isEmpty()
               ? QCoreApplication::translate("DescribedPicture", "There is no picture.")
               : QCoreApplication::translate("DescribedPicture", "The picture is %1 × %2 pixels.")
                     .arg(size.width())
                     .arg(size.height());
}

} // namespace varnholt
