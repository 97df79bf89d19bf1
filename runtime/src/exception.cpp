// Raising the platform's exceptions from C++.
#include <objc/exception.h>

namespace objc {

void raise(const char* name, const std::string& reason) {
    throw Exception(name, reason);
}

}  // namespace objc
