// The document types the host itself sends: office documents and PDF.
//
// A file's type is the uniform type its name's extension maps to; the host
// takes a file whose type conforms to one of its own. This file is the one
// place that decides it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host {

// The uniform type identifiers the share-document menu asks for.
const std::vector<std::string>& shareDocumentTypes();

// Which of those types a file with the extension (no dot, any case) is: the
// first one its uniform type conforms to, or empty when the host does not
// send such files.
std::string documentTypeForExtension(std::string_view extension);

// Whether a uniform type conforms to one of the host's types.
bool isSupportedDocumentType(std::string_view uti);

inline bool isSupportedDocumentExtension(std::string_view extension) {
    return !documentTypeForExtension(extension).empty();
}

}  // namespace host
