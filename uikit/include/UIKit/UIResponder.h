// The base of views and view controllers: the chain that events travel up.
#pragma once

#include <objc/object.h>

class PV_EXPORT UIResponder : public NSObject {
    OBJC_CLASS(UIResponder)

    // The next object up the chain: a view's controller or superview, a
    // controller's view's superview or presenter. nil at the top.
    UIResponder* nextResponder() {
        return objc::msgSend<UIResponder*>(this, objc::sel<"nextResponder">());
    }

    UIResponder() = default;

  private:
    UIResponder* imp_nextResponder() { return nullptr; }
};
