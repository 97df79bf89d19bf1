// Identifiers made up for tags that no declared type claims. The identifier
// carries the tags themselves (and any type it was made to conform to), so
// that any code can read them back without a table of made-up names:
// "dyn." followed by the payload in lower-case base32 (letters and 2-7 only,
// as identifiers allow), which makes it deterministic and case-insensitive.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace mobilecoreservices {

inline constexpr std::string_view kFilenameExtensionTagClass = "public.filename-extension";
inline constexpr std::string_view kMimeTypeTagClass = "public.mime-type";

struct DynamicIdentifier {
    struct Tag {
        std::string tagClass;
        std::string value;
        bool operator==(const Tag&) const = default;
    };

    // Types it was declared to conform to, beyond what its tags imply.
    std::vector<std::string> conformsTo;
    // In the order given; callers put extensions before MIME types so that
    // the same tags always make the same identifier.
    std::vector<Tag> tags;

    static constexpr std::string_view kPrefix = "dyn.";

    std::string encode() const;
    // nullopt when the text is not an identifier that encode() could make.
    static std::optional<DynamicIdentifier> decode(std::string_view identifier);
    static bool hasPrefix(std::string_view identifier) noexcept;

    // The tags of one class, in order.
    std::vector<std::string_view> tagsWithClass(std::string_view tagClass) const;
    // Whether a tag names a file: an extension or a MIME type.
    bool describesFile() const noexcept;

    bool operator==(const DynamicIdentifier&) const = default;
};

}  // namespace mobilecoreservices
