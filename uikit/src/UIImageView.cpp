#include <UIKit/UIImageView.h>

#include <objc/image.h>

OBJC_DEFINE_CLASS(UIImageView, UIView, "UIImageView")
OBJC_REGISTER_CLASS(UIImageView)

void UIImageView::objcDefine(objc::ClassBuilder<UIImageView>& b) {
    b.method<&UIImageView::imp_initWithImage>("initWithImage:")
        .property<&UIImageView::image_>("image", objc::Nonatomic);
}

UIImageView* UIImageView::imp_initWithImage(UIImage* image) {
    const CGSize size = image != nullptr ? image->size() : CGSize{};
    initWithFrame(CGRectMake(0, 0, size.width, size.height));
    setImage(image);
    return this;
}
