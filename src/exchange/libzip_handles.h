#pragma once

#include <memory>

#include <zip.h>

namespace varnholt {

/// Closes an archive without writing anything.
struct ZipDiscard
{
    void operator()(zip_t* archive) const { zip_discard(archive); }
};
using ZipArchiveHandle = std::unique_ptr<zip_t, ZipDiscard>;

struct ZipFileClose
{
    void operator()(zip_file_t* file) const { zip_fclose(file); }
};
using ZipFileHandle = std::unique_ptr<zip_file_t, ZipFileClose>;

struct ZipSourceFree
{
    void operator()(zip_source_t* source) const { zip_source_free(source); }
};
using ZipSourceHandle = std::unique_ptr<zip_source_t, ZipSourceFree>;

} // namespace varnholt
