// The library's exported `main`: part of its published names, called by
// nothing. It has a file of its own so that the unit tests, which link the
// library's code into a program with a main of its own, can leave it out.
#include <objc/export.h>

PV_EXPORT int main() {
    return 0;
}
