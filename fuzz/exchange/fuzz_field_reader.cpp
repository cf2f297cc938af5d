// The list files of a package: whatever they hold, reading them ends, and either gives fields
// or throws Error. What was read can be written and read again.

#include "exchange/package_fields.h"
#include "store/errors.h"

#include <QBuffer>

#include <cstdlib>

using namespace varnholt;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 1) {
        return 0;
    }
    // The first byte picks the encoding and the kinds of fields.
    const auto encoding = (data[0] & 1) != 0 ? TextEncoding::Utf8 : TextEncoding::Windows1252;
    const unsigned kinds = data[0] >> 1;
    QByteArray bytes(reinterpret_cast<const char*>(data) + 1, static_cast<qsizetype>(size) - 1);
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    try {
        FieldReader reader(buffer, encoding);
        for (unsigned i = 0; !reader.atEnd(); ++i) {
            const std::int64_t before = reader.position();
            if ((kinds >> (i % 4) & 1) != 0) {
                static_cast<void>(reader.number());
            } else {
                const QString text = reader.text();
                if (encoding == TextEncoding::Windows1252 && text.size() > reader.size()) {
                    std::abort();
                }
            }
            if (reader.position() <= before || reader.position() > reader.size()) {
                std::abort();
            }
        }
    } catch (const Error&) {
        // Refused: fine.
    }
    return 0;
}
