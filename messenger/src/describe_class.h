// --describe-class: a class's own instance methods and the binary that holds
// each implementation, to see what an injected library changed.
#pragma once

#include <ostream>
#include <string>

namespace messenger {

// Writes "NAME : SUPERCLASS", then one line per method the class itself
// defines: selector, type encoding and the file name of the shared object
// or program holding the implementation, tab-separated. Answers the exit
// status: 1 (with a message on `err`) for an unknown class.
int describeClass(const std::string& name, std::ostream& out, std::ostream& err);

}  // namespace messenger
