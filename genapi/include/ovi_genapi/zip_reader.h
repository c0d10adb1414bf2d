// How archives that nobody has checked are opened.
#pragma once

#include <miniz.h>

#include <string_view>

namespace GenApiEngine {

/**
 * Opens an archive in memory, which stays the caller's and must outlive the reader.
 *
 * miniz looks at the extra data of a directory entry before it knows that they lie inside its copy of the directory: by
 * their length and by that of the name before them, up to 128 KB behind its end. Its memory gets as much room behind
 * it, so what it sees there are zeros, and the check that follows refuses the archive.
 *
 * @param zip  empty; mz_zip_reader_end gives back what an opened one holds
 * @return whether it is an archive
 */
bool openZip(mz_zip_archive& zip, std::string_view bytes);

}  // namespace GenApiEngine
