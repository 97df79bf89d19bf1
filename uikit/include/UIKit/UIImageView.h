// A view that shows an image. Its layer's corner radius and masking decide
// how the image is clipped.
#pragma once

#include <UIKit/UIImage.h>
#include <UIKit/UIView.h>

class PV_EXPORT UIImageView : public UIView {
    OBJC_CLASS(UIImageView)

    static objc::Strong<UIImageView> create(UIImage* image = nullptr) {
        return objc::adopt(objc::alloc<UIImageView>()->initWithImage(image));
    }

    // The frame takes the image's size (in points); nil gives an empty frame.
    UIImageView* initWithImage(UIImage* image) {
        return objc::msgSend<UIImageView*>(this, objc::sel<"initWithImage:">(), image);
    }
    // Retained; nil clears it. The frame stays as it is.
    UIImage* image() { return objc::msgSend<UIImage*>(this, objc::sel<"image">()); }
    void setImage(UIImage* image) { objc::msgSend<void>(this, objc::sel<"setImage:">(), image); }

    UIImageView() = default;

  private:
    UIImageView* imp_initWithImage(UIImage* image);
    void imp_drawRect(CGRect rect);

    objc::Strong<UIImage> image_;
};
