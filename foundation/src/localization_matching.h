// Choosing among a bundle's localisations for the user's languages.
#pragma once

#include <string>
#include <vector>

namespace foundation::detail {

// The available localisations that match the preferred languages, best
// first, spelled as available: for each language its exact localisation
// (ignoring case and "_" versus "-"), else the nearest parent ("zh-Hant-TW"
// -> "zh-Hant" -> "zh"), else the first of the same language ("pt" ->
// "pt-PT"). When nothing matches: the development region if available, else
// the first available one. Empty only when nothing is available.
std::vector<std::string> matchLocalizations(const std::vector<std::string>& available,
                                            const std::vector<std::string>& preferred,
                                            const std::string& developmentRegion);

}  // namespace foundation::detail
