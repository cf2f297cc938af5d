#pragma once

#include "imaging/jpeg_scan.h"

#include <string_view>

/// One function for each marker segment of a file (ITU-T T.81 annex B).
namespace varnholt::jpeg {

void writeStart(ByteWriter& out); ///< SOI, and APP0 with JFIF 1.01, no density
/// COM, one byte a character. A text longer than a segment holds goes into two, cut where no
/// UTF-8 character is torn apart; an empty one is left out.
void writeComment(ByteWriter& out, std::string_view text);
/// DQT. Raises "Illegal precission in Quantization Table" for an entry above 255: 8-bit
/// samples allow 8-bit entries only.
void writeQuantTable(ByteWriter& out, int number, const QuantTable& table);
void writeFrame(ByteWriter& out, const SampledPicture& picture);               ///< SOF0
void writeHuffmanTables(ByteWriter& out, int number, const TablePair& tables); ///< one DHT
void writeScanHeader(ByteWriter& out, std::span<const int> components);        ///< SOS
void writeEnd(ByteWriter& out);                                                ///< EOI

} // namespace varnholt::jpeg
