// The types the system declares itself: the common public types and the
// office formats, with their conformance, extensions and MIME types.
#pragma once

#include <span>

namespace mobilecoreservices {

struct CoreTypeEntry {
    const char* identifier;
    const char* conformsTo;  // identifiers separated by spaces
    const char* extensions;  // separated by spaces, preferred first, no dots
    const char* mimeTypes;   // separated by spaces, preferred first
    const char* description;
};

std::span<const CoreTypeEntry> coreTypeTable() noexcept;

}  // namespace mobilecoreservices
