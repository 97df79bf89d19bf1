// Everything the uniform type functions know: the declared types of the
// built-in table, indexed by identifier, extension and MIME type, plus the
// shared MIME-info database for the extensions and MIME types the table
// lacks. Built once, then only read: lookups are hash-map reads and may run
// on any number of threads.
#pragma once

#include "core_type_table.h"
#include "dynamic_identifier.h"
#include "shared_mime_database.h"
#include "string_keys.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace mobilecoreservices {

struct TypeDeclaration {
    std::string identifier;
    std::vector<std::string> conformsTo;
    std::vector<std::string> extensions;  // preferred first
    std::vector<std::string> mimeTypes;   // preferred first
    std::string description;
    // Every type it conforms to, itself included, through the whole graph.
    CaseInsensitiveSet ancestors;
};

class TypeRegistry {
  public:
    TypeRegistry(std::span<const CoreTypeEntry> table, SharedMimeDatabase mimeDatabase);
    TypeRegistry(const TypeRegistry&) = delete;  // the indexes point into the declarations
    TypeRegistry& operator=(const TypeRegistry&) = delete;

    // The built-in table plus the system's database, loaded on first use.
    static const TypeRegistry& shared();

    // Types carrying the tag, best first, keeping only those that conform
    // to `conformingTo` when it is not empty. When none does, a dynamic
    // identifier that carries the tag (and the conformance). Empty only for a
    // tag that no identifier can carry.
    std::vector<std::string> identifiersForTag(std::string_view tagClass, std::string_view tag,
                                               std::string_view conformingTo) const;
    // Tags of one class, preferred first.
    std::vector<std::string> tagsWithClass(std::string_view identifier,
                                           std::string_view tagClass) const;
    // Reflexive and transitive; identifiers compare in any case.
    bool conformsTo(std::string_view identifier, std::string_view other) const;
    std::optional<std::string> description(std::string_view identifier) const;
    const TypeDeclaration* declaration(std::string_view identifier) const;

    const SharedMimeDatabase& mimeDatabase() const noexcept { return mime_; }

  private:
    using Candidates = std::vector<const TypeDeclaration*>;
    void computeAncestors();
    Candidates candidatesForExtension(std::string_view extension) const;
    Candidates candidatesForMimeType(std::string_view mimeType) const;
    // The made-up identifier for an extension (no dot) or a normalised MIME
    // type, carrying what the database adds to it.
    DynamicIdentifier dynamicIdentifierFor(std::string_view tagClass, std::string_view tag) const;
    // The types a dynamic identifier directly conforms to: those it was made
    // with, the declared types its MIME type specialises, and public.data for
    // anything that is a file.
    std::vector<std::string> parentsOf(const DynamicIdentifier& dynamic) const;
    bool conformsTo(const DynamicIdentifier& dynamic, std::string_view other) const;
    std::vector<std::string_view> mimeTypesOf(const DynamicIdentifier& dynamic) const;

    CaseInsensitiveMap<TypeDeclaration> declarations_;
    CaseInsensitiveMap<Candidates> byExtension_;
    CaseInsensitiveMap<Candidates> byMimeType_;
    SharedMimeDatabase mime_;
};

// "text/plain; charset=utf-8" -> "text/plain": MIME types compare without
// their parameters, in lower case.
std::string normalizedMimeType(std::string_view mimeType);

}  // namespace mobilecoreservices
