#pragma once

#include <QByteArrayView>
#include <QIODevice>

#include <algorithm>
#include <atomic>

namespace varnholt {

/// A picture's bytes, until nobody wants the picture any more: the decoders, which know no other
/// way to be stopped, then meet an error. From a `QBuffer` they would take all bytes at once.
class StoppableBytes : public QIODevice
{
public:
    StoppableBytes(QByteArrayView bytes, const std::atomic<bool>* stop)
        : bytes_(bytes)
        , stop_(stop)
    {
        open(ReadOnly | Unbuffered);
    }

    [[nodiscard]] qint64 size() const override { return bytes_.size(); }
    bool seek(qint64 position) override
    {
        if (position < 0 || position > bytes_.size() || !QIODevice::seek(position)) {
            return false;
        }
        at_ = position;
        return true;
    }

protected:
    qint64 readData(char* data, qint64 most) override
    {
        if (stop_ && *stop_) {
            return -1;
        }
        const qint64 count = std::min(most, bytes_.size() - at_);
        std::copy_n(bytes_.data() + at_, count, data);
        at_ += count;
        return count;
    }
    qint64 writeData(const char* /*data*/, qint64 /*count*/) override { return -1; }

private:
    QByteArrayView bytes_;
    const std::atomic<bool>* stop_;
    qint64 at_ = 0;
};

} // namespace varnholt
