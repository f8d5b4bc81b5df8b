// Writing and reading a kept index. Any thread.
#pragma once

#include "dataaccess/file_index.h"
#include "foundation/descriptor.h"

#include <cstdint>
#include <memory>

namespace Application_Tarvel {

// Writes the index into an empty file. `index` is not added to meanwhile; `state` is how
// its file looked before the last scan. False when the disk does not take it.
bool WriteIndexFile(const Outils_Fichiers::CDescriptor& file, const CFileIndex& index,
                    const SFileState& state);

// The index in these pages of an open file whose header has been read, and that looks like `state` now; null
// when it is the index of another file, or its head or table are not as they were written. Records are read
// when they are needed, but for `mostLoaded` bytes of the upper levels of each channel.
std::shared_ptr<CFileIndex> ReadIndexFile(const std::shared_ptr<const CIndexPages>& pages,
                                          Persistance_Xpf::CXpfFile& file, Persistance_Xpf::EFileKind kind,
                                          const SFileState& state, std::int64_t mostLoaded);

} // namespace Application_Tarvel
